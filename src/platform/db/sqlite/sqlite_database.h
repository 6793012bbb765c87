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

namespace kivmovfrec::sqlite {

// An open sqlite3 handle. Shared by the connection and the result sets it opened, so a set
// that outlives its connection object still has a valid handle.
class Database {
 public:
  Database(const std::string& path, int busy_timeout_ms);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  sqlite3* get() const { return db_; }
  bool in_memory() const { return in_memory_; }

  // Throws DbError with the engine's last message and the statement.
  [[noreturn]] void Fail(std::string_view sql) const;

  // Runs statements that return nothing interesting (PRAGMA, BEGIN...). Throws DbError.
  void Exec(const char* sql) const;

 private:
  sqlite3* db_ = nullptr;
  bool in_memory_ = false;
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

// A prepared statement. `shown` is the statement as reported in error messages.
class Statement {
 public:
  // Prepares exactly one statement; text after it (other than blanks, comments and ";") throws
  // DbError, as does empty text.
  Statement(std::shared_ptr<Database> db, std::string_view sql, std::string_view shown);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  sqlite3_stmt* get() const { return stmt_; }
  const std::string& shown() const { return shown_; }
  bool read_only() const { return sqlite3_stmt_readonly(stmt_) != 0; }

  // Binds parameter `index` (1-based). Throws DbError for an Object.
  void Bind(int index, const Variant& value);
  void BindInt64(int index, int64_t value);
  // Advances; true on a row, false when done. Throws DbError on failure.
  bool Step();

 private:
  std::shared_ptr<Database> db_;
  sqlite3_stmt* stmt_ = nullptr;
  std::string shown_;
};

struct ColumnInfo {
  std::string name;
  bool date = false;  // declared type mentions DATE or TIME
};

std::vector<ColumnInfo> ReadColumns(sqlite3_stmt* stmt);
// The value of column `index` of the current row, mapped as described in sqlite_connection.h.
Variant ReadValue(sqlite3_stmt* stmt, int index, bool date_column);

}  // namespace kivmovfrec::sqlite
