// The PostgreSQL adapter's entry point. This header does not expose libpq-fe.h; only the .cpp
// files of this folder include it.
#pragma once

#include <memory>
#include <string>

#include "kivmovfrec/db.h"

namespace kivmovfrec::postgres {

struct Options {
  // How long a statement waits for a lock another connection holds (a row being saved, the
  // table counter being drawn) before failing with DbError. Long enough for another saver's
  // transaction to finish.
  int lock_timeout_ms = 10000;
};

// Connects with a libpq connection string ("postgresql://user@host:port/db?options=...").
// Throws DbError with the server's message when it cannot be reached or refuses the login.
//
// The connection:
//   * translates every statement from the suite's dialect (TranslateForPostgres: the shared
//     translation plus the rewrites of pg_dialect.h), keeping the translation of the texts
//     used most recently (translation_cache.h);
//   * reads all rows of a result set when it is opened; columns are found by name without
//     regard to case (PostgreSQL reports unquoted names in lower case), values mapped by type
//     as pg_values.h describes;
//   * makes `Select * from T ...` sets updatable, identifying rows by T's primary key, or by
//     ctid when T has none (pg_resultset.h); values are sent as parameters, never as SQL text,
//     and after Update the set holds the row as stored (RETURNING *);
//   * makes `?` placeholders `$1`, `$2`... and sends the values beside the text (pg_values.h
//     ToParam); the server infers each value's type from where it stands;
//   * prepares a statement on the server the second time its text is sent (a named statement,
//     parsed and planned once; the values change, the text does not), so the component's own
//     statements, which bind their values, cost the server only their execution afterwards.
//     Statements that may change tables, and rollbacks after one, drop what was prepared; a
//     prepared statement refused because another connection changed a table's columns is run
//     again unprepared outside a transaction (inside one the error reaches the caller, and the
//     next transaction prepares anew);
//   * sends BEGIN with the transaction's first statement, not on its own, and ExecuteAll's
//     statements together (libpq pipeline mode): one round trip for each;
//   * asks the catalogue for a table's columns and key once per table name, not at every
//     `Select * from T`; any statement other than SELECT/INSERT/UPDATE/DELETE/WITH/VALUES, and
//     every rollback, make it ask again (tables changed by another connection meanwhile are not
//     noticed);
//   * the outermost BeginTrans opens a READ COMMITTED transaction, inner ones a savepoint
//     (transaction_levels.h). There is no database-wide write lock: two savers serialise on
//     the rows they both write (the table counter row first), the second waiting up to
//     lock_timeout_ms. A failed statement leaves the transaction failed: the server refuses
//     every further statement until the innermost level is rolled back, so code that traps a
//     statement's error and goes on opens a level (Transaccion) around that statement;
//   * OpenReadOnly runs the query in a read-only transaction (BEGIN READ ONLY, or inside a
//     transaction a savepoint with transaction_read_only set), always rolled back afterwards:
//     the server refuses any write, nothing the query did remains, and an enclosing
//     transaction goes on unharmed. The connection's query limit is the statement_timeout of
//     that transaction or savepoint (SET LOCAL), so the server cancels the statement itself and
//     the rollback restores the session's setting. OpenReadOnlyRows reads through a cursor
//     (DECLARE ... NO SCROLL CURSOR, FETCH FORWARD n): rows beyond those fetched are never
//     computed nor sent.
std::shared_ptr<Connection> OpenPostgres(const std::string& conninfo, const Options& options = {});

}  // namespace kivmovfrec::postgres
