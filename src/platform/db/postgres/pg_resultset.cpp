#include "platform/db/postgres/pg_resultset.h"

#include <fmt/format.h>

#include "platform/db/postgres/pg_values.h"
#include "platform/db/sql_tokens.h"

namespace kivmovfrec::postgres {

namespace {

// The columns the reader sees, from the `skip`-th on (a hidden ctid comes first).
std::vector<std::string> VisibleColumns(const PGresult* result, int skip) {
  std::vector<std::string> out;
  const int n = PQnfields(result);
  for (int i = skip; i < n; ++i) {
    const char* name = PQfname(result, i);
    out.emplace_back(name ? name : "");
  }
  return out;
}

int HiddenColumns(const std::optional<WriteTarget>& target) {
  return target && target->key.empty() ? 1 : 0;
}

class PgResultset final : public sql::MaterialisedResultset {
 public:
  PgResultset(std::shared_ptr<Session> session, const PGresult* result,
              std::optional<WriteTarget> target, size_t max_rows)
      : MaterialisedResultset(VisibleColumns(result, HiddenColumns(target))),
        session_(std::move(session)),
        skip_(HiddenColumns(target)) {
    // Not the table's own columns: read only (a hidden ctid stays hidden).
    if (target && SetWriteTarget(*target)) {
      qualified_ = std::move(target->qualified);
      key_ = std::move(target->key);
    }
    const int rows = PQntuples(result);
    for (int r = 0; r < rows && static_cast<size_t>(r) < max_rows; ++r) {
      AddRow(ReadRow(result, r));
    }
  }

  void Close() override {
    MaterialisedResultset::Close();
    identities_.clear();
    session_.reset();
  }

 protected:
  std::vector<Variant> WriteRow(std::optional<size_t> row, const std::vector<Variant>& values,
                                const std::vector<bool>& assigned) override {
    const auto& cols = target().columns;
    Params params;
    std::string names, marks, sets;
    for (size_t i = 0; i < cols.size(); ++i) {
      if (!assigned[i]) continue;
      params.push_back(ToParam(values[i]));
      const std::string mark = fmt::format("${}", params.size());
      names += (names.empty() ? "" : ", ") + sql::QuoteName(cols[i]);
      marks += (marks.empty() ? "" : ", ") + mark;
      sets += (sets.empty() ? "" : ", ") + sql::QuoteName(cols[i]) + " = " + mark;
    }
    const std::string returning = Returning();
    std::string sql;
    if (!row) {
      sql = params.empty()
                ? fmt::format("INSERT INTO {} DEFAULT VALUES RETURNING {}", qualified_, returning)
                : fmt::format("INSERT INTO {} ({}) VALUES ({}) RETURNING {}", qualified_, names,
                              marks, returning);
    } else if (params.empty()) {
      // Nothing assigned: read the row again as stored.
      sql =
          fmt::format("SELECT {} FROM {} WHERE {}", returning, qualified_, Identity(*row, params));
    } else {
      sql = fmt::format("UPDATE {} SET {} WHERE {} RETURNING {}", qualified_, sets,
                        Identity(*row, params), returning);
    }
    Result r = session_->Run(sql, params, sql);
    if (PQntuples(r.get()) != 1) throw Vanished();
    // The row as stored: defaults, conversions and triggers included.
    std::vector<Variant> stored = ReadRow(r.get(), 0);
    if (row) {
      identities_[*row] = ReadIdentity(r.get(), 0);
    } else {
      identities_.push_back(ReadIdentity(r.get(), 0));
    }
    return stored;
  }

  void DeleteRow(size_t row) override {
    Params params;
    const std::string sql =
        fmt::format("DELETE FROM {} WHERE {}", qualified_, Identity(row, params));
    Result r = session_->Run(sql, params, sql);
    const char* count = PQcmdTuples(r.get());
    if (count == nullptr || std::string_view(count) == "0") throw Vanished();
  }

 private:
  // Reads row `r` of `result`; an updatable set also keeps what identifies it in its table.
  std::vector<Variant> ReadRow(const PGresult* result, int r) {
    if (writable()) identities_.push_back(ReadIdentity(result, r));
    const int n = PQnfields(result);
    std::vector<Variant> values;
    values.reserve(static_cast<size_t>(n - skip_));
    for (int c = skip_; c < n; ++c) {
      if (PQgetisnull(result, r, c)) {
        values.push_back(Variant::Null());
      } else {
        std::string_view text(PQgetvalue(result, r, c),
                              static_cast<size_t>(PQgetlength(result, r, c)));
        values.push_back(FromText(PQftype(result, c), text));
      }
    }
    return values;
  }

  // The ctid, or the primary key's values, of row `r` as server text.
  std::vector<std::string> ReadIdentity(const PGresult* result, int r) const {
    std::vector<std::string> identity;
    if (skip_) {
      identity.emplace_back(PQgetvalue(result, r, 0));
    } else {
      for (size_t k : key_) identity.emplace_back(PQgetvalue(result, r, static_cast<int>(k)));
    }
    return identity;
  }

  // What the statements written return: the stored row, in `Select *` order.
  std::string Returning() const { return skip_ ? fmt::format("ctid AS {}, *", kCtidAlias) : "*"; }

  // The WHERE condition that finds row `row` of the set, its values appended to `params`.
  std::string Identity(size_t row, Params& params) const {
    const auto& identity = identities_.at(row);
    if (skip_) {
      params.emplace_back(identity.at(0));
      return fmt::format("ctid = ${}", params.size());
    }
    std::string where;
    for (size_t k = 0; k < key_.size(); ++k) {
      params.emplace_back(identity.at(k));
      where += fmt::format("{}{} = ${}", where.empty() ? "" : " AND ",
                           sql::QuoteName(target().columns[key_[k]]), params.size());
    }
    return where;
  }

  DbError Vanished() const {
    return DbError(fmt::format(
        "La fila ya no está en la tabla {}: otra sentencia la modificó o la eliminó después de "
        "leerla",
        target().table));
  }

  std::shared_ptr<Session> session_;
  int skip_ = 0;           // 1 when the result starts with the hidden ctid
  std::string qualified_;  // the table, for the statements written
  std::vector<size_t> key_;
  std::vector<std::vector<std::string>> identities_;  // per row, when the set is updatable
};

}  // namespace

std::unique_ptr<Resultset> MakeResultset(std::shared_ptr<Session> session, const PGresult* result,
                                         std::optional<WriteTarget> target, size_t max_rows) {
  return std::make_unique<PgResultset>(std::move(session), result, std::move(target), max_rows);
}

}  // namespace kivmovfrec::postgres
