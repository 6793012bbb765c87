// The movfrec host end to end on each engine, run as a separate process the way people run it:
//
//   Importar/PostgreSQL/N   `movfrec importar` of N new movements (one transaction). What counts
//                           is how the time grows with N: it should stay close to linear.
//   Ejecutar/<engine>       `movfrec ejecutar` over the demo company plus 200 imported movements
//                           that fall due; the counter ms_por_ocurrencia is the time of one
//                           posted occurrence, to compare PostgreSQL with SQLite.
//
// PostgreSQL cases need KMF_TEST_PG (scripts/pg.sh start prints it) and are skipped without it.
// Each iteration works on a fresh database (an SQLite file or a PostgreSQL schema) prepared
// outside the measured time. The movfrec binary is the one of this build tree, or the one
// KMF_MOVFREC names (to measure another build against the same databases).
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "carpeta_temporal.h"
#include "kivmovfrec/db.h"

namespace {

using kivmovfrec::Engine;

const char* const kMovimiento = R"({
  "MovFrecuente": {"Estado": 0, "FechaEstado": "05/11/2026 08:15:30", "Vista": 0, "Detalle": "",
    "Imagen": 4, "ID": 0, "Empresa": 1, "Tipo": 2, "DelSistema": 0,
    "Nombre": "Mantenimiento de ascensores", "Memo": "Abono de &[FMes-1]",
    "Ente": 3, "Modalidad": 2, "TipoImporte": 2, "Moneda": 1, "Recurrencia": 0,
    "MovVinculado": 0, "OrdenMovVinculado": 0, "UsuarioAlta": 1, "UsuarioAutoriza": 4},
  "Recurrencia": {"ID": 0, "NotificarDias": 2.5, "Notificar": 1, "SinVencimiento": 0,
    "FechaProxima": "05/11/2026 09:30", "CantidadVeces": 0, "CadaCuanto": 1,
    "TipoRecurrencia": 2, "EraNotificacion": "02/11/2026 21:30", "Postergado": 1,
    "Frecuencia": "200001", "FechaInicio": "05/10/2026 09:30", "FechaFinal": "15/06/2027",
    "NumOcurrencia": 3},
  "Renglones": [
    {"Cuenta": 145, "Proyecto": 1, "Departamento": 2, "Orden": 0, "AlDebe": true,
     "Formula": "1500.5*1.21", "ImporteCta": 1234.56, "ImporteMF": 0.1, "TipoCambio": 2,
     "ValorTC": 1425.75, "Detalle": "Abono mensual"},
    {"Cuenta": 111, "Proyecto": 0, "Departamento": 0, "Orden": 0, "AlDebe": false,
     "Formula": "1500.5*1.21", "ImporteCta": 0, "ImporteMF": 0, "TipoCambio": 0, "ValorTC": 0,
     "Detalle": ""}
  ]
})";

const std::filesystem::path& Folder() {
  static const kmf_bench::CarpetaTemporal carpeta("kmf_bench");
  return carpeta.path();
}

// A JSON list of `n` new movements, written once per size.
std::string Archivo(int n) {
  const auto path = Folder() / ("movimientos_" + std::to_string(n) + ".json");
  if (!std::filesystem::exists(path)) {
    std::ofstream out(path);
    out << "[";
    for (int i = 0; i < n; ++i) out << (i ? ",\n" : "") << kMovimiento;
    out << "]";
  }
  return path.string();
}

// A fresh database for one iteration, dropped afterwards.
class Base {
 public:
  explicit Base(Engine engine) {
    static int serial = 0;
    const std::string unique = std::to_string(::getpid()) + "_" + std::to_string(serial++);
    if (engine == Engine::SQLite) {
      file_ = Folder() / ("b" + unique + ".db");
      uri_ = "sqlite:" + file_.string();
      return;
    }
    const std::string base = std::getenv("KMF_TEST_PG");
    schema_ = "kmf_b_" + unique;
    admin_ = kivmovfrec::OpenConnection(base);
    admin_->Execute("CREATE SCHEMA " + schema_);
    uri_ = base + (base.find('?') == std::string::npos ? "?" : "&") + "options=-csearch_path%3D" +
           schema_;
  }
  ~Base() {
    if (admin_) admin_->Execute("DROP SCHEMA " + schema_ + " CASCADE");
    if (!file_.empty()) {
      for (const char* suffix : {"", "-wal", "-shm"})
        std::filesystem::remove(file_.string() + suffix);
    }
  }
  const std::string& uri() const { return uri_; }

 private:
  std::string uri_;
  std::filesystem::path file_;
  std::string schema_;
  std::shared_ptr<kivmovfrec::Connection> admin_;
};

// Runs movfrec on `uri` with today fixed; returns its standard output, empty on failure.
std::string Movfrec(const std::string& uri, const std::string& args, bool* ok) {
  const auto out = Folder() / "salida.txt";
  const char* other = std::getenv("KMF_MOVFREC");
  const std::string binary =
      other != nullptr && *other != '\0' ? other : std::string(KMF_BINARY_DIR) + "/cli/movfrec";
  const std::string cmd = binary + " --db '" + uri + "' --hoy 2026-11-10 " + args +
                          " < /dev/null > " + out.string() + " 2>&1";
  const int raw = std::system(cmd.c_str());
  *ok = WIFEXITED(raw) && WEXITSTATUS(raw) == 0;
  std::ifstream in(out);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

bool Prepare(benchmark::State& state, const std::string& uri, const std::string& args) {
  bool ok = false;
  const std::string out = Movfrec(uri, args, &ok);
  if (!ok) state.SkipWithError(("movfrec " + args + ": " + out.substr(0, 500)).c_str());
  return ok;
}

bool Skip(benchmark::State& state, Engine engine) {
  const char* pg = std::getenv("KMF_TEST_PG");
  if (engine == Engine::PostgreSQL && (pg == nullptr || *pg == '\0')) {
    state.SkipWithError("KMF_TEST_PG no está definida");
    return true;
  }
  return false;
}

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

void Importar(benchmark::State& state, Engine engine) {
  if (Skip(state, engine)) return;
  const int n = static_cast<int>(state.range(0));
  const std::string archivo = Archivo(n);
  for (auto _ : state) {
    Base base(engine);
    if (!Prepare(state, base.uri(), "init --demo")) return;
    const auto start = std::chrono::steady_clock::now();
    bool ok = false;
    const std::string out = Movfrec(base.uri(), "importar " + archivo, &ok);
    state.SetIterationTime(Seconds(start));
    if (!ok) return state.SkipWithError(("importar: " + out.substr(0, 500)).c_str());
  }
  state.counters["movimientos"] = n;
}

void Ejecutar(benchmark::State& state, Engine engine) {
  if (Skip(state, engine)) return;
  const std::string archivo = Archivo(200);
  double ocurrencias = 0, segundos = 0;
  for (auto _ : state) {
    Base base(engine);
    if (!Prepare(state, base.uri(), "init --demo") ||
        !Prepare(state, base.uri(), "importar " + archivo)) {
      return;
    }
    const auto start = std::chrono::steady_clock::now();
    bool ok = false;
    const std::string out = Movfrec(base.uri(), "ejecutar", &ok);
    const double s = Seconds(start);
    state.SetIterationTime(s);
    if (!ok) return state.SkipWithError(("ejecutar: " + out.substr(0, 500)).c_str());
    // One line per occurrence in the plain output.
    size_t lines = 0;
    for (char c : out) lines += c == '\n';
    ocurrencias += static_cast<double>(lines);
    segundos += s;
  }
  state.counters["ocurrencias"] = ocurrencias / static_cast<double>(state.iterations());
  state.counters["ms_por_ocurrencia"] = ocurrencias > 0 ? 1000.0 * segundos / ocurrencias : 0;
}

BENCHMARK_CAPTURE(Importar, PostgreSQL, Engine::PostgreSQL)
    ->Arg(1000)
    ->Arg(10000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(Ejecutar, SQLite, Engine::SQLite)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Ejecutar, PostgreSQL, Engine::PostgreSQL)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
