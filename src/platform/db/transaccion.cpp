// The transaction guard (kivmovfrec/db.h).
#include "kivmovfrec/db.h"

namespace kivmovfrec {

Transaccion::Transaccion(Connection& cn) : cn_(cn) {
  cn_.BeginTrans();
  nivel_ = cn_.TransactionDepth();
}

Transaccion::~Transaccion() {
  if (terminada_) return;
  try {
    Rollback();
  } catch (...) {
    // A destructor never throws; the connection is unusable anyway when a rollback fails, and
    // the enclosing level refuses to commit (see Connection).
  }
}

void Transaccion::Commit() {
  if (terminada_) throw DbError("La transacción ya terminó");
  if (cn_.TransactionDepth() != nivel_) {
    throw DbError("No se puede confirmar una transacción con otra abierta dentro de ella");
  }
  cn_.CommitTrans();
  terminada_ = true;
}

void Transaccion::Rollback() {
  if (terminada_) return;
  terminada_ = true;
  // Levels left open inside this one go with it. The depth falls by one each time (or to 0
  // when the engine ended the transaction), so the loop ends.
  for (int depth = cn_.TransactionDepth(); depth >= nivel_; depth = cn_.TransactionDepth()) {
    cn_.RollbackTrans();
    if (cn_.TransactionDepth() >= depth) break;
  }
}

}  // namespace kivmovfrec
