#include "kivmovfrec/install.h"

#include <exception>

#include <fmt/format.h>

#include "storage/install/embedded.h"
#include "storage/install/sql_script.h"

namespace kivmovfrec {

namespace {

// The demo data belongs to company 1; its presence means the demo (or a real company 1) is
// already there.
bool CompanyExists(Connection& cn, int id) {
  auto rs = cn.OpenResultset(fmt::format("Select EmpID From cceEmpresas Where EmpID = {}", id));
  return !rs->Eof();
}

void Install(Connection& cn, const InstallOptions& opts) {
  const bool pg = cn.engine() == Engine::PostgreSQL;
  install::RunScript(cn, "schema.sql", pg ? embedded::schema_postgresql : embedded::schema_sqlite);
  if (opts.demo && !CompanyExists(cn, 1)) {
    install::RunScript(cn, "demo.sql", embedded::demo);
  }
}

}  // namespace

void InstallSchema(Connection& cn, const InstallOptions& opts) {
  if (cn.InTransaction()) {
    throw DbError("InstallSchema: the connection is already inside a transaction");
  }
  try {
    // Whatever fails, nothing of this run stays.
    Transaccion transaccion(cn);
    Install(cn, opts);
    transaccion.Commit();
  } catch (const DbError& e) {
    throw DbError(fmt::format("InstallSchema: {}", e.what()), e.kind());
  } catch (const std::exception& e) {
    throw DbError(fmt::format("InstallSchema: {}", e.what()));
  }
}

}  // namespace kivmovfrec
