// Test helpers: the suite tables on a test database of either engine, created from the DDL
// scripts in schema/ read from the source tree (only the installer's script runner is used, so
// these tests also check the files on disk, not just what the installer embeds).
#pragma once

#include <memory>
#include <string>

#include "kivmovfrec/db.h"
#include "support/db_engines.h"

namespace kivmovfrec::testing {

// Runs every statement of an SQL script file in one transaction (install::RunScript).
void RunSqlFile(Connection& cn, const std::string& path);

// Creates the suite tables from schema/<engine>/schema.sql and, when asked, loads the demo
// company from schema/demo.sql.
void InstallSuiteTables(Connection& cn, bool demo = false);

// An engine test whose database holds the suite tables (no rows).
class SuiteTablesTest : public EngineTest {
 protected:
  void SetUpDatabase() override { InstallSuiteTables(*cn); }
};

}  // namespace kivmovfrec::testing
