// The two summary lines shown beside a schedule:
//   "Se inició el " + the start date in long form ("Se inició el Sábado, 10 de Enero de 2026")
//   "Ya ocurrió " + (occurrence number − 1) + " veces."
// The second is shown when the occurrence number is 2 or more, or when the schedule repeats
// (code other than 0) and its start date is not the next due date.
#pragma once

#include <string>

#include "kivmovfrec/records.h"

namespace kivmovfrec::core {

// "Se inició el " + long date of FechaInicio; "" when FechaInicio is not a date.
std::string TextoSeInicio(const clsRegRecurrencia& rec, int idioma = 1);

// "Ya ocurrió " + (NumOcurrencia − 1) + " veces.", whatever the display rule says.
std::string TextoYaOcurrio(const clsRegRecurrencia& rec, int idioma = 1);

// The display rule of TextoYaOcurrio. Start and next due date are compared as dates (their
// texts may differ in form); a start date that is not a date counts as different.
bool MostrarYaOcurrio(const clsRegRecurrencia& rec);

}  // namespace kivmovfrec::core
