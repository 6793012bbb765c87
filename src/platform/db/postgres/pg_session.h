// Ownership wrappers over libpq, shared by the PostgreSQL connection and its result sets.
// Internal to the PostgreSQL adapter: only this folder includes libpq-fe.h.
#pragma once

#include <libpq-fe.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/db.h"

namespace kivmovfrec::postgres {

struct ResultDeleter {
  void operator()(PGresult* r) const { PQclear(r); }
};
using Result = std::unique_ptr<PGresult, ResultDeleter>;

// Statement parameters in text form; nullopt is SQL NULL. Their types are left to the server,
// which infers each one from where it stands (the column assigned or compared with).
using Params = std::vector<std::optional<std::string>>;

// One server connection. Shared by the connection object and the result sets it opened, so a
// set that outlives its connection object can still write.
class Session {
 public:
  // Connects with a libpq connection string or URI and prepares the session: UTF-8 text, ISO
  // dates, standard strings, server notices silenced, `lock_timeout_ms` as the longest wait for
  // a row or table lock. Throws DbError naming the server when it cannot be reached.
  Session(const std::string& conninfo, int lock_timeout_ms);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  PGconn* get() const { return conn_; }

  // True inside a transaction block (also when the server considers it failed).
  bool InTransaction() const;

  // Runs exactly one statement with parameters (extended protocol); `shown` is the statement
  // as reported in error messages. More than one statement, or none, throws DbError. A failed
  // statement inside a transaction leaves the transaction failed until its innermost level is
  // rolled back (the server refuses every other statement meanwhile).
  Result Run(std::string_view sql, const Params& params, std::string_view shown);

  // Sends one statement without checking the outcome: the result may be
  // a failed one (see Check). For callers that manage the transaction state themselves (the
  // read-only runner). Throws DbError only when the statement cannot be sent at all, which
  // includes a NUL character in the text or in a parameter (libpq would cut it short there).
  Result Send(std::string_view sql, const Params& params, std::string_view shown);

  // Throws DbError with the server's message and `shown` when `result` is a failure.
  void Check(const PGresult* result, std::string_view shown) const;

  // Runs transaction control and settings text through the simple protocol (several
  // statements separated by ';' allowed). Returns the command tag of the last one ("COMMIT",
  // or "ROLLBACK" when a COMMIT found the transaction failed). Throws DbError.
  std::string Command(const char* sql);

 private:
  [[noreturn]] void Fail(const PGresult* result, std::string_view shown) const;
  // ConnectionLost when the connection is gone, else Other: for failures without a SQLSTATE.
  DbErrorKind LostOrOther() const;

  PGconn* conn_ = nullptr;
};

// SQLSTATE of a failed result ("" when there is none).
std::string SqlState(const PGresult* result);

}  // namespace kivmovfrec::postgres
