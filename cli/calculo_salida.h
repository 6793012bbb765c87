// Writing the result of a formula calculation: the lines' amounts, the totals and, when asked,
// the trace of every value (for calcular and agenda --importes).
#pragma once

#include <iosfwd>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "kivmovfrec/db.h"
#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/traza_fx.h"

namespace kivmovfrec::cli {

// The movement as computed (its lines hold the amounts) and the trace of the calculation.
struct ResultadoCalculo {
  const clsMFTipo& mf;
  const TrazaCalculoFx& traza;
  std::shared_ptr<Connection> cn;  // for currency formats and the formulas' display form
};

// Text: header (movement, date used and why, currency), a table of the lines (order, account,
// side, amount in the movement's currency, amount in the account's currency, "Error" for a line
// without result) and the totals with "balanceado" or the difference. With `traza`, each
// line's formula (display and stored form), its elements with value and origin, the expression
// reduced, the conversion and the error. A line whose amount exists only because its expression
// was evaluated again with "," read as "." (TrazaLineaFx::reintento_tras_error) gets a warning
// naming the first error: beside the line with `traza`, below the totals without.
void ImprimirCalculo(std::ostream& out, const ResultadoCalculo& r, bool traza);

// JSON: {"ID", "Nombre", "Fecha", "OrigenFecha", "Moneda", "ImporteTotal", "OrigenTotal",
// "Renglones": [{"Orden", "Cuenta", "CuentaCodigo", "CuentaNombre", "AlDebe", "Formula",
// "FormulaVisible", "ImporteMF", "ImporteCta", "Ok", "Error", "ReintentoTrasError"[, "Expresion",
// "Conversion", "Elementos": [{"Elemento", "Origen", "Valor", "Detalle", "Fecha", "Documento",
// "Linea"}]]}], "TotalDebe", "TotalHaber", "Balanceado", "Ok", "Error"}; the bracketed keys with
// `traza`.
nlohmann::ordered_json CalculoJson(const ResultadoCalculo& r, bool traza);

}  // namespace kivmovfrec::cli
