// A Connection that forwards to a real one and fails on purpose: the k-th statement (1-based)
// throws DbError instead of running. Statements counted are those of ForwardingConnection and,
// when asked, CommitTrans. Used to prove that every writing operation either leaves the
// database as it was or reports the failure.
#pragma once

#include <memory>
#include <string>

#include "support/forwarding_connection.h"

namespace kivmovfrec::testing {

class FaultyConnection : public ForwardingConnection {
 public:
  // fail_at = 0 never fails; count_commit makes CommitTrans a statement too.
  FaultyConnection(std::shared_ptr<Connection> inner, int fail_at, bool count_commit = true)
      : ForwardingConnection(std::move(inner)), fail_at_(fail_at), count_commit_(count_commit) {}

  // Moves the failing statement (0: never), e.g. once the set-up statements are counted.
  void FailAt(int fail_at) { fail_at_ = fail_at; }
  // Statements seen so far (including the failed one).
  int statements() const { return count_; }
  bool failed() const { return failed_; }

  void CommitTrans() override {
    if (count_commit_) Tick("commit");
    inner_->CommitTrans();
  }

 protected:
  void Statement(const char* kind, std::string_view, const std::function<void()>& run) override {
    Tick(kind);
    run();
  }

 private:
  void Tick(const char* what) {
    if (++count_ == fail_at_) {
      failed_ = true;
      throw DbError("fallo inyectado en la sentencia " + std::to_string(count_) + " (" + what +
                    ")");
    }
  }

  int fail_at_;
  bool count_commit_;
  int count_ = 0;
  bool failed_ = false;
};

}  // namespace kivmovfrec::testing
