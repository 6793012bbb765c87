// Several processes using the façade on one database at the same time, on every engine (one
// SQLite file shared by the processes, or one PostgreSQL schema): an occurrence marked done, or
// executed by the main job, from several processes is never counted or written twice; a
// database held by another connection gives a clear error, bounded by the busy or lock timeout,
// that the façade reports, and stops the main job at its first wait. (Distinct keys across
// processes are the counters' own test, tests/suite/counter_test.cpp.)
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "api/ejecucion.h"
#include "fachada_fixture.h"
#include "platform/db/postgres/pg_connection.h"
#include "platform/db/sqlite/sqlite_connection.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "support/child_processes.h"
#include "support/forwarding_connection.h"

namespace kivmovfrec::testing {
namespace {

class Concurrencia : public Fachada {};

// Reads the whitespace-separated integers a child wrote, `n` per line.
std::vector<std::vector<int64_t>> Filas(const std::string& salida, size_t n) {
  std::vector<std::vector<int64_t>> filas;
  std::istringstream in(salida);
  for (std::vector<int64_t> f(n); in >> f[0];) {
    for (size_t i = 1; i < n; ++i) in >> f[i];
    filas.push_back(f);
  }
  return filas;
}

TEST_P(Concurrencia, OcurrenciaRealizadaDesdeVariosProcesosNoSeCuentaDosVeces) {
  constexpr int kProcesos = 4;
  constexpr int kCada = 40;
  // Demo movement 1 repeats monthly and never ends; a new weekly one ends after 30 occurrences.
  AsientoNuevo(mf, "Semanal que termina", {141, 113});
  auto rec = mf.EstructuraMovFrec()->Recurrencia();
  rec->Frecuencia("000007");
  rec->FechaProxima("07/01/2027");
  rec->FechaFinal("29/07/2027");  // 7/1 + 29 weeks
  const int32_t semanal = mf.SaveMovimientoFrecuenteConBloqueo();
  ASSERT_GT(semanal, 0);
  const int32_t inicial = Agenda(1).NumOcurrencia();
  const Date proxima_inicial = vb::CDate(Variant(Agenda(1).FechaProxima()));
  const std::string uri = database().uri();
  const auto resultado = RunInChildren(kProcesos, [&](int, std::ostream& out) {
    FachadaPropia f(OpenConnection(uri));
    for (int i = 0; i < kCada; ++i) {
      bool ultima = false;
      out << f.mf.DarRealizadaFechaAgenda(1) << ' ' << f.mf.DarRealizadaFechaAgenda(semanal, ultima)
          << ' ' << ultima << '\n';
    }
    // Errors are reported through the message service: none is expected.
    for (const auto& m : f.sv.messages->shown()) out << "mensaje: " << m.request.text << '\n';
    return f.sv.messages->shown().empty() ? 0 : 1;
  });
  int exitos = 0, exitos_semanal = 0, ultimas = 0;
  for (int p = 0; p < kProcesos; ++p) {
    EXPECT_EQ(resultado.statuses[p], 0) << "proceso " << p << ":\n" << resultado.outputs[p];
    for (const auto& f : Filas(resultado.outputs[p], 3)) {
      exitos += static_cast<int>(f[0]);
      exitos_semanal += static_cast<int>(f[1]);
      ultimas += static_cast<int>(f[2]);
    }
  }
  // Every successful call moved the schedule by exactly one occurrence.
  EXPECT_EQ(exitos, kProcesos * kCada);
  EXPECT_EQ(Agenda(1).NumOcurrencia(), inicial + exitos);
  EXPECT_EQ(Agenda(1).FechaProxima(),
            vb::FormatDate(vb::DateAdd("m", exitos, proxima_inicial), "dd/mm/yyyy"));
  // The ending schedule: each of its 30 occurrences done once, the last one once.
  EXPECT_EQ(exitos_semanal, 30);
  EXPECT_EQ(ultimas, 1);
  EXPECT_EQ(Agenda(semanal).NumOcurrencia(), 30);
  EXPECT_EQ(Estado(semanal), ToInt(enuEstadoMF::Realizado));
}

TEST_P(Concurrencia, TresProcesosEjecutanLoVencidoYCadaOcurrenciaSeEjecutaUnaVez) {
  constexpr int kProcesos = 3;
  constexpr int kOcurrencias = 12;  // due up to 15/01/2027 in the demo (one run alone)
  const std::string uri = database().uri();
  const auto resultado = RunInChildren(kProcesos, [&](int, std::ostream& out) {
    FachadaPropia f(OpenConnection(uri));
    const auto r = api::EjecutarVencidos(f.mf, *f.cn, 1, suite::SerialOf(2027, 1, 15));
    for (const auto& o : r.ocurrencias) {
      out << o.movimiento << ' ' << o.fecha.serial << ' ' << static_cast<int>(o.estado) << '\n';
    }
    return r.completa() ? 0 : 1;
  });
  std::set<std::pair<int64_t, int64_t>> ejecutadas;  // (movement, due date)
  std::map<int64_t, int> estados;
  for (int p = 0; p < kProcesos; ++p) {
    EXPECT_EQ(resultado.statuses[p], 0) << "proceso " << p << ":\n" << resultado.outputs[p];
    for (const auto& f : Filas(resultado.outputs[p], 3)) {
      ++estados[f[2]];
      if (f[2] == static_cast<int>(api::EstadoOcurrencia::Ejecutada))
        ejecutadas.emplace(f[0], f[1]);
    }
  }
  // The documents the runs wrote, entries and vouchers: one per movement and due day at most,
  // each balanced.
  int duplicados = 0, descuadrados = 0;
  for (const std::string t : {"Asiento", "Comprobante"}) {
    const std::string d = t.substr(0, 3), c = t.substr(0, 1) + "Cu", id = c + "ID" + t;
    duplicados += CountRows(*cn, "Select " + d + "MovFrecuente From cce" + t + "s Where " + d +
                                     "ID > 100 Group By " + d + "MovFrecuente, " + d +
                                     "Fecha Having Count(*) > 1");
    descuadrados += CountRows(*cn, "Select " + id + " From cce" + t + "Cuenta Where " + id +
                                       " > 100 Group By " + id + " Having Abs(Sum(" + c +
                                       "Debe) - Sum(" + c + "Haber)) > 0.001");
  }
  // Each of the occurrences executed once.
  EXPECT_EQ(static_cast<int>(ejecutadas.size()), kOcurrencias);
  EXPECT_EQ(estados[static_cast<int>(api::EstadoOcurrencia::Ejecutada)], kOcurrencias);
  EXPECT_EQ(estados[static_cast<int>(api::EstadoOcurrencia::Fallida)], 0);
  EXPECT_GT(estados[static_cast<int>(api::EstadoOcurrencia::HechaEnOtraParte)], 0)
      << "los procesos no llegaron a competir";
  EXPECT_EQ(duplicados, 0);
  EXPECT_EQ(descuadrados, 0);
  EXPECT_EQ(CountRows(*cn, "Select ComID From cceComprobantes Where ComID > 100"), 2);
  EXPECT_EQ(Agenda(1).FechaProxima(), "10/02/2027");
}

// A connection with a short wait for locks, so the tests below do not wait long.
std::shared_ptr<Connection> Impaciente(const TestDatabase& db) {
  constexpr int kEspera = 200;  // ms
  if (db.engine() == Engine::SQLite) {
    return sqlite::OpenSqlite(db.uri().substr(std::string("sqlite:").size()),
                              sqlite::Options{.busy_timeout_ms = kEspera});
  }
  return postgres::OpenPostgres(db.uri(), postgres::Options{.lock_timeout_ms = kEspera});
}

// Counts the transactions begun through it.
struct ContadoraDeTransacciones : ForwardingConnection {
  using ForwardingConnection::ForwardingConnection;
  void BeginTrans() override { ++iniciadas, inner_->BeginTrans(); }
  int iniciadas = 0;
};

// Another connection holds the database (SQLite) or the movements table (PostgreSQL) while 100
// movements are due. The façade's members fail within the lock wait and say why; the main job
// stops at its first wait, says why once and writes nothing. On PostgreSQL a row held by another
// transaction makes the main job skip only that movement.
TEST_P(Concurrencia, BaseOcupadaDaUnErrorClaroYDetieneLaEjecucionAlPrimerIntento) {
  constexpr int kVencidos = 100;
  std::vector<int32_t> ids;
  for (int i = 0; i < kVencidos; ++i) {
    AsientoNuevo(mf, "Vencido " + std::to_string(i), {141, 113});
    auto e = mf.EstructuraMovFrec();
    for (int16_t l = 1; l <= 2; ++l) e->Renglones()->Renglon(l)->ImporteMF(100);
    e->Recurrencia()->Frecuencia("000000");
    e->Recurrencia()->FechaProxima("09/11/2026");
    ids.push_back(mf.SaveMovimientoFrecuente());
  }
  auto otro = OpenAnother();
  otro->BeginTrans();
  otro->Execute(postgres() ? "Lock Table genMovimientosFrecuentes In Exclusive Mode"
                           : "Update genMovimientosFrecuentes Set MFrNombre = MFrNombre");
  const Snapshot antes = Tablas();

  FachadaPropia f(Impaciente(database()));
  f.sv.rights->Set(1, "Papelera", "e");
  f.sv.rights->Set(1, "PasajeAsientos", "AMEe");
  auto& m = f.mf;
  // The locked save gives 0 and leaves the report to its caller.
  AsientoNuevo(m, "Con la base ocupada", {141, 113});
  EXPECT_EQ(m.SaveMovimientoFrecuenteConBloqueo(), 0);
  EXPECT_TRUE(f.sv.messages->shown().empty());
  // The members that trap their errors show the engine's lock error and give false.
  const std::string bloqueo = postgres() ? "lock timeout" : "database is locked";
  int informados = 0;
  bool ultima = true;
  for (const auto& miembro : std::vector<std::function<bool()>>{
           [&] { return m.DarRealizadaFechaAgenda(1, ultima); },
           [&] { return m.CambiarEstadoMF(1, enuEstadoMF::Papelera, false); },
           [&] { return m.DeleteRegistroMFConfirmar(1); }}) {
    EXPECT_FALSE(miembro());
    informados += f.sv.messages->shown().back().request.text.find(bloqueo) != std::string::npos;
  }
  EXPECT_EQ(informados, 3) << f.sv.messages->shown().back().request.text;
  EXPECT_EQ(f.sv.messages->shown().size(), 4u);  // the three errors and the question 806
  // Outside a transaction the lock error reaches the caller.
  ASSERT_TRUE(m.LoadMF(1));
  m.EstructuraMovFrec()->MovFrecuente()->Nombre("Cambiado con la base ocupada");
  EXPECT_THROW(m.SaveMovimientoFrecuente(), DbError);
  // With the default timeouts of a connection opened by URI the wait is bounded too.
  FachadaPropia normal(database().Open());
  AsientoNuevo(normal.mf, "Con la espera normal", {141, 113});
  EXPECT_EQ(normal.mf.SaveMovimientoFrecuenteConBloqueo(), 0);

  // The main job: one transaction begun, nothing reported but the reason it stopped.
  int iniciadas = 0, informadas = 0;
  const auto ejecutar = [&] {
    auto cuenta = std::make_shared<ContadoraDeTransacciones>(Impaciente(database()));
    FachadaPropia g(cuenta);
    informadas = 0;
    const auto r = api::EjecutarVencidos(g.mf, *cuenta, 1, suite::SerialOf(2026, 11, 9),
                                         [&](const auto&, const auto&) { ++informadas; });
    iniciadas = cuenta->iniciadas;
    EXPECT_TRUE(g.sv.messages->shown().empty());
    return r;
  };
  const auto bloqueada = ejecutar();
  EXPECT_NE(bloqueada.detenida.find("bloqueada por otro proceso"), std::string::npos)
      << bloqueada.detenida;
  EXPECT_EQ(iniciadas, 1);
  EXPECT_EQ(informadas, 0);
  EXPECT_EQ(Tablas(), antes);

  // Once the other transaction ends the same work goes through.
  otro->RollbackTrans();
  AsientoNuevo(m, "Con la base libre", {141, 113});
  EXPECT_GT(m.SaveMovimientoFrecuenteConBloqueo(), 0);
  EXPECT_TRUE(m.DarRealizadaFechaAgenda(1));
  if (!postgres()) return;

  // A row another transaction holds: only that movement is skipped, and stays due.
  const int32_t tomado = ids[kVencidos / 2];
  otro->BeginTrans();
  otro->Execute("Update genMovimientosFrecuentes Set MFrNombre = MFrNombre Where MFrID = " +
                std::to_string(tomado));
  const auto fila = ejecutar();
  otro->RollbackTrans();
  EXPECT_TRUE(fila.completa()) << fila.detenida;
  EXPECT_EQ(iniciadas, kVencidos);
  EXPECT_EQ(informadas, kVencidos);
  // The others posted, that one left due and told why.
  EXPECT_EQ(CountRows(*cn, "Select AsiID From cceAsientos Where AsiID > 100"), kVencidos - 1);
  EXPECT_EQ(Agenda(tomado).FechaProxima(), "09/11/2026");
  for (const auto& o : fila.ocurrencias) {
    EXPECT_EQ(o.error.find("otra transacción tiene tomado el movimiento") != std::string::npos,
              o.movimiento == tomado)
        << o.movimiento << ": " << o.error;
  }
}

KMF_INSTANTIATE_ENGINES(Concurrencia);

}  // namespace
}  // namespace kivmovfrec::testing
