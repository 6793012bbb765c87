// Values through every engine's adapter: each Variant subtype written and read back, NULLs,
// dates (and the text they are stored as), names resolved without regard to case, errors that
// carry the statement.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "kivmovfrec/db.h"
#include "platform/db/sql_tokens.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "support/db_engines.h"

namespace kivmovfrec {
namespace {

constexpr double kAug2nd2005 = 38566;  // 2005-08-02 as a VB date

class Values : public testing::EngineTest {
 protected:
  void SetUpDatabase() override {
    cn->Execute(
        "Create Table Valores (ValID INTEGER, ValEntero INTEGER, ValGrande BIGINT, "
        "ValReal DOUBLE PRECISION, ValTexto TEXT, ValFecha TIMESTAMP, ValNumero NUMERIC)");
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

  int last_id = 0;
};

// Each subtype written through an updatable set and read back; NULL and Empty are stored as
// NULL, and a column never assigned is NULL too.
TEST_P(Values, EverySubtypeRoundTrips) {
  const Date when{kAug2nd2005 + (13 * 3600 + 45 * 60 + 10) / 86400.0};
  const struct {
    const char* column;
    Variant written, read;
  } cases[] = {
      {"ValEntero", true, int32_t{1}},
      {"ValEntero", false, int32_t{0}},
      {"ValEntero", uint8_t{200}, int32_t{200}},
      {"ValEntero", int16_t{-5}, int32_t{-5}},
      {"ValEntero", int32_t{2147483647}, int32_t{2147483647}},
      {"ValEntero", 7.0, int32_t{7}},  // a whole double fits
      {"ValReal", 1.5f, 1.5},
      {"ValReal", 0.1, 0.1},
      {"ValReal", 1.0 / 3, 1.0 / 3},  // every bit kept
      {"ValReal", Currency::FromUnits(123456), 12.3456},
      {"ValReal", Currency::FromUnits(-5), -0.0005},
      {"ValTexto", "Año ñandú, O'Higgins", "Año ñandú, O'Higgins"},
      {"ValTexto", "", ""},
      {"ValFecha", when, when},
      {"ValFecha", Date{kAug2nd2005}, Date{kAug2nd2005}},
      {"ValFecha", "2005-08-02 12:00:00", Date{kAug2nd2005 + 0.5}},
      {"ValTexto", Variant::Null(), Variant::Null()},
      {"ValEntero", Variant(), Variant::Null()},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(DebugString(RoundTrip(c.column, c.written)), DebugString(c.read))
        << c.column << " " << DebugString(c.written);
  }
  auto row = cn->OpenResultset("Select ValFecha, ValReal From Valores Where ValID = 1");
  EXPECT_TRUE(row->Get(0).IsNull());
  EXPECT_TRUE(row->Get("ValReal").IsNull());
}

TEST_P(Values, LargeIntegersAndNumericColumnsReadAsDouble) {
  cn->Execute("Insert Into Valores (ValID, ValGrande, ValNumero) Values (9, 3000000000, 2.5)");
  auto rs = cn->OpenResultset("Select ValGrande, ValNumero, ValID From Valores Where ValID = 9");
  EXPECT_EQ(rs->Get("ValGrande"), Variant(3000000000.0));
  EXPECT_EQ(rs->Get("ValNumero"), Variant(2.5));
  EXPECT_EQ(rs->Get("ValID"), Variant(int32_t{9}));
  // Aggregates: a count is a whole number, a sum of doubles a double.
  auto agg = cn->OpenResultset("Select count(*), sum(ValNumero) From Valores");
  EXPECT_EQ(agg->Get(0), Variant(int32_t{1}));
  EXPECT_EQ(agg->Get(1), Variant(2.5));
}

TEST_P(Values, DateLiteralsCompareWithStoredDates) {
  RoundTrip("ValFecha", Date{kAug2nd2005 + 0.5});
  RoundTrip("ValFecha", Date{kAug2nd2005 + 1});
  auto cmp =
      cn->OpenResultset("Select count(*) From Valores Where ValFecha <= '2005-08-02 12:00:00'");
  EXPECT_EQ(cmp->Get(0), Variant(int32_t{1}));
  // An expression over a date column: PostgreSQL knows its type, SQLite only has the text.
  auto max = cn->OpenResultset("Select Max(ValFecha) As Ultima From Valores");
  EXPECT_EQ(max->Get("ultima"),
            postgres() ? Variant(Date{kAug2nd2005 + 1}) : Variant("2005-08-03 00:00:00"));
}

TEST_P(Values, NamesResolveWithoutRegardToCase) {
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
  // Reading past the end or after Close is an error; moving past the end and closing again are
  // harmless.
  auto none = cn->OpenResultset("Select * From Valores Where ValID = 2");
  EXPECT_THROW(none->Get(0), DbError);
  none->MoveNext();
  EXPECT_TRUE(none->Eof());
  none->Close();
  EXPECT_THROW(none->Eof(), DbError);
  none->Close();
}

TEST_P(Values, ExecuteCountsChangedRowsAndRunsOneStatement) {
  EXPECT_EQ(cn->Execute("Insert Into Valores (ValID) Values (1)"), 1);
  cn->Execute("Insert Into Valores (ValID) Values (2)");
  EXPECT_EQ(cn->Execute("Update Valores Set ValTexto = 'a' + 'b' Where ValID > 0"), 2);
  EXPECT_EQ(cn->OpenResultset("Select ValTexto From Valores")->Get(0), Variant("ab"));
  EXPECT_EQ(cn->Execute("Delete From Valores Where ValID = 99"), 0);
  EXPECT_EQ(cn->Execute("Create Index ixValores On Valores (ValID)"), 0);
  EXPECT_EQ(cn->Execute("Select ValID From Valores"), 0);  // a query changes nothing
  EXPECT_THROW(cn->Execute("Delete From Valores; Delete From Valores"), DbError);
  EXPECT_EQ(cn->OpenResultset("Select count(*) From Valores")->Get(0), Variant(int32_t{2}));
}

TEST_P(Values, EngineErrorsCarryTheMessageAndTheStatement) {
  try {
    cn->OpenResultset("Select NoSuchColumn From Valores");
    FAIL() << "expected DbError";
  } catch (const DbError& e) {
    std::string what = e.what();
    const char* message =
        postgres() ? "column \"nosuchcolumn\" does not exist" : "no such column: NoSuchColumn";
    EXPECT_NE(what.find(message), std::string::npos) << what;
    EXPECT_NE(what.find("Select NoSuchColumn From Valores"), std::string::npos) << what;
  }
  EXPECT_THROW(cn->Execute("Insert Into Missing Values (1)"), DbError);
  EXPECT_THROW(cn->Execute("   "), DbError);
  EXPECT_THROW(cn->OpenResultset("-- nada"), DbError);
}

KMF_INSTANTIATE_ENGINES(Values);

// SQLite only (a plain TEST_F on the engine fixture): it stores dates as ISO text and reads them
// back as dates only from columns declared as dates; other text stays as it is.
TEST_F(Values, SqliteKeepsDatesAsIsoTextAndReadsThemOnlyFromDateColumns) {
  RoundTrip("ValFecha", Date{kAug2nd2005 + 0.5});
  cn->Execute(
      "Insert Into Valores (ValID, ValFecha, ValTexto) Values (7, 'pronto', "
      "'2005-08-02 12:00:00')");
  auto rs = cn->OpenResultset(
      "Select ValFecha, substr(ValFecha, 1) As Texto, ValTexto From Valores Order By ValID");
  EXPECT_EQ(rs->Get("ValFecha"), Variant(Date{kAug2nd2005 + 0.5}));
  EXPECT_EQ(rs->Get("Texto"), Variant("2005-08-02 12:00:00"));
  rs->MoveNext();
  EXPECT_EQ(rs->Get("ValFecha"), Variant("pronto"));  // not a date: left as text
  EXPECT_EQ(rs->Get("ValTexto"), Variant("2005-08-02 12:00:00"));
  // The declared type names a date in any case, anywhere in it.
  cn->Execute("Create Table Tipos (a date, b DateTime, c my_timestamp_tz, d Text, e Detail)");
  cn->Execute("Insert Into Tipos Values (?, ?, ?, ?, ?)", DbParams(5, Variant("2005-08-02")));
  auto tipos = cn->OpenResultset("Select * From Tipos");
  for (const char* col : {"a", "b", "c"})
    EXPECT_EQ(tipos->Get(col), Variant(Date{kAug2nd2005})) << col;
  for (const char* col : {"d", "e"}) EXPECT_EQ(tipos->Get(col), Variant("2005-08-02")) << col;
}

// The text form dates are stored in, and its strict reading.
TEST(StoredDates, FormatAndStrictParse) {
  EXPECT_EQ(sql::StoredDateText(Date{kAug2nd2005 + 0.5}), "2005-08-02 12:00:00");
  EXPECT_EQ(sql::StoredDateText(Date{-1.25}), "1899-12-29 06:00:00");
  EXPECT_EQ(sql::StoredDateText(Date{kAug2nd2005 + 86399.7 / 86400}), "2005-08-03 00:00:00");
  EXPECT_THROW(sql::StoredDateText(Date{3e7}), DbError);
  EXPECT_THROW(sql::StoredDateText(Date{-700000}), DbError);  // before year 100

  EXPECT_EQ(vb::ParseIsoDateTime("2005-08-02"), Date{kAug2nd2005});
  EXPECT_EQ(vb::ParseIsoDateTime("1899-12-29 06:00:00"), Date{-1.25});
  EXPECT_EQ(vb::ParseIsoDateTime("2005-08-02T12:00"), Date{kAug2nd2005 + 0.5});
  // Fractions of a second are kept, also before the epoch (time counted forward).
  auto frac = vb::ParseIsoDateTime("2005-08-02 00:00:01.5");
  ASSERT_TRUE(frac);
  EXPECT_DOUBLE_EQ(frac->serial, kAug2nd2005 + 1.5 / 86400);
  auto early = vb::ParseIsoDateTime("1899-12-29 06:00:00.25");
  ASSERT_TRUE(early);
  EXPECT_DOUBLE_EQ(early->serial, -1.25 - 0.25 / 86400);
  // Text a person might type (and vb::ParseDate accepts) is not a stored date.
  for (const char* bad : {"2005-02-30", "02/08/2005", "2005-08-02 24:00:00", "2005-08-02 10",
                          "2005-08-02 10:00:00x", "2005-8-2", "", " 2005-08-02", "2005-08-02 9:00",
                          "2005-08-02  09:00", "2005-08-02 09:00:00.", "0099-12-31"}) {
    EXPECT_FALSE(vb::ParseIsoDateTime(bad)) << bad;
  }
  EXPECT_TRUE(vb::ParseDate("2005-08-02 9:00"));
}

}  // namespace
}  // namespace kivmovfrec
