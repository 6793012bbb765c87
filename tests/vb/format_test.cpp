#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "vb_test_util.h"

namespace kivmovfrec::vb {
namespace {

using testing::D;
using testing::ErrorNumber;

// Named styles, and patterns on Tuesday 2 August 2005 at 09:05:03: Spanish names, minutes
// after hours or before seconds, quoted and escaped literals.
TEST(FormatDate, NamedStylesAndPatterns) {
  const Date d = D(2005, 8, 2, 9, 5, 3);
  const std::pair<const char*, const char*> casos[] = {
      {"Short Date", "02/08/2005"},
      {"Long Date", "Martes, 02 de Agosto de 2005"},
      {"long date", "Martes, 02 de Agosto de 2005"},
      {"Long Time", "09:05:03"},
      {"Short Time", "09:05"},
      {"General Date", "02/08/2005 09:05:03"},
      {"yyyy-mm-dd hh:nn:ss", "2005-08-02 09:05:03"},
      {"d/m/yy h:n:s", "2/8/05 9:5:3"},
      {"ddd dd-mmm", "Mar 02-Ago"},
      {"DD/MM/YYYY", "02/08/2005"},
      {"dddd mmmm", "Martes Agosto"},
      {"hh:mm", "09:05"},
      {"mm:ss", "05:03"},
      {"mm", "08"},
      {"\"Día\" d \\de mmmm", "Día 2 de Agosto"},
      {"q w y", "3 3 214"}};
  for (const auto& [patron, texto] : casos) EXPECT_EQ(FormatDate(d, patron), texto) << patron;
  EXPECT_EQ(FormatDate(D(2005, 8, 2), "General Date"), "02/08/2005");
  EXPECT_EQ(FormatDate(D(2005, 3, 9), "Long Date"), "Miércoles, 09 de Marzo de 2005");
  EXPECT_EQ(FormatDate(D(2005, 8, 6), "ddd"), "Sáb");  // abbreviation counts characters
  EXPECT_EQ(FormatDate(D(150, 1, 1), "yyyy"), "0150");
  EXPECT_EQ(FormatDate(D(2005, 1, 1), "ww"), "1");
  EXPECT_EQ(FormatDate(D(2005, 1, 2), "ww"), "2");  // 1 Jan 2005 is a Saturday
}

// Halves away from zero on the decimal the double stands for; grouping and the decimal sign of
// the locale; literals, sections, percent and scaling by thousands.
TEST(FormatNumberPattern, DigitsGroupingLiteralsAndSections) {
  const std::tuple<double, const char*, const char*> casos[] = {
      {12, "000000", "000012"},
      {2100003, "000000", "2100003"},
      {1234.565, "#,##0.00", "1.234,57"},
      {1234567.891, "#,##0.000", "1.234.567,891"},
      {-1234.5, "#,##0.00", "-1.234,50"},
      {0.5, "#.000", ",500"},
      {12.3456, "#.000", "12,346"},
      {2.5, "0", "3"},
      {-2.5, "0", "-3"},
      {1.005, "0.00", "1,01"},
      {0, "#", ""},
      {1.5, "#.##", "1,5"},
      {-0.001, "0.00", "0,00"},
      {123456, "000-000", "123-456"},
      {5, "\"Total: \"0 €", "Total: 5 €"},
      {-5, "0;(0)", "(5)"},
      {0, "0;(0);\"cero\"", "cero"},
      {0.145, "0%", "15%"},
      {1234567, "#,##0,", "1.235"},
      {2.5, "Standard", "2,50"},
      {1.0 / 3, "General Number", "0,333333333333333"}};
  for (const auto& [valor, patron, texto] : casos) {
    EXPECT_EQ(FormatNumberPattern(valor, patron), texto) << valor << " " << patron;
  }
  EXPECT_EQ(FormatNumberPattern(1234.5, "#,##0.00", Locale::Invariant()), "1,234.50");
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
