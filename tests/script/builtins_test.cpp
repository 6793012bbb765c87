// Built-in functions: results, argument rules and their errors. The vb functions behind them are
// tested in tests/vb; these cases show the script's own handling (subtypes, Null, optional
// arguments, coercion of arguments, error numbers).
#include "script_test_util.h"

namespace kivmovfrec::script::testing {
namespace {

TEST(ScriptBuiltins, Math) {
  ExpectValues({
      {"Abs(-5)", I(5)},
      {"Abs(CInt(-32768))", L(32768)},
      {"Abs(-1.5)", D(1.5)},
      {"Abs(Null)", Variant::Null()},
      {"Abs(\"-2\")", D(2)},
      {"Int(-1.99)", D(-2)},
      {"Fix(-1.99)", D(-1)},
      {"Int(CCur(-1.5))", Variant(Currency::FromUnits(-20000))},
      {"Fix(CCur(-1.5))", Variant(Currency::FromUnits(-10000))},
      {"Int(5)", I(5)},
      {"Int(Null)", Variant::Null()},
      {"Round(1.765,2)", D(1.76)},
      {"Round(2.5)", D(2)},
      {"Round(7)", I(7)},
      {"Round(Null)", Variant::Null()},
      {"Round(CCur(2.345), 2)", Variant(Currency::FromUnits(23400))},
      {"Sgn(-3)", I(-1)},
      {"Sgn(0) + Sgn(0.1)", I(1)},
      {"Sqr(16) + Exp(0) + Log(1) + Cos(0) + Atn(0) + Sin(0) + Tan(0)", D(6)},
      {"Hex(255)", S("FF")},
      {"Hex(-1)", S("FFFF")},
      {"Hex(-1.0)", S("FFFFFFFF")},
      {"Hex(Null)", Variant::Null()},
      {"Oct(8)", S("10")},
  });
  ExpectErrors({
      {"Sqr(-1)", 5},
      {"Log(0)", 5},
      {"Exp(710)", 6},
      {"Round(1.5, -1)", 5},
      {"Sgn(Null)", 94},
      {"Sqr(Null)", 94},
      {"Abs()", 450},
      {"Abs(1, 2)", 450},
      {"Round", 450},
  });
}

// One case per conversion shows the wiring, the script's locale and how errors come back.
TEST(ScriptBuiltins, Conversions) {
  ExpectValues({
      {"CInt(2.5)", I(2)},
      {"CLng(\"70000\")", L(70000)},
      {"CByte(255)", Variant(uint8_t{255})},
      {"CDbl(\"1,5\")", D(1.5)},
      {"CSng(0.5)", Variant(0.5f)},
      {"CCur(\"2,5\")", Variant(Currency::FromUnits(25000))},
      {"CStr(1.5)", S("1,5")},
      {"CStr(True)", S("Verdadero")},
      {"CBool(1)", B(true)},
      {"CDate(\"02/01/2005\")", DateOf(38354)},
      {"IsNumeric(\"12,5\")", B(true)},
      {"IsNumeric(Null)", B(false)},
      {"IsDate(\"31/12/2005\")", B(true)},
      {"IsNull(Null)", B(true)},
      {"IsNull(Empty)", B(false)},
      {"IsEmpty(Empty)", B(true)},
      {"IsObject(Nothing)", B(true)},
      {"TypeName(Empty) & TypeName(1) & TypeName(1.5) & TypeName(\"a\") & TypeName(Date)",
       S("EmptyIntegerDoubleStringDate")},
      {"TypeName(70000)", S("Long")},
      {"TypeName(Null)", S("Null")},
      {"TypeName(Nothing)", S("Nothing")},
      {"TypeName(CCur(1))", S("Currency")},
      {"VarType(\"a\")", I(8)},
  });
  ExpectErrors({
      {"CInt(32767.5)", 6},
      {"CStr(Null)", 94},
      // Nothing passed as a value is an unset object variable.
      {"Hex(Nothing)", 91},
      {"Left(Nothing, 1)", 91},
  });
}

TEST(ScriptBuiltins, Text) {
  ExpectValues({
      {"Len(Null)", Variant::Null()},
      {"Len(123)", L(3)},
      {"Len(\"añb\")", L(3)},
      {"Left(\"abcdef\", 2.5)", S("ab")},
      {"Left(Null, 1)", Variant::Null()},
      {"Right(\"ñandú\", 2)", S("dú")},
      {"Mid(\"abcdef\", 3)", S("cdef")},
      {"Mid(\"abc\", 10)", S("")},
      {"Mid(\"año\", 2, 1)", S("ñ")},
      {"InStr(\"abcabc\", \"c\")", L(3)},
      {"InStr(4, \"abcabc\", \"c\")", L(6)},
      {"InStr(1, \"ABC\", \"b\", 1)", L(2)},
      {"InStr(1, \"ABC\", \"b\", 0)", L(0)},
      {"InStr(2, \"abc\", \"\")", L(2)},
      {"InStr(\"abc\", Null)", Variant::Null()},
      {"InStrRev(\"abcabc\", \"bc\")", L(5)},
      {"InStrRev(\"abcabc\", \"bc\", 4)", L(2)},
      {"InStrRev(\"ABCABC\", \"bc\", -1, 1)", L(5)},
      {"Replace(\"a-b-c\", \"-\", \"+\")", S("a+b+c")},
      {"Replace(\"a-b-c\", \"-\", \"+\", 3)", S("b+c")},
      {"Replace(\"a-b-c\", \"-\", \"+\", 1, 1)", S("a+b-c")},
      {"Replace(\"aXbx\", \"x\", \"y\", 1, -1, 1)", S("ayby")},
      {"\"[\" & Trim(\" a \") & \"|\" & LTrim(\" a \") & \"|\" & RTrim(\" a \") & \"]\"",
       S("[a|a | a]")},
      {"Trim(Null)", Variant::Null()},
      {"LCase(\"ÁB\") & UCase(\"ñu\")", S("ábÑU")},
      {"Space(3)", S("   ")},
      {"String(3, \"ab\")", S("aaa")},
      {"String(2, 65)", S("AA")},
      {"StrReverse(\"año\")", S("oña")},
      {"Chr(128)", S("€")},
      {"Chr(241)", S("ñ")},
      {"Asc(\"A\")", I(65)},
      {"Asc(\"€uro\")", I(128)},
      {"Asc(\"ñ\")", I(241)},
      {"FormatNumber(1234.5)", S("1.234,50")},
      {"FormatNumber(1234.5, 1, -2, -2, 0)", S("1234,5")},
      {"FormatNumber(-0.5, 2, 0, -1)", S("(,50)")},
  });
  ExpectErrors({
      {"Left(\"abc\", -1)", 5},
      {"Mid(\"abc\", 1, -1)", 5},
      {"InStr(0, \"abc\", \"a\")", 5},
      {"InStr(1, \"abc\", \"a\", 2)", 5},
      {"Replace(\"abc\", \"a\", \"b\", 0)", 5},
      {"Replace(Null, \"a\", \"b\")", 94},
      {"Space(-1)", 5},
      {"Asc(\"\")", 5},
      {"Chr(256)", 5},
      {"String(2, \"\")", 5},
      {"Space(1000000000)", 7},
      {"Len(1, 2)", 450},
  });
}

TEST(ScriptBuiltins, DatesUseTheInjectedClock) {
  ExpectValues({
      {"Date", DateOf(38566)},
      {"Date()", DateOf(38566)},
      {"Now", DateOf(kFixedNow)},
      {"Time", DateOf(kFixedNow - 38566)},
      {"Year(Date) & \"/\" & Month(Now) & \"/\" & Day(Now)", S("2005/8/2")},
      {"Hour(Now) & \":\" & Minute(Now) & \":\" & Second(Now)", S("10:30:0")},
      {"Year(Null)", Variant::Null()},
      {"Year(\"31/12/1999\")", I(1999)},
      {"Weekday(#8/2/2005#)", I(3)},
      {"Weekday(#8/2/2005#, 2)", I(2)},
      {"Weekday(#8/7/2005#, 0)", I(7)},
      {"DateSerial(2000,14,2)", DateOf(36924)},
      {"TimeSerial(12,0,0)", DateOf(0.5)},
      {"DateAdd(\"m\", 1, #1/31/2005#)", DateOf(38411)},
      {"DateAdd(\"d\", 1, Null)", Variant::Null()},
      {"DateDiff(\"yyyy\", #12/31/2004#, #1/1/2005#)", L(1)},
      {"DateDiff(\"m\", Date, Null)", Variant::Null()},
  });
  ExpectErrors({
      {"Weekday(Date, 8)", 5},
      {"DateAdd(\"zz\", 1, Date)", 5},
      {"DateSerial(Null, 1, 1)", 94},
      {"Year(\"abc\")", 13},
      {"Date(1)", 450},
  });
}

}  // namespace
}  // namespace kivmovfrec::script::testing
