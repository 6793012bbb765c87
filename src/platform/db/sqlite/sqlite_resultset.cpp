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
  // `first`: whether the statement's first step (already taken) gave a row.
  SqliteResultset(std::shared_ptr<Database> db, Statement& stmt, bool first,
                  std::optional<std::string> table, size_t max_rows, bool* more)
      : SqliteResultset(std::move(db), std::move(table),
                        VisibleColumns(stmt.get(), table.has_value())) {
    ReadRows(stmt, first, max_rows, more);
  }

  void Close() override {
    MaterialisedResultset::Close();
    rowids_.clear();
    db_.reset();
  }

 protected:
  std::vector<Variant> WriteRow(std::optional<size_t> row, const std::vector<Variant>& values,
                                const std::vector<bool>& assigned) override {
    std::vector<size_t> changed;
    for (size_t i = 0; i < assigned.size(); ++i) {
      if (assigned[i]) changed.push_back(i);
    }
    // An UPDATE gives back the row as it stores it (defaults and affinity conversions applied)
    // with its rowid first: after a change of an INTEGER PRIMARY KEY column the row has
    // another rowid, and the set must keep following it. An INSERT is read again by its rowid
    // below: measured, that costs less than the temporary table behind RETURNING.
    const std::string& sql = WriteText(row.has_value(), changed);
    int64_t rowid = row ? rowids_[*row] : 0;
    std::vector<Variant> stored;
    bool returned = false;
    {
      sqlite3* h = db_->get();
      const sqlite3_int64 before = sqlite3_total_changes64(h);
      Statement st(db_, sql, sql);
      int n = 1;
      for (size_t i : changed) st.Bind(n++, values[i]);
      if (row) st.BindInt64(n, rowid);
      if (st.Step()) {
        returned = true;
        rowid = sqlite3_column_int64(st.get(), 0);
        stored = ReadValues(st.get(), 1);
        while (st.Step()) {
        }
      } else if (!row) {
        rowid = sqlite3_last_insert_rowid(h);
      }
      // What the statement returns is the row before the triggers it fired ran: when they
      // changed rows, the row is read again as they left it.
      if (sqlite3_total_changes64(h) - before > 1) returned = false;
    }
    if (!returned) {
      const std::string reread =
          fmt::format("SELECT rowid, * FROM {} WHERE rowid = ?", sql::QuoteName(target().table));
      Statement st(db_, reread, reread);
      st.BindInt64(1, rowid);
      stored = st.Step() ? ReadValues(st.get(), 1) : values;
    }
    if (row) {
      rowids_[*row] = rowid;
    } else {
      rowids_.push_back(rowid);
    }
    return stored;
  }

  void DeleteRow(size_t row) override {
    const std::string sql =
        fmt::format("DELETE FROM {} WHERE rowid = ?", sql::QuoteName(target().table));
    Statement st(db_, sql, sql);
    st.BindInt64(1, rowids_[row]);
    st.Step();
  }

 private:
  SqliteResultset(std::shared_ptr<Database> db, std::optional<std::string>&& table,
                  std::vector<ColumnInfo> columns)
      : MaterialisedResultset(Names(columns)), db_(std::move(db)), skip_(table ? 1 : 0) {
    for (const auto& c : columns) dates_.push_back(c.date);
    // The columns `*` stands for are the table's, in its order.
    if (table) SetWriteTarget(WriteTarget{std::move(*table), Names(columns)});
  }

  void ReadRows(Statement& stmt, bool first, size_t max_rows, bool* more) {
    size_t rows = 0;
    for (bool has = first; has && rows < max_rows;) {
      if (skip_) rowids_.push_back(sqlite3_column_int64(stmt.get(), 0));
      AddRow(ReadValues(stmt.get(), skip_));
      if (++rows < max_rows) has = stmt.Step();
    }
    if (more) *more = rows == max_rows && (rows == 0 ? first : stmt.Step());
  }

  // The INSERT (`update` false) or UPDATE of the columns `changed`, kept for the next row
  // written with the same columns.
  const std::string& WriteText(bool update, const std::vector<size_t>& changed) {
    Written& w = update ? update_ : insert_;
    if (!w.text.empty() && w.changed == changed) return w.text;
    const auto& cols = target().columns;
    const std::string table = sql::QuoteName(target().table);
    std::string list;
    if (!update) {
      if (changed.empty()) {
        w.text = fmt::format("INSERT INTO {} DEFAULT VALUES", table);
      } else {
        std::string marks;
        for (size_t i : changed) {
          list += (list.empty() ? "" : ", ") + sql::QuoteName(cols[i]);
          marks += marks.empty() ? "?" : ", ?";
        }
        w.text = fmt::format("INSERT INTO {} ({}) VALUES ({})", table, list, marks);
      }
    } else if (changed.empty()) {
      w.text = fmt::format("SELECT rowid, * FROM {} WHERE rowid = ?", table);
    } else {
      for (size_t i : changed)
        list += (list.empty() ? "" : ", ") + sql::QuoteName(cols[i]) + " = ?";
      w.text = fmt::format("UPDATE {} SET {} WHERE rowid = ? RETURNING rowid, *", table, list);
    }
    w.changed = changed;
    return w.text;
  }

  std::vector<Variant> ReadValues(sqlite3_stmt* stmt, int skip) const {
    std::vector<Variant> values;
    values.reserve(dates_.size());
    for (size_t i = 0; i < dates_.size(); ++i) {
      values.push_back(ReadValue(stmt, static_cast<int>(i) + skip, dates_[i]));
    }
    return values;
  }

  std::shared_ptr<Database> db_;
  int skip_ = 0;                 // 1 when the statement's first column is the hidden rowid
  std::vector<bool> dates_;      // per visible column: declared as a date
  std::vector<int64_t> rowids_;  // per row of the set, when it is updatable
  struct Written {
    std::vector<size_t> changed;
    std::string text;
  };
  Written insert_, update_;  // the last statements written by WriteText
};

}  // namespace

std::unique_ptr<Resultset> MakeResultset(std::shared_ptr<Database> db, Statement& stmt,
                                         std::optional<std::string> table, size_t max_rows,
                                         bool* more) {
  // The columns are read after the first step: a kept statement prepared before its tables
  // changed is prepared again by that step, and only then describes them as they are.
  const bool first = stmt.Step();
  return std::make_unique<SqliteResultset>(std::move(db), stmt, first, std::move(table), max_rows,
                                           more);
}

}  // namespace kivmovfrec::sqlite
