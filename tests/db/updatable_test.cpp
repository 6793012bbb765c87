// Writing rows through result sets opened as `Select * from T Where ...`, on every engine.
#include <gtest/gtest.h>

#include <memory>

#include "kivmovfrec/db.h"
#include "support/db_engines.h"

namespace kivmovfrec {
namespace {

// The table has no primary key (rows identified by rowid on SQLite, ctid on PostgreSQL);
// genRecurrencias below has one.
constexpr const char* kRec = "genRecurrencias";

class Updatable : public testing::EngineTest {
 protected:
  void SetUpDatabase() override {
    cn->Execute(
        "Create Table genMovimientosFrecuentes (MFrID INTEGER, MFrNombre VARCHAR(50), "
        "MFrEstado INTEGER DEFAULT 0, MFrFechaEstado TIMESTAMP DEFAULT '2000-01-01 00:00:00')");
    cn->Execute(
        "Create Table genRecurrencias (RecID INTEGER NOT NULL PRIMARY KEY, "
        "RecFrecuencia VARCHAR(10), RecNumOcurrencia INTEGER DEFAULT 1)");
  }

  int Count(const std::string& where = "1 = 1", const char* table = "genMovimientosFrecuentes") {
    return cn->OpenResultset(std::string("Select count(*) From ") + table + " Where " + where)
        ->Get(0)
        .AsLong();
  }

  void Insert(int id, const std::string& name) {
    auto rs = cn->OpenResultset("Select * from genMovimientosFrecuentes Where MFrID = " +
                                std::to_string(id));
    rs->AddNew();
    rs->Set("MFrID", int32_t{id});
    rs->Set("MFrNombre", name);
    rs->Update();
  }
};

TEST_P(Updatable, AddNewInsertsAndTheSetHoldsTheStoredRowWithDefaults) {
  auto rs = cn->OpenResultset("Select * from genMovimientosfrecuentes Where MFrID = 0");
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(rs->ColumnCount(), 4);  // the row identity stays hidden
  rs->AddNew();
  EXPECT_TRUE(rs->Get("MFrEstado").IsNull());  // a new row starts with every column Null
  rs->Set("mfrid", int32_t{12});
  rs->Set("MFRNOMBRE", "Alquiler");
  rs->Update();
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Get("MFrID"), Variant(int32_t{12}));
  EXPECT_EQ(rs->Get("MFrEstado"), Variant(int32_t{0}));
  EXPECT_EQ(rs->Get("MFrFechaEstado"), Variant(Date{36526}));
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(Count("MFrID = 12 And MFrNombre = 'Alquiler'"), 1);
}

TEST_P(Updatable, DeletingWhileWalkingRemovesEveryRow) {
  for (int i = 1; i <= 3; ++i) Insert(i, "m" + std::to_string(i));
  Insert(4, "otro");
  cn->Execute("Update genMovimientosFrecuentes Set MFrEstado = 9 Where MFrID = 4");
  auto rs = cn->OpenResultset("Select * From genMovimientosFrecuentes Where MFrEstado = 0");
  int deleted = 0;
  while (!rs->Eof()) {
    rs->Delete();
    EXPECT_THROW(rs->Get("MFrID"), DbError);  // the set stays on the removed row
    ++deleted;
    rs->MoveNext();
  }
  EXPECT_EQ(deleted, 3);
  EXPECT_EQ(Count(), 1);
  EXPECT_EQ(Count("MFrID = 4"), 1);

  // Top on a single table keeps the set updatable.
  Insert(5, "cinco");
  rs = cn->OpenResultset("Select Top 1 * From genMovimientosFrecuentes Order By MFrID DESC");
  EXPECT_EQ(rs->Get("MFrID"), Variant(int32_t{5}));
  rs->Delete();
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(Count(), 1);
}

TEST_P(Updatable, UnknownColumnsWritesOutOfSequenceAndOtherShapesAreRefused) {
  Insert(1, "uno");
  auto rs = cn->OpenResultset("Select * from genMovimientosFrecuentes Where MFrID = 5");
  rs->AddNew();
  rs->Set("MFrID", int32_t{5});
  try {
    rs->Set("MFrNoExiste", 1);
    FAIL() << "expected DbError";
  } catch (const DbError& e) {
    EXPECT_NE(std::string(e.what()).find("MFrNoExiste"), std::string::npos);
  }
  rs->MoveNext();  // abandons the pending row

  auto one = cn->OpenResultset("Select * from genMovimientosFrecuentes Where MFrID = 1");
  EXPECT_THROW(one->Set("MFrNombre", "x"), DbError);  // neither AddNew nor Edit
  EXPECT_THROW(one->Update(), DbError);
  one->MoveNext();
  EXPECT_THROW(one->Edit(), DbError);  // no current row
  EXPECT_THROW(one->Delete(), DbError);

  // Sets of another shape than a single table's `Select *` are read-only.
  cn->Execute("Create Table cceEmpresas (EmpID INTEGER, EmpNombre TEXT)");
  cn->Execute("Insert Into cceEmpresas Values (1, 'Demo')");
  const char* read_only[] = {
      "Select MFrID, MFrNombre From genMovimientosFrecuentes Where MFrID = 1",
      "Select * From genMovimientosFrecuentes LEFT JOIN cceEmpresas ON MFrID = EmpID",
  };
  for (const char* sql : read_only) {
    rs = cn->OpenResultset(sql);
    ASSERT_FALSE(rs->Eof()) << sql;
    EXPECT_THROW(rs->Edit(), DbError) << sql;
    EXPECT_THROW(rs->Delete(), DbError) << sql;
    EXPECT_THROW(rs->AddNew(), DbError) << sql;
  }
  EXPECT_EQ(Count(), 1);
  EXPECT_EQ(Count("MFrNombre = 'uno'"), 1);
}

// With a primary key the row is found by its key: other statements may change its other
// columns and the set still writes the right row, re-reading it as stored. The set may change
// the key itself (on SQLite an INTEGER PRIMARY KEY is the rowid: the row moves) and follows the
// row. A key that is taken writes nothing and leaves the new row pending.
TEST_P(Updatable, KeyedRowsAreFoundByTheirKey) {
  cn->Execute("Insert Into genRecurrencias (RecID, RecFrecuencia) Values (1, '000007')");
  cn->Execute("Insert Into genRecurrencias (RecID, RecFrecuencia) Values (2, '000001')");
  auto rs = cn->OpenResultset("Select * From genRecurrencias Where RecID = 1");
  cn->Execute("Update genRecurrencias Set RecNumOcurrencia = 5 Where RecID = 1");
  rs->Edit();
  rs->Set("RecID", int32_t{10});
  rs->Update();
  EXPECT_EQ(rs->Get("RecNumOcurrencia"), Variant(int32_t{5}));
  rs->Edit();
  rs->Set("RecFrecuencia", "100001");
  rs->Update();
  rs->Edit();
  rs->Update();  // nothing assigned: the row as stored
  EXPECT_EQ(rs->Get("RecFrecuencia"), Variant("100001"));
  EXPECT_EQ(Count("RecID = 10 And RecFrecuencia = '100001' And RecNumOcurrencia = 5", kRec), 1);
  EXPECT_EQ(Count("RecID = 2 And RecFrecuencia = '000001'", kRec), 1);
  EXPECT_EQ(Count("1 = 1", kRec), 2);
  rs->Delete();

  auto added = cn->OpenResultset("Select * From genRecurrencias Where RecID = 3");
  added->AddNew();
  added->Set("RecID", int32_t{2});  // taken
  EXPECT_THROW(added->Update(), DbError);
  added->Set("RecID", int32_t{3});
  added->Update();
  EXPECT_EQ(added->Get("RecNumOcurrencia"), Variant(int32_t{1}));
  EXPECT_EQ(Count("RecID In (2, 3)", kRec), 2);
  EXPECT_EQ(Count("1 = 1", kRec), 2);
}

// A row changed by another statement since the set read it. Without a primary key PostgreSQL
// knows a row by its version (ctid): the set's copy is stale and writing through it is refused,
// not misapplied. SQLite finds it by its rowid, which the change kept: the write lands on it.
TEST_P(Updatable, ARowChangedSinceItWasReadIsRefusedOrFoundByItsRowid) {
  Insert(1, "uno");
  auto rs = cn->OpenResultset("Select * From genMovimientosFrecuentes Where MFrID = 1");
  cn->Execute("Update genMovimientosFrecuentes Set MFrEstado = 1 Where MFrID = 1");
  rs->Edit();
  rs->Set("MFrNombre", "cambiado");
  if (postgres()) {
    EXPECT_THROW(rs->Update(), DbError);
    EXPECT_THROW(rs->Delete(), DbError);
    EXPECT_EQ(Count("MFrNombre = 'uno' And MFrEstado = 1"), 1);
    rs = cn->OpenResultset("Select * From genMovimientosFrecuentes Where MFrID = 1");
    rs->Edit();
    rs->Set("MFrNombre", "cambiado");
  }
  rs->Update();
  EXPECT_EQ(Count("MFrNombre = 'cambiado' And MFrEstado = 1"), 1);
  Insert(2, "dos");
  rs->Edit();
  rs->Set("MFrEstado", Variant::Null());
  EXPECT_TRUE(rs->Get("MFrEstado").IsNull());  // pending value visible before Update
  rs->Update();                                // its own update keeps the set current
  EXPECT_EQ(Count("MFrNombre = 'cambiado' And MFrEstado Is Null"), 1);
  EXPECT_EQ(Count("MFrID = 2 And MFrNombre = 'dos' And MFrEstado = 0"), 1);  // only its row
}

// A table's description is not kept stale: a column added, or one added and rolled back, is
// as the next set of the same connection sees it.
TEST_P(Updatable, ColumnsAddedOrRolledBackAreSeenByTheNextSet) {
  const char* todo = "Select * From genMovimientosFrecuentes";
  Insert(1, "uno");
  cn->Execute("Alter Table genMovimientosFrecuentes Add Column MFrExtra VARCHAR(10)");
  auto rs = cn->OpenResultset(todo);
  rs->Edit();
  rs->Set("MFrExtra", "nueva");
  rs->Update();
  EXPECT_EQ(Count("MFrExtra = 'nueva'"), 1);
  {
    Transaccion t(*cn);
    cn->Execute("Alter Table genMovimientosFrecuentes Add Column MFrOtra INTEGER");
    cn->OpenResultset(todo);
  }
  rs = cn->OpenResultset(todo);
  rs->Edit();
  EXPECT_THROW(rs->Set("MFrOtra", int32_t{1}), DbError);
  // Changed by another connection after the statement was sent often enough to be kept
  // prepared: read as the table is now.
  for (int i = 0; i < 3; ++i) cn->OpenResultset(todo);
  OpenAnother()->Execute("Alter Table genMovimientosFrecuentes Add Column MFrDeOtra INTEGER");
  EXPECT_TRUE(cn->OpenResultset(todo)->HasColumn("MFrDeOtra"));
  EXPECT_EQ(cn->OpenResultset(todo)->ColumnCount(), 6);
}

KMF_INSTANTIATE_ENGINES(Updatable);

}  // namespace
}  // namespace kivmovfrec
