// The SQLite adapter keeps its prepared statements for reuse: what a kept statement could get
// wrong (in use twice at once, reused after a failure or a rollback, the tables changed under
// it, the bound, closing) is checked here.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "kivmovfrec/db.h"
#include "platform/db/sqlite/sqlite_connection.h"
#include "platform/db/sqlite/sqlite_database.h"
#include "support/db_engines.h"

namespace kivmovfrec::sqlite {
namespace {

// The texts of the statements alive on the handle (kept or in use).
std::multiset<std::string> Alive(const Database& db) {
  std::multiset<std::string> out;
  for (sqlite3_stmt* s = sqlite3_next_stmt(db.get(), nullptr); s != nullptr;
       s = sqlite3_next_stmt(db.get(), s)) {
    out.insert(sqlite3_sql(s));
  }
  return out;
}

TEST(KeptStatements, TheLeastRecentlyUsedTextIsFinalisedAtTheBound) {
  auto db = std::make_shared<Database>(":memory:", 1000, 2);
  const std::string a = "SELECT 1", b = "SELECT 2", c = "SELECT 3";
  for (const std::string* text : {&a, &b, &a, &c}) {
    Statement st(db, *text, *text);
    ASSERT_TRUE(st.Step());
  }
  EXPECT_EQ(Alive(*db), (std::multiset<std::string>{a, c}));
  EXPECT_EQ(db->kept(), 2u);
  Statement again(db, b, b);  // prepared anew, and runs
  ASSERT_TRUE(again.Step());
  EXPECT_EQ(sqlite3_column_int(again.get(), 0), 2);
}

TEST(KeptStatements, ATextInUseIsPreparedAgainAndEachKeepsItsPlace) {
  auto db = std::make_shared<Database>(":memory:", 1000);
  db->Exec("CREATE TABLE t (n INTEGER)");
  db->Exec("INSERT INTO t VALUES (1), (2), (3)");
  const std::string sql = "SELECT n FROM t ORDER BY n";
  {
    Statement outer(db, sql, sql);
    ASSERT_TRUE(outer.Step());
    EXPECT_EQ(sqlite3_column_int(outer.get(), 0), 1);
    {
      Statement inner(db, sql, sql);
      EXPECT_NE(inner.get(), outer.get());
      int sum = 0;
      while (inner.Step()) sum += sqlite3_column_int(inner.get(), 0);
      EXPECT_EQ(sum, 6);
    }
    ASSERT_TRUE(outer.Step());
    EXPECT_EQ(sqlite3_column_int(outer.get(), 0), 2);
  }
  // One of the two is kept, the other finalised; the kept one starts from the first row.
  EXPECT_EQ(Alive(*db).count(sql), 1u);
  Statement st(db, sql, sql);
  ASSERT_TRUE(st.Step());
  EXPECT_EQ(sqlite3_column_int(st.get(), 0), 1);
}

class KeptOnConnection : public ::testing::Test {
 protected:
  void SetUp() override {
    cn->Execute("Create Table t (id INTEGER PRIMARY KEY, nombre VARCHAR(20) UNIQUE, n INTEGER)");
  }
  int64_t Count() { return cn->OpenResultset("Select count(*) From t")->Get(0).AsLong(); }

  kivmovfrec::testing::TestDatabase folder{Engine::SQLite};
  std::string path = (folder.folder() / "kept.db").string();
  std::shared_ptr<Connection> cn = OpenSqlite(path);
};

TEST_F(KeptOnConnection, AStatementThatFailedOrWasRolledBackRunsAgainFromScratch) {
  const char* insert = "Insert Into t (nombre, n) Values (?, ?)";
  cn->Execute(insert, {Variant("a"), Variant(int32_t{1})});
  try {
    cn->Execute(insert, {Variant("a"), Variant(int32_t{2})});
    ADD_FAILURE() << "duplicate accepted";
  } catch (const DbError& e) {
    EXPECT_EQ(e.kind(), DbErrorKind::Constraint) << e.what();
  }
  cn->BeginTrans();
  cn->Execute(insert, {Variant("b"), Variant(int32_t{3})});
  EXPECT_EQ(Count(), 2);
  cn->RollbackTrans();
  EXPECT_EQ(Count(), 1);
  cn->Execute(insert, {Variant("b"), Variant(int32_t{4})});
  auto rs = cn->OpenResultset("Select n From t Where nombre = ?", {Variant("b")});
  EXPECT_EQ(rs->Get(0), Variant(int32_t{4}));
  // A kept query does not become a way to write, and a kept write is still refused as a query.
  EXPECT_THROW(cn->OpenReadOnly("Insert Into t (nombre, n) Values ('c', 5)"), DbError);
  cn->Execute("Insert Into t (nombre, n) Values ('d', 6)");
  EXPECT_THROW(cn->OpenReadOnly("Insert Into t (nombre, n) Values ('d', 6)"), DbError);
  EXPECT_EQ(Count(), 3);
}

// The same DDL texts run again, and a kept `Select *` sees the table recreated with other
// columns (columns added are covered by Updatable.ColumnsAddedOrRolledBackAreSeenByTheNextSet).
TEST_F(KeptOnConnection, TheSameDdlTextsRunAgainAndAKeptSelectSeesTheNewColumns) {
  const char* one = "Select * From t Where id = ?";
  EXPECT_EQ(cn->OpenResultset(one, {Variant(int32_t{1})})->ColumnCount(), 3);
  for (int round = 0; round < 2; ++round) {
    cn->Execute("Drop Table t");
    cn->Execute(round == 0 ? "Create Table t (id INTEGER PRIMARY KEY, otra VARCHAR(5))"
                           : "Create Table t (id INTEGER PRIMARY KEY, otra VARCHAR(5), b INTEGER)");
    cn->Execute("Insert Into t (id, otra) Values (1, 'x')");
    auto again = cn->OpenResultset(one, {Variant(int32_t{1})});
    ASSERT_EQ(again->ColumnCount(), 2 + round);
    EXPECT_EQ(again->Get("otra"), Variant("x"));
  }
}

TEST_F(KeptOnConnection, TwoSetsOfOneTextWriteAndHoldTheRowsAsStored) {
  cn->Execute(
      "Create Trigger marca After Insert On t Begin "
      "Update t Set n = new.n * 10 Where id = new.id; End");
  cn->Execute(
      "Create Trigger cambio After Update Of nombre On t Begin "
      "Update t Set n = -new.n Where id = new.id; End");
  const char* none = "Select * From t Where id < 0";
  auto first = cn->OpenResultset(none);
  auto second = cn->OpenResultset(none);
  for (auto* rs : {first.get(), second.get()}) {
    rs->AddNew();
    rs->Set("nombre", rs == first.get() ? "uno" : "dos");
    rs->Set("n", int32_t{rs == first.get() ? 1 : 2});
    rs->Update();
  }
  // The key the table gave and the value the trigger left, not the value written.
  EXPECT_EQ(first->Get("id"), Variant(int32_t{1}));
  EXPECT_EQ(first->Get("n"), Variant(int32_t{10}));
  EXPECT_EQ(second->Get("id"), Variant(int32_t{2}));
  EXPECT_EQ(second->Get("n"), Variant(int32_t{20}));
  first->Edit();
  first->Set("nombre", "cambiado");
  first->Update();
  EXPECT_EQ(first->Get("n"), Variant(int32_t{-10}));
  EXPECT_EQ(Count(), 2);
}

// Columns are looked up first where the previous row's look-ups found them: reading the rows in
// changing orders, with names in other cases and with a repeated name, still finds each one.
TEST_F(KeptOnConnection, ColumnsAreFoundByNameWhateverTheOrderTheyAreAskedIn) {
  std::string select = "Select 1 As dup";
  for (int c = 0; c < 12; ++c)
    select += ", id * 100 + " + std::to_string(c) + " As c" + std::to_string(c);
  select += ", 2 As DUP From t Order By id";
  for (int id = 1; id <= 3; ++id) {
    cn->Execute("Insert Into t (id, nombre) Values (?, ?)",
                {Variant(int32_t{id}), Variant(std::to_string(id))});
  }
  auto rs = cn->OpenResultset(select);
  const std::vector<std::vector<int>> orders = {{1, 2, 3, 11}, {2, 1, 7}, {11, 0, 5}};
  // Each row asks in another sequence than the row before.
  for (size_t row = 0; !rs->Eof(); rs->MoveNext(), ++row) {
    for (size_t j = 0; j < orders.size(); ++j) {
      for (int c : orders[(row + j) % orders.size()]) {
        EXPECT_EQ(rs->Get((c % 2 ? "C" : "c") + std::to_string(c)).AsLong(),
                  static_cast<int>(row + 1) * 100 + c);
        EXPECT_EQ(rs->Get("Dup").AsLong(), 1);
      }
    }
  }
}

TEST_F(KeptOnConnection, ClosingFinalisesEverythingSoTheFileClosesCleanly) {
  cn->Execute("Insert Into t (nombre, n) Values ('a', 1)");
  auto rs = cn->OpenResultset("Select * From t");
  cn.reset();
  // The set still writes through the handle it shares.
  rs->Edit();
  rs->Set("n", int32_t{2});
  rs->Update();
  EXPECT_TRUE(std::filesystem::exists(path + "-wal"));
  rs.reset();
  // The last close of a WAL database checkpoints and removes the log; a statement left
  // unfinalised would keep the handle open.
  EXPECT_FALSE(std::filesystem::exists(path + "-wal"));
  EXPECT_EQ(OpenSqlite(path)->OpenResultset("Select n From t")->Get(0), Variant(int32_t{2}));
}

}  // namespace
}  // namespace kivmovfrec::sqlite
