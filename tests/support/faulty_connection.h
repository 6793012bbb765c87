// A Connection that forwards to a real one and fails on purpose: the k-th statement (1-based)
// throws DbError instead of running. Statements counted are result-set opens, Execute, the
// writes of a result set (Update, Delete) and, when asked, CommitTrans. Used to prove that
// every writing operation either leaves the database as it was or reports the failure.
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

  std::unique_ptr<Resultset> OpenResultset(std::string_view sql) override {
    Tick("open");
    return std::make_unique<ForwardingResultset>(
        inner_->OpenResultset(sql), [this](const char* kind, const std::function<void()>& run) {
          Tick(kind);
          run();
        });
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    Tick("open");
    return inner_->OpenReadOnly(sql);
  }
  int64_t Execute(std::string_view sql) override {
    Tick("execute");
    return inner_->Execute(sql);
  }
  void CommitTrans() override {
    if (count_commit_) Tick("commit");
    inner_->CommitTrans();
  }

 private:
  void Tick(const char* what) {
    ++count_;
    if (count_ == fail_at_) {
      failed_ = true;
      throw DbError(std::string("fallo inyectado en la sentencia ") + std::to_string(count_) +
                    " (" + what + ")");
    }
  }

  int fail_at_;
  bool count_commit_;
  int count_ = 0;
  bool failed_ = false;
};

}  // namespace kivmovfrec::testing
