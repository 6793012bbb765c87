#include "platform/db/sqlite/sqlite_like.h"

#include <gtest/gtest.h>

#include "kivmovfrec/db.h"

namespace kivmovfrec::sqlite {
namespace {

TEST(LikeMatch, FoldsAsciiAndLatinLettersAndKeepsTheWildcards) {
  EXPECT_TRUE(LikeMatch("%área%", "ÁREA CONTABLE"));
  EXPECT_TRUE(LikeMatch("%CAÑA%", "la caña"));
  EXPECT_TRUE(LikeMatch("ping_ino", "pingüino"));  // _ is one character, not one byte
  EXPECT_TRUE(LikeMatch("%cierre%de%mes%", "Cierre anual de MES"));
  EXPECT_TRUE(LikeMatch("%", ""));
  EXPECT_TRUE(LikeMatch("a%%b", "ab"));
  EXPECT_FALSE(LikeMatch("%cierre%mes%", "Cierre de año"));
  EXPECT_FALSE(LikeMatch("_", ""));
  EXPECT_FALSE(LikeMatch("abc", "abcd"));
  EXPECT_FALSE(LikeMatch("÷", "×"));  // signs, not letters: no case
  EXPECT_FALSE(LikeMatch("año", "ano"));
  EXPECT_TRUE(LikeMatch("100!%", "100%", U'!'));
  EXPECT_FALSE(LikeMatch("100!%", "1000", U'!'));
  EXPECT_TRUE(LikeMatch("a\xff%", "A\xff\xfe"));  // bytes that are not UTF-8 compare as bytes
}

TEST(LikeMatch, IsWhatLikeMeansOnASqliteConnection) {
  auto cn = OpenConnection("sqlite::memory:");
  cn->Execute("Create Table t (n TEXT)");
  cn->Execute("Insert Into t Values ('Liquidación de SUELDOS'), ('Otro'), (Null)");
  auto rs = cn->OpenReadOnly("Select count(*) From t Where n Like '%LIQUIDACIÓN%sueldos'");
  EXPECT_EQ(rs->Get(0), Variant(int32_t{1}));
  auto neg = cn->OpenReadOnly("Select count(*) From t Where n Not Like '%ción%'");
  EXPECT_EQ(neg->Get(0), Variant(int32_t{1}));  // NULL is neither like nor not like
  auto esc = cn->OpenReadOnly("Select 'a_b' Like 'a#_b' Escape '#', 'axb' Like 'a#_b' Escape '#'");
  EXPECT_EQ(esc->Get(0), Variant(int32_t{1}));
  EXPECT_EQ(esc->Get(1), Variant(int32_t{0}));
  EXPECT_THROW(cn->OpenReadOnly("Select 'a' Like 'a' Escape '##'"), DbError);
}

}  // namespace
}  // namespace kivmovfrec::sqlite
