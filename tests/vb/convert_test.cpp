#include <gtest/gtest.h>

#include <memory>

#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "vb_test_util.h"

namespace kivmovfrec::vb {
namespace {

using testing::ErrorNumber;

// An object whose default member returns a fixed value.
class Holder : public Object {
 public:
  explicit Holder(Variant v) : value_(std::move(v)) {}
  std::string TypeName() const override { return "Holder"; }
  Variant Invoke(std::string_view name, std::span<const Variant>) override {
    if (!name.empty()) throw VbError(438);
    return value_;
  }

 private:
  Variant value_;
};

TEST(CInt, BankersRounding) {
  EXPECT_EQ(CInt(0.5), 0);
  EXPECT_EQ(CInt(1.5), 2);
  EXPECT_EQ(CInt(2.5), 2);
  EXPECT_EQ(CInt(-2.5), -2);
  EXPECT_EQ(CInt(-1.5), -2);
  EXPECT_EQ(CInt(2.5000001), 3);
  EXPECT_EQ(CInt(32767.4), 32767);
  EXPECT_EQ(CInt(-32768.5), -32768);
  EXPECT_EQ(CInt("2,5"), 2);
  EXPECT_EQ(CInt("3.5"), 4);
  EXPECT_EQ(CInt(Currency::FromUnits(25000)), 2);
  EXPECT_EQ(CInt(Currency::FromUnits(-35000)), -4);
  EXPECT_EQ(CInt(Currency::FromUnits(15001)), 2);
  EXPECT_EQ(CInt(true), -1);
  EXPECT_EQ(CInt(Variant()), 0);
}

TEST(CInt, OverflowMismatchAndNull) {
  EXPECT_EQ(ErrorNumber([] { CInt(32767.5); }), 6);
  EXPECT_EQ(ErrorNumber([] { CInt(-32768.6); }), 6);
  EXPECT_EQ(ErrorNumber([] { CInt(1e300); }), 6);
  EXPECT_EQ(ErrorNumber([] { CInt(""); }), 13);
  EXPECT_EQ(ErrorNumber([] { CInt("TRUE"); }), 13);
  EXPECT_EQ(ErrorNumber([] { CInt("1e400"); }), 6);
  EXPECT_EQ(ErrorNumber([] { CInt(Variant::Null()); }), 94);
}

TEST(CLngAndCByte, RangesAndRounding) {
  EXPECT_EQ(CLng(2147483647.4), 2147483647);
  EXPECT_EQ(CLng(-2147483648.5), -2147483648);
  EXPECT_EQ(CLng(" 40000 "), 40000);
  EXPECT_EQ(ErrorNumber([] { CLng(2147483647.5); }), 6);
  EXPECT_EQ(CByte(254.5), 254);
  EXPECT_EQ(CByte(255.4), 255);
  EXPECT_EQ(CByte(true), 255);
  EXPECT_EQ(CByte(-0.5), 0);
  EXPECT_EQ(ErrorNumber([] { CByte("-1"); }), 6);
  EXPECT_EQ(ErrorNumber([] { CByte(255.5); }), 6);
}

TEST(CDbl, EverySubtype) {
  EXPECT_EQ(CDbl(Variant()), 0);
  EXPECT_EQ(CDbl(true), -1);
  EXPECT_EQ(CDbl(uint8_t{7}), 7);
  EXPECT_EQ(CDbl(int16_t{-3}), -3);
  EXPECT_EQ(CDbl(int32_t{70000}), 70000);
  EXPECT_EQ(CDbl(2.5f), 2.5);
  EXPECT_EQ(CDbl(Currency::FromUnits(12345)), 1.2345);
  EXPECT_EQ(CDbl(Date{38566.5}), 38566.5);
  EXPECT_EQ(CDbl("-3,5"), -3.5);
  EXPECT_EQ(CDbl("1.5", Locale::Invariant()), 1.5);
  EXPECT_EQ(CDbl(Variant(std::make_shared<Holder>(Variant("2,5")))), 2.5);
  EXPECT_EQ(ErrorNumber([] { CDbl("02/08/2005"); }), 13);
  EXPECT_EQ(ErrorNumber([] { CDbl(Variant::Null()); }), 94);
  EXPECT_EQ(ErrorNumber([] { CDbl(Variant(std::shared_ptr<Object>())); }), 13);
  EXPECT_EQ(ErrorNumber([] { CDbl("1e400"); }), 6);
}

TEST(CSng, RoundsToSinglePrecisionAndChecksRange) {
  EXPECT_EQ(CSng(0.1), 0.1f);
  EXPECT_EQ(ErrorNumber([] { CSng(1e39); }), 6);
}

TEST(CCur, FourDecimalsHalfToEven) {
  EXPECT_EQ(CCur(1.00005).units, 10000);
  EXPECT_EQ(CCur(1.00015).units, 10002);
  EXPECT_EQ(CCur("2,5").units, 25000);
  EXPECT_EQ(CCur(int32_t{-3}).units, -30000);
  EXPECT_EQ(CCur(true).units, -10000);
  EXPECT_EQ(ErrorNumber([] { CCur(1e16); }), 6);
  EXPECT_EQ(ErrorNumber([] { CCur("x"); }), 13);
}

TEST(CBool, NumbersAndWords) {
  EXPECT_TRUE(CBool(int16_t{2}));
  EXPECT_FALSE(CBool(0.0));
  EXPECT_FALSE(CBool(Variant()));
  EXPECT_TRUE(CBool("true"));
  EXPECT_TRUE(CBool("Verdadero"));
  EXPECT_FALSE(CBool("FALSO"));
  EXPECT_TRUE(CBool("0,5"));
  EXPECT_FALSE(CBool("0"));
  EXPECT_TRUE(CBool(Currency::FromUnits(1)));
  EXPECT_EQ(ErrorNumber([] { CBool("sí"); }), 13);
  EXPECT_EQ(ErrorNumber([] { CBool(Variant::Null()); }), 94);
}

TEST(CDate, TextNumbersAndRange) {
  EXPECT_EQ(CDate("02/08/2005"), Date{38566});
  EXPECT_EQ(CDate(38566.5), Date{38566.5});
  EXPECT_EQ(CDate(int32_t{2}), Date{2});
  EXPECT_EQ(CDate(Date{1.5}), Date{1.5});
  EXPECT_EQ(ErrorNumber([] { CDate("31/02/2024"); }), 13);
  EXPECT_EQ(ErrorNumber([] { CDate("38566"); }), 13);
  EXPECT_EQ(ErrorNumber([] { CDate(3e6); }), 6);
  EXPECT_EQ(ErrorNumber([] { CDate(Variant::Null()); }), 94);
}

TEST(CStr, EverySubtypeInTheLocale) {
  EXPECT_EQ(CStr(Variant()), "");
  EXPECT_EQ(CStr(true), "Verdadero");
  EXPECT_EQ(CStr(false, Locale::Invariant()), "False");
  EXPECT_EQ(CStr(int16_t{-12}), "-12");
  EXPECT_EQ(CStr(uint8_t{200}), "200");
  EXPECT_EQ(CStr(int32_t{123456}), "123456");
  EXPECT_EQ(CStr(3.5 / 42), "8,33333333333333E-02");
  EXPECT_EQ(CStr(2.5, Locale::Invariant()), "2.5");
  EXPECT_EQ(CStr(0.1f), "0,1");
  EXPECT_EQ(CStr(Currency::FromUnits(15000)), "1,5");
  EXPECT_EQ(CStr(Currency::FromUnits(-5)), "-0,0005");
  EXPECT_EQ(CStr(Currency::FromUnits(30000)), "3");
  EXPECT_EQ(CStr(Date{38566}), "02/08/2005");
  EXPECT_EQ(CStr(Date{38566.75}), "02/08/2005 18:00:00");
  EXPECT_EQ(CStr(Date{0.75}), "18:00:00");
  EXPECT_EQ(CStr("texto"), "texto");
  EXPECT_EQ(ErrorNumber([] { CStr(Variant::Null()); }), 94);
}

TEST(IsNumeric, NumbersEmptyBooleansAndNumericText) {
  EXPECT_TRUE(IsNumeric(Variant()));
  EXPECT_TRUE(IsNumeric(true));
  EXPECT_TRUE(IsNumeric(1.5));
  EXPECT_TRUE(IsNumeric(Currency::FromUnits(1)));
  EXPECT_TRUE(IsNumeric(" -3,5 "));
  EXPECT_TRUE(IsNumeric("1E5"));
  EXPECT_FALSE(IsNumeric(""));
  EXPECT_FALSE(IsNumeric("1e"));
  EXPECT_FALSE(IsNumeric("abc"));
  EXPECT_FALSE(IsNumeric(Variant::Null()));
  EXPECT_FALSE(IsNumeric(Date{1}));
  EXPECT_TRUE(IsNumeric(Variant(std::make_shared<Holder>(Variant(int16_t{1})))));
  EXPECT_FALSE(IsNumeric(Variant(std::shared_ptr<Object>())));
  // The subtype alone: Boolean counts as a number, a date does not.
  EXPECT_TRUE(Variant(true).IsNumericType());
  EXPECT_FALSE(Variant(Date{1.0}).IsNumericType());
}

TEST(IsDate, DatesAndDateText) {
  EXPECT_TRUE(IsDate(Date{1}));
  EXPECT_TRUE(IsDate("02/08/2005"));
  EXPECT_TRUE(IsDate("2005-08-02 10:00:00"));
  EXPECT_FALSE(IsDate("31/02/2024"));
  EXPECT_FALSE(IsDate(38566.0));
  EXPECT_FALSE(IsDate(Variant::Null()));
  EXPECT_FALSE(IsDate(Variant()));
}

}  // namespace
}  // namespace kivmovfrec::vb
