// Result sets of the SQLite adapter. Internal to the adapter.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/db.h"
#include "platform/db/materialised_resultset.h"
#include "platform/db/sqlite/sqlite_database.h"

namespace kivmovfrec::sqlite {

// Name of the hidden column that carries each row's rowid in an updatable set.
inline constexpr const char* kRowidAlias = "kmf_rowid__";

// The table behind an updatable set; its rows are found again by rowid.
using WriteTarget = sql::TableColumns;

// Reads the rows of `stmt` at once, at most `max_rows` of them; with `more`, whether the
// statement had another row after those (stepped once more to know). With a table, the
// statement is `SELECT rowid AS kRowidAlias, * FROM table ...`: its first column, hidden from
// the reader, identifies each row, the others are the table's columns, and the set is
// updatable.
std::unique_ptr<Resultset> MakeResultset(std::shared_ptr<Database> db, Statement& stmt,
                                         std::optional<std::string> table,
                                         size_t max_rows = SIZE_MAX, bool* more = nullptr);

}  // namespace kivmovfrec::sqlite
