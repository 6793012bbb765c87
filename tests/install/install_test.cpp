// Installing the suite tables on every engine: idempotence, the demo guard, all-or-nothing on
// failure, the same demo content everywhere.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>

#include "install/demo_db.h"
#include "kivmovfrec/install.h"
#include "storage/install/sql_script.h"
#include "support/db_engines.h"
#include "support/db_snapshot.h"
#include "support/faulty_connection.h"

namespace kivmovfrec::testing {
namespace {

using ::testing::HasSubstr;

// Every table the installer creates, read from the SQLite schema it runs.
const std::vector<std::string>& AllTables() {
  static const std::vector<std::string> kTables = [] {
    std::ifstream in(std::string(KMF_SOURCE_DIR) + "/schema/sqlite/schema.sql");
    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const std::regex create(R"(CREATE TABLE IF NOT EXISTS (\w+))");
    std::vector<std::string> names;
    for (std::sregex_iterator it(text.begin(), text.end(), create), end; it != end; ++it)
      names.push_back((*it)[1]);
    return names;
  }();
  return kTables;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

class Install : public EngineTest {};

// Without the demo every table is there and empty. The demo also loads later into such an
// installation; then nothing changes any more.
TEST_P(Install, CreatesEveryTableAndASecondRunChangesNothing) {
  InstallSchema(*cn);
  ASSERT_GT(AllTables().size(), 20u);
  for (const auto& [table, rows] : TakeSnapshot(*cn, AllTables()))
    EXPECT_EQ(rows.size(), 0u) << table;
  InstallSchema(*cn, {.demo = true});
  const auto before = TakeSnapshot(*cn, AllTables());
  EXPECT_GT(before.at("genMovimientosFrecuentes").size(), 0u);
  InstallSchema(*cn, {.demo = true});
  InstallSchema(*cn);
  EXPECT_EQ(TakeSnapshot(*cn, AllTables()), before);
  EXPECT_FALSE(cn->InTransaction());
}

TEST_P(Install, ExistingCompanyOneKeepsTheDemoOut) {
  InstallSchema(*cn);
  cn->Execute("Insert Into cceEmpresas (EmpID, EmpNombre) Values (1, 'Empresa real')");
  InstallSchema(*cn, {.demo = true});
  EXPECT_EQ(CountRows(*cn, "Select * From cceEmpresas"), 1);
  EXPECT_EQ(CountRows(*cn, "Select * From genMovimientosFrecuentes"), 0);
  EXPECT_EQ(CountRows(*cn, "Select * From genContadores"), 0);
}

// A database whose table clashes with ours: the demo insert fails, named by script and line, and
// the tables created in the same run disappear with it.
TEST_P(Install, FailureRollsBackEverythingAndNamesTheStatement) {
  cn->Execute("Create Table genContadores (Otra INTEGER)");
  try {
    InstallSchema(*cn, {.demo = true});
    FAIL() << "expected DbError";
  } catch (const DbError& e) {
    EXPECT_THAT(e.what(), HasSubstr("demo.sql, line "));
    EXPECT_THAT(Lower(e.what()), HasSubstr("cnttabla"));  // PostgreSQL names it in lower case
  }
  EXPECT_THROW(cn->OpenResultset("Select * From cceEmpresas"), DbError);
}

// Whichever statement fails, nothing of the run remains and a later run succeeds.
TEST_P(Install, FailureAtAnyStatementLeavesNothing) {
  // Commits are not counted: the installer's single commit is not one of its statements.
  FaultyConnection probe(cn, 0, false);
  InstallSchema(probe, {.demo = true});
  const int total = probe.statements();
  ASSERT_GT(total, 50);

  for (int k : {1, 2, total / 3, total / 2, total - 1, total}) {
    SCOPED_TRACE(k);
    TestDatabase fresh(engine());
    auto inner = fresh.Open();
    FaultyConnection failing(inner, k, false);
    EXPECT_THROW(InstallSchema(failing, {.demo = true}), DbError);
    EXPECT_FALSE(inner->InTransaction());
    EXPECT_THROW(inner->OpenResultset("Select * From genParametros"), DbError);
    InstallSchema(*inner, {.demo = true});
    EXPECT_EQ(CountRows(*inner, "Select * From cceEmpresas"), 2);
  }
}

TEST_P(Install, RefusesAnOpenTransaction) {
  cn->BeginTrans();
  EXPECT_THROW(InstallSchema(*cn), DbError);
  EXPECT_TRUE(cn->InTransaction());
  cn->RollbackTrans();
  EXPECT_THROW(cn->OpenResultset("Select * From genParametros"), DbError);
}

KMF_INSTANTIATE_ENGINES(Install);

// Both engines end up with the same tables, columns and rows, value for value.
TEST(PgInstall, BothEnginesHoldTheSameDemo) {
  if (!PostgresUri()) GTEST_SKIP() << kPostgresSkipMessage;
  TestDatabase lite(Engine::SQLite), pg(Engine::PostgreSQL);
  auto a = lite.Open(), b = pg.Open();
  InstallSchema(*a, {.demo = true});
  InstallSchema(*b, {.demo = true});
  for (const auto& table : AllTables()) {
    SCOPED_TRACE(table);
    auto ca = a->OpenResultset("Select * From " + table + " Where 1 = 0");
    auto cb = b->OpenResultset("Select * From " + table + " Where 1 = 0");
    ASSERT_EQ(ca->ColumnCount(), cb->ColumnCount());
    for (int i = 0; i < ca->ColumnCount(); ++i) {
      EXPECT_EQ(Lower(ca->ColumnName(i)), Lower(cb->ColumnName(i)));
    }
  }
  const auto sa = TakeSnapshot(*a, AllTables()), sb = TakeSnapshot(*b, AllTables());
  for (const auto& table : AllTables()) EXPECT_EQ(sa.at(table), sb.at(table)) << table;
}

class RunScript : public EngineTest {};

// Where statements are cut is sql::SplitStatements' business (tests/db); here the line each one
// starts on, also for the same text as an earlier statement, and the script and line named when
// one fails. A script that cannot be cut runs nothing.
TEST_P(RunScript, NamesTheScriptAndLineOfTheFailingStatement) {
  const std::string script =
      "-- cabecera; con punto y coma\n"
      "Create Table t (a VARCHAR(20));\n"
      "\n"
      "Insert Into t Values ('x;y'); /* bloque; */ Insert Into t Values ('x;y');\n"
      "Insert Into t Values ('x;y');\n"
      "Insert Into nada Values (1)";
  const auto statements = install::SplitScript(script);
  ASSERT_EQ(statements.size(), 5u);
  EXPECT_EQ(statements[0].line, 2);
  EXPECT_EQ(statements[1].line, 4);
  EXPECT_EQ(statements[2].line, 4);
  EXPECT_EQ(statements[3].line, 5);
  try {
    install::RunScript(*cn, "prueba.sql", script);
    FAIL() << "expected DbError";
  } catch (const DbError& e) {
    EXPECT_THAT(e.what(), HasSubstr("prueba.sql, line 6: "));
    EXPECT_THAT(e.what(), HasSubstr("nada"));
  }
  EXPECT_EQ(CountRows(*cn, "Select * From t Where a = 'x;y'"), 3);

  EXPECT_THROW(install::RunScript(*cn, "otro.sql", "Create Table u (a INTEGER);\nSelect 'abc"),
               DbError);
  EXPECT_THROW(cn->OpenResultset("Select * From u"), DbError);
}

KMF_INSTANTIATE_ENGINES(RunScript);

}  // namespace
}  // namespace kivmovfrec::testing
