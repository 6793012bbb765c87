#include "storage/tabla_renglones.h"

#include "storage/columnas.h"
#include "storage/sql_texto.h"

namespace kivmovfrec::storage {

std::string SqlRenglonesDe(int32_t id_mf) {
  return "Select * From genRenglonMovFrecuentes Where RMFMovimiento = " + std::to_string(id_mf);
}

namespace {

// Display columns come only with the joined load; a plain select of the table lacks them.
template <typename Conv, typename Set>
void SiHayColumna(const Resultset& rs, std::string_view col, Conv conv, Set set) {
  if (rs.HasColumn(col)) SiNoNulo(rs, col, conv, set);
}

}  // namespace

void LeerRenglon(const Resultset& rs, clsRegRenglonMF& r) {
  SiNoNulo(rs, "RMFMovimiento", ALong, [&](int32_t v) { r.idMF(v); });
  SiNoNulo(rs, "RMFCuenta", ALong, [&](int32_t v) { r.Cuenta(v); });
  SiNoNulo(rs, "RMFIDProyecto", AInteger, [&](int16_t v) { r.Proyecto(v); });
  SiNoNulo(rs, "RMFIDDepartamento", AInteger, [&](int16_t v) { r.Departamento(v); });
  SiNoNulo(rs, "RMFOrden", AByte, [&](uint8_t v) { r.Orden(v); });
  SiNoNulo(rs, "RMFAlDebe", ABool, [&](bool v) { r.AlDebe(v); });
  SiNoNulo(rs, "RMFFormula", ATexto, [&](std::string v) { r.Formula(std::move(v)); });
  SiNoNulo(rs, "RMFValor", ADouble, [&](double v) { r.ImporteCta(v); });
  SiNoNulo(rs, "RMFValorMonMov", ADouble, [&](double v) { r.ImporteMF(v); });
  SiNoNulo(rs, "RMFFTipoCambio", AByte, [&](uint8_t v) { r.TipoCambio(v); });
  SiNoNulo(rs, "RMFValorTC", ADouble, [&](double v) { r.ValorTC(v); });
  SiNoNulo(rs, "RMFDetalle", ATexto, [&](std::string v) { r.Detalle(std::move(v)); });

  SiHayColumna(rs, "CueCodigo", ATexto, [&](std::string v) { r.CuentaCodigo(std::move(v)); });
  SiHayColumna(rs, "CueNombre", ATexto, [&](std::string v) { r.CuentaNombre(std::move(v)); });
  SiHayColumna(rs, "CueMoneda", AInteger, [&](int16_t v) { r.Moneda(v); });
  SiHayColumna(rs, "ProAbreviacion", ATexto,
               [&](std::string v) { r.ProyectoAbreviacion(std::move(v)); });
  SiHayColumna(rs, "DepAbreviacion", ATexto,
               [&](std::string v) { r.DepartamentoAbreviacion(std::move(v)); });
}

void RechazarTextosRenglon(const clsRegRenglonMF& r) {
  RechazarComilla(r.Detalle(), "Detalle");
  RechazarTextoNoAlmacenable(r.Detalle(), "Detalle", kLargoDetalle);
  RechazarTextoNoAlmacenable(r.Formula(), "Fórmula");
}

void AgregarRenglon(Resultset& rs, clsRegRenglonMF& r, int32_t id_mf, uint8_t posicion) {
  if (r.Orden() == 0) r.Orden(posicion);
  r.idMF(id_mf);
  rs.AddNew();
  rs.Set("RMFMovimiento", id_mf);
  rs.Set("RMFCuenta", r.Cuenta());
  rs.Set("RMFIDProyecto", r.Proyecto());
  rs.Set("RMFIDDepartamento", r.Departamento());
  rs.Set("RMFOrden", r.Orden());
  rs.Set("RMFAlDebe", int16_t{r.AlDebe() ? int16_t{1} : int16_t{0}});
  rs.Set("RMFFormula", NuloSiVacio(r.Formula()));
  rs.Set("RMFValor", r.ImporteCta());
  rs.Set("RMFValorMonMov", r.ImporteMF());
  rs.Set("RMFFTipoCambio", NuloSiCero(r.TipoCambio()));
  rs.Set("RMFValorTC", NuloSiCero(r.ValorTC()));
  rs.Set("RMFDetalle", NuloSiVacio(r.Detalle()));
  rs.Update();
}

int BorrarRenglones(Connection& cn, int32_t id_mf) {
  auto rs = cn.OpenResultset(SqlRenglonesDe(id_mf));
  int borradas = 0;
  for (; !rs->Eof(); rs->MoveNext()) {
    rs->Delete();
    ++borradas;
  }
  rs->Close();
  return borradas;
}

}  // namespace kivmovfrec::storage
