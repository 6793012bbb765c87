// The database a movfrec test works on, on each engine: a fresh SQLite file, or a fresh schema
// in the PostgreSQL database of KMF_TEST_PG reached through a URI whose `options` parameter sets
// the search path (movfrec hands the URI to libpq as it is). The CLI tests do not link the
// component, so schemas are made and SQL is run through the engines' own shells (sqlite3,
// psql).
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace kmf_cli {

enum class Motor { SQLite, PostgreSQL };

inline std::string NombreMotor(const ::testing::TestParamInfo<Motor>& info) {
  return info.param == Motor::SQLite ? "SQLite" : "PostgreSQL";
}

inline std::string Quote(const std::string& arg) {
  std::string q = "'";
  for (char c : arg) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

inline bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// The whole content of a file, which is then removed unless `remove` is false.
inline std::string Slurp(const std::string& path, bool remove = true) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  if (remove) std::remove(path.c_str());
  return text.str();
}

// How one run of movfrec ended: exit status (-1 when it did not exit) and its two outputs.
struct Result {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs the movfrec binary with `args`, standard input closed, MOVFREC_DB set to `env_db` (unset
// when empty). The outputs pass through the files `base`.out and `base`.err.
inline Result RunMovfrec(const std::string& base, const std::vector<std::string>& args,
                         const std::string& env_db = "") {
  std::string cmd = env_db.empty() ? "env -u MOVFREC_DB " : "env MOVFREC_DB=" + Quote(env_db) + " ";
  cmd += Quote(std::string(KMF_BINARY_DIR) + "/cli/movfrec");
  for (const auto& a : args) cmd += " " + Quote(a);
  cmd += " < /dev/null > " + Quote(base + ".out") + " 2> " + Quote(base + ".err");
  const int raw = std::system(cmd.c_str());
  Result r;
  r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  r.out = Slurp(base + ".out");
  r.err = Slurp(base + ".err");
  return r;
}

// A path prefix in the temporary folder no other test of this process uses.
inline std::string UniqueBase(const std::string& name) {
  static int serial = 0;
  return ::testing::TempDir() + name + "_" + std::to_string(::getpid()) + "_" +
         std::to_string(serial++);
}

inline std::string ServidorPostgres() {
  const char* uri = std::getenv("KMF_TEST_PG");
  return uri == nullptr ? std::string() : std::string(uri);
}

inline bool Hay(const char* programa) {
  return std::system(("command -v " + std::string(programa) + " > /dev/null 2>&1").c_str()) == 0;
}

// Why this engine cannot be tested in this run ("" when it can).
inline std::string MotivoParaSaltar(Motor motor) {
  if (motor == Motor::SQLite) return "";
  if (ServidorPostgres().empty()) {
    return "PostgreSQL no está disponible en esta ejecución: defina KMF_TEST_PG con la "
           "dirección de un servidor (scripts/pg.sh start la imprime)";
  }
  if (!Hay("psql")) return "falta el programa psql para preparar el esquema de PostgreSQL";
  return "";
}

// One database for one test; `base` is a unique path prefix in the temporary folder.
class CliDatabase {
 public:
  CliDatabase(Motor motor, const std::string& base) : motor_(motor) {
    if (motor == Motor::SQLite) {
      file_ = base + ".db";
      uri_ = "sqlite:" + file_;
      return;
    }
    const std::string servidor = ServidorPostgres();
    schema_ = "kmf_cli_" + std::to_string(::getpid()) + "_" + std::to_string(Serial()++);
    creado_ = Psql(servidor, "CREATE SCHEMA " + schema_);
    uri_ = servidor + (servidor.find('?') == std::string::npos ? "?" : "&") +
           "options=-csearch_path%3D" + schema_;
  }
  ~CliDatabase() {
    if (motor_ == Motor::PostgreSQL) {
      if (creado_ && !Psql(ServidorPostgres(), "DROP SCHEMA " + schema_ + " CASCADE")) {
        std::cerr << "No se pudo eliminar el esquema de prueba " << schema_ << "\n";
      }
      return;
    }
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
      std::remove((file_ + suffix).c_str());
    }
  }
  CliDatabase(const CliDatabase&) = delete;
  CliDatabase& operator=(const CliDatabase&) = delete;

  // False when the PostgreSQL schema could not be created.
  bool ok() const { return motor_ == Motor::SQLite || creado_; }
  // What --db or MOVFREC_DB receives.
  const std::string& uri() const { return uri_; }

  // Runs SQL on this database through the engine's shell; false when the shell is missing or
  // the statement failed. The rows it returns go to the file `salida`, one a line, columns
  // separated by "|".
  bool Sql(const std::string& sql, const std::string& salida = "/dev/null") const {
    if (motor_ == Motor::PostgreSQL) return Psql(uri_, sql, salida);
    if (!Hay("sqlite3")) return false;
    return std::system(
               ("sqlite3 " + Quote(file_) + " " + Quote(sql) + " > " + Quote(salida)).c_str()) == 0;
  }

 private:
  static int& Serial() {
    static int serial = 0;
    return serial;
  }
  static bool Psql(const std::string& uri, const std::string& sql,
                   const std::string& salida = "/dev/null") {
    const std::string cmd = "psql -X -q -A -t -v ON_ERROR_STOP=1 -d " + Quote(uri) + " -c " +
                            Quote(sql) + " > " + Quote(salida);
    return std::system(cmd.c_str()) == 0;
  }

  Motor motor_;
  std::string file_;
  std::string schema_;
  std::string uri_;
  bool creado_ = false;
};

// A test run once per engine on a fresh, empty database (`db_` is its URI); skipped when the
// engine is not available in this run.
class MotorTest : public ::testing::TestWithParam<Motor> {
 protected:
  void SetUp() override {
    if (const std::string motivo = MotivoParaSaltar(GetParam()); !motivo.empty()) {
      GTEST_SKIP() << motivo;
    }
    base_ = UniqueBase("movfrec");
    db_obj_ = std::make_unique<CliDatabase>(GetParam(), base_);
    ASSERT_TRUE(db_obj_->ok()) << "no se pudo preparar la base de prueba";
    db_ = db_obj_->uri();
  }
  bool postgres() const { return GetParam() == Motor::PostgreSQL; }

  std::string base_;
  std::unique_ptr<CliDatabase> db_obj_;
  std::string db_;
};

// A MotorTest whose database holds the demo company (movfrec init --demo), with "today" fixed
// at 10/11/2026 for every run.
class DemoMotorTest : public MotorTest {
 protected:
  void SetUp() override {
    MotorTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    const Result init = Run({"init", "--demo"});
    ASSERT_EQ(init.status, 0) << init.err;
  }

  // Runs movfrec --db <test db> --hoy 2026-11-10 `args`.
  Result Run(const std::vector<std::string>& args) {
    std::vector<std::string> all = {"--db", db_, "--hoy", "2026-11-10"};
    all.insert(all.end(), args.begin(), args.end());
    return RunMovfrec(base_, all);
  }

  // Runs `args` with --json, which must succeed; what it printed.
  nlohmann::ordered_json RunJson(const std::vector<std::string>& args) {
    std::vector<std::string> all = {"--json"};
    all.insert(all.end(), args.begin(), args.end());
    const Result r = Run(all);
    EXPECT_EQ(r.status, 0) << r.err;
    return r.status == 0 ? nlohmann::ordered_json::parse(r.out) : nlohmann::ordered_json();
  }

  // Runs `args`, which must end with exit `status`, say `texto` on stderr and print nothing.
  void ExpectFails(const std::vector<std::string>& args, int status, const std::string& texto) {
    const Result r = Run(args);
    EXPECT_EQ(r.status, status) << texto;
    EXPECT_TRUE(Has(r.err, texto)) << texto << "\n" << r.err.substr(0, 2000);
    EXPECT_TRUE(r.out.empty()) << r.out;
  }
};

}  // namespace kmf_cli

// Instantiates a movfrec test suite once per engine.
#define KMF_CLI_MOTORES(suite)                                                                   \
  INSTANTIATE_TEST_SUITE_P(                                                                      \
      Engines, suite, ::testing::Values(::kmf_cli::Motor::SQLite, ::kmf_cli::Motor::PostgreSQL), \
      ::kmf_cli::NombreMotor)
