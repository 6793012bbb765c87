#include "platform/db/materialised_resultset.h"

#include <fmt/format.h>

#include "platform/db/sql_tokens.h"

namespace kivmovfrec::sql {

MaterialisedResultset::MaterialisedResultset(std::vector<std::string> columns)
    : columns_(std::move(columns)) {}

bool MaterialisedResultset::SetWriteTarget(TableColumns target) {
  if (target.columns.size() != columns_.size()) return false;
  target_ = std::move(target);
  return true;
}

void MaterialisedResultset::AddRow(std::vector<Variant> values) {
  rows_.push_back(Row{std::move(values), false});
}

bool MaterialisedResultset::Eof() const {
  CheckOpen();
  return pos_ >= rows_.size();
}

void MaterialisedResultset::MoveNext() {
  CheckOpen();
  mode_ = EditMode::None;
  column_guess_.next = 0;
  if (pos_ < rows_.size()) ++pos_;
  while (pos_ < rows_.size() && rows_[pos_].deleted) ++pos_;
}

int MaterialisedResultset::ColumnCount() const {
  CheckOpen();
  return static_cast<int>(columns_.size());
}

std::string MaterialisedResultset::ColumnName(int index) const {
  CheckOpen();
  return columns_[CheckIndex(index)];
}

bool MaterialisedResultset::HasColumn(std::string_view name) const {
  CheckOpen();
  return Find(name).has_value();
}

Variant MaterialisedResultset::Get(int index) const {
  CheckOpen();
  return Current()[CheckIndex(index)];
}

Variant MaterialisedResultset::Get(std::string_view name) const {
  CheckOpen();
  auto i = Find(name);
  if (!i) throw DbError(fmt::format("No existe la columna '{}' en el resultado", name));
  return Current()[*i];
}

void MaterialisedResultset::AddNew() {
  CheckWritable();
  buffer_.assign(columns_.size(), Variant::Null());
  assigned_.assign(columns_.size(), false);
  mode_ = EditMode::AddNew;
  table_guess_.next = 0;
}

void MaterialisedResultset::Edit() {
  CheckWritable();
  buffer_ = rows_[CurrentRow("No hay una fila actual para modificar")].values;
  assigned_.assign(columns_.size(), false);
  mode_ = EditMode::Edit;
  table_guess_.next = 0;
}

void MaterialisedResultset::Set(std::string_view name, const Variant& value) {
  CheckWritable();
  if (mode_ == EditMode::None) {
    throw DbError(fmt::format("Asignación a la columna '{}' sin AddNew ni Edit", name));
  }
  const size_t i = TableColumn(name);
  if (value.IsObject()) {
    throw DbError(fmt::format("Un objeto no se puede guardar en la columna '{}'", name));
  }
  buffer_[i] = value.IsEmpty() ? Variant::Null() : value;
  assigned_[i] = true;
}

void MaterialisedResultset::Update() {
  CheckWritable();
  if (mode_ == EditMode::None) throw DbError("Update sin AddNew ni Edit");
  if (mode_ == EditMode::AddNew) {
    auto stored = WriteRow(std::nullopt, buffer_, assigned_);
    rows_.push_back(Row{std::move(stored), false});
    pos_ = rows_.size() - 1;
  } else {
    rows_[pos_].values = WriteRow(pos_, buffer_, assigned_);
  }
  mode_ = EditMode::None;
}

void MaterialisedResultset::Delete() {
  CheckWritable();
  const size_t row = CurrentRow("No hay una fila actual para eliminar");
  mode_ = EditMode::None;
  DeleteRow(row);
  rows_[row].deleted = true;
}

void MaterialisedResultset::Close() {
  closed_ = true;
  rows_.clear();
}

void MaterialisedResultset::CheckOpen() const {
  if (closed_) throw DbError("El conjunto de resultados está cerrado");
}

void MaterialisedResultset::CheckWritable() const {
  CheckOpen();
  if (!target_) {
    throw DbError(
        "Este conjunto de resultados es de solo lectura: solo se pueden modificar las filas de "
        "una consulta 'Select * from Tabla' sobre una sola tabla");
  }
}

size_t MaterialisedResultset::CurrentRow(const char* what) const {
  if (pos_ >= rows_.size() || rows_[pos_].deleted) throw DbError(what);
  return pos_;
}

size_t MaterialisedResultset::CheckIndex(int index) const {
  if (index < 0 || static_cast<size_t>(index) >= columns_.size()) {
    throw DbError(fmt::format("Número de columna fuera del intervalo: {}", index));
  }
  return static_cast<size_t>(index);
}

std::optional<size_t> MaterialisedResultset::Find(const std::vector<std::string>& names,
                                                  Guess& guess, std::string_view name) {
  // A remembered position was the first match of a name equal to names[p]: when `name` equals
  // names[p] too, p is its first match as well.
  if (guess.next < guess.order.size() && EqualsNoCase(names[guess.order[guess.next]], name)) {
    return guess.order[guess.next++];
  }
  for (size_t i = 0; i < names.size(); ++i) {
    if (EqualsNoCase(names[i], name)) {
      // The sequence differs from here on: learn it anew. Bounded by a few times the columns.
      if (guess.next < guess.order.size()) guess.order.resize(guess.next);
      if (guess.order.size() < 4 * names.size() + 8) {
        guess.order.push_back(i);
        ++guess.next;
      }
      return i;
    }
  }
  return std::nullopt;
}

std::optional<size_t> MaterialisedResultset::Find(std::string_view name) const {
  return Find(columns_, column_guess_, name);
}

size_t MaterialisedResultset::TableColumn(std::string_view name) const {
  if (auto i = Find(target_->columns, table_guess_, name)) return *i;
  throw DbError(fmt::format("La tabla {} no tiene la columna '{}'", target_->table, name));
}

const std::vector<Variant>& MaterialisedResultset::Current() const {
  if (mode_ != EditMode::None) return buffer_;
  if (pos_ >= rows_.size()) throw DbError("No hay una fila actual (fin del conjunto)");
  if (rows_[pos_].deleted) throw DbError("La fila actual fue eliminada");
  return rows_[pos_].values;
}

}  // namespace kivmovfrec::sql
