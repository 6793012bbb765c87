// The movfrec host over many schedules, run as a separate process on an SQLite file, beside the
// plain-text accounting tool people would otherwise use for the same forecast:
//
//   Ejecutar/<engine>/N
//                     `movfrec ejecutar` over N due occurrences (a movement of three lines, one
//                     formula each, due monthly; M movements each due N/M times). Counters:
//                     us_por_ocurrencia (wall), cpu_us_por_ocurrencia (user + system of the
//                     movfrec process), ocurrencias_por_s and its peak resident memory (pico_mb),
//                     both from wait4's rusage.
//   Agenda            `movfrec agenda` over M monthly schedules for ten years.
//   Pronostico        `movfrec pronostico` over the same schedules for twelve months (every
//                     occurrence's formulas computed, in memory), the demo's own entries
//                     retired so that exactly the journal's schedules are forecast.
//   HledgerPrint      `hledger print --forecast` on the equivalent journal, same period.
//   HledgerBalance    `hledger balance -M --forecast` on it for the same twelve months.
//
// The PostgreSQL case needs KMF_TEST_PG (scripts/pg.sh start prints it) and works in a schema of
// its own. M is 1,000, or 5 when KMF_BENCH_PEQUENO is set (the smoke run of the test command). The
// hledger cases are skipped with a message when hledger is not on the PATH. Databases and journals
// are generated once per process, outside the measured time, in a temporary folder removed at exit.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "carpeta_temporal.h"
#include "kivmovfrec/db.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;

int Movimientos() {
  return std::getenv("KMF_BENCH_PEQUENO") != nullptr ? 5 : 1000;
}

const fs::path& Folder() {
  static const kmf_bench::CarpetaTemporal carpeta("kmf_escala");
  return carpeta.path();
}

std::string Movfrec() {
  const char* other = std::getenv("KMF_MOVFREC");
  return other != nullptr && *other != '\0' ? other : std::string(KMF_BINARY_DIR) + "/cli/movfrec";
}

struct Salida {
  bool ok = false;
  std::string texto;
  double segundos = 0;
  double pico_mb = 0;
  double cpu_segundos = 0;  // user + system time of the child
};

// Runs argv with stdin from /dev/null and stdout + stderr to a file; the time and peak resident
// memory are those of the child alone.
Salida Correr(const std::vector<std::string>& args) {
  Salida s;
  const fs::path out = Folder() / "salida.txt";
  posix_spawn_file_actions_t acciones;
  posix_spawn_file_actions_init(&acciones);
  posix_spawn_file_actions_addopen(&acciones, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&acciones, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_adddup2(&acciones, 1, 2);
  std::vector<char*> argv;
  for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  const auto start = std::chrono::steady_clock::now();
  pid_t pid = 0;
  const int err = posix_spawnp(&pid, argv[0], &acciones, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&acciones);
  if (err != 0) {
    s.texto = "no se pudo ejecutar " + args[0];
    return s;
  }
  int status = 0;
  rusage uso{};
  ::wait4(pid, &status, 0, &uso);
  s.segundos = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  s.pico_mb = static_cast<double>(uso.ru_maxrss) / 1024.0;  // kB on Linux
  s.cpu_segundos = static_cast<double>(uso.ru_utime.tv_sec + uso.ru_stime.tv_sec) +
                   static_cast<double>(uso.ru_utime.tv_usec + uso.ru_stime.tv_usec) / 1e6;
  s.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  std::ifstream in(out);
  std::stringstream text;
  text << in.rdbuf();
  s.texto = text.str();
  return s;
}

Salida CorrerMovfrec(const std::string& db, const std::string& hoy,
                     const std::vector<std::string>& args) {
  const std::string uri = db.rfind("postgres", 0) == 0 ? db : "sqlite:" + db;
  std::vector<std::string> all = {Movfrec(), "--db", uri, "--hoy", hoy};
  all.insert(all.end(), args.begin(), args.end());
  return Correr(all);
}

// One monthly entry of three lines, one formula each, due on the first of the month from
// `inicio` (dd/mm/yyyy) with no end. Debits 145 and 146, credits 111.
std::string Movimiento(int n, const std::string& inicio) {
  const double a = 1000 + n % 97, b = 200 + n % 13;
  std::ostringstream o;
  o << R"({"MovFrecuente": {"Estado": 0, "FechaEstado": "01/11/2026 08:00:00", "Vista": 0,
  "Detalle": "", "Imagen": 4, "ID": 0, "Empresa": 1, "Tipo": 1, "DelSistema": 0,
  "Nombre": "Cuota )"
    << n << R"(", "Memo": "Cuota &[FFAñoMes]", "Ente": 0, "Modalidad": 1, "TipoImporte": 1,
  "Moneda": 1, "Recurrencia": 0, "MovVinculado": 0, "OrdenMovVinculado": 0, "UsuarioAlta": 1,
  "UsuarioAutoriza": 1},
 "Recurrencia": {"ID": 0, "NotificarDias": 0, "Notificar": 0, "SinVencimiento": 1,
  "FechaProxima": ")"
    << inicio << R"(", "CantidadVeces": 0, "CadaCuanto": 1, "TipoRecurrencia": 2,
  "EraNotificacion": "01/01/1900", "Postergado": 0, "Frecuencia": "200001", "FechaInicio": ")"
    << inicio << R"(", "FechaFinal": "31/12/2099", "NumOcurrencia": 1},
 "Renglones": [
  {"Cuenta": 145, "Proyecto": 0, "Departamento": 0, "Orden": 0, "AlDebe": true,
   "Formula": ")"
    << a
    << R"(*1.21", "ImporteCta": 0, "ImporteMF": 0, "TipoCambio": 0, "ValorTC": 0, "Detalle": ""},
  {"Cuenta": 146, "Proyecto": 0, "Departamento": 0, "Orden": 0, "AlDebe": true,
   "Formula": ")"
    << b << R"(*2", "ImporteCta": 0, "ImporteMF": 0, "TipoCambio": 0, "ValorTC": 0, "Detalle": ""},
  {"Cuenta": 111, "Proyecto": 0, "Departamento": 0, "Orden": 0, "AlDebe": false,
   "Formula": ")"
    << a << "*1.21+" << b << R"(*2", "ImporteCta": 0, "ImporteMF": 0, "TipoCambio": 0,
   "ValorTC": 0, "Detalle": ""}]})";
  return o.str();
}

// The same schedules as a periodic-transaction journal.
std::string Diario(int m) {
  std::ostringstream o;
  o.setf(std::ios::fixed);
  o.precision(2);
  for (int n = 0; n < m; ++n) {
    const double a = (1000 + n % 97) * 1.21, b = (200 + n % 13) * 2.0;
    o << "~ monthly from 2027-01-01  Cuota " << n << "\n"
      << "    gastos:145    " << a << "\n"
      << "    gastos:146    " << b << "\n"
      << "    pasivo:111\n\n";
  }
  return o.str();
}

// Fills `db` (an SQLite file or a PostgreSQL URI) with the demo company and `m` monthly
// movements starting on `inicio`. False, with the state skipped, on failure.
bool Llenar(const std::string& db, const std::string& inicio, benchmark::State& state) {
  const fs::path json = Folder() / ("movimientos_" + std::to_string(inicio.size()) + ".json");
  {
    std::ofstream out(json);
    out << "[";
    for (int n = 0; n < Movimientos(); ++n) out << (n ? ",\n" : "") << Movimiento(n, inicio);
    out << "]";
  }
  for (const auto& args :
       std::vector<std::vector<std::string>>{{"init", "--demo"}, {"importar", json.string()}}) {
    const Salida s = CorrerMovfrec(db, "2026-11-10", args);
    if (!s.ok) {
      state.SkipWithError(("movfrec " + args[0] + ": " + s.texto.substr(0, 400)).c_str());
      return false;
    }
  }
  return true;
}

// A filled SQLite file, copied from a template made once per start date (ejecutar consumes it).
std::string Base(const std::string& inicio, const std::string& nombre, benchmark::State& state) {
  static std::map<std::string, fs::path> plantillas;
  auto& plantilla = plantillas[inicio];
  if (plantilla.empty()) {
    const fs::path db = Folder() / ("plantilla_" + std::to_string(plantillas.size()) + ".db");
    if (!Llenar(db.string(), inicio, state)) return "";
    plantilla = db;
  }
  const fs::path copia = Folder() / (nombre + ".db");
  fs::copy_file(plantilla, copia, fs::copy_options::overwrite_existing);
  return copia.string();
}

size_t Lineas(const std::string& texto) {
  size_t n = 0;
  for (char c : texto) n += c == '\n';
  return n;
}

// A fresh schema of the KMF_TEST_PG database, filled, dropped at the end of the scope.
class EsquemaPg {
 public:
  EsquemaPg(const std::string& inicio, benchmark::State& state) {
    static int serie = 0;
    const std::string base = std::getenv("KMF_TEST_PG");
    esquema_ = "kmf_escala_" + std::to_string(::getpid()) + "_" + std::to_string(serie++);
    admin_ = kivmovfrec::OpenConnection(base);
    admin_->Execute("CREATE SCHEMA " + esquema_);
    uri_ = base + (base.find('?') == std::string::npos ? "?" : "&") + "options=-csearch_path%3D" +
           esquema_;
    if (!Llenar(uri_, inicio, state)) uri_.clear();
  }
  ~EsquemaPg() { admin_->Execute("DROP SCHEMA " + esquema_ + " CASCADE"); }
  const std::string& uri() const { return uri_; }

 private:
  std::string esquema_, uri_;
  std::shared_ptr<kivmovfrec::Connection> admin_;
};

// Due N/M times each: the first of the month N/M - 1 months after January 2000.
void Ejecutar(benchmark::State& state, kivmovfrec::Engine engine) {
  const char* pg = std::getenv("KMF_TEST_PG");
  if (engine == kivmovfrec::Engine::PostgreSQL && (pg == nullptr || *pg == '\0')) {
    return state.SkipWithError("KMF_TEST_PG no está definida");
  }
  const int m = Movimientos();
  const int por_movimiento = static_cast<int>(state.range(0));
  const int meses = por_movimiento - 1;
  char hoy[32];
  std::snprintf(hoy, sizeof hoy, "%04d-%02d-01", 2000 + meses / 12, 1 + meses % 12);
  double ocurrencias = 0, segundos = 0, cpu = 0, pico = 0;
  for (auto _ : state) {
    std::unique_ptr<EsquemaPg> esquema;
    std::string db;
    if (engine == kivmovfrec::Engine::PostgreSQL) {
      esquema = std::make_unique<EsquemaPg>("01/01/2000", state);
      db = esquema->uri();
    } else {
      db = Base("01/01/2000", "ejecutar", state);
    }
    if (db.empty()) return;
    const Salida s = CorrerMovfrec(db, hoy, {"ejecutar"});
    state.SetIterationTime(s.segundos);
    if (!s.ok) return state.SkipWithError(("ejecutar: " + s.texto.substr(0, 400)).c_str());
    // The summary line: "N ocurrencias hasta el ...: E ejecutadas, ...".
    const size_t fin = s.texto.find(" ejecutadas");
    const size_t inicio = fin == std::string::npos ? fin : s.texto.rfind(' ', fin - 1);
    const size_t hechas =
        inicio == std::string::npos ? 0 : std::stoul(s.texto.substr(inicio + 1, fin - inicio - 1));
    if (hechas != static_cast<size_t>(m) * por_movimiento) {
      return state.SkipWithError(("ejecutar escribió " + std::to_string(hechas) +
                                  " ocurrencias, se esperaban " +
                                  std::to_string(m * por_movimiento))
                                     .c_str());
    }
    ocurrencias += static_cast<double>(hechas);
    segundos += s.segundos;
    cpu += s.cpu_segundos;
    pico = std::max(pico, s.pico_mb);
  }
  state.counters["ocurrencias"] = static_cast<double>(m) * por_movimiento;
  state.counters["us_por_ocurrencia"] = 1e6 * segundos / ocurrencias;
  state.counters["cpu_us_por_ocurrencia"] = 1e6 * cpu / ocurrencias;
  state.counters["ocurrencias_por_s"] = ocurrencias / segundos;
  state.counters["pico_mb"] = pico;
}

void Agenda(benchmark::State& state) {
  const std::string db = Base("01/01/2027", "agenda", state);
  if (db.empty()) return;
  size_t lineas = 0;
  for (auto _ : state) {
    const Salida s = CorrerMovfrec(db, "2026-12-01",
                                   {"agenda", "--desde", "2027-01-01", "--hasta", "2036-12-31"});
    state.SetIterationTime(s.segundos);
    if (!s.ok) return state.SkipWithError(("agenda: " + s.texto.substr(0, 400)).c_str());
    lineas = Lineas(s.texto);
  }
  // At least one line per due date of the generated schedules.
  if (lineas < static_cast<size_t>(Movimientos()) * 120) {
    return state.SkipWithError(("agenda listó " + std::to_string(lineas) + " líneas").c_str());
  }
  state.counters["lineas"] = static_cast<double>(lineas);
}

void Pronostico(benchmark::State& state) {
  const std::string db = Base("01/01/2027", "pronostico", state);
  if (db.empty()) return;
  // Only the generated schedules, as in the journal: the demo's own entries and vouchers are not
  // in it, and their formulas (the occurrence count, a line of another movement's document)
  // would take the whole forecast to the dry run of the main job.
  kivmovfrec::OpenConnection("sqlite:" + db)
      ->Execute(
          "Update genMovimientosFrecuentes Set MFrEstado = 9 Where MFrTipo In (1, 2, 4) And "
          "MFrNombre Not Like 'Cuota %'");
  for (auto _ : state) {
    const Salida s =
        CorrerMovfrec(db, "2026-12-01",
                      {"pronostico", "--desde", "2027-01-01", "--hasta", "2027-12-31", "--csv"});
    state.SetIterationTime(s.segundos);
    if (!s.ok) return state.SkipWithError(("pronostico: " + s.texto.substr(0, 400)).c_str());
    // Refused occurrences are listed on the error output, which shares the file.
    if (s.texto.find("no se ejecutaría") != std::string::npos) {
      return state.SkipWithError(("pronostico: " + s.texto.substr(0, 400)).c_str());
    }
    // A header and twelve months of at least the three accounts the schedules move.
    if (Lineas(s.texto) < 1 + 3 * 12) {
      return state.SkipWithError(("pronostico: " + s.texto.substr(0, 400)).c_str());
    }
  }
}

bool HayHledger() {
  static const bool hay = Correr({"hledger", "--version"}).ok;
  return hay;
}

std::string Journal() {
  const fs::path j = Folder() / "agenda.journal";
  if (!fs::exists(j)) std::ofstream(j) << Diario(Movimientos());
  return j.string();
}

void Hledger(benchmark::State& state, const std::vector<std::string>& args) {
  if (!HayHledger()) return state.SkipWithError("hledger no está instalado");
  std::vector<std::string> all = {"hledger", "-f", Journal()};
  all.insert(all.end(), args.begin(), args.end());
  for (auto _ : state) {
    const Salida s = Correr(all);
    state.SetIterationTime(s.segundos);
    if (!s.ok) return state.SkipWithError(("hledger: " + s.texto.substr(0, 400)).c_str());
  }
}

BENCHMARK_CAPTURE(Ejecutar, SQLite, kivmovfrec::Engine::SQLite)
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Ejecutar, PostgreSQL, kivmovfrec::Engine::PostgreSQL)
    ->Arg(10)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Agenda)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Pronostico)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
void HledgerPrint(benchmark::State& state) {
  Hledger(state, {"print", "--forecast=2027-01-01..2037-01-01"});
}
void HledgerBalance(benchmark::State& state) {
  Hledger(state, {"balance", "-M", "--forecast=2027-01-01..2028-01-01"});
}
BENCHMARK(HledgerPrint)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(HledgerBalance)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
