// movfrec calcular / leyenda / formula / evaluar / agenda --importes, run as a script would run
// them, on a fresh demo database per test. The amounts themselves are the library's; these
// tests check what the commands print and accept.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_db.h"

namespace {

using kmf_cli::Has;
using kmf_cli::Result;

using Json = nlohmann::ordered_json;

class Calcular : public kmf_cli::DemoMotorTest {};

TEST_P(Calcular, TraceOfTheDemoMovementShowsABalancedEntryAndWhereEveryValueCameFrom) {
  const Result r = Run({"calcular", "27", "--fecha", "20/11/2026", "--traza"});
  ASSERT_EQ(r.status, 0) << r.err;
  // Every kind of value with its origin: the balance as of the end of October, the index and
  // rates with the dates of the quotations used, the query, the script, the line referred to.
  for (const char* parte :
       {"Fecha del cálculo: 20/11/2026",
        "Total Debe: 39.650,00  Total Haber: 39.650,00  (balanceado)",
        "[saldo] saldo de la cuenta 102 al último día del mes anterior (31/10/2026)",
        "[índice] índice 5", "[consulta] consulta: Select Sum(ACuImporteMC)",
        "[cotización] cotización de U$S en $ (tipo 1) al día del cálculo (20/11/2026): 1425,75 "
        "del 16/11/2026",
        "del 30/10/2026", "[script] script: Round(21 * 50, 2) = 1050",
        "[renglón] línea 1 (5.1.06 Intereses y actualizaciones)", "[diferencia]",
        "Expresión: 1000*(1425.75-1410.25)"}) {
    EXPECT_TRUE(Has(r.out, parte)) << parte << "\n" << r.out;
  }
}

TEST_P(Calcular, PromptsWithoutATerminalAreCancelledUnlessNotAsked) {
  const Result pedido = Run({"calcular", "2"});
  EXPECT_EQ(pedido.status, 1);
  EXPECT_TRUE(Has(pedido.err, "Fórmula sin resultado")) << pedido.err;
  EXPECT_TRUE(Has(pedido.out, "Error")) << pedido.out;
  const Result sin = Run({"calcular", "2", "--sin-pedir"});
  EXPECT_EQ(sin.status, 0) << sin.err;
  EXPECT_TRUE(Has(sin.out, "(balanceado)")) << sin.out;
  ExpectFails({"calcular", "999"}, 1, "no existe el movimiento frecuente 999");
  EXPECT_EQ(Run({"calcular", "1", "--fecha", "31/02/2026"}).status, 2);
}

TEST_P(Calcular, LegendAsOfTheDateGivenOrToday) {
  EXPECT_EQ(Run({"leyenda", "Alquiler &[FFAñoMes] al &[FUltimoDia]", "--fecha", "15/02/2008"}).out,
            "Alquiler 02/2008 al 29/02/2008\n");
  EXPECT_EQ(Run({"leyenda", "&[FechaC]"}).out, "10/11/2026\n");  // --hoy
}

// formula ver shows the display form (ver carries it too); formula guardar reads it back,
// shows where reading stopped, and saves nothing a rule refuses.
TEST_P(Calcular, FormulaShownAndSavedBackThroughItsDisplayForm) {
  const std::string visible = "Cuenta Ingresada(\"5.1.01 Sueldos y jornales ADM\")*0.24";
  EXPECT_EQ(Run({"formula", "ver", "2", "2"}).out, visible + "\n");
  const Json mov = RunJson({"ver", "2"});
  EXPECT_EQ(mov["Renglones"][1]["FormulaVisible"], visible);
  EXPECT_EQ(mov["Renglones"][0]["FormulaVisible"], "Pedir valor(\"Sueldos brutos del mes\")");

  const Result malo =
      Run({"formula", "guardar", "2", "2", "Cuenta Ingresada(\"5.1.01 Sueldos\")*0.25"});
  EXPECT_EQ(malo.status, 1);
  EXPECT_EQ(malo.out, ":e:19\n");  // the first character of the unknown text
  EXPECT_TRUE(Has(malo.err, "\n" + std::string(2 + 18, ' ') + "^\n")) << malo.err;
  ExpectFails({"formula", "guardar", "2", "2", "Cuenta Ingresada(\"5.1.02 Cargas sociales ADM\")"},
              1, "misma cuenta");
  EXPECT_EQ(Run({"formula", "ver", "2", "2"}).out, visible + "\n");

  const Json bueno = RunJson(
      {"formula", "guardar", "2", "2", "cuenta ingresada(\"5.1.01 Sueldos y jornales ADM\")*0.25"});
  EXPECT_EQ(bueno["Formula"], "[1:141;0;1]*0.25");
  EXPECT_EQ(Run({"formula", "ver", "2", "2"}).out,
            "Cuenta Ingresada(\"5.1.01 Sueldos y jornales ADM\")*0.25\n");
  EXPECT_EQ(Run({"formula", "ver", "2", "9"}).status, 1);
}

TEST_P(Calcular, AgendaComputesEachOccurrenceAsOfItsOwnDueDate) {
  const Json lista =
      RunJson({"agenda", "--desde", "2026-11-10", "--hasta", "2026-12-31", "--importes"});
  int cambio = 0;
  for (const Json& e : lista) {
    const bool importes = e.contains("Importes");
    // Only due dates of entries and vouchers are computed.
    EXPECT_EQ(importes, e["Evento"] == "Vencimiento" && (e["Tipo"] == 1 || e["Tipo"] == 2))
        << e.dump();
    if (!importes) continue;
    EXPECT_EQ(e["Importes"]["FechaCalculo"], e["Fecha"]) << e.dump();
    if (e["ID"] == 4) {  // exchange difference: the rates of each due date
      ++cambio;
      const double esperado = e["Fecha"] == "30/11/2026" ? 29750 : 0;  // no rate after 30/11
      EXPECT_DOUBLE_EQ(e["Importes"]["TotalDebe"].get<double>(), esperado) << e.dump();
    }
  }
  EXPECT_EQ(cambio, 2);
}

// What a formula author sees when trying an expression: the value, the warning of a value
// rescued by reading "," as "." after an error (the retry is the script host's), or the error
// with a caret under its column.
TEST_P(Calcular, EvaluarPrintsTheResultOrTheErrorWithACaretUnderItsColumn) {
  Result r = Run({"evaluar", "Round(1500.5*1.0825, 2)"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "1624.29\n");
  EXPECT_EQ(r.err, "");
  // A retry after a run-time error: the value, and a warning naming the first error.
  r = Run({"evaluar", "Round(12000/0,2)"});
  EXPECT_EQ(r.out, "60000\n");
  EXPECT_TRUE(Has(r.err, "error 11: División por cero (columna 0)")) << r.err;
  EXPECT_EQ(Run({"evaluar", "Year(Date) * 100 + Month(Date)"}).out, "202611\n");  // --hoy
  ExpectFails({"evaluar", "(2 +"}, 1,
              "Error 1023: Se esperaba una expresión (columna 4)\n  (2 +\n      ^\n");
  r = Run({"--json", "evaluar", "1/0"});
  EXPECT_EQ(r.status, 1);
  const Json j = Json::parse(r.out);
  EXPECT_EQ(j["Ok"], false);
  EXPECT_EQ(j["Error"]["Numero"], 11);
  EXPECT_EQ(j["Error"]["Origen"], "VBScript");
  EXPECT_EQ(j["Error"]["Texto"], "División por cero");
  EXPECT_EQ(j["Error"]["Columna"], 0);
  const Json bien = Json::parse(Run({"--json", "evaluar", "Round(12000/0,2)"}).out);
  EXPECT_EQ(bien["Ok"], true);
  EXPECT_EQ(bien["Resultado"], "60000");
  EXPECT_TRUE(bien["Error"].is_null());
  EXPECT_EQ(bien["ReintentoTrasError"]["Numero"], 11);
}

KMF_INSTANTIATE_ENGINES(Calcular);

}  // namespace
