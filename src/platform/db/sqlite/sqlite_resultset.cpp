#include "platform/db/sqlite/sqlite_resultset.h"

#include <fmt/format.h>

#include "platform/db/sql_tokens.h"

namespace kivmovfrec::sqlite {

namespace {

std::vector<std::string> Names(const std::vector<ColumnInfo>& columns) {
  std::vector<std::string> out;
  out.reserve(columns.size());
  for (const auto& c : columns) out.push_back(c.name);
  return out;
}

// The columns the reader sees: with a target, the statement's first column (the rowid) is not
// one of them.
std::vector<ColumnInfo> VisibleColumns(sqlite3_stmt* stmt, bool with_rowid) {
  auto all = ReadColumns(stmt);
  if (with_rowid) all.erase(all.begin());
  return all;
}

class SqliteResultset final : public sql::MaterialisedResultset {
 public:
  SqliteResultset(std::shared_ptr<Database> db, Statement& stmt, std::optional<WriteTarget> target,
                  size_t max_rows, bool* more)
      : SqliteResultset(std::move(db), std::move(target),
                        VisibleColumns(stmt.get(), target.has_value())) {
    ReadRows(stmt, max_rows, more);
  }

  void Close() override {
    MaterialisedResultset::Close();
    rowids_.clear();
    db_.reset();
  }

 protected:
  std::vector<Variant> WriteRow(std::optional<size_t> row, const std::vector<Variant>& values,
                                const std::vector<bool>& assigned) override {
    const auto& cols = target().columns;
    const std::string table = sql::QuoteName(target().table);
    std::vector<size_t> changed;
    for (size_t i = 0; i < cols.size(); ++i) {
      if (assigned[i]) changed.push_back(i);
    }
    int64_t rowid = 0;
    if (!row) {
      std::string sql;
      if (changed.empty()) {
        sql = fmt::format("INSERT INTO {} DEFAULT VALUES", table);
      } else {
        std::string names, marks;
        for (size_t i : changed) {
          names += (names.empty() ? "" : ", ") + sql::QuoteName(cols[i]);
          marks += marks.empty() ? "?" : ", ?";
        }
        sql = fmt::format("INSERT INTO {} ({}) VALUES ({})", table, names, marks);
      }
      Run(sql, values, changed, std::nullopt);
      rowid = sqlite3_last_insert_rowid(db_->get());
    } else {
      rowid = rowids_[*row];
      if (!changed.empty()) {
        std::string sets;
        for (size_t i : changed) {
          sets += (sets.empty() ? "" : ", ") + sql::QuoteName(cols[i]) + " = ?";
        }
        // RETURNING gives the row's rowid after the change: assigning an INTEGER PRIMARY KEY
        // column moves the row to another rowid, and the set must keep following it.
        rowid = Run(fmt::format("UPDATE {} SET {} WHERE rowid = ? RETURNING rowid", table, sets),
                    values, changed, rowid)
                    .value_or(rowid);
      }
    }
    // The row as stored: defaults, affinity conversions and triggers included.
    Statement reread(db_, fmt::format("SELECT rowid, * FROM {} WHERE rowid = ?", table),
                     "SELECT * FROM " + target().table);
    reread.BindInt64(1, rowid);
    std::vector<Variant> stored = reread.Step() ? ReadValues(reread.get(), 1) : values;
    if (row) {
      rowids_[*row] = rowid;
    } else {
      rowids_.push_back(rowid);
    }
    return stored;
  }

  void DeleteRow(size_t row) override {
    Statement st(db_, fmt::format("DELETE FROM {} WHERE rowid = ?", sql::QuoteName(target().table)),
                 "DELETE FROM " + target().table);
    st.BindInt64(1, rowids_[row]);
    st.Step();
  }

 private:
  SqliteResultset(std::shared_ptr<Database> db, std::optional<WriteTarget>&& target,
                  std::vector<ColumnInfo> columns)
      : MaterialisedResultset(Names(columns)), db_(std::move(db)), skip_(target ? 1 : 0) {
    for (const auto& c : columns) dates_.push_back(c.date);
    // Not the table's own columns: the set stays read only.
    if (target) SetWriteTarget(std::move(*target));
  }

  void ReadRows(Statement& stmt, size_t max_rows, bool* more) {
    size_t rows = 0;
    for (; rows < max_rows && stmt.Step(); ++rows) {
      if (skip_) rowids_.push_back(sqlite3_column_int64(stmt.get(), 0));
      AddRow(ReadValues(stmt.get(), skip_));
    }
    if (more) *more = rows == max_rows && stmt.Step();
  }

  std::vector<Variant> ReadValues(sqlite3_stmt* stmt, int skip) const {
    std::vector<Variant> values;
    values.reserve(dates_.size());
    for (size_t i = 0; i < dates_.size(); ++i) {
      values.push_back(ReadValue(stmt, static_cast<int>(i) + skip, dates_[i]));
    }
    return values;
  }

  // Runs an INSERT or UPDATE binding the changed columns (and the rowid last). Returns the first
  // column of the first row the statement yields (its RETURNING value), if any.
  std::optional<int64_t> Run(const std::string& sql, const std::vector<Variant>& values,
                             const std::vector<size_t>& changed, std::optional<int64_t> rowid) {
    Statement st(db_, sql, sql);
    int n = 1;
    for (size_t i : changed) st.Bind(n++, values[i]);
    if (rowid) st.BindInt64(n, *rowid);
    if (!st.Step()) return std::nullopt;
    const int64_t first = sqlite3_column_int64(st.get(), 0);
    while (st.Step()) {
    }
    return first;
  }

  std::shared_ptr<Database> db_;
  int skip_ = 0;                 // 1 when the statement's first column is the hidden rowid
  std::vector<bool> dates_;      // per visible column: declared as a date
  std::vector<int64_t> rowids_;  // per row of the set, when it is updatable
};

}  // namespace

std::unique_ptr<Resultset> MakeResultset(std::shared_ptr<Database> db, Statement& stmt,
                                         std::optional<WriteTarget> target, size_t max_rows,
                                         bool* more) {
  return std::make_unique<SqliteResultset>(std::move(db), stmt, std::move(target), max_rows, more);
}

}  // namespace kivmovfrec::sqlite
