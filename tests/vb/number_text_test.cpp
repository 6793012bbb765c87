#include <gtest/gtest.h>

#include <cmath>

#include "platform/vb/convert.h"

namespace kivmovfrec::vb {
namespace {

TEST(NumberToText, FifteenSignificantDigitsInFixedForm) {
  EXPECT_EQ(NumberToText(std::pow(42.0, 3.5)), "480145.116863642");
  EXPECT_EQ(NumberToText(std::sqrt(2.0)), "1.4142135623731");  // trailing zero dropped
  EXPECT_EQ(NumberToText(919.9999999999999), "920");
  EXPECT_EQ(NumberToText(0.1 + 0.2), "0.3");
  EXPECT_EQ(NumberToText(123456789012345.0), "123456789012345");
  EXPECT_EQ(NumberToText(-2.5), "-2.5");
  EXPECT_EQ(NumberToText(0.05), "0.05");
  EXPECT_EQ(NumberToText(0.00001), "0.00001");
}

TEST(NumberToText, ScientificFormAtTheThresholds) {
  EXPECT_EQ(NumberToText(3.5 / 42), "8.33333333333333E-02");
  EXPECT_EQ(NumberToText(1e15), "1E+15");
  EXPECT_EQ(NumberToText(-1.5e15), "-1.5E+15");
  EXPECT_EQ(NumberToText(1.25e100), "1.25E+100");
  EXPECT_EQ(NumberToText(1.0 / 3 / 1000), "3.33333333333333E-04");
  // Eleven digits after three leading zeros still fit in fifteen.
  EXPECT_EQ(NumberToText(0.00012345678901), "0.00012345678901");
}

TEST(NumberToText, ZeroAndNegativeZero) {
  EXPECT_EQ(NumberToText(0.0), "0");
  EXPECT_EQ(NumberToText(-0.0), "0");
}

TEST(NumberToText, LocaleDecimalSeparatorAndNoGrouping) {
  EXPECT_EQ(NumberToText(1234567.25, Locale::Spanish()), "1234567,25");
  EXPECT_EQ(NumberToText(3.5 / 42, Locale::Spanish()), "8,33333333333333E-02");
  EXPECT_EQ(NumberToText(1234567.25), "1234567.25");
}

TEST(SingleToText, SevenSignificantDigits) {
  EXPECT_EQ(SingleToText(1.0f / 3.0f), "0.3333333");
  EXPECT_EQ(SingleToText(0.1f), "0.1");
  EXPECT_EQ(SingleToText(1e7f), "1E+07");
  EXPECT_EQ(SingleToText(2.5f, Locale::Spanish()), "2,5");
}

}  // namespace
}  // namespace kivmovfrec::vb
