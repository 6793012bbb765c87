#include "storage/tabla_cuentas.h"

#include <fmt/format.h>

#include <vector>

#include "kivmovfrec/vb.h"
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

const char* const kSqlCuentaPorCodigoONombre =
    "Select CueID, CueCodigo, CueNombre, CueMoneda From cceCuentas Where CueIDEmpresa = ? And "
    "CueEsCarpeta = 0 And (CueCodigo = ? Or CueNombre = ?) Order by CueCodigo";

namespace {

// Every non-folder account of the company whose code or name is `clave`, by code.
std::vector<CuentaElegible> CuentasConClave(Connection& cn, int32_t empresa,
                                            const std::string& clave) {
  std::vector<CuentaElegible> r;
  auto rs = cn.OpenResultset(kSqlCuentaPorCodigoONombre,
                             {Variant(empresa), Variant(clave), Variant(clave)});
  for (; !rs->Eof(); rs->MoveNext()) {
    CuentaElegible c;
    c.id = ALong(rs->Get("CueID"));
    c.codigo = vb::Trim(ATexto(rs->Get("CueCodigo")));
    c.nombre = vb::Trim(ATexto(rs->Get("CueNombre")));
    const Variant m = rs->Get("CueMoneda");
    c.moneda = EsNulo(m) ? 0 : static_cast<int16_t>(ALong(m));
    r.push_back(std::move(c));
  }
  rs->Close();
  return r;
}

}  // namespace

std::optional<CuentaElegible> BuscarCuentaElegible(Connection& cn, int32_t empresa,
                                                   std::string_view texto) {
  const std::string clave = vb::Trim(texto);
  if (clave.empty()) return std::nullopt;
  const std::vector<CuentaElegible> halladas = CuentasConClave(cn, empresa, clave);
  for (const CuentaElegible& c : halladas)
    if (c.codigo == clave) return c;
  if (!halladas.empty()) return halladas.front();
  // "1.1.01 Caja": the code before the first blank, the name after it.
  const size_t blanco = clave.find(' ');
  if (blanco == std::string::npos) return std::nullopt;
  const std::string nombre = vb::Trim(clave.substr(blanco + 1));
  for (const CuentaElegible& c : CuentasConClave(cn, empresa, clave.substr(0, blanco)))
    if (c.codigo == clave.substr(0, blanco) && c.nombre == nombre) return c;
  return std::nullopt;
}

}  // namespace kivmovfrec::storage
