// A Connection that forwards to a real one and fails on purpose: the k-th statement (1-based)
// throws DbError instead of running. Statements counted are result-set opens, Execute, the
// writes of a result set (Update, Delete) and, when asked, CommitTrans. Used to prove that
// every writing operation either leaves the database as it was or reports the failure.
#pragma once

#include <memory>
#include <string>

#include "kivmovfrec/db.h"

namespace kivmovfrec::testing {

class FaultyConnection : public Connection {
 public:
  // fail_at = 0 never fails; count_commit makes CommitTrans a statement too.
  FaultyConnection(std::shared_ptr<Connection> inner, int fail_at, bool count_commit = true)
      : inner_(std::move(inner)), fail_at_(fail_at), count_commit_(count_commit) {}

  // Moves the failing statement (0: never), e.g. once the set-up statements are counted.
  void FailAt(int fail_at) { fail_at_ = fail_at; }
  // Statements seen so far (including the failed one).
  int statements() const { return count_; }
  bool failed() const { return failed_; }

  Engine engine() const override { return inner_->engine(); }
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql) override {
    Tick("open");
    return std::make_unique<WrappedSet>(*this, inner_->OpenResultset(sql));
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    Tick("open");
    return inner_->OpenReadOnly(sql);
  }
  int64_t Execute(std::string_view sql) override {
    Tick("execute");
    return inner_->Execute(sql);
  }
  void BeginTrans() override { inner_->BeginTrans(); }
  void CommitTrans() override {
    if (count_commit_) Tick("commit");
    inner_->CommitTrans();
  }
  void RollbackTrans() override { inner_->RollbackTrans(); }
  bool InTransaction() const override { return inner_->InTransaction(); }
  std::string Translate(std::string_view sql) const override { return inner_->Translate(sql); }

 private:
  class WrappedSet : public Resultset {
   public:
    WrappedSet(FaultyConnection& owner, std::unique_ptr<Resultset> inner)
        : owner_(owner), inner_(std::move(inner)) {}
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
      owner_.Tick("update");
      inner_->Update();
    }
    void Delete() override {
      owner_.Tick("delete");
      inner_->Delete();
    }
    void Close() override { inner_->Close(); }

   private:
    FaultyConnection& owner_;
    std::unique_ptr<Resultset> inner_;
  };

  void Tick(const char* what) {
    ++count_;
    if (count_ == fail_at_) {
      failed_ = true;
      throw DbError(std::string("fallo inyectado en la sentencia ") + std::to_string(count_) +
                    " (" + what + ")");
    }
  }

  std::shared_ptr<Connection> inner_;
  int fail_at_;
  bool count_commit_;
  int count_ = 0;
  bool failed_ = false;
};

}  // namespace kivmovfrec::testing
