#include "kivmovfrec/variant.h"

#include <gtest/gtest.h>

namespace kivmovfrec {
namespace {

TEST(Variant, SubtypesReportVbVarTypeCodes) {
  EXPECT_EQ(Variant().type(), VarType::Empty);
  EXPECT_EQ(Variant::Null().type(), VarType::Null);
  EXPECT_EQ(Variant(int16_t{3}).type(), VarType::Integer);
  EXPECT_EQ(Variant(int32_t{3}).type(), VarType::Long);
  EXPECT_EQ(Variant(2.5).type(), VarType::Double);
  EXPECT_EQ(Variant("x").type(), VarType::String);
  EXPECT_EQ(Variant(true).type(), VarType::Boolean);
  EXPECT_EQ(Variant(Date{1.0}).type(), VarType::Date);
  EXPECT_TRUE(Variant(true).IsNumericType());
  EXPECT_FALSE(Variant(Date{1.0}).IsNumericType());
}

TEST(Currency, FromDoubleRoundsHalfToEvenAtFourDecimals) {
  EXPECT_EQ(Currency::FromDouble(1.23455).units, 12346);  // binary value lies above the half
  EXPECT_EQ(Currency::FromDouble(0.00005).units, 0);      // exact half of a unit rounds to even
  EXPECT_EQ(Currency::FromDouble(0.00015).units, 2);
  EXPECT_EQ(Currency::FromDouble(-2.5).units, -25000);
  EXPECT_THROW(Currency::FromDouble(1e300), VbError);
}

}  // namespace
}  // namespace kivmovfrec
