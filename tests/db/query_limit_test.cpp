// Statements from formulas and scripts (OpenReadOnly, OpenReadOnlyRows) are bounded: a runaway
// one is cancelled at the connection's query limit with DbErrorKind::Timeout, leaving the
// connection and an open transaction usable, and rows are read only as far as asked.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/db_engines.h"
#include "support/faulty_connection.h"

namespace kivmovfrec::testing {
namespace {

const std::string kSinFin =
    "With Recursive c(x) As (Select Cast(1 As Integer) Union All Select x + 1 From c) ";

class QueryLimit : public EngineTest {};

TEST_P(QueryLimit, ARunawayStatementIsCancelledAndEverythingElseGoesOn) {
  cn->Execute("Create Table t (n Integer)");
  cn->SetQueryLimit(std::chrono::milliseconds(200));
  std::vector<std::string> runaway{kSinFin + "Select Count(*) From c"};
  if (postgres()) runaway.emplace_back("Select Count(*) From generate_series(1, 1e11)");
  cn->BeginTrans();
  cn->Execute("Insert Into t (n) Values (7)");
  for (const std::string& sql : runaway) {
    for (size_t rows : {size_t{1}, SIZE_MAX}) {
      try {
        rows == 1 ? cn->OpenReadOnlyRows(sql, 1) : cn->OpenReadOnly(sql);
        ADD_FAILURE() << "not cancelled: " << sql;
      } catch (const DbError& e) {
        EXPECT_EQ(e.kind(), DbErrorKind::Timeout) << e.what();
        EXPECT_EQ(std::string(e.what()).rfind("La consulta superó el límite de 0,2 s", 0), 0u)
            << e.what();
      }
      ASSERT_TRUE(cn->InTransaction()) << sql;
    }
  }
  cn->CommitTrans();
  EXPECT_EQ(cn->OpenReadOnly("Select n From t")->Get(0), Variant(int32_t{7}));
  if (postgres()) {
    // The limit was the cancelled statement's alone: the component's own statements run past it.
    EXPECT_NO_THROW(cn->OpenResultset("Select pg_sleep(0.3)"));
  }
}

TEST_P(QueryLimit, RowsAreReadOnlyAsFarAsAsked) {
  bool more = false;
  auto rs = cn->OpenReadOnlyRows(kSinFin + "Select x From c", 3, &more);
  std::vector<Variant> got;
  for (; !rs->Eof(); rs->MoveNext()) got.push_back(rs->Get(0));
  EXPECT_EQ(got,
            (std::vector<Variant>{Variant(int32_t{1}), Variant(int32_t{2}), Variant(int32_t{3})}));
  EXPECT_TRUE(more);
  const char* two = "Select 1 Union All Select 2";
  EXPECT_FALSE(cn->OpenReadOnlyRows(two, 2, &more)->Eof());
  EXPECT_FALSE(more);
  // A connection that forwards only OpenReadOnly keeps the same rows through the default.
  FaultyConnection forwarding(cn, 0);
  rs = forwarding.OpenReadOnlyRows(two, 1, &more);
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  EXPECT_TRUE(more);
}

KMF_INSTANTIATE_ENGINES(QueryLimit);

}  // namespace
}  // namespace kivmovfrec::testing
