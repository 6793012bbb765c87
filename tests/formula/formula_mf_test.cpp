// Stored and display forms of formulas over the demo company.
#include <gtest/gtest.h>

#include <string>

#include "formula/formula_mf.h"
#include "formula_db.h"

namespace kivmovfrec::formula {
namespace {

using testing::FormulaDemo;

class FormulaMF : public testing::DemoEngineTest {};

TEST_P(FormulaMF, TextOutsideCatalogueReferencesIsLeftAsItIs) {
  auto f = FormulaDemo(cn, 2);
  EXPECT_EQ(f.AVisible("[99:5]+[ImpMov]+[15:]"), "[99:5]+[ImpMov]+[15:]");
  for (const std::string texto :
       {"",
        "[query]Select Count(*) From cceCuentas Where CueID = [5:101][/query]+[codescript]1+[4:"
        "1][/codescript]"}) {
    EXPECT_EQ(f.AVisible(texto), texto);
    EXPECT_EQ(f.AGuardada(texto), texto);
  }
}

TEST_P(FormulaMF, AccountsWithoutCodesWhenTheCompanyDoesNotShowThem) {
  auto f = FormulaDemo(cn, 2, /*codigos=*/false);
  EXPECT_EQ(f.AVisible("[3:101]"), "Saldo al día anterior(\"Caja\")");
  EXPECT_EQ(f.AGuardada("Saldo al día anterior(\"caja\")"), "[3:101]");
}

// The demo's formulas, every kind of reference: shown with captions and names (no stored key
// left), and read back to the same stored text.
TEST_P(FormulaMF, DemoFormulasShowAndReadBack) {
  struct Caso {
    int mov;
    const char* guardada;
    const char* visible = nullptr;  // when checked
  };
  const Caso casos[] = {
      {1, "450000*(1+0.02*([12:]-1))", "450000*(1+0.02*(Ocurrencia()-1))"},
      {1, "[10:]", "Diferencia()"},
      {2, "[11:Sueldos brutos del mes]", "Pedir valor(\"Sueldos brutos del mes\")"},
      {2, "[1:141;0;1]*0.24", "Cuenta Ingresada(\"5.1.01 Sueldos y jornales ADM\")*0.24"},
      {3, "[4:112]*-1", "Saldo al mes anterior(\"2.1.02 IVA Débito Fiscal\")*-1"},
      {4, "1000*([13:1;2]-[7:1;2])",
       "1000*(Cotización del día(\"Oficial\"; \"Dólar estadounidense (U$S)\")-Cotización al "
       "mes anterior(\"Oficial\"; \"Dólar estadounidense (U$S)\"))"},
      {5, "2000000*([6:5]/[22:5]-1)"},
      {7, "[14:]", "Importe total()"},
      {7, "[1:104;0;2]-[1:131;0;2]"},
      {17, "[2:16;141;0;0]*0.24",
       "Asiento Frecuente(\"Provisión de aguinaldo\"; \"5.1.01 Sueldos y jornales\")*0.24"},
      {18, "[1:145;1;1]*0.5", "Cuenta Ingresada(\"5.1.05 Servicios y honorarios ROS ADM\")*0.5"},
      {19, "[5:131]*-1"},
      {26, "[19:25;114;0;0]*0.001",
       "Asiento agendado(\"Pago de cargas sociales\"; \"2.1.04 Cargas sociales a pagar\")*0.001"},
      {3, "[8:2;3]+[21:5]"},
      {2, "[9:24;145;0;0]+[20:6;105;0;0]"},
  };
  for (const Caso& c : casos) {
    auto f = FormulaDemo(cn, c.mov);
    std::string visible = f.AVisible(c.guardada);
    EXPECT_EQ(visible.find('['), std::string::npos) << visible;
    if (c.visible) {
      EXPECT_EQ(visible, c.visible);
    }
    LecturaFormula r = f.LeerVisible(visible);
    EXPECT_TRUE(r.ok) << visible << " -> " << r.error << " at " << r.posicion;
    EXPECT_EQ(r.formula, c.guardada) << visible;
  }
  EXPECT_EQ(FormulaDemo(cn, 2).AVisible("[11:]"), "Pedir valor()");
}

TEST_P(FormulaMF, ReadingBackIgnoresCaptionCaseAndAcceptsKeysAndDisplayTexts) {
  auto f = FormulaDemo(cn, 4);
  EXPECT_EQ(f.AGuardada("COTIZACIÓN DEL DÍA(\"Oficial\"; \"U$S\")"), "[13:1;2]");
  EXPECT_EQ(f.AGuardada("cotización del día ( \"oficial\" ;\"dólar estadounidense (u$s)\" )"),
            "[13:1;2]");
  EXPECT_EQ(f.AGuardada("saldo al día de hoy(\"1.1.01 Caja\")*2"), "[5:101]*2");
  EXPECT_EQ(f.AGuardada("diferencia()"), "[10:]");
  EXPECT_EQ(f.AGuardada("Pedir valor(\"Un \"\"dato\"\"\")"), "[11:Un \"dato\"]");
  EXPECT_EQ(f.AVisible("[11:Un \"dato\"]"), "Pedir valor(\"Un \"\"dato\"\"\")");
}

TEST_P(FormulaMF, FailuresGiveThePositionWhereReadingStopped) {
  auto f = FormulaDemo(cn, 2);
  // Positions count characters, not bytes ("í" and "ó" are two bytes each).
  for (const auto& [texto, error] : std::initializer_list<std::pair<const char*, const char*>>{
           {"1+[99:5]", ":e:3"},  // unknown id left as typed: fails at its bracket
           {"Saldo al día de hoy(\"No existe\")", ":e:22"},
           {"2*Saldo al día de hoy", ":e:22"},
           {"Diferencia(\"x\"", ":e:15"},
           {"Cotización del día(\"Oficial\")", ":e:29"},
           {"Saldo al día de hoy(\"1.1.01 Caja\"; \"1.1.01 Caja\")", ":e:37"},
           {"Foo(\"x\")", ":e:5"},
           {"Cotización del día(\"Índices\"; \"U$S\")", ":e:21"},  // the index type
           {"Pedir valor(\"a;b\")", ":e:14"},  // would break the stored reference
       }) {
    EXPECT_EQ(f.AGuardada(texto), error) << texto;
  }
  LecturaFormula r = f.LeerVisible("Saldo al día de hoy(\"Caj'a\")");
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.posicion, 22);
  EXPECT_NE(r.error.find("comillas simples"), std::string::npos);
}

TEST_P(FormulaMF, LinesOfTheMovementBeingEdited) {
  // Line 141 / department 1 is on movement 2, not on movement 3.
  auto f = FormulaDemo(cn, 3);
  EXPECT_EQ(f.AVisible("[1:141;0;1]"), "Cuenta Ingresada(\"141;0;1\")");
  EXPECT_EQ(f.AGuardada("Cuenta Ingresada(\"5.1.01 Sueldos y jornales ADM\")"), ":e:19");
  // A new movement: the editor's lines are used.
  auto nueva = FormulaDemo(cn, 0);
  nueva.LineasEnMemoria({{{101, 0, 0}, "1.1.01", "Caja", "", ""},
                         {{145, 2, 3}, "5.1.05", "Servicios y honorarios", "COR", "PRD"}});
  EXPECT_EQ(nueva.AVisible("[1:145;2;3]/2"),
            "Cuenta Ingresada(\"5.1.05 Servicios y honorarios COR PRD\")/2");
  EXPECT_EQ(nueva.AGuardada("Cuenta Ingresada(\"1.1.01 caja\")"), "[1:101;0;0]");
  EXPECT_EQ(nueva.AGuardada("Cuenta Ingresada(\"5.1.05 Servicios y honorarios COR PRD\")"),
            "[1:145;2;3]");
}

TEST_P(FormulaMF, AnotherMovementsLineIsLookedForInThatMovement) {
  auto f = FormulaDemo(cn, 17);
  // 113 is a line of 16, 142 is not.
  EXPECT_EQ(
      f.AGuardada("Asiento Frecuente(\"Provisión de aguinaldo\"; \"2.1.03 Sueldos a pagar\")"),
      "[2:16;113;0;0]");
  EXPECT_EQ(
      f.AGuardada("Asiento Frecuente(\"Provisión de aguinaldo\"; \"5.1.02 Cargas sociales\")"),
      ":e:46");
  // Movement 17 is the one edited: it is never offered, so its own name does not resolve.
  EXPECT_EQ(f.AGuardada("Asiento Frecuente(\"Cargas sociales del aguinaldo\"; \"x\")"), ":e:20");
  // A movement of company 2, or in the bin, is not offered either.
  EXPECT_EQ(f.AGuardada("Asiento Frecuente(\"Honorarios mensuales a cobrar\"; \"x\")"), ":e:20");
  EXPECT_EQ(f.AGuardada("Asiento Frecuente(\"Asiento de prueba descartado\"; \"x\")"), ":e:20");
}

TEST(FormulaTexto, ReferencesToALine) {
  EXPECT_TRUE(ReferenciaLinea("[1:141;0;1]*0.24", {141, 0, 1}));
  EXPECT_TRUE(ReferenciaLinea("2+[1:141;;]", {141, 0, 0}));
  EXPECT_FALSE(ReferenciaLinea("[1:141;0;1]", {141, 0, 0}));
  EXPECT_FALSE(ReferenciaLinea("[2:16;141;0;1]", {141, 0, 1}));
  EXPECT_FALSE(ReferenciaLinea("[query][1:141;0;1][/query]", {141, 0, 1}));
}

TEST_P(FormulaMF, ArgumentChecks) {
  auto f = FormulaDemo(cn, 2);
  EXPECT_TRUE(f.ArgumentosValidos("[1:141;0;1]+[5:101]+[13:1;2]+[10:]+[11:Sueldo]"));
  // A folder, another company's account, the index rate type, 142 without its department 1 on
  // movement 2, a line movement 16 lacks, an unknown id, a key that is not a number.
  for (const char* mala :
       {"[5:100]", "[5:201]", "[13:3;2]", "[1:142;0;0]", "[2:16;142;0;0]", "[99:1]", "[5:x]"}) {
    EXPECT_FALSE(f.ArgumentosValidos(mala)) << mala;
  }
}

TEST(FormulaTexto, WithoutADatabaseArgumentsAreShownAsStored) {
  clsFormulaMF f(nullptr, {1, 2, true});
  EXPECT_EQ(f.AVisible("[5:101]+[10:]"), "Saldo al día de hoy(\"101\")+Diferencia()");
  EXPECT_EQ(f.AGuardada("Saldo al día de hoy(\"101\")"), ":e:22");
}

KMF_INSTANTIATE_ENGINES(FormulaMF);

}  // namespace
}  // namespace kivmovfrec::formula
