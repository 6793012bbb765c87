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

Variant Objeto(Variant v) {
  return Variant(std::make_shared<Holder>(std::move(v)));
}
Currency Cur(int64_t units) {
  return Currency::FromUnits(units);
}
const Variant kNull = Variant::Null();
const Variant kNothing = Variant(std::shared_ptr<Object>());

// Integer conversions round halves to even and read text in the locale. Out of range is error
// 6, text that is not a number 13, Null 94.
TEST(CIntCLngCByte, HalvesToEvenRangesAndErrors) {
  const std::pair<Variant, int16_t> cint[] = {
      {0.5, 0},          {1.5, 2},           {2.5, 2},   {-2.5, -2},    {2.5000001, 3},
      {32767.4, 32767},  {-32768.5, -32768}, {"2,5", 2}, {"3.5", 4},    {Cur(25000), 2},
      {Cur(-35000), -4}, {Cur(15001), 2},    {true, -1}, {Variant(), 0}};
  for (const auto& [v, r] : cint) EXPECT_EQ(CInt(v), r) << DebugString(v);
  const std::pair<Variant, int> cint_error[] = {{32767.5, 6}, {-32768.6, 6}, {1e300, 6}, {"", 13},
                                                {"TRUE", 13}, {"1e400", 6},  {kNull, 94}};
  for (const auto& [valor, n] : cint_error) {
    const Variant& v = valor;  // clang 14 cannot capture a structured binding
    EXPECT_EQ(ErrorNumber([&] { CInt(v); }), n) << DebugString(v);
  }

  EXPECT_EQ(CLng(2147483647.4), 2147483647);
  EXPECT_EQ(CLng(-2147483648.5), -2147483648);
  EXPECT_EQ(CLng(" 40000 "), 40000);
  EXPECT_EQ(ErrorNumber([] { CLng(2147483647.5); }), 6);
  const std::pair<Variant, int> cbyte[] = {{254.5, 254}, {255.4, 255}, {true, 255}, {-0.5, 0}};
  for (const auto& [v, r] : cbyte) EXPECT_EQ(CByte(v), r) << DebugString(v);
  EXPECT_EQ(ErrorNumber([] { CByte("-1"); }), 6);
  EXPECT_EQ(ErrorNumber([] { CByte(255.5); }), 6);
}

TEST(CDblCSngCCur, EverySubtypeAndCurrencyHalvesToEven) {
  const std::pair<Variant, double> cdbl[] = {
      {Variant(), 0},          {true, -1},          {uint8_t{7}, 7},      {int16_t{-3}, -3},
      {int32_t{70000}, 70000}, {2.5f, 2.5},         {Cur(12345), 1.2345}, {Date{38566.5}, 38566.5},
      {"-3,5", -3.5},          {Objeto("2,5"), 2.5}};
  for (const auto& [v, r] : cdbl) EXPECT_EQ(CDbl(v), r) << DebugString(v);
  EXPECT_EQ(CDbl("1.5", Locale::Invariant()), 1.5);
  const std::pair<Variant, int> cdbl_error[] = {
      {"02/08/2005", 13}, {kNull, 94}, {kNothing, 13}, {"1e400", 6}};
  for (const auto& [valor, n] : cdbl_error) {
    const Variant& v = valor;
    EXPECT_EQ(ErrorNumber([&] { CDbl(v); }), n) << DebugString(v);
  }
  EXPECT_EQ(CSng(0.1), 0.1f);
  EXPECT_EQ(ErrorNumber([] { CSng(1e39); }), 6);

  const std::pair<Variant, int64_t> ccur[] = {
      {1.00005, 10000}, {1.00015, 10002}, {"2,5", 25000}, {int32_t{-3}, -30000}, {true, -10000}};
  for (const auto& [v, r] : ccur) EXPECT_EQ(CCur(v).units, r) << DebugString(v);
  EXPECT_EQ(ErrorNumber([] { CCur(1e16); }), 6);
  EXPECT_EQ(ErrorNumber([] { CCur("x"); }), 13);
}

TEST(CBoolCDate, NumbersWordsAndDates) {
  const std::pair<Variant, bool> cbool[] = {
      {int16_t{2}, true}, {0.0, false},  {Variant(), false}, {"true", true}, {"Verdadero", true},
      {"FALSO", false},   {"0,5", true}, {"0", false},       {Cur(1), true}};
  for (const auto& [v, r] : cbool) EXPECT_EQ(CBool(v), r) << DebugString(v);
  EXPECT_EQ(ErrorNumber([] { CBool("sí"); }), 13);
  EXPECT_EQ(ErrorNumber([] { CBool(kNull); }), 94);

  EXPECT_EQ(CDate("02/08/2005"), Date{38566});
  EXPECT_EQ(CDate(38566.5), Date{38566.5});
  EXPECT_EQ(CDate(int32_t{2}), Date{2});
  const std::pair<Variant, int> cdate_error[] = {
      {"31/02/2024", 13}, {"38566", 13}, {3e6, 6}, {kNull, 94}};
  for (const auto& [valor, n] : cdate_error) {
    const Variant& v = valor;
    EXPECT_EQ(ErrorNumber([&] { CDate(v); }), n) << DebugString(v);
  }
}

TEST(CStr, EverySubtypeInTheLocale) {
  const std::pair<Variant, std::string> cstr[] = {
      {Variant(), ""},         {true, "Verdadero"},         {int16_t{-12}, "-12"},
      {uint8_t{200}, "200"},   {int32_t{123456}, "123456"}, {3.5 / 42, "8,33333333333333E-02"},
      {0.1f, "0,1"},           {Cur(15000), "1,5"},         {Cur(-5), "-0,0005"},
      {Cur(30000), "3"},       {Date{38566}, "02/08/2005"}, {Date{38566.75}, "02/08/2005 18:00:00"},
      {Date{0.75}, "18:00:00"}};
  for (const auto& [v, r] : cstr) EXPECT_EQ(CStr(v), r) << DebugString(v);
  EXPECT_EQ(CStr(false, Locale::Invariant()), "False");
  EXPECT_EQ(CStr(2.5, Locale::Invariant()), "2.5");
  EXPECT_EQ(ErrorNumber([] { CStr(kNull); }), 94);
}

// Boolean counts as a number, a date does not; text must read whole.
TEST(IsNumericIsDate, SubtypesAndText) {
  const std::pair<Variant, bool> numeric[] = {
      {Variant(), true}, {true, true},   {1.5, true},      {Cur(1), true},
      {" -3,5 ", true},  {"1E5", true},  {"", false},      {"1e", false},
      {"abc", false},    {kNull, false}, {Date{1}, false}, {Objeto(int16_t{1}), true},
      {kNothing, false}};
  for (const auto& [v, r] : numeric) EXPECT_EQ(IsNumeric(v), r) << DebugString(v);
  EXPECT_TRUE(Variant(true).IsNumericType());
  EXPECT_FALSE(Variant(Date{1.0}).IsNumericType());
  const std::pair<Variant, bool> date[] = {
      {Date{1}, true},       {"02/08/2005", true}, {"2005-08-02 10:00:00", true},
      {"31/02/2024", false}, {38566.0, false},     {kNull, false},
      {Variant(), false}};
  for (const auto& [v, r] : date) EXPECT_EQ(IsDate(v), r) << DebugString(v);
}

}  // namespace
}  // namespace kivmovfrec::vb
