#include <gtest/gtest.h>

#include "platform/vb/convert.h"
#include "platform/vb/decimal.h"
#include "vb_test_util.h"

namespace kivmovfrec::vb {
namespace {

using testing::ErrorNumber;

TEST(RoundHalfEven, RoundsTheDecimalTheDoubleStandsFor) {
  EXPECT_DOUBLE_EQ(RoundHalfEven(0.12345, 4), 0.1234);
  EXPECT_DOUBLE_EQ(RoundHalfEven(0.12355, 4), 0.1236);
  EXPECT_DOUBLE_EQ(RoundHalfEven(1.765, 2), 1.76);
  EXPECT_DOUBLE_EQ(RoundHalfEven(1.775, 2), 1.78);
  EXPECT_DOUBLE_EQ(RoundHalfEven(2.675, 2), 2.68);
}

TEST(RoundHalfEven, WholeNumbersAndSigns) {
  EXPECT_EQ(RoundHalfEven(2.5), 2);
  EXPECT_EQ(RoundHalfEven(3.5), 4);
  EXPECT_EQ(RoundHalfEven(-3.5), -4);
  EXPECT_EQ(RoundHalfEven(-2.5), -2);
  EXPECT_EQ(RoundHalfEven(2.5000001), 3);
  EXPECT_EQ(RoundHalfEven(0.4), 0);
  EXPECT_EQ(RoundHalfEven(99.5), 100);
  EXPECT_EQ(RoundHalfEven(1e20, 2), 1e20);
  EXPECT_DOUBLE_EQ(RoundHalfEven(0.0004, 3), 0.0);
}

TEST(RoundHalfEven, NegativeDigitsAreRefused) {
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

TEST(Currency, FromDoubleUsesTheSameHalfToEvenRule) {
  EXPECT_EQ(Currency::FromDouble(1.23455).units, 12346);
  EXPECT_EQ(Currency::FromDouble(0.00005).units, 0);  // an exact half of a unit goes to even
  EXPECT_EQ(Currency::FromDouble(0.00015).units, 2);
  EXPECT_EQ(ErrorNumber([] { Currency::FromDouble(1e300); }), 6);
  EXPECT_EQ(Currency::FromDouble(1.23465).units, 12346);
  EXPECT_EQ(Currency::FromDouble(-0.00015).units, -2);
  EXPECT_EQ(Currency::FromDouble(922337203685477.0).units, 9223372036854770000);
}

}  // namespace
}  // namespace kivmovfrec::vb
