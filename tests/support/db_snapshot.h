// The contents of some tables as comparable text, to check that a failed operation left the
// database exactly as it was.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "kivmovfrec/db.h"

namespace kivmovfrec::testing {

using Snapshot = std::map<std::string, std::vector<std::string>>;

inline Snapshot TakeSnapshot(Connection& cn, const std::vector<std::string>& tables) {
  Snapshot snap;
  for (const auto& table : tables) {
    auto rs = cn.OpenResultset("Select * From " + table);
    std::vector<std::string>& rows = snap[table];
    for (; !rs->Eof(); rs->MoveNext()) {
      std::string row;
      for (int i = 0; i < rs->ColumnCount(); ++i) row += DebugString(rs->Get(i)) + "|";
      rows.push_back(std::move(row));
    }
    std::sort(rows.begin(), rows.end());  // row order is not part of the state
  }
  return snap;
}

// The tables the component writes, plus the counters it draws keys from.
inline const std::vector<std::string>& MovementTables() {
  static const std::vector<std::string> kTables = {
      "genMovimientosFrecuentes", "genRenglonMovFrecuentes", "genRecurrencias", "genContadores"};
  return kTables;
}

}  // namespace kivmovfrec::testing
