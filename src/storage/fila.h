// A row's values as a list of columns, written either through an updatable result set or by one
// statement with bound values. The tables' mappings (tabla_movimientos.h, tabla_recurrencias.h)
// build the list once, so both ways write exactly the same values.
//
// The statements built here name only the columns given and bind every value (no value is ever
// SQL text); the caller runs them (Connection::ExecuteAll sends several in one round trip).
#pragma once

#include <cstdint>
#include <string>
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

// "Update <tabla> Set c1 = ?, c2 = ? ... Where <clave> = ?" with the values and `id` bound.
DbStatement SentenciaActualizar(std::string_view tabla, std::string_view clave, int32_t id,
                                const ValoresFila& valores);

// The statements that insert `filas` into `tabla`, every one with the columns of the first:
// multi-row VALUES, as many rows per statement as the engines' limit on bound values allows.
// None for no rows; rows whose columns differ from the first's throw std::invalid_argument.
std::vector<DbStatement> SentenciasInsertar(std::string_view tabla,
                                            const std::vector<ValoresFila>& filas);

// The ids ids[desde .. desde + cuantos) (cut at the end) as the placeholders of an "In (...)"
// list, "?, ?, ?", and their values in the same order.
struct ListaIds {
  std::string marcadores;
  DbParams valores;
};
ListaIds ListaDeIds(const std::vector<int32_t>& ids, size_t desde, size_t cuantos);

}  // namespace kivmovfrec::storage
