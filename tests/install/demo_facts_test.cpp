// Figures of the demo company worked out by hand from schema/demo.sql, on every engine: the
// formula and main-job tests build on them.

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "install/demo_db.h"
#include "kivmovfrec/services.h"
#include "platform/suite/clock.h"
#include "platform/vb/convert.h"
#include "support/demo_engine.h"

namespace kivmovfrec::testing {
namespace {

using DemoFacts = DemoEngineTest;

// Through the suite's balance service. The draft and the annulled entry on Caja never count.
TEST_P(DemoFacts, BalancesOnKnownDates) {
  struct Case {
    int account;
    int month, day;  // of 2026
    double balance;
  };
  const Case cases[] = {
      {101, 1, 1, 0},         {101, 1, 2, 150000},    {101, 12, 31, 150000},  {102, 10, 4, 2500000},
      {102, 10, 5, 1700000},  {102, 10, 10, 1050000}, {103, 11, 30, 1350000}, {104, 8, 31, 121000},
      {113, 9, 30, -800000},  {113, 10, 5, 0},        {113, 10, 31, -820000}, {114, 10, 10, 0},
      {114, 10, 31, -205000}, {141, 10, 31, 1620000}, {145, 11, 4, 0},        {145, 11, 5, 50000},
      {111, 11, 5, -60500},   {202, 10, 15, 300000},
  };
  auto balance = SuiteServices::Defaults(cn).balance;
  for (const auto& c : cases) {
    EXPECT_DOUBLE_EQ(balance->Saldo(c.account, suite::SerialOf(2026, c.month, c.day)), c.balance)
        << c.account << " on " << c.day << "/" << c.month;
  }
  EXPECT_EQ(CountRows(*cn,
                      "Select ACuIDAsiento From cceAsientoCuenta Group By ACuIDAsiento "
                      "Having Abs(Sum(ACuDebe) - Sum(ACuHaber)) > 0.001"),
            0);
}

// A counter at or below a demo key would hand out a key that is taken.
TEST_P(DemoFacts, CountersStartAboveTheDemoKeys) {
  const std::map<std::string, std::string> keys = {{"genMovimientosFrecuentes", "MFrID"},
                                                   {"genRecurrencias", "RecID"},
                                                   {"cceAsientos", "AsiID"},
                                                   {"cceComprobantes", "ComID"},
                                                   {"genEntes", "EntID"}};
  for (const auto& [table, key] : keys) {
    const Variant counter =
        Scalar(*cn, "Select CntValor From genContadores Where CntTabla = '" + table + "'");
    ASSERT_FALSE(counter.IsNull()) << table;
    EXPECT_GT(vb::CDbl(counter), vb::CDbl(Scalar(*cn, "Select Max(" + key + ") From " + table)))
        << table;
  }
}

KMF_INSTANTIATE_ENGINES(DemoFacts);

}  // namespace
}  // namespace kivmovfrec::testing
