// Thin ownership wrappers over the SQLite C API, shared by the connection and its result sets.
// Internal to the SQLite adapter.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/variant.h"
#include "platform/db/bounded_cache.h"

namespace kivmovfrec::sqlite {

// Prepared statements a handle keeps for reuse, at most.
inline constexpr size_t kKeptStatements = 96;

// An open sqlite3 handle. Shared by the connection and the result sets it opened, so a set
// that outlives its connection object still has a valid handle.
//
// It keeps the statements it prepared once they are done (reset, their values unbound), one per
// text, for the `kept` texts used most recently: preparing a statement (parsing, planning) costs
// more than running the component's small statements. A kept statement whose tables changed
// since is prepared again by SQLite at its next step.
class Database {
 public:
  Database(const std::string& path, int busy_timeout_ms, size_t kept = kKeptStatements);
  // Finalises the kept statements, then closes the handle.
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  sqlite3* get() const { return db_; }
  bool in_memory() const { return in_memory_; }

  // Throws DbError with the engine's last message and the statement.
  [[noreturn]] void Fail(std::string_view sql) const;

  // Runs statements that return nothing interesting (PRAGMA, BEGIN...). A text of one
  // statement (no ';') runs through a kept statement; several run through sqlite3_exec.
  // Throws DbError.
  void Exec(std::string_view sql);

  // A statement for exactly `sql` (text after it other than blanks, comments and ";", and empty
  // text, throw DbError with `shown`): the kept one when there is one, which is then no longer
  // kept until given back, else a new one. `key` receives the text to give it back under.
  sqlite3_stmt* Acquire(std::string_view sql, std::string_view shown, std::string& key);
  // Takes back a statement from Acquire: resets it, unbinds its values and keeps it as the one
  // for `key`. The one kept before for the same text, or the least recently used when the
  // bound is reached, is finalised.
  void Release(sqlite3_stmt* stmt, std::string&& key) noexcept;
  // How many statements are kept (not those in use).
  size_t kept() const { return kept_.size(); }

 private:
  sqlite3* db_ = nullptr;
  bool in_memory_ = false;
  sql::BoundedCache<sqlite3_stmt*> kept_;
};

// While it lives, the statements of `db` that run past `limit` from its creation are
// interrupted (SQLITE_INTERRUPT): a progress handler looks at the clock every few thousand
// virtual-machine steps. A limit of zero or less installs nothing. Only one at a time per handle;
// it removes the handler when destroyed, so other statements are never affected.
class Deadline {
 public:
  Deadline(sqlite3* db, std::chrono::milliseconds limit);
  ~Deadline();
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;

  // Whether the handler interrupted a statement.
  bool expired() const { return expired_; }

 private:
  static int Check(void* self);

  sqlite3* db_ = nullptr;
  std::chrono::steady_clock::time_point at_;
  bool expired_ = false;
};

// A prepared statement, taken from the database's kept ones and given back when destroyed.
// `shown` is the statement as reported in error messages; it must outlive the Statement.
class Statement {
 public:
  // Exactly one statement; text after it (other than blanks, comments and ";") throws DbError,
  // as does empty text.
  Statement(std::shared_ptr<Database> db, std::string_view sql, std::string_view shown);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  sqlite3_stmt* get() const { return stmt_; }
  std::string_view shown() const { return shown_; }
  bool read_only() const { return sqlite3_stmt_readonly(stmt_) != 0; }

  // Binds parameter `index` (1-based). Throws DbError for an Object.
  void Bind(int index, const Variant& value);
  void BindInt64(int index, int64_t value);
  // Advances; true on a row, false when done. Throws DbError on failure.
  bool Step();

 private:
  std::shared_ptr<Database> db_;
  sqlite3_stmt* stmt_ = nullptr;
  std::string_view shown_;
  std::string key_;  // the text it is kept under
};

struct ColumnInfo {
  std::string name;
  bool date = false;  // declared type mentions DATE or TIME
};

std::vector<ColumnInfo> ReadColumns(sqlite3_stmt* stmt);
// The value of column `index` of the current row, mapped as described in sqlite_connection.h.
Variant ReadValue(sqlite3_stmt* stmt, int index, bool date_column);

}  // namespace kivmovfrec::sqlite
