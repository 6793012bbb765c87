#include <gtest/gtest.h>

#include "kivmovfrec/variant.h"
#include "platform/vb/text.h"

namespace kivmovfrec::vb {
namespace {

TEST(Text, CaseCoversSpanishLettersAndTrimOnlySpaces) {
  EXPECT_EQ(LCase("ÁÉÍÓÚÜÑÇ ABC"), "áéíóúüñç abc");
  EXPECT_EQ(UCase("áéíóúüñç abc"), "ÁÉÍÓÚÜÑÇ ABC");
  EXPECT_EQ(UCase("año × ÷"), "AÑO × ÷");  // signs have no case
  EXPECT_EQ(LCase("ÿ €"), "ÿ €");
  EXPECT_EQ(LCase("&[FAño-1]"), "&[faño-1]");
  EXPECT_EQ(Trim("  a b  ") + "|" + LTrim("  a ") + "|" + RTrim("  a ") + "|" + Trim("   "),
            "a b|a |  a|");
  EXPECT_EQ(Trim("\ta\t"), "\ta\t");
}

// Positions and lengths count characters, not bytes; a start past the end finds nothing and a
// start below 1 is an error.
TEST(Text, PositionsCountCharactersNotBytes) {
  EXPECT_EQ(Len("Miércoles"), 9u);
  EXPECT_EQ(Left("Miércoles", 3), "Mié");
  EXPECT_EQ(Right("Miércoles", 7), "ércoles");
  EXPECT_EQ(Left("ab", 5) + Right("ab", 5), "abab");
  EXPECT_EQ(Mid("Miércoles", 3, 2), "ér");
  EXPECT_EQ(Mid("Miércoles", 4), "rcoles");
  EXPECT_EQ(Mid("abc", 4) + Mid("abc", 10, 2), "");
  EXPECT_THROW(Mid("abc", 0), VbError);

  EXPECT_EQ(InStr("señor señor", "or"), 4u);
  EXPECT_EQ(InStr("señor señor", "or", 5), 10u);
  EXPECT_EQ(InStr("señor", "OR"), 0u);
  EXPECT_EQ(InStr("SEÑOR", "ñor", 1, true), 3u);
  EXPECT_EQ(InStr("abc", "c", 4), 0u);
  EXPECT_EQ(InStr("abc", "", 3), 3u);
  EXPECT_THROW(InStr("abc", "a", 0), VbError);
}

TEST(Text, ReplaceAllSomeOrIgnoringCase) {
  EXPECT_EQ(Replace("a-b-c", "-", "+"), "a+b+c");
  EXPECT_EQ(Replace("a-b-c", "-", ""), "abc");
  EXPECT_EQ(Replace("a-b-c", "-", "+", false, 1), "a+b-c");
  EXPECT_EQ(Replace("&[FechaC] y &[fechac]", "&[FECHAC]", "02/08/2005", true),
            "02/08/2005 y 02/08/2005");
  EXPECT_EQ(Replace("Año AÑO", "año", "x", true), "x x");
  EXPECT_EQ(Replace("aaa", "aa", "b"), "ba");
  EXPECT_EQ(Replace("abc", "", "x"), "abc");
  EXPECT_EQ(Replace("abc", "b", "x", false, 0), "abc");
}

TEST(Text, IgnoreCaseComparisonsAndSplit) {
  EXPECT_TRUE(EqualsIgnoreCase("genMovimientosFrecuentes", "GENMOVIMIENTOSFRECUENTES"));
  EXPECT_TRUE(EqualsIgnoreCase("Año", "AÑO"));
  EXPECT_FALSE(EqualsIgnoreCase("Ano", "Año"));
  EXPECT_FALSE(EqualsIgnoreCase("abc", "abcd"));
  EXPECT_TRUE(StartsWithIgnoreCase("Ñandú", "ñ"));
  EXPECT_FALSE(StartsWithIgnoreCase("se", "select"));
  // Empty parts are kept.
  EXPECT_EQ(Split("a||b", "|"), (std::vector<std::string>{"a", "", "b"}));
  EXPECT_EQ(Split("", "|"), (std::vector<std::string>{""}));
  EXPECT_EQ(Split("a, b", ", "), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(Split("abc", ""), (std::vector<std::string>{"abc"}));
}

TEST(Text, InvalidUtf8PassesThroughUnchanged) {
  const std::string latin1 = "a\xF1o";  // "año" in Latin-1
  EXPECT_TRUE(IsValidUtf8("año €"));
  for (const char* invalido : {"a\xF1o", "\xC0\xAF", "\xED\xA0\x80", "\xE2\x82"}) {
    EXPECT_FALSE(IsValidUtf8(invalido)) << invalido;  // Latin-1, overlong, surrogate, truncated
  }
  EXPECT_EQ(Len(latin1), 3u);
  EXPECT_EQ(UCase(latin1), "A\xF1O");
  EXPECT_EQ(Mid(latin1, 2, 1), "\xF1");
  EXPECT_EQ(Replace(latin1, "o", "x"), "a\xF1x");
}

}  // namespace
}  // namespace kivmovfrec::vb
