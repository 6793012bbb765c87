// The PostgreSQL-only rewrites of the suite's statements, and the value conversions of the
// PostgreSQL adapter (beyond what the round trips of values_test.cpp show). No server needed.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>

#include "kivmovfrec/db.h"
#include "platform/db/postgres/pg_dialect.h"
#include "platform/db/postgres/pg_values.h"

namespace kivmovfrec::postgres {
namespace {

TEST(PostgresDialect, BareNumbersInAUnionTakeTheTypeOfTheOtherBranches) {
  EXPECT_EQ(RewriteLooseTyping("Select 1, CueCodigo, rTrim(CueNombre) From cceCuentas Union All "
                               "Select 2, 0, ProAbreviacion From cceProyectos Union All "
                               "Select 3, -1 As c, DepAbreviacion From cceDepartamentos"),
            "Select 1, CueCodigo, rTrim(CueNombre) From cceCuentas Union All "
            "Select 2, '0', ProAbreviacion From cceProyectos Union All "
            "Select 3, '-1' As c, DepAbreviacion From cceDepartamentos");
  // Positions holding only numbers and NULLs keep their numbers.
  for (const char* kept : {"Select 1, Null Union All Select 2, 0",
                           "Select a, 1 From t Union Select b, 2 From u", "Select 1, 2 From t"}) {
    EXPECT_EQ(RewriteLooseTyping(kept), kept);
  }
  // A sub-select that is not a branch is left alone.
  EXPECT_EQ(RewriteLooseTyping("Select 0 Union All Select x From (Select 1 As x, 2) As s"),
            "Select '0' Union All Select x From (Select 1 As x, 2) As s");
  // Inside a sub-select, and with Top kept for the shared translation.
  EXPECT_EQ(RewriteLooseTyping("Select * From (Select Top 1 Nombre From t Union All Select Top 1 "
                               "0 From u) As x"),
            "Select * From (Select Top 1 Nombre From t Union All Select Top 1 '0' From u) As x");
  EXPECT_EQ(TranslateForPostgres("Select Top 1 Nombre From t Union All Select Top 1 0 From u"),
            "(Select Nombre From t LIMIT 1) Union All (Select '0' From u LIMIT 1)");
}

TEST(PostgresValues, TextIsReadByColumnType) {
  EXPECT_EQ(FromText(oid::kInt2, "7"), Variant(int32_t{7}));
  EXPECT_EQ(FromText(oid::kInt8, "2147483647"), Variant(int32_t{2147483647}));
  EXPECT_EQ(FromText(oid::kInt8, "3000000000"), Variant(3000000000.0));
  EXPECT_EQ(FromText(oid::kFloat8, "-Infinity"), Variant(-std::numeric_limits<double>::infinity()));
  EXPECT_EQ(FromText(oid::kBool, "t"), Variant(true));
  EXPECT_EQ(FromText(oid::kBool, "f"), Variant(false));
  EXPECT_EQ(FromText(oid::kDate, "2005-08-02"), Variant(Date{38566}));
  EXPECT_EQ(FromText(oid::kTimestampTz, "2005-08-02 12:00:00-03"), Variant(Date{38566.5}));
  EXPECT_EQ(FromText(oid::kTimestampTz, "2005-08-02 12:00:00+05:30"), Variant(Date{38566.5}));
  EXPECT_EQ(FromText(oid::kTime, "06:00:00"), Variant(Date{0.25}));
  EXPECT_EQ(FromText(oid::kTimestamp, "infinity"), Variant("infinity"));
  EXPECT_EQ(FromText(oid::kBytea, "\\x41ff00"), Variant(std::string("A\xff\0", 3)));
  EXPECT_EQ(FromText(1042 /* bpchar */, "U$S  "), Variant("U$S  "));
}

TEST(PostgresValues, ParametersAreExactTextAndObjectsAreRefused) {
  EXPECT_EQ(ToParam(Currency::FromUnits(INT64_MIN)), "-922337203685477.5808");
  struct Dummy : Object {
    std::string TypeName() const override { return "Dummy"; }
    Variant Invoke(std::string_view, std::span<const Variant>) override { return {}; }
  };
  EXPECT_THROW(ToParam(Variant(std::make_shared<Dummy>())), DbError);
}

}  // namespace
}  // namespace kivmovfrec::postgres
