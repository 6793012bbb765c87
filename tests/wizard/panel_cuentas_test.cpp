// The wizard's accounts panel played by step scripts on the demo company: lines typed into the
// edit strip, the checks of one row and of all lines, moving lines and choosing formulas.
//
// Demo accounts of company 1 used here: 101 "1.1.01 Caja", 102 "1.1.02 Banco Nación cuenta
// corriente", 103 "1.1.03 Banco Galicia cuenta en dólares" (in dollars, currency 2), 112
// "2.1.02 IVA Débito Fiscal", 131 "4.1.01 Ventas"; 100 "1 Activo" is a folder; 203 "Honorarios
// ganados" belongs to company 2. Currency 1 (pesos) is the accounting currency, "#,##0.00".
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>

#include "kivmovfrec/guion.h"
#include "kivmovfrec/mf_tipo.h"
#include "model/fakes.h"
#include "resources/msg.h"
#include "support/demo_engine.h"
#include "ui/wizard/panel_cuentas.h"

namespace kivmovfrec::ui {
namespace {

using controles::IGrilla;
using controles::ITexto;

class PanelCuentasTest : public testing::DemoEngineTest {
 protected:
  // Plays `guion` on a form holding the panel on panel 1; `probar` runs when the script presses
  // the extra button bfProbar (on no panel), as the wizard would call the panel's checks.
  InformeGuion Correr(std::string_view guion, std::function<void(PanelCuentas&)> probar = {},
                      int16_t tipo = 1) {
    mf.MovFrecuente()->Tipo(static_cast<enuTipoMovFrec>(tipo));
    mf.MovFrecuente()->Empresa(1);
    mf.MovFrecuente()->Nombre("Prueba de cuentas");
    panel.reset();
    form.reset();
    guion_ = GuionDialogos::Leer(guion);
    guion_->Instalar(ctx.servicios);
    ctx.cn = cn;
    form = ctx.servicios.formularios->Crear("frmWMovFrec");
    auto& probar_boton = form->CrearBoton("bfProbar");
    panel = std::make_unique<PanelCuentas>(*form, 1, ctx, mf, tipo, 1,
                                           [this](int linea, const std::string& formula) {
                                             llamadas.emplace_back(linea, formula);
                                             return respuesta_editor;
                                           });
    probar_boton.AlPulsar([this, probar] {
      if (probar) probar(*panel);
    });
    panel->Cargar();
    form->MostrarPanel(1);
    form->MostrarModal();
    return guion_->Informe();
  }

  // A line on account `cuenta` (code "c<cuenta>") in pesos; importe 0 with a formula.
  void Agregar(int32_t cuenta, bool al_debe, double importe, const char* formula = "") {
    auto r = std::make_shared<clsRegRenglonMF>();
    r->Cuenta(cuenta);
    r->CuentaCodigo("c" + std::to_string(cuenta));
    r->Moneda(1);
    r->AlDebe(al_debe);
    r->ImporteMF(importe);
    r->Formula(formula);
    mf.Renglones()->AddRenglon(r);
  }
  void Vaciar() { mf.Renglones(std::make_shared<clsRenglonesMF>()); }

  std::vector<int32_t> Cuentas(const clsMFTipo& m) const {
    std::vector<int32_t> v;
    for (int16_t i = 1; i <= m.Renglones()->QRenglones(); ++i)
      v.push_back(m.Renglones()->Renglon(i)->Cuenta());
    return v;
  }

  // Saves the aggregate and reads it back as another one.
  clsMFTipo GuardadoYLeido() {
    testing::FakeDBFncs dbf;
    dbf.siguiente = 9001;
    const int32_t id = mf.Save(*cn, dbf, 1, {});
    clsMFTipo leido;
    EXPECT_TRUE(leido.Load(*cn, id));
    return leido;
  }

  IGrilla& Grilla() { return static_cast<IGrilla&>(*form->Buscar("vsCuentas")); }
  std::string Texto(const char* control) {
    return static_cast<ITexto&>(*form->Buscar(control)).Text();
  }

  ContextoMF ctx;
  clsMFTipo mf;
  std::vector<std::pair<int, std::string>> llamadas;
  std::optional<std::string> respuesta_editor;
  std::shared_ptr<GuionDialogos> guion_;
  std::unique_ptr<controles::IFormulario> form;
  std::unique_ptr<PanelCuentas> panel;
};

TEST_P(PanelCuentasTest, ThreeTypedLinesLandInGridOrderAndSaveSo) {
  std::optional<bool> renglones, totales;
  const InformeGuion i = Correr(
      R"([
    {"escribir": "tEditCta", "texto": "1.1.01"}, {"escribir": "ocEditD", "texto": "1.500,50"},
    {"pulsar": "bfEditOK"},
    {"escribir": "tEditCta", "texto": "Ventas"}, {"escribir": "ocEditH", "texto": "1000"},
    {"pulsar": "bfEditOK"},
    {"escribir": "tEditCta", "texto": "2.1.02 IVA Débito Fiscal"},
    {"escribir": "ocEditH", "texto": "500,5049"}, {"escribir": "tMemoRenglon", "texto": "IVA"},
    {"pulsar": "bfEditOK"}, {"pulsar": "bfProbar"}])",
      [&](PanelCuentas& p) {
        renglones = p.ValidarRenglones();
        totales = p.ValidarTotales(true, 2);
      });
  EXPECT_EQ(i.error, "");
  EXPECT_TRUE(i.mensajes.empty());
  EXPECT_EQ(renglones, true);
  EXPECT_EQ(totales, true);

  ASSERT_EQ(Cuentas(mf), (std::vector<int32_t>{101, 131, 112}));
  const clsRenglonesMF& l = *mf.Renglones();
  EXPECT_TRUE(l.Renglon(1)->AlDebe());
  EXPECT_FALSE(l.Renglon(2)->AlDebe());
  // The amount takes the currency's two decimals.
  EXPECT_DOUBLE_EQ(l.Renglon(3)->ImporteMF(), 500.50);
  EXPECT_EQ(l.Renglon(3)->Detalle(), "IVA");
  IGrilla& g = Grilla();
  ASSERT_EQ(g.Filas(), 3);
  EXPECT_EQ(g.Celda(0, 0), "1.1.01 Caja");
  EXPECT_EQ(g.Celda(0, 1), "1.500,50");
  EXPECT_EQ(g.Celda(2, 2), "500,50");
  EXPECT_EQ(form->Buscar("picCuentas")->Caption(), "Cuentas del asiento");
  EXPECT_EQ(Texto("tEditCta"), "") << "the strip is ready for the next line";

  const clsMFTipo leido = GuardadoYLeido();
  EXPECT_EQ(Cuentas(leido), (std::vector<int32_t>{101, 131, 112}));
  EXPECT_EQ(leido.Renglones()->Renglon(3)->Orden(), 3);
}

TEST_P(PanelCuentasTest, EachRowRefusalNamesItsFieldAndKeepsTheStrip) {
  struct Caso {
    const char* cuenta;
    const char* debe;
    const char* haber;
    int mensaje;
    const char* foco;
  };
  const Caso casos[] = {
      {"", "", "", msg::kIngreseValorDebeHaber, "ocEditD"},  // before the missing account
      {"1.1.01", "0", "", msg::kIngreseValorDebeHaber, "ocEditD"},
      {"1.1.01", "5", "5", msg::kIngreseValorDebeHaber, "ocEditH"},
      {"1.1.01", "1.5", "", msg::kCampoNoValido, "ocEditD"},  // a point is no decimal point
      // Dollars on a movement in pesos: a rate is asked for before the account is checked.
      {"1.1.03", "10", "", msg::kSeleccioneTipoCambio, "cfTipoCambio"},
      {"", "", "10", msg::kIngreseCuenta, "tEditCta"},
      {"Activo", "", "10", msg::kIngreseCuenta, "tEditCta"},              // a folder
      {"Honorarios ganados", "", "10", msg::kIngreseCuenta, "tEditCta"},  // company 2's
      {"Caja", "", "10", msg::kCuentaYaIngresada, "tEditCta"},            // the line already there
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(std::string(c.cuenta) + "|" + c.debe + "|" + c.haber);
    Vaciar();
    Agregar(101, true, 10);
    const std::string guion =
        std::string(R"([{"escribir": "tEditCta", "texto": ")") + c.cuenta +
        R"("}, {"escribir": "ocEditD", "texto": ")" + c.debe +
        R"("}, {"escribir": "ocEditH", "texto": ")" + c.haber +
        R"("}, {"escribir": "tValorTC", "texto": "x"}, {"pulsar": "bfEditOK"}])";
    const InformeGuion i = Correr(guion);
    EXPECT_EQ(i.error, "");
    ASSERT_EQ(i.mensajes.size(), 1u);
    EXPECT_EQ(i.mensajes[0].numero, c.mensaje);
    EXPECT_EQ(i.mensajes[0].icono, "exclamacion");
    EXPECT_EQ(i.mensajes[0].titulo, "Asistente de Asientos");
    EXPECT_EQ(i.foco, c.foco);
    const std::string campo = i.foco == "tEditCta"  ? c.cuenta
                              : i.foco == "ocEditD" ? c.debe
                              : i.foco == "ocEditH" ? c.haber
                                                    : "";
    EXPECT_EQ(i.seleccion, campo) << "the field at fault shows its text selected";
    EXPECT_EQ(mf.Renglones()->QRenglones(), 1);
    EXPECT_EQ(Texto("tEditCta"), c.cuenta) << "the strip keeps what was typed";
  }
}

TEST_P(PanelCuentasTest, ALineInAnotherCurrencyTakesATypedRateOrARateType) {
  Correr(R"([
    {"escribir": "tEditCta", "texto": "1.1.03"}, {"escribir": "ocEditD", "texto": "2.851,50"},
    {"escribir": "tValorTC", "texto": "1.425,75"}, {"pulsar": "bfEditOK"},
    {"escribir": "tEditCta", "texto": "1.1.01"}, {"escribir": "ocEditH", "texto": "2.851,50"},
    {"elegir": "cfTipoCambio", "opcion": "Oficial"}, {"pulsar": "bfEditOK"}])");
  ASSERT_EQ(mf.Renglones()->QRenglones(), 2);
  const clsRegRenglonMF& dolares = *mf.Renglones()->Renglon(1);
  EXPECT_DOUBLE_EQ(dolares.ValorTC(), 1425.75);
  EXPECT_DOUBLE_EQ(dolares.ImporteCta(), 2.0) << "2.851,50 pesos at 1.425,75 a dollar";
  EXPECT_EQ(Grilla().Celda(0, 3), "1.425,7500");
  EXPECT_EQ(mf.Renglones()->Renglon(2)->TipoCambio(), 0) << "a peso line keeps no rate";

  Vaciar();
  Correr(R"([
    {"escribir": "tEditCta", "texto": "1.1.03"}, {"escribir": "ocEditH", "texto": "100"},
    {"elegir": "cfTipoCambio", "opcion": "Bancario"}, {"pulsar": "bfEditOK"}])");
  ASSERT_EQ(mf.Renglones()->QRenglones(), 1);
  EXPECT_EQ(mf.Renglones()->Renglon(1)->TipoCambio(), 2);
  EXPECT_EQ(Grilla().Celda(0, 3), "Bancario");
}

TEST_P(PanelCuentasTest, EmptyingAnEditedRowAsksBeforeRemovingIt) {
  Agregar(101, true, 10);
  Agregar(131, false, 10);
  const std::string vaciar = R"([{"seleccionar": "vsCuentas", "fila": 2},
    {"escribir": "tEditCta", "texto": ""}, {"escribir": "ocEditH", "texto": ""},
    {"pulsar": "bfEditOK"}, )";
  InformeGuion i = Correr(vaciar + R"({"responder": "no"}])");
  ASSERT_EQ(i.mensajes.size(), 1u);
  EXPECT_EQ(i.mensajes[0].numero, msg::kEliminarFilaEditada);
  EXPECT_EQ(i.foco, "tEditCta");
  EXPECT_EQ(Cuentas(mf), (std::vector<int32_t>{101, 131}));

  Correr(vaciar + R"({"responder": "si"}])");
  EXPECT_EQ(Cuentas(mf), (std::vector<int32_t>{101}));
  EXPECT_EQ(Grilla().Filas(), 1);
  EXPECT_EQ(Texto("tEditCta"), "") << "the strip held the removed line";

  // An edited row keeps its account without a lookup (c101 is no code of the demo).
  Correr(R"([{"seleccionar": "vsCuentas", "fila": 1}, {"escribir": "ocEditD", "texto": "77"},
             {"pulsar": "bfEditOK"}])");
  ASSERT_EQ(Cuentas(mf), (std::vector<int32_t>{101}));
  EXPECT_EQ(Grilla().Celda(0, 1), "77,00");
}

TEST_P(PanelCuentasTest, MovingAndRemovingLinesChangesTheSavedOrder) {
  Agregar(101, true, 30);
  Agregar(102, true, 20);
  Agregar(131, false, 50);
  const InformeGuion i = Correr(R"([
    {"seleccionar": "vsCuentas", "fila": 3}, {"pulsar": "MnuGridUp"}, {"pulsar": "MnuGridUp"},
    {"pulsar": "MnuGridUp"},
    {"seleccionar": "vsCuentas", "fila": 2}, {"pulsar": "MnuGridDown"}, {"pulsar": "MnuGridDown"}])");
  EXPECT_EQ(i.error, "");
  EXPECT_EQ(Cuentas(mf), (std::vector<int32_t>{131, 102, 101}));
  EXPECT_EQ(Grilla().Celda(0, 0), "c131");
  EXPECT_EQ(Grilla().Celda(2, 1), "30,00");
  EXPECT_EQ(Cuentas(GuardadoYLeido()), (std::vector<int32_t>{131, 102, 101}));

  Correr(R"([{"seleccionar": "vsCuentas", "fila": 2}, {"pulsar": "MnuGridDel"}])");
  EXPECT_EQ(Grilla().Filas(), 2);
  const clsMFTipo leido = GuardadoYLeido();
  EXPECT_EQ(Cuentas(leido), (std::vector<int32_t>{131, 101}));
  EXPECT_EQ(leido.Renglones()->Renglon(2)->Orden(), 2);
}

TEST_P(PanelCuentasTest, AFormulaIsReplacedOnlyAfterYes) {
  Agregar(101, true, 0, "[11:Monto]");
  respuesta_editor = "[10:]";
  const std::string elegir = R"([{"seleccionar": "vsCuentas", "fila": 1}, {"pulsar": "hlFormula"},
    {"responder": ")";
  InformeGuion i = Correr(elegir + R"(no"}, {"pulsar": "bfEditOK"}])");
  ASSERT_EQ(i.mensajes.size(), 1u);
  EXPECT_EQ(i.mensajes[0].numero, msg::kReemplazarFormula);
  EXPECT_TRUE(llamadas.empty()) << "No keeps the formula without opening the editor";
  EXPECT_EQ(mf.Renglones()->Renglon(1)->Formula(), "[11:Monto]");

  Correr(elegir + R"(si"}, {"pulsar": "bfEditOK"}])");
  ASSERT_EQ(llamadas.size(), 1u);
  EXPECT_EQ(llamadas[0], (std::pair<int, std::string>{0, "[11:Monto]"}));
  EXPECT_EQ(mf.Renglones()->Renglon(1)->Formula(), "[10:]");

  // A new line: no question, and a formula stands for the amount ("0" only picks the side).
  llamadas.clear();
  i = Correr(R"([{"escribir": "tEditCta", "texto": "Ventas"}, {"pulsar": "hlFormula"},
    {"escribir": "ocEditH", "texto": "0"}, {"pulsar": "bfEditOK"}])");
  EXPECT_TRUE(i.mensajes.empty());
  EXPECT_EQ(llamadas, (std::vector<std::pair<int, std::string>>{{1, ""}}));
  ASSERT_EQ(Cuentas(mf), (std::vector<int32_t>{101, 131}));
  EXPECT_EQ(mf.Renglones()->Renglon(2)->Formula(), "[10:]");
  EXPECT_FALSE(mf.Renglones()->Renglon(2)->AlDebe());
}

TEST_P(PanelCuentasTest, AllLinesCheckSelectsTheFirstLineAtFault) {
  struct Linea {
    int32_t cuenta;
    bool al_debe;
    const char* formula;
  };
  struct Caso {
    std::vector<Linea> lineas;
    int mensaje;
    int fila;  // the grid row selected; -1 when no line is at fault
  };
  const Caso casos[] = {
      // Two debit lines: refused before the formula that refers to its own line is looked at.
      {{{101, true, "[1:101;0;0]"}, {102, true, ""}}, msg::kCuentaDebeYHaber, -1},
      {{{101, true, ""}, {131, false, "[1:131;0;0] * 2"}}, msg::kFxMismaCuenta, 1},
      {{{101, true, "[1:999;0;0]"}, {131, false, ""}}, msg::kFxValorNoValido, 0},
      {{{101, true, "[10:]"}, {102, true, ""}, {131, false, "[10:]"}},
       msg::kFxRestoEnVariasCuentas,
       2},
      {{{101, true, "[1:131;0;0]"}, {131, false, "[1:101;0;0]"}}, msg::kFxReferenciaCruzada, 0},
      // Line by line: the first line's difference holding more is reported before the second
      // line's reference to itself, though that rule is tried first on each line.
      {{{101, true, "[10:] + 5"}, {131, false, "[1:131;0;0]"}}, msg::kFxDiferenciaConOtros, 0},
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.mensaje);
    Vaciar();
    for (const Linea& l : c.lineas) Agregar(l.cuenta, l.al_debe, 10, l.formula);
    std::optional<bool> ok;
    const InformeGuion i =
        Correr(R"([{"pulsar": "bfProbar"}])", [&](PanelCuentas& p) { ok = p.ValidarRenglones(); });
    EXPECT_EQ(ok, false);
    ASSERT_EQ(i.mensajes.size(), 1u);
    EXPECT_EQ(i.mensajes[0].numero, c.mensaje);
    EXPECT_EQ(i.foco, "vsCuentas");
    EXPECT_EQ(Grilla().Fila(), c.fila);
  }
}

TEST_P(PanelCuentasTest, TotalsAndZeroAmountsFollowTheAmountType) {
  Agregar(101, true, 100);
  Agregar(131, false, 99.99);
  std::vector<bool> r;
  InformeGuion i = Correr(R"([{"pulsar": "bfProbar"}])",
                          [&](PanelCuentas& p) { r = {p.ValidarTotales(false, 2)}; });
  EXPECT_EQ(r, std::vector<bool>{false});
  ASSERT_EQ(i.mensajes.size(), 1u);
  EXPECT_EQ(i.mensajes[0].numero, msg::kSumatoriaNoCoincide);
  EXPECT_EQ(i.foco, "vsCuentas");

  // Balanced with a zero line: refused only on a scheduled movement that is not estimated.
  Vaciar();
  Agregar(101, true, 100);
  Agregar(131, false, 100);
  Agregar(112, false, 0);
  i = Correr(R"([{"pulsar": "bfProbar"}])", [&](PanelCuentas& p) {
    r = {p.ValidarTotales(false, 2), p.ValidarTotales(true, kTipoImporteEstimado),
         p.ValidarTotales(true, 3)};
  });
  EXPECT_EQ(r, (std::vector<bool>{true, true, false}));
  ASSERT_EQ(i.mensajes.size(), 1u);
  EXPECT_EQ(i.mensajes[0].numero, msg::kCuentasImporteCero);
  EXPECT_EQ(Grilla().Fila(), 2);

  // Formula lines are worked out when the movement runs: no totals, no zero amounts. The
  // difference and the movement total must stand on one side.
  Vaciar();
  Agregar(101, true, 100);
  Agregar(131, false, 0, "[10:]");
  Agregar(112, true, 0, "[14:]");
  i = Correr(R"([{"pulsar": "bfProbar"}])", [&](PanelCuentas& p) {
    r = {p.ValidarTotales(true, 2), p.FormulasEnLaMismaColumna()};
  });
  EXPECT_EQ(r, (std::vector<bool>{true, false}));
  EXPECT_TRUE(i.mensajes.empty());
  mf.Renglones()->Renglon(3)->AlDebe(false);
  EXPECT_TRUE(panel->FormulasEnLaMismaColumna());
}

TEST_P(PanelCuentasTest, AVoucherPanelNamesItsRateListApart) {
  EXPECT_EQ(Correr(R"([{"elegir": "cfTCComp", "opcion": "Oficial"}])", {}, 2).error, "");
  EXPECT_EQ(form->Buscar("picCuentas")->Caption(), "Cuentas del comprobante");
  EXPECT_EQ(form->Buscar("cfTipoCambio"), nullptr) << "the voucher's general panel has one";
}

KMF_INSTANTIATE_ENGINES(PanelCuentasTest);

}  // namespace
}  // namespace kivmovfrec::ui
