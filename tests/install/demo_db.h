// Small query shortcuts shared by the database tests.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"

namespace kivmovfrec::testing {

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
