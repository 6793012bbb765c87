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
#include <string_view>

#include "kivmovfrec/db.h"

namespace kivmovfrec::storage {

// "Select CueIDEmpresa, CueEsCarpeta From cceCuentas Where CueID = " + cuenta
std::string SqlCuentaDeRenglon(int32_t cuenta);

// Why account `cuenta` cannot take a line of a movement of company `empresa`; hosts reach it as
// kivmovfrec::ProblemaCuentaRenglon (kivmovfrec/cuentas.h), which states the contract.
std::optional<std::string> ProblemaCuentaRenglon(Connection& cn, int32_t empresa, int32_t cuenta);

// An account a line may name: one of the company's accounts that is not a folder.
struct CuentaElegible {
  int32_t id = 0;
  std::string codigo;  // CueCodigo, trimmed
  std::string nombre;  // CueNombre, trimmed
  int16_t moneda = 0;  // CueMoneda, 0 when NULL (the accounting currency)
};

// "Select CueID, CueCodigo, CueNombre, CueMoneda From cceCuentas Where CueIDEmpresa = ? And
// CueEsCarpeta = 0 And (CueCodigo = ? Or CueNombre = ?) Order by CueCodigo", the company and
// the text twice bound.
extern const char* const kSqlCuentaPorCodigoONombre;

// The account of company `empresa` typed as `texto` in a line: its code or its name (compared
// exactly, blanks around the text ignored), or the code and name joined by a blank as the lines
// grid shows them. A code wins over a name; folders and other companies' accounts are never
// found. Nothing for an empty text or when no account matches. DbError propagates.
std::optional<CuentaElegible> BuscarCuentaElegible(Connection& cn, int32_t empresa,
                                                   std::string_view texto);

}  // namespace kivmovfrec::storage
