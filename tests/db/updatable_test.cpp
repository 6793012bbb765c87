// Writing rows through result sets opened as `Select * from T Where ...`.
#include <gtest/gtest.h>

#include <memory>

#include "kivmovfrec/db.h"

namespace kivmovfrec {
namespace {

class Updatable : public ::testing::Test {
 protected:
  void SetUp() override {
    cn = OpenConnection("sqlite::memory:");
    cn->Execute(
        "Create Table genMovimientosFrecuentes (MFrID INTEGER, MFrNombre VARCHAR(50), "
        "MFrEstado INTEGER DEFAULT 0, MFrFechaEstado DATETIME DEFAULT '2000-01-01 00:00:00')");
  }

  int Count(const std::string& where = "1 = 1") {
    auto rs = cn->OpenResultset("Select count(*) From genMovimientosFrecuentes Where " + where);
    return rs->Get(0).AsLong();
  }

  void Insert(int id, const std::string& name) {
    auto rs = cn->OpenResultset("Select * from genMovimientosFrecuentes Where MFrID = " +
                                std::to_string(id));
    rs->AddNew();
    rs->Set("MFrID", int32_t{id});
    rs->Set("MFrNombre", name);
    rs->Update();
  }

  std::shared_ptr<Connection> cn;
};

TEST_F(Updatable, AddNewInsertsAndTheSetHoldsTheStoredRowWithDefaults) {
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

TEST_F(Updatable, EditChangesOnlyTheCurrentRow) {
  Insert(1, "uno");
  Insert(2, "dos");
  auto rs = cn->OpenResultset("Select * from genMovimientosFrecuentes Where MFrID = 2");
  rs->Edit();
  rs->Set("MFrNombre", "DOS");
  EXPECT_EQ(rs->Get("MFrNombre"), Variant("DOS"));  // pending value visible before Update
  rs->Set("MFrEstado", Variant::Null());
  rs->Update();
  EXPECT_EQ(rs->Get("MFrNombre"), Variant("DOS"));
  EXPECT_TRUE(rs->Get("MFrEstado").IsNull());
  EXPECT_EQ(Count("MFrNombre = 'DOS' And MFrEstado Is Null"), 1);
  EXPECT_EQ(Count("MFrID = 1 And MFrNombre = 'uno' And MFrEstado = 0"), 1);
}

TEST_F(Updatable, ValuesAreBoundNeverSplicedIntoSql) {
  const std::string hostile = "x'); Drop Table genMovimientosFrecuentes; --";
  Insert(1, hostile);
  auto rs = cn->OpenResultset("Select * from genMovimientosFrecuentes Where MFrID = 1");
  EXPECT_EQ(rs->Get("MFrNombre"), Variant(hostile));
  EXPECT_EQ(Count(), 1);
}

TEST_F(Updatable, DeletingWhileWalkingRemovesEveryRow) {
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
}

TEST_F(Updatable, UnknownColumnIsRefusedAndNothingIsWritten) {
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
  EXPECT_EQ(Count(), 0);
}

TEST_F(Updatable, WritesOutOfSequenceAreErrors) {
  Insert(1, "uno");
  auto rs = cn->OpenResultset("Select * from genMovimientosFrecuentes Where MFrID = 1");
  EXPECT_THROW(rs->Set("MFrNombre", "x"), DbError);  // neither AddNew nor Edit
  EXPECT_THROW(rs->Update(), DbError);
  rs->MoveNext();
  EXPECT_THROW(rs->Edit(), DbError);  // no current row
  EXPECT_THROW(rs->Delete(), DbError);
  EXPECT_EQ(Count("MFrNombre = 'uno'"), 1);
}

TEST_F(Updatable, OtherSetsAreReadOnly) {
  Insert(1, "uno");
  cn->Execute("Create Table cceEmpresas (EmpID INTEGER, EmpNombre TEXT)");
  cn->Execute("Insert Into cceEmpresas Values (1, 'Demo')");
  const char* read_only[] = {
      "Select MFrID, MFrNombre From genMovimientosFrecuentes Where MFrID = 1",
      "Select * From genMovimientosFrecuentes, cceEmpresas Where MFrID = 1",
      "Select * From genMovimientosFrecuentes LEFT JOIN cceEmpresas ON MFrID = EmpID",
      ("Select * From genMovimientosFrecuentes Where MFrID = 1 Union All "
       "Select * From genMovimientosFrecuentes Where MFrID = 1"),
  };
  for (const char* sql : read_only) {
    auto rs = cn->OpenResultset(sql);
    ASSERT_FALSE(rs->Eof()) << sql;
    EXPECT_THROW(rs->Edit(), DbError) << sql;
    EXPECT_THROW(rs->Delete(), DbError) << sql;
    EXPECT_THROW(rs->AddNew(), DbError) << sql;
  }
  EXPECT_EQ(Count(), 1);
}

TEST_F(Updatable, TopOnASingleTableStaysUpdatable) {
  Insert(1, "uno");
  Insert(2, "dos");
  auto rs = cn->OpenResultset("Select Top 1 * From genMovimientosFrecuentes Order By MFrID DESC");
  EXPECT_EQ(rs->Get("MFrID"), Variant(int32_t{2}));
  rs->Delete();
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(Count(), 1);
}

}  // namespace
}  // namespace kivmovfrec
