// Ownership wrappers over libpq, shared by the PostgreSQL connection and its result sets.
// Internal to the PostgreSQL adapter: only this folder includes libpq-fe.h.
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
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

  // True inside a transaction block (also when the server considers it failed), including one
  // begun (Begin) whose BEGIN has not been sent yet.
  bool InTransaction() const;

  // Starts a transaction with `begin` ("BEGIN ..."), sent together with the next statement
  // (Send, Run, Command) rather than on its own: one round trip less per transaction.
  void Begin(std::string begin);
  // True, forgetting it, when the transaction begun has not reached the server: nothing ran in
  // it, so committing or rolling it back has nothing to send.
  bool EndUnsent();

  // Forgets the statements prepared so far (DEALLOCATE ALL, sent with the next statement):
  // after the tables may have changed, a `Select *` prepared before would no longer describe
  // them.
  void ForgetPrepared();

  // Runs exactly one statement with parameters (extended protocol); `shown` is the statement
  // as reported in error messages. A text sent a second time is prepared on the server (named
  // statement, parsed and planned once) and executed as such from then on, so statements the
  // component repeats with other values cost the server only their execution. More than one
  // statement, or none, throws DbError. A failed statement inside a transaction leaves the
  // transaction failed until its innermost level is rolled back (the server refuses every other
  // statement meanwhile).
  Result Run(std::string_view sql, const Params& params, std::string_view shown);

  // One statement with its parameters; `shown` is the statement as reported in error messages.
  struct Statement {
    std::string_view sql;
    const Params& params;
    std::string_view shown;
  };
  // Runs the statements in order in one round trip and checks each: the first that failed
  // throws its DbError (the ones after it did not run). Outside a transaction they form one
  // implicit transaction: all or nothing.
  std::vector<Result> RunAll(const std::vector<Statement>& statements);

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
  // DbError for what cannot be sent: no statement, two, a NUL in the text or in a value.
  void Validate(std::string_view sql, const Params& params, std::string_view shown) const;
  // Sends the statements, after what is pending (BEGIN, DEALLOCATE ALL), in one round trip;
  // one result per statement, unchecked. A failure before a statement (its BEGIN, its Parse)
  // is given as that statement's result; statements after a failure come back
  // PGRES_PIPELINE_ABORTED.
  std::vector<Result> Pipeline(const std::vector<Statement>& statements);
  // The name to run `text` as, "" for the unnamed statement; `prepare` tells that it must be
  // prepared first.
  std::string PreparedName(const std::string& text, bool& prepare);
  [[noreturn]] void Fail(const PGresult* result, std::string_view shown) const;
  // ConnectionLost when the connection is gone, else Other: for failures without a SQLSTATE.
  DbErrorKind LostOrOther() const;

  PGconn* conn_ = nullptr;
  std::string pending_begin_;  // BEGIN not sent yet ("" when none)
  bool deallocate_ = false;    // DEALLOCATE ALL not sent yet
  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };
  // text -> statement name
  std::unordered_map<std::string, std::string, TextHash, std::equal_to<>> prepared_;
  std::unordered_set<std::string> seen_;  // texts sent once, unprepared
  uint64_t serial_ = 0;                   // for statement names
};

// SQLSTATE of a failed result ("" when there is none).
std::string SqlState(const PGresult* result);

}  // namespace kivmovfrec::postgres
