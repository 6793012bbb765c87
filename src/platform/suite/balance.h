// Account balances from the posted accounting entries.
#pragma once

#include <memory>
#include <string>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::suite {

// The balance of an account at a date: debit minus credit of its lines (cceAsientoCuenta) in
// posted entries (cceAsientos.AsiEstado = 1) dated on or before that day, whatever their time of
// day, in the accounting currency. Drafts and cancelled entries do not count.
class DbAccountBalance final : public IAccountBalance {
 public:
  explicit DbAccountBalance(std::shared_ptr<Connection> cn);
  double Saldo(int32_t cuenta, Date fecha) override;

 private:
  std::shared_ptr<Connection> cn_;
};

// The statement DbAccountBalance runs (exposed for tests and traces).
std::string BalanceSql(int32_t cuenta, Date fecha);

}  // namespace kivmovfrec::suite
