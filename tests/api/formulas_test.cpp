// The façade's formula members: the context they prepare (calculation date text, accounting
// currency), what they report on failure, and in-place recalculation.
#include <string>

#include "fachada_fixture.h"

namespace kivmovfrec::testing {
namespace {

class Formulas : public Fachada {};

// The date marker text of a movement without schedule is written back; the company's
// accounting currency is copied into the context; a date already in the current movement is
// the calculation date.
TEST_P(Formulas, MovementWithoutDueDateIsComputedAsOfTodayAndKeepsTheMarkerText) {
  EXPECT_EQ(mf.Contexto().parametros.moneda_contabilidad, 0);
  ASSERT_TRUE(mf.SetCalculoFormulasMF(18, true)) << mf.UltimaTrazaFx().error;
  EXPECT_EQ(mf.Contexto().parametros.moneda_contabilidad, 1);
  EXPECT_EQ(mf.EstructuraMovFrec()->Recurrencia()->FechaProxima(), "01/01/1958");
  EXPECT_EQ(mf.UltimaTrazaFx().fecha, kHoy);
  const auto& r = *mf.EstructuraMovFrec()->Renglones();
  EXPECT_DOUBLE_EQ(r.Renglon(2)->ImporteMF(), 15000);  // half of line 1
  EXPECT_DOUBLE_EQ(r.Renglon(3)->ImporteMF(), 45000);  // the difference
  EXPECT_TRUE(Mensajes().empty());

  // With FechaHoyCalculoFx the text is today's date.
  mf.CleanEstructura();
  mf.FechaHoyCalculoFx(true);
  ASSERT_TRUE(mf.SetCalculoFormulasMF(18, true));
  EXPECT_EQ(mf.EstructuraMovFrec()->Recurrencia()->FechaProxima(), "10/11/2026");

  mf.EstructuraMovFrec()->Recurrencia()->FechaProxima("20/11/2026");
  ASSERT_TRUE(mf.SetCalculoFormulasMF(27, true)) << mf.UltimaTrazaFx().error;
  EXPECT_EQ(mf.UltimaTrazaFx().fecha, suite::SerialOf(2026, 11, 20));
}

TEST_P(Formulas, FailuresAreReportedWithTheirOwnTexts) {
  // Movement 26 needs a document of movement 25 from the last two minutes: there is none.
  EXPECT_FALSE(mf.SetCalculoFormulasMF(26, true));
  ASSERT_EQ(Mensajes().size(), 1u);
  EXPECT_EQ(Mensajes()[0].request.text, "Fórmula sin resultado");
  EXPECT_EQ(Mensajes()[0].request.icon, MsgIcon::Exclamation);
  EXPECT_FALSE(mf.UltimaTrazaFx().lineas[0].ok);

  clsRenglonesMF lineas;
  for (bool debe : {true, true, false, false}) {
    auto r = std::make_shared<clsRegRenglonMF>();
    r->Cuenta(101);
    r->AlDebe(debe);
    r->Formula("1");
    lineas.AddRenglon(r);
  }
  bool editable = false;
  double importe = 0;
  EXPECT_FALSE(mf.GetValueUnaPata(lineas, 1, 1, editable, importe));
  ASSERT_EQ(Mensajes().size(), 2u);
  EXPECT_EQ(Mensajes()[1].request.text, "Formula sin resultado");

  lineas.Renglon(1)->Formula("[1:101;0;0]");  // refers to its own line
  EXPECT_FALSE(mf.RecalcularFormulasMF(lineas, 1, true));
  EXPECT_EQ(Mensajes().back().request.text, "Fórmula sin resultado");
}

TEST_P(Formulas, RecalculationUpdatesTheLinesInPlaceAndAsksTheRate) {
  ASSERT_TRUE(mf.LoadMF(7));
  auto lineas = mf.EstructuraMovFrec()->Renglones();
  lineas->Renglon(1)->Formula("[12:]+100");  // [pIDMov] is the current movement: no schedule
  EXPECT_FALSE(mf.RecalcularFormulasMF(*lineas, 2, true));
  lineas->Renglon(1)->Formula("100");
  sv.input->Answer(1400.0);
  ASSERT_TRUE(mf.RecalcularFormulasMF(*lineas, 2, false)) << mf.UltimaTrazaFx().error;
  ASSERT_EQ(sv.input->asked().size(), 1u);
  EXPECT_EQ(sv.input->asked()[0].prompt, "kivcalculator:Tasa de cambio para U$S");
  EXPECT_DOUBLE_EQ(lineas->Renglon(1)->ValorTC(), 1400);     // asked
  EXPECT_DOUBLE_EQ(lineas->Renglon(2)->ValorTC(), 1425.75);  // its fixed rate stays
  EXPECT_DOUBLE_EQ(lineas->Renglon(1)->ImporteCta(), 140000);
  EXPECT_DOUBLE_EQ(lineas->Renglon(2)->ImporteMF(), 82.64);  // 100 / 1.21
  EXPECT_DOUBLE_EQ(lineas->Renglon(3)->ImporteMF(), 17.36);
}

KMF_INSTANTIATE_ENGINES(Formulas);

}  // namespace
}  // namespace kivmovfrec::testing
