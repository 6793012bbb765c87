// A Connection that forwards to a real one and writes down every statement that goes through
// it (see ForwardingConnection for which). A statement that throws is recorded with the
// engine's message before the error goes on to the caller.
//
// The component traps many database errors on purpose (a lookup that fails finds nothing, a
// rate that cannot be read is missing), so a statement an engine refuses can hide behind a
// plausible result; the record shows it.
#pragma once

#include <exception>
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
    const size_t at = log_.size();
    log_.push_back({kind, std::string(sql), ""});
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
