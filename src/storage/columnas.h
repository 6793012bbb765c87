// Reading column values of the suite's tables into record fields.
//
// The engines hand back a column as whatever subtype they store (SQLite: integer, real or text;
// PostgreSQL: the column's type), so every read goes through the VB conversions. A NULL column
// is never converted: callers ask IsNull first and keep the field's default, which is how every
// record of the component reads a row.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::storage {

// NULL or Empty (a column the engine had no value for).
inline bool EsNulo(const Variant& v) {
  return v.IsNull() || v.IsEmpty();
}

// Conversions of a non-NULL column value. They throw VbError (13 type mismatch, 6 overflow)
// when the stored value does not fit the field; a NULL gives the field's default (0, "", false).
uint8_t AByte(const Variant& v);
int16_t AInteger(const Variant& v);
int32_t ALong(const Variant& v);
float ASingle(const Variant& v);
double ADouble(const Variant& v);
bool ABool(const Variant& v);
std::string ATexto(const Variant& v);
Date AFecha(const Variant& v);

// Calls set(converted value) when column `col` of the current row is not NULL; a NULL leaves
// the field as it is. `conv` is one of the conversions above.
template <typename Conv, typename Set>
void SiNoNulo(const Resultset& rs, std::string_view col, Conv conv, Set set) {
  const Variant v = rs.Get(col);
  if (!EsNulo(v)) set(conv(v));
}

// The value to write for an optional column: NULL when the field holds its "none" value.
inline Variant NuloSiVacio(const std::string& s) {
  return s.empty() ? Variant::Null() : Variant(s);
}
template <typename T>
Variant NuloSiCero(T x) {
  return x == T{} ? Variant::Null() : Variant(x);
}

}  // namespace kivmovfrec::storage
