// Engine-parameterised tests over the suite tables with the demo company: `cn` reaches a fresh
// database (SQLite file or PostgreSQL schema) on which InstallSchema has loaded the demo data.
// Needs the install area linked into the test executable.
#pragma once

#include "kivmovfrec/install.h"
#include "support/db_engines.h"

namespace kivmovfrec::testing {

class DemoEngineTest : public EngineTest {
 protected:
  void SetUpDatabase() override { InstallSchema(*cn, {.demo = true}); }
};

}  // namespace kivmovfrec::testing
