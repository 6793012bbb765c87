// Checks on the accounts a movement's lines name, as the main job applies them before it posts
// a line: a host that writes movements (an import, say) refuses the same lines up front.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kivmovfrec/db.h"
#include "kivmovfrec/export.h"

namespace kivmovfrec {

// Why account `cuenta` cannot take a line of a movement of company `empresa`, as a Spanish
// phrase without capital or full stop, ready to follow a path or a line number:
//   "la cuenta 999 no existe"
//   "la cuenta 201 es de otra empresa (la 2)"
//   "la cuenta 100 es una carpeta"
// (checked in that order). Nothing when the account can take the line. Reads one row; database
// errors (DbError) propagate.
KMF_API std::optional<std::string> ProblemaCuentaRenglon(Connection& cn, int32_t empresa,
                                                         int32_t cuenta);

}  // namespace kivmovfrec
