// Lexical rules, precedence and compile errors of the expression engine.
#include <string>

#include "script_test_util.h"

namespace kivmovfrec::script::testing {
namespace {

TEST(ScriptSyntax, PrecedenceAndAssociativity) {
  ExpectValues({
      {"-3^2", D(9)},
      {"2^3^2", D(64)},
      {"2*3^2", D(18)},
      {"2^-2", D(0.25)},
      {"--1", I(1)},
      {"7 Mod 4+2", I(5)},
      {"2+3\\4", I(2)},
      {"5\\4/2", L(2)},
      {"12/3\\2", L(2)},
      {"1 = 1 < 0", B(true)},
      {"Not 0 And 0", I(0)},
      {"Not 1 > 2 And True", B(true)},
      {"10-2-3", I(5)},
      {"100/10/5", D(2)},
      {"True Or False And False", B(true)},
      {"1 Xor 3 Or 4", I(6)},
      {"False Imp True Eqv False", B(true)},
      {"\"a\" & 1 + 2", S("a3")},
      {"1 & 2 = \"12\"", B(true)},
      {"(1=1)*5", I(-5)},
      {"+\"x\"", S("x")},
  });
}

TEST(ScriptSyntax, NumericLiterals) {
  ExpectValues({
      {"010", I(10)},
      {"10.", D(10)},
      {".5", D(0.5)},
      {"34e+5", D(3400000)},
      {"56.789e-2", D(0.56789)},
      {"1e-400", D(0)},
      {"32767", I(32767)},
      {"32768", L(32768)},
      {"-32768", L(-32768)},
      {"2147483647", L(2147483647)},
      {"2147483648", D(2147483648.0)},
      {"&HFFFF", I(-1)},
      {"&hff", I(255)},
      {"&HFFFF&", L(65535)},
      {"&H10000", L(65536)},
      {"&HFFFFFFFF", L(-1)},
      {"&O17", I(15)},
      {"&O177777", I(-1)},
  });
}

TEST(ScriptSyntax, OtherLiterals) {
  ExpectValues({
      {"\"a\"\"b\"", S("a\"b")},
      {"\"ñandú\"", S("ñandú")},
      {"True", B(true)},
      {"Empty", Variant()},
      {"null", Variant::Null()},
      {"#1/2/2005#", DateOf(38354)},
      {"#2005-01-02#", DateOf(38354)},
      {"#13/1/2005#", DateOf(38365)},
      {"#1/2/2005 6:00 PM#", DateOf(38354.75)},
      {"#12:00:00#", DateOf(0.5)},
      {"vbCrLf", S("\r\n")},
      {"VBTAB & vbTextCompare", S("\t1")},
      {"[odd name] + 1", I(1)},
  });
}

TEST(ScriptSyntax, BlanksLineBreaksAndComments) {
  ExpectValues({
      {"", Variant()},
      {"   \r\n", Variant()},
      {"1 + 2  \n\n", I(3)},
      {"\r\n  ' note\n1 + 2", I(3)},
      {"\t1 +\t2\t", I(3)},
      {"1 + _\n 2", I(3)},
      {"1 + 2 ' a comment", I(3)},
      {"Len (\"abc\")", L(3)},
  });
}

TEST(ScriptSyntax, CompileErrorsPointAtTheOffendingToken) {
  ExpectErrors({
      {"3,5*2", 1025, 1},     {"1 2", 1025, 2},
      {"1\n2", 1025, 2},      {"1 : 2", 1025, 4},
      {"(1)(2)", 1025, 3},    {"1 +", 1023, 3},
      {"1 + ", 1023, 4},      {"1 +\n 2", 1023, 3},
      {"*2", 1023, 0},        {"f(1,,2)", 1023, 4},
      {"(1+2", 1006, 4},      {"Len(1", 1006, 5},
      {"\"abc", 1033, 0},     {"1 + \"ab\ncd\"", 1033, 4},
      {"1e", 1031, 0},        {"2 * 1e+", 1031, 4},
      {"1e400", 1031, 0},     {"1 @ 2", 1032, 2},
      {"1 ; 2", 1032, 2},     {"á", 1032, 0},
      {"\"ñ\" + @", 1032, 6}, {"#13/45/2005#", 1002, 0},
      {"#1/2/2005", 1002, 0}, {"x. y", 1002, 2},
      {"1/0 +", 1023, 5},  // a compile error wins over the division by zero
  });
}

TEST(ScriptSyntax, DeepNestingIsAnErrorNotACrash) {
  const std::string parens(100000, '(');
  ExpectErrors({{parens.c_str(), 28, -1}});
  const std::string minus = std::string(100000, '-') + "1";
  ExpectErrors({{minus.c_str(), 28, -1}});
  std::string not_chain;
  for (int i = 0; i < 50000; ++i) not_chain += "Not ";
  not_chain += "0";
  ExpectErrors({{not_chain.c_str(), 28, -1}});
  std::string calls;
  for (int i = 0; i < 50000; ++i) calls += "Abs(";
  ExpectErrors({{calls.c_str(), 28, -1}});
  // Nesting within the limit still works.
  const std::string ok = std::string(200, '(') + "7" + std::string(200, ')');
  ExpectValues({{ok.c_str(), I(7)}});
}

TEST(ScriptSyntax, LongFlatExpressionsNeedNoDepth) {
  std::string sum = "0";
  for (int i = 0; i < 100000; ++i) sum += "+1";
  const EvalResult r = Evaluate(sum);
  ASSERT_TRUE(r.ok) << r.error.description;
  EXPECT_EQ(r.value, L(100000));
}

}  // namespace
}  // namespace kivmovfrec::script::testing
