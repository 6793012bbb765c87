#include "platform/db/sqlite/sqlite_connection.h"

#include <fmt/format.h>

#include <cstdint>

#include "platform/db/dialect.h"
#include "platform/db/query_limit.h"
#include "platform/db/sqlite/sqlite_database.h"
#include "platform/db/sqlite/sqlite_resultset.h"
#include "platform/db/transaction_levels.h"
#include "platform/db/translation_cache.h"

namespace kivmovfrec::sqlite {

namespace {

sql::TranslatedSql TranslateForSqlite(std::string_view sql) {
  sql::TranslatedSql out = sql::Derive(sql::TranslateSql(sql, sql::Target::SQLite));
  if (out.single_table) {
    // The same statement with each row's rowid in front of the table's columns, for sets
    // whose rows are written back.
    out.alternate = out.run;
    out.alternate.insert(out.single_table->star_offset, fmt::format("rowid AS {}, ", kRowidAlias));
  }
  return out;
}

class SqliteConnection final : public Connection {
 public:
  SqliteConnection(const std::string& path, const Options& options)
      : db_(std::make_shared<Database>(path, options.busy_timeout_ms)),
        levels_(sql::TransactionLevels::Engine{
            [this] { return sqlite3_get_autocommit(db_->get()) == 0; },
            [this](const std::string& text) { db_->Exec(text); },
            [this] { db_->Exec("BEGIN IMMEDIATE"); }, [this] { db_->Exec("COMMIT"); },
            [this] { db_->Exec("ROLLBACK"); }}) {}

  Engine engine() const override { return Engine::SQLite; }

  std::string Translate(std::string_view sql) const override { return translations_.Get(sql)->run; }

  std::unique_ptr<Resultset> OpenResultset(std::string_view sql, const DbParams& params) override {
    const auto translated = translations_.Get(sql);
    const std::string& run = translated->run;
    translated->CheckPlaceholders(params.size());
    if (const auto& shape = translated->single_table) {
      std::optional<Statement> st;
      try {
        st.emplace(db_, translated->alternate, run);
      } catch (const DbError&) {
        st.reset();  // no such table, or no rowid (a view, WITHOUT ROWID): read only, as below
      }
      if (st) {
        Bind(*st, params);
        return MakeResultset(db_, *st, shape->table);
      }
    }
    Statement st(db_, run, run);
    Bind(st, params);
    return MakeResultset(db_, st, std::nullopt);
  }

  std::unique_ptr<Resultset> OpenReadOnly(std::string_view sql) override {
    return OpenReadOnlyRows(sql, SIZE_MAX, nullptr);
  }

  std::unique_ptr<Resultset> OpenReadOnlyRows(std::string_view sql, size_t max_rows,
                                              bool* more = nullptr) override {
    const auto translated = translations_.Get(sql);
    const std::string& run = translated->run;
    const std::string& first = translated->leading;
    // BEGIN, COMMIT, ATTACH and PRAGMA count as read-only for the engine but change the
    // connection; only queries are accepted.
    bool query = first == "SELECT" || first == "WITH" || first == "VALUES";
    Statement st(db_, run, run);
    if (!query || !st.read_only()) {
      throw DbError(fmt::format(
          "La consulta solo puede leer datos y esta sentencia modificaría la base de datos: {}",
          run));
    }
    // Only this statement runs under the limit; the handler goes with `deadline`.
    Deadline deadline(db_->get(), QueryLimit());
    try {
      return MakeResultset(db_, st, std::nullopt, max_rows, more);
    } catch (const DbError&) {
      if (deadline.expired()) throw sql::QueryLimitError(QueryLimit(), run);
      throw;
    }
  }

  int64_t Execute(std::string_view sql, const DbParams& params) override {
    const auto translated = translations_.Get(sql);
    const std::string& run = translated->run;
    translated->CheckPlaceholders(params.size());
    Statement st(db_, run, run);
    Bind(st, params);
    sqlite3* h = db_->get();
    const sqlite3_int64 before = sqlite3_total_changes64(h);
    while (st.Step()) {
    }
    return sqlite3_total_changes64(h) != before ? sqlite3_changes64(h) : 0;
  }

  void BeginTrans() override { levels_.Begin(); }
  void CommitTrans() override { levels_.Commit(); }
  void RollbackTrans() override { levels_.Rollback(); }
  int TransactionDepth() const override { return levels_.Depth(); }
  bool InTransaction() const override { return sqlite3_get_autocommit(db_->get()) == 0; }

 private:
  // SQLite also reads `:name`, `@name`, `$name` and `?NNN` as placeholders: a statement must
  // have exactly the values given, whatever it marks them with.
  static void Bind(Statement& st, const DbParams& params) {
    if (static_cast<size_t>(sqlite3_bind_parameter_count(st.get())) != params.size()) {
      throw DbError(
          fmt::format("La sentencia no tiene un marcador '?' por cada valor dado: {}", st.shown()));
    }
    for (size_t i = 0; i < params.size(); ++i) st.Bind(static_cast<int>(i + 1), params[i]);
  }

  std::shared_ptr<Database> db_;
  sql::TransactionLevels levels_;
  mutable sql::TranslationCache translations_{&TranslateForSqlite};
};

}  // namespace

std::shared_ptr<Connection> OpenSqlite(const std::string& path, const Options& options) {
  return std::make_shared<SqliteConnection>(path, options);
}

}  // namespace kivmovfrec::sqlite
