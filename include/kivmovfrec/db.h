// The database boundary: a connection that runs SQL text in the suite's dialect and result sets
// that read and write rows. Adapters (SQLite, PostgreSQL) implement these interfaces; nothing
// above them includes an engine's own headers.
//
// SQL text is written in the suite's dialect (`Select Top n`, `+` between texts, `Like`
// without regard to case) and translated by the adapter. Table and column names resolve
// without regard to case. Values that come from people or from stored data go beside the text
// as bound parameters (DbParams, `?` in the text), never into it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
  // A failure the engine reported for `statement`: what() is "Error de la base de datos:
  // <engine_text> (sentencia: <statement>)", and both parts stay readable on their own.
  DbError(DbErrorKind kind, std::string engine_text, std::string statement)
      : std::runtime_error("Error de la base de datos: " + engine_text +
                           " (sentencia: " + statement + ")"),
        kind_(kind),
        engine_text_(std::move(engine_text)),
        statement_(std::move(statement)) {}
  DbErrorKind kind() const { return kind_; }
  // The engine's own message and the statement it refused; both empty for errors the
  // component raises itself (wrong use of a result set, a statement without text, ...).
  const std::string& engine_text() const { return engine_text_; }
  const std::string& statement() const { return statement_; }

 private:
  DbErrorKind kind_;
  std::string engine_text_;
  std::string statement_;
};

// A database failure as people are told it, in the component's one wording: what its kind
// means in plain Spanish, then the engine's text and the statement ("la base de datos está
// bloqueada por otro proceso: database is locked (sentencia: ...)"); what() alone for
// DbErrorKind::Other.
KMF_API std::string DescribirErrorDb(const DbError& e);

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

// Values bound to the `?` placeholders of a statement, in order: `cn.Execute("Update T Set a = ?
// Where b = ?", {Variant(1), Variant("x")})`. They are sent to the engine as values and never
// read as SQL, whatever text they hold. A `?` inside a string literal, a quoted name or a
// comment is not a placeholder. Values map to columns as Resultset::Set does (each adapter's
// header says how). A statement whose placeholders do not match the values given, one for
// one, throws DbError without running.
using DbParams = std::vector<Variant>;

// One statement with its bound values, for Connection::ExecuteAll.
struct DbStatement {
  std::string sql;
  DbParams params;
};

// The query limit a connection starts with (Connection::SetQueryLimit).
inline constexpr std::chrono::milliseconds kDefaultQueryLimit{10000};

// An open database. Not thread-safe: one connection per thread, as the suite uses it.
//
// Transactions nest; the Transaccion guard below is the way to use them. The connection counts
// the open levels (TransactionDepth):
//   * BeginTrans outside a transaction starts one and takes the write lock at once (so two
//     savers serialise instead of failing at commit; a second writer waits for the lock up to
//     a busy timeout, then DbError). Inside one it opens an inner level: a savepoint.
//   * CommitTrans ends the innermost level: the outermost commits; an inner one keeps its work
//     as part of the level around it. Outside a transaction it throws DbError.
//   * RollbackTrans undoes the innermost level only: an inner one back to its savepoint, the
//     levels around it go on; the outermost rolls the whole transaction back. Outside a
//     transaction it does nothing, so error paths can always call it.
//   * When the engine ends the transaction by itself (lost connection, or a failed COMMIT) all
//     levels are gone: the depth reads 0. When an inner level's rollback fails, the outermost
//     level cannot commit any more: its CommitTrans rolls back everything and throws.
// A statement that fails inside a transaction leaves it failed on PostgreSQL until the
// innermost level is rolled back; SQLite lets it go on. Code that traps a statement's error and
// carries on inside a transaction therefore puts that statement in a level of its own.
// Without a transaction every statement commits on its own.
class KMF_API Connection {
 public:
  virtual ~Connection() = default;

  virtual Engine engine() const = 0;

  // Opens a result set, `params` bound to the statement's placeholders. Updatable when the SQL
  // is a single-table `Select * from T ...`.
  virtual std::unique_ptr<Resultset> OpenResultset(std::string_view sql,
                                                   const DbParams& params = {}) = 0;

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

  // Runs one statement (a second one in the text throws DbError), `params` bound to its
  // placeholders; returns the number of rows it inserted, updated or deleted (0 for anything
  // else).
  virtual int64_t Execute(std::string_view sql, const DbParams& params = {}) = 0;

  // Runs the statements in order, each as Execute would, and returns how many rows each one
  // changed. The first that fails throws its DbError and those after it do not run. Outside a
  // transaction they run in one of their own: all or nothing. PostgreSQL sends them together,
  // in one round trip; this default calls Execute for each (a connection that forwards to
  // another gets its Execute called once per statement).
  virtual std::vector<int64_t> ExecuteAll(const std::vector<DbStatement>& statements);

  virtual void BeginTrans() = 0;
  virtual void CommitTrans() = 0;
  virtual void RollbackTrans() = 0;
  // Open levels: 0 outside a transaction, 1 in the outermost, 2 and more in savepoints.
  virtual int TransactionDepth() const = 0;
  virtual bool InTransaction() const = 0;

  // The statement as this engine will run it (dialect translation only). For tests and traces.
  virtual std::string Translate(std::string_view sql) const = 0;

 private:
  std::chrono::milliseconds query_limit_ = kDefaultQueryLimit;
};

// One level of a connection's transaction for the lifetime of a scope:
//
//   Transaccion t(cn);   // BeginTrans: a transaction, or a savepoint inside one
//   ...                  // statements; an exception leaves the scope
//   t.Commit();          // CommitTrans of this level
//
// Not committed when it goes out of scope (an exception, an early return), it rolls its level
// back, together with any level opened inside it and left open; the levels around it go on.
// The destructor never throws: a rollback that fails is swallowed (the connection is then
// unusable, and the outermost level refuses to commit).
class KMF_API Transaccion {
 public:
  // Throws DbError as BeginTrans does (e.g. Busy when the write lock cannot be had).
  explicit Transaccion(Connection& cn);
  ~Transaccion();
  Transaccion(const Transaccion&) = delete;
  Transaccion& operator=(const Transaccion&) = delete;

  // Ends the level keeping its work (CommitTrans). Throws DbError when the engine refuses, when
  // a level opened inside this one is still open, or when the level already ended. After a
  // failed Commit the level is still open and the destructor rolls it back.
  void Commit();
  // Undoes the level now (and the levels left open inside it); nothing when it already ended.
  // Throws DbError when the engine fails.
  void Rollback();

 private:
  Connection& cn_;
  int nivel_ = 0;  // this level's depth
  bool terminada_ = false;
};

// Opens a database from a URI:
//   sqlite:<path>        SQLite file, created when absent (its directory must exist)
//   sqlite::memory:      private in-memory SQLite database
//   postgresql://...     PostgreSQL connection string (libpq URI form)
// Throws DbError with a clear message for an unknown scheme, a missing directory or a server
// that cannot be reached.
KMF_API std::shared_ptr<Connection> OpenConnection(std::string_view uri);

}  // namespace kivmovfrec
