// A Connection that forwards to a real one and writes down every statement that goes through
// it: result-set opens, read-only opens, Execute, and the writes of a result set (Update and
// Delete, recorded with the text the set was opened with). A statement that throws is recorded
// with the engine's message before the error goes on to the caller.
//
// The component traps many database errors on purpose (a lookup that fails finds nothing, a
// rate that cannot be read is missing), so a statement an engine refuses can hide behind a
// plausible result; the record shows it.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>
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

  std::unique_ptr<Resultset> OpenResultset(std::string_view sql) override {
    std::unique_ptr<Resultset> rs;
    Record("open", sql, [&] { rs = inner_->OpenResultset(sql); });
    return std::make_unique<ForwardingResultset>(
        std::move(rs),
        [this, text = std::string(sql)](const char* kind, const std::function<void()>& run) {
          Record(kind, text, run);
        });
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    std::unique_ptr<Resultset> rs;
    Record("read-only", sql, [&] { rs = inner_->OpenReadOnly(sql); });
    return rs;
  }
  int64_t Execute(std::string_view sql) override {
    int64_t changed = 0;
    Record("execute", sql, [&] { changed = inner_->Execute(sql); });
    return changed;
  }

 private:
  void Record(const char* kind, std::string_view sql, const std::function<void()>& run) {
    const size_t at = log_.size();
    log_.push_back({kind, std::string(sql), ""});
    try {
      run();
    } catch (const std::exception& e) {
      log_[at].error = e.what();
      throw;
    }
  }

  std::vector<RecordedStatement> log_;
};

}  // namespace kivmovfrec::testing
