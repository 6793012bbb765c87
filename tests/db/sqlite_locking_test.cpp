// SQLite files: WAL mode and the write lock two connections share. The engine-independent
// transaction tests are in transactions_test.cpp.
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
