// Values through the SQLite adapter: every Variant subtype written and read back, NULLs, dates
// kept as ISO text, names resolved without regard to case, errors that carry the statement.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include "db/temp_dir.h"
#include "kivmovfrec/db.h"
#include "platform/db/iso_date.h"

namespace kivmovfrec {
namespace {

constexpr double kAug2nd2005 = 38566;  // 2005-08-02 as a VB date

class SqliteValues : public ::testing::Test {
 protected:
  void SetUp() override {
    cn = OpenConnection("sqlite:" + dir.File("valores.db"));
    cn->Execute(
        "Create Table Valores (ValID INTEGER, ValEntero INTEGER, ValReal REAL, ValTexto TEXT, "
        "ValFecha DATETIME, ValNumero NUMERIC)");
  }

  // Writes `value` into `column` of a new row through an updatable set and reads it back.
  Variant RoundTrip(const char* column, const Variant& value) {
    int id = ++last_id;
    auto rs = cn->OpenResultset("Select * from Valores Where ValID = " + std::to_string(id));
    EXPECT_TRUE(rs->Eof());
    rs->AddNew();
    rs->Set("ValID", int32_t{id});
    rs->Set(column, value);
    rs->Update();
    auto back = cn->OpenResultset("Select * From Valores Where ValID = " + std::to_string(id));
    EXPECT_FALSE(back->Eof());
    return back->Get(column);
  }

  testing::TempDir dir;
  std::shared_ptr<Connection> cn;
  int last_id = 0;
};

TEST_F(SqliteValues, EverySubtypeRoundTrips) {
  EXPECT_EQ(RoundTrip("ValEntero", true), Variant(int32_t{1}));
  EXPECT_EQ(RoundTrip("ValEntero", false), Variant(int32_t{0}));
  EXPECT_EQ(RoundTrip("ValEntero", uint8_t{200}), Variant(int32_t{200}));
  EXPECT_EQ(RoundTrip("ValEntero", int16_t{-5}), Variant(int32_t{-5}));
  EXPECT_EQ(RoundTrip("ValEntero", int32_t{2147483647}), Variant(int32_t{2147483647}));
  EXPECT_EQ(RoundTrip("ValReal", 1.5f), Variant(1.5));
  EXPECT_EQ(RoundTrip("ValReal", 0.1), Variant(0.1));
  EXPECT_EQ(RoundTrip("ValReal", Currency::FromUnits(123456)), Variant(12.3456));
  EXPECT_EQ(RoundTrip("ValTexto", "Año ñandú, O'Higgins"), Variant("Año ñandú, O'Higgins"));
  EXPECT_EQ(RoundTrip("ValTexto", ""), Variant(""));
  const Date when{kAug2nd2005 + (13 * 3600 + 45 * 60 + 10) / 86400.0};
  EXPECT_EQ(RoundTrip("ValFecha", when), Variant(when));
  EXPECT_EQ(RoundTrip("ValFecha", Date{kAug2nd2005}), Variant(Date{kAug2nd2005}));
}

TEST_F(SqliteValues, NullAndEmptyAreStoredAsNullAndReadAsNull) {
  EXPECT_TRUE(RoundTrip("ValTexto", Variant::Null()).IsNull());
  EXPECT_TRUE(RoundTrip("ValEntero", Variant()).IsNull());
  auto rs = cn->OpenResultset("Select count(*) As n From Valores Where ValTexto Is Null");
  EXPECT_EQ(rs->Get("n"), Variant(int32_t{2}));
  // A column never assigned is NULL too.
  auto row = cn->OpenResultset("Select ValFecha, ValReal From Valores Where ValID = 1");
  EXPECT_TRUE(row->Get(0).IsNull());
  EXPECT_TRUE(row->Get("ValReal").IsNull());
}

TEST_F(SqliteValues, LargeIntegersAndNumericColumnsReadAsDouble) {
  cn->Execute("Insert Into Valores (ValID, ValEntero, ValNumero) Values (9, 3000000000, 2.5)");
  auto rs = cn->OpenResultset("Select ValEntero, ValNumero From Valores Where ValID = 9");
  EXPECT_EQ(rs->Get("ValEntero"), Variant(3000000000.0));
  EXPECT_EQ(rs->Get("ValNumero"), Variant(2.5));
}

TEST_F(SqliteValues, DatesAreKeptAsIsoTextAndReadBackAsDatesOnlyFromDateColumns) {
  RoundTrip("ValFecha", Date{kAug2nd2005 + 0.5});
  cn->Execute(
      "Insert Into Valores (ValID, ValFecha, ValTexto) Values (7, 'pronto', "
      "'2005-08-02 12:00:00')");
  auto rs = cn->OpenResultset(
      "Select ValFecha, substr(ValFecha, 1) As Texto From Valores Order By ValID");
  EXPECT_EQ(rs->Get("ValFecha"), Variant(Date{kAug2nd2005 + 0.5}));
  EXPECT_EQ(rs->Get("Texto"), Variant("2005-08-02 12:00:00"));
  rs->MoveNext();
  EXPECT_EQ(rs->Get("ValFecha"), Variant("pronto"));  // not a date: left as text
  // ISO text in a column not declared as a date stays text.
  auto txt = cn->OpenResultset("Select ValTexto From Valores Where ValID = 7");
  EXPECT_EQ(txt->Get(0), Variant("2005-08-02 12:00:00"));
  // A date literal in SQL compares with stored dates as text does.
  auto cmp =
      cn->OpenResultset("Select count(*) From Valores Where ValFecha <= '2005-08-02 12:00:00'");
  EXPECT_EQ(cmp->Get(0), Variant(int32_t{1}));
}

TEST(IsoDate, FormatsAndParsesVbDates) {
  EXPECT_EQ(db::FormatIsoDateTime(Date{kAug2nd2005 + 0.5}), "2005-08-02 12:00:00");
  EXPECT_EQ(db::FormatIsoDateTime(Date{-1.25}), "1899-12-29 06:00:00");
  EXPECT_EQ(db::FormatIsoDateTime(Date{kAug2nd2005 + 86399.7 / 86400}), "2005-08-03 00:00:00");
  EXPECT_THROW(db::FormatIsoDateTime(Date{3e7}), DbError);

  EXPECT_EQ(db::ParseIsoDateTime("2005-08-02"), Date{kAug2nd2005});
  EXPECT_EQ(db::ParseIsoDateTime("1899-12-29 06:00:00"), Date{-1.25});
  EXPECT_EQ(db::ParseIsoDateTime("2005-08-02T12:00"), Date{kAug2nd2005 + 0.5});
  auto frac = db::ParseIsoDateTime("2005-08-02 00:00:01.5");
  ASSERT_TRUE(frac);
  EXPECT_DOUBLE_EQ(frac->serial, kAug2nd2005 + 1.5 / 86400);
  for (const char* bad : {"2005-02-30", "02/08/2005", "2005-08-02 24:00:00", "2005-08-02 10",
                          "2005-08-02 10:00:00x", "2005-8-2", ""}) {
    EXPECT_FALSE(db::ParseIsoDateTime(bad)) << bad;
  }
}

TEST_F(SqliteValues, NamesResolveWithoutRegardToCase) {
  cn->Execute("insert into VALORES (valid, VALTEXTO) values (1, 'x')");
  auto rs = cn->OpenResultset("select VALID, valtexto from valores");
  EXPECT_EQ(rs->ColumnCount(), 2);
  EXPECT_EQ(rs->Get("ValTexto"), Variant("x"));
  EXPECT_EQ(rs->Get("VALTEXTO"), Variant("x"));
  EXPECT_TRUE(rs->HasColumn("Valid"));
  EXPECT_FALSE(rs->HasColumn("ValFecha"));
  EXPECT_THROW(rs->Get("ValFecha"), DbError);
  EXPECT_THROW(rs->Get(2), DbError);
  EXPECT_THROW(rs->Get(-1), DbError);
}

TEST_F(SqliteValues, ReadingPastTheEndOrAfterCloseIsAnError) {
  auto rs = cn->OpenResultset("Select * From Valores");
  EXPECT_TRUE(rs->Eof());
  EXPECT_THROW(rs->Get(0), DbError);
  rs->MoveNext();  // harmless at the end
  EXPECT_TRUE(rs->Eof());
  rs->Close();
  EXPECT_THROW(rs->Eof(), DbError);
  rs->Close();
}

TEST_F(SqliteValues, ExecuteCountsChangedRowsAndRunsOneStatement) {
  EXPECT_EQ(cn->Execute("Insert Into Valores (ValID) Values (1)"), 1);
  cn->Execute("Insert Into Valores (ValID) Values (2)");
  EXPECT_EQ(cn->Execute("Update Valores Set ValTexto = 'a' + 'b' Where ValID > 0"), 2);
  EXPECT_EQ(cn->OpenResultset("Select ValTexto From Valores")->Get(0), Variant("ab"));
  EXPECT_EQ(cn->Execute("Delete From Valores Where ValID = 99"), 0);
  EXPECT_EQ(cn->Execute("Create Index ixValores On Valores (ValID)"), 0);
  EXPECT_THROW(cn->Execute("Delete From Valores; Delete From Valores"), DbError);
  EXPECT_EQ(cn->OpenResultset("Select count(*) From Valores")->Get(0), Variant(int32_t{2}));
}

TEST_F(SqliteValues, EngineErrorsCarryTheMessageAndTheStatement) {
  try {
    cn->OpenResultset("Select NoSuchColumn From Valores");
    FAIL() << "expected DbError";
  } catch (const DbError& e) {
    std::string what = e.what();
    EXPECT_NE(what.find("no such column: NoSuchColumn"), std::string::npos) << what;
    EXPECT_NE(what.find("Select NoSuchColumn From Valores"), std::string::npos) << what;
  }
  EXPECT_THROW(cn->Execute("Insert Into Missing Values (1)"), DbError);
  EXPECT_THROW(cn->Execute("   "), DbError);
}

}  // namespace
}  // namespace kivmovfrec
