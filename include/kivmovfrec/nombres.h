// Names a person reads for the stored codes of a movement, the same in every host (movfrec, the
// main window): the kind (MFrTipo), the state (MFrEstado) and the amount type (MFrTipoImporte).
// A code that has no name gives "" so that the caller decides how to show it.
#pragma once

#include <string>

#include "kivmovfrec/export.h"

namespace kivmovfrec {

// "Asiento", "Comprobante", "Aviso", "Asiento del sistema", "Lista de tareas", "Tarea".
KMF_API std::string NombreTipoMovFrec(int tipo);

// "En proceso", "Realizado", "Papelera".
KMF_API std::string NombreEstadoMF(int estado);

// "Estimado" (1), "Fijo" (2), "Automático" (3).
KMF_API std::string NombreTipoImporte(int tipo_importe);

}  // namespace kivmovfrec
