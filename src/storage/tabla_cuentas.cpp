#include "storage/tabla_cuentas.h"

#include <fmt/format.h>

#include "storage/columnas.h"

namespace kivmovfrec::storage {

std::string SqlCuentaDeRenglon(int32_t cuenta) {
  return "Select CueIDEmpresa, CueEsCarpeta From cceCuentas Where CueID = " +
         std::to_string(cuenta);
}

std::optional<std::string> ProblemaCuentaRenglon(Connection& cn, int32_t empresa, int32_t cuenta) {
  auto rs = cn.OpenResultset(SqlCuentaDeRenglon(cuenta));
  if (rs->Eof()) return fmt::format("la cuenta {} no existe", cuenta);
  const Variant de = rs->Get("CueIDEmpresa");
  const Variant carpeta = rs->Get("CueEsCarpeta");
  rs->Close();
  const int32_t empresa_cuenta = EsNulo(de) ? 0 : ALong(de);
  if (empresa_cuenta != empresa) {
    return fmt::format("la cuenta {} es de otra empresa (la {})", cuenta, empresa_cuenta);
  }
  if (!EsNulo(carpeta) && ALong(carpeta) != 0) {
    return fmt::format("la cuenta {} es una carpeta", cuenta);
  }
  return std::nullopt;
}

}  // namespace kivmovfrec::storage
