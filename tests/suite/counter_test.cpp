// Table counters on every engine: distinct values across processes, transactional draws,
// late-created rows.
#include <algorithm>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/suite/counter.h"
#include "platform/vb/convert.h"
#include "support/child_processes.h"
#include "support/demo_engine.h"
#include "support/faulty_connection.h"

namespace kivmovfrec {
namespace {

using Counter = testing::SuiteTablesTest;
using CounterWithoutTables = testing::EngineTest;

int64_t CounterRow(Connection& cn, const std::string& table) {
  auto rs = cn.OpenResultset("Select CntValor From genContadores Where CntTabla = '" + table + "'");
  return rs->Eof() ? -100 : vb::CLng(rs->Get(0));
}

// Each process alternates single draws with blocks of kBlock values.
TEST_P(Counter, TwoProcessesNeverDrawTheSameValue) {
  constexpr int kEach = 500, kBlock = 7;
  const std::string uri = database().uri();
  const auto outcome = testing::RunInChildren(2, [&](int, std::ostream& out) {
    auto own = OpenConnection(uri);
    int status = 0;
    for (int i = 0; i < kEach;) {
      const bool block = i % 2 == 1 && i + kBlock <= kEach;
      const int count = block ? kBlock : 1;
      const int32_t first = block ? suite::ReserveTableCounter(*own, "genRecurrencias", kBlock)
                                  : suite::DrawTableCounter(*own, "genRecurrencias");
      if (first < 0) status = 3;
      for (int k = 0; k < count; ++k) out << first + k << '\n';
      i += count;
    }
    return status;
  });
  // Together the two drew every value from 1 to 2 * kEach once.
  std::vector<int32_t> values, expected(2 * kEach);
  for (size_t i = 0; i < outcome.outputs.size(); ++i) {
    EXPECT_EQ(outcome.statuses[i], 0) << outcome.outputs[i];
    std::istringstream in(outcome.outputs[i]);
    for (int32_t value = 0; in >> value;) values.push_back(value);
  }
  std::sort(values.begin(), values.end());
  std::iota(expected.begin(), expected.end(), 1);
  EXPECT_EQ(values, expected);
  EXPECT_EQ(CounterRow(*cn, "genRecurrencias"), 2 * kEach);
}

TEST_P(Counter, AFailingStatementSurfacesItsErrorAndChangesNothing) {
  auto real = cn;
  // Once with the row present and once without it, each statement of the draw fails in turn.
  for (const bool seeded : {true, false}) {
    real->Execute("Delete From genContadores");
    if (seeded) real->Execute("Insert Into genContadores Values ('genRecurrencias', 5)");
    for (int fail_at = 1;; ++fail_at) {
      testing::FaultyConnection failing(real, fail_at);
      int32_t value = 0;
      try {
        value = suite::DrawTableCounter(failing, "genRecurrencias");
      } catch (const DbError& e) {
        EXPECT_EQ(std::string(e.what()).find("fallo inyectado"), 0u) << e.what();
      }
      EXPECT_FALSE(real->InTransaction());
      if (!failing.failed()) {
        EXPECT_EQ(value, seeded ? 6 : 1);
        EXPECT_GT(fail_at, 2);
        break;
      }
      EXPECT_EQ(value, 0) << "fallo en la sentencia " << fail_at;
      EXPECT_EQ(CounterRow(*real, "genRecurrencias"), seeded ? 5 : -100);
    }
  }
}

TEST_P(Counter, DrawInsideTransactionFollowsIt) {
  cn->Execute("Insert Into genContadores (CntTabla, CntValor) Values ('cceAsientos', 10)");
  cn->BeginTrans();
  EXPECT_EQ(suite::DrawTableCounter(*cn, "cceAsientos"), 11);
  EXPECT_EQ(suite::ReserveTableCounter(*cn, "cceAsientos", 5), 12);  // 12 to 16
  EXPECT_EQ(suite::DrawTableCounter(*cn, "cceAsientos"), 17);
  EXPECT_EQ(suite::DrawTableCounter(*cn, "genLibros"), 1);  // a row created on the way
  EXPECT_TRUE(cn->InTransaction());                         // the caller's is left open
  cn->RollbackTrans();
  EXPECT_EQ(CounterRow(*cn, "cceAsientos"), 10);
  EXPECT_EQ(CounterRow(*cn, "genLibros"), -100);

  EXPECT_EQ(suite::ReserveTableCounter(*cn, "cceAsientos", 2), 11);  // committed on its own
  EXPECT_FALSE(cn->InTransaction());
  EXPECT_EQ(CounterRow(*OpenAnother(), "cceAsientos"), 12);
}

TEST_P(Counter, MissingRowStartsAfterTheLargestStoredKey) {
  cn->Execute(
      "Insert Into genMovimientosFrecuentes (MFrID, MFrEmpresa, MFrTipo, MFrEstado) "
      "Values (40, 1, 1, 0), (7, 1, 1, 0)");
  EXPECT_EQ(suite::DrawTableCounter(*cn, "genMovimientosFrecuentes"), 41);
  EXPECT_EQ(suite::DrawTableCounter(*cn, "genMovimientosFrecuentes"), 42);
  // Tables the counter knows nothing about start from 1.
  EXPECT_EQ(suite::DrawTableCounter(*cn, "otraTabla"), 1);
}

// A database failure reaches the caller as the engine reported it, never as -1: the missing
// counter table, a database that accepts no writes. Names that are not plain and values past 32
// bits are -1 (there is no value to give). Nothing stays open.
TEST_P(CounterWithoutTables, FailuresLeaveNoTransaction) {
  EXPECT_EQ(testing::KindOfFailure([&] { suite::DrawTableCounter(*cn, "genRecurrencias"); }),
            DbErrorKind::MissingTable);
  EXPECT_FALSE(cn->InTransaction());

  InstallSchema(*cn);
  cn->Execute(postgres() ? "Set default_transaction_read_only = on" : "Pragma query_only = 1");
  EXPECT_EQ(testing::KindOfFailure([&] { suite::DrawTableCounter(*cn, "genRecurrencias"); }),
            DbErrorKind::ReadOnly);
  EXPECT_FALSE(cn->InTransaction());
  cn->Execute(postgres() ? "Set default_transaction_read_only = off" : "Pragma query_only = 0");
  EXPECT_EQ(suite::DrawTableCounter(*cn, "gen'Recurrencias"), -1);
  EXPECT_EQ(suite::DrawTableCounter(*cn, ""), -1);
  cn->Execute("Insert Into genContadores (CntTabla, CntValor) Values ('lleno', 2147483647)");
  EXPECT_EQ(suite::DrawTableCounter(*cn, "lleno"), -1);
  EXPECT_EQ(CounterRow(*cn, "lleno"), 2147483647);  // the failed draw was rolled back
  // A block must fit whole: none past the limit, the last one up to it.
  cn->Execute("Insert Into genContadores (CntTabla, CntValor) Values ('casi', 2147483640)");
  EXPECT_EQ(suite::ReserveTableCounter(*cn, "casi", 8), -1);
  EXPECT_EQ(suite::ReserveTableCounter(*cn, "casi", 0), -1);
  EXPECT_EQ(suite::ReserveTableCounter(*cn, "casi", 7), 2147483641);
  EXPECT_EQ(CounterRow(*cn, "casi"), 2147483647);
  EXPECT_FALSE(cn->InTransaction());
}

KMF_INSTANTIATE_ENGINES(Counter);
KMF_INSTANTIATE_ENGINES(CounterWithoutTables);

}  // namespace
}  // namespace kivmovfrec
