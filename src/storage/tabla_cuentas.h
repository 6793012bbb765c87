// cceCuentas: whether an account can take a line of a movement.
//
// A line is posted to its account when the movement is executed, so it may only name an account
// that exists, belongs to the movement's company (CueIDEmpresa) and is not a folder
// (CueEsCarpeta = 1: folders only group the chart of accounts). importar refuses such lines
// before writing, and the main job checks them again before it posts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kivmovfrec/db.h"

namespace kivmovfrec::storage {

// "Select CueIDEmpresa, CueEsCarpeta From cceCuentas Where CueID = " + cuenta
std::string SqlCuentaDeRenglon(int32_t cuenta);

// Why account `cuenta` cannot take a line of a movement of company `empresa`, as a Spanish
// phrase without capital or full stop, ready to follow a path or a line number:
//   "la cuenta 999 no existe"
//   "la cuenta 201 es de otra empresa (la 2)"
//   "la cuenta 100 es una carpeta"
// (checked in that order). Nothing when the account can take the line. Reads one row; database
// errors (DbError) propagate.
std::optional<std::string> ProblemaCuentaRenglon(Connection& cn, int32_t empresa, int32_t cuenta);

}  // namespace kivmovfrec::storage
