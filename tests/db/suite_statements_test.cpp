// The suite dialect's constructs run on every engine after translation, with the rows they must
// give: Top in each branch of a union, `+` between texts, Like without regard to case, the
// match-nothing comparison and a bare number in a union with a text column.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "kivmovfrec/db.h"
#include "support/db_engines.h"

namespace kivmovfrec {
namespace {

class DialectOnEngines : public testing::EngineTest {
 protected:
  void SetUpDatabase() override {
    cn->Execute(
        "Create Table Cot (Mon INTEGER, En INTEGER, Fecha TIMESTAMP, Compra DOUBLE PRECISION)");
    cn->Execute(
        "Insert Into Cot Values (2, 1, '2005-07-01 00:00:00', 3.0), "
        "(2, 1, '2005-08-01 00:00:00', 3.5), (2, 1, '2005-08-01 00:00:00', 3.5), "
        "(2, 1, '2005-09-01 00:00:00', 4.0), (1, 2, '2005-07-15 00:00:00', 0.25)");
    cn->Execute("Create Table Cue (ID INTEGER, Codigo VARCHAR(20), Nombre VARCHAR(50))");
    cn->Execute(
        "Insert Into Cue Values (7, '1.1.01  ', 'Caja'), (8, '1.1', 'Disponibilidades'), "
        "(9, '4.1', 'LIQUIDACIÓN de sueldos')");
  }

  // The first column of every row, as text.
  std::string Column(const std::string& sql) {
    std::string out;
    for (auto rs = cn->OpenReadOnly(sql); !rs->Eof(); rs->MoveNext()) {
      out += (out.empty() ? "" : "|") + DebugString(rs->Get(0));
    }
    return out;
  }
};

// The latest rate on or before a day in each direction, the inverse one divided by the database.
TEST_P(DialectOnEngines, TopLimitsEachBranchOfAUnion) {
  const auto branch = [](int a, int b, const char* value) {
    return std::string("Select Top 1 ") + value + " From Cot Where Fecha In (Select Max(Fecha) " +
           "From Cot Where Fecha <= '2005-08-02 00:00:00' And Mon = " + std::to_string(a) +
           " And En = " + std::to_string(b) + ") And Mon = " + std::to_string(a) +
           " And En = " + std::to_string(b);
  };
  auto rs = cn->OpenResultset(branch(2, 1, "Compra") + " Union All " + branch(1, 2, "1/Compra"));
  std::string seen;
  for (; !rs->Eof(); rs->MoveNext()) seen += DebugString(rs->Get(0)) + " ";
  EXPECT_EQ(seen,
            "Double(3.5) Double(4) ");  // the duplicate of 01/08 is cut by the first branch's limit
}

TEST_P(DialectOnEngines, PlusNextToATextConcatenatesAndLikeIgnoresCase) {
  EXPECT_EQ(Column("Select RTrim(Codigo) + ' ' + Nombre + ' (' + RTrim(Codigo) + ')' From Cue "
                   "Where ID = 7"),
            "String(\"1.1.01 Caja (1.1.01)\")");
  EXPECT_EQ(Column("Select ID + 1 From Cue Where RTrim(Codigo) + ' ' + Nombre = '1.1.01 Caja'"),
            "Long(8)");
  EXPECT_EQ(Column("Select ID From Cue Where Nombre Like '%liquidación%SUELDOS' Or Nombre Like "
                   "'disp%' Order By ID"),
            "Long(8)|Long(9)");
}

// The match-nothing text after a whole-number column, and a bare number in one branch of a union
// where the other has a text column: loose typing that PostgreSQL needs rewritten.
TEST_P(DialectOnEngines, MatchNothingAndMixedUnionColumnsRun) {
  EXPECT_EQ(Column("Select ID From Cue Where (ID  = 'abc121ptokiv121cba' or Nombre = 'Caja')"),
            "Long(7)");
  EXPECT_EQ(Column("Select count(*) From Cue Where Not (ID = 'abc121ptokiv121cba')"), "Long(3)");
  auto rs = cn->OpenReadOnly(
      "Select 1, Codigo, rTrim(Nombre) From Cue Where ID = 7 Union All "
      "Select 2, 0, Nombre From Cue Where ID = 8 Order By 1");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Get(2), Variant("Caja"));
  rs->MoveNext();
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Get(2), Variant("Disponibilidades"));
  // The number reads back as the text column's type on PostgreSQL, as a number on SQLite.
  EXPECT_EQ(rs->Get(1), postgres() ? Variant("0") : Variant(int32_t{0}));
}

KMF_INSTANTIATE_ENGINES(DialectOnEngines);

}  // namespace
}  // namespace kivmovfrec
