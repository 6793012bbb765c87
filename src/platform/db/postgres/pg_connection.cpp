#include "platform/db/postgres/pg_connection.h"

#include <fmt/format.h>

#include <cstdint>
#include <cstdlib>
#include <map>

#include "platform/db/dialect.h"
#include "platform/db/postgres/pg_dialect.h"
#include "platform/db/postgres/pg_resultset.h"
#include "platform/db/postgres/pg_session.h"
#include "platform/db/postgres/pg_values.h"
#include "platform/db/query_limit.h"
#include "platform/db/sql_tokens.h"
#include "platform/db/transaction_levels.h"
#include "platform/db/translation_cache.h"

namespace kivmovfrec::postgres {

namespace {

// The statement in PostgreSQL's terms; `alternate` has its placeholders numbered.
sql::TranslatedSql Translated(std::string_view sql) {
  sql::TranslatedSql out = sql::Derive(TranslateForPostgres(sql));
  out.alternate = out.placeholders == 0 ? out.run : sql::NumberPlaceholders(out.run);
  return out;
}

constexpr const char* kTableQuery =
    "SELECT c.oid::regclass::text, c.relkind, a.attname, "
    "coalesce(a.attnum = ANY (i.indkey), false) "
    "FROM pg_class c "
    "JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped "
    "LEFT JOIN pg_index i ON i.indrelid = c.oid AND i.indisprimary "
    "WHERE c.oid = to_regclass($1) ORDER BY a.attnum";

// Statements after which the tables' columns may differ: anything but reading and writing rows.
bool MayChangeTables(const sql::TranslatedSql& t) {
  const std::string& first = t.leading;
  return first != "SELECT" && first != "INSERT" && first != "UPDATE" && first != "DELETE" &&
         first != "WITH" && first != "VALUES";
}

Params TextParams(const DbParams& values) {
  Params out;
  out.reserve(values.size());
  for (const Variant& v : values) out.push_back(ToParam(v));
  return out;
}

class PgConnection final : public Connection {
 public:
  PgConnection(const std::string& conninfo, const Options& options)
      : session_(std::make_shared<Session>(conninfo, options.lock_timeout_ms)),
        levels_(sql::TransactionLevels::Engine{
            [this] { return session_->InTransaction(); },
            [this](const std::string& text) { session_->Command(text.c_str()); },
            [this] { session_->Begin("BEGIN ISOLATION LEVEL READ COMMITTED"); },
            [this] {
              if (session_->EndUnsent()) return;
              if (session_->Command("COMMIT") == "ROLLBACK") {
                throw DbError("La transacción había fallado y se deshizo en lugar de confirmarse");
              }
            },
            [this] {
              if (!session_->EndUnsent()) session_->Command("ROLLBACK");
            }}) {}

  Engine engine() const override { return Engine::PostgreSQL; }

  std::string Translate(std::string_view sql) const override {
    return translations_.Get(sql)->alternate;
  }

  std::unique_ptr<Resultset> OpenResultset(std::string_view sql, const DbParams& params) override {
    const auto translated = Prepare(sql, params.size());
    const std::string& run = translated->alternate;
    const Params values = TextParams(params);
    if (const auto& shape = translated->single_table) {
      if (auto target = Target(run, shape->table)) {
        std::string text = run;
        if (target->key.empty()) {
          text.insert(shape->star_offset, fmt::format("ctid AS {}, ", kCtidAlias));
        }
        Result r = session_->Run(text, values, run);
        return MakeResultset(session_, r.get(), std::move(target));
      }
    }
    Result r = session_->Run(run, values, run);
    return MakeResultset(session_, r.get(), std::nullopt);
  }

  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    return OpenReadOnlyRows(sql, SIZE_MAX, nullptr);
  }

  std::unique_ptr<Resultset> OpenReadOnlyRows(std::string_view sql, size_t max_rows,
                                              bool* more = nullptr) override {
    const auto translated = translations_.Get(sql);
    const std::string& run = translated->run;
    if (!translated->query) RefuseWrite(run);
    const bool nested = session_->InTransaction();
    const auto limit = QueryLimit();
    // SET LOCAL lasts until the read-only transaction or savepoint is rolled back below, so the
    // limit applies to this statement alone and the session's own setting comes back.
    std::string begin = nested ? "SAVEPOINT kmf_read_only; SET LOCAL transaction_read_only = on"
                               : "BEGIN READ ONLY";
    if (limit.count() > 0)
      begin += fmt::format("; SET LOCAL statement_timeout = {}", limit.count());
    session_->Command(begin.c_str());
    Result r;
    try {
      r = Read(run, max_rows, more);
    } catch (...) {
      try {
        EndReadOnly(nested);
      } catch (const DbError&) {
        // The connection itself failed; the statement's own error says more.
      }
      throw;
    }
    EndReadOnly(nested);
    if (SqlState(r.get()) == "25006") RefuseWrite(run);  // read_only_sql_transaction
    try {
      session_->Check(r.get(), run);
    } catch (const DbError& e) {
      if (e.kind() == DbErrorKind::Timeout && limit.count() > 0) {
        throw sql::QueryLimitError(limit, run);
      }
      throw;
    }
    return MakeResultset(session_, r.get(), std::nullopt, max_rows);
  }

  int64_t Execute(std::string_view sql, const DbParams& params) override {
    const auto translated = Prepare(sql, params.size());
    const std::string& run = translated->alternate;
    if (MayChangeTables(*translated)) {
      ForgetTables();
      tables_changed_in_transaction_ = session_->InTransaction();
    }
    Result r = session_->Run(run, TextParams(params), run);
    return Changed(r.get());
  }

  std::vector<int64_t> ExecuteAll(const std::vector<DbStatement>& statements) override {
    std::vector<std::shared_ptr<const sql::TranslatedSql>> runs;
    std::vector<Params> values;
    runs.reserve(statements.size());
    values.reserve(statements.size());
    for (const DbStatement& st : statements) {
      runs.push_back(Prepare(st.sql, st.params.size()));
      // Statements that may change the tables run one by one, each forgetting what was known.
      if (MayChangeTables(*runs.back())) return Connection::ExecuteAll(statements);
      values.push_back(TextParams(st.params));
    }
    std::vector<Session::Statement> batch;
    batch.reserve(runs.size());
    for (size_t i = 0; i < runs.size(); ++i) {
      batch.push_back({runs[i]->alternate, values[i], runs[i]->alternate});
    }
    std::vector<int64_t> changed;
    changed.reserve(runs.size());
    for (const Result& r : session_->RunAll(batch)) changed.push_back(Changed(r.get()));
    return changed;
  }

  void BeginTrans() override { levels_.Begin(); }
  void CommitTrans() override {
    levels_.Commit();
    if (!session_->InTransaction()) tables_changed_in_transaction_ = false;
  }
  void RollbackTrans() override {
    // A table created or changed in the level undone is as it was: forget what was read of
    // the tables since. Rolling back a level that changed no table (the common case: a
    // savepoint around reads) keeps the answers.
    if (tables_changed_in_transaction_) ForgetTables();
    levels_.Rollback();
    if (!session_->InTransaction()) tables_changed_in_transaction_ = false;
  }
  int TransactionDepth() const override { return levels_.Depth(); }
  bool InTransaction() const override { return session_->InTransaction(); }

 private:
  // The rows a write changed; 0 for anything else.
  static int64_t Changed(PGresult* r) {
    const std::string_view tag = PQcmdStatus(r);
    for (std::string_view writer : {"INSERT", "UPDATE", "DELETE", "MERGE"}) {
      if (tag.substr(0, writer.size()) == writer) return std::atoll(PQcmdTuples(r));
    }
    return 0;
  }

  // What was read or prepared against the tables as they were.
  void ForgetTables() {
    targets_.clear();
    session_->ForgetPrepared();
  }

  // The statement in PostgreSQL's terms (its placeholders numbered in `alternate`); DbError
  // unless it has exactly `values` of them.
  std::shared_ptr<const sql::TranslatedSql> Prepare(std::string_view sql, size_t values) const {
    auto translated = translations_.Get(sql);
    translated->CheckPlaceholders(values);
    return translated;
  }

  // The table behind `Select * from <table>` when its rows can be written: a table with a
  // primary key, or a plain table (ctid). Nothing for a view, an unknown name and the like.
  // Asked of the catalogue once per name: statements that may change tables, and rollbacks,
  // forget the answers.
  std::optional<WriteTarget> Target(const std::string& run, const std::string& table) {
    // The name as written, quotes included, so the server folds it as it does in the query.
    const auto tokens = sql::Tokenize(run);
    const std::string written(tokens.tokens.at(3).text);
    if (auto known = targets_.find(written); known != targets_.end()) return known->second;
    auto found = ReadTarget(written, table);
    targets_.emplace(written, found);
    return found;
  }

  std::optional<WriteTarget> ReadTarget(const std::string& written, const std::string& table) {
    Result r = session_->Run(kTableQuery, {written}, "pg_attribute");
    const int n = PQntuples(r.get());
    if (n == 0) return std::nullopt;
    WriteTarget target;
    target.table = table;
    target.qualified = PQgetvalue(r.get(), 0, 0);
    const std::string_view kind = PQgetvalue(r.get(), 0, 1);
    for (int i = 0; i < n; ++i) {
      target.columns.emplace_back(PQgetvalue(r.get(), i, 2));
      if (std::string_view(PQgetvalue(r.get(), i, 3)) == "t") {
        target.key.push_back(static_cast<size_t>(i));
      }
    }
    if (target.key.empty() && kind != "r") return std::nullopt;
    return target;
  }

  // Runs the query inside the read-only transaction; the result may be a failed one. With a
  // row bound the rows come through a cursor, so the server computes no more of them than are
  // fetched (one more than kept when `more` is asked).
  Result Read(const std::string& run, size_t max_rows, bool* more) {
    if (max_rows == SIZE_MAX) {
      if (more) *more = false;
      return session_->Send(run, {}, run);
    }
    Result declared = session_->Send("DECLARE kmf_lectura NO SCROLL CURSOR FOR " + run, {}, run);
    if (PQresultStatus(declared.get()) != PGRES_COMMAND_OK) {
      // A data-modifying WITH is refused by DECLARE itself (feature_not_supported).
      if (SqlState(declared.get()) == "0A000") RefuseWrite(run);
      return declared;
    }
    const size_t fetch = more ? max_rows + 1 : max_rows;
    Result r = session_->Send(fmt::format("FETCH FORWARD {} FROM kmf_lectura", fetch), {}, run);
    if (more) {
      *more = PQresultStatus(r.get()) == PGRES_TUPLES_OK &&
              static_cast<size_t>(PQntuples(r.get())) > max_rows;
    }
    return r;
  }

  void EndReadOnly(bool nested) {
    session_->Command(nested ? "ROLLBACK TO SAVEPOINT kmf_read_only; "
                               "RELEASE SAVEPOINT kmf_read_only"
                             : "ROLLBACK");
  }

  [[noreturn]] static void RefuseWrite(const std::string& run) {
    throw DbError(fmt::format(
        "La consulta solo puede leer datos y esta sentencia modificaría la base de datos: {}",
        run));
  }

  std::shared_ptr<Session> session_;
  sql::TransactionLevels levels_;
  std::map<std::string, std::optional<WriteTarget>> targets_;  // by the table name as written
  mutable sql::TranslationCache translations_{&Translated};
  // A statement that may change tables ran in the open transaction: a rollback must forget
  // the answers read since.
  bool tables_changed_in_transaction_ = false;
};

}  // namespace

std::shared_ptr<Connection> OpenPostgres(const std::string& conninfo, const Options& options) {
  return std::make_shared<PgConnection>(conninfo, options);
}

}  // namespace kivmovfrec::postgres
