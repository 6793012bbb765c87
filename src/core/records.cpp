#include <cmath>
#include <limits>

#include "core/clock.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec {

void clsRegMovimientoFrecuente::Class_Initialize() {
  Class_Initialize(core::RelojOSistema(nullptr));
}

void clsRegMovimientoFrecuente::Class_Initialize(IClock& reloj) {
  estado_ = ToInt(enuEstadoMF::EnProceso);
  fecha_estado_ = reloj.Now();
  vista_ = 0;
}

int16_t clsRegRecurrencia::Posponer() const {
  // nearbyint rounds halves to even under the default rounding mode, as VB's CInt does.
  const double rounded = std::nearbyint(static_cast<double>(postergado_));
  if (!(rounded >= std::numeric_limits<int16_t>::min() &&
        rounded <= std::numeric_limits<int16_t>::max())) {
    throw VbError(6);
  }
  return static_cast<int16_t>(rounded);
}

}  // namespace kivmovfrec
