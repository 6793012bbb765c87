// The suite dialect's constructs run on every engine after translation, with the rows they must
// give: Like without regard to case, bound values and a bare number in a union with a text
// column. (Top in each branch of a union runs in the rate look-up, tested with the
// currencies; `+` between texts in the catalogue look-ups of formula/catalogo_test.cpp.)
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>

#include "kivmovfrec/db.h"
#include "support/db_engines.h"

namespace kivmovfrec {
namespace {

class DialectOnEngines : public testing::EngineTest {
 protected:
  void SetUpDatabase() override {
    cn->Execute("Create Table Cue (ID INTEGER, Codigo VARCHAR(20), Nombre VARCHAR(50))");
    cn->Execute(
        "Insert Into Cue Values (7, '1.1.01  ', 'Caja'), (8, '1.1', 'Disponibilidades'), "
        "(9, '4.1', 'LIQUIDACIÓN de SUELDOS'), (10, '1_1', Null)");
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

// Capitals with accents too; NULL is neither like nor not like; an escape character.
TEST_P(DialectOnEngines, LikeIgnoresCase) {
  EXPECT_EQ(Column("Select ID From Cue Where Nombre Like '%liquidación%sueldos' Or Nombre Like "
                   "'disp%' Order By ID"),
            "Long(8)|Long(9)");
  EXPECT_EQ(Column("Select count(*) From Cue Where Nombre Not Like '%ción%'"), "Long(2)");
  EXPECT_EQ(Column("Select ID From Cue Where Codigo Like '1#_1' Escape '#'"), "Long(10)");
  EXPECT_THROW(cn->OpenReadOnly("Select ID From Cue Where Codigo Like 'a' Escape '##'"), DbError);
}

// Bound values are data: quotes, either engine's placeholders, comment marks and statement ends
// are stored and compared as they are, and a `?` inside a literal is text. A statement whose
// placeholders do not match the values runs nothing.
TEST_P(DialectOnEngines, BoundValuesAreNeverSql) {
  int32_t id = 100;
  for (const std::string texto : {"D'Angelo ''x'' \"y\"", "?", "$1 ? $2 :nombre @a",
                                  "'); Delete From Cue; --", "a /* b", "[pFindKey] ñandú"}) {
    cn->Execute("Insert Into Cue (ID, Codigo, Nombre) Values (?, '?', ?)", {id, texto});
    auto rs = cn->OpenResultset("Select ID, Codigo, Nombre From Cue Where Nombre = ?", {texto});
    ASSERT_FALSE(rs->Eof()) << texto;
    EXPECT_EQ(std::tuple(rs->Get(0), rs->Get(1), rs->Get(2)),
              std::tuple(Variant(id++), Variant("?"), Variant(texto)));
  }
  for (const char* sql : {"Delete From Cue Where ID = ?", "Delete From Cue Where ID = :id",
                          "Delete From Cue Where ID = $1"}) {
    EXPECT_THROW(cn->Execute(sql, {}), DbError) << sql;
    EXPECT_THROW(cn->Execute(sql, {7, 8}), DbError) << sql;
  }
  EXPECT_EQ(Column("Select count(*) From Cue"), "Long(10)");
}

// A bare number in one branch of a union where the other has a text column: loose typing that
// PostgreSQL needs rewritten.
TEST_P(DialectOnEngines, MixedUnionColumnsRun) {
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
