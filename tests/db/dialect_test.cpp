#include "platform/db/dialect.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kivmovfrec/db.h"
#include "platform/db/sql_tokens.h"

namespace kivmovfrec::sql {
namespace {

std::string Lite(std::string_view s) {
  return TranslateSql(s, Target::SQLite);
}
std::string Pg(std::string_view s) {
  return TranslateSql(s, Target::PostgreSQL);
}

// Each token's text with the space (comments included) before it; the list's trailing text.
std::vector<std::string> Pieces(std::string_view sql) {
  auto list = Tokenize(sql);
  std::vector<std::string> out;
  for (const auto& t : list.tokens) out.push_back(std::string(t.space) + std::string(t.text));
  out.emplace_back(list.trailing);
  return out;
}

TEST(Tokenize, KeepsEveryByteAndSeesThroughQuotes) {
  EXPECT_EQ(Pieces("Select 'It''s -- no comment', \"Col\" /* c */ , [pFindID] From t -- tail\n"),
            (std::vector<std::string>{"Select", " 'It''s -- no comment'", ",", " \"Col\"",
                                      " /* c */ ,", " [pFindID]", " From", " t", " -- tail\n"}));
  EXPECT_EQ(Pieces("a<>1.5e3||b<=.5"),
            (std::vector<std::string>{"a", "<>", "1.5e3", "||", "b", "<=", ".5", ""}));
  EXPECT_EQ(Tokenize("'x'").tokens[0].kind, TokenKind::String);
  EXPECT_EQ(Tokenize("[x]").tokens[0].kind, TokenKind::QuotedName);
}

TEST(Tokenize, RefusesUnclosedQuotesAndParentheses) {
  EXPECT_THROW(Tokenize("Select 'abc from t"), DbError);
  EXPECT_THROW(Tokenize("Select \"abc from t"), DbError);
  EXPECT_THROW(Lite("Select (1 from t"), DbError);
  EXPECT_THROW(Lite("Select 1) from t"), DbError);
  EXPECT_THROW(Pg("Select (1"), DbError);
}

// The translation on each target; `pg` null: the same text as on SQLite.
TEST(Translate, RewritesTopPlusAndLikeAndNothingElse) {
  struct Case {
    const char* sql;
    const char* lite;
    const char* pg = nullptr;
  } const cases[] = {
      // Top becomes Limit at the end of its own select, inside a sub-select too.
      {"Select Top 1 CMoFecha From genCotizacionesMoneda Order by CMoFecha DESC",
       "Select CMoFecha From genCotizacionesMoneda Order by CMoFecha DESC LIMIT 1"},
      {"select distinct top (5) a from t;", "select distinct a from t LIMIT 5;"},
      {"SELECT TOP(2)x FROM t", "SELECT x FROM t LIMIT 2"},
      {"Select a From t Where b IN (Select Top 1 b From u Order by c) And d = 1",
       "Select a From t Where b IN (Select b From u Order by c LIMIT 1) And d = 1"},
      // Each branch of a union keeps its own limit; an Order By after the last branch stays with
      // the whole compound.
      {"Select Top 1 a From t Where d In (Select Max(d) From t) Union All Select Top 1 1/b From u",
       "SELECT * FROM (Select a From t Where d In (Select Max(d) From t) LIMIT 1) Union All "
       "SELECT * FROM (Select 1/b From u LIMIT 1)",
       "(Select a From t Where d In (Select Max(d) From t) LIMIT 1) Union All (Select 1/b From u "
       "LIMIT 1)"},
      {"Select Top 1 a From t UNION ALL Select b From u Order by a",
       "SELECT * FROM (Select a From t LIMIT 1) UNION ALL Select b From u Order by a",
       "(Select a From t LIMIT 1) UNION ALL Select b From u Order by a"},
      {"Select a From t Union Select Top 2 b From u Order by a",
       "Select a From t Union SELECT * FROM (Select b From u LIMIT 2) Order by a",
       "Select a From t Union (Select b From u LIMIT 2) Order by a"},
      // + next to a text literal concatenates the whole chain.
      {"Select Nombre + ' (' + RTrim(Simbolo) + ')' From m Where (ID  = 'x' or rTrim(Codigo) + ' "
       "' + Nombre  = 'y')",
       "Select Nombre || ' (' || RTrim(Simbolo) || ')' From m Where (ID  = 'x' or rTrim(Codigo) "
       "|| ' ' || Nombre  = 'y')"},
      // || binds tighter than * and -, so compound operands keep their meaning in brackets.
      {"Select a * 2 + ' u', ' ' + -b From t", "Select (a * 2) || ' u', ' ' || (-b) From t"},
      {"Select t.a + '-' + f(x) + [y] nombre From t",
       "Select t.a || '-' || f(x) || [y] nombre From t"},
      {"Select CASE WHEN a = 1 THEN 'x' + b ELSE c END From t",
       "Select CASE WHEN a = 1 THEN 'x' || b ELSE c END From t"},
      // + between numbers or columns stays addition, also when a literal is the other side of a
      // comparison.
      {"Select a + 1, b + c, 1/CMoCompra, (x + 2) * 3, t.a + t.b From t Where a + 1 = '5'",
       "Select a + 1, b + c, 1/CMoCompra, (x + 2) * 3, t.a + t.b From t Where a + 1 = '5'"},
      {"Select 1 From t Where 'x' = a + b", "Select 1 From t Where 'x' = a + b"},
      // Like ignores case on PostgreSQL only through ILIKE; words inside quotes stay.
      {"Select a From t Where b Like '%cierre%mes%' And c <> 'Like'",
       "Select a From t Where b Like '%cierre%mes%' And c <> 'Like'",
       "Select a From t Where b ILIKE '%cierre%mes%' And c <> 'Like'"},
      {"Select 1 From t Where a not like 'Like%'", "Select 1 From t Where a not like 'Like%'",
       "Select 1 From t Where a not ILIKE 'Like%'"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Lite(c.sql), c.lite);
    EXPECT_EQ(Pg(c.sql), c.pg ? c.pg : c.lite);
  }
  EXPECT_THROW(Lite("Select Top 10 Percent a From t"), DbError);
  EXPECT_THROW(Lite("Select Top a From t"), DbError);
}

TEST(Shape, SingleTableSelectStarIsRecognisedWithoutRegardToCase) {
  auto m = MatchSingleTableSelect("Select * from genMovimientosFrecuentes Where MFrID = 0");
  ASSERT_TRUE(m);
  EXPECT_EQ(m->table, "genMovimientosFrecuentes");
  EXPECT_EQ(m->star_offset, 7u);
  EXPECT_TRUE(MatchSingleTableSelect("SELECT * FROM \"Tabla\" ORDER BY a, b"));
  EXPECT_EQ(MatchSingleTableSelect("select * from [t];")->table, "t");
  EXPECT_TRUE(MatchSingleTableSelect("select * from t where a in (select b from u, v)"));

  EXPECT_FALSE(MatchSingleTableSelect("Select a from t"));
  EXPECT_FALSE(MatchSingleTableSelect("Select * from t, u where a = b"));
  EXPECT_FALSE(MatchSingleTableSelect("Select * from t left join u on a = b"));
  EXPECT_FALSE(MatchSingleTableSelect("Select * from t x where x.a = 1"));
  EXPECT_FALSE(MatchSingleTableSelect("Select * from t where a = 1 union select * from u"));
  EXPECT_FALSE(MatchSingleTableSelect("Select * from t group by a"));
  EXPECT_FALSE(MatchSingleTableSelect("Select * from (select * from t)"));
}

TEST(Shape, StatementsSplitOutsideQuotesAndComments) {
  auto parts = SplitStatements(
      "create table t (a text default ';');\n-- a; comment\ninsert into t values ('x;y');;\n");
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(parts[0], "create table t (a text default ';')");
  EXPECT_EQ(parts[1], "insert into t values ('x;y')");
  auto trigger = SplitStatements(
      "Create Temp Trigger tr After Insert On t Begin Update t Set a = Case When 1 Then 'x' "
      "End; Delete From u; End; Select 1");
  ASSERT_EQ(trigger.size(), 2u);
  EXPECT_EQ(trigger[1], "Select 1");
  EXPECT_EQ(LeadingKeyword("  /* x */ with q as (select 1) select * from q"), "WITH");
  EXPECT_TRUE(IsBlankSql(" ; -- nothing\n"));
  EXPECT_FALSE(IsBlankSql("; select 1"));
}

}  // namespace
}  // namespace kivmovfrec::sql
