// The script host: numeric short-cut, decimal-comma retry, result text, error outputs, and the
// read-only rdoCBase object against SQLite.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "kivmovfrec/db.h"
#include "platform/script/rdo.h"
#include "platform/script/script_host.h"
#include "script_test_util.h"
#include "support/db_engines.h"

namespace kivmovfrec::script::testing {
namespace {

struct Outcome {
  std::string text;
  std::string error;
  int column;
};

Outcome Host(Connection* cn, const char* expr, bool expose = true) {
  Outcome o{"", "sentinel", -1};
  o.text = EvaluateScript(cn, expr, expose, o.error, o.column);
  return o;
}

TEST(ScriptHost, ResultText) {
  struct Case {
    const char* expr;
    const char* text;
  };
  const Case cases[] = {
      {"12.5", "12.5"},  // already a number: returned as written
      {"3,5", "3,5"},
      {" 7 ", " 7 "},
      {"3,5*2", "7"},  // the decimal comma becomes a point on the second attempt
      {"1234,56*0,22", "271.6032"},
      {"1.5*3", "4.5"},
      {"10/4", "2.5"},
      {"3.5/42", "8.33333333333333E-02"},
      {"919.9999999999999+0", "920"},
      {"CCur(2.5)*2", "5"},
      {"CSng(1)/3", "0.3333333"},
      {"2>1", "Verdadero"},
      {"2<1", "Falso"},
      {"\"abc\" & 1", "abc1"},
      {"#1/2/2005#", "02/01/2005"},
      {"Empty", ""},
  };
  for (const auto& c : cases) {
    const Outcome o = Host(nullptr, c.expr);
    EXPECT_EQ(o.text, c.text) << c.expr << " error: " << o.error;
    EXPECT_EQ(o.error, "") << c.expr;
    EXPECT_EQ(o.column, 0) << c.expr;
  }
}

TEST(ScriptHost, ErrorsComeBackThroughTheOutputs) {
  Outcome o = Host(nullptr, "1/0");
  EXPECT_EQ(o.text, "");
  EXPECT_EQ(o.error, "División por cero");
  EXPECT_EQ(o.column, 0);

  o = Host(nullptr, "  IIf(1)");
  EXPECT_EQ(o.error, "No coinciden los tipos: 'IIf'");
  EXPECT_EQ(o.column, 2);

  // No comma to replace: the one attempt's compile error and column.
  o = Host(nullptr, "(1+2");
  EXPECT_EQ(o.error, "Se esperaba ')'");
  EXPECT_EQ(o.column, 4);

  // Both attempts fail: the second one's error is reported.
  const HostResult r = EvaluateScript(nullptr, "Round(1,5,2,3)", false);
  ASSERT_FALSE(r.ok);
  EXPECT_EQ(r.error.number, 1006);

  o = Host(nullptr, "Null");
  EXPECT_EQ(o.error, "Uso no válido de Null");
}

TEST(ScriptHost, ClockReachesTheScript) {
  HostOptions options;
  options.clock = [] { return Date{kFixedNow}; };
  const HostResult r = EvaluateScript(nullptr, "Year(Date) * 100 + Month(Date)", false, options);
  ASSERT_TRUE(r.ok) << r.error.description;
  EXPECT_EQ(r.text, "200508");
}

// rdoCBase over a small table, on each engine.
class HostDatabase : public kivmovfrec::testing::EngineTest {
 protected:
  void SetUpDatabase() override {
    cn->Execute("create table T (a integer, b text)");
    cn->Execute("insert into T values (1, 'uno')");
    cn->Execute("insert into T values (2, 'dos')");
    cn->Execute("insert into T values (3, NULL)");
  }
  int64_t Rows() {
    auto rs = cn->OpenResultset("select count(*) from T");
    return AsInt64(rs->Get(0));
  }
  static int64_t AsInt64(const Variant& v) {
    if (v.type() == VarType::Long) return v.AsLong();
    if (v.type() == VarType::Integer) return v.AsInteger();
    return static_cast<int64_t>(v.AsDouble());
  }
};

TEST_P(HostDatabase, QueriesThroughRdoCBase) {
  struct Case {
    const char* expr;
    const char* text;
  };
  const Case cases[] = {
      {"rdoCBase.OpenResultset(\"select 2+3\")(0)", "5"},
      {"OpenResultset(\"select 2+3\")(0) * 2", "10"},
      {"rdoCBase.OpenResultset(\"select a, b from T order by a\")(\"B\")", "uno"},
      {"rdoCBase.OpenResultset(\"select a from T order by a desc\").Fields(0).Value", "3"},
      {"rdoCBase.OpenResultset(\"select a from T\").Fields(\"a\")", "1"},
      {"rdoCBase.OpenResultset(\"select a from T\").Fields(\"a\").Name", "a"},
      {"rdoCBase.OpenResultset(\"select a, b from T\").Fields.Count", "2"},
      {"rdoCBase.OpenResultset(\"select a from T\").RowCount", "3"},
      {"rdoCBase.OpenResultset(\"select a from T where a > 5\").EOF", "Verdadero"},
      {"rdoCBase.OpenResultset(\"select a from T\").EOF", "Falso"},
      {"IsNull(rdoCBase.OpenResultset(\"select b from T where a = 3\")(0))", "Verdadero"},
      {"TypeName(rdoCBase.OpenResultset(\"select 1\"))", "rdoResultset"},
      {"rdoCBase.OpenResultset(\"select 1,5\")(1)", "5"},
  };
  for (const auto& c : cases) {
    const Outcome o = Host(cn.get(), c.expr);
    EXPECT_EQ(o.text, c.text) << c.expr << " error: " << o.error;
    EXPECT_EQ(o.error, "") << c.expr;
  }
}

TEST_P(HostDatabase, WritesAreRefusedAndNothingChanges) {
  for (const char* expr :
       {"rdoCBase.OpenResultset(\"delete from T\")",
        "rdoCBase.OpenResultset(\"update T set a = 0\")(0)",
        "rdoCBase.OpenResultset(\"drop table T\")", "rdoCBase.Execute(\"delete from T\")"}) {
    const HostResult r = EvaluateScript(cn.get(), expr, true);
    ASSERT_FALSE(r.ok) << expr;
    EXPECT_EQ(r.error.number, kDatabaseError) << expr;
    // Said once, whether or not the adapter's own message already says it.
    EXPECT_EQ(r.error.description.rfind("Error de la base de datos"), 0u) << r.error.description;
    EXPECT_EQ(Rows(), 3) << expr;
  }
  auto rs = cn->OpenResultset("select a from T where a = 1");
  ASSERT_FALSE(rs->Eof());
}

TEST_P(HostDatabase, BadSqlAndBadFieldsAreScriptErrors) {
  struct Case {
    const char* expr;
    int number;
  };
  const Case cases[] = {
      {"rdoCBase.OpenResultset(\"select nope from T\")(0)", kDatabaseError},
      {"rdoCBase.OpenResultset(\"selec 1\")", kDatabaseError},
      {"rdoCBase.OpenResultset(\"select a from T where a > 5\")(0)", 3021},
      {"rdoCBase.OpenResultset(\"select a from T\")(5)", 9},
      {"rdoCBase.OpenResultset(\"select a from T\")(\"zz\")", 3265},
      {"rdoCBase.OpenResultset(\"select a from T\")(Null)", 94},
      {"rdoCBase.OpenResultset()", 450},
      {"rdoCBase.Nope", 438},
      {"rdoCBase.OpenResultset(\"select a from T\").Fields(\"a\").Nope", 438},
  };
  for (const auto& c : cases) {
    const HostResult r = EvaluateScript(cn.get(), c.expr, true);
    ASSERT_FALSE(r.ok) << c.expr;
    EXPECT_EQ(r.error.number, c.number) << c.expr << ": " << r.error.description;
  }
}

TEST_P(HostDatabase, ConnectionHiddenWithoutTheFlag) {
  const HostResult r = EvaluateScript(cn.get(), "rdoCBase.OpenResultset(\"select 1\")(0)", false);
  ASSERT_FALSE(r.ok);
  EXPECT_EQ(r.error.number, 424);
}

TEST_P(HostDatabase, ResultSetWalksRowsAndCloses) {
  Engine engine(FixedClock());
  engine.AddObject("rdoCBase", MakeRdoConnection(cn), true);
  const EvalResult r = engine.Eval("rdoCBase.OpenResultset(\"select a from T order by a\")");
  ASSERT_TRUE(r.ok);
  ASSERT_TRUE(r.value.IsObject());
  Object& rs = *r.value.AsObject();
  const Variant zero(int16_t{0});
  std::vector<int64_t> seen;
  while (!rs.Invoke("EOF", {}).AsBool()) {
    seen.push_back(AsInt64(rs.Invoke("", std::span<const Variant>(&zero, 1))));
    rs.Invoke("MoveNext", {});
  }
  EXPECT_EQ(seen, (std::vector<int64_t>{1, 2, 3}));
  EXPECT_THROW(rs.Invoke("MoveNext", {}), VbError);
  rs.Invoke("Close", {});
  EXPECT_THROW(rs.Invoke("EOF", {}), VbError);
}

KMF_INSTANTIATE_ENGINES(HostDatabase);

}  // namespace
}  // namespace kivmovfrec::script::testing
