// The dry run of the main job and the balance forecast on the demo database: the dry run leaves
// every table as it was and no other connection sees its documents; the real run then writes
// exactly what it showed; the forecast's balances are those the real run leaves.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "api/pronostico.h"
#include "api/simulacion.h"
#include "fachada_fixture.h"
#include "support/forwarding_connection.h"

namespace kivmovfrec::testing {
namespace {

Date Dia(int y, int m, int d) {
  return suite::SerialOf(y, m, d);
}

const Date kTresMeses = Dia(2027, 2, 10);

std::vector<std::string> TablasDeLaEjecucion() {
  std::vector<std::string> t = MovementTables();
  t.insert(t.end(), {"cceAsientos", "cceAsientoCuenta", "cceComprobantes", "cceComprobanteCuenta"});
  return t;
}

// A document as stored, read by the test's own statements: header, then one row per line.
using Documento = std::vector<std::string>;

class Simulacion : public Fachada {
 protected:
  Documento Guardado(int16_t tipo, int32_t id) {
    const std::string n = std::to_string(id);
    const bool com = tipo == 2;
    Documento out;
    auto cab = cn->OpenResultset(
        com ? "Select ComFecha, ComTipoComprobante, ComDetalle, ComEstado From cceComprobantes "
              "Where ComID = " +
                  n
            : "Select AsiFecha, AsiLibro, AsiLeyenda, AsiEstado From cceAsientos Where AsiID = " +
                  n);
    if (cab->Eof()) return out;
    out.push_back(vb::CStr(Variant(vb::CDate(cab->Get(0)))) + "|" + vb::CStr(cab->Get(1)) + "|" +
                  vb::CStr(cab->Get(2)) + "|" + vb::CStr(cab->Get(3)));
    for (auto rs = cn->OpenResultset(
             com ? "Select CCuIDCuenta, CCuDebe, CCuHaber, CCuImporteCuenta From "
                   "cceComprobanteCuenta Where CCuIDComprobante = " +
                       n + " Order By CCuOrden"
                 : "Select ACuCuenta, ACuDebe, ACuHaber, ACuImporteMC From cceAsientoCuenta "
                   "Where ACuIDAsiento = " +
                       n + " Order By ACuOrden");
         !rs->Eof(); rs->MoveNext()) {
      out.push_back(vb::CStr(rs->Get(0)) + "|" + vb::CStr(Variant(vb::CDbl(rs->Get(1)))) + "|" +
                    vb::CStr(Variant(vb::CDbl(rs->Get(2)))) + "|" +
                    vb::CStr(Variant(vb::CDbl(rs->Get(3)))));
    }
    return out;
  }
  // The same view of a document the dry run read back.
  static Documento Simulado(const DocumentoSimulado& d) {
    Documento out = {vb::CStr(Variant(d.fecha)) + "|" + std::to_string(d.modalidad) + "|" +
                     d.leyenda + "|" + std::to_string(d.estado)};
    for (const LineaDocumento& l : d.lineas) {
      out.push_back(std::to_string(l.cuenta) + "|" + vb::CStr(Variant(l.debe)) + "|" +
                    vb::CStr(Variant(l.haber)) + "|" + vb::CStr(Variant(l.importe_cuenta)));
    }
    return out;
  }
};

// Three months of the demo: the dry run changes no row (documents, schedules, counters), no
// other connection sees its documents while they exist, and the real run then gives the same
// occurrences in the same order with the same documents line for line. The December VAT
// settlement is worked out from account balances that November's settlement changed: the dry
// run's December figure is only right if it saw the simulated November document.
TEST_P(Simulacion, TheRealRunWritesWhatTheDryRunShowedAndTheDryRunKeepsNothing) {
  const Snapshot antes = TakeSnapshot(*cn, TablasDeLaEjecucion());
  auto otra = OpenAnother();
  const std::string nuevos = "Select Count(*) From cceAsientos Where AsiID > 100";
  int vistos_dentro = -1, vistos_fuera = -1;
  const ResultadoSimulacion sim =
      api::SimularVencidos(mf, *cn, 1, kTresMeses, [&](const ResultadoSimulacion&) {
        vistos_dentro = vb::CLng(Scalar(*cn, nuevos));
        vistos_fuera = vb::CLng(Scalar(*otra, nuevos));
      });
  ASSERT_TRUE(sim.completa()) << sim.detenida;
  EXPECT_GT(vistos_dentro, 5);
  EXPECT_EQ(vistos_fuera, 0);
  EXPECT_FALSE(cn->InTransaction());
  EXPECT_EQ(TakeSnapshot(*cn, TablasDeLaEjecucion()), antes);

  bool iva_diciembre = false;
  for (const OcurrenciaSimulada& s : sim.ocurrencias) {
    if (s.ocurrencia.movimiento != 3 || s.ocurrencia.fecha != Dia(2026, 12, 20)) continue;
    ASSERT_EQ(s.documentos.size(), 1u);
    iva_diciembre = true;
    // November's settlement cleared the output VAT (account 112): nothing is left to clear.
    for (const LineaDocumento& l : s.documentos[0].lineas) EXPECT_NE(l.cuenta, 112);
    EXPECT_EQ(s.documentos[0].debe, 10500);
  }
  EXPECT_TRUE(iva_diciembre);

  const ResultadoEjecucion real = mf.EjecutarVencidos(kTresMeses);
  ASSERT_EQ(real.ocurrencias.size(), sim.ocurrencias.size());
  for (size_t i = 0; i < real.ocurrencias.size(); ++i) {
    const OcurrenciaEjecutada& r = real.ocurrencias[i];
    const OcurrenciaSimulada& s = sim.ocurrencias[i];
    const std::string que = std::to_string(r.movimiento) + " " + vb::CStr(Variant(r.fecha));
    EXPECT_EQ(std::tie(r.movimiento, r.fecha, r.estado, r.error, r.terminada),
              std::tie(s.ocurrencia.movimiento, s.ocurrencia.fecha, s.ocurrencia.estado,
                       s.ocurrencia.error, s.ocurrencia.terminada))
        << que;
    std::vector<Documento> escritos, simulados;
    for (const DocumentoGenerado& d : r.documentos) {
      if (d.id != 0) escritos.push_back(Guardado(d.tipo, d.id));
    }
    for (const DocumentoSimulado& d : s.documentos) simulados.push_back(Simulado(d));
    EXPECT_EQ(simulados, escritos) << que;
  }
}

// Inside an open transaction the rollback would only be a savepoint's: refused, nothing runs.
// When the engine ends the dry run's transaction under it (here after the first line insert),
// the next occurrence must not run in a transaction of its own, which would commit.
class TerminaLaTransaccion : public ForwardingConnection {
 public:
  using ForwardingConnection::ForwardingConnection;

 protected:
  void Statement(const char*, std::string_view sql, const std::function<void()>& run) override {
    if (!hecho_ && sql.find("cceAsientoCuenta") != std::string_view::npos &&
        sql.starts_with("Insert")) {
      hecho_ = true;
      while (inner_->TransactionDepth() > 0) inner_->RollbackTrans();
      throw DbError("la base terminó la transacción");
    }
    run();
  }

 private:
  bool hecho_ = false;
};

TEST_P(Simulacion, ADryRunNeverWritesOutsideItsOwnTransaction) {
  const Snapshot antes = TakeSnapshot(*cn, TablasDeLaEjecucion());
  cn->BeginTrans();
  const ResultadoSimulacion dentro = mf.SimularVencidos(kTresMeses);
  EXPECT_FALSE(dentro.completa());
  EXPECT_TRUE(dentro.ocurrencias.empty());
  cn->RollbackTrans();

  FachadaPropia rota(std::make_shared<TerminaLaTransaccion>(cn));
  const ResultadoSimulacion r = rota.mf.SimularVencidos(kTresMeses);
  EXPECT_NE(r.detenida.find("simulación"), std::string::npos) << r.detenida;
  ASSERT_EQ(r.ocurrencias.size(), 1u);
  EXPECT_FALSE(r.ocurrencias[0].ocurrencia.ok());
  EXPECT_FALSE(cn->InTransaction());
  EXPECT_EQ(TakeSnapshot(*cn, TablasDeLaEjecucion()), antes);
}

// Six months of the bank account by month: periods follow one another, each closing is the next
// opening and the period's inflows and outflows lead from one to the other; after the real run
// the account-balance service gives each closing at the period's end. The forecast wrote
// nothing, and lists the notices and task lists of the range.
TEST_P(Simulacion, TheForecastGivesTheBalancesTheRealRunLeaves) {
  const Date hasta = Dia(2027, 5, 10);
  const Snapshot antes = TakeSnapshot(*cn, TablasDeLaEjecucion());
  const ResultadoPronostico p = mf.PronosticarSaldos({{"1.1.02"}, kHoy, hasta});
  ASSERT_TRUE(p.ok()) << p.rechazo << p.detenida;
  EXPECT_EQ(TakeSnapshot(*cn, TablasDeLaEjecucion()), antes);
  EXPECT_TRUE(p.fallidas.empty());
  ASSERT_EQ(p.cuentas.size(), 1u);
  EXPECT_EQ(p.cuentas[0].cuenta, 102);
  const std::vector<SaldoPeriodo>& periodos = p.cuentas[0].periodos;
  ASSERT_EQ(periodos.size(), 7u);
  EXPECT_EQ(periodos.front().desde, kHoy);
  EXPECT_EQ(periodos.back().hasta, hasta);
  EXPECT_EQ(periodos.front().apertura, sv.balance->Saldo(102, Dia(2026, 11, 9)));
  for (size_t i = 0; i < periodos.size(); ++i) {
    const SaldoPeriodo& x = periodos[i];
    EXPECT_NEAR(x.apertura + x.entradas - x.salidas, x.cierre, 5e-5) << i;
    if (i + 1 < periodos.size()) {
      EXPECT_EQ(periodos[i + 1].desde.serial, x.hasta.serial + 1) << i;
      EXPECT_EQ(periodos[i + 1].apertura, x.cierre) << i;
    }
  }
  // The rent grows every month, so no two months move the account alike.
  EXPECT_NE(periodos[1].salidas, periodos[2].salidas);

  bool aviso = false, lista = false;
  for (const RecordatorioPronostico& r : p.recordatorios) {
    EXPECT_TRUE(r.tipo == 3 || r.tipo == 5) << r.movimiento;
    EXPECT_GE(r.fecha, kHoy);
    EXPECT_LT(r.fecha.serial, hasta.serial + 1);
    aviso |= r.movimiento == 8 && vb::DateOnly(r.fecha) == Dia(2026, 11, 20);
    lista |= r.movimiento == 10 && vb::DateOnly(r.fecha) == Dia(2026, 11, 30);
  }
  EXPECT_TRUE(aviso && lista);

  const ResultadoEjecucion real = mf.EjecutarVencidos(hasta);
  ASSERT_TRUE(real.completa());
  for (const SaldoPeriodo& x : periodos) {
    EXPECT_EQ(x.cierre, sv.balance->Saldo(102, x.hasta)) << vb::CStr(Variant(x.hasta));
  }
}

// Accounts by code, name or number, each once; without any, the accounts of the scheduled lines
// by code. Requests that cannot be forecast are refused and say why.
TEST_P(Simulacion, ForecastAccountsAndRefusals) {
  const Date hasta = Dia(2026, 11, 30);
  const auto cuentas = [&](std::vector<std::string> pedidas) {
    std::vector<int32_t> out;
    for (const auto& c : mf.PronosticarSaldos({std::move(pedidas), kHoy, hasta}).cuentas) {
      out.push_back(c.cuenta);
    }
    return out;
  };
  EXPECT_EQ(cuentas({"Caja", "102", " 1.1.03 ", "1.1.02"}), (std::vector<int32_t>{101, 102, 103}));
  const ResultadoPronostico todas = mf.PronosticarSaldos({{}, kHoy, hasta});
  ASSERT_GT(todas.cuentas.size(), 3u);
  for (size_t i = 1; i < todas.cuentas.size(); ++i) {
    EXPECT_LT(todas.cuentas[i - 1].codigo, todas.cuentas[i].codigo);
  }
  struct Caso {
    SolicitudPronostico s;
    const char* motivo;
  };
  const std::vector<Caso> casos = {
      {{{"9.9.99"}, kHoy, hasta}, "«9.9.99»"},
      {{{"201"}, kHoy, hasta}, "es de otra empresa"},
      {{{"100"}, kHoy, hasta}, "es una carpeta"},
      {{{}, kHoy, Dia(2026, 11, 9)}, "antes de empezar"},
  };
  for (const Caso& c : casos) {
    const ResultadoPronostico r = mf.PronosticarSaldos(c.s);
    EXPECT_NE(r.rechazo.find(c.motivo), std::string::npos) << c.motivo << ": " << r.rechazo;
    EXPECT_TRUE(r.cuentas.empty());
  }
}

KMF_INSTANTIATE_ENGINES(Simulacion);

// Periods are whole days, Monday-to-Sunday weeks and calendar months, cut to the range.
TEST(PeriodosPronostico, WeeksAndMonthsAreCutToTheRange) {
  using P = PeriodoPronostico;
  struct Caso {
    Date desde, hasta;
    P por;
    std::vector<std::pair<Date, Date>> esperado;
  };
  const std::vector<Caso> casos = {
      {Dia(2026, 11, 10),
       Dia(2026, 11, 30),
       P::Semana,
       {{Dia(2026, 11, 10), Dia(2026, 11, 15)},
        {Dia(2026, 11, 16), Dia(2026, 11, 22)},
        {Dia(2026, 11, 23), Dia(2026, 11, 29)},
        {Dia(2026, 11, 30), Dia(2026, 11, 30)}}},
      {Dia(2026, 11, 15),
       Dia(2026, 11, 16),
       P::Semana,
       {{Dia(2026, 11, 15), Dia(2026, 11, 15)}, {Dia(2026, 11, 16), Dia(2026, 11, 16)}}},
      {Dia(2027, 1, 31),
       Dia(2027, 3, 1),
       P::Mes,
       {{Dia(2027, 1, 31), Dia(2027, 1, 31)},
        {Dia(2027, 2, 1), Dia(2027, 2, 28)},
        {Dia(2027, 3, 1), Dia(2027, 3, 1)}}},
      {Dia(2028, 2, 15),
       Dia(2028, 3, 5),
       P::Mes,
       {{Dia(2028, 2, 15), Dia(2028, 2, 29)}, {Dia(2028, 3, 1), Dia(2028, 3, 5)}}},
  };
  for (const Caso& c : casos) {
    std::vector<std::pair<Date, Date>> hechos;
    for (const SaldoPeriodo& p : api::Periodos(c.desde, c.hasta, c.por)) {
      hechos.emplace_back(p.desde, p.hasta);
    }
    EXPECT_EQ(hechos, c.esperado) << vb::CStr(Variant(c.desde));
  }
}

}  // namespace
}  // namespace kivmovfrec::testing
