#include <gtest/gtest.h>

#include <tuple>

#include "platform/vb/convert.h"
#include "platform/vb/decimal.h"
#include "vb_test_util.h"

namespace kivmovfrec::vb {
namespace {

using testing::ErrorNumber;

// Halves go to even on the decimal the double stands for: 2.675 is written 2.67499999... but
// stands for 2.675, which rounds to 2.68.
TEST(RoundHalfEven, RoundsTheDecimalTheDoubleStandsFor) {
  const std::tuple<double, int, double> casos[] = {
      {0.12345, 4, 0.1234}, {0.12355, 4, 0.1236}, {1.765, 2, 1.76}, {1.775, 2, 1.78},
      {2.675, 2, 2.68},     {2.5, 0, 2},          {3.5, 0, 4},      {-3.5, 0, -4},
      {-2.5, 0, -2},        {2.5000001, 0, 3},    {0.4, 0, 0},      {99.5, 0, 100},
      {1e20, 2, 1e20},      {0.0004, 3, 0}};
  for (const auto& [valor, decimales, redondeado] : casos) {
    EXPECT_DOUBLE_EQ(RoundHalfEven(valor, decimales), redondeado) << valor << " " << decimales;
  }
  EXPECT_EQ(ErrorNumber([] { RoundHalfEven(1.5, -1); }), 5);
}

TEST(RoundDecimal, HalfAwayFromZeroAndDigitSplit) {
  const RoundedDecimal r = RoundDecimal(-2.5793, 2, HalfRule::AwayFromZero);
  EXPECT_TRUE(r.negative);
  EXPECT_EQ(r.digits, "258");
  EXPECT_EQ(r.IntegerDigits(), "2");
  EXPECT_EQ(r.FractionDigits(), "58");
  EXPECT_EQ(RoundDecimal(0.125, 2, HalfRule::AwayFromZero).digits, "13");
  EXPECT_EQ(RoundDecimal(0.125, 2, HalfRule::ToEven).digits, "12");
  const RoundedDecimal small = RoundDecimal(0.05, 3, HalfRule::ToEven);
  EXPECT_EQ(small.IntegerDigits(), "0");
  EXPECT_EQ(small.FractionDigits(), "050");
  // A value that rounds to zero loses its sign.
  EXPECT_FALSE(RoundDecimal(-0.001, 2, HalfRule::AwayFromZero).negative);
  // Carry through nines.
  EXPECT_EQ(RoundDecimal(9.995, 2, HalfRule::AwayFromZero).digits, "1000");
  // The shift scales by powers of ten on the decimal digits: 0.145 % is exactly 14.5.
  EXPECT_EQ(RoundDecimal(0.145, 0, HalfRule::AwayFromZero, 2).digits, "15");
  EXPECT_EQ(ToScaledInteger(RoundDecimal(1e300, 0, HalfRule::ToEven)), std::nullopt);
}

// Four decimals; an exact half of the last unit goes to even.
TEST(Currency, FromDoubleUsesTheSameHalfToEvenRule) {
  const std::pair<double, int64_t> casos[] = {
      {1.23455, 12346}, {1.23465, 12346}, {0.00005, 0},
      {0.00015, 2},     {-0.00015, -2},   {922337203685477.0, 9223372036854770000}};
  for (const auto& [valor, unidades] : casos) {
    EXPECT_EQ(Currency::FromDouble(valor).units, unidades) << valor;
  }
  EXPECT_EQ(ErrorNumber([] { Currency::FromDouble(1e300); }), 6);
}

}  // namespace
}  // namespace kivmovfrec::vb
