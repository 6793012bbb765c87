// Test doubles shared by the model tests.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::testing {

// Counter service handing out 100, 101, ... or, when `falla`, always -1. Remembers the tables
// asked for.
class FakeDBFncs : public IDBFncs {
 public:
  explicit FakeDBFncs(bool falla = false) : falla_(falla) {}
  int32_t GetTableCounter(std::string_view table) override {
    tablas.emplace_back(table);
    return falla_ ? -1 : siguiente++;
  }
  Variant GetSetting(std::string_view name) override {
    return name == "Idioma" ? idioma : Variant();
  }
  void ShowHelp(int) override {}
  bool VincularAvisos(int32_t, const std::string&) override { return true; }

  int32_t siguiente = 100;
  Variant idioma;
  std::vector<std::string> tablas;

 private:
  bool falla_;
};

// A clock stopped at one moment.
class FixedTestClock : public IClock {
 public:
  explicit FixedTestClock(Date now) : now_(now) {}
  Date Now() override { return now_; }
  Date Today() override { return Date{static_cast<double>(static_cast<long long>(now_.serial))}; }

 private:
  Date now_;
};

// Passes every call to a real connection and records the SQL text of each statement, so a test
// can tell exactly which statements were built.
class SpyConnection : public Connection {
 public:
  explicit SpyConnection(std::shared_ptr<Connection> real) : real_(std::move(real)) {}
  Engine engine() const override { return real_->engine(); }
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql) override {
    sentencias.emplace_back(sql);
    return real_->OpenResultset(sql);
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    sentencias.emplace_back(sql);
    return real_->OpenReadOnly(sql);
  }
  int64_t Execute(std::string_view sql) override {
    sentencias.emplace_back(sql);
    return real_->Execute(sql);
  }
  void BeginTrans() override { real_->BeginTrans(); }
  void CommitTrans() override { real_->CommitTrans(); }
  void RollbackTrans() override { real_->RollbackTrans(); }
  bool InTransaction() const override { return real_->InTransaction(); }
  std::string Translate(std::string_view sql) const override { return real_->Translate(sql); }

  std::vector<std::string> sentencias;

 private:
  std::shared_ptr<Connection> real_;
};

}  // namespace kivmovfrec::testing
