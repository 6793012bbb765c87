// A Connection that forwards to a real one and writes down every statement that goes through
// it (see ForwardingConnection for which): to check how many statements an operation issues, or
// that a refusal came before any.
#pragma once

#include <string>
#include <vector>

#include "support/forwarding_connection.h"

namespace kivmovfrec::testing {

struct RecordedStatement {
  std::string kind;  // "open", "read-only", "execute", "update", "delete"
  std::string sql;   // as the component wrote it, before the engine's translation
};

class RecordingConnection : public ForwardingConnection {
 public:
  using ForwardingConnection::ForwardingConnection;

  const std::vector<RecordedStatement>& statements() const { return log_; }

 protected:
  void Statement(const char* kind, std::string_view sql,
                 const std::function<void()>& run) override {
    log_.push_back({kind, std::string(sql)});
    run();
  }

 private:
  std::vector<RecordedStatement> log_;
};

}  // namespace kivmovfrec::testing
