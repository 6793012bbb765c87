#include "kivmovfrec/cuentas.h"

#include "storage/tabla_cuentas.h"

namespace kivmovfrec {

std::optional<std::string> ProblemaCuentaRenglon(Connection& cn, int32_t empresa, int32_t cuenta) {
  return storage::ProblemaCuentaRenglon(cn, empresa, cuenta);
}

}  // namespace kivmovfrec
