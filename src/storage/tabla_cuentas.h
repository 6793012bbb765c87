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

// Why account `cuenta` cannot take a line of a movement of company `empresa`; hosts reach it as
// kivmovfrec::ProblemaCuentaRenglon (kivmovfrec/cuentas.h), which states the contract.
std::optional<std::string> ProblemaCuentaRenglon(Connection& cn, int32_t empresa, int32_t cuenta);

}  // namespace kivmovfrec::storage
