// Engine-parameterised tests over the suite tables: `cn` reaches a fresh database (SQLite file or
// PostgreSQL schema) on which InstallSchema has created the tables, empty (SuiteTablesTest) or
// with the demo company (DemoEngineTest). Needs the install area linked into the test executable.
#pragma once

#include "kivmovfrec/install.h"
#include "support/db_engines.h"

namespace kivmovfrec::testing {

class SuiteTablesTest : public EngineTest {
 protected:
  void SetUpDatabase() override { InstallSchema(*cn); }
};

class DemoEngineTest : public EngineTest {
 protected:
  void SetUpDatabase() override { InstallSchema(*cn, {.demo = true}); }
};

}  // namespace kivmovfrec::testing
