// The database boundary: a connection that runs SQL text in the suite's dialect and result sets
// that read and write rows. Adapters (SQLite, PostgreSQL) implement these interfaces; nothing
// above them includes an engine's own headers.
//
// SQL text is written in the suite's dialect (`Select Top n`, `+` between texts, `Like`
// without regard to case) and translated by the adapter. Table and column names resolve
// without regard to case.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "kivmovfrec/export.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec {

// What kind of failure a DbError is, as the engine reported it (SQLite's extended result code,
// PostgreSQL's SQLSTATE), so callers decide without reading the engine's text.
enum class DbErrorKind {
  Other,           // bad SQL, wrong use of the interface, anything not listed below
  Busy,            // the database or a row is locked by another connection and the wait ran
                   // out (SQLite busy timeout, PostgreSQL lock_timeout, deadlock)
  Timeout,         // the statement ran past the connection's query limit and was cancelled
  Constraint,      // a unique, not-null, check or foreign-key constraint refused the write
  MissingTable,    // the statement names a table or column that does not exist
  ReadOnly,        // the database (or the transaction) accepts no writes
  ConnectionLost,  // the server or the file can no longer be reached
};

// Any failure reported by the database engine or by the adapter (bad SQL, constraint, busy
// database, lost connection, malformed URI). what() holds the engine's message; kind() says
// what happened.
class KMF_API DbError : public std::runtime_error {
 public:
  explicit DbError(const std::string& message, DbErrorKind kind = DbErrorKind::Other)
      : std::runtime_error(message), kind_(kind) {}
  DbErrorKind kind() const { return kind_; }

 private:
  DbErrorKind kind_;
};

// Rows produced by one SELECT. A result set starts on its first row (Eof() when there is none).
// Its rows are read when it is opened: what other statements change afterwards is not seen,
// and deleting rows while walking the set is safe.
//
// Reading: Get(name) finds the column without regard to case and returns Null for SQL NULL;
// an unknown column throws DbError. Get(index) is 0-based. Reading at Eof, after Close or from
// a row deleted through the set throws DbError. Whole numbers read as Long (Double beyond 32
// bits), other numbers as Double, text as String, date columns as Date.
//
// Writing is possible only on sets opened by Connection::OpenResultset for a single-table
// `Select * from T [Where ...] [Order By ...]`; other sets throw DbError on AddNew/Edit/Delete.
// Values written this way are bound as parameters, never spliced into SQL text. The sequence is
//   AddNew() or Edit(); Set(column, value)...; Update();
// AddNew starts a row with every column Null; only the columns Set are written, so the others
// take the table's defaults. After Update the set is positioned on the row as stored (defaults
// included). During AddNew/Edit, Get returns the pending values; MoveNext abandons them. Set
// resolves the column without regard to case and throws DbError for a column the table lacks,
// or when no AddNew/Edit is pending. Delete() removes the current row at once (the set stays
// on it; MoveNext continues).
class KMF_API Resultset {
 public:
  virtual ~Resultset() = default;

  virtual bool Eof() const = 0;
  virtual void MoveNext() = 0;

  virtual int ColumnCount() const = 0;
  virtual std::string ColumnName(int index) const = 0;
  virtual bool HasColumn(std::string_view name) const = 0;
  virtual Variant Get(int index) const = 0;
  virtual Variant Get(std::string_view name) const = 0;

  virtual void AddNew() = 0;
  virtual void Edit() = 0;
  virtual void Set(std::string_view name, const Variant& value) = 0;
  virtual void Update() = 0;
  virtual void Delete() = 0;

  // Releases the set; further calls other than Close are errors. The destructor closes too.
  virtual void Close() = 0;
};

enum class Engine { SQLite, PostgreSQL };

// The query limit a connection starts with (Connection::SetQueryLimit).
inline constexpr std::chrono::milliseconds kDefaultQueryLimit{10000};

// An open database. Not thread-safe: one connection per thread, as the suite uses it.
//
// Transactions: BeginTrans takes the write lock at once (so two savers serialise instead of
// failing at commit; a second writer waits for the lock up to a busy timeout, then DbError);
// CommitTrans / RollbackTrans end it. They do not nest: BeginTrans inside a transaction throws
// DbError, CommitTrans outside one throws DbError, RollbackTrans outside one does nothing (so
// error paths can always call it). Without a transaction every statement commits on its own.
class KMF_API Connection {
 public:
  virtual ~Connection() = default;

  virtual Engine engine() const = 0;

  // Opens a result set. Updatable when the SQL is a single-table `Select * from T ...`.
  virtual std::unique_ptr<Resultset> OpenResultset(std::string_view sql) = 0;

  // Opens a result set for text that came from a formula or a script: the statement must be
  // one query (SELECT, WITH ... SELECT, VALUES). Anything else (INSERT, UPDATE, DELETE, DDL,
  // transaction control, settings, a second statement, or anything the engine does not report
  // as read-only) throws DbError and writes nothing. The set is never updatable. The statement
  // runs under the query limit (below).
  virtual std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) = 0;

  // OpenReadOnly keeping at most `max_rows` rows: the statement is stopped once it has given
  // them, so a query that yields rows without end costs no memory and no time past them. When
  // `more` is given it tells whether the query had at least one row beyond those kept. The
  // adapters stop the statement; this default (for connections that forward to another) reads
  // the whole set through OpenReadOnly and keeps the first `max_rows` rows.
  virtual std::unique_ptr<Resultset> OpenReadOnlyRows(std::string_view sql, size_t max_rows,
                                                      bool* more = nullptr);

  // The query limit: the longest a statement opened by OpenReadOnly or OpenReadOnlyRows (the
  // text of formulas and scripts) may run. Past it the statement is cancelled and DbError of
  // kind Timeout is thrown, "La consulta superó el límite de 10 s (sentencia: ...)". On SQLite
  // the statement is interrupted from a progress handler installed only while it runs; on
  // PostgreSQL the server cancels it (statement_timeout set for that statement alone), so it
  // stops even when this process died. Afterwards the connection is usable and an open
  // transaction is as it was. OpenResultset and Execute, the component's own statements, are
  // not limited. Zero or less: no limit. Starts at kDefaultQueryLimit. A connection that
  // forwards its statements to another should forward these two as well.
  virtual void SetQueryLimit(std::chrono::milliseconds limit) { query_limit_ = limit; }
  virtual std::chrono::milliseconds QueryLimit() const { return query_limit_; }

  // Runs one statement (a second one in the text throws DbError); returns the number of rows it
  // inserted, updated or deleted (0 for anything else).
  virtual int64_t Execute(std::string_view sql) = 0;

  virtual void BeginTrans() = 0;
  virtual void CommitTrans() = 0;
  virtual void RollbackTrans() = 0;
  virtual bool InTransaction() const = 0;

  // The statement as this engine will run it (dialect translation only). For tests and traces.
  virtual std::string Translate(std::string_view sql) const = 0;

 private:
  std::chrono::milliseconds query_limit_ = kDefaultQueryLimit;
};

// Opens a database from a URI:
//   sqlite:<path>        SQLite file, created when absent (its directory must exist)
//   sqlite::memory:      private in-memory SQLite database
//   postgresql://...     PostgreSQL connection string (libpq URI form)
// Throws DbError with a clear message for an unknown scheme, a missing directory or a server
// that cannot be reached.
KMF_API std::shared_ptr<Connection> OpenConnection(std::string_view uri);

}  // namespace kivmovfrec
