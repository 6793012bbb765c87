// The rows the formula editor offers when a function needs an argument, and what each stores.
//
// Three sources:
//   * a catalogue lookup query (currencies, rate types, indices, accounts, other movements):
//     every row the query gives with its context filled in (storage/consulta_lookup.h); the
//     display column is shown and the id column stored;
//   * the lines of the movement being edited, as the editor holds them (they may not be saved);
//   * the stored lines of another movement (SqlCuentasMovimiento).
// A line is shown as its account code and name followed by the project's and the department's
// abbreviations when it has them, and stored as "account;project;department". Lines without an
// account are never offered.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "formula/formula_mf.h"
#include "kivmovfrec/db.h"
#include "storage/consulta_lookup.h"

namespace kivmovfrec::ui::fx {

struct OpcionFx {
  std::string texto;  // what the pick list shows
  std::string valor;  // what the reference stores
};

// A key column a line must have to be offered: numeric columns are compared with "<> 0", text
// columns with "<> ''".
struct FiltroClave {
  std::string columna;
  bool numerica = true;
};

// The filters of the account choice: the line has an account, and the account has a code.
const std::vector<FiltroClave>& FiltrosCuenta();

// The stored lines of movement `movimiento` with their accounts, projects and departments, one
// condition per filter.
std::string SqlCuentasMovimiento(int32_t movimiento, const std::vector<FiltroClave>& filtros);

// The stored lines of movement `movimiento` as options (SqlCuentasMovimiento with FiltrosCuenta,
// in the order the database gives). DbError on failure.
std::vector<OpcionFx> LineasGuardadas(Connection& cn, int32_t movimiento);

// The lines held in memory as options, in order, leaving out those without an account.
std::vector<OpcionFx> LineasEnMemoria(const std::vector<formula::LineaVisible>& lineas);

// Every row of a lookup query as options: the third column shown, the first stored. DbError on
// failure.
std::vector<OpcionFx> OpcionesConsulta(Connection& cn, std::string_view consulta,
                                       const storage::ContextoLookup& ctx);

}  // namespace kivmovfrec::ui::fx
