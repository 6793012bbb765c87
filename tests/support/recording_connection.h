// A Connection that forwards to a real one and writes down every statement that goes through
// it (see ForwardingConnection for which), with the engine's message when it failed: to check
// how many statements an operation issues, that a refusal came before any, or that none failed
// even where the component traps the error and goes on.
#pragma once

#include <string>
#include <vector>

#include "support/forwarding_connection.h"

namespace kivmovfrec::testing {

struct RecordedStatement {
  std::string kind;   // "open", "read-only", "execute", "update", "delete"
  std::string sql;    // as the component wrote it, before the engine's translation
  std::string error;  // "" when it ran
};

class RecordingConnection : public ForwardingConnection {
 public:
  using ForwardingConnection::ForwardingConnection;

  const std::vector<RecordedStatement>& statements() const { return log_; }

 protected:
  void Statement(const char* kind, std::string_view sql,
                 const std::function<void()>& run) override {
    log_.push_back({kind, std::string(sql), ""});
    const size_t at = log_.size() - 1;
    try {
      run();
    } catch (const std::exception& e) {
      log_[at].error = e.what();
      throw;
    }
  }

 private:
  std::vector<RecordedStatement> log_;
};

}  // namespace kivmovfrec::testing
