// Table counters: distinct values across processes, transactional draws, late-created rows.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/suite/counter.h"
#include "platform/vb/convert.h"
#include "suite/suite_db.h"

namespace kivmovfrec {
namespace {

using testing::TempDatabase;

int64_t CounterRow(Connection& cn, const std::string& table) {
  auto rs = cn.OpenResultset("Select CntValor From genContadores Where CntTabla = '" + table + "'");
  return rs->Eof() ? -100 : vb::CLng(rs->Get(0));
}

// Child process: draws `count` values on its own connection and writes them to `out`, one a
// line. Exits 0 when every draw succeeded.
[[noreturn]] void DrawInChild(const std::string& uri, const std::string& out, int count) {
  int status = 0;
  try {
    auto cn = OpenConnection(uri);
    std::ofstream file(out);
    for (int i = 0; i < count; ++i) {
      const int32_t value = suite::DrawTableCounter(*cn, "genRecurrencias");
      if (value < 0) status = 3;
      file << value << '\n';
    }
  } catch (...) {
    status = 4;
  }
  _exit(status);
}

TEST(TableCounter, TwoProcessesNeverDrawTheSameValue) {
  TempDatabase db;
  db.InstallSchema();
  constexpr int kEach = 500;
  std::vector<std::string> outputs = {db.path() + ".a", db.path() + ".b"};
  std::vector<pid_t> children;
  for (const std::string& out : outputs) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) DrawInChild(db.uri(), out, kEach);
    children.push_back(pid);
  }
  for (pid_t pid : children) {
    int status = -1;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
  }
  std::set<int32_t> values;
  size_t drawn = 0;
  for (const std::string& out : outputs) {
    std::ifstream in(out);
    int32_t value = 0;
    while (in >> value) {
      values.insert(value);
      ++drawn;
    }
    std::remove(out.c_str());
  }
  EXPECT_EQ(drawn, 2u * kEach);
  EXPECT_EQ(values.size(), 2u * kEach);
  EXPECT_EQ(*values.begin(), 1);
  EXPECT_EQ(*values.rbegin(), 2 * kEach);
  auto cn = db.Open();
  EXPECT_EQ(CounterRow(*cn, "genRecurrencias"), 2 * kEach);
}

// Forwards to a real connection; right after the first counter increment it lets another
// connection draw from a second thread and gives it a moment to run, so a draw whose increment
// and read are not one unit reads the other's value.
class InterleavingConnection : public Connection {
 public:
  InterleavingConnection(std::shared_ptr<Connection> inner, std::string other_uri)
      : inner_(std::move(inner)), other_uri_(std::move(other_uri)) {}
  ~InterleavingConnection() override {
    if (other_.joinable()) other_.join();
  }
  int32_t OtherValue() {
    if (other_.joinable()) other_.join();
    return other_value_;
  }

  Engine engine() const override { return inner_->engine(); }
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql) override {
    return inner_->OpenResultset(sql);
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    return inner_->OpenReadOnly(sql);
  }
  int64_t Execute(std::string_view sql) override {
    const int64_t changed = inner_->Execute(sql);
    if (!started_ && sql.starts_with("Update genContadores")) {
      started_ = true;
      other_ = std::thread([this] {
        auto cn = OpenConnection(other_uri_);
        other_value_ = suite::DrawTableCounter(*cn, "genRecurrencias");
      });
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    return changed;
  }
  void BeginTrans() override { inner_->BeginTrans(); }
  void CommitTrans() override { inner_->CommitTrans(); }
  void RollbackTrans() override { inner_->RollbackTrans(); }
  bool InTransaction() const override { return inner_->InTransaction(); }
  std::string Translate(std::string_view sql) const override { return inner_->Translate(sql); }

 private:
  std::shared_ptr<Connection> inner_;
  std::string other_uri_;
  bool started_ = false;
  std::thread other_;
  int32_t other_value_ = 0;
};

TEST(TableCounter, IncrementAndReadAreOneUnit) {
  TempDatabase db;
  db.InstallSchema();
  db.Open()->Execute("Insert Into genContadores Values ('genRecurrencias', 5)");
  InterleavingConnection cn(db.Open(), db.uri());
  const int32_t mine = suite::DrawTableCounter(cn, "genRecurrencias");
  const int32_t other = cn.OtherValue();
  EXPECT_EQ(mine, 6);
  EXPECT_EQ(other, 7);  // it waited for the first draw to end
}

// Forwards to a real connection; the k-th statement or commit (1-based) throws instead.
class FailingAt : public Connection {
 public:
  FailingAt(std::shared_ptr<Connection> inner, int fail_at)
      : inner_(std::move(inner)), fail_at_(fail_at) {}
  bool failed() const { return failed_; }

  Engine engine() const override { return inner_->engine(); }
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql) override {
    Tick();
    return inner_->OpenResultset(sql);
  }
  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    Tick();
    return inner_->OpenReadOnly(sql);
  }
  int64_t Execute(std::string_view sql) override {
    Tick();
    return inner_->Execute(sql);
  }
  void BeginTrans() override { inner_->BeginTrans(); }
  void CommitTrans() override {
    Tick();
    inner_->CommitTrans();
  }
  void RollbackTrans() override { inner_->RollbackTrans(); }
  bool InTransaction() const override { return inner_->InTransaction(); }
  std::string Translate(std::string_view sql) const override { return inner_->Translate(sql); }

 private:
  void Tick() {
    if (++count_ == fail_at_) {
      failed_ = true;
      throw DbError("fallo provocado");
    }
  }
  std::shared_ptr<Connection> inner_;
  int fail_at_;
  int count_ = 0;
  bool failed_ = false;
};

TEST(TableCounter, AFailingStatementGivesMinusOneAndChangesNothing) {
  TempDatabase db;
  db.InstallSchema();
  auto real = db.Open();
  // Once with the row present and once without it, each statement of the draw fails in turn.
  for (const bool seeded : {true, false}) {
    real->Execute("Delete From genContadores");
    if (seeded) real->Execute("Insert Into genContadores Values ('genRecurrencias', 5)");
    for (int fail_at = 1;; ++fail_at) {
      FailingAt cn(real, fail_at);
      const int32_t value = suite::DrawTableCounter(cn, "genRecurrencias");
      EXPECT_FALSE(real->InTransaction());
      if (!cn.failed()) {
        EXPECT_EQ(value, seeded ? 6 : 1);
        EXPECT_GT(fail_at, 3);
        break;
      }
      EXPECT_EQ(value, -1) << "fallo en la sentencia " << fail_at;
      EXPECT_EQ(CounterRow(*real, "genRecurrencias"), seeded ? 5 : -100);
    }
  }
}

TEST(TableCounter, DrawInsideTransactionFollowsIt) {
  TempDatabase db;
  db.InstallSchema();
  auto cn = db.Open();
  cn->Execute("Insert Into genContadores (CntTabla, CntValor) Values ('cceAsientos', 10)");

  cn->BeginTrans();
  EXPECT_EQ(suite::DrawTableCounter(*cn, "cceAsientos"), 11);
  EXPECT_EQ(suite::DrawTableCounter(*cn, "cceAsientos"), 12);
  EXPECT_TRUE(cn->InTransaction());  // the caller's transaction is left open
  cn->RollbackTrans();
  EXPECT_EQ(CounterRow(*cn, "cceAsientos"), 10);

  cn->BeginTrans();
  EXPECT_EQ(suite::DrawTableCounter(*cn, "cceAsientos"), 11);
  cn->CommitTrans();
  EXPECT_EQ(suite::DrawTableCounter(*cn, "cceAsientos"), 12);
  EXPECT_FALSE(cn->InTransaction());
  EXPECT_EQ(CounterRow(*db.Open(), "cceAsientos"), 12);
}

TEST(TableCounter, RowCreatedInsideRolledBackTransactionDisappears) {
  TempDatabase db;
  db.InstallSchema();
  auto cn = db.Open();
  cn->BeginTrans();
  EXPECT_EQ(suite::DrawTableCounter(*cn, "genLibros"), 1);
  cn->RollbackTrans();
  EXPECT_EQ(CounterRow(*cn, "genLibros"), -100);
  EXPECT_EQ(suite::DrawTableCounter(*cn, "genLibros"), 1);
}

TEST(TableCounter, MissingRowStartsAfterTheLargestStoredKey) {
  TempDatabase db;
  db.InstallSchema();
  auto cn = db.Open();
  cn->Execute(
      "Insert Into genMovimientosFrecuentes (MFrID, MFrEmpresa, MFrTipo, MFrEstado) "
      "Values (40, 1, 1, 0)");
  cn->Execute(
      "Insert Into genMovimientosFrecuentes (MFrID, MFrEmpresa, MFrTipo, MFrEstado) "
      "Values (7, 1, 1, 0)");
  EXPECT_EQ(suite::DrawTableCounter(*cn, "genMovimientosFrecuentes"), 41);
  EXPECT_EQ(suite::DrawTableCounter(*cn, "genMovimientosFrecuentes"), 42);
  // Tables the counter knows nothing about start from 1.
  EXPECT_EQ(suite::DrawTableCounter(*cn, "otraTabla"), 1);
}

TEST(TableCounter, FailuresGiveMinusOneAndLeaveNoTransaction) {
  TempDatabase db;
  auto cn = db.Open();  // no schema: genContadores is missing
  EXPECT_EQ(suite::DrawTableCounter(*cn, "genRecurrencias"), -1);
  EXPECT_FALSE(cn->InTransaction());

  db.InstallSchema();
  EXPECT_EQ(suite::DrawTableCounter(*cn, "gen'Recurrencias"), -1);
  EXPECT_EQ(suite::DrawTableCounter(*cn, ""), -1);
  cn->Execute("Insert Into genContadores (CntTabla, CntValor) Values ('lleno', 2147483647)");
  EXPECT_EQ(suite::DrawTableCounter(*cn, "lleno"), -1);
  EXPECT_EQ(CounterRow(*cn, "lleno"), 2147483647);  // the failed draw was rolled back
  EXPECT_FALSE(cn->InTransaction());
}

}  // namespace
}  // namespace kivmovfrec
