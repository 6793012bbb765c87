#include "storage/tabla_cuentas.h"

#include <fmt/format.h>

#include "storage/columnas.h"

namespace kivmovfrec::storage {

std::string SqlCuentaDeRenglon(int32_t cuenta) {
  return "Select CueIDEmpresa, CueEsCarpeta From cceCuentas Where CueID = " +
         std::to_string(cuenta);
}

namespace {

// Why the account read in the current row of `rs` cannot take a line of company `empresa`.
std::optional<std::string> Problema(const Resultset& rs, int32_t empresa, int32_t cuenta) {
  const Variant de = rs.Get("CueIDEmpresa");
  const Variant carpeta = rs.Get("CueEsCarpeta");
  const int32_t empresa_cuenta = EsNulo(de) ? 0 : ALong(de);
  if (empresa_cuenta != empresa) {
    return fmt::format("la cuenta {} es de otra empresa (la {})", cuenta, empresa_cuenta);
  }
  if (!EsNulo(carpeta) && ALong(carpeta) != 0) {
    return fmt::format("la cuenta {} es una carpeta", cuenta);
  }
  return std::nullopt;
}

std::string NoExiste(int32_t cuenta) {
  return fmt::format("la cuenta {} no existe", cuenta);
}

}  // namespace

std::optional<std::string> ProblemaCuentaRenglon(Connection& cn, int32_t empresa, int32_t cuenta) {
  auto rs = cn.OpenResultset(SqlCuentaDeRenglon(cuenta));
  if (rs->Eof()) return NoExiste(cuenta);
  return Problema(*rs, empresa, cuenta);
}

std::map<int32_t, std::optional<std::string>> ProblemasCuentasRenglones(
    Connection& cn, int32_t empresa, const std::set<int32_t>& cuentas) {
  std::map<int32_t, std::optional<std::string>> out;
  if (cuentas.empty()) return out;
  // The accounts bound: the text depends only on how many there are.
  std::string lista;
  DbParams ids;
  for (int32_t c : cuentas) {
    lista += lista.empty() ? "?" : ", ?";
    ids.emplace_back(c);
    out.emplace(c, NoExiste(c));
  }
  for (auto rs = cn.OpenResultset(
           "Select CueID, CueIDEmpresa, CueEsCarpeta From cceCuentas Where CueID In (" + lista +
               ")",
           ids);
       !rs->Eof(); rs->MoveNext()) {
    const int32_t cuenta = ALong(rs->Get("CueID"));
    out[cuenta] = Problema(*rs, empresa, cuenta);
  }
  return out;
}

}  // namespace kivmovfrec::storage
