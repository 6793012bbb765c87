// Several processes using the façade on one database at the same time, on every engine (one
// SQLite file shared by the processes, or one PostgreSQL schema): locked saves draw distinct
// keys and none is lost; an occurrence marked done, or executed by the main job, from several
// processes is never counted or written twice; and a database held by another connection gives a
// clear error, bounded by the busy or lock timeout, that the façade reports.
#include <iostream>
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

namespace kivmovfrec::testing {
namespace {

// A connected façade over its own connection, for one child process.
struct FachadaPropia {
  explicit FachadaPropia(std::shared_ptr<Connection> c) : cn(std::move(c)) {
    sv = suite::ScriptedServices::Make(cn, kHoy);
    sv.messages->DefaultAnswer(kMsgYes);
    mf.Servicios(sv.Bundle());
    mf.Connect(cn);
    mf.Empresa(1);
  }
  std::shared_ptr<Connection> cn;
  suite::ScriptedServices sv;
  clsMovFrecuente mf;
};

// A new entry with two lines in the façade's current movement.
void NuevoConLineas(clsMovFrecuente& mf, const std::string& nombre) {
  mf.CleanEstructura();
  auto e = mf.EstructuraMovFrec();
  e->MovFrecuente()->Empresa(1);
  e->MovFrecuente()->Tipo(enuTipoMovFrec::Asiento);
  e->MovFrecuente()->Nombre(nombre);
  for (int32_t cuenta : {141, 113}) {
    auto r = std::make_shared<clsRegRenglonMF>();
    r->Cuenta(cuenta);
    r->AlDebe(cuenta == 141);
    r->Detalle(nombre);
    e->Renglones()->AddRenglon(r);
  }
}

class Concurrencia : public Fachada {
 protected:
  void TearDown() override {
    Fachada::TearDown();
    std::cout.flush();
  }
  std::string Motor() const { return EngineName(engine()); }
};

TEST_P(Concurrencia, CuatroProcesosGuardanConBloqueoSinPerderNiRepetirClaves) {
  constexpr int kProcesos = 4;
  constexpr int kCada = 250;
  const std::string uri = database().uri();
  const auto resultado = RunInChildren(kProcesos, [&](int p, std::ostream& out) {
    FachadaPropia f(OpenConnection(uri));
    int fallidos = 0;
    for (int i = 0; i < kCada; ++i) {
      const std::string nombre = "Carga " + std::to_string(p) + "-" + std::to_string(i);
      NuevoConLineas(f.mf, nombre);
      const int32_t id = f.mf.SaveMovimientoFrecuenteConBloqueo();
      out << id << ' ' << nombre << '\n';
      if (id <= 0) ++fallidos;
    }
    return fallidos == 0 ? 0 : 1;
  });

  // What each process says it saved.
  std::map<int32_t, std::string> guardados;  // key -> name
  int claves = 0, repetidas = 0, fallidos = 0;
  for (int p = 0; p < kProcesos; ++p) {
    EXPECT_EQ(resultado.statuses[p], 0) << "proceso " << p << ":\n" << resultado.outputs[p];
    std::istringstream in(resultado.outputs[p]);
    int32_t id = 0;
    std::string nombre;
    while (in >> id && std::getline(in, nombre)) {
      nombre.erase(0, 1);
      if (id <= 0) {
        ++fallidos;
        continue;
      }
      ++claves;
      if (!guardados.emplace(id, nombre).second) ++repetidas;
    }
  }
  // What the tables hold: every saved key with its name and its two lines.
  int perdidos = 0;
  for (const auto& [id, nombre] : guardados) {
    const std::string donde = " Where MFrID = " + std::to_string(id);
    const Variant guardado = Scalar(*cn, "Select MFrNombre From genMovimientosFrecuentes" + donde);
    const int lineas = CountRows(
        *cn, "Select * From genRenglonMovFrecuentes Where RMFMovimiento = " + std::to_string(id) +
                 " And RMFDetalle = '" + nombre + "'");
    if (guardado.IsNull() || vb::CStr(guardado) != nombre || lineas != 2) ++perdidos;
  }
  const int filas =
      CountRows(*cn, "Select * From genMovimientosFrecuentes Where MFrNombre Like 'Carga %'");
  const int lineas =
      CountRows(*cn, "Select * From genRenglonMovFrecuentes Where RMFDetalle Like 'Carga %'");

  std::cout << "[ concurrencia ] guardado con bloqueo (" << Motor() << "): " << kProcesos
            << " procesos x " << kCada << " movimientos nuevos con 2 líneas; " << claves
            << " claves obtenidas, " << repetidas << " repetidas, " << perdidos << " perdidos, "
            << fallidos << " guardados fallidos; " << filas << " encabezados y " << lineas
            << " líneas en las tablas\n";
  RecordProperty("claves", claves);
  RecordProperty("repetidas", repetidas);
  RecordProperty("perdidos", perdidos);
  EXPECT_EQ(claves, kProcesos * kCada);
  EXPECT_EQ(repetidas, 0);
  EXPECT_EQ(perdidos, 0);
  EXPECT_EQ(fallidos, 0);
  EXPECT_EQ(filas, kProcesos * kCada);
  EXPECT_EQ(lineas, 2 * kProcesos * kCada);
}

TEST_P(Concurrencia, OcurrenciaRealizadaDesdeVariosProcesosNoSeCuentaDosVeces) {
  constexpr int kProcesos = 4;
  constexpr int kCada = 40;
  // Demo movement 1 repeats monthly and never ends; a new weekly one ends after 30 occurrences.
  NuevoConLineas(mf, "Semanal que termina");
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
      out << (f.mf.DarRealizadaFechaAgenda(1) ? 1 : 0) << ' '
          << (f.mf.DarRealizadaFechaAgenda(semanal, ultima) ? 1 : 0) << ' ' << (ultima ? 1 : 0)
          << '\n';
    }
    // Errors are reported through the message service: none is expected.
    for (const auto& m : f.sv.messages->shown()) out << "mensaje: " << m.request.text << '\n';
    return f.sv.messages->shown().empty() ? 0 : 1;
  });

  int exitos = 0, exitos_semanal = 0, ultimas = 0;
  for (int p = 0; p < kProcesos; ++p) {
    EXPECT_EQ(resultado.statuses[p], 0) << "proceso " << p << ":\n" << resultado.outputs[p];
    std::istringstream in(resultado.outputs[p]);
    int a = 0, b = 0, u = 0;
    while (in >> a >> b >> u) {
      exitos += a;
      exitos_semanal += b;
      ultimas += u;
    }
  }
  const int32_t final_ = Agenda(1).NumOcurrencia();
  std::cout << "[ concurrencia ] ocurrencia realizada (" << Motor() << "): " << kProcesos
            << " procesos x " << kCada << " llamadas; mensual: " << exitos
            << " realizadas, ocurrencia " << inicial << " -> " << final_ << " (esperada "
            << inicial + exitos << "); semanal de 30: " << exitos_semanal << " realizadas, "
            << ultimas << " última, estado " << Estado(semanal) << "\n";
  RecordProperty("realizadas", exitos);
  RecordProperty("ocurrencia_final", final_);
  // Every successful call moved the schedule by exactly one occurrence.
  EXPECT_EQ(exitos, kProcesos * kCada);
  EXPECT_EQ(final_, inicial + exitos);
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
    for (const auto& o : api::EjecutarVencidos(f.mf, *f.cn, 1, suite::SerialOf(2027, 1, 15))) {
      out << o.movimiento << ' ' << o.fecha.serial << ' ' << (o.ok() ? 1 : 0) << '\n';
    }
    return 0;
  });
  std::map<std::pair<int32_t, double>, int> ejecutadas;  // (movement, due date) -> times done
  int hechas = 0, cedidas = 0;
  for (int p = 0; p < kProcesos; ++p) {
    EXPECT_EQ(resultado.statuses[p], 0) << "proceso " << p << ":\n" << resultado.outputs[p];
    std::istringstream in(resultado.outputs[p]);
    int32_t mov = 0;
    double fecha = 0;
    int ok = 0;
    while (in >> mov >> fecha >> ok) {
      if (ok == 0) {
        ++cedidas;  // another process had it: skipped, nothing written
        continue;
      }
      ++hechas;
      ++ejecutadas[{mov, fecha}];
    }
  }
  int repetidas = 0;
  for (const auto& [clave, veces] : ejecutadas) repetidas += veces > 1;
  // The documents the runs wrote: one per movement and due day at most.
  const int duplicados =
      CountRows(*cn,
                "Select AsiMovFrecuente, AsiFecha From cceAsientos Where AsiID > 100 Group By "
                "AsiMovFrecuente, AsiFecha Having Count(*) > 1");
  std::cout << "[ concurrencia ] ejecutar (" << Motor() << "): " << kProcesos << " procesos, "
            << hechas << " ocurrencias ejecutadas, " << cedidas
            << " cedidas a otro proceso, repetidas = " << repetidas
            << ", asientos duplicados = " << duplicados << "\n";
  EXPECT_EQ(hechas, kOcurrencias);
  EXPECT_EQ(static_cast<int>(ejecutadas.size()), kOcurrencias);
  EXPECT_EQ(repetidas, 0);
  EXPECT_EQ(duplicados, 0);
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

TEST_P(Concurrencia, BaseOcupadaDaUnErrorClaroQueLaFachadaInforma) {
  // The lock text of each engine, as the adapters pass it on.
  const std::string bloqueo = postgres() ? "lock timeout" : "database is locked";
  const auto esperado = [&](const std::string& texto) {
    return texto.find(bloqueo) != std::string::npos;
  };
  ASSERT_GT(sv.db->GetTableCounter("genMovimientosFrecuentes"), 0);  // the counter row exists

  // Another connection is in the middle of a transaction that holds movement 1 and the
  // movement counter (on SQLite, the whole database).
  auto otro = OpenAnother();
  otro->BeginTrans();
  otro->Execute("Update genMovimientosFrecuentes Set MFrNombre = MFrNombre Where MFrID = 1");
  otro->Execute(
      "Update genContadores Set CntValor = CntValor Where CntTabla = 'genMovimientosFrecuentes'");
  const Snapshot antes = Tablas();

  FachadaPropia f(Impaciente(database()));
  f.sv.rights->Set(1, "Papelera", "e");
  f.sv.rights->Set(1, "PasajeAsientos", "AMEe");
  auto& m = f.mf;
  const auto ultimo_mensaje = [&] {
    const auto& shown = f.sv.messages->shown();
    return shown.empty() ? std::string() : shown.back().request.text;
  };
  int informados = 0;

  // The locked save gives 0 and leaves the report to its caller.
  NuevoConLineas(m, "Con la base ocupada");
  EXPECT_EQ(m.SaveMovimientoFrecuenteConBloqueo(), 0);
  EXPECT_TRUE(f.sv.messages->shown().empty());
  // The members that trap their errors show the engine's lock error and give false.
  bool ultima = true;
  EXPECT_FALSE(m.DarRealizadaFechaAgenda(1, ultima));
  informados += esperado(ultimo_mensaje());
  EXPECT_TRUE(esperado(ultimo_mensaje())) << ultimo_mensaje();
  EXPECT_FALSE(m.CambiarEstadoMF(1, enuEstadoMF::Papelera, false));
  informados += esperado(ultimo_mensaje());
  EXPECT_TRUE(esperado(ultimo_mensaje())) << ultimo_mensaje();
  EXPECT_FALSE(m.DeleteRegistroMFConfirmar(1));
  informados += esperado(ultimo_mensaje());
  EXPECT_TRUE(esperado(ultimo_mensaje())) << ultimo_mensaje();
  EXPECT_EQ(f.sv.messages->shown().size(), 4u);  // the three errors and the question 806
  EXPECT_EQ(Tablas(), antes);
  EXPECT_FALSE(f.cn->InTransaction());

  // Outside a transaction the lock error reaches the caller.
  int al_llamador = 0;
  ASSERT_TRUE(m.LoadMF(1));
  m.EstructuraMovFrec()->MovFrecuente()->Nombre("Cambiado con la base ocupada");
  try {
    m.SaveMovimientoFrecuente();
    ADD_FAILURE() << "el guardado sin transacción no informó la base ocupada";
  } catch (const DbError& e) {
    ++al_llamador;
    EXPECT_TRUE(esperado(e.what())) << e.what();
  }

  // With the default timeouts of a connection opened by URI the wait is bounded too.
  FachadaPropia normal(database().Open());
  NuevoConLineas(normal.mf, "Con la espera normal");
  EXPECT_EQ(normal.mf.SaveMovimientoFrecuenteConBloqueo(), 0);

  std::cout << "[ concurrencia ] base ocupada (" << Motor() << "): " << informados
            << " miembros informaron el error de bloqueo, " << al_llamador
            << " llegó al llamador; el guardado con bloqueo devolvió 0 (también con la espera "
               "normal)\n";

  // Once the other transaction ends the same work goes through.
  otro->RollbackTrans();
  NuevoConLineas(m, "Con la base libre");
  EXPECT_GT(m.SaveMovimientoFrecuenteConBloqueo(), 0);
  EXPECT_TRUE(m.DarRealizadaFechaAgenda(1));
}

KMF_INSTANTIATE_ENGINES(Concurrencia);

}  // namespace
}  // namespace kivmovfrec::testing
