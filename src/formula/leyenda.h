// Date macros in movement names and legends ("&[FDia]", "&[FFAñoMes]", ...).
//
// The macros recognised are those of the resource table (resources/legend_macros.h): entry 0
// gives how many rows are read (14), and each row's first field, trimmed, is compared in lower
// case with this interpreter's own words, in lower case. On a match every occurrence of the
// row's macro, written as the table writes it, is replaced in the legend. Two listed macros
// never expand, on purpose: "&[FAño-1]" lies beyond the count, and "&[FAño]" is compared with
// the interpreter's word "&[FAnio]".
//
// Values (D = the movement's date; Spanish formats):
//   &[fechac] short date            &[fechal] long date        &[fechah] long date, a blank and
//   the clock's present time hh:nn:ss                          &[FDia] dddd   &[FMes] mmmm
//   &[FAnio] yyyy                   &[FPrimerDia] first day of D's month
//   &[FUltimoDia] last day of D's month                        &[FUltimoDiaMes-1] last day of
//   the month before                &[FFAño-1] D less a year   &[FFMes-1] D less a month
//   &[FFAñoMes] mm/yyyy             &[FFAñoMes-1] mm/yyyy a month back
//   &[FMes-1] mmmm a month back     &[FAño-1] yyyy a year back
// Months and years step back by calendar (31/03 less a month is the end of February).
#pragma once

#include <string>
#include <string_view>

#include "kivmovfrec/services.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::formula {

// The legend with every recognised macro replaced. `reloj` gives the time of "&[FechaH]"; null
// uses the machine's clock. A value is only computed for a macro the legend holds; a date the
// calendar cannot step (year 100 less a year) throws VbError.
std::string InterpretarFormulaLeyenda(std::string_view leyenda, Date fecha, IClock* reloj);

}  // namespace kivmovfrec::formula
