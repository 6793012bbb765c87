// cceEmpresas: the company row read into clsEmpresa.
//
// Column -> field: EmpNombre Nombre (trimmed), EmpMostrarCodigoCta MostrarCodigoCta,
// EmpMonedaContabilidad MonedaContabilidad, EmpValoresUsuarioYAuroriza ValoresUsuarioYAutoriza
// (trimmed), EmpTipoTCComprobantes TipoTCComprobantes, EmpClase Clase, EmpPrms through
// clsEmpresa::AplicarPrms. A NULL column keeps the field's previous value.
#pragma once

#include <cstdint>
#include <string>

#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"

namespace kivmovfrec::storage {

// "Select * from cceEmpresas Where EmpID = " + empresa
std::string SqlEmpresaPorID(int32_t empresa);

// Copies the non-NULL columns of the current row into `emp` (ID is not read from the row).
void LeerEmpresa(const Resultset& rs, clsEmpresa& emp);

}  // namespace kivmovfrec::storage
