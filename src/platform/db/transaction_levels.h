// The nesting of transactions both adapters share: the outermost level is the engine's own
// transaction, every level inside it a savepoint (kmf_nivel_1, kmf_nivel_2, ...).
//
// The levels are counted here; the engine's own state wins when they disagree: once the engine
// is outside a transaction (it ended it itself, or the connection is gone), every level is
// gone and the depth reads 0.
//
// An inner level whose rollback failed leaves its work possibly in place. From then on the
// enclosing transaction cannot be committed: its CommitTrans rolls the whole transaction back
// and throws DbError, so nothing a caller believed undone is ever committed.
#pragma once

#include <functional>
#include <string>

namespace kivmovfrec::sql {

class TransactionLevels {
 public:
  struct Engine {
    std::function<bool()> in_transaction;         // the engine's own state
    std::function<void(const std::string&)> run;  // runs savepoint statements; throws DbError
    std::function<void()> begin;                  // starts the outermost transaction
    std::function<void()> commit;                 // commits it; throws when it did not commit
    std::function<void()> rollback;               // rolls it back
  };

  explicit TransactionLevels(Engine engine) : engine_(std::move(engine)) {}

  // Connection::BeginTrans, CommitTrans, RollbackTrans and TransactionDepth.
  void Begin();
  void Commit();
  void Rollback();
  int Depth() const;

 private:
  void Sync() const;
  static std::string Savepoint(int level);

  Engine engine_;
  mutable int depth_ = 0;
  bool broken_ = false;  // an inner rollback failed; the outermost level may only roll back
};

}  // namespace kivmovfrec::sql
