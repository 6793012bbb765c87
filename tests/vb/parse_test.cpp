#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "vb_test_util.h"

namespace kivmovfrec::vb {
namespace {

using testing::D;

// A point or the locale's comma as the decimal separator, signs, exponents, blanks, and VB's
// hexadecimal and octal literals (&H / &O, four digits or fewer are an Integer).
TEST(ParseNumber, AcceptsPointOrLocaleCommaSignsExponentsAndLiterals) {
  const std::pair<const char*, double> casos[] = {
      {"1E5", 100000}, {"1e-2", 0.01}, {"-3,5", -3.5},     {"+2.25", 2.25},    {"  42  ", 42},
      {"\t7\t", 7},    {".5", 0.5},    {"5.", 5},          {"007", 7},         {"1e-400", 0},
      {"&H10", 16},    {"&HFFFF", -1}, {"&HFFFF&", 65535}, {"&h10000", 65536}, {"&O17", 15}};
  for (const auto& [texto, valor] : casos) EXPECT_EQ(ParseNumber(texto), valor) << texto;
}

TEST(ParseNumber, NeverReadsALonePointAsThousands) {
  EXPECT_EQ(ParseNumber("1.234"), 1.234);
  EXPECT_EQ(ParseNumber("1,234"), 1.234);
  // Grouping is understood only when the locale's decimal separator follows it.
  EXPECT_EQ(ParseNumber("1.234,56"), 1234.56);
  EXPECT_EQ(ParseNumber("1.234.567,5"), 1234567.5);
  EXPECT_EQ(ParseNumber("1,234.56", Locale::Invariant()), 1234.56);
  EXPECT_FALSE(ParseNumber("1.234.567"));
  EXPECT_FALSE(ParseNumber("1,234.56"));  // Spanish: a comma cannot group
  EXPECT_FALSE(ParseNumber("12.34,5"));   // groups must have three digits
  EXPECT_FALSE(ParseNumber("1,5", Locale::Invariant()));
}

TEST(ParseNumber, RejectsWhatIsNotANumber) {
  for (const char* text :
       {"",   "   ",  "abc",   "1e",   "1e+",   "e5",   "-",  "+",   ".",   "1 2",  "- 5",
        "5-", "1..2", "12abc", "0x10", "1,2,3", "True", "&H", "&HG", "&O8", "1e400"}) {
    EXPECT_FALSE(ParseNumber(text)) << '"' << text << '"';
  }
}

// Val reads the leading number with a point, skipping blanks; what follows is ignored.
TEST(Val, ReadsTheLeadingNumberWithAPoint) {
  const std::pair<const char*, double> casos[] = {
      {"  12.5abc", 12.5}, {"1 2 3", 123}, {"-3,5", -3}, {"1e3x", 1000}, {"1e", 1},   {"2D2", 200},
      {"&HFF", 255},       {"abc", 0},     {"", 0},      {"-", 0},       {".5.", 0.5}};
  for (const auto& [texto, valor] : casos) EXPECT_EQ(Val(texto), valor) << texto;
  EXPECT_THROW(Val("1e999"), VbError);
}

// Day first, with an optional time; ISO forms; a time alone is on day zero.
TEST(ParseDate, DayFirstIsoAndTimeAlone) {
  const std::pair<const char*, Date> casos[] = {
      {"02/08/2005", D(2005, 8, 2)},
      {"2/8/2005", D(2005, 8, 2)},
      {" 31/12/1999 ", D(1999, 12, 31)},
      {"02/08/2005 10:57", D(2005, 8, 2, 10, 57)},
      {"02/08/2005 10:57:58", D(2005, 8, 2, 10, 57, 58)},
      {"02/08/2005  00:00:00", D(2005, 8, 2)},
      {"29/02/2008", D(2008, 2, 29)},
      {"01/01/1850 06:00", D(1850, 1, 1, 6)},
      {"2005-08-02", D(2005, 8, 2)},
      {"2005-08-02 10:57:58", D(2005, 8, 2, 10, 57, 58)},
      {"2005-08-02T10:57:58", D(2005, 8, 2, 10, 57, 58)},
      {"2005-08-02T10:57:58.987", D(2005, 8, 2, 10, 57, 58)},
      {"2005-08-02 10:57", D(2005, 8, 2, 10, 57)},
      {"18:00", Date{0.75}},
      {"06:00:00", Date{0.25}}};
  for (const auto& [texto, fecha] : casos) EXPECT_EQ(ParseDate(texto), fecha) << texto;
}

TEST(ParseDate, RejectsInvalidDatesAndShapes) {
  const std::vector<std::string> dias = {"31/02/2024", "29/02/2023", "2024-13-01", "2024-02-30",
                                         "32/01/2005", "00/01/2005", "01/00/2005", "01/01/0099"};
  const std::vector<std::string> horas = {"02/08/2005 24:00", "02/08/2005 10:60",
                                          "02/08/2005 10:57:60", "10:5", "02/08/2005 T10:00"};
  const std::vector<std::string> formas = {
      "02/08/05",   "02/08/2005x", "02/08/200512:00",     "02/08/2005T10:00",
      "2005/08/02", "2005-08",     "2005-08-02 10:57:58Z"};
  const std::vector<std::string> otros = {"", "hoy", "12", "1.5"};
  for (const auto* lista : {&dias, &horas, &formas, &otros}) {
    for (const std::string& text : *lista) EXPECT_FALSE(ParseDate(text)) << '"' << text << '"';
  }
}

}  // namespace
}  // namespace kivmovfrec::vb
