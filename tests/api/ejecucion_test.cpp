// Executing what falls due: documents written, schedules advanced, each occurrence once, and an
// occurrence that cannot be executed leaves nothing behind.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "api/ejecucion.h"
#include "fachada_fixture.h"
#include "support/faulty_connection.h"

namespace kivmovfrec::testing {
namespace {

using api::EjecutarVencidos;
using api::OcurrenciaEjecutada;

Date Dia(int y, int m, int d) {
  return suite::SerialOf(y, m, d);
}

class Ejecucion : public Fachada {
 protected:
  std::vector<OcurrenciaEjecutada> Ejecutar(Date hasta) {
    return EjecutarVencidos(mf, *cn, 1, hasta);
  }
  // (movement, due date) of each occurrence, in the order they ran.
  static std::vector<std::pair<int32_t, std::string>> Orden(
      const std::vector<OcurrenciaEjecutada>& r) {
    std::vector<std::pair<int32_t, std::string>> out;
    for (const auto& o : r) out.emplace_back(o.movimiento, vb::CStr(Variant(o.fecha)));
    return out;
  }
  // Documents the job wrote for `mov` (the demo's own stop at key 100, where its counters
  // stand).
  static int Documentos(Connection& c, int32_t mov) {
    const std::string id = std::to_string(mov);
    return CountRows(c,
                     "Select AsiID From cceAsientos Where AsiID > 100 And AsiMovFrecuente = " + id +
                         " Union All Select ComID From cceComprobantes Where ComID > 100 And "
                         "ComMovFrecuente = " +
                         id);
  }
  int Documentos(int32_t mov) { return Documentos(*cn, mov); }
  std::string Proxima(int32_t mov) {
    return vb::CStr(Variant(vb::CDate(Variant(Agenda(mov).FechaProxima()))));
  }
  static Snapshot Todo(Connection& c) {
    std::vector<std::string> tablas = MovementTables();
    for (const char* t :
         {"cceAsientos", "cceAsientoCuenta", "cceComprobantes", "cceComprobanteCuenta"}) {
      tablas.push_back(t);
    }
    return TakeSnapshot(c, tablas);
  }
  Snapshot Todo() { return Todo(*cn); }
};

TEST_P(Ejecucion, EveryDueOccurrenceBecomesOnePostedBalancedDocumentAndItsScheduleAdvances) {
  const auto r = Ejecutar(Dia(2026, 11, 30));
  const std::vector<std::pair<int32_t, std::string>> esperado = {
      {1, "10/11/2026"}, {25, "10/11/2026"}, {3, "20/11/2026"}, {4, "30/11/2026"}};
  EXPECT_EQ(Orden(r), esperado);
  for (const auto& o : r) EXPECT_TRUE(o.ok()) << o.movimiento << ": " << o.error;
  ASSERT_EQ(r.size(), 4u);

  // The rent as of its due date, written as the demo computes it.
  ASSERT_EQ(r[0].documentos.size(), 1u);
  const int32_t asiento = r[0].documentos[0].id;
  EXPECT_DOUBLE_EQ(r[0].documentos[0].total, 540000);
  const std::string donde = " From cceAsientos Where AsiID = " + std::to_string(asiento);
  EXPECT_EQ(vb::CLng(Scalar(*cn, "Select AsiMovFrecuente" + donde)), 1);
  EXPECT_EQ(vb::CLng(Scalar(*cn, "Select AsiEstado" + donde)), 1);
  EXPECT_EQ(vb::CDate(Scalar(*cn, "Select AsiFecha" + donde)), Dia(2026, 11, 10));
  // The memo's legend with its macros for the due day.
  EXPECT_EQ(vb::CStr(Scalar(*cn, "Select AsiLeyenda" + donde)), "Alquiler de oficina 11/2026");
  const std::string lineas =
      " From cceAsientoCuenta Where ACuIDAsiento = " + std::to_string(asiento);
  EXPECT_DOUBLE_EQ(vb::CDbl(Scalar(*cn, "Select Sum(ACuDebe)" + lineas)), 540000);
  EXPECT_DOUBLE_EQ(vb::CDbl(Scalar(*cn, "Select Sum(ACuHaber)" + lineas)), 540000);
  EXPECT_EQ(Proxima(1), "10/12/2026");

  // The linked group runs in its order on the scheduled member's date; only that one has a
  // schedule to advance.
  ASSERT_EQ(r[1].documentos.size(), 2u);
  EXPECT_EQ(r[1].documentos[0].movimiento, 25);
  EXPECT_EQ(r[1].documentos[1].movimiento, 26);
  EXPECT_LT(r[1].documentos[0].id, r[1].documentos[1].id);
  EXPECT_DOUBLE_EQ(r[1].documentos[0].total, 205000);
  EXPECT_DOUBLE_EQ(r[1].documentos[1].total, 205);
  EXPECT_EQ(Documentos(26), 1);
  EXPECT_EQ(Proxima(25), "10/12/2026");
  EXPECT_DOUBLE_EQ(r[3].documentos[0].total, 29750);  // the exchange difference of 30/11

  // A second run finds nothing due: an occurrence is never executed twice.
  const Snapshot despues = Todo();
  EXPECT_TRUE(Ejecutar(Dia(2026, 11, 30)).empty());
  EXPECT_EQ(Todo(), despues);
}

TEST_P(Ejecucion, MissedOccurrencesAllRunInDateOrderUntilTheScheduleEnds) {
  const auto r = Ejecutar(Dia(2027, 1, 15));
  std::vector<std::string> alquiler;
  for (const auto& o : r) {
    EXPECT_TRUE(o.ok()) << o.movimiento << ": " << o.error;
    if (o.movimiento == 1) alquiler.push_back(vb::CStr(Variant(o.fecha)));
  }
  EXPECT_EQ(alquiler, (std::vector<std::string>{"10/11/2026", "10/12/2026", "10/01/2027"}));
  for (size_t i = 1; i < r.size(); ++i) EXPECT_LE(r[i - 1].fecha, r[i].fecha);
  EXPECT_EQ(Documentos(1), 3);
  EXPECT_EQ(Proxima(1), "10/02/2027");
  // The VAT settlement had two occurrences left: the second one ends it.
  EXPECT_EQ(Documentos(3), 2);
  EXPECT_EQ(Estado(3), 1);
  // The voucher of the accountants' fees, monthly.
  EXPECT_EQ(Documentos(6), 2);
  EXPECT_DOUBLE_EQ(
      vb::CDbl(Scalar(*cn,
                      "Select Sum(CCuDebe) From cceComprobanteCuenta, cceComprobantes Where "
                      "CCuIDComprobante = ComID And ComID > 100 And ComMovFrecuente = 6")),
      2 * 121000.0);
}

TEST_P(Ejecucion, AnOccurrenceThatCannotBeExecutedWritesNothingAndStaysDue) {
  // The rent's debit line now asks for a typed value, which an unattended run cannot give;
  // the VAT settlement's closing line no longer takes the difference, so it does not balance.
  cn->Execute(
      "Update genRenglonMovFrecuentes Set RMFFormula = '[11:Importe]' Where RMFMovimiento = 1 "
      "And RMFOrden = 1");
  cn->Execute(
      "Update genRenglonMovFrecuentes Set RMFFormula = '1' Where RMFMovimiento = 3 And RMFOrden "
      "= 3");
  const auto r = Ejecutar(Dia(2026, 12, 15));
  int fallidas = 0;
  for (const auto& o : r) {
    if (o.movimiento != 1 && o.movimiento != 3) {
      EXPECT_TRUE(o.ok()) << o.movimiento << ": " << o.error;
      continue;
    }
    ++fallidas;
    EXPECT_TRUE(o.documentos.empty());
    EXPECT_EQ(o.fecha, o.movimiento == 1 ? Dia(2026, 11, 10) : Dia(2026, 11, 20));
    if (o.movimiento == 3) {
      EXPECT_NE(o.error.find("no balancea"), std::string::npos) << o.error;
    }
  }
  // Each failed once: its later occurrences were not attempted.
  EXPECT_EQ(fallidas, 2);
  EXPECT_EQ(Documentos(1), 0);
  EXPECT_EQ(Documentos(3), 0);
  EXPECT_EQ(Proxima(1), "10/11/2026");
  EXPECT_EQ(Proxima(3), "20/11/2026");
  // The others went on: the commission of the linked group each month (the social charges had
  // nothing left to pay in December).
  EXPECT_EQ(Documentos(25), 1);
  EXPECT_EQ(Documentos(26), 2);
  EXPECT_FALSE(cn->InTransaction());
}

// A failure at any statement of an occurrence leaves every table as it was; a failure the
// formula engine absorbs (a look-up it retries) must still give the right document. Each attempt
// runs on a fresh demo database.
TEST_P(Ejecucion, AFailureAtAnyStatementLeavesNothingHalfWritten) {
  // Only the rent falls due on 10/11: the group of movement 25 is moved a month on.
  const std::string solo_alquiler =
      "Update genRecurrencias Set RecFechaProxima = '2026-12-10 00:00:00' Where RecID = 11";
  cn->Execute(solo_alquiler);
  const Snapshot antes = Todo();
  int fallidas = 0, absorbidas = 0;
  for (int k = 1; k < 400; ++k) {
    TestDatabase base(GetParam());
    auto real = base.Open();
    InstallSchema(*real, {.demo = true});
    real->Execute(solo_alquiler);
    auto faulty = std::make_shared<FaultyConnection>(real, 0);
    auto servicios = suite::ScriptedServices::Make(faulty, kHoy);
    clsMovFrecuente otra;
    otra.Servicios(servicios.Bundle());
    otra.Connect(faulty);
    otra.Empresa(1);
    faulty->FailAt(faulty->statements() + k);
    std::vector<OcurrenciaEjecutada> r;
    try {
      r = EjecutarVencidos(otra, *faulty, 1, Dia(2026, 11, 10));
    } catch (const DbError&) {
      // Reading what is due failed: nothing ran.
    }
    EXPECT_FALSE(real->InTransaction()) << "sentencia " << k;
    const bool hecha = r.size() == 1 && r[0].ok();
    if (hecha) {
      ASSERT_EQ(r[0].documentos.size(), 1u);
      EXPECT_DOUBLE_EQ(r[0].documentos[0].total, 540000) << "sentencia " << k;
      EXPECT_EQ(Documentos(*real, 1), 1) << "sentencia " << k;
    }
    if (!faulty->failed()) {
      EXPECT_TRUE(hecha);
      EXPECT_GT(fallidas, 10);
      std::printf(
          "[ ejecutar ] %d fallos inyectados: %d revertidos (estados comparados, distintos = 0), "
          "%d absorbidos con el documento correcto\n",
          fallidas + absorbidas, fallidas, absorbidas);
      return;
    }
    if (hecha) {
      ++absorbidas;
      continue;
    }
    ++fallidas;
    ASSERT_EQ(Todo(*real), antes) << "sentencia " << k;
  }
  ADD_FAILURE() << "la ejecución nunca se completó";
}

KMF_INSTANTIATE_ENGINES(Ejecucion);

}  // namespace
}  // namespace kivmovfrec::testing
