// A row's values as a list of columns, written either through an updatable result set or by one
// statement with bound values. The tables' mappings (tabla_movimientos.h, tabla_recurrencias.h)
// build the list once, so both ways write exactly the same values.
//
// The statements built here name only the columns given and bind every value (no value is ever
// SQL text); they run on the caller's connection and transaction, and database errors (DbError)
// propagate.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "kivmovfrec/db.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::storage {

// Column name and value, in the order they are written.
using ValoresFila = std::vector<std::pair<const char*, Variant>>;

// Assigns every value on the row being added or edited in `rs`.
void EscribirFila(Resultset& rs, const ValoresFila& valores);

// "Update <tabla> Set c1 = ?, c2 = ? ... Where <clave> = ?" with the values and `id` bound;
// returns the number of rows changed (0 when row `id` does not exist).
int64_t ActualizarFila(Connection& cn, std::string_view tabla, std::string_view clave, int32_t id,
                       const ValoresFila& valores);

// Inserts `filas` into `tabla`, every one with the columns of the first, in as few statements
// as the engines' limit on bound values allows (multi-row VALUES). Nothing for no rows; rows
// whose columns differ from the first's throw std::invalid_argument before anything is written.
void InsertarFilas(Connection& cn, std::string_view tabla, const std::vector<ValoresFila>& filas);

}  // namespace kivmovfrec::storage
