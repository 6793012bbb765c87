// PostgreSQL: how two savers meet. There is no database write lock; they serialise on the rows
// both write, the table counter first.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "kivmovfrec/db.h"
#include "platform/db/postgres/pg_connection.h"
#include "support/db_engines.h"

namespace kivmovfrec {
namespace {

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

  std::shared_ptr<Connection> Quick() {
    return postgres::OpenPostgres(db_->uri(), postgres::Options{.lock_timeout_ms = 50});
  }

  static int Value(Connection& c, const std::string& table) {
    return c.OpenResultset("Select CntValor From genContadores Where CntTabla = '" + table + "'")
        ->Get(0)
        .AsLong();
  }

  // The table-counter draw as the suite services do it: increment, then read, in one
  // transaction; the row appears on first use.
  static int Draw(Connection& c, const std::string& table) {
    c.BeginTrans();
    const std::string increment =
        "Update genContadores Set CntValor = CntValor + 1 Where CntTabla = '" + table + "'";
    if (c.Execute(increment) == 0) {
      c.Execute("Insert Into genContadores (CntTabla, CntValor) Values ('" + table +
                "', 0) On Conflict Do Nothing");
      c.Execute(increment);
    }
    const int value = Value(c, table);
    c.CommitTrans();
    return value;
  }

  std::optional<testing::TestDatabase> db_;
  std::shared_ptr<Connection> cn;
};

TEST_F(PgLocking, CounterDrawsFromSeveralConnectionsNeverRepeat) {
  constexpr int kThreads = 3, kDraws = 25;
  std::vector<std::vector<int>> drawn(kThreads);
  std::vector<std::string> errors(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      try {
        auto mine = db_->Open();
        for (int i = 0; i < kDraws; ++i) {
          drawn[t].push_back(Draw(*mine, "genMovimientosFrecuentes"));
          drawn[t].push_back(Draw(*mine, "cceNueva"));  // created by whoever comes first
        }
      } catch (const DbError& e) {
        errors[t] = e.what();
      }
    });
  }
  for (auto& th : threads) th.join();
  std::multiset<int> movements, fresh;
  for (int t = 0; t < kThreads; ++t) {
    EXPECT_EQ(errors[t], "");
    for (size_t i = 0; i < drawn[t].size(); ++i) (i % 2 ? fresh : movements).insert(drawn[t][i]);
  }
  const int total = kThreads * kDraws;
  ASSERT_EQ(movements.size(), static_cast<size_t>(total));
  EXPECT_EQ(std::set<int>(movements.begin(), movements.end()).size(), movements.size());
  EXPECT_EQ(*movements.begin(), 101);
  EXPECT_EQ(*movements.rbegin(), 100 + total);
  EXPECT_EQ(std::set<int>(fresh.begin(), fresh.end()).size(), fresh.size());
  EXPECT_EQ(*fresh.rbegin(), total);
  EXPECT_EQ(Value(*cn, "genMovimientosFrecuentes"), 100 + total);
}

TEST_F(PgLocking, ASecondWriterOfTheSameRowWaitsThenFailsAndItsTransactionGoesOn) {
  auto quick = Quick();
  cn->BeginTrans();
  cn->Execute(
      "Update genContadores Set CntValor = CntValor + 1 Where CntTabla = 'genRecurrencias'");
  quick->BeginTrans();
  EXPECT_THROW(quick->Execute("Update genContadores Set CntValor = 0 Where CntTabla = "
                              "'genRecurrencias'"),
               DbError);
  EXPECT_TRUE(quick->InTransaction());
  // Other rows are free, and readers see what was committed.
  quick->Execute(
      "Update genContadores Set CntValor = 500 Where CntTabla = 'genMovimientosFrecuentes'");
  EXPECT_EQ(Value(*quick, "genRecurrencias"), 100);
  quick->CommitTrans();
  cn->CommitTrans();
  EXPECT_EQ(Value(*cn, "genRecurrencias"), 101);
  EXPECT_EQ(Value(*cn, "genMovimientosFrecuentes"), 500);
  EXPECT_EQ(Draw(*quick, "genRecurrencias"), 102);
}

TEST_F(PgLocking, ASecondWriterWaitsForTheFirstInsteadOfFailing) {
  auto second = db_->Open();
  cn->BeginTrans();
  cn->Execute(
      "Update genContadores Set CntValor = CntValor + 1 Where CntTabla = 'genRecurrencias'");
  int seen = 0;
  std::string failure;
  std::thread writer([&] {
    try {
      seen = Draw(*second, "genRecurrencias");  // blocks on the row until the first commits
    } catch (const DbError& e) {
      failure = e.what();
    }
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  cn->CommitTrans();
  writer.join();
  EXPECT_EQ(failure, "");
  EXPECT_EQ(seen, 102);  // counted after the first writer's increment
}

}  // namespace
}  // namespace kivmovfrec
