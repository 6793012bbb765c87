#include "suite/suite_db.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "storage/install/sql_script.h"

namespace kivmovfrec::testing {

void RunSqlFile(Connection& cn, const std::string& path) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error("no se puede leer " + path);
  std::ostringstream text;
  text << in.rdbuf();
  // One transaction for the whole script: one write to disk instead of one per statement.
  cn.BeginTrans();
  install::RunScript(cn, path, text.str());
  cn.CommitTrans();
}

void InstallSuiteTables(Connection& cn, bool demo) {
  const std::string dir = std::string(KMF_SOURCE_DIR) + "/schema/";
  RunSqlFile(cn,
             dir + (cn.engine() == Engine::PostgreSQL ? "postgresql" : "sqlite") + "/schema.sql");
  if (demo) RunSqlFile(cn, dir + "demo.sql");
}

}  // namespace kivmovfrec::testing
