#include "ui/formula_editor/argumentos_fx.h"

#include "platform/vb/convert.h"
#include "platform/vb/locale.h"
#include "platform/vb/text.h"

namespace kivmovfrec::ui::fx {
namespace {

std::string Texto(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? std::string() : vb::Trim(vb::CStr(v, vb::Locale::Invariant()));
}

int32_t Entero(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? 0 : vb::CLng(v, vb::Locale::Invariant());
}

}  // namespace

const std::vector<FiltroClave>& FiltrosCuenta() {
  static const std::vector<FiltroClave> filtros = {{"RMFCuenta", true}, {"CueCodigo", false}};
  return filtros;
}

std::string SqlCuentasMovimiento(int32_t movimiento, const std::vector<FiltroClave>& filtros) {
  std::string sql =
      "Select CueID, RMFIDProyecto, RMFIDDepartamento, CueCodigo, CueNombre, ProAbreviacion, "
      "DepAbreviacion "
      " From ((( genRenglonMovFrecuentes "
      " Left Outer Join cceCuentas On genRenglonMovFrecuentes.RMFCuenta = cceCuentas.CueID)"
      " Left Outer Join cceProyectos On genRenglonMovFrecuentes.RMFIDProyecto = "
      "cceProyectos.ProCodigo)"
      " Left Outer Join cceDepartamentos On genRenglonMovFrecuentes.RMFIDDepartamento = "
      "cceDepartamentos.DepCodigo)"
      " Where RMFMovimiento = " +
      std::to_string(movimiento);
  for (const FiltroClave& f : filtros)
    sql += " And " + f.columna + (f.numerica ? " <> 0" : " <> ''");
  return sql + " Order by RMFOrden";
}

std::vector<OpcionFx> LineasGuardadas(Connection& cn, int32_t movimiento) {
  std::vector<formula::LineaVisible> lineas;
  for (auto rs = cn.OpenReadOnly(SqlCuentasMovimiento(movimiento, FiltrosCuenta())); !rs->Eof();
       rs->MoveNext()) {
    lineas.push_back({{Entero(rs->Get(0)), Entero(rs->Get(1)), Entero(rs->Get(2))},
                      Texto(rs->Get(3)),
                      Texto(rs->Get(4)),
                      Texto(rs->Get(5)),
                      Texto(rs->Get(6))});
  }
  return LineasEnMemoria(lineas);
}

std::vector<OpcionFx> LineasEnMemoria(const std::vector<formula::LineaVisible>& lineas) {
  std::vector<OpcionFx> out;
  for (const formula::LineaVisible& l : lineas) {
    if (l.clave.cuenta == 0) continue;
    out.push_back({l.Texto(), l.clave.Texto()});
  }
  return out;
}

std::vector<OpcionFx> OpcionesConsulta(Connection& cn, std::string_view consulta,
                                       const storage::ContextoLookup& ctx) {
  std::vector<OpcionFx> out;
  const storage::ConsultaLookup q = storage::PrepararTodas(consulta, ctx);
  for (auto rs = cn.OpenResultset(q.sql, q.valores); !rs->Eof(); rs->MoveNext())
    out.push_back({Texto(rs->Get(2)), Texto(rs->Get(0))});
  return out;
}

}  // namespace kivmovfrec::ui::fx
