// Operator semantics: subtypes, widening, coercions, Null propagation and run-time errors.
#include "script_test_util.h"

namespace kivmovfrec::script::testing {
namespace {

Variant Cur(int64_t units) {
  return Variant(Currency::FromUnits(units));
}

TEST(ScriptOperators, WholeNumbersWidenOnOverflow) {
  ExpectValues({
      {"32767 + 1", L(32768)},
      {"CInt(-32768) - 1", L(-32769)},
      {"200 * 200", L(40000)},
      {"2147483647 + 1", D(2147483648.0)},
      {"CByte(2) + CByte(3)", Variant(uint8_t{5})},
      {"CByte(200) + CByte(100)", I(300)},
      {"CByte(2) - CByte(3)", I(-1)},
      {"-CInt(-32768)", L(32768)},
  });
}

TEST(ScriptOperators, MixedSubtypes) {
  ExpectValues({
      {"1.5 + 1", D(2.5)},
      {"\"1\" + 2", D(3)},
      {"\"1,5\" * 2", D(3)},
      {"\"1\" + \"2\"", S("12")},
      {"Empty + 1", I(1)},
      {"Empty + \"x\"", S("x")},
      {"\"x\" + Empty", S("x")},
      {"True + True", I(-2)},
      {"CSng(1.5) + 1", Variant(2.5f)},
      {"CSng(1.5) + 100000", D(100001.5)},
      {"CCur(1.5) + 1", Cur(25000)},
      {"CCur(0.1) * 3", Cur(3000)},
      {"CCur(1) + 0.5", D(1.5)},
      {"CCur(1.00005) * 1", Cur(10000)},
      {"#1/1/2000# + 1", DateOf(36527)},
      {"#1/2/2000# - #1/1/2000#", D(1)},
      {"-Empty", I(0)},
      {"-True", I(1)},
      {"-\"2,5\"", D(-2.5)},
  });
}

TEST(ScriptOperators, DivisionPowerAndIntegerDivision) {
  ExpectValues({
      {"1/2", D(0.5)},
      {"4.6\\1.5", L(2)},
      {"11.6 Mod 5.5", L(0)},
      {"42\\3.5", L(10)},
      {"42 Mod 3.5", L(2)},
      {"-7 Mod 3", I(-1)},
      {"7 Mod -3", I(1)},
      {"-7 \\ 2", I(-3)},
      {"CByte(7) \\ CByte(2)", Variant(uint8_t{3})},
      {"CInt(-32768) \\ -1", L(32768)},
      {"0^0", D(1)},
      {"(-8)^3", D(-512)},
      {"4^0.5", D(2)},
  });
}

TEST(ScriptOperators, NullPropagationAndConcatenation) {
  ExpectValues({
      {"Null + 1", Variant::Null()},
      {"1 - Null", Variant::Null()},
      {"Null / 2", Variant::Null()},
      {"Null \\ 2", Variant::Null()},
      {"Null ^ 2", Variant::Null()},
      {"-Null", Variant::Null()},
      {"Not Null", Variant::Null()},
      {"\"a\" & 1.5", S("a1,5")},
      {"Null & \"a\"", S("a")},
      {"\"a\" & Null", S("a")},
      {"Null & Null", Variant::Null()},
      {"1 & 2", S("12")},
      {"True & \"\"", S("Verdadero")},
      {"False & Empty", S("Falso")},
  });
}

TEST(ScriptOperators, Comparisons) {
  ExpectValues({
      {"Null = Null", Variant::Null()},
      {"1 < Null", Variant::Null()},
      {"1 < \"a\"", B(true)},
      {"\"10\" > 9", B(true)},
      {"9 = \"9\"", B(false)},
      {"\"a\" = \"A\"", B(false)},
      {"\"B\" < \"a\"", B(true)},
      {"Empty = 0", B(true)},
      {"Empty = \"\"", B(true)},
      {"Empty < \"a\"", B(true)},
      {"True = -1", B(true)},
      {"1 <> 1.0", B(false)},
      {"1 => 1", B(true)},
      {"1 =< 0", B(false)},
      {"1 >< 2", B(true)},
      {"CCur(1.5) = 1.5", B(true)},
      {"Nothing Is Nothing", B(true)},
  });
}

TEST(ScriptOperators, LogicalAndBitwise) {
  ExpectValues({
      {"Null And False", B(false)},
      {"Null And True", Variant::Null()},
      {"Null And 0", I(0)},
      {"Null Or True", B(true)},
      {"Null Or False", Variant::Null()},
      {"Null Xor True", Variant::Null()},
      {"Null Imp True", B(true)},
      {"Null Imp False", Variant::Null()},
      {"False Imp Null", B(true)},
      {"True Imp Null", Variant::Null()},
      {"5 And 3", I(1)},
      {"5 Or 3", I(7)},
      {"5 Xor 3", I(6)},
      {"5 Eqv 3", I(-7)},
      {"0 Imp 0", I(-1)},
      {"True And 3", I(3)},
      {"Not True", B(false)},
      {"Not 0", I(-1)},
      {"Not Empty", I(-1)},
      {"Not 1.6", L(-3)},
      {"Not CByte(1)", Variant(uint8_t{254})},
      {"70000 And 3", L(0)},
  });
}

TEST(ScriptOperators, UnknownNamesAreEmpty) {
  ExpectValues({
      {"x", Variant()},
      {"x + 1", I(1)},
      {"IsEmpty(importe)", B(true)},
  });
}

TEST(ScriptOperators, RunTimeErrorsReportTheFirstNonBlankColumn) {
  ExpectErrors({
      {"1/0", 11, 0},
      {"   1/0", 11, 3},
      {"\n 2 + 1/0", 11, 2},
      {"0/0", 6, 0},
      {"5 \\ 0", 11, 0},
      {"5 Mod 0.4", 11, 0},
      {"2147483648 \\ 1", 6, 0},
      {"(-8)^(1/3)", 5, 0},
      {"0^-1", 5, 0},
      {"10^400", 6, 0},
      {"1e300 * 1e300", 6, 0},
      {"\"a\" * 2", 13, 0},
      {"-\"a\"", 13, 0},
      {"3000000000 And 1", 6, 0},
      {"1 Is Nothing", 424, 0},
      {"x.Foo", 424, 0},
      {"x(1)", 13, 0},
  });
}

}  // namespace
}  // namespace kivmovfrec::script::testing
