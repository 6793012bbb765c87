// The library in process on SQLite files, each figure beside the same work done directly through
// sqlite3 in the same run:
//
//   CalculoFormulas / CalculoFormulasSql
//       SetCalculoFormulasMF on a 20-line entry (balances, rates, an index, line references, a
//       query, a difference line), against the statements that call ran, recorded once through a
//       recording connection and replayed with sqlite3 (prepare, bind, step every row, finalize).
//   GuardarCargar / GuardarCargarSql
//       SaveMovimientoFrecuenteConBloqueo + LoadMF of that movement, against its rows (schedule,
//       header, 20 lines) written back and read again through sqlite3 in one transaction.
//   Cotizacion/N
//       The direct rate look-up (clsMonedas::BuscarCotizacionDirecta) with N rows in
//       genCotizacionesMoneda: 10k rows of one pair, or 100 pairs of 10k rows each.
//   Saldo / SaldoSql
//       The account balance service (suite::DbAccountBalance) with 1M posted lines, against its
//       SUM prepared once and stepped through sqlite3.
//
// With KMF_BENCH_PEQUENO set (the smoke run of the test command) the tables are a hundredth of
// their size. Generated rows go in through sqlite3 with one transaction and prepared inserts.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "carpeta_temporal.h"
#include "formula/monedas.h"
#include "kivmovfrec/kivmovfrec.h"
#include "platform/db/sql_tokens.h"
#include "platform/suite/balance.h"

namespace {

namespace fs = std::filesystem;
using namespace kivmovfrec;
using formula::clsMonedas;
using formula::CotizacionDirecta;

int Escala() {
  return std::getenv("KMF_BENCH_PEQUENO") != nullptr ? 100 : 1;
}

const fs::path& Folder() {
  static const kmf_bench::CarpetaTemporal carpeta("kmf_biblioteca");
  return carpeta.path();
}

// ---- sqlite3 directly ------------------------------------------------------------------------

struct Db {
  sqlite3* db = nullptr;
  explicit Db(const fs::path& file) {
    if (sqlite3_open(file.c_str(), &db) != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(db));
  }
  ~Db() { sqlite3_close(db); }
  void Exec(const std::string& sql) const {
    char* err = nullptr;
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &err) != SQLITE_OK) {
      const std::string text = err ? err : "?";
      sqlite3_free(err);
      throw std::runtime_error(text + ": " + sql);
    }
  }
};

struct Stmt {
  sqlite3_stmt* s = nullptr;
  Stmt(const Db& db, const std::string& sql) {
    if (sqlite3_prepare_v2(db.db, sql.c_str(), -1, &s, nullptr) != SQLITE_OK) {
      throw std::runtime_error(std::string(sqlite3_errmsg(db.db)) + ": " + sql);
    }
  }
  ~Stmt() { sqlite3_finalize(s); }
  // Steps every row, reading every column as the library's resultsets do; returns the rows.
  int Drain() const {
    int rows = 0, rc = 0;
    while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
      for (int c = 0; c < sqlite3_column_count(s); ++c) {
        if (sqlite3_column_type(s, c) == SQLITE_TEXT) {
          benchmark::DoNotOptimize(sqlite3_column_text(s, c));
        } else {
          benchmark::DoNotOptimize(sqlite3_column_double(s, c));
        }
      }
      ++rows;
    }
    if (rc != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(sqlite3_db_handle(s)));
    sqlite3_reset(s);
    return rows;
  }
};

// Binds a value as the library's SQLite connection does.
void Bind(sqlite3_stmt* s, int i, const Variant& value) {
  std::visit(
      [&](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, bool>) {
          sqlite3_bind_int(s, i, v ? 1 : 0);
        } else if constexpr (std::is_same_v<T, uint8_t> || std::is_same_v<T, int16_t> ||
                             std::is_same_v<T, int32_t>) {
          sqlite3_bind_int64(s, i, v);
        } else if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>) {
          sqlite3_bind_double(s, i, v);
        } else if constexpr (std::is_same_v<T, Currency>) {
          sqlite3_bind_double(s, i, v.ToDouble());
        } else if constexpr (std::is_same_v<T, Date>) {
          const std::string text = sql::StoredDateText(v);
          sqlite3_bind_text(s, i, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        } else if constexpr (std::is_same_v<T, std::string>) {
          sqlite3_bind_text64(s, i, v.data(), v.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        } else {
          sqlite3_bind_null(s, i);
        }
      },
      value.storage());
}

// ---- The recording connection ----------------------------------------------------------------

// Forwards everything to the real connection and keeps each statement as the engine ran it.
class Grabadora final : public Connection {
 public:
  explicit Grabadora(std::shared_ptr<Connection> real) : real_(std::move(real)) {}
  std::vector<DbStatement> grabadas;

  Engine engine() const override { return real_->engine(); }
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql, const DbParams& p) override {
    grabadas.push_back({real_->Translate(sql), p});
    return real_->OpenResultset(sql, p);
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    grabadas.push_back({real_->Translate(sql), {}});
    return real_->OpenReadOnly(sql);
  }
  std::unique_ptr<Resultset> OpenReadOnlyRows(std::string_view sql, size_t max_rows,
                                              bool* more) override {
    grabadas.push_back({real_->Translate(sql), {}});
    return real_->OpenReadOnlyRows(sql, max_rows, more);
  }
  int64_t Execute(std::string_view sql, const DbParams& p) override {
    grabadas.push_back({real_->Translate(sql), p});
    return real_->Execute(sql, p);
  }
  void BeginTrans() override { real_->BeginTrans(); }
  void CommitTrans() override { real_->CommitTrans(); }
  void RollbackTrans() override { real_->RollbackTrans(); }
  int TransactionDepth() const override { return real_->TransactionDepth(); }
  bool InTransaction() const override { return real_->InTransaction(); }
  std::string Translate(std::string_view sql) const override { return real_->Translate(sql); }

 private:
  std::shared_ptr<Connection> real_;
};

// ---- The 20-line movement --------------------------------------------------------------------

struct Renglon {
  int cuenta;
  bool debe;
  const char* formula;
};

// Twenty accounts of the demo company, each line a different kind of element.
const std::vector<Renglon>& Renglones() {
  static const std::vector<Renglon> r = {
      {101, true, "[5:101]*0.01"},
      {102, true, "[4:102]*0.02"},
      {104, true, "[3:104]*0.01"},
      {105, true, "[1:101;0;0]*0.21"},
      {112, true, "[13:1;2]*10"},
      {113, true, "[7:1;2]*10"},
      {114, true, "[8:1;2]*10"},
      {116, true, "[6:5]*2"},
      {117, true, "[21:5]*2"},
      {120, true, "[22:5]*2"},
      {131, true,
       "[query]Select Sum(ACuImporteMC) From cceAsientoCuenta, cceAsientos Where ACuIDAsiento = "
       "AsiID And AsiEstado = 1 And ACuCuenta = 102 And AsiEmpresa = [pEmp][/query]*0.001"},
      {132, true, "1500.5*1.21"},
      {141, true, "[1:132;0;0]+[1:112;0;0]"},
      {142, true, "[5:141]*0.1"},
      {143, true, "[5:143]*0.1+100"},
      {144, true, "[1:141;0;0]*0.24"},
      {145, true, "[4:145]*0.05+50"},
      {146, true, "[3:146]*0.05+25"},
      {103, true, "100"},
      {111, false, "[10:]"},
  };
  return r;
}

std::string MovimientoJson() {
  std::ostringstream o;
  o << R"({"MovFrecuente": {"Estado": 0, "FechaEstado": "01/11/2026 08:00:00", "Vista": 0,
  "Detalle": "", "Imagen": 4, "ID": 0, "Empresa": 1, "Tipo": 1, "DelSistema": 0,
  "Nombre": "Cierre mensual", "Memo": "Cierre &[FFAñoMes]", "Ente": 0, "Modalidad": 1,
  "TipoImporte": 1, "Moneda": 1, "Recurrencia": 0, "MovVinculado": 0, "OrdenMovVinculado": 0,
  "UsuarioAlta": 1, "UsuarioAutoriza": 1},
 "Recurrencia": {"ID": 0, "NotificarDias": 0, "Notificar": 0, "SinVencimiento": 1,
  "FechaProxima": "30/11/2026", "CantidadVeces": 0, "CadaCuanto": 1, "TipoRecurrencia": 2,
  "EraNotificacion": "01/01/1900", "Postergado": 0, "Frecuencia": "200001", "FechaInicio": "30/11/2026",
  "FechaFinal": "31/12/2099", "NumOcurrencia": 1},
 "Renglones": [)";
  bool first = true;
  for (const auto& r : Renglones()) {
    std::string f;
    for (const char* c = r.formula; *c; ++c)
      f += *c == '"' ? std::string("\\\"") : std::string(1, *c);
    o << (first ? "" : ",\n") << R"(  {"Cuenta": )" << r.cuenta
      << R"(, "Proyecto": 0, "Departamento": 0, "Orden": 0, "AlDebe": )"
      << (r.debe ? "true" : "false") << R"(, "Formula": ")" << f
      << R"(", "ImporteCta": 0, "ImporteMF": 0, "TipoCambio": 0, "ValorTC": 0, "Detalle": ""})";
    first = false;
  }
  o << "]}";
  return o.str();
}

bool Movfrec(const fs::path& db, const std::string& args, std::string* salida) {
  const fs::path out = Folder() / "salida.txt";
  const std::string cmd = std::string(KMF_BINARY_DIR) + "/cli/movfrec --db 'sqlite:" + db.string() +
                          "' --hoy 2026-11-10 " + args + " < /dev/null > " + out.string() + " 2>&1";
  const int raw = std::system(cmd.c_str());
  std::ifstream in(out);
  std::stringstream text;
  text << in.rdbuf();
  *salida = text.str();
  return WIFEXITED(raw) && WEXITSTATUS(raw) == 0;
}

// The demo company with the 20-line movement imported; its ID, 0 on failure (state skipped).
struct Demo {
  fs::path file;
  int32_t id = 0;
  std::string error;
};

const Demo& DemoConMovimiento() {
  static const Demo demo = [] {
    Demo d;
    d.file = Folder() / "demo.db";
    const fs::path json = Folder() / "mov20.json";
    std::ofstream(json) << MovimientoJson();
    std::string out;
    if (!Movfrec(d.file, "init --demo", &out) ||
        !Movfrec(d.file, "importar " + json.string(), &out)) {
      d.error = out.substr(0, 400);
      return d;
    }
    Db db(d.file);
    Stmt s(db,
           "Select Max(MFrID) From genMovimientosFrecuentes Where MFrNombre = 'Cierre mensual'");
    if (sqlite3_step(s.s) == SQLITE_ROW) d.id = sqlite3_column_int(s.s, 0);
    if (d.id == 0) d.error = "no se importó el movimiento";
    return d;
  }();
  return demo;
}

std::unique_ptr<clsMovFrecuente> Fachada(std::shared_ptr<Connection> cn) {
  auto mf = std::make_unique<clsMovFrecuente>();
  mf->Servicios(SuiteServices::Defaults(cn));
  mf->Connect(cn);
  mf->Empresa(1);
  return mf;
}

void CalculoFormulas(benchmark::State& state) {
  const Demo& d = DemoConMovimiento();
  if (d.id == 0) return state.SkipWithError(d.error.c_str());
  auto mf = Fachada(OpenConnection("sqlite:" + d.file.string()));
  for (auto _ : state) {
    if (!mf->SetCalculoFormulasMF(d.id, true)) {
      return state.SkipWithError(("SetCalculoFormulasMF: " + mf->UltimaTrazaFx().error).c_str());
    }
  }
  state.counters["renglones"] = mf->EstructuraMovFrec()->Renglones()->QRenglones();
}

void CalculoFormulasSql(benchmark::State& state) {
  const Demo& d = DemoConMovimiento();
  if (d.id == 0) return state.SkipWithError(d.error.c_str());
  auto grabadora = std::make_shared<Grabadora>(OpenConnection("sqlite:" + d.file.string()));
  auto mf = Fachada(grabadora);
  mf->SetCalculoFormulasMF(d.id, true);  // warms the company context, as in CalculoFormulas
  grabadora->grabadas.clear();
  if (!mf->SetCalculoFormulasMF(d.id, true)) return state.SkipWithError("SetCalculoFormulasMF");
  const std::vector<DbStatement> sentencias = grabadora->grabadas;
  Db db(d.file);
  for (auto _ : state) {
    for (const auto& st : sentencias) {
      Stmt s(db, st.sql);
      for (size_t i = 0; i < st.params.size(); ++i)
        Bind(s.s, static_cast<int>(i + 1), st.params[i]);
      s.Drain();
    }
  }
  state.counters["sentencias"] = static_cast<double>(sentencias.size());
}

void GuardarCargar(benchmark::State& state) {
  const Demo& d = DemoConMovimiento();
  if (d.id == 0) return state.SkipWithError(d.error.c_str());
  auto grabadora = std::make_shared<Grabadora>(OpenConnection("sqlite:" + d.file.string()));
  auto mf = Fachada(grabadora);
  if (!mf->LoadMF(d.id)) return state.SkipWithError("LoadMF");
  grabadora->grabadas.clear();
  if (mf->SaveMovimientoFrecuenteConBloqueo(false) != d.id || !mf->LoadMF(d.id)) {
    return state.SkipWithError(("guardar: " + mf->UltimoError()).c_str());
  }
  // Statements handed to the connection by one save + load (rows written through an updatable
  // resultset add their own).
  state.counters["sentencias"] = static_cast<double>(grabadora->grabadas.size());
  for (auto _ : state) {
    if (mf->SaveMovimientoFrecuenteConBloqueo(false) != d.id) {
      return state.SkipWithError(("guardar: " + mf->UltimoError()).c_str());
    }
    if (!mf->LoadMF(d.id)) return state.SkipWithError("LoadMF");
  }
}

// The movement's rows, written back in one transaction and read again.
void GuardarCargarSql(benchmark::State& state) {
  const Demo& d = DemoConMovimiento();
  if (d.id == 0) return state.SkipWithError(d.error.c_str());
  Db db(d.file);
  const std::string id = std::to_string(d.id);
  const std::string rec =
      "(Select MFrRecurrencia From genMovimientosFrecuentes Where MFrID = " + id + ")";
  const std::vector<std::pair<std::string, std::string>> tablas = {
      {"genRecurrencias", "RecID = " + rec},
      {"genMovimientosFrecuentes", "MFrID = " + id},
      {"genRenglonMovFrecuentes", "RMFMovimiento = " + id + " Order By RMFOrden"},
  };
  // Header and schedule are replaced by key; the lines, which have none, are deleted and
  // inserted again, as a save of an existing movement does.
  struct Tabla {
    std::unique_ptr<Stmt> leer, borrar, escribir;
  };
  std::vector<Tabla> filas;
  for (const auto& [tabla, donde] : tablas) {
    Tabla f;
    f.leer = std::make_unique<Stmt>(db, "Select * From " + tabla + " Where " + donde);
    std::string marcas;
    for (int c = 0; c < sqlite3_column_count(f.leer->s); ++c) marcas += c ? ",?" : "?";
    const bool lineas = tabla == "genRenglonMovFrecuentes";
    if (lineas) {
      f.borrar =
          std::make_unique<Stmt>(db, "Delete From " + tabla + " Where RMFMovimiento = " + id);
    }
    f.escribir = std::make_unique<Stmt>(db, std::string(lineas ? "Insert" : "Insert Or Replace") +
                                                " Into " + tabla + " Values (" + marcas + ")");
    filas.push_back(std::move(f));
  }
  int leidas = 0;
  for (auto _ : state) {
    db.Exec("BEGIN IMMEDIATE");
    for (auto& f : filas) {
      // The rows as they are, written back.
      std::vector<std::vector<sqlite3_value*>> valores;
      while (sqlite3_step(f.leer->s) == SQLITE_ROW) {
        auto& fila = valores.emplace_back();
        for (int c = 0; c < sqlite3_column_count(f.leer->s); ++c) {
          fila.push_back(sqlite3_value_dup(sqlite3_column_value(f.leer->s, c)));
        }
      }
      sqlite3_reset(f.leer->s);
      if (f.borrar) f.borrar->Drain();
      for (auto& fila : valores) {
        for (size_t c = 0; c < fila.size(); ++c) {
          sqlite3_bind_value(f.escribir->s, static_cast<int>(c + 1), fila[c]);
          sqlite3_value_free(fila[c]);
        }
        if (sqlite3_step(f.escribir->s) != SQLITE_DONE) return state.SkipWithError("insert");
        sqlite3_reset(f.escribir->s);
      }
    }
    db.Exec("COMMIT");
    leidas = 0;
    for (auto& f : filas) leidas += f.leer->Drain();
  }
  if (leidas != 2 + static_cast<int>(Renglones().size())) {
    return state.SkipWithError(("se leyeron " + std::to_string(leidas) + " filas").c_str());
  }
  state.counters["filas"] = leidas;
}

// ---- Generated tables ------------------------------------------------------------------------

fs::path BaseVacia(const std::string& nombre) {
  const fs::path file = Folder() / (nombre + ".db");
  auto cn = OpenConnection("sqlite:" + file.string());
  InstallSchema(*cn);
  return file;
}

constexpr double kDia2000 = 36526;  // 01/01/2000 as a date serial

// `pares` currency pairs (2..pares+1 quoted in 1, type 1), one rate a day for 10k days each.
fs::path BaseCotizaciones(int filas) {
  static std::map<int, fs::path> hechas;
  if (hechas.count(filas)) return hechas[filas];
  const int dias = 10000 / Escala();
  const int pares = filas / 10000;
  const fs::path file = BaseVacia("cotizaciones_" + std::to_string(filas));
  Db db(file);
  db.Exec("BEGIN");
  Stmt ins(db,
           "Insert Into genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, "
           "CMoFecha, CMoCompra, CMoVenta) Values (?, 1, 1, ?, ?, ?)");
  for (int p = 0; p < pares; ++p) {
    for (int dia = 0; dia < dias; ++dia) {
      sqlite3_bind_int(ins.s, 1, p + 2);
      Bind(ins.s, 2, Variant(Date{kDia2000 + dia}));
      sqlite3_bind_double(ins.s, 3, 100 + dia * 0.01 + p);
      sqlite3_bind_double(ins.s, 4, 101 + dia * 0.01 + p);
      if (sqlite3_step(ins.s) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db.db));
      sqlite3_reset(ins.s);
    }
  }
  db.Exec("COMMIT");
  return hechas[filas] = file;
}

void Cotizacion(benchmark::State& state) {
  const int filas = static_cast<int>(state.range(0));
  const fs::path file = BaseCotizaciones(filas);
  clsMonedas monedas(nullptr, ParametrosBD{});
  monedas.Connect(OpenConnection("sqlite:" + file.string()));
  const int dias = 10000 / Escala();
  int dia = 0;
  for (auto _ : state) {
    // Each look-up on another day, halfway between two quotations.
    dia = (dia + 7919) % dias;
    const CotizacionDirecta c =
        monedas.BuscarCotizacionDirecta(2, 1, 1, Date{kDia2000 + dia + 0.5});
    if (!c.encontrada) return state.SkipWithError("cotización no encontrada");
  }
  state.counters["filas"] = filas / Escala();
}

// `filas` posted lines, two per entry: account 1 debit, account 2 credit, one entry a minute.
fs::path BaseSaldos() {
  static const fs::path file = [] {
    const int filas = 1000000 / Escala();
    const fs::path f = BaseVacia("saldos");
    Db db(f);
    db.Exec("BEGIN");
    Stmt asi(db,
             "Insert Into cceAsientos (AsiID, AsiEmpresa, AsiNumero, AsiFecha, AsiLibro, "
             "AsiEstado) Values (?, 1, ?, ?, 1, ?)");
    Stmt lin(db,
             "Insert Into cceAsientoCuenta (ACuIDAsiento, ACuOrden, ACuCuenta, ACuImporteMC, "
             "ACuDebe, ACuHaber) Values (?, ?, ?, ?, ?, ?)");
    for (int i = 1; i <= filas / 2; ++i) {
      sqlite3_bind_int(asi.s, 1, i);
      sqlite3_bind_int(asi.s, 2, i);
      Bind(asi.s, 3, Variant(Date{kDia2000 + i / 1440.0}));
      sqlite3_bind_int(asi.s, 4, i % 10 == 0 ? 0 : 1);  // one draft in ten
      if (sqlite3_step(asi.s) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db.db));
      sqlite3_reset(asi.s);
      const double importe = 10 + i % 1000;
      for (int orden = 1; orden <= 2; ++orden) {
        sqlite3_bind_int(lin.s, 1, i);
        sqlite3_bind_int(lin.s, 2, orden);
        sqlite3_bind_int(lin.s, 3, orden);
        sqlite3_bind_double(lin.s, 4, importe);
        sqlite3_bind_double(lin.s, 5, orden == 1 ? importe : 0);
        sqlite3_bind_double(lin.s, 6, orden == 1 ? 0 : importe);
        if (sqlite3_step(lin.s) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db.db));
        sqlite3_reset(lin.s);
      }
    }
    db.Exec("COMMIT");
    return f;
  }();
  return file;
}

// A date three quarters into the entries: most lines count.
Date FechaSaldo() {
  return Date{kDia2000 + 0.75 * (500000.0 / Escala()) / 1440.0};
}

void Saldo(benchmark::State& state) {
  suite::DbAccountBalance saldo(OpenConnection("sqlite:" + BaseSaldos().string()));
  double s = 0;
  for (auto _ : state) benchmark::DoNotOptimize(s = saldo.Saldo(1, FechaSaldo()));
  if (s <= 0) state.SkipWithError("saldo nulo");
}

void SaldoSql(benchmark::State& state) {
  Db db(BaseSaldos());
  Stmt s(db, suite::BalanceSql(1, FechaSaldo()));
  for (auto _ : state) s.Drain();
}

BENCHMARK(CalculoFormulas)->Unit(benchmark::kMicrosecond);
BENCHMARK(CalculoFormulasSql)->Unit(benchmark::kMicrosecond);
BENCHMARK(GuardarCargar)->Unit(benchmark::kMicrosecond);
BENCHMARK(GuardarCargarSql)->Unit(benchmark::kMicrosecond);
BENCHMARK(Cotizacion)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Saldo)->Unit(benchmark::kMillisecond);
BENCHMARK(SaldoSql)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
