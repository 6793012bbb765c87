// The database engines a test runs on, and a fresh private database per test.
//
// SQLite is always available. PostgreSQL is available when the environment variable
// KMF_TEST_PG holds a connection URI (postgresql://user@127.0.0.1:PORT/db, without an
// `options` parameter; scripts/pg.sh start prints one). Tests written for every engine derive
// from EngineTest and are instantiated with KMF_INSTANTIATE_ENGINES; on an engine this run
// lacks they are skipped with a message, never reported as passed.
//
//   class MyTest : public kivmovfrec::testing::EngineTest {
//    protected:
//     void SetUpDatabase() override { cn->Execute("Create Table ..."); }
//   };
//   TEST_P(MyTest, Something) { ... cn ... }
//   KMF_INSTANTIATE_ENGINES(MyTest);
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "kivmovfrec/db.h"

namespace kivmovfrec::testing {

inline constexpr const char* kPostgresSkipMessage =
    "PostgreSQL no está disponible en esta ejecución: defina KMF_TEST_PG con la dirección de un "
    "servidor (scripts/pg.sh start la imprime)";

// The PostgreSQL server given to this run, or nothing.
inline std::optional<std::string> PostgresUri() {
  const char* uri = std::getenv("KMF_TEST_PG");
  if (uri == nullptr || *uri == '\0') return std::nullopt;
  return std::string(uri);
}

inline std::string EngineName(Engine engine) {
  return engine == Engine::SQLite ? "SQLite" : "PostgreSQL";
}

// A database of its own for one test, removed afterwards with everything in it.
//   SQLite: a file in a new temporary folder (so that several connections can share it).
//   PostgreSQL: a new schema in the KMF_TEST_PG database; every connection opened through
//   uri() has it as its only search path, so tests never see each other's tables.
class TestDatabase {
 public:
  // Throws DbError for PostgreSQL when KMF_TEST_PG is not set or the server cannot be reached.
  explicit TestDatabase(Engine engine) : engine_(engine) {
    static std::atomic<int> counter{0};
    std::random_device random;
    const std::string unique = std::to_string(::getpid()) + "_" + std::to_string(counter++) + "_" +
                               std::to_string(random() % 1000000);
    if (engine == Engine::SQLite) {
      folder_ = std::filesystem::temp_directory_path() / ("kmf_test_" + unique);
      std::filesystem::remove_all(folder_);
      std::filesystem::create_directories(folder_);
      uri_ = "sqlite:" + (folder_ / "prueba.db").string();
      return;
    }
    const auto base = PostgresUri();
    if (!base) throw DbError(kPostgresSkipMessage);
    schema_ = "kmf_t_" + unique;
    admin_ = OpenConnection(*base);
    admin_->Execute("CREATE SCHEMA " + schema_);
    uri_ = *base + (base->find('?') == std::string::npos ? "?" : "&") + "options=-csearch_path%3D" +
           schema_;
  }

  ~TestDatabase() {
    if (admin_) {
      try {
        admin_->Execute("DROP SCHEMA " + schema_ + " CASCADE");
      } catch (const DbError& e) {
        std::cerr << "No se pudo eliminar el esquema de prueba " << schema_ << ": " << e.what()
                  << "\n";
      }
    }
    if (!folder_.empty()) {
      std::error_code ec;
      std::filesystem::remove_all(folder_, ec);
    }
  }

  TestDatabase(const TestDatabase&) = delete;
  TestDatabase& operator=(const TestDatabase&) = delete;

  Engine engine() const { return engine_; }
  // A URI for OpenConnection that reaches this database (and, on PostgreSQL, this schema).
  const std::string& uri() const { return uri_; }
  // A new connection to this database.
  std::shared_ptr<Connection> Open() const { return OpenConnection(uri_); }
  // SQLite: the folder of the database file, where a test may put other files too.
  const std::filesystem::path& folder() const { return folder_; }

 private:
  Engine engine_;
  std::string uri_;
  std::filesystem::path folder_;
  std::string schema_;
  std::shared_ptr<Connection> admin_;
};

// The kind of the DbError `f` throws (its message into `what` when given); a test failure when
// it throws none.
inline DbErrorKind KindOfFailure(const std::function<void()>& f, std::string* what = nullptr) {
  try {
    f();
  } catch (const DbError& e) {
    if (what) *what = e.what();
    return e.kind();
  }
  ADD_FAILURE() << "no DbError";
  return DbErrorKind::Other;
}

// Base of the tests that run on every engine: `cn` is a connection to a fresh database.
// A fixture derived from it may also be used by a plain TEST_F (not parameterised): that test
// then runs on SQLite only.
class EngineTest : public ::testing::TestWithParam<Engine> {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    engine_ = info != nullptr && info->value_param() != nullptr ? GetParam() : Engine::SQLite;
    if (engine_ == Engine::PostgreSQL && !PostgresUri()) {
      GTEST_SKIP() << kPostgresSkipMessage;
    }
    db_.emplace(engine_);
    cn = db_->Open();
    SetUpDatabase();
  }

  // Tables and rows the fixture needs; runs after `cn` is open (never for a skipped engine).
  virtual void SetUpDatabase() {}

  Engine engine() const { return engine_; }
  bool postgres() const { return engine_ == Engine::PostgreSQL; }
  // Another connection to the same database.
  std::shared_ptr<Connection> OpenAnother() const { return db_->Open(); }
  const TestDatabase& database() const { return *db_; }

  Engine engine_ = Engine::SQLite;
  // Declared before `cn`, so that the connections go first and the database after them.
  std::optional<TestDatabase> db_;
  std::shared_ptr<Connection> cn;
};

}  // namespace kivmovfrec::testing

// Instantiates an EngineTest suite once per engine (SQLite, PostgreSQL).
#define KMF_INSTANTIATE_ENGINES(suite)                                                   \
  INSTANTIATE_TEST_SUITE_P(                                                              \
      Engines, suite,                                                                    \
      ::testing::Values(::kivmovfrec::Engine::SQLite, ::kivmovfrec::Engine::PostgreSQL), \
      [](const auto& info) { return ::kivmovfrec::testing::EngineName(info.param); })
