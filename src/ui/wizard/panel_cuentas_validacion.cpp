// The accounts panel's checks over all lines: the sides, the formula rules line by line, the
// totals and the side of the difference and the movement total.
#include <array>
#include <vector>

#include "formula/formula_mf.h"
#include "formula/reglas_fx.h"
#include "kivmovfrec/empresa.h"
#include "resources/msg.h"
#include "ui/wizard/panel_cuentas_estado.h"

namespace kivmovfrec::ui {

namespace {

std::vector<formula::LineaRegla> LineasDeRegla(const clsRenglonesMF& lineas) {
  std::vector<formula::LineaRegla> r;
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
    const clsRegRenglonMF& l = *lineas.Renglon(i);
    r.push_back(
        {{l.Cuenta(), l.Proyecto(), l.Departamento()}, l.AlDebe(), l.Formula(), l.ImporteMF()});
  }
  return r;
}

}  // namespace

bool PanelCuentas::ValidarRenglones() {
  Estado& e = *e_;
  const clsRenglonesMF& lineas = *e.mf.Renglones();
  bool hay_debe = false;
  bool hay_haber = false;
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i)
    (lineas.Renglon(i)->AlDebe() ? hay_debe : hay_haber) = true;
  if (!hay_debe || !hay_haber) {
    e.Rechazar(msg::kCuentaDebeYHaber, *e.grilla);
    return false;
  }

  // The formula rules, line by line in grid order: the first line that breaks any rule is the
  // one reported, with the first rule it breaks. Each rule reports the first line breaking it,
  // so the smallest line among the rules' reports, in rule order on a tie, is that line.
  const std::vector<formula::LineaRegla> reglas = LineasDeRegla(lineas);
  clsEmpresa empresa;
  empresa.Load(e.empresa, *e.ctx.cn);
  formula::clsFormulaMF formulas(e.ctx.cn,
                                 formula::ContextoFormula::De(empresa, e.mf.MovFrecuente()->ID()));
  std::vector<formula::LineaVisible> visibles;
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
    const clsRegRenglonMF& l = *lineas.Renglon(i);
    visibles.push_back({{l.Cuenta(), l.Proyecto(), l.Departamento()},
                        l.CuentaCodigo(),
                        l.CuentaNombre(),
                        l.ProyectoAbreviacion(),
                        l.DepartamentoAbreviacion()});
  }
  formulas.LineasEnMemoria(std::move(visibles));
  const std::array<formula::ResultadoRegla, 5> fallos = {
      formula::ReglaMismaCuenta(reglas), formula::ReglaReferenciasValidas(reglas, &formulas),
      formula::ReglaDiferenciaSola(reglas), formula::ReglaUnaDiferencia(reglas),
      formula::ReglaReferenciaCruzada(reglas)};
  const formula::FalloRegla* primero = nullptr;
  for (const formula::ResultadoRegla& f : fallos)
    if (f && (!primero || f->linea < primero->linea)) primero = &*f;
  if (!primero) return true;
  e.grilla->Fila(primero->linea);
  e.Rechazar(primero->mensaje, *e.grilla);
  return false;
}

bool PanelCuentas::ValidarTotales(bool agendado, int16_t tipo_importe) {
  Estado& e = *e_;
  const std::vector<formula::LineaRegla> reglas = LineasDeRegla(*e.mf.Renglones());
  bool con_formula = false;
  for (const formula::LineaRegla& l : reglas) con_formula = con_formula || !l.formula.empty();
  if (!con_formula && formula::ReglaSumasIguales(reglas)) {
    e.Rechazar(msg::kSumatoriaNoCoincide, *e.grilla);
    return false;
  }
  if (agendado && tipo_importe != kTipoImporteEstimado) {
    for (size_t i = 0; i < reglas.size(); ++i) {
      if (reglas[i].formula.empty() && reglas[i].importe == 0) {
        e.grilla->Fila(static_cast<int>(i));
        e.Rechazar(msg::kCuentasImporteCero, *e.grilla);
        return false;
      }
    }
  }
  return true;
}

bool PanelCuentas::FormulasEnLaMismaColumna() const {
  return !formula::ReglaDiferenciaEImporteMismaColumna(LineasDeRegla(*e_->mf.Renglones()));
}

}  // namespace kivmovfrec::ui
