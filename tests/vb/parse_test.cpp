#include <gtest/gtest.h>

#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "vb_test_util.h"

namespace kivmovfrec::vb {
namespace {

using testing::D;

TEST(ParseNumber, AcceptsPointOrLocaleCommaSignsExponentsAndBlanks) {
  EXPECT_EQ(ParseNumber("1E5"), 100000);
  EXPECT_EQ(ParseNumber("1e-2"), 0.01);
  EXPECT_EQ(ParseNumber("-3,5"), -3.5);
  EXPECT_EQ(ParseNumber("+2.25"), 2.25);
  EXPECT_EQ(ParseNumber("  42  "), 42);
  EXPECT_EQ(ParseNumber("\t7\t"), 7);
  EXPECT_EQ(ParseNumber(".5"), 0.5);
  EXPECT_EQ(ParseNumber("5."), 5);
  EXPECT_EQ(ParseNumber("007"), 7);
  EXPECT_EQ(ParseNumber("1e-400"), 0);
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
  for (const char* text : {"", "   ", "abc", "1e", "1e+", "e5", "-", "+", ".", "1 2", "- 5", "5-",
                           "1..2", "12abc", "0x10", "1,2,3", "True"}) {
    EXPECT_FALSE(ParseNumber(text)) << '"' << text << '"';
  }
  EXPECT_FALSE(ParseNumber("1e400"));  // beyond the range of a double
}

TEST(ParseNumber, HexAndOctalFollowVbLiteralRules) {
  EXPECT_EQ(ParseNumber("&H10"), 16);
  EXPECT_EQ(ParseNumber("&HFFFF"), -1);
  EXPECT_EQ(ParseNumber("&HFFFF&"), 65535);
  EXPECT_EQ(ParseNumber("&h10000"), 65536);
  EXPECT_EQ(ParseNumber("&O17"), 15);
  EXPECT_FALSE(ParseNumber("&H"));
  EXPECT_FALSE(ParseNumber("&HG"));
  EXPECT_FALSE(ParseNumber("&O8"));
}

TEST(Val, ReadsTheLeadingNumberWithAPoint) {
  EXPECT_EQ(Val("  12.5abc"), 12.5);
  EXPECT_EQ(Val("1 2 3"), 123);
  EXPECT_EQ(Val("-3,5"), -3);
  EXPECT_EQ(Val("1e3x"), 1000);
  EXPECT_EQ(Val("1e"), 1);
  EXPECT_EQ(Val("2D2"), 200);
  EXPECT_EQ(Val("&HFF"), 255);
  EXPECT_EQ(Val("abc"), 0);
  EXPECT_EQ(Val(""), 0);
  EXPECT_EQ(Val("-"), 0);
  EXPECT_EQ(Val(".5."), 0.5);
  EXPECT_THROW(Val("1e999"), VbError);
}

TEST(ParseDate, DayFirstWithOptionalTime) {
  EXPECT_EQ(ParseDate("02/08/2005"), D(2005, 8, 2));
  EXPECT_EQ(ParseDate("2/8/2005"), D(2005, 8, 2));
  EXPECT_EQ(ParseDate(" 31/12/1999 "), D(1999, 12, 31));
  EXPECT_EQ(ParseDate("02/08/2005 10:57"), D(2005, 8, 2, 10, 57));
  EXPECT_EQ(ParseDate("02/08/2005 10:57:58"), D(2005, 8, 2, 10, 57, 58));
  EXPECT_EQ(ParseDate("02/08/2005  00:00:00"), D(2005, 8, 2));
  EXPECT_EQ(ParseDate("29/02/2008"), D(2008, 2, 29));
  EXPECT_EQ(ParseDate("01/01/1850 06:00"), D(1850, 1, 1, 6));
}

TEST(ParseDate, IsoForms) {
  EXPECT_EQ(ParseDate("2005-08-02"), D(2005, 8, 2));
  EXPECT_EQ(ParseDate("2005-08-02 10:57:58"), D(2005, 8, 2, 10, 57, 58));
  EXPECT_EQ(ParseDate("2005-08-02T10:57:58"), D(2005, 8, 2, 10, 57, 58));
  EXPECT_EQ(ParseDate("2005-08-02T10:57:58.987"), D(2005, 8, 2, 10, 57, 58));
  EXPECT_EQ(ParseDate("2005-08-02 10:57"), D(2005, 8, 2, 10, 57));
}

TEST(ParseDate, TimeAloneIsOnDayZero) {
  EXPECT_EQ(ParseDate("18:00"), Date{0.75});
  EXPECT_EQ(ParseDate("06:00:00"), Date{0.25});
}

TEST(ParseDate, RejectsInvalidDatesAndShapes) {
  for (const char* text : {"",
                           "31/02/2024",
                           "29/02/2023",
                           "2024-13-01",
                           "2024-02-30",
                           "32/01/2005",
                           "00/01/2005",
                           "01/00/2005",
                           "02/08/05",
                           "02/08/2005 24:00",
                           "02/08/2005 10:60",
                           "02/08/2005 10:57:60",
                           "02/08/2005x",
                           "02/08/200512:00",
                           "02/08/2005 T10:00",
                           "02/08/2005T10:00",
                           "2005/08/02",
                           "2005-08",
                           "hoy",
                           "12",
                           "1.5",
                           "10:5",
                           "01/01/0099",
                           "2005-08-02 10:57:58Z"}) {
    EXPECT_FALSE(ParseDate(text)) << '"' << text << '"';
  }
}

}  // namespace
}  // namespace kivmovfrec::vb
