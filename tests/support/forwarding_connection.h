// A Connection that forwards every call to another one: the base of the test decorators
// (faulty_connection.h, recording_connection.h). Every statement (result-set opens, read-only
// opens, Execute, and the Update and Delete of a result set it opened) runs through
// Statement(kind, sql, run), which a decorator overrides to watch or fail it.
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
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql,
                                           const DbParams& params = {}) override {
    std::unique_ptr<Resultset> rs;
    Statement("open", sql, [&] { rs = inner_->OpenResultset(sql, params); });
    return std::make_unique<Rows>(std::move(rs), this, std::string(sql));
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    std::unique_ptr<Resultset> rs;
    Statement("read-only", sql, [&] { rs = inner_->OpenReadOnly(sql); });
    return rs;
  }
  int64_t Execute(std::string_view sql, const DbParams& params = {}) override {
    int64_t changed = 0;
    Statement("execute", sql, [&] { changed = inner_->Execute(sql, params); });
    return changed;
  }
  void BeginTrans() override { inner_->BeginTrans(); }
  void CommitTrans() override { inner_->CommitTrans(); }
  void RollbackTrans() override { inner_->RollbackTrans(); }
  int TransactionDepth() const override { return inner_->TransactionDepth(); }
  bool InTransaction() const override { return inner_->InTransaction(); }
  std::string Translate(std::string_view sql) const override { return inner_->Translate(sql); }

 protected:
  // kind: "open", "read-only", "execute", "update" or "delete"; sql: the statement as written
  // (for a write, the text its set was opened with). Must call `run` to let it through.
  virtual void Statement(const char* /*kind*/, std::string_view /*sql*/,
                         const std::function<void()>& run) {
    run();
  }

  std::shared_ptr<Connection> inner_;

 private:
  // A result set whose writes go through the connection's Statement.
  class Rows : public Resultset {
   public:
    Rows(std::unique_ptr<Resultset> inner, ForwardingConnection* cn, std::string sql)
        : inner_(std::move(inner)), cn_(cn), sql_(std::move(sql)) {}
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
      cn_->Statement("update", sql_, [this] { inner_->Update(); });
    }
    void Delete() override {
      cn_->Statement("delete", sql_, [this] { inner_->Delete(); });
    }
    void Close() override { inner_->Close(); }

   private:
    std::unique_ptr<Resultset> inner_;
    ForwardingConnection* cn_;
    std::string sql_;
  };
};

}  // namespace kivmovfrec::testing
