#include "storage/parametros.h"

#include <cmath>
#include <limits>
#include <optional>

#include "platform/vb/convert.h"
#include "platform/vb/text.h"
#include "storage/columnas.h"

namespace kivmovfrec::storage {

const char* const kSqlParametros =
    "Select * from genParametros "
    " Where ParNombre In ('defBkColorObligatorio', 'defBDDateCharSQLs', 'defBDDateFormat', "
    "'sis_Multiusuario', 'sis_LibroAsientoResumen')";

namespace {

// A setting value read as a number: numeric values and numeric text; nothing otherwise.
std::optional<double> ValorNumerico(const Variant& v) {
  if (EsNulo(v)) return std::nullopt;
  if (!vb::IsNumeric(v, vb::Locale::Invariant())) return std::nullopt;
  return vb::CDbl(v, vb::Locale::Invariant());
}

}  // namespace

void CargarParametros(Connection& cn, ParametrosBD& p) {
  ParametrosBD leidos = p;
  const ParametrosBD estandar;
  leidos.caracter_fecha = estandar.caracter_fecha;
  leidos.formato_fecha = estandar.formato_fecha;
  leidos.multiusuario = estandar.multiusuario;

  const std::string delimitador = vb::LCase("defBDDateCharSQLs");
  const std::string formato = vb::LCase("defBDDateFormat");
  const std::string multiusuario = vb::LCase("sis_Multiusuario");

  auto rs = cn.OpenResultset(kSqlParametros);
  for (; !rs->Eof(); rs->MoveNext()) {
    const std::string nombre = vb::LCase(vb::Trim(ATexto(rs->Get("ParNombre"))));
    if (nombre == delimitador) {
      SiNoNulo(*rs, "ParTexto", ATexto, [&](std::string s) { leidos.caracter_fecha = s; });
    } else if (nombre == formato) {
      SiNoNulo(*rs, "ParTexto", ATexto, [&](std::string s) { leidos.formato_fecha = s; });
    } else if (nombre == multiusuario) {
      if (auto n = ValorNumerico(rs->Get("ParValor"))) leidos.multiusuario = *n != 0.0;
    }
  }
  rs->Close();
  p = leidos;
}

int16_t LeerIdioma(IDBFncs& dbf) {
  int16_t idioma = 0;
  if (auto n = ValorNumerico(dbf.GetSetting("Idioma"))) {
    const double r = std::nearbyint(*n);
    if (r >= 0 && r <= std::numeric_limits<int16_t>::max()) idioma = static_cast<int16_t>(r);
  }
  return idioma;
}

}  // namespace kivmovfrec::storage
