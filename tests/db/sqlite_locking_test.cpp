// SQLite files: WAL mode and the write lock two connections share. The engine-independent
// transaction tests, a second writer waiting for the first among them, are in
// transactions_test.cpp.
#include <gtest/gtest.h>

#include <memory>
#include <string>

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

}  // namespace
}  // namespace kivmovfrec
