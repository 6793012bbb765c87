#include "platform/db/postgres/pg_session.h"

#include <fmt/format.h>

#include <limits>

#include "kivmovfrec/db.h"
#include "platform/db/dialect.h"
#include "platform/db/sql_tokens.h"

namespace kivmovfrec::postgres {

namespace {

// libpq messages end with a line break (and sometimes carry tab-indented hints).
std::string Tidy(const char* message) {
  std::string text = message ? message : "";
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  for (char& c : text) {
    if (c == '\n' || c == '\t') c = ' ';
  }
  return text;
}

void IgnoreNotice(void*, const char*) {}

// Texts remembered as sent once, and statements kept prepared, at most: a session that keeps
// sending new texts starts over rather than growing without end.
constexpr size_t kMaxSeen = 1024;
constexpr size_t kMaxPrepared = 256;

// A prepared statement refused because a table it reads changed shape since it was prepared
// ("cached plan must not change result type").
bool StaleShape(const PGresult* r) {
  return PQresultStatus(r) == PGRES_FATAL_ERROR && SqlState(r) == "0A000";
}

// Statements worth preparing: those the server plans.
bool Plannable(std::string_view text) {
  const std::string first = sql::LeadingKeyword(text);
  return first == "SELECT" || first == "INSERT" || first == "UPDATE" || first == "DELETE" ||
         first == "WITH" || first == "VALUES";
}

// The kind of failure behind a SQLSTATE (its class is the first two characters).
DbErrorKind KindOf(const std::string& state) {
  if (state == "55P03" || state == "40P01" || state == "40001") return DbErrorKind::Busy;
  if (state == "57014") return DbErrorKind::Timeout;  // query_canceled: statement_timeout
  if (state == "42P01" || state == "42703") return DbErrorKind::MissingTable;
  if (state == "25006") return DbErrorKind::ReadOnly;
  const std::string klass = state.substr(0, 2);
  if (klass == "23") return DbErrorKind::Constraint;
  if (klass == "08" || klass == "57") return DbErrorKind::ConnectionLost;  // 57P01 shutdown ...
  return DbErrorKind::Other;
}

}  // namespace

Session::Session(const std::string& conninfo, int lock_timeout_ms) {
  conn_ = PQconnectdb(conninfo.c_str());
  if (conn_ == nullptr) throw DbError("No se pudo crear la conexión con PostgreSQL");
  if (PQstatus(conn_) != CONNECTION_OK) {
    std::string msg = Tidy(PQerrorMessage(conn_));
    PQfinish(conn_);
    conn_ = nullptr;
    throw DbError(fmt::format("No se pudo conectar con el servidor PostgreSQL: {}", msg),
                  DbErrorKind::ConnectionLost);
  }
  // "relation already exists, skipping" and the like would otherwise go to stderr.
  PQsetNoticeProcessor(conn_, IgnoreNotice, nullptr);
  try {
    if (PQsetClientEncoding(conn_, "UTF8") != 0) {
      throw DbError(
          fmt::format("PostgreSQL: no se pudo usar UTF-8: {}", Tidy(PQerrorMessage(conn_))));
    }
    Command(fmt::format("SET DateStyle = 'ISO, YMD'; SET standard_conforming_strings = on; "
                        "SET client_min_messages = warning; SET lock_timeout = {}",
                        lock_timeout_ms)
                .c_str());
  } catch (...) {
    PQfinish(conn_);
    conn_ = nullptr;
    throw;
  }
}

Session::~Session() {
  PQfinish(conn_);
}

bool Session::InTransaction() const {
  if (!pending_begin_.empty()) return true;
  const PGTransactionStatusType st = PQtransactionStatus(conn_);
  return st == PQTRANS_INTRANS || st == PQTRANS_INERROR || st == PQTRANS_ACTIVE;
}

void Session::Begin(std::string begin) {
  pending_begin_ = std::move(begin);
}

bool Session::EndUnsent() {
  if (pending_begin_.empty()) return false;
  pending_begin_.clear();
  return true;
}

void Session::ForgetPrepared() {
  seen_.clear();
  if (!prepared_.empty()) deallocate_ = true;
}

std::string Session::PreparedName(const std::string& text, bool& prepare) {
  prepare = false;
  // Until the pending DEALLOCATE ALL has gone nothing prepared is used, nor prepared anew.
  if (deallocate_) return "";
  if (const auto known = prepared_.find(text); known != prepared_.end()) return known->second;
  if (seen_.insert(text).second) {
    if (seen_.size() > kMaxSeen) seen_.clear();
    return "";
  }
  if (!Plannable(text)) return "";
  if (prepared_.size() >= kMaxPrepared) {
    ForgetPrepared();
    return "";
  }
  // Known from now on, so the same text later in the same pipeline runs under this name; a
  // failed Parse takes it back.
  prepare = true;
  std::string name = fmt::format("kmf_s{}", ++serial_);
  prepared_.emplace(text, name);
  seen_.erase(text);
  return name;
}

void Session::Validate(std::string_view sql, const Params& params, std::string_view shown) const {
  // A text prepared on the server was found to be one statement when it was first sent.
  const bool known = prepared_.find(sql) != prepared_.end();
  if (!known && sql::IsBlankSql(sql)) throw DbError("La sentencia SQL está vacía");
  if (!known && sql::SplitStatements(sql).size() > 1) {
    throw DbError(fmt::format("Se admite una sola sentencia SQL por llamada: {}", shown));
  }
  if (params.size() > static_cast<size_t>(std::numeric_limits<int>::max())) {
    throw DbError("Demasiados parámetros en la sentencia SQL");
  }
  // libpq takes C strings: a NUL would silently cut the statement or the value short.
  if (sql.find('\0') != std::string_view::npos) {
    throw DbError(fmt::format("La sentencia SQL contiene un carácter nulo: {}", shown));
  }
  for (const auto& p : params) {
    if (p && p->find('\0') != std::string::npos) {
      throw DbError(fmt::format(
          "PostgreSQL no admite el carácter nulo dentro de un texto (sentencia: {})", shown));
    }
  }
}

std::vector<Result> Session::Pipeline(const std::vector<Statement>& statements) {
  struct Step {
    std::string text;
    std::vector<const char*> values;
    std::string name;  // "" = the unnamed statement
    bool prepare = false;
  };
  std::vector<Step> steps;
  steps.reserve(statements.size());
  for (const Statement& st : statements) {
    Validate(st.sql, st.params, st.shown);
    Step step;
    step.text = std::string(st.sql);
    step.values.reserve(st.params.size());
    for (const auto& p : st.params) step.values.push_back(p ? p->c_str() : nullptr);
    step.name = PreparedName(step.text, step.prepare);
    steps.push_back(std::move(step));
  }
  const std::string_view shown = statements.empty() ? std::string_view() : statements[0].shown;
  const auto lost = [&] {
    // What the server holds is unknown now: prepare anew under other names.
    prepared_.clear();
    return DbError(LostOrOther(), Tidy(PQerrorMessage(conn_)), std::string(shown));
  };

  // Alone and with nothing pending: the plain call.
  if (steps.size() == 1 && !steps[0].prepare && !deallocate_ && pending_begin_.empty()) {
    const Step& st = steps[0];
    const int n = static_cast<int>(st.values.size());
    const auto unnamed = [&] {
      return Result(
          PQexecParams(conn_, st.text.c_str(), n, nullptr, st.values.data(), nullptr, nullptr, 0));
    };
    const bool idle = PQtransactionStatus(conn_) == PQTRANS_IDLE;
    Result r = st.name.empty() ? unnamed()
                               : Result(PQexecPrepared(conn_, st.name.c_str(), n, st.values.data(),
                                                       nullptr, nullptr, 0));
    if (r && !st.name.empty() && StaleShape(r.get())) {
      // Another connection changed a table under the prepared statement: its rows no longer
      // have the shape they were prepared with. Prepared statements start over; outside a
      // transaction the statement runs again as it is now.
      ForgetPrepared();
      if (idle) r = unnamed();
    }
    if (!r) throw lost();
    std::vector<Result> out;
    out.push_back(std::move(r));
    return out;
  }

  // Otherwise in one round trip: the pending BEGIN and DEALLOCATE ALL, then each statement
  // (its Parse first when it is being prepared), then one Sync. The server answers each with
  // one result, PGRES_PIPELINE_ABORTED for those after a failure.
  if (PQenterPipelineMode(conn_) != 1) throw lost();
  const bool begin = !pending_begin_.empty();
  const bool deallocate = deallocate_;
  size_t expected = 0;
  const auto send_plain = [&](const char* text) {
    ++expected;
    return PQsendQueryParams(conn_, text, 0, nullptr, nullptr, nullptr, nullptr, 0) == 1;
  };
  bool sent = true;
  if (begin) sent = sent && send_plain(pending_begin_.c_str());
  if (deallocate) sent = sent && send_plain("DEALLOCATE ALL");
  for (const Step& st : steps) {
    const int n = static_cast<int>(st.values.size());
    if (st.prepare) {
      ++expected;
      sent = sent && PQsendPrepare(conn_, st.name.c_str(), st.text.c_str(), n, nullptr) == 1;
    }
    ++expected;
    sent =
        sent && (st.name.empty() ? PQsendQueryParams(conn_, st.text.c_str(), n, nullptr,
                                                     st.values.data(), nullptr, nullptr, 0)
                                 : PQsendQueryPrepared(conn_, st.name.c_str(), n, st.values.data(),
                                                       nullptr, nullptr, 0)) == 1;
  }
  sent = sent && PQpipelineSync(conn_) == 1;
  std::vector<Result> results;  // each followed by a NULL, then the Sync's own
  for (size_t nulls = 0; sent && nulls <= expected;) {
    Result r(PQgetResult(conn_));
    if (!r) {
      if (PQstatus(conn_) == CONNECTION_BAD) break;
      ++nulls;
      continue;
    }
    if (PQresultStatus(r.get()) == PGRES_PIPELINE_SYNC) break;
    results.push_back(std::move(r));
  }
  if (PQexitPipelineMode(conn_) != 1 || !sent || results.size() != expected) throw lost();

  // What the session knows of the server follows the steps that succeeded; a failed step's
  // result stands for the statement it came before.
  const auto ok = [](const Result& r) {
    const ExecStatusType st = PQresultStatus(r.get());
    return st == PGRES_COMMAND_OK || st == PGRES_TUPLES_OK;
  };
  std::vector<Result> out;
  size_t i = 0;
  Result failed;
  for (const Result& r : results) {
    if (StaleShape(r.get())) ForgetPrepared();
  }
  if (begin) {
    if (ok(results[i]))
      pending_begin_.clear();
    else
      failed = std::move(results[i]);
    ++i;
  }
  if (deallocate) {
    if (failed || !ok(results[i])) {
      if (!failed) failed = std::move(results[i]);
    } else {
      deallocate_ = false;
      prepared_.clear();
    }
    ++i;
  }
  for (const Step& st : steps) {
    if (st.prepare) {
      if (failed || !ok(results[i])) {
        if (!failed) failed = std::move(results[i]);
        prepared_.erase(st.text);
      }
      ++i;
    }
    out.push_back(failed ? std::move(failed) : std::move(results[i]));
    ++i;
  }
  return out;
}

Result Session::Send(std::string_view sql, const Params& params, std::string_view shown) {
  std::vector<Result> r = Pipeline({Statement{sql, params, shown}});
  return std::move(r.front());
}

std::vector<Result> Session::RunAll(const std::vector<Statement>& statements) {
  std::vector<Result> results = Pipeline(statements);
  for (size_t i = 0; i < results.size(); ++i) Check(results[i].get(), statements[i].shown);
  return results;
}

void Session::Check(const PGresult* result, std::string_view shown) const {
  const ExecStatusType st = PQresultStatus(result);
  if (st == PGRES_EMPTY_QUERY) throw DbError("La sentencia SQL está vacía");
  if (st == PGRES_COMMAND_OK || st == PGRES_TUPLES_OK) return;
  Fail(result, shown);
}

Result Session::Run(std::string_view sql, const Params& params, std::string_view shown) {
  Result r = Send(sql, params, shown);
  Check(r.get(), shown);
  return r;
}

std::string Session::Command(const char* sql) {
  // A BEGIN not sent yet goes first, in the same round trip.
  std::string text;
  if (!pending_begin_.empty()) text = pending_begin_ + "; " + sql;
  Result r(PQexec(conn_, text.empty() ? sql : text.c_str()));
  if (!r) {
    throw DbError(LostOrOther(), Tidy(PQerrorMessage(conn_)), sql);
  }
  if (!text.empty() && PQtransactionStatus(conn_) != PQTRANS_IDLE) pending_begin_.clear();
  const ExecStatusType st = PQresultStatus(r.get());
  if (st != PGRES_COMMAND_OK && st != PGRES_TUPLES_OK) Fail(r.get(), sql);
  return PQcmdStatus(r.get());
}

void Session::Fail(const PGresult* result, std::string_view shown) const {
  std::string msg = Tidy(PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY));
  if (msg.empty()) msg = Tidy(PQresultErrorMessage(result));
  if (msg.empty()) msg = Tidy(PQerrorMessage(conn_));
  const char* detail = PQresultErrorField(result, PG_DIAG_MESSAGE_DETAIL);
  if (detail != nullptr && *detail != '\0') msg += " (" + Tidy(detail) + ")";
  const std::string state = SqlState(result);
  const DbErrorKind kind = state.empty() ? LostOrOther() : KindOf(state);
  throw DbError(kind, std::move(msg), std::string(shown));
}

DbErrorKind Session::LostOrOther() const {
  return PQstatus(conn_) == CONNECTION_BAD ? DbErrorKind::ConnectionLost : DbErrorKind::Other;
}

std::string SqlState(const PGresult* result) {
  const char* code = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  return code ? code : "";
}

}  // namespace kivmovfrec::postgres
