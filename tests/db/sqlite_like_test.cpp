#include "platform/db/sqlite/sqlite_like.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace kivmovfrec::sqlite
