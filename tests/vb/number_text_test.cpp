#include <gtest/gtest.h>

#include <cmath>

#include "platform/vb/convert.h"

namespace kivmovfrec::vb {
namespace {

// Fifteen significant digits, trailing zeros dropped; scientific form from 1E+15 up, and below 1
// when the fixed form would need more than fifteen digits after the leading zeros; never a
// grouping separator.
TEST(NumberToText, FifteenSignificantDigitsAndScientificThresholds) {
  const std::pair<double, const char*> casos[] = {{std::pow(42.0, 3.5), "480145.116863642"},
                                                  {std::sqrt(2.0), "1.4142135623731"},
                                                  {919.9999999999999, "920"},
                                                  {0.1 + 0.2, "0.3"},
                                                  {123456789012345.0, "123456789012345"},
                                                  {-2.5, "-2.5"},
                                                  {0.00001, "0.00001"},
                                                  {0.0, "0"},
                                                  {-0.0, "0"},
                                                  {1234567.25, "1234567.25"},
                                                  {3.5 / 42, "8.33333333333333E-02"},
                                                  {1e15, "1E+15"},
                                                  {-1.5e15, "-1.5E+15"},
                                                  {1.25e100, "1.25E+100"},
                                                  {1.0 / 3 / 1000, "3.33333333333333E-04"},
                                                  {0.00012345678901, "0.00012345678901"}};
  for (const auto& [valor, texto] : casos) EXPECT_EQ(NumberToText(valor), texto) << texto;
  EXPECT_EQ(NumberToText(1234567.25, Locale::Spanish()), "1234567,25");
  EXPECT_EQ(NumberToText(3.5 / 42, Locale::Spanish()), "8,33333333333333E-02");
}

TEST(SingleToText, SevenSignificantDigits) {
  EXPECT_EQ(SingleToText(1.0f / 3.0f), "0.3333333");
  EXPECT_EQ(SingleToText(0.1f), "0.1");
  EXPECT_EQ(SingleToText(1e7f), "1E+07");
  EXPECT_EQ(SingleToText(2.5f, Locale::Spanish()), "2,5");
}

}  // namespace
}  // namespace kivmovfrec::vb
