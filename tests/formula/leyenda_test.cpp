// Date macros in legends.
#include <gtest/gtest.h>

#include "formula/leyenda.h"
#include "platform/suite/clock.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::formula {
namespace {

Date D(int y, int m, int d) {
  return vb::DateSerial(y, m, d);
}

TEST(Leyenda, MacrosMonthEndsAndCalendarSteps) {
  suite::FixedClock reloj(D(2030, 1, 1), vb::TimeFraction(10, 57, 58));
  struct Caso {
    Date fecha;
    const char* leyenda;
    const char* esperada;
  };
  const Date d = D(2005, 8, 2);
  const Caso casos[] = {
      {d, "&[FechaC]", "02/08/2005"},
      {d, "&[FechaL]", "Martes, 02 de Agosto de 2005"},
      {d, "&[FechaH]", "Martes, 02 de Agosto de 2005 10:57:58"},  // the clock's time
      {d, "&[FDia] &[FMes] &[FMes-1]", "Martes Agosto Julio"},
      {d, "&[FPrimerDia] &[FUltimoDia] &[FUltimoDiaMes-1]", "01/08/2005 31/08/2005 31/07/2005"},
      {d, "&[FFMes-1] &[FFAño-1]", "02/07/2005 02/08/2004"},
      {d, "&[FFAñoMes] &[FFAñoMes-1]", "08/2005 07/2005"},
      // "&[FAño]" is compared with "&[FAnio]"; "&[FAño-1]" is beyond the count of entry 0.
      {d, "Año &[FAño], antes &[FAño-1]", "Año &[FAño], antes &[FAño-1]"},
      {D(2008, 2, 15), "&[FUltimoDia]", "29/02/2008"},
      {D(2007, 3, 15), "&[FUltimoDiaMes-1]", "28/02/2007"},
      {D(2005, 3, 31), "&[FFMes-1]", "28/02/2005"},
      {D(2008, 2, 29), "&[FFAño-1]", "28/02/2007"},
      {D(2005, 12, 10), "&[FUltimoDia]", "31/12/2005"},
      {D(2006, 1, 31), "&[FFAñoMes-1]", "12/2005"},
      {D(2026, 11, 10), "Alquiler &[FMes] / &[FMes]", "Alquiler Noviembre / Noviembre"},
      {d, "Sin macros [FMes] & [x]", "Sin macros [FMes] & [x]"},
      {d, "", ""},
      // The table lists "&[FechaC]" in mixed case and the interpreter knows "&[fechac]": it is
      // recognised, and replaced as the table writes it.
      {d, "&[FechaC] &[fechac]", "02/08/2005 &[fechac]"},
  };
  for (const Caso& c : casos) {
    EXPECT_EQ(InterpretarFormulaLeyenda(c.leyenda, c.fecha, &reloj), c.esperada) << c.leyenda;
  }
}

}  // namespace
}  // namespace kivmovfrec::formula
