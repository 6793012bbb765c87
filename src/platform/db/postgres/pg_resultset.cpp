#include "platform/db/postgres/pg_resultset.h"

#include <fmt/format.h>

#include "platform/db/postgres/pg_values.h"
#include "platform/db/sql_tokens.h"

namespace kivmovfrec::postgres {

namespace {

struct Row {
  std::vector<std::string> identity;  // ctid, or the primary key's values, as server text
  std::vector<Variant> values;
  bool deleted = false;
};

enum class EditMode { None, AddNew, Edit };

class PgResultset final : public Resultset {
 public:
  PgResultset(std::shared_ptr<Session> session, const PGresult* result,
              std::optional<WriteTarget> target)
      : session_(std::move(session)), target_(std::move(target)) {
    skip_ = target_ && target_->key.empty() ? 1 : 0;
    const int n = PQnfields(result);
    for (int i = skip_; i < n; ++i) {
      const char* name = PQfname(result, i);
      columns_.emplace_back(name ? name : "");
    }
    if (target_ && target_->columns.size() != columns_.size()) {
      target_.reset();  // not the table's own columns: read only (a hidden ctid stays hidden)
    }
    const int rows = PQntuples(result);
    rows_.reserve(static_cast<size_t>(rows));
    for (int r = 0; r < rows; ++r) rows_.push_back(ReadRow(result, r));
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
    return columns_[CheckIndex(index)];
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
    Params params;
    std::string names, marks, sets;
    for (size_t i = 0; i < cols.size(); ++i) {
      if (!assigned_[i]) continue;
      params.push_back(ToParam(buffer_[i]));
      const std::string mark = fmt::format("${}", params.size());
      names += (names.empty() ? "" : ", ") + QuoteName(cols[i]);
      marks += (marks.empty() ? "" : ", ") + mark;
      sets += (sets.empty() ? "" : ", ") + QuoteName(cols[i]) + " = " + mark;
    }
    const std::string returning = Returning();
    std::string sql;
    if (mode_ == EditMode::AddNew) {
      sql = params.empty() ? fmt::format("INSERT INTO {} DEFAULT VALUES RETURNING {}",
                                         target_->qualified, returning)
                           : fmt::format("INSERT INTO {} ({}) VALUES ({}) RETURNING {}",
                                         target_->qualified, names, marks, returning);
    } else if (params.empty()) {
      // Nothing assigned: read the row again as stored.
      sql = fmt::format("SELECT {} FROM {} WHERE {}", returning, target_->qualified,
                        Identity(rows_[pos_], params));
    } else {
      sql = fmt::format("UPDATE {} SET {} WHERE {} RETURNING {}", target_->qualified, sets,
                        Identity(rows_[pos_], params), returning);
    }
    Result r = session_->Run(sql, params, sql);
    if (PQntuples(r.get()) != 1) throw Vanished();
    // The row as stored: defaults, conversions and triggers included.
    Row row = ReadRow(r.get(), 0);
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
    Params params;
    const std::string sql =
        fmt::format("DELETE FROM {} WHERE {}", target_->qualified, Identity(rows_[pos_], params));
    Result r = session_->Run(sql, params, sql);
    const char* count = PQcmdTuples(r.get());
    if (count == nullptr || std::string_view(count) == "0") throw Vanished();
    rows_[pos_].deleted = true;
  }

  void Close() override {
    closed_ = true;
    rows_.clear();
    session_.reset();
  }

 private:
  Row ReadRow(const PGresult* result, int r) const {
    Row row;
    if (target_) {
      if (skip_) {
        row.identity.emplace_back(PQgetvalue(result, r, 0));
      } else {
        for (size_t k : target_->key) {
          row.identity.emplace_back(PQgetvalue(result, r, static_cast<int>(k)));
        }
      }
    }
    row.values.reserve(columns_.size());
    for (size_t i = 0; i < columns_.size(); ++i) {
      const int c = static_cast<int>(i) + skip_;
      if (PQgetisnull(result, r, c)) {
        row.values.push_back(Variant::Null());
      } else {
        std::string_view text(PQgetvalue(result, r, c),
                              static_cast<size_t>(PQgetlength(result, r, c)));
        row.values.push_back(FromText(PQftype(result, c), text));
      }
    }
    return row;
  }

  // What the statements written return: the stored row, in `Select *` order.
  std::string Returning() const { return skip_ ? fmt::format("ctid AS {}, *", kCtidAlias) : "*"; }

  // The WHERE condition that finds `row`, its values appended to `params`.
  std::string Identity(const Row& row, Params& params) const {
    if (skip_) {
      params.emplace_back(row.identity.at(0));
      return fmt::format("ctid = ${}", params.size());
    }
    std::string where;
    for (size_t k = 0; k < target_->key.size(); ++k) {
      params.emplace_back(row.identity.at(k));
      where += fmt::format("{}{} = ${}", where.empty() ? "" : " AND ",
                           QuoteName(target_->columns[target_->key[k]]), params.size());
    }
    return where;
  }

  DbError Vanished() const {
    return DbError(fmt::format(
        "La fila ya no está en la tabla {}: otra sentencia la modificó o la eliminó después de "
        "leerla",
        target_->table));
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
      if (sql::EqualsNoCase(columns_[i], name)) return i;
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

  std::shared_ptr<Session> session_;
  std::optional<WriteTarget> target_;
  int skip_ = 0;
  std::vector<std::string> columns_;
  std::vector<Row> rows_;
  size_t pos_ = 0;
  bool closed_ = false;
  EditMode mode_ = EditMode::None;
  std::vector<Variant> buffer_;
  std::vector<bool> assigned_;
};

}  // namespace

std::unique_ptr<Resultset> MakeResultset(std::shared_ptr<Session> session, const PGresult* result,
                                         std::optional<WriteTarget> target) {
  return std::make_unique<PgResultset>(std::move(session), result, std::move(target));
}

}  // namespace kivmovfrec::postgres
