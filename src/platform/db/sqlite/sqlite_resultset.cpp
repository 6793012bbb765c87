#include "platform/db/sqlite/sqlite_resultset.h"

#include <fmt/format.h>

#include "platform/db/sql_tokens.h"

namespace kivmovfrec::sqlite {

namespace {

struct Row {
  int64_t rowid = 0;
  std::vector<Variant> values;
  bool deleted = false;
};

enum class EditMode { None, AddNew, Edit };

class SqliteResultset final : public Resultset {
 public:
  SqliteResultset(std::shared_ptr<Database> db, Statement& stmt, std::optional<WriteTarget> target)
      : db_(std::move(db)), target_(std::move(target)) {
    const int skip = target_ ? 1 : 0;
    auto all = ReadColumns(stmt.get());
    columns_.assign(all.begin() + skip, all.end());
    if (target_ && target_->columns.size() != columns_.size()) {
      target_.reset();  // not the table's own columns: read only
    }
    while (stmt.Step()) rows_.push_back(ReadRow(stmt.get(), skip));
  }

  bool Eof() const override {
    CheckOpen();
    return pos_ >= rows_.size();
  }

  void MoveNext() override {
    CheckOpen();
    mode_ = EditMode::None;  // moving abandons an unfinished AddNew/Edit
    if (pos_ < rows_.size()) ++pos_;
    while (pos_ < rows_.size() && rows_[pos_].deleted) ++pos_;
  }

  int ColumnCount() const override {
    CheckOpen();
    return static_cast<int>(columns_.size());
  }

  std::string ColumnName(int index) const override {
    CheckOpen();
    return columns_[CheckIndex(index)].name;
  }

  bool HasColumn(std::string_view name) const override {
    CheckOpen();
    return Find(name).has_value();
  }

  Variant Get(int index) const override {
    CheckOpen();
    return Current()[CheckIndex(index)];
  }

  Variant Get(std::string_view name) const override {
    CheckOpen();
    auto i = Find(name);
    if (!i) throw DbError(fmt::format("No existe la columna '{}' en el resultado", name));
    return Current()[*i];
  }

  void AddNew() override {
    CheckWritable();
    buffer_.assign(columns_.size(), Variant::Null());
    assigned_.assign(columns_.size(), false);
    mode_ = EditMode::AddNew;
  }

  void Edit() override {
    CheckWritable();
    if (pos_ >= rows_.size() || rows_[pos_].deleted) {
      throw DbError("No hay una fila actual para modificar");
    }
    buffer_ = rows_[pos_].values;
    assigned_.assign(columns_.size(), false);
    mode_ = EditMode::Edit;
  }

  void Set(std::string_view name, const Variant& value) override {
    CheckWritable();
    if (mode_ == EditMode::None) {
      throw DbError(fmt::format("Asignación a la columna '{}' sin AddNew ni Edit", name));
    }
    size_t i = TableColumn(name);
    if (value.IsObject()) {
      throw DbError(fmt::format("Un objeto no se puede guardar en la columna '{}'", name));
    }
    buffer_[i] = value.IsEmpty() ? Variant::Null() : value;
    assigned_[i] = true;
  }

  void Update() override {
    CheckWritable();
    if (mode_ == EditMode::None) throw DbError("Update sin AddNew ni Edit");
    const auto& cols = target_->columns;
    const std::string table = QuoteName(target_->table);
    std::vector<size_t> changed;
    for (size_t i = 0; i < cols.size(); ++i) {
      if (assigned_[i]) changed.push_back(i);
    }
    int64_t rowid = 0;
    if (mode_ == EditMode::AddNew) {
      std::string sql;
      if (changed.empty()) {
        sql = fmt::format("INSERT INTO {} DEFAULT VALUES", table);
      } else {
        std::string names, marks;
        for (size_t i : changed) {
          names += (names.empty() ? "" : ", ") + QuoteName(cols[i]);
          marks += marks.empty() ? "?" : ", ?";
        }
        sql = fmt::format("INSERT INTO {} ({}) VALUES ({})", table, names, marks);
      }
      Run(sql, changed, std::nullopt);
      rowid = sqlite3_last_insert_rowid(db_->get());
    } else {
      rowid = rows_[pos_].rowid;
      if (!changed.empty()) {
        std::string sets;
        for (size_t i : changed) sets += (sets.empty() ? "" : ", ") + QuoteName(cols[i]) + " = ?";
        // RETURNING gives the row's rowid after the change: assigning an INTEGER PRIMARY KEY
        // column moves the row to another rowid, and the set must keep following it.
        rowid = Run(fmt::format("UPDATE {} SET {} WHERE rowid = ? RETURNING rowid", table, sets),
                    changed, rowid)
                    .value_or(rowid);
      }
    }
    // The row as stored: defaults, affinity conversions and triggers included.
    Statement reread(db_, fmt::format("SELECT rowid, * FROM {} WHERE rowid = ?", table),
                     "SELECT * FROM " + target_->table);
    reread.BindInt64(1, rowid);
    Row row;
    if (reread.Step()) {
      row = ReadRow(reread.get(), 1);
    } else {
      row.rowid = rowid;
      row.values = buffer_;
    }
    if (mode_ == EditMode::AddNew) {
      rows_.push_back(std::move(row));
      pos_ = rows_.size() - 1;
    } else {
      rows_[pos_] = std::move(row);
    }
    mode_ = EditMode::None;
  }

  void Delete() override {
    CheckWritable();
    if (pos_ >= rows_.size() || rows_[pos_].deleted) {
      throw DbError("No hay una fila actual para eliminar");
    }
    mode_ = EditMode::None;
    Statement st(db_, fmt::format("DELETE FROM {} WHERE rowid = ?", QuoteName(target_->table)),
                 "DELETE FROM " + target_->table);
    st.BindInt64(1, rows_[pos_].rowid);
    st.Step();
    rows_[pos_].deleted = true;
  }

  void Close() override {
    closed_ = true;
    rows_.clear();
    db_.reset();
  }

 private:
  Row ReadRow(sqlite3_stmt* stmt, int skip) const {
    Row row;
    if (skip) row.rowid = sqlite3_column_int64(stmt, 0);
    row.values.reserve(columns_.size());
    for (size_t i = 0; i < columns_.size(); ++i) {
      row.values.push_back(ReadValue(stmt, static_cast<int>(i) + skip, columns_[i].date));
    }
    return row;
  }

  // Runs an INSERT or UPDATE binding the changed columns (and the rowid last). Returns the first
  // column of the first row the statement yields (its RETURNING value), if any.
  std::optional<int64_t> Run(const std::string& sql, const std::vector<size_t>& changed,
                             std::optional<int64_t> rowid) {
    Statement st(db_, sql, sql);
    int n = 1;
    for (size_t i : changed) st.Bind(n++, buffer_[i]);
    if (rowid) st.BindInt64(n, *rowid);
    if (!st.Step()) return std::nullopt;
    const int64_t first = sqlite3_column_int64(st.get(), 0);
    while (st.Step()) {
    }
    return first;
  }

  void CheckOpen() const {
    if (closed_) throw DbError("El conjunto de resultados está cerrado");
  }

  void CheckWritable() const {
    CheckOpen();
    if (!target_) {
      throw DbError(
          "Este conjunto de resultados es de solo lectura: solo se pueden modificar las filas de "
          "una consulta 'Select * from Tabla' sobre una sola tabla");
    }
  }

  size_t CheckIndex(int index) const {
    if (index < 0 || static_cast<size_t>(index) >= columns_.size()) {
      throw DbError(fmt::format("Número de columna fuera del intervalo: {}", index));
    }
    return static_cast<size_t>(index);
  }

  std::optional<size_t> Find(std::string_view name) const {
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (sql::EqualsNoCase(columns_[i].name, name)) return i;
    }
    return std::nullopt;
  }

  size_t TableColumn(std::string_view name) const {
    const auto& cols = target_->columns;
    for (size_t i = 0; i < cols.size(); ++i) {
      if (sql::EqualsNoCase(cols[i], name)) return i;
    }
    throw DbError(fmt::format("La tabla {} no tiene la columna '{}'", target_->table, name));
  }

  // The values read now: the pending ones during AddNew/Edit, else the current row's.
  const std::vector<Variant>& Current() const {
    if (mode_ != EditMode::None) return buffer_;
    if (pos_ >= rows_.size()) throw DbError("No hay una fila actual (fin del conjunto)");
    if (rows_[pos_].deleted) throw DbError("La fila actual fue eliminada");
    return rows_[pos_].values;
  }

  std::shared_ptr<Database> db_;
  std::optional<WriteTarget> target_;
  std::vector<ColumnInfo> columns_;
  std::vector<Row> rows_;
  size_t pos_ = 0;
  bool closed_ = false;
  EditMode mode_ = EditMode::None;
  std::vector<Variant> buffer_;
  std::vector<bool> assigned_;
};

}  // namespace

std::unique_ptr<Resultset> MakeResultset(std::shared_ptr<Database> db, Statement& stmt,
                                         std::optional<WriteTarget> target) {
  return std::make_unique<SqliteResultset>(std::move(db), stmt, std::move(target));
}

}  // namespace kivmovfrec::sqlite
