#include "platform/db/sqlite/sqlite_database.h"

#include <fmt/format.h>

#include <cstdint>
#include <limits>
#include <type_traits>

#include "kivmovfrec/db.h"
#include "platform/db/dialect.h"
#include "platform/db/sql_tokens.h"
#include "platform/db/sqlite/sqlite_like.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::sqlite {

namespace {

bool MentionsDate(const char* decltype_text) {
  if (decltype_text == nullptr) return false;
  // "DATE" or "TIME" anywhere, in any case, without building an upper-case copy.
  for (const char* p = decltype_text; p[0] != '\0'; ++p) {
    for (const char* word : {"DATE", "TIME"}) {
      size_t i = 0;
      while (word[i] != '\0' && p[i] != '\0' && (p[i] == word[i] || p[i] == word[i] - 'A' + 'a')) {
        ++i;
      }
      if (word[i] == '\0') return true;
    }
  }
  return false;
}

// The kind of failure behind SQLite's extended result code.
DbErrorKind KindOf(int extended_code) {
  switch (extended_code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return DbErrorKind::Busy;
    case SQLITE_INTERRUPT:
      return DbErrorKind::Timeout;
    case SQLITE_CONSTRAINT:
      return DbErrorKind::Constraint;
    case SQLITE_READONLY:
      return DbErrorKind::ReadOnly;
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR:
    case SQLITE_NOTADB:
      return DbErrorKind::ConnectionLost;
    default:
      return DbErrorKind::Other;
  }
}

}  // namespace

Database::Database(const std::string& path, int busy_timeout_ms, size_t kept)
    : in_memory_(path == ":memory:"), kept_(kept) {
  // A connection is used from one thread at a time (Connection is not thread-safe), so the
  // handle goes without SQLite's own mutex, which every call would otherwise take.
  int rc =
      sqlite3_open_v2(path.c_str(), &db_,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  if (rc != SQLITE_OK) {
    std::string msg = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(rc);
    sqlite3_close_v2(db_);
    db_ = nullptr;
    throw DbError(fmt::format("No se pudo abrir la base de datos {}: {}", path, msg),
                  DbErrorKind::ConnectionLost);
  }
  sqlite3_extended_result_codes(db_, 1);
  sqlite3_busy_timeout(db_, busy_timeout_ms);
  try {
    // The first statement reads the file header: a file that is not a database fails here,
    // before anything is written to it.
    Exec("PRAGMA schema_version");
    if (!RegisterLike(db_)) Fail("like()");
    if (!in_memory_) Exec("PRAGMA journal_mode=WAL");
  } catch (const DbError& e) {
    while (auto kept = kept_.TakeOldest()) sqlite3_finalize(kept->second);
    sqlite3_close_v2(db_);
    db_ = nullptr;
    throw DbError(fmt::format("No se pudo abrir la base de datos {}: {}", path, e.what()),
                  e.kind());
  }
}

Database::~Database() {
  while (auto kept = kept_.TakeOldest()) sqlite3_finalize(kept->second);
  sqlite3_close_v2(db_);
}

void Database::Fail(std::string_view sql) const {
  const std::string_view message = sqlite3_errmsg(db_);
  DbErrorKind kind = KindOf(sqlite3_extended_errcode(db_));
  // SQLite reports an unknown table or column as a plain SQLITE_ERROR; only its text tells.
  if (kind == DbErrorKind::Other &&
      (message.starts_with("no such table") || message.starts_with("no such column"))) {
    kind = DbErrorKind::MissingTable;
  }
  throw DbError(kind, std::string(message), std::string(sql));
}

void Database::Exec(std::string_view sql) {
  if (sql.find(';') == std::string_view::npos) {
    std::string key;
    sqlite3_stmt* stmt = Acquire(sql, sql, key);
    int rc = SQLITE_ROW;
    while (rc == SQLITE_ROW) rc = sqlite3_step(stmt);
    if (rc != SQLITE_DONE) {
      try {
        Fail(sql);
      } catch (...) {
        Release(stmt, std::move(key));
        throw;
      }
    }
    Release(stmt, std::move(key));
    return;
  }
  const std::string text(sql);
  if (sqlite3_exec(db_, text.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail(sql);
}

sqlite3_stmt* Database::Acquire(std::string_view sql, std::string_view shown, std::string& key) {
  if (auto kept = kept_.Take(sql)) {
    key = std::move(kept->first);
    return kept->second;
  }
  if (sql.size() > static_cast<size_t>(std::numeric_limits<int>::max())) {
    throw DbError("La sentencia SQL es demasiado larga");
  }
  const char* tail = nullptr;
  sqlite3_stmt* stmt = nullptr;
  int rc = sqlite3_prepare_v3(db_, sql.data(), static_cast<int>(sql.size()),
                              SQLITE_PREPARE_PERSISTENT, &stmt, &tail);
  if (rc != SQLITE_OK) Fail(shown);
  if (stmt == nullptr) throw DbError("La sentencia SQL está vacía");
  std::string_view rest = sql.substr(static_cast<size_t>(tail - sql.data()));
  if (!sql::IsBlankSql(rest)) {
    sqlite3_finalize(stmt);
    throw DbError(fmt::format("Se admite una sola sentencia SQL por llamada: {}", shown));
  }
  key.assign(sql);
  return stmt;
}

void Database::Release(sqlite3_stmt* stmt, std::string&& key) noexcept {
  if (stmt == nullptr) return;
  // Its outcome was reported by the step that failed, if any.
  sqlite3_reset(stmt);
  sqlite3_clear_bindings(stmt);
  try {
    if (auto dropped = kept_.Insert(std::move(key), stmt)) sqlite3_finalize(dropped->second);
  } catch (...) {
    // No memory to keep it: it is simply not reused.
    sqlite3_finalize(stmt);
  }
}

Deadline::Deadline(sqlite3* db, std::chrono::milliseconds limit) {
  if (limit.count() <= 0) return;
  db_ = db;
  at_ = std::chrono::steady_clock::now() + limit;
  // About a few microseconds of work between looks at the clock.
  sqlite3_progress_handler(db_, 4000, &Deadline::Check, this);
}

Deadline::~Deadline() {
  if (db_ != nullptr) sqlite3_progress_handler(db_, 0, nullptr, nullptr);
}

int Deadline::Check(void* self) {
  auto* d = static_cast<Deadline*>(self);
  if (std::chrono::steady_clock::now() < d->at_) return 0;
  d->expired_ = true;
  return 1;
}

Statement::Statement(std::shared_ptr<Database> db, std::string_view sql, std::string_view shown)
    : db_(std::move(db)), shown_(shown) {
  stmt_ = db_->Acquire(sql, shown, key_);
}

Statement::~Statement() {
  db_->Release(stmt_, std::move(key_));
}

void Statement::Bind(int index, const Variant& value) {
  sqlite3_stmt* s = stmt_;
  int rc = std::visit(
      [&](const auto& v) -> int {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::monostate> || std::is_same_v<T, Variant::NullTag>) {
          return sqlite3_bind_null(s, index);
        } else if constexpr (std::is_same_v<T, bool>) {
          return sqlite3_bind_int(s, index, v ? 1 : 0);
        } else if constexpr (std::is_same_v<T, uint8_t> || std::is_same_v<T, int16_t> ||
                             std::is_same_v<T, int32_t>) {
          return sqlite3_bind_int64(s, index, v);
        } else if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>) {
          return sqlite3_bind_double(s, index, v);
        } else if constexpr (std::is_same_v<T, Currency>) {
          return sqlite3_bind_double(s, index, v.ToDouble());
        } else if constexpr (std::is_same_v<T, Date>) {
          std::string text = sql::StoredDateText(v);
          return sqlite3_bind_text(s, index, text.data(), static_cast<int>(text.size()),
                                   SQLITE_TRANSIENT);
        } else if constexpr (std::is_same_v<T, std::string>) {
          return sqlite3_bind_text64(s, index, v.data(), v.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        } else {
          throw DbError("Un objeto no se puede guardar en una columna de la base de datos");
        }
      },
      value.storage());
  if (rc != SQLITE_OK) db_->Fail(shown_);
}

void Statement::BindInt64(int index, int64_t value) {
  if (sqlite3_bind_int64(stmt_, index, value) != SQLITE_OK) db_->Fail(shown_);
}

bool Statement::Step() {
  int rc = sqlite3_step(stmt_);
  if (rc == SQLITE_ROW) return true;
  if (rc == SQLITE_DONE) return false;
  db_->Fail(shown_);
}

std::vector<ColumnInfo> ReadColumns(sqlite3_stmt* stmt) {
  std::vector<ColumnInfo> out;
  int n = sqlite3_column_count(stmt);
  out.reserve(static_cast<size_t>(n));
  for (int i = 0; i < n; ++i) {
    const char* name = sqlite3_column_name(stmt, i);
    out.push_back(ColumnInfo{name ? name : "", MentionsDate(sqlite3_column_decltype(stmt, i))});
  }
  return out;
}

Variant ReadValue(sqlite3_stmt* stmt, int index, bool date_column) {
  switch (sqlite3_column_type(stmt, index)) {
    case SQLITE_NULL:
      return Variant::Null();
    case SQLITE_INTEGER: {
      sqlite3_int64 v = sqlite3_column_int64(stmt, index);
      if (v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(v));
      }
      return Variant(static_cast<double>(v));
    }
    case SQLITE_FLOAT:
      return Variant(sqlite3_column_double(stmt, index));
    default: {
      const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt, index));
      std::string text(p ? p : "", static_cast<size_t>(sqlite3_column_bytes(stmt, index)));
      if (date_column) {
        if (auto d = vb::ParseIsoDateTime(text)) return Variant(*d);
      }
      return Variant(std::move(text));
    }
  }
}

}  // namespace kivmovfrec::sqlite
