// Read-only statements, transactions and two connections sharing one database file.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "db/temp_dir.h"
#include "kivmovfrec/db.h"
#include "platform/db/sqlite/sqlite_connection.h"

namespace kivmovfrec {
namespace {

class SqliteFile : public ::testing::Test {
 protected:
  void SetUp() override {
    path = dir.File("suite.db");
    cn = OpenConnection("sqlite:" + path);
    cn->Execute("Create Table genRecurrencias (RecID INTEGER, RecFrecuencia TEXT)");
    cn->Execute("Insert Into genRecurrencias Values (1, '000007')");
  }

  static int Count(Connection& c) {
    return c.OpenResultset("Select count(*) From genRecurrencias")->Get(0).AsLong();
  }

  testing::TempDir dir;
  std::string path;
  std::shared_ptr<Connection> cn;
};

TEST_F(SqliteFile, ReadOnlyRefusesEveryStatementThatCouldWrite) {
  const char* writers[] = {
      "Insert Into genRecurrencias Values (2, '000001')",
      "Update genRecurrencias Set RecFrecuencia = '000000'",
      "Delete From genRecurrencias",
      "Create Table Otra (a INTEGER)",
      "Drop Table genRecurrencias",
      "Select RecID From genRecurrencias; Delete From genRecurrencias",
      "Begin",
      "Pragma user_version = 5",
      "With x As (Select 1) Delete From genRecurrencias",
  };
  for (const char* sql : writers) {
    EXPECT_THROW(cn->OpenReadOnly(sql), DbError) << sql;
  }
  EXPECT_FALSE(cn->InTransaction());
  EXPECT_EQ(Count(*cn), 1);
  auto rs = cn->OpenResultset("Select RecFrecuencia From genRecurrencias Where RecID = 1");
  EXPECT_EQ(rs->Get(0), Variant("000007"));
  EXPECT_EQ(cn->OpenResultset("Pragma user_version")->Get(0), Variant(int32_t{0}));
  EXPECT_EQ(cn->OpenResultset("Select name From sqlite_master Where name = 'Otra'")->Eof(), true);
}

TEST_F(SqliteFile, ReadOnlyRunsQueriesAndTheirSetsCannotWrite) {
  auto rs = cn->OpenReadOnly(
      "Select Top 1 RecNumero From (Select RecID As RecNumero From genRecurrencias)");
  EXPECT_EQ(rs->Get("recnumero"), Variant(int32_t{1}));
  auto star = cn->OpenReadOnly("Select * From genRecurrencias Where RecID = 1");
  EXPECT_THROW(star->Delete(), DbError);
  EXPECT_EQ(Count(*cn), 1);
}

TEST_F(SqliteFile, RollbackRestoresAndCommitKeeps) {
  cn->BeginTrans();
  EXPECT_TRUE(cn->InTransaction());
  cn->Execute("Insert Into genRecurrencias Values (2, '000001')");
  auto rs = cn->OpenResultset("Select * From genRecurrencias Where RecID = 1");
  rs->Delete();
  EXPECT_EQ(Count(*cn), 1);
  cn->RollbackTrans();
  EXPECT_FALSE(cn->InTransaction());
  EXPECT_EQ(Count(*cn), 1);
  EXPECT_FALSE(cn->OpenResultset("Select * From genRecurrencias Where RecID = 1")->Eof());

  cn->BeginTrans();
  cn->Execute("Insert Into genRecurrencias Values (3, '100001')");
  cn->CommitTrans();
  auto other = OpenConnection("sqlite:" + path);
  EXPECT_EQ(Count(*other), 2);
}

TEST_F(SqliteFile, TransactionsDoNotNest) {
  cn->BeginTrans();
  EXPECT_THROW(cn->BeginTrans(), DbError);
  EXPECT_TRUE(cn->InTransaction());  // the outer transaction is still there
  cn->CommitTrans();
  EXPECT_THROW(cn->CommitTrans(), DbError);
  cn->RollbackTrans();  // nothing to roll back: no error
  EXPECT_FALSE(cn->InTransaction());
}

TEST_F(SqliteFile, FilesRunInWalMode) {
  auto rs = cn->OpenResultset("Pragma journal_mode");
  EXPECT_EQ(rs->Get(0), Variant("wal"));
}

TEST_F(SqliteFile, BeginTakesTheWriteLockSoASecondWriterCannotStart) {
  auto quick = sqlite::OpenSqlite(path, sqlite::Options{.busy_timeout_ms = 50});
  cn->BeginTrans();
  cn->Execute("Insert Into genRecurrencias Values (2, '000001')");
  EXPECT_THROW(quick->BeginTrans(), DbError);
  EXPECT_FALSE(quick->InTransaction());
  EXPECT_THROW(quick->Execute("Insert Into genRecurrencias Values (9, '000000')"), DbError);
  EXPECT_EQ(Count(*quick), 1);  // readers go on, seeing what was committed
  cn->CommitTrans();
  quick->BeginTrans();
  quick->Execute("Insert Into genRecurrencias Values (9, '000000')");
  quick->CommitTrans();
  EXPECT_EQ(Count(*cn), 3);
}

TEST_F(SqliteFile, ASecondWriterWaitsForTheFirstInsteadOfFailing) {
  auto second = OpenConnection("sqlite:" + path);
  cn->BeginTrans();
  std::atomic<bool> starting{false};
  std::string failure;
  std::thread writer([&] {
    try {
      starting = true;
      second->BeginTrans();  // blocks on the busy timeout until the first one commits
      second->Execute("Insert Into genRecurrencias Values (3, '000002')");
      second->CommitTrans();
    } catch (const DbError& e) {
      failure = e.what();
    }
  });
  while (!starting) std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  cn->Execute("Insert Into genRecurrencias Values (2, '000001')");
  cn->CommitTrans();
  writer.join();
  EXPECT_EQ(failure, "");
  EXPECT_EQ(Count(*cn), 3);
}

}  // namespace
}  // namespace kivmovfrec
