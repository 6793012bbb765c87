// movfrec calcular / leyenda / formula, run as a script would run them, on a fresh demo
// database per test.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_db.h"

namespace {

using kmf_cli::Has;
using kmf_cli::Result;

using Json = nlohmann::ordered_json;

// A fresh demo database per test, on each engine.
class Calcular : public kmf_cli::DemoMotorTest {};

TEST_P(Calcular, TraceOfTheDemoMovementShowsABalancedEntryAndWhereEveryValueCameFrom) {
  const Result r = Run({"calcular", "27", "--fecha", "20/11/2026", "--traza"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(r.out, "Fecha del cálculo: 20/11/2026")) << r.out;
  EXPECT_TRUE(Has(r.out, "Total Debe: 39.650,00  Total Haber: 39.650,00  (balanceado)")) << r.out;
  // Every kind of value with its origin: the balance as of the end of October, the index and
  // rates with the dates of the quotations used, the query, the script, the line referred to.
  for (const char* parte :
       {"[saldo] saldo de la cuenta 102 al último día del mes anterior (31/10/2026)",
        "[índice] índice 5", "[consulta] consulta: Select Sum(ACuImporteMC)",
        "[cotización] cotización de U$S en $ (tipo 1) al día del cálculo (20/11/2026): 1425,75 "
        "del 16/11/2026",
        "del 30/10/2026", "[script] script: Round(21 * 50, 2) = 1050",
        "[renglón] línea 1 (5.1.06 Intereses y actualizaciones)", "[diferencia]",
        "Expresión: 1000*(1425.75-1410.25)"}) {
    EXPECT_TRUE(Has(r.out, parte)) << parte << "\n" << r.out;
  }

  const Result j = Run({"--json", "calcular", "27", "--fecha", "2026-11-20", "--traza"});
  ASSERT_EQ(j.status, 0) << j.err;
  const Json doc = Json::parse(j.out);
  EXPECT_EQ(doc["Fecha"], "20/11/2026");
  EXPECT_TRUE(doc["Balanceado"].get<bool>());
  EXPECT_DOUBLE_EQ(doc["TotalDebe"].get<double>(), 39650);
  ASSERT_EQ(doc["Renglones"].size(), 4u);
  for (const Json& l : doc["Renglones"]) {
    ASSERT_FALSE(l["Elementos"].empty()) << l.dump();
    for (const Json& e : l["Elementos"]) {
      EXPECT_FALSE(e["Valor"].is_null()) << e.dump();
      EXPECT_FALSE(e["Detalle"].get<std::string>().empty()) << e.dump();
    }
  }
  EXPECT_EQ(doc["Renglones"][1]["Elementos"][1]["Fecha"], "16/11/2026");
}

TEST_P(Calcular, PromptsWithoutATerminalAreCancelledUnlessNotAsked) {
  const Result pedido = Run({"calcular", "2"});
  EXPECT_EQ(pedido.status, 1);
  EXPECT_TRUE(Has(pedido.err, "Fórmula sin resultado")) << pedido.err;
  EXPECT_TRUE(Has(pedido.out, "Error")) << pedido.out;

  const Result sin = Run({"calcular", "2", "--sin-pedir"});
  EXPECT_EQ(sin.status, 0) << sin.err;
  EXPECT_TRUE(Has(sin.out, "(balanceado)")) << sin.out;

  // A scheduled movement without --fecha is computed as of its next due date.
  const Result agendado = Run({"--json", "calcular", "1"});
  ASSERT_EQ(agendado.status, 0) << agendado.err;
  const Json doc = Json::parse(agendado.out);
  EXPECT_EQ(doc["Fecha"], "10/11/2026");
  EXPECT_DOUBLE_EQ(doc["Renglones"][0]["ImporteMF"].get<double>(), 540000);

  EXPECT_EQ(Run({"calcular", "999"}).status, 1);
  EXPECT_EQ(Run({"calcular", "1", "--fecha", "31/02/2026"}).status, 2);
}

TEST_P(Calcular, LegendMacros) {
  const Result r =
      Run({"leyenda", "Alquiler &[FFAñoMes] al &[FUltimoDia]", "--fecha", "15/02/2008"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "Alquiler 02/2008 al 29/02/2008\n");
  const Result hoy = Run({"leyenda", "&[FechaC]"});
  EXPECT_EQ(hoy.out, "10/11/2026\n");
}

TEST_P(Calcular, FormulaShownAndSavedBackThroughItsDisplayForm) {
  const Result ver = Run({"formula", "ver", "2", "2"});
  ASSERT_EQ(ver.status, 0) << ver.err;
  EXPECT_EQ(ver.out, "Cuenta Ingresada(\"5.1.01 Sueldos y jornales ADM\")*0.24\n");

  const Result malo =
      Run({"formula", "guardar", "2", "2", "Cuenta Ingresada(\"5.1.01 Sueldos\")*0.25"});
  EXPECT_EQ(malo.status, 1);
  EXPECT_EQ(malo.out, ":e:19\n");  // the first character of the unknown text
  EXPECT_TRUE(Has(malo.err, "\n" + std::string(2 + 18, ' ') + "^\n")) << malo.err;
  // Nothing was saved; a formula breaking the movement's rules is refused as well.
  EXPECT_EQ(Run({"formula", "ver", "2", "2"}).out, ver.out);
  const Result propia =
      Run({"formula", "guardar", "2", "2", "Cuenta Ingresada(\"5.1.02 Cargas sociales ADM\")"});
  EXPECT_EQ(propia.status, 1);
  EXPECT_TRUE(Has(propia.err, "misma cuenta")) << propia.err;

  const Result bueno = Run({"--json", "formula", "guardar", "2", "2",
                            "cuenta ingresada(\"5.1.01 Sueldos y jornales ADM\")*0.25"});
  ASSERT_EQ(bueno.status, 0) << bueno.err;
  EXPECT_EQ(Json::parse(bueno.out)["Formula"], "[1:141;0;1]*0.25");
  EXPECT_EQ(Run({"formula", "ver", "2", "2"}).out,
            "Cuenta Ingresada(\"5.1.01 Sueldos y jornales ADM\")*0.25\n");
  EXPECT_EQ(Run({"formula", "ver", "2", "9"}).status, 1);
}

TEST_P(Calcular, AgendaComputesEachOccurrenceAsOfItsOwnDueDate) {
  const Result r =
      Run({"--json", "agenda", "--desde", "2026-11-10", "--hasta", "2026-12-31", "--importes"});
  ASSERT_EQ(r.status, 0) << r.err;
  const Json lista = Json::parse(r.out);
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

  const Result texto = Run({"agenda", "--hasta", "2026-11-30", "--importes"});
  ASSERT_EQ(texto.status, 0) << texto.err;
  EXPECT_TRUE(Has(texto.out, "Importe")) << texto.out;
  EXPECT_TRUE(Has(texto.out, "540.000,00")) << texto.out;
}

// (exportar writes the same lines, and importar takes them back: commands_test.cpp.)
TEST_P(Calcular, VerCarriesTheDisplayForm) {
  const Result ver = Run({"--json", "ver", "2"});
  ASSERT_EQ(ver.status, 0) << ver.err;
  const Json mov = Json::parse(ver.out);
  EXPECT_EQ(mov["Renglones"][1]["FormulaVisible"],
            "Cuenta Ingresada(\"5.1.01 Sueldos y jornales ADM\")*0.24");
  EXPECT_EQ(mov["Renglones"][0]["FormulaVisible"], "Pedir valor(\"Sueldos brutos del mes\")");
}

}  // namespace

// movfrec evaluar: what a formula author sees when trying an expression.
TEST_P(Calcular, EvaluarPrintsTheResultOrTheErrorWithACaretUnderItsColumn) {
  Result r = Run({"evaluar", "Round(1500.5*1.0825, 2)"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "1624.29\n");

  r = Run({"evaluar", "3,5*2"});  // decimal comma: the host retries with a point
  EXPECT_EQ(r.out, "7\n");
  EXPECT_EQ(r.err, "");
  // A retry after a run-time error: the value, and a warning naming the first error.
  r = Run({"evaluar", "Round(12000/0,2)"});
  EXPECT_EQ(r.out, "60000\n");
  EXPECT_TRUE(Has(r.err, "error 11: División por cero (columna 0)")) << r.err;

  r = Run({"evaluar", "Year(Date) * 100 + Month(Date)"});  // Date follows --hoy
  EXPECT_EQ(r.out, "202611\n");

  r = Run({"evaluar", "(2 +"});
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, "Error 1023: Se esperaba una expresión (columna 4)")) << r.err;
  EXPECT_TRUE(Has(r.err, "  (2 +\n      ^\n")) << r.err;

  r = Run({"--json", "evaluar", "1/0"});
  EXPECT_EQ(r.status, 1);
  const Json j = Json::parse(r.out);
  EXPECT_EQ(j["Error"]["Numero"], 11);
  EXPECT_EQ(j["Error"]["Columna"], 0);
}

KMF_CLI_MOTORES(Calcular);
