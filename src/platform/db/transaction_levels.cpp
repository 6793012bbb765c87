#include "platform/db/transaction_levels.h"

#include "kivmovfrec/db.h"

namespace kivmovfrec::sql {

std::string TransactionLevels::Savepoint(int level) {
  return "kmf_nivel_" + std::to_string(level);
}

void TransactionLevels::Sync() const {
  if (depth_ > 0 && !engine_.in_transaction()) depth_ = 0;
}

int TransactionLevels::Depth() const {
  Sync();
  return depth_;
}

void TransactionLevels::Begin() {
  Sync();
  if (depth_ == 0) {
    broken_ = false;
    engine_.begin();
  } else {
    engine_.run("SAVEPOINT " + Savepoint(depth_));
  }
  ++depth_;
}

void TransactionLevels::Commit() {
  Sync();
  if (depth_ == 0) throw DbError("No hay ninguna transacción en curso para confirmar");
  if (depth_ > 1) {
    // On failure the level stays open, for the caller to roll back.
    engine_.run("RELEASE SAVEPOINT " + Savepoint(depth_ - 1));
    --depth_;
    return;
  }
  if (broken_) {
    Rollback();
    throw DbError(
        "Una parte de la transacción no se pudo deshacer: se deshizo la transacción entera");
  }
  // When the commit fails with the transaction still open the level stays, for the caller to
  // roll back; when the engine ended it, Sync finds depth 0.
  engine_.commit();
  depth_ = 0;
}

void TransactionLevels::Rollback() {
  Sync();
  if (depth_ == 0) return;  // e.g. the engine already ended the transaction
  const int level = depth_--;
  if (level == 1) {
    broken_ = false;
    engine_.rollback();
    return;
  }
  const std::string name = Savepoint(level - 1);
  try {
    engine_.run("ROLLBACK TO SAVEPOINT " + name + "; RELEASE SAVEPOINT " + name);
  } catch (...) {
    broken_ = true;
    throw;
  }
}

}  // namespace kivmovfrec::sql
