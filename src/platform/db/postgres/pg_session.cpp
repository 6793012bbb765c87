#include "platform/db/postgres/pg_session.h"

#include <fmt/format.h>

#include <limits>

#include "kivmovfrec/db.h"
#include "platform/db/dialect.h"

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
  const PGTransactionStatusType st = PQtransactionStatus(conn_);
  return st == PQTRANS_INTRANS || st == PQTRANS_INERROR || st == PQTRANS_ACTIVE;
}

Result Session::Send(std::string_view sql, const Params& params, std::string_view shown) {
  if (sql::IsBlankSql(sql)) throw DbError("La sentencia SQL está vacía");
  if (sql::SplitStatements(sql).size() > 1) {
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
  std::vector<const char*> values;
  values.reserve(params.size());
  for (const auto& p : params) values.push_back(p ? p->c_str() : nullptr);
  const std::string text(sql);
  Result r(PQexecParams(conn_, text.c_str(), static_cast<int>(params.size()), nullptr,
                        values.data(), nullptr, nullptr, 0));
  if (!r) {
    throw DbError(LostOrOther(), Tidy(PQerrorMessage(conn_)), std::string(shown));
  }
  return r;
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
  Result r(PQexec(conn_, sql));
  if (!r) {
    throw DbError(LostOrOther(), Tidy(PQerrorMessage(conn_)), sql);
  }
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
