// A Connection that forwards every call to another one, and a result set that forwards to
// another one: the base of the test decorators (faulty_connection.h, recording_connection.h),
// which override only what they watch.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "kivmovfrec/db.h"

namespace kivmovfrec::testing {

class ForwardingConnection : public Connection {
 public:
  explicit ForwardingConnection(std::shared_ptr<Connection> inner) : inner_(std::move(inner)) {}

  Engine engine() const override { return inner_->engine(); }
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql) override {
    return inner_->OpenResultset(sql);
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    return inner_->OpenReadOnly(sql);
  }
  int64_t Execute(std::string_view sql) override { return inner_->Execute(sql); }
  void BeginTrans() override { inner_->BeginTrans(); }
  void CommitTrans() override { inner_->CommitTrans(); }
  void RollbackTrans() override { inner_->RollbackTrans(); }
  bool InTransaction() const override { return inner_->InTransaction(); }
  std::string Translate(std::string_view sql) const override { return inner_->Translate(sql); }

 protected:
  std::shared_ptr<Connection> inner_;
};

// Update and Delete go through `write(kind, run)`, kind "update" or "delete", which decides
// whether and how `run` (the inner set's write) is called.
class ForwardingResultset : public Resultset {
 public:
  using Write = std::function<void(const char* kind, const std::function<void()>& run)>;
  ForwardingResultset(std::unique_ptr<Resultset> inner, Write write)
      : inner_(std::move(inner)), write_(std::move(write)) {}

  bool Eof() const override { return inner_->Eof(); }
  void MoveNext() override { inner_->MoveNext(); }
  int ColumnCount() const override { return inner_->ColumnCount(); }
  std::string ColumnName(int i) const override { return inner_->ColumnName(i); }
  bool HasColumn(std::string_view n) const override { return inner_->HasColumn(n); }
  Variant Get(int i) const override { return inner_->Get(i); }
  Variant Get(std::string_view n) const override { return inner_->Get(n); }
  void AddNew() override { inner_->AddNew(); }
  void Edit() override { inner_->Edit(); }
  void Set(std::string_view n, const Variant& v) override { inner_->Set(n, v); }
  void Update() override {
    write_("update", [this] { inner_->Update(); });
  }
  void Delete() override {
    write_("delete", [this] { inner_->Delete(); });
  }
  void Close() override { inner_->Close(); }

 private:
  std::unique_ptr<Resultset> inner_;
  Write write_;
};

}  // namespace kivmovfrec::testing
