#include <gtest/gtest.h>

#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "vb_test_util.h"

namespace kivmovfrec::vb {
namespace {

using testing::D;
using testing::ErrorNumber;

TEST(FormatDate, NamedStyles) {
  const Date d = D(2005, 8, 2, 10, 57, 58);
  EXPECT_EQ(FormatDate(d, "Short Date"), "02/08/2005");
  EXPECT_EQ(FormatDate(d, "Long Date"), "Martes, 02 de Agosto de 2005");
  EXPECT_EQ(FormatDate(d, "long date"), "Martes, 02 de Agosto de 2005");
  EXPECT_EQ(FormatDate(D(2005, 3, 9), "Long Date"), "Miércoles, 09 de Marzo de 2005");
  EXPECT_EQ(FormatDate(d, "Long Time"), "10:57:58");
  EXPECT_EQ(FormatDate(d, "Short Time"), "10:57");
  EXPECT_EQ(FormatDate(d, "General Date"), "02/08/2005 10:57:58");
  EXPECT_EQ(FormatDate(D(2005, 8, 2), "General Date"), "02/08/2005");
}

TEST(FormatDate, CustomPatterns) {
  const Date d = D(2005, 8, 2, 9, 5, 3);
  EXPECT_EQ(FormatDate(d, "dddd"), "Martes");
  EXPECT_EQ(FormatDate(d, "mmmm"), "Agosto");
  EXPECT_EQ(FormatDate(d, "yyyy"), "2005");
  EXPECT_EQ(FormatDate(d, "mm/yyyy"), "08/2005");
  EXPECT_EQ(FormatDate(d, "hh:nn"), "09:05");
  EXPECT_EQ(FormatDate(d, "hh:nn:ss"), "09:05:03");
  EXPECT_EQ(FormatDate(d, "dd/mm/yyyy"), "02/08/2005");
  EXPECT_EQ(FormatDate(d, "yyyy-mm-dd hh:nn:ss"), "2005-08-02 09:05:03");
  EXPECT_EQ(FormatDate(d, "d/m/yy h:n:s"), "2/8/05 9:5:3");
  EXPECT_EQ(FormatDate(d, "ddd dd-mmm"), "Mar 02-Ago");
  EXPECT_EQ(FormatDate(D(2005, 8, 6), "ddd"), "Sáb");  // abbreviation counts characters
  EXPECT_EQ(FormatDate(d, "DD/MM/YYYY"), "02/08/2005");
  EXPECT_EQ(FormatDate(D(150, 1, 1), "yyyy"), "0150");
}

TEST(FormatDate, MinutesAfterHoursOrBeforeSeconds) {
  const Date d = D(2005, 8, 2, 9, 5, 3);
  EXPECT_EQ(FormatDate(d, "hh:mm"), "09:05");
  EXPECT_EQ(FormatDate(d, "mm:ss"), "05:03");
  EXPECT_EQ(FormatDate(d, "mm"), "08");
}

TEST(FormatDate, LiteralsQuotesEscapesAndOtherTokens) {
  const Date d = D(2005, 8, 2);
  EXPECT_EQ(FormatDate(d, "\"Día\" d \\de mmmm"), "Día 2 de Agosto");
  EXPECT_EQ(FormatDate(d, "q"), "3");
  EXPECT_EQ(FormatDate(d, "w"), "3");
  EXPECT_EQ(FormatDate(d, "y"), "214");
  EXPECT_EQ(FormatDate(D(2005, 1, 1), "ww"), "1");
  EXPECT_EQ(FormatDate(D(2005, 1, 2), "ww"), "2");  // 1 Jan 2005 is a Saturday
}

TEST(FormatNumberPattern, ZerosHashesAndGroupingInTheLocale) {
  EXPECT_EQ(FormatNumberPattern(12, "000000"), "000012");
  EXPECT_EQ(FormatNumberPattern(2100003, "000000"), "2100003");
  EXPECT_EQ(FormatNumberPattern(1234.565, "#,##0.00"), "1.234,57");
  EXPECT_EQ(FormatNumberPattern(1234567.891, "#,##0.000"), "1.234.567,891");
  EXPECT_EQ(FormatNumberPattern(0.5, "#,##0.00"), "0,50");
  EXPECT_EQ(FormatNumberPattern(-1234.5, "#,##0.00"), "-1.234,50");
  EXPECT_EQ(FormatNumberPattern(0.5, "#.000"), ",500");
  EXPECT_EQ(FormatNumberPattern(12.3456, "#.000"), "12,346");
  EXPECT_EQ(FormatNumberPattern(2.5, "0.00"), "2,50");
  EXPECT_EQ(FormatNumberPattern(2.5, "0"), "3");  // halves away from zero
  EXPECT_EQ(FormatNumberPattern(-2.5, "0"), "-3");
  EXPECT_EQ(FormatNumberPattern(1.005, "0.00"), "1,01");
  EXPECT_EQ(FormatNumberPattern(1234.5, "#,##0.00", Locale::Invariant()), "1,234.50");
  EXPECT_EQ(FormatNumberPattern(0, "#"), "");
  EXPECT_EQ(FormatNumberPattern(1.5, "#.##"), "1,5");
  EXPECT_EQ(FormatNumberPattern(-0.001, "0.00"), "0,00");
}

TEST(FormatNumberPattern, LiteralsSectionsPercentAndScaling) {
  EXPECT_EQ(FormatNumberPattern(123456, "000-000"), "123-456");
  EXPECT_EQ(FormatNumberPattern(5, "\"Total: \"0 €"), "Total: 5 €");
  EXPECT_EQ(FormatNumberPattern(-5, "0;(0)"), "(5)");
  EXPECT_EQ(FormatNumberPattern(0, "0;(0);\"cero\""), "cero");
  EXPECT_EQ(FormatNumberPattern(0.145, "0%"), "15%");
  EXPECT_EQ(FormatNumberPattern(1234567, "#,##0,"), "1.235");
  EXPECT_EQ(FormatNumberPattern(2.5, "Standard"), "2,50");
  EXPECT_EQ(FormatNumberPattern(1.0 / 3, "General Number"), "0,333333333333333");
}

TEST(FormatNumber, GroupingDigitsAndHalvesAwayFromZero) {
  EXPECT_EQ(FormatNumber(2.5793, 2), "2,58");
  EXPECT_EQ(FormatNumber(1234567.125, 2), "1.234.567,13");
  EXPECT_EQ(FormatNumber(-0.5, 0), "-1");
  EXPECT_EQ(FormatNumber(0.004, 2), "0,00");
  EXPECT_EQ(FormatNumber(12, 3, Locale::Invariant()), "12.000");
  EXPECT_EQ(FormatNumber(1.5, -1), "1,50");
  EXPECT_EQ(ErrorNumber([] { FormatNumber(1, -2); }), 5);
}

TEST(Format, ChoosesDateOrNumberRulesFromThePattern) {
  EXPECT_EQ(Format(Date{38566}, "Long Date"), "Martes, 02 de Agosto de 2005");
  EXPECT_EQ(Format("02/08/2005", "yyyy-mm-dd"), "2005-08-02");
  EXPECT_EQ(Format(38566.0, "dd/mm/yyyy"), "02/08/2005");
  EXPECT_EQ(Format(int32_t{100012}, "000000"), "100012");
  EXPECT_EQ(Format("2,5", "0.00"), "2,50");
  EXPECT_EQ(Format("abc", "0.00"), "abc");
  EXPECT_EQ(Format(Variant::Null(), "0.00"), "");
  EXPECT_EQ(Format(2.5, ""), "2,5");
  EXPECT_EQ(Format(Currency::FromUnits(12345), "0.00"), "1,23");
  EXPECT_EQ(ErrorNumber([] { Format(1e10, "dd/mm/yyyy"); }), 6);
}

}  // namespace
}  // namespace kivmovfrec::vb
