// The SQLite adapter's entry point. This header does not expose sqlite3.h; only the .cpp files
// of this folder include it.
#pragma once

#include <memory>
#include <string>

#include "kivmovfrec/db.h"

namespace kivmovfrec::sqlite {

struct Options {
  // How long a statement waits for another connection's lock before failing with "database is
  // locked". Long enough for another saver's transaction to finish.
  int busy_timeout_ms = 10000;
};

// Opens (creating when absent) the database file at `path`, or a private in-memory database
// for ":memory:". A file database runs in WAL mode. Throws DbError when the file cannot be
// opened or is not an SQLite database; the file is then left as it was.
//
// The connection:
//   * translates every statement from the suite's dialect (sql::TranslateSql, SQLite target),
//     keeping the translation of the texts used most recently (translation_cache.h), and
//     replaces LIKE by one that also ignores the case of accented letters (sqlite_like.h);
//   * keeps its prepared statements for reuse, one per text, for the texts used most recently
//     (Database in sqlite_database.h); a kept statement whose tables changed is prepared again
//     by SQLite itself, and a set reads its columns after the first step, so it sees them as
//     they are;
//   * is used from one thread at a time: the handle is opened without SQLite's own mutex;
//   * nests transactions as savepoints inside BEGIN IMMEDIATE (transaction_levels.h);
//   * reads all rows of a result set when it is opened (the component's sets are small), so
//     rows can be deleted while walking a set and no statement stays open between calls;
//     OpenReadOnlyRows stops stepping the statement at the rows asked for;
//   * runs the statements of OpenReadOnly / OpenReadOnlyRows under the connection's query
//     limit with a progress handler installed for that statement only (Deadline);
//   * maps values: INTEGER -> Long (Double when it does not fit 32 bits), REAL -> Double,
//     TEXT -> String, BLOB -> String of its bytes, NULL -> Null; a column declared with a type
//     containing DATE or TIME whose text is ISO "yyyy-mm-dd[ hh:nn[:ss]]" -> Date;
//   * binds the values given beside a statement to its `?` placeholders, and written values:
//   Null/Empty -> NULL, Boolean -> 1/0, Byte/Integer/Long -> INTEGER,
//     Single/Double/Currency -> REAL, Date -> TEXT "yyyy-mm-dd hh:nn:ss", String -> TEXT;
//     an Object throws DbError.
std::shared_ptr<Connection> OpenSqlite(const std::string& path, const Options& options = {});

}  // namespace kivmovfrec::sqlite
