// Read-only statements and transactions, on every engine.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "kivmovfrec/db.h"
#include "support/db_engines.h"

namespace kivmovfrec {
namespace {

class Transactions : public testing::EngineTest {
 protected:
  void SetUpDatabase() override {
    cn->Execute("Create Table genRecurrencias (RecID INTEGER, RecFrecuencia VARCHAR(10))");
    cn->Execute("Insert Into genRecurrencias Values (1, '000007')");
  }

  void Insert(int id) {
    cn->Execute("Insert Into genRecurrencias Values (?, '000001')", {Variant(int32_t{id})});
  }

  static std::string Ids(Connection& c) {
    std::string seen;
    for (auto rs = c.OpenResultset("Select RecID From genRecurrencias Order By RecID"); !rs->Eof();
         rs->MoveNext()) {
      seen += std::to_string(rs->Get(0).AsLong()) + " ";
    }
    return seen;
  }

  bool TableExists(const std::string& table) {
    try {
      cn->OpenResultset("Select * From " + table);
      return true;
    } catch (const DbError&) {
      return false;
    }
  }
};

const char* const kWriters[] = {
    "Insert Into genRecurrencias Values (2, '000001')",
    "Update genRecurrencias Set RecFrecuencia = '000000'",
    "Delete From genRecurrencias",
    "Create Table Otra (a INTEGER)",
    "Drop Table genRecurrencias",
    "Select RecID From genRecurrencias; Delete From genRecurrencias",
    "Begin",
    "Commit",
    "With x As (Select 1) Delete From genRecurrencias",
    "Select RecID Into Copia From genRecurrencias",
};

// Outside a transaction, and inside one, where the refusal leaves the transaction and what it
// wrote alone.
TEST_P(Transactions, ReadOnlyRefusesEveryStatementThatCouldWrite) {
  for (const char* sql : kWriters) {
    EXPECT_THROW(cn->OpenReadOnly(sql), DbError) << sql;
    EXPECT_FALSE(cn->InTransaction()) << sql;
  }
  // Queries run, and their sets cannot write either.
  auto rs = cn->OpenReadOnly(
      "Select Top 1 RecNumero From (Select RecID As RecNumero From genRecurrencias) As t");
  EXPECT_EQ(rs->Get("recnumero"), Variant(int32_t{1}));
  auto star = cn->OpenReadOnly("Select * From genRecurrencias Where RecID = 1");
  EXPECT_THROW(star->Delete(), DbError);
  EXPECT_THROW(star->Edit(), DbError);
  EXPECT_EQ(star->Get("RecFrecuencia"), Variant("000007"));
  EXPECT_EQ(Ids(*cn), "1 ");
  EXPECT_FALSE(cn->InTransaction());

  cn->BeginTrans();
  cn->Execute("Insert Into genRecurrencias Values (2, '000001')");
  for (const char* sql : kWriters) {
    EXPECT_THROW(cn->OpenReadOnly(sql), DbError) << sql;
    EXPECT_TRUE(cn->InTransaction()) << sql;
  }
  // Queries see the transaction's own rows, and the transaction can still write.
  EXPECT_EQ(cn->OpenReadOnly("Select count(*) From genRecurrencias")->Get(0), Variant(int32_t{2}));
  cn->Execute("Insert Into genRecurrencias Values (3, '000002')");
  cn->CommitTrans();
  EXPECT_EQ(Ids(*OpenAnother()), "1 2 3 ");
  EXPECT_FALSE(TableExists("Otra"));
  EXPECT_FALSE(TableExists("Copia"));
}

// An inner level is a savepoint: its rollback keeps the outer level's work, its commit hands
// its work to the outer level, and only the outermost commit makes anything visible. Rolling
// the outer level back, or leaving it by an exception, drops everything, inner levels included
// (also one opened with BeginTrans and left open).
TEST_P(Transactions, NestedLevelsAreSavepoints) {
  {
    Transaccion fuera(*cn);
    Insert(2);
    {
      Transaccion dentro(*cn);
      EXPECT_EQ(cn->TransactionDepth(), 2);
      Insert(3);
    }
    EXPECT_EQ(cn->TransactionDepth(), 1);
    {
      Transaccion dentro(*cn);
      Insert(4);
      {
        Transaccion mas_dentro(*cn);
        EXPECT_THROW(dentro.Commit(), DbError);  // a level inside it is still open
      }
      dentro.Commit();
    }
    EXPECT_EQ(Ids(*OpenAnother()), "1 ");
    fuera.Commit();
  }
  EXPECT_EQ(Ids(*OpenAnother()), "1 2 4 ");
  EXPECT_EQ(cn->TransactionDepth(), 0);

  try {
    Transaccion fuera(*cn);
    Insert(5);
    Transaccion dentro(*cn);
    Insert(6);
    cn->OpenResultset("Select * From genRecurrencias Where RecID = 1")->Delete();
    dentro.Commit();
    cn->BeginTrans();
    Insert(7);
    throw std::runtime_error("falla a mitad");
  } catch (const std::runtime_error&) {
  }
  EXPECT_FALSE(cn->InTransaction());
  EXPECT_EQ(Ids(*cn), "1 2 4 ");
  EXPECT_THROW(cn->CommitTrans(), DbError);
  cn->RollbackTrans();  // nothing to roll back: no error
}

// A failed statement is undone with the level around it; the transaction then goes on (on
// PostgreSQL nothing else runs until that level is rolled back, on SQLite it would).
TEST_P(Transactions, AFailedStatementGoesWithItsLevel) {
  cn->Execute("Create Unique Index ixRec On genRecurrencias (RecID)");
  Transaccion fuera(*cn);
  Insert(2);
  for (const char* falla : {"Insert Into genRecurrencias Values (1, 'repetida')",
                            "Select NoExiste From genRecurrencias"}) {
    Transaccion intento(*cn);
    Insert(8);
    EXPECT_THROW(cn->Execute(falla), DbError);
  }
  Insert(3);
  fuera.Commit();
  EXPECT_EQ(Ids(*cn), "1 2 3 ");
}

// Several writes at once count each statement in order. The first failure stops them and
// nothing of the batch stays: outside a transaction none of it, inside one it goes with the
// level it ran in. The same batch again (kept prepared by then) counts the same. A transaction
// in which nothing ran ends like any other.
TEST_P(Transactions, ExecuteAllCountsEachStatementAndAFailureKeepsNothingOfIt) {
  const std::vector<DbStatement> bien = {
      {"Insert Into genRecurrencias Values (?, '000001')", {Variant(int32_t{2})}},
      {"Update genRecurrencias Set RecFrecuencia = ? Where RecID <= ?",
       {Variant("000009"), Variant(int32_t{2})}},
      {"Delete From genRecurrencias Where RecID = ?", {Variant(int32_t{99})}}};
  const std::vector<DbStatement> mal = {
      {"Insert Into genRecurrencias Values (?, '000001')", {Variant(int32_t{3})}},
      {"Insert Into NoExiste Values (1)", {}},
      {"Insert Into genRecurrencias Values (?, '000001')", {Variant(int32_t{4})}}};
  EXPECT_THROW(cn->ExecuteAll(mal), DbError);
  EXPECT_FALSE(cn->InTransaction());
  EXPECT_EQ(Ids(*OpenAnother()), "1 ");
  {
    Transaccion t(*cn);
    EXPECT_EQ(cn->ExecuteAll(bien), (std::vector<int64_t>{1, 2, 0}));
    {
      Transaccion intento(*cn);
      EXPECT_THROW(cn->ExecuteAll(mal), DbError);
    }
    t.Commit();
  }
  EXPECT_EQ(Ids(*OpenAnother()), "1 2 ");
  for (int vez = 0; vez < 3; ++vez) {
    cn->Execute("Delete From genRecurrencias Where RecID = 2");
    EXPECT_EQ(cn->ExecuteAll(bien), (std::vector<int64_t>{1, 2, 0})) << vez;
  }
  for (const bool confirmar : {true, false}) {
    cn->BeginTrans();
    EXPECT_TRUE(cn->InTransaction());
    confirmar ? cn->CommitTrans() : cn->RollbackTrans();
    EXPECT_FALSE(cn->InTransaction());
    EXPECT_EQ(cn->TransactionDepth(), 0);
  }
  EXPECT_EQ(Ids(*cn), "1 2 ");
}

// A second writer waits for the first instead of failing, then writes after it. SQLite makes it
// wait for the database's write lock when its transaction begins, PostgreSQL for the row both
// write.
TEST_P(Transactions, ASecondWriterWaitsForTheFirstInsteadOfFailing) {
  const char* increment = "Update genRecurrencias Set RecID = RecID + 1";
  auto second = OpenAnother();
  cn->BeginTrans();
  cn->Execute(increment);
  int seen = 0;
  std::string failure;
  std::thread writer([&] {
    try {
      second->BeginTrans();
      second->Execute(increment);
      seen = second->OpenResultset("Select RecID From genRecurrencias")->Get(0).AsLong();
      second->CommitTrans();
    } catch (const DbError& e) {
      failure = e.what();
    }
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  cn->CommitTrans();
  writer.join();
  EXPECT_EQ(failure, "");
  EXPECT_EQ(seen, 3);  // counted after the first writer's increment
}

KMF_INSTANTIATE_ENGINES(Transactions);

}  // namespace
}  // namespace kivmovfrec
