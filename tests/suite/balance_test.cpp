// Account balances from posted entries.
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/suite/balance.h"
#include "platform/suite/clock.h"
#include "support/demo_engine.h"

namespace kivmovfrec {
namespace {

using suite::SerialOf;
class Balance : public testing::SuiteTablesTest {
 protected:
  // One entry with a single line on `cuenta`.
  void Entry(int id, const std::string& fecha, int estado, int cuenta, double debe, double haber) {
    cn->Execute("Insert Into cceAsientos (AsiID, AsiEmpresa, AsiFecha, AsiEstado) Values (" +
                std::to_string(id) + ", 1, '" + fecha + "', " + std::to_string(estado) + ")");
    cn->Execute(
        "Insert Into cceAsientoCuenta (ACuIDAsiento, ACuOrden, ACuCuenta, ACuDebe, ACuHaber) "
        "Values (" +
        std::to_string(id) + ", 1, " + std::to_string(cuenta) + ", " + std::to_string(debe) + ", " +
        std::to_string(haber) + ")");
  }
};

TEST_P(Balance, CountsPostedEntriesUpToTheEndOfTheDay) {
  Entry(1, "2024-02-28 09:00:00", 1, 120, 1000.10, 0);
  Entry(2, "2024-02-29 23:59:59", 1, 120, 0, 250.05);
  Entry(3, "2024-02-29", 1, 120, 10, 0);  // stored without a time
  Entry(4, "2024-03-01 00:00:00", 1, 120, 5000, 0);
  Entry(5, "2024-02-10 12:00:00", 0, 120, 777, 0);  // draft
  Entry(6, "2024-02-10 12:00:00", 2, 120, 888, 0);  // annulled
  Entry(7, "2024-02-10 12:00:00", 1, 121, 999, 0);  // another account

  suite::DbAccountBalance balance(cn);
  EXPECT_DOUBLE_EQ(balance.Saldo(120, SerialOf(2024, 2, 27)), 0);
  EXPECT_DOUBLE_EQ(balance.Saldo(120, SerialOf(2024, 2, 28)), 1000.10);
  EXPECT_DOUBLE_EQ(balance.Saldo(120, SerialOf(2024, 2, 29)), 760.05);
  // The time of day asked is ignored: the whole day counts.
  EXPECT_DOUBLE_EQ(balance.Saldo(120, Date{SerialOf(2024, 2, 29).serial + 0.25}), 760.05);
  EXPECT_DOUBLE_EQ(balance.Saldo(120, SerialOf(2024, 3, 1)), 5760.05);
  EXPECT_DOUBLE_EQ(balance.Saldo(121, SerialOf(2024, 3, 1)), 999);
  EXPECT_DOUBLE_EQ(balance.Saldo(999, SerialOf(2024, 3, 1)), 0);
}

TEST_P(Balance, NullAmountsCountAsZero) {
  cn->Execute(
      "Insert Into cceAsientos (AsiID, AsiEmpresa, AsiFecha, AsiEstado) Values (1, 1, "
      "'2024-01-05 00:00:00', 1)");
  cn->Execute(
      "Insert Into cceAsientoCuenta (ACuIDAsiento, ACuOrden, ACuCuenta, ACuDebe, ACuHaber) Values "
      "(1, 1, 120, 40, Null), (1, 2, 120, Null, 15.5)");
  EXPECT_DOUBLE_EQ(suite::DbAccountBalance(cn).Saldo(120, SerialOf(2024, 1, 5)), 24.5);
}

using BalanceMissingTables = testing::EngineTest;

TEST_P(BalanceMissingTables, FailureIsADatabaseError) {
  suite::DbAccountBalance balance(cn);
  EXPECT_THROW(balance.Saldo(1, SerialOf(2024, 1, 1)), DbError);
}

KMF_INSTANTIATE_ENGINES(Balance);
KMF_INSTANTIATE_ENGINES(BalanceMissingTables);

}  // namespace
}  // namespace kivmovfrec
