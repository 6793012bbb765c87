#include "suite/suite_db.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

namespace kivmovfrec::testing {

void RunSqlFile(Connection& cn, const std::string& path) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error("no se puede leer " + path);
  std::ostringstream text;
  std::string line;
  while (std::getline(in, line)) {
    // Comments only start lines or follow code outside quotes in these scripts.
    bool quoted = false;
    size_t cut = line.size();
    for (size_t i = 0; i + 1 < line.size(); ++i) {
      if (line[i] == '\'') quoted = !quoted;
      if (!quoted && line[i] == '-' && line[i + 1] == '-') {
        cut = i;
        break;
      }
    }
    text << line.substr(0, cut) << '\n';
  }
  const std::string all = text.str();
  // One transaction for the whole script: one write to disk instead of one per statement.
  cn.BeginTrans();
  std::string statement;
  bool quoted = false;
  for (char c : all) {
    if (c == '\'') quoted = !quoted;
    if (c == ';' && !quoted) {
      if (statement.find_first_not_of(" \t\r\n") != std::string::npos) cn.Execute(statement);
      statement.clear();
    } else {
      statement += c;
    }
  }
  if (statement.find_first_not_of(" \t\r\n") != std::string::npos) cn.Execute(statement);
  cn.CommitTrans();
}

void InstallSuiteTables(Connection& cn, bool demo) {
  const std::string dir = std::string(KMF_SOURCE_DIR) + "/schema/";
  RunSqlFile(cn,
             dir + (cn.engine() == Engine::PostgreSQL ? "postgresql" : "sqlite") + "/schema.sql");
  if (demo) RunSqlFile(cn, dir + "demo.sql");
}

}  // namespace kivmovfrec::testing
