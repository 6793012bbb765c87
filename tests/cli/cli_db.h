// The movfrec binary run on a test database of each engine (support/db_engines.h: a fresh SQLite
// file or PostgreSQL schema, whose URI movfrec takes as it is). The tests reach that database
// through `cn` only to prepare a case or to read what a command stored.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/db_engines.h"

namespace kmf_cli {

inline std::string Quote(const std::string& arg) {
  std::string q = "'";
  for (char c : arg) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

inline bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// The whole content of a file, which is then removed unless `remove` is false.
inline std::string Slurp(const std::string& path, bool remove = true) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  if (remove) std::remove(path.c_str());
  return text.str();
}

// How one run of movfrec ended: exit status (-1 when it did not exit) and its two outputs.
struct Result {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs the movfrec binary with `args`, standard input closed, MOVFREC_DB set to `env_db` (unset
// when empty). The outputs pass through the files `base`.out and `base`.err.
inline Result RunMovfrec(const std::string& base, const std::vector<std::string>& args,
                         const std::string& env_db = "") {
  std::string cmd = env_db.empty() ? "env -u MOVFREC_DB " : "env MOVFREC_DB=" + Quote(env_db) + " ";
  cmd += Quote(std::string(KMF_BINARY_DIR) + "/cli/movfrec");
  for (const auto& a : args) cmd += " " + Quote(a);
  cmd += " < /dev/null > " + Quote(base + ".out") + " 2> " + Quote(base + ".err");
  const int raw = std::system(cmd.c_str());
  Result r;
  r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  r.out = Slurp(base + ".out");
  r.err = Slurp(base + ".err");
  return r;
}

// A test run once per engine (KMF_INSTANTIATE_ENGINES) on a fresh, empty database whose URI is
// `db_`; `base_` is a path prefix in the temporary folder no other test uses.
class MotorTest : public kivmovfrec::testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    static int serial = 0;
    base_ = ::testing::TempDir() + "movfrec_" + std::to_string(::getpid()) + "_" +
            std::to_string(serial++);
    if (db_) uri_ = db_->uri();
  }

  std::string base_;
  std::string uri_;
};

// A MotorTest whose database holds the demo company (movfrec init --demo), with "today" fixed
// at 10/11/2026 for every run.
class DemoMotorTest : public MotorTest {
 protected:
  void SetUp() override {
    MotorTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    const Result init = Run({"init", "--demo"});
    ASSERT_EQ(init.status, 0) << init.err;
  }

  // Runs movfrec --db <test db> --hoy 2026-11-10 `args`.
  Result Run(const std::vector<std::string>& args) {
    std::vector<std::string> all = {"--db", uri_, "--hoy", "2026-11-10"};
    all.insert(all.end(), args.begin(), args.end());
    return RunMovfrec(base_, all);
  }

  // Runs `args` with --json, which must succeed; what it printed.
  nlohmann::ordered_json RunJson(const std::vector<std::string>& args) {
    std::vector<std::string> all = {"--json"};
    all.insert(all.end(), args.begin(), args.end());
    const Result r = Run(all);
    EXPECT_EQ(r.status, 0) << r.err;
    return r.status == 0 ? nlohmann::ordered_json::parse(r.out) : nlohmann::ordered_json();
  }

  // Runs `args`, which must end with exit `status`, say `texto` on stderr and print nothing.
  void ExpectFails(const std::vector<std::string>& args, int status, const std::string& texto) {
    const Result r = Run(args);
    EXPECT_EQ(r.status, status) << texto;
    EXPECT_TRUE(Has(r.err, texto)) << texto << "\n" << r.err.substr(0, 2000);
    EXPECT_TRUE(r.out.empty()) << r.out;
  }
};

}  // namespace kmf_cli
