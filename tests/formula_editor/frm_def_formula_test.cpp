// The formula editor played by step scripts over the demo company: movement 2 ("Liquidación de
// sueldos") has the lines 141;0;1 (5.1.01 Sueldos y jornales ADM), 142;0;1, 113 and 114.
#include <gtest/gtest.h>

#include "kivmovfrec/guion.h"
#include "platform/controls/memoria.h"
#include "storage/consulta_lookup.h"
#include "support/demo_engine.h"
#include "ui/formula_editor/frm_def_formula.h"

namespace kivmovfrec::ui {
namespace {

using testing::DemoEngineTest;

struct Corrida {
  std::optional<std::string> formula;
  InformeGuion informe;
};

class EditorFormulas : public DemoEngineTest {
 protected:
  void SetUpDatabase() override {
    DemoEngineTest::SetUpDatabase();
    ASSERT_TRUE(mf.Load(*cn, 2));
  }

  // Plays `guion` on the editor of line `linea` of movement 2 showing `formula`.
  Corrida Correr(const char* guion, int linea, const std::string& formula, bool leyenda = false) {
    auto g = GuionDialogos::Leer(guion);
    ContextoMF ctx;
    ctx.cn = cn;
    g->Instalar(ctx.servicios);
    Corrida c;
    c.formula = frmDefFormula(ctx, mf, linea, leyenda).Mostrar(formula);
    c.informe = g->Informe();
    return c;
  }

  // The same, played by `jugar` on in-memory forms (to read what the dialog shows).
  std::optional<std::string> Jugar(std::function<void(controles::memoria::Formulario&)> jugar,
                                   bool leyenda) {
    ContextoMF ctx;
    ctx.cn = cn;
    ctx.servicios.formularios = std::make_shared<controles::memoria::Fabrica>(std::move(jugar));
    return frmDefFormula(ctx, mf, 0, leyenda).Mostrar("");
  }

  clsMFTipo mf;
};

std::vector<int> Numeros(const InformeGuion& i) {
  std::vector<int> out;
  for (const MensajeGuion& m : i.mensajes) out.push_back(m.numero);
  return out;
}

// Top level: 1 Cuenta Ingresada, 2 Pedir valor, 3 Cotizaciones o Índices, 4 Saldo de una
// Cuenta, 5 Diferencia, 6 Importe total, 7 and 8 the movement groups, 9 Ocurrencia.
TEST_P(EditorFormulas, NavigatesGroupsBackAndHomeAndBuildsABalanceOfAChosenAccount) {
  const Corrida c = Correr(R"([
      {"seleccionar": "vsGrid", "fila": 4}, {"pulsar": "bfAgregar"},
      {"pulsar": "imgBack"},
      {"seleccionar": "vsGrid", "fila": 3}, {"pulsar": "bfAgregar"},
      {"seleccionar": "vsGrid", "fila": 6}, {"pulsar": "imgHome"},
      {"seleccionar": "vsGrid", "fila": 4}, {"pulsar": "bfAgregar"},
      {"seleccionar": "vsGrid", "fila": 1}, {"pulsar": "bfAgregar"},
      {"seleccionar": "vsLista", "fila": 5, "en": "frmElegirDato"},
      {"pulsar": "bfFinish", "en": "frmElegirDato"},
      {"pulsar": "Ayuda"}, {"pulsar": "bfFinish"}])",
                           0, "");
  EXPECT_EQ(c.informe.error, "");
  // Accounts by name: Alquileres ganados, Alquileres pagados, Banco Galicia, Banco Nación, Caja.
  EXPECT_EQ(c.formula, "[5:101]");
  EXPECT_EQ(c.informe.ayuda, std::vector<int>{306});

  // At the top there is nowhere to go back to.
  EXPECT_NE(Correr(R"([{"pulsar": "imgBack"}])", 0, "").informe.error, "");
}

TEST_P(EditorFormulas, TheAccountOfALineIsChosenAmongTheOtherLinesAndNeverItsOwn) {
  // Editing line 2 (142): the choice offers 141;0;1, 113 and 114, appended after "2*".
  const Corrida otra = Correr(R"([
      {"pulsar": "bfAgregar"}, {"pulsar": "bfFinish", "en": "frmElegirDato"},
      {"pulsar": "bfFinish"}])",
                              1, "2*");
  EXPECT_EQ(otra.informe.error, "");
  EXPECT_EQ(otra.formula, "2*[1:141;0;1]");

  // Line 1's own account typed back into its formula is refused and the dialog stays open.
  const Corrida propia =
      Correr(R"([{"pulsar": "bfFinish"}, {"pulsar": "bfCancel"}])", 0, "[1:141;0;1]*2");
  EXPECT_EQ(propia.informe.error, "");
  EXPECT_EQ(Numeros(propia.informe), std::vector<int>{817});
  EXPECT_FALSE(propia.formula);
}

// "Asiento Frecuente" (group 7, row 1): active unscheduled entries of the company other than
// movement 2, by name: 5, 17, 26, 18, 16; then the stored lines of the one chosen that have an
// account: movement 18 holds 145;1;1, 145;2;2 and 102;0;0 (and here a line without account).
TEST_P(EditorFormulas, TheLineOfAnotherMovementIsChosenAfterTheMovement) {
  cn->Execute(
      "Insert Into genRenglonMovFrecuentes (RMFMovimiento, RMFCuenta, RMFIDProyecto, "
      "RMFIDDepartamento, RMFOrden, RMFAlDebe, RMFValor, RMFValorMonMov) "
      "Values (18, 0, 0, 0, 4, 0, 0, 0)");
  const auto guion = [](int linea) {
    return std::string(R"([
      {"seleccionar": "vsGrid", "fila": 7}, {"pulsar": "bfAgregar"}, {"pulsar": "bfAgregar"},
      {"seleccionar": "vsLista", "fila": 4}, {"pulsar": "bfFinish"},
      {"seleccionar": "vsLista", "fila": )") +
           std::to_string(linea) + R"(}, {"pulsar": "bfFinish"}, {"pulsar": "bfFinish"}])";
  };
  const Corrida c = Correr(guion(2).c_str(), 0, "");
  EXPECT_EQ(c.informe.error, "");
  EXPECT_EQ(c.formula, "[2:18;145;2;2]");
  EXPECT_NE(Correr(guion(4).c_str(), 0, "").informe.error, "") << "the line without account";
}

TEST_P(EditorFormulas, PedirValorTakesItsCaptionFromATextPrompt) {
  struct Caso {
    const char* respuesta;
    const char* formula;
    std::vector<int> mensajes;  // the prompt is -1
  };
  const Caso casos[] = {
      {"Horas extra", "[5:131]*-1+[11:Horas extra]", {-1}},
      {"cancelar", "[5:131]*-1+", {-1}},  // cancelled: the formula as it was
      {"a;b", "[5:131]*-1+", {-1, 818}},  // would split the argument: refused
  };
  for (const Caso& k : casos) {
    const std::string guion = std::string(R"([{"seleccionar": "vsGrid", "fila": 2},
        {"pulsar": "bfAgregar"}, {"responder": ")") +
                              k.respuesta + R"("}, {"pulsar": "bfFinish"}])";
    const Corrida c = Correr(guion.c_str(), 0, "[5:131]*-1+");
    EXPECT_EQ(c.informe.error, "") << k.respuesta;
    EXPECT_EQ(c.formula, k.formula) << k.respuesta;
    EXPECT_EQ(Numeros(c.informe), k.mensajes) << k.respuesta;
    ASSERT_FALSE(c.informe.mensajes.empty());
    EXPECT_EQ(c.informe.mensajes[0].texto, "Ingrese una característica para pedir el dato.");
    EXPECT_EQ(c.informe.mensajes[0].titulo, "Pedir dato");
  }
}

TEST_P(EditorFormulas, AnUnreadableTextIsRefusedWithThePositionAndTheDialogStaysOpen) {
  const Corrida c = Correr(R"js([
      {"escribir": "tFormula", "texto": "2*Saldo al día de hoy(\"No existe\")"},
      {"pulsar": "bfFinish"}, {"pulsar": "bfCancel"}])js",
                           0, "");
  EXPECT_EQ(c.informe.error, "");
  EXPECT_EQ(Numeros(c.informe), std::vector<int>{689});
  EXPECT_FALSE(c.formula);
}

TEST_P(EditorFormulas, ACancelledChoiceLeavesTheFormulaAsItWas) {
  const Corrida c = Correr(R"([
      {"seleccionar": "vsGrid", "fila": 4}, {"pulsar": "bfAgregar"}, {"pulsar": "bfAgregar"},
      {"pulsar": "bfCancel", "en": "frmElegirDato"}, {"pulsar": "bfFinish"}])",
                           2, "[1:141;0;1]*0.83");
  EXPECT_EQ(c.informe.error, "");
  EXPECT_EQ(c.formula, "[1:141;0;1]*0.83");
}

TEST(MarcadoresFx, ContextPlaceholdersAreReplacedInAnyLetterCase) {
  const storage::ContextoLookup ctx{7, 42, 9, false};
  EXPECT_EQ(storage::ReemplazarContexto("[query]Select 1 Where A = [PEMP] And B = [pidmov] And "
                                        "C = [pPreID] And D = [PeMp][/query]",
                                        ctx),
            "[query]Select 1 Where A = 7 And B = 42 And C = 9 And D = 7[/query]");
}

TEST_P(EditorFormulas, ADefinedFormulaIsShownWithTheMovementFilledIn) {
  std::string ayuda;
  Jugar(
      [&](controles::memoria::Formulario& f) {
        f.SeleccionarFila("vsGrid", 9);  // Ocurrencia
        ayuda = f.Buscar("lAyuda")->Caption();
        f.Pulsar("bfCancel");
      },
      false);
  EXPECT_NE(ayuda.find("Número de veces que sucedió la ocurrencia."), std::string::npos);
  EXPECT_NE(ayuda.find("Where MFrID = 2 And"), std::string::npos) << ayuda;
}

TEST_P(EditorFormulas, LegendModeListsTheMacrosWithOneAmpersandBack) {
  std::string celda, ejemplo, nivel;
  int filas = 0;
  const auto texto = Jugar(
      [&](controles::memoria::Formulario& f) {
        f.Pulsar("bfAgregar");  // the one group, "Fórmulas de leyendas"
        auto& g = dynamic_cast<controles::IGrilla&>(*f.Buscar("vsGrid"));
        filas = g.Filas();
        celda = g.Celda(0, 0);
        ejemplo = g.Celda(3, 2);
        nivel = f.Buscar("lNivel")->Caption();
        f.Escribir("tFormula", "Sueldos de ");
        f.SeleccionarFila("vsGrid", 4);
        f.Pulsar("bfAgregar");
        f.Pulsar("bfHelp");
        f.Pulsar("bfFinish");
      },
      true);
  EXPECT_EQ(filas, 15);  // all of them, also the two the interpreter leaves as typed
  EXPECT_EQ(celda, "&&[FechaC]");
  EXPECT_EQ(controles::memoria::CaptionVisible(celda), "&[FechaC]");
  EXPECT_EQ(ejemplo.rfind("Ejemplo: Martes", 0), 0u) << ejemplo;
  EXPECT_EQ(nivel, "Fórmulas de leyendas");
  EXPECT_EQ(texto, "Sueldos de &[FDia]");

  const Corrida ayuda = Correr(R"([{"pulsar": "bfHelp"}, {"pulsar": "bfCancel"}])", -1, "x", true);
  EXPECT_EQ(ayuda.informe.ayuda, std::vector<int>{305});
  EXPECT_FALSE(ayuda.formula);
}

KMF_INSTANTIATE_ENGINES(EditorFormulas);

}  // namespace
}  // namespace kivmovfrec::ui
