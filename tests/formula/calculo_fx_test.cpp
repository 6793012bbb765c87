// The formula evaluator over the demo database: dates, balances, rates and indices, references
// between lines (cycles included), other movements' documents and their two-minute window,
// queries and scripts, the difference line, prompts and currency conversion.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "formula/calculo_fx.h"
#include "formula_db.h"
#include "install/demo_db.h"
#include "platform/suite/clock.h"
#include "platform/suite/scripted.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::testing {
namespace {

using formula::clsCalculoFx;
using suite::SerialOf;
using ::testing::HasSubstr;

// "Today" is 10/11/2026 and the clock stands at 10:00:00.
const Date kHoy = SerialOf(2026, 11, 10);

class Calculo : public DemoEngineTest {
 protected:
  void SetUpDatabase() override {
    DemoEngineTest::SetUpDatabase();
    sv = suite::ScriptedServices::Make(cn, kHoy);
    reloj = std::make_shared<suite::FixedClock>(kHoy, 10.0 / 24);
    ASSERT_TRUE(empresa.Load(1, *cn));
    parametros.moneda_contabilidad = empresa.MonedaContabilidad();
  }

  clsCalculoFx Evaluador() {
    return clsCalculoFx(cn, empresa, {sv.input, reloj, sv.balance}, parametros);
  }

  // Lines given to RecalcularFormulasMF: {account, debit?, formula}.
  struct L {
    int32_t cuenta;
    bool debe;
    std::string formula;
    double importe = 0;
  };
  static clsRenglonesMF Lineas(const std::vector<L>& ls) {
    clsRenglonesMF r;
    for (const L& l : ls) {
      auto x = std::make_shared<clsRegRenglonMF>();
      x->Cuenta(l.cuenta);
      x->AlDebe(l.debe);
      x->Formula(l.formula);
      x->ImporteMF(l.importe);
      x->ImporteCta(l.importe);
      x->Moneda(1);
      r.AddRenglon(x);
    }
    return r;
  }
  static double Mf(const clsRenglonesMF& r, int16_t i) { return r.Renglon(i)->ImporteMF(); }
  static double Cta(const clsRenglonesMF& r, int16_t i) { return r.Renglon(i)->ImporteCta(); }

  void Ejecutar(const std::string& sql) { cn->Execute(sql); }

  // An entry of company 1 on `fecha`, generated from movement `mov` at `modificado` (Null when
  // empty), with one row per {account, debit, credit}.
  void Asiento(int id, const char* fecha, int mov, const std::string& modificado,
               std::initializer_list<std::array<int, 3>> filas) {
    const std::string i = std::to_string(id);
    Ejecutar(
        "Insert Into cceAsientos (AsiID, AsiEmpresa, AsiNumero, AsiFecha, AsiLibro, "
        "AsiEstado, AsiMovFrecuente, AsiFechaModificado) Values (" +
        i + ", 1, " + i + ", '" + fecha + " 00:00:00', 1, 1, " + std::to_string(mov) + ", " +
        (modificado.empty() ? "Null" : "'" + std::string(fecha) + " " + modificado + "'") + ")");
    int orden = 0;
    for (const auto& [cuenta, debe, haber] : filas) {
      Ejecutar(
          "Insert Into cceAsientoCuenta (ACuIDAsiento, ACuOrden, ACuCuenta, ACuProyecto, "
          "ACuDepartamento, ACuImporteMC, ACuDebe, ACuHaber) Values (" +
          i + ", " + std::to_string(++orden) + ", " + std::to_string(cuenta) + ", 0, 0, " +
          std::to_string(debe + haber) + ", " + std::to_string(debe) + ", " +
          std::to_string(haber) + ")");
    }
  }

  suite::ScriptedServices sv;
  std::shared_ptr<suite::FixedClock> reloj;
  clsEmpresa empresa;
  ParametrosBD parametros;
};

TEST_P(Calculo, MarkerDateTakesTheNextDueDateOrTodayAndIsWrittenBack) {
  auto calc = Evaluador();
  clsMFTipo mf;
  // Scheduled movement 4 falls due on 30/11/2026: 1000 × (rate that day − rate at the end of
  // October) = 1000 × (1440 − 1410.25).
  Date fecha = formula::FechaNoIndicada();
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 4, true, fecha)) << calc.Traza().error;
  EXPECT_EQ(fecha, SerialOf(2026, 11, 30));
  EXPECT_DOUBLE_EQ(mf.Renglones()->Renglon(1)->ImporteMF(), 29750);
  EXPECT_DOUBLE_EQ(mf.Renglones()->Renglon(2)->ImporteMF(), 29750);
  const auto& el = calc.Traza().lineas[0].elementos;
  ASSERT_EQ(el.size(), 2u);
  EXPECT_EQ(el[1].fecha, SerialOf(2026, 10, 30));  // the quotation used, not the date asked

  // Unscheduled movement 5: today, from the clock.
  fecha = formula::FechaNoIndicada();
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 5, true, fecha));
  EXPECT_EQ(fecha, kHoy);
  EXPECT_EQ(calc.Traza().fecha, kHoy);

  // A date given is kept.
  fecha = SerialOf(2026, 11, 16);
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 4, true, fecha));
  EXPECT_EQ(fecha, SerialOf(2026, 11, 16));
  EXPECT_DOUBLE_EQ(mf.Renglones()->Renglon(1)->ImporteMF(), 1000 * (1425.75 - 1410.25));

  // A movement of another company reloads the evaluator's company context.
  fecha = formula::FechaNoIndicada();
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 23, true, fecha)) << calc.Traza().error;
  EXPECT_EQ(calc.Funciones().Empresa().ID(), 2);
  EXPECT_EQ(calc.Funciones().Marcadores("[pEmp]/[prmLIB]", 23), "2/2");
  EXPECT_EQ(empresa.ID(), 1);

  // A movement that does not exist fails and says so.
  fecha = formula::FechaNoIndicada();
  EXPECT_FALSE(calc.SetCalculoFormulasMF(mf, 999, true, fecha));
  EXPECT_THAT(calc.Traza().error, HasSubstr("999"));
}

TEST_P(Calculo, BalancesAtTheDayTheDayBeforeAndTheEndOfLastMonth) {
  // Entries of a leap-year February and March on Caja (101).
  Asiento(500, "2024-02-29", 0, "", {{101, 1000, 0}});
  Asiento(501, "2024-03-01", 0, "", {{101, 200, 0}});
  Asiento(502, "2024-03-14", 0, "", {{101, 30, 0}});
  Asiento(503, "2024-03-15", 0, "", {{101, 4, 0}});
  auto calc = Evaluador();
  clsRenglonesMF r =
      Lineas({{141, true, "[4:101]"}, {142, true, "[3:101]"}, {143, true, "[5:101]"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(r, 1, true, SerialOf(2024, 3, 15))) << calc.Traza().error;
  EXPECT_DOUBLE_EQ(Mf(r, 1), 1000);  // at 29/02/2024
  EXPECT_DOUBLE_EQ(Mf(r, 2), 1230);  // at 14/03/2024
  EXPECT_DOUBLE_EQ(Mf(r, 3), 1234);  // at 15/03/2024
}

TEST_P(Calculo, RatesAndIndicesComeFromTheRateService) {
  auto calc = Evaluador();
  // Dollar today / yesterday / end of last month, euro through the dollar, CER index today and
  // at the end of last month.
  clsRenglonesMF r = Lineas({{141, true, "[13:1;2]"},
                             {142, true, "[8:1;2]"},
                             {143, true, "[7:1;2]"},
                             {144, true, "[13:1;3]"},
                             {145, true, "[6:5]"},
                             {146, true, "[22:5]"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(r, 1, true, SerialOf(2026, 11, 30)));
  EXPECT_DOUBLE_EQ(Mf(r, 1), 1440);     // 30/11
  EXPECT_DOUBLE_EQ(Mf(r, 2), 1425.75);  // 29/11 -> the quotation of 16/11
  EXPECT_DOUBLE_EQ(Mf(r, 3), 1410.25);  // 31/10 -> 30/10
  EXPECT_DOUBLE_EQ(Mf(r, 4), 1688.4);   // 1.1725 × 1440, kept at three decimals
  EXPECT_DOUBLE_EQ(Mf(r, 5), 651);
  EXPECT_DOUBLE_EQ(Mf(r, 6), 638.9);  // 638.9012 rounded to the peso's two decimals
  // No quotation at all: the rate service's 1, and the trace says so.
  clsRenglonesMF sin = Lineas({{141, true, "[13:1;2]"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(sin, 1, true, SerialOf(2020, 1, 1)));
  EXPECT_DOUBLE_EQ(Mf(sin, 1), 1);
  EXPECT_THAT(calc.Traza().lineas[0].elementos[0].detalle, HasSubstr("se usa 1"));
}

TEST_P(Calculo, MovementTotalIsAskedOnlyWhenPromptsAreAllowed) {
  auto calc = Evaluador();
  clsMFTipo mf;
  Date fecha = formula::FechaNoIndicada();
  // Movement 7 (in dollars) starts from [ImpMov]: without prompts the total is 0.
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 7, true, fecha));
  EXPECT_TRUE(sv.input->asked().empty());
  for (int16_t i = 1; i <= 3; ++i) EXPECT_DOUBLE_EQ(mf.Renglones()->Renglon(i)->ImporteMF(), 0);

  // With prompts: 1472 through the numeric prompt, and the answer is the total.
  sv.input->Answer(1210.0);
  fecha = formula::FechaNoIndicada();
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 7, false, fecha)) << calc.Traza().error;
  ASSERT_EQ(sv.input->asked().size(), 1u);
  EXPECT_EQ(sv.input->asked()[0].prompt,
            "kivcalculator:Se requiere el importe total del movimiento ya que no se puede "
            "calcular automáticamente.");
  const auto& r = *mf.Renglones();
  EXPECT_DOUBLE_EQ(r.Renglon(1)->ImporteMF(), 1210);
  EXPECT_DOUBLE_EQ(r.Renglon(2)->ImporteMF(), 1000);
  EXPECT_DOUBLE_EQ(r.Renglon(3)->ImporteMF(), 210);
  // Accounts in pesos: line 1 by its rate type (official, 30/10: 1410.25), line 2 by its fixed
  // rate 1425.75, line 3 by the company's voucher rate type (official as well).
  EXPECT_DOUBLE_EQ(r.Renglon(1)->ImporteCta(), 1706402.5);
  EXPECT_DOUBLE_EQ(r.Renglon(2)->ImporteCta(), 1425750);
  EXPECT_DOUBLE_EQ(r.Renglon(3)->ImporteCta(), 296152.5);
  EXPECT_THAT(calc.Traza().lineas[1].conversion, HasSubstr("tasa fija"));

  // Cancelling the prompt fails the movement and leaves its stored amounts alone.
  fecha = formula::FechaNoIndicada();
  EXPECT_FALSE(calc.SetCalculoFormulasMF(mf, 7, false, fecha));
  EXPECT_DOUBLE_EQ(mf.Renglones()->Renglon(1)->ImporteMF(), 0);
}

TEST_P(Calculo, ReferencedLinesAreWorkedOutFirstAndTheDifferenceBalances) {
  auto calc = Evaluador();
  // Line 1 refers to line 2, which has its own formula and a stale stored amount.
  clsRenglonesMF r =
      Lineas({{101, true, "[1:102;0;0]*2"}, {102, true, "10+5", 999}, {131, false, "[10:]"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(r, 1, true, kHoy)) << calc.Traza().error;
  EXPECT_DOUBLE_EQ(Mf(r, 1), 30);
  EXPECT_DOUBLE_EQ(Mf(r, 2), 15);
  EXPECT_DOUBLE_EQ(Mf(r, 3), 45);
  EXPECT_EQ(std::pair(calc.Traza().total_debe, calc.Traza().total_haber), std::pair(45.0, 45.0));

  // Payroll (movement 2): the gross is asked, the other lines refer to it, the last balances.
  clsMFTipo mf;
  sv.input->Answer(1000000.0);
  Date fecha = formula::FechaNoIndicada();
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 2, false, fecha)) << calc.Traza().error;
  ASSERT_EQ(sv.input->asked().size(), 1u);  // asked once although two lines refer to it
  EXPECT_EQ(sv.input->asked()[0].prompt, "kivcalculator:Sueldos brutos del mes");
  EXPECT_EQ(sv.input->asked()[0].caption, "Sueldos brutos del mes");
  const auto& l = *mf.Renglones();
  EXPECT_DOUBLE_EQ(l.Renglon(2)->ImporteMF(), 240000);
  EXPECT_DOUBLE_EQ(l.Renglon(3)->ImporteMF(), 830000);
  EXPECT_DOUBLE_EQ(l.Renglon(4)->ImporteMF(), 410000);  // 1240000 debit − 830000 credit

  // A difference line on the debit side takes credits less debits.
  clsRenglonesMF d =
      Lineas({{101, true, "[10:]"}, {131, false, "100"}, {132, false, "23.45"}, {141, true, "3"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(d, 1, true, kHoy));
  EXPECT_DOUBLE_EQ(Mf(d, 1), 120.45);
}

TEST_P(Calculo, ACycleOfLinesFailsEveryLineOfItWithoutChangingThem) {
  auto calc = Evaluador();
  clsRenglonesMF r = Lineas({{101, true, "[1:102;0;0]+1", 7},
                             {102, true, "[1:104;0;0]+1", 8},
                             {104, false, "[1:101;0;0]+1", 9},
                             {131, false, "5"}});
  EXPECT_FALSE(calc.RecalcularFormulasMF(r, 1, true, kHoy));
  const auto& t = calc.Traza().lineas;
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(t[static_cast<size_t>(i)].ok) << i;
  EXPECT_TRUE(t[3].ok);
  EXPECT_TRUE(std::any_of(t.begin(), t.begin() + 3, [](const auto& l) {
    return l.error.find("circular") != std::string::npos;
  }));
  EXPECT_DOUBLE_EQ(Mf(r, 1), 7);
  EXPECT_DOUBLE_EQ(Mf(r, 4), 0);  // nothing is written when the call fails
}

TEST_P(Calculo, OtherMovementsDocumentCountsOnlyWithinTwoMinutes) {
  auto calc = Evaluador();
  // Movement 26 takes 0.1 % of line 114 of the entry generated from movement 25.
  Asiento(600, "2026-11-10", 25, "09:57:00", {{114, 205000, 0}, {102, 0, 205000}});
  clsMFTipo mf;
  Date fecha = formula::FechaNoIndicada();
  EXPECT_FALSE(calc.SetCalculoFormulasMF(mf, 26, true, fecha));  // three minutes ago
  EXPECT_THAT(calc.Traza().lineas[0].error, HasSubstr("dos minutos"));

  Ejecutar("Update cceAsientos Set AsiFechaModificado = '2026-11-10 09:59:00' Where AsiID = 600");
  fecha = formula::FechaNoIndicada();
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 26, true, fecha)) << calc.Traza().error;
  EXPECT_DOUBLE_EQ(mf.Renglones()->Renglon(1)->ImporteMF(), 205);
  EXPECT_EQ(calc.Traza().lineas[0].elementos[0].documento, 600);

  // A newer document marked −2 (being generated) is the one read.
  Asiento(601, "2026-11-10", -2, "09:59:30", {{114, 1000, 0}});
  fecha = formula::FechaNoIndicada();
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 26, true, fecha));
  EXPECT_DOUBLE_EQ(mf.Renglones()->Renglon(1)->ImporteMF(), 1);
  EXPECT_EQ(calc.Traza().lineas[0].elementos[0].documento, 601);
}

TEST_P(Calculo, AnotherMovementsVoucherLineSumsItsRowsAndTakesNullKeysAsZero) {
  auto calc = Evaluador();
  // Voucher 700 generated from movement 6 a minute ago: line 105 (debit side on movement 6)
  // appears twice, once with its project and department left Null.
  Ejecutar(
      "Insert Into cceComprobantes (ComID, ComEmpresa, ComFecha, ComEstado, ComMovFrecuente, "
      "ComFechaModificacion) Values (700, 1, '2026-11-10 00:00:00', 1, 6, "
      "'2026-11-10 09:59:00')");
  Ejecutar(
      "Insert Into cceComprobanteCuenta (CCuIDComprobante, CCuOrden, CCuIDCuenta, CCuIDProyecto, "
      "CCuIDDepartamento, CCuMoneda, CCuImporteCuenta, CCuDebe, CCuHaber) Values (700, 1, 105, "
      "Null, Null, 1, 21000, 21000, 0), (700, 2, 105, 0, 0, 1, 1000, 0, 1000), (700, 3, 111, 0, "
      "0, 1, 20000, 0, 20000)");
  // An entry of the same movement, newer, is not a voucher and is not read.
  Asiento(610, "2026-11-10", 6, "09:59:30", {{105, 5, 0}});
  clsRenglonesMF r = Lineas({{101, true, "[20:6;105;0;0]*2"}, {131, false, "[10:]"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(r, 1, true, kHoy)) << calc.Traza().lineas[0].error;
  EXPECT_DOUBLE_EQ(Mf(r, 1), 40000);  // (21000 − 1000) × 2
  EXPECT_EQ(calc.Traza().lineas[0].elementos[0].documento, 700);
  // A line the voucher lacks.
  Ejecutar("Delete From cceComprobanteCuenta Where CCuIDCuenta = 105");
  clsRenglonesMF falta = Lineas({{101, true, "[20:6;105;0;0]"}});
  EXPECT_FALSE(calc.RecalcularFormulasMF(falta, 1, true, kHoy));
  EXPECT_THAT(calc.Traza().lineas[0].error, HasSubstr("no tiene la línea"));
}

TEST_P(Calculo, APlainNumberNeverReachesTheScriptHost) {
  auto calc = Evaluador();
  int llamadas = 0;
  calc.Evaluador([&](Connection* c, std::string_view e, bool x) {
    ++llamadas;
    return script::EvaluateScript(c, e, x);
  });
  clsRenglonesMF r = Lineas({{101, true, "12.5"}, {131, false, " 12,5 "}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(r, 1, true, kHoy));
  EXPECT_EQ(llamadas, 0);
  EXPECT_DOUBLE_EQ(Mf(r, 2), 12.5);
  clsRenglonesMF e = Lineas({{101, true, "2*3.25"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(e, 1, true, kHoy));
  EXPECT_EQ(llamadas, 1);
  EXPECT_DOUBLE_EQ(Mf(e, 1), 6.5);
  // Negative values are substituted so that any operator may precede them.
  clsRenglonesMF n = Lineas({{112, true, "[5:112]*-1"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(n, 1, true, kHoy));
  EXPECT_EQ(calc.Traza().lineas[0].expresion, "(-21000)*-1");
  EXPECT_DOUBLE_EQ(Mf(n, 1), 21000);
}

TEST_P(Calculo, QueriesAndScriptsWithTheirPlaceholders) {
  auto calc = Evaluador();
  clsRenglonesMF r =
      Lineas({{101, true, "[query]Select [prmiva] + [pEmp] + [prmMonedaContabilidad][/query]"},
              {102, true,
               "[codescript]rdoCBase.OpenResultset(\"Select Count(*) From genMonedas\")(0) * "
               "[prmLIB][/codescript]"},
              {104, true, "[12:]"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(r, 1, true, kHoy, 1)) << calc.Traza().error;
  EXPECT_DOUBLE_EQ(Mf(r, 1), 23);  // 21 + 1 + 1
  EXPECT_DOUBLE_EQ(Mf(r, 2), 5);
  EXPECT_DOUBLE_EQ(Mf(r, 3), 11);  // occurrences of movement 1
}

// Elements that have no value fail their line and the call; the first failure is the call's.
TEST_P(Calculo, FormulasWithoutAValue) {
  auto calc = Evaluador();
  struct Caso {
    std::vector<L> lineas;
    const char* error;
  };
  const Caso casos[] = {
      {{{141, true, "[5:100]"}}, "carpeta"},
      {{{141, true, "[5:9999]"}}, "no existe la cuenta 9999"},
      {{{101, true, "[1:101;0;0]"}}, "la misma cuenta"},        // its own line
      {{{101, true, "[1:555;0;0]"}}, "no tiene la línea 555"},  // a line the movement does not have
      {{{101, true, "[20:6;145;0;1]"}},
       "el movimiento 6 no tiene la línea (cuenta 145"},  // a line movement 6 does not have
      {{{101, true, "[10:]"}, {131, false, "[10:]"}}, "más de una cuenta"},
      {{{101, true, "[10:]*2"}, {131, false, "5"}}, "no puede incluir otros valores"},
      {{{101, true, "[codescript]1/0[/codescript]"}}, "División por cero"},
      {{{101, true, "[query]Select MonID From genMonedas Where MonID = 77[/query]"}},
       "no devolvió filas"},
      {{{101, true, "[99:1]+1"}}, "no está en el catálogo"},
  };
  for (const Caso& c : casos) {
    clsRenglonesMF r = Lineas(c.lineas);
    EXPECT_FALSE(calc.RecalcularFormulasMF(r, 1, true, kHoy)) << c.lineas[0].formula;
    EXPECT_THAT(calc.Traza().error, HasSubstr(c.error)) << c.lineas[0].formula;
  }
  // A query that writes is refused and writes nothing.
  const Variant antes = Scalar(*cn, "Select Count(*) From genMonedas");
  clsRenglonesMF w = Lineas({{101, true, "[query]Delete From genMonedas[/query]"}});
  EXPECT_FALSE(calc.RecalcularFormulasMF(w, 1, true, kHoy));
  EXPECT_EQ(Scalar(*cn, "Select Count(*) From genMonedas"), antes);
}

TEST_P(Calculo, RunawayQueriesFailTheLineAndRetriedValuesAreMarked) {
  auto calc = Evaluador();
  cn->SetQueryLimit(std::chrono::milliseconds(200));
  const std::string c =
      "[query]With Recursive c(x) As (Select Cast(1 As Integer) Union All Select x + 1 From c) ";
  // Rows without end: a [query] reads only the first one. A statement that never ends is
  // cancelled at the limit, and its line and the call fail.
  clsRenglonesMF filas = Lineas({{101, true, c + "Select x From c[/query]*7"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(filas, 1, true, kHoy)) << calc.Traza().error;
  EXPECT_DOUBLE_EQ(Mf(filas, 1), 7);
  clsRenglonesMF r = Lineas({{101, true, c + "Select Count(*) From c[/query]"}});
  EXPECT_FALSE(calc.RecalcularFormulasMF(r, 1, true, kHoy));
  EXPECT_THAT(calc.Traza().error, HasSubstr("La consulta superó el límite de 0,2 s"));
  // Values that exist only because "," was read as "." after a run-time error keep the rule's
  // value and the first error; a decimal comma (a syntax error first) is not marked.
  clsRenglonesMF d = Lineas({{101, true, "Round(12000/0,2)"},
                             {102, true, "[codescript]Round(1/0,5)[/codescript]+1"},
                             {131, false, "3,5*2"}});
  ASSERT_TRUE(calc.RecalcularFormulasMF(d, 1, true, kHoy)) << calc.Traza().error;
  EXPECT_DOUBLE_EQ(Mf(d, 1), 60000);
  EXPECT_DOUBLE_EQ(Mf(d, 2), 3);
  EXPECT_DOUBLE_EQ(Mf(d, 3), 7);
  const auto& t = calc.Traza().lineas;
  EXPECT_EQ(t[0].reintento_tras_error, "error 11: División por cero");
  EXPECT_EQ(t[1].reintento_tras_error, "error 11: División por cero");
  EXPECT_EQ(t[2].reintento_tras_error, "");
}

// The main job computes inside its transaction. A read an element traps (here: the table of
// rate types is gone) gives no value, and the work around it stays: the statements after it
// run and the commit keeps everything, on both engines alike.
TEST_P(Calculo, AReadThatFailsInsideATransactionLeavesTheTransactionUsable) {
  auto calc = Evaluador();
  Ejecutar("Drop Table genTipoCotizacionMoneda");
  const auto fila = [](const char* nombre) {
    return std::string("Insert Into genParametros (ParNombre, ParTexto) Values ('") + nombre +
           "', 'x')";
  };
  Transaccion t(*cn);
  Ejecutar(fila("antes"));
  const TrazaElementoFx e =
      calc.Funciones().Palabra("[IndiceHoy]", {"2"}, kHoy, 0, "[IndiceHoy:2]");
  EXPECT_FALSE(e.valor.has_value());
  EXPECT_THAT(vb::LCase(e.detalle), HasSubstr("gentipocotizacionmoneda")) << e.detalle;
  EXPECT_EQ(cn->TransactionDepth(), 1);
  Ejecutar(fila("despues"));
  t.Commit();
  EXPECT_EQ(vb::CLng(Scalar(*cn,
                            "Select Count(*) From genParametros Where ParNombre In "
                            "('antes', 'despues')")),
            2);
}

TEST_P(Calculo, ConversionAndTheExchangeRatePrompt) {
  auto calc = Evaluador();
  // A movement in pesos with a dollar account: the pesos are divided by the dollar's rate.
  clsMFTipo mf;
  Date fecha = formula::FechaNoIndicada();
  ASSERT_TRUE(calc.SetCalculoFormulasMF(mf, 4, true, fecha));
  EXPECT_DOUBLE_EQ(mf.Renglones()->Renglon(1)->ImporteCta(), 20.66);  // 29750 / 1440

  // Recalculating dollar lines on pesos accounts asks the dollar's rate once, proposing the
  // one at the end of last month; the answer becomes the lines' fixed rate.
  clsRenglonesMF r = Lineas({{104, true, "100"}, {131, false, "[10:]"}});
  sv.input->Answer(1500.0);
  ASSERT_TRUE(calc.RecalcularFormulasMF(r, 2, false, kHoy)) << calc.Traza().error;
  ASSERT_EQ(sv.input->asked().size(), 1u);
  EXPECT_EQ(sv.input->asked()[0].prompt, "kivcalculator:Tasa de cambio para U$S");
  EXPECT_DOUBLE_EQ(sv.input->asked()[0].proposed, 1410.25);
  EXPECT_DOUBLE_EQ(r.Renglon(1)->ValorTC(), 1500);
  EXPECT_DOUBLE_EQ(Cta(r, 1), 150000);
  EXPECT_DOUBLE_EQ(Cta(r, 2), 150000);
  // Lines that now have a fixed rate are not asked again.
  ASSERT_TRUE(calc.RecalcularFormulasMF(r, 2, false, kHoy));
  EXPECT_EQ(sv.input->asked().size(), 1u);
  // A cancelled prompt leaves the line without fixed rate: its rate type is used.
  clsRenglonesMF tipo = Lineas({{104, true, "100"}});
  tipo.Renglon(1)->TipoCambio(1);
  ASSERT_TRUE(calc.RecalcularFormulasMF(tipo, 2, false, kHoy));
  EXPECT_EQ(sv.input->asked().size(), 2u);
  EXPECT_DOUBLE_EQ(tipo.Renglon(1)->ValorTC(), 0);
  EXPECT_DOUBLE_EQ(Cta(tipo, 1), 141025);

  // Without a quotation the conversion fails instead of using 1.
  clsRenglonesMF sin = Lineas({{104, true, "100"}});
  sin.Renglon(1)->TipoCambio(2);
  EXPECT_FALSE(calc.RecalcularFormulasMF(sin, 2, true, SerialOf(2020, 1, 1)));
  EXPECT_THAT(calc.Traza().lineas[0].error, HasSubstr("no hay cotización"));
}

TEST_P(Calculo, OneLegAmountAndWhetherItMayBeEdited) {
  auto calc = Evaluador();
  bool editable = true;
  double importe = 0;
  // The difference line is the leg: not editable.
  clsRenglonesMF dif =
      Lineas({{145, true, "80000"}, {105, true, "[1:145;0;0]*0.21"}, {111, false, "[10:]"}});
  ASSERT_TRUE(calc.GetValueUnaPata(dif, 1, 1, editable, importe, kHoy));
  EXPECT_DOUBLE_EQ(importe, 96800);
  EXPECT_FALSE(editable);
  EXPECT_DOUBLE_EQ(Mf(dif, 3), 0);  // the lines given are not changed

  // A leg without formula gets the balancing amount as a proposal: editable.
  clsRenglonesMF libre = Lineas({{145, true, "100"}, {105, true, "21"}, {111, false, ""}});
  ASSERT_TRUE(calc.GetValueUnaPata(libre, 1, 1, editable, importe, kHoy));
  EXPECT_DOUBLE_EQ(importe, 121);
  EXPECT_TRUE(editable);

  // A leg from the movement total: computed from the amount passed in, still editable.
  clsRenglonesMF total = Lineas({{104, true, "[14:]"},
                                 {131, false, "[1:104;0;0]/1.21"},
                                 {112, false, "[1:104;0;0]-[1:131;0;0]"}});
  importe = 1210;
  ASSERT_TRUE(calc.GetValueUnaPata(total, 1, 1, editable, importe, kHoy));
  EXPECT_DOUBLE_EQ(importe, 1210);
  EXPECT_TRUE(editable);

  // No single open leg: failure, outputs untouched.
  clsRenglonesMF dos =
      Lineas({{145, true, "1"}, {105, true, "1"}, {111, false, "1"}, {112, false, "1"}});
  importe = 5;
  EXPECT_FALSE(calc.GetValueUnaPata(dos, 1, 1, editable, importe, kHoy));
  EXPECT_DOUBLE_EQ(importe, 5);
}

KMF_INSTANTIATE_ENGINES(Calculo);

}  // namespace
}  // namespace kivmovfrec::testing
