// What only SQLite does with values: dates kept as ISO text (and text kept in a date column),
// and the ISO date helpers it relies on. The engine-independent value tests are in
// values_test.cpp.
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

}  // namespace
}  // namespace kivmovfrec
