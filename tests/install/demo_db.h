// Helpers shared by the install tests: a fresh in-memory database and small query shortcuts.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"
#include "kivmovfrec/install.h"

namespace kivmovfrec::testing {

// A private in-memory database with the suite tables and, when asked, the demo company.
inline std::shared_ptr<Connection> OpenInstalledDb(bool demo = true) {
  auto cn = OpenConnection("sqlite::memory:");
  InstallSchema(*cn, {.demo = demo});
  return cn;
}

// First column of the first row, Null when there is no row.
inline Variant Scalar(Connection& cn, std::string_view sql) {
  auto rs = cn.OpenResultset(sql);
  return rs->Eof() ? Variant::Null() : rs->Get(0);
}

// Number of rows the statement returns, read to the end.
inline int CountRows(Connection& cn, std::string_view sql) {
  auto rs = cn.OpenResultset(sql);
  int n = 0;
  for (; !rs->Eof(); rs->MoveNext()) ++n;
  return n;
}

}  // namespace kivmovfrec::testing
