// Creating the suite tables the component works on, and loading the demo company.
#pragma once

#include "kivmovfrec/db.h"
#include "kivmovfrec/export.h"

namespace kivmovfrec {

struct KMF_API InstallOptions {
  // Also load the demo company (company 1 and its data) when company 1 does not exist yet.
  bool demo = false;
};

// Creates every suite table and index the component reads or writes (those already present are
// left as they are) and, when asked, loads the demo data. Safe to run on every start: a second
// run changes nothing, and the demo rows are inserted only when company 1 is absent, so a
// database holding a real company 1 never receives them.
//
// Everything runs in one transaction on `cn`: on failure it is rolled back, nothing of the run
// remains, and DbError is thrown naming the script and the line of the statement that failed
// together with the engine's message. The connection must not be inside a transaction already
// (DbError otherwise). SQLite and PostgreSQL each get their own DDL (schema/<engine>/); the demo
// data is the same on both.
KMF_API void InstallSchema(Connection& cn, const InstallOptions& opts = {});

}  // namespace kivmovfrec
