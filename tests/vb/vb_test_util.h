// Helpers shared by the VB function tests.
#pragma once

#include "kivmovfrec/variant.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::vb::testing {

inline Date D(int y, int m, int d, int h = 0, int n = 0, int s = 0) {
  return MakeDate(DateParts{y, m, d, h, n, s});
}

// The number of the VbError that f throws; 0 when it throws none.
inline int ErrorNumber(auto&& f) {
  try {
    f();
  } catch (const VbError& e) {
    return e.number();
  }
  return 0;
}

}  // namespace kivmovfrec::vb::testing
