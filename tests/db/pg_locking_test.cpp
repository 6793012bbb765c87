// PostgreSQL: how two writers meet. There is no database write lock; they serialise on the rows
// both write (the table counter row first, when two savers meet). A writer that waits and then
// succeeds is in transactions_test.cpp, for both engines.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "kivmovfrec/db.h"
#include "platform/db/postgres/pg_connection.h"
#include "support/db_engines.h"

namespace kivmovfrec {
namespace {

constexpr const char* kIncrement =
    "Update genContadores Set CntValor = CntValor + 1 Where CntTabla = 'genRecurrencias'";

class PgLocking : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!testing::PostgresUri()) GTEST_SKIP() << testing::kPostgresSkipMessage;
    db_.emplace(Engine::PostgreSQL);
    cn = db_->Open();
    cn->Execute(
        "Create Table genContadores (CntTabla VARCHAR(60) NOT NULL PRIMARY KEY, "
        "CntValor INTEGER NOT NULL)");
    cn->Execute("Insert Into genContadores Values ('genMovimientosFrecuentes', 100)");
    cn->Execute("Insert Into genContadores Values ('genRecurrencias', 100)");
  }

  static int Value(Connection& c, const std::string& table) {
    return c.OpenResultset("Select CntValor From genContadores Where CntTabla = '" + table + "'")
        ->Get(0)
        .AsLong();
  }

  std::optional<testing::TestDatabase> db_;
  std::shared_ptr<Connection> cn;
};

TEST_F(PgLocking, ASecondWriterOfTheSameRowWaitsThenFailsAndItsTransactionGoesOn) {
  auto quick = postgres::OpenPostgres(db_->uri(), postgres::Options{.lock_timeout_ms = 50});
  cn->BeginTrans();
  cn->Execute(kIncrement);
  quick->BeginTrans();
  EXPECT_THROW(quick->Execute(kIncrement), DbError);
  EXPECT_TRUE(quick->InTransaction());
  // Other rows are free, and readers see what was committed.
  quick->Execute(
      "Update genContadores Set CntValor = 500 Where CntTabla = 'genMovimientosFrecuentes'");
  EXPECT_EQ(Value(*quick, "genRecurrencias"), 100);
  quick->CommitTrans();
  cn->CommitTrans();
  EXPECT_EQ(Value(*cn, "genRecurrencias"), 101);
  EXPECT_EQ(Value(*cn, "genMovimientosFrecuentes"), 500);
}

}  // namespace
}  // namespace kivmovfrec
