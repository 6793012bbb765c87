// The script host: numeric short-cut, decimal-comma retry, result text, error outputs, and the
// read-only, bounded rdoCBase object on each engine.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "kivmovfrec/db.h"
#include "platform/script/rdo.h"
#include "platform/script/script_host.h"
#include "script_test_util.h"
#include "support/db_engines.h"

namespace kivmovfrec::script::testing {
namespace {

// Text that reads as a number is returned as written (no engine: " 7 " keeps its blanks); any
// engine error is retried once with every "," read as "."; when both attempts fail the first
// attempt's error (number and column of the text as written) is reported; a value the retry
// rescued from a run-time error carries that error, one rescued from a syntax error does not.
TEST(ScriptHost, ResultsErrorsAndTheDecimalCommaRetry) {
  struct Case {
    const char* expr;
    const char* text;  // when `error` is 0
    int error = 0;     // number of the error reported
    int column = 0;    // of the error reported, or of the first error carried
    int first = 0;     // number of the first error a successful retry carries
  };
  const Case cases[] = {
      {"3,5", "3,5"},
      {" 7 ", " 7 "},
      {"3,5*2", "7"},
      {"1234,56*0,22", "271.6032"},
      {"Round(12000/0,2)", "60000", 0, 0, 11},
      {"  Round(1/0,5)", "2", 0, 2, 11},
      {"Foo(1,2,3)", "", 13},
      {"Mid(\"abc\",0)", "", 5},
      {"Left(\"abc\",1,2)", "", 450},
      {"  IIf(1,2)", "", 13, 2},
      {"(1,2", "", 1006, 2},
      {"1/0", "", 11},
      {"Null", "", 94},
      {"\"1,5\" & Left(\"a,b\",2)", "1,5a,"},
      {"3.5/42", "8.33333333333333E-02"},
      {"919.9999999999999+0", "920"},
      {"CCur(2.5)*2", "5"},
      {"CSng(1)/3", "0.3333333"},
      {"2>1", "Verdadero"},
      {"#1/2/2005#", "02/01/2005"},
      {"Empty", ""},
  };
  for (const auto& c : cases) {
    const HostResult r = EvaluateScript(nullptr, c.expr, false);
    EXPECT_EQ(r.ok ? 0 : r.error.number, c.error) << c.expr << ": " << r.error.description;
    EXPECT_EQ(r.ok ? r.text : "", c.text) << c.expr;
    EXPECT_EQ(r.first_error ? r.first_error->number : 0, c.first) << c.expr;
    const ScriptError* shown = !r.ok ? &r.error : r.first_error ? &*r.first_error : nullptr;
    EXPECT_EQ(shown ? shown->column : 0, c.column) << c.expr;
  }
  // The caller-facing form: description and column, both cleared on success.
  std::string error = "sentinel";
  int column = -1;
  EXPECT_EQ(EvaluateScript(nullptr, "  IIf(1,2)", true, error, column), "");
  EXPECT_EQ(error, "No coinciden los tipos: 'IIf'");
  EXPECT_EQ(column, 2);
  EXPECT_EQ(EvaluateScript(nullptr, "3,5*2", true, error, column), "7");
  EXPECT_EQ(error, "");
  EXPECT_EQ(column, 0);
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
  };
  for (const auto& c : cases) {
    const HostResult r = EvaluateScript(cn.get(), c.expr, true);
    EXPECT_TRUE(r.ok) << c.expr << " error: " << r.error.description;
    EXPECT_EQ(r.text, c.text) << c.expr;
  }
}

TEST_P(HostDatabase, WritesAreRefusedAndNothingChanges) {
  for (const char* expr :
       {"rdoCBase.OpenResultset(\"delete from T\")", "rdoCBase.Execute(\"delete from T\")"}) {
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
    bool expose = true;
  };
  const Case cases[] = {
      {"rdoCBase.OpenResultset(\"select 1\")(0)", 424, false},  // the connection hidden
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
    const HostResult r = EvaluateScript(cn.get(), c.expr, c.expose);
    ASSERT_FALSE(r.ok) << c.expr;
    EXPECT_EQ(r.error.number, c.number) << c.expr << ": " << r.error.description;
  }
}

TEST_P(HostDatabase, RunawayQueriesEndInAnError) {
  const std::string sin_fin =
      "rdoCBase.OpenResultset(\"With Recursive c(x) As (Select Cast(1 As Integer) Union All Select "
      "x + 1 From c) ";
  cn->SetQueryLimit(std::chrono::milliseconds(200));
  HostResult r = EvaluateScript(cn.get(), sin_fin + "Select Count(*) From c\")(0)", true);
  EXPECT_EQ(r.error.number, kDatabaseError);
  EXPECT_NE(r.error.description.find("La consulta superó el límite de 0,2 s"), std::string::npos)
      << r.error.description;
  cn->SetQueryLimit(kDefaultQueryLimit);
  r = EvaluateScript(cn.get(), sin_fin + "Select x From c\")(0)", true);
  EXPECT_NE(r.error.description.find("más de 100.000 filas"), std::string::npos)
      << r.error.description;
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
