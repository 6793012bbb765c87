// Evaluating one expression in VBScript syntax, as the component evaluates a formula's
// [codescript] block, so a formula author can try one before storing it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"
#include "kivmovfrec/export.h"

namespace kivmovfrec {

struct KMF_API ErrorExpresion {
  int numero = 0;           // VBScript error number
  std::string descripcion;  // Spanish
  int columna = 0;          // 0-based character offset in the expression as written
};

struct KMF_API ResultadoExpresion {
  bool ok = false;
  // When ok: whole numbers as digits, other numbers with "." as decimal point and no grouping
  // (15 significant digits), Booleans "Verdadero"/"Falso", dates as dd/mm/yyyy, text itself.
  std::string texto;
  ErrorExpresion error;  // when !ok
  // When ok only because the expression was evaluated again with every "," read as "." after a
  // run-time error: that first error. "Round(12000/0,2)" gives 60000 only because "0,2" became
  // 0.2, so such a value must not be used unattended.
  std::optional<ErrorExpresion> primer_error;
};

// Evaluates `expresion` with `cn` (may be null) visible as the object rdoCBase, read-only; a
// statement that would write is an error. `ahora` gives Date, Now and Time inside the
// expression (the system's local time when empty). Nothing is thrown and nothing is kept
// between calls.
KMF_API ResultadoExpresion EvaluarExpresion(Connection* cn, std::string_view expresion,
                                            std::function<Date()> ahora = {});

}  // namespace kivmovfrec
