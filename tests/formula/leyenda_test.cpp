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

TEST(Leyenda, EveryExpandedMacro) {
  suite::FixedClock reloj(D(2030, 1, 1), vb::TimeFraction(10, 57, 58));
  const Date d = D(2005, 8, 2);
  auto L = [&](std::string_view s) { return InterpretarFormulaLeyenda(s, d, &reloj); };
  EXPECT_EQ(L("&[FechaC]"), "02/08/2005");
  EXPECT_EQ(L("&[FechaL]"), "Martes, 02 de Agosto de 2005");
  EXPECT_EQ(L("&[FechaH]"), "Martes, 02 de Agosto de 2005 10:57:58");
  EXPECT_EQ(L("&[FDia]"), "Martes");
  EXPECT_EQ(L("&[FMes]"), "Agosto");
  EXPECT_EQ(L("&[FPrimerDia]"), "01/08/2005");
  EXPECT_EQ(L("&[FUltimoDia]"), "31/08/2005");
  EXPECT_EQ(L("&[FUltimoDiaMes-1]"), "31/07/2005");
  EXPECT_EQ(L("&[FFMes-1]"), "02/07/2005");
  EXPECT_EQ(L("&[FFAñoMes]"), "08/2005");
  EXPECT_EQ(L("&[FFAñoMes-1]"), "07/2005");
  EXPECT_EQ(L("&[FMes-1]"), "Julio");
  EXPECT_EQ(L("&[FFAño-1]"), "02/08/2004");
}

TEST(Leyenda, ListedMacrosThatNeverExpand) {
  const Date d = D(2005, 8, 2);
  // "&[FAño]" is compared with "&[FAnio]"; "&[FAño-1]" is beyond the count of entry 0.
  EXPECT_EQ(InterpretarFormulaLeyenda("Año &[FAño], antes &[FAño-1]", d),
            "Año &[FAño], antes &[FAño-1]");
}

TEST(Leyenda, MonthEndsAndCalendarSteps) {
  EXPECT_EQ(InterpretarFormulaLeyenda("&[FUltimoDia]", D(2008, 2, 15)), "29/02/2008");
  EXPECT_EQ(InterpretarFormulaLeyenda("&[FUltimoDiaMes-1]", D(2007, 3, 15)), "28/02/2007");
  EXPECT_EQ(InterpretarFormulaLeyenda("&[FFMes-1]", D(2005, 3, 31)), "28/02/2005");
  EXPECT_EQ(InterpretarFormulaLeyenda("&[FFAño-1]", D(2008, 2, 29)), "28/02/2007");
  EXPECT_EQ(InterpretarFormulaLeyenda("&[FUltimoDia]", D(2005, 12, 10)), "31/12/2005");
  EXPECT_EQ(InterpretarFormulaLeyenda("&[FFAñoMes-1]", D(2006, 1, 31)), "12/2005");
}

TEST(Leyenda, TextAroundAndRepeatedMacros) {
  const Date d = D(2026, 11, 10);
  EXPECT_EQ(InterpretarFormulaLeyenda("Alquiler de oficina &[FFAñoMes]", d),
            "Alquiler de oficina 11/2026");
  EXPECT_EQ(InterpretarFormulaLeyenda("&[FMes] / &[FMes] &[FDia]", d),
            "Noviembre / Noviembre Martes");
  EXPECT_EQ(InterpretarFormulaLeyenda("Sin macros [FMes] & [x]", d), "Sin macros [FMes] & [x]");
  EXPECT_EQ(InterpretarFormulaLeyenda("", d), "");
  // The table lists "&[FechaC]" in mixed case and the interpreter knows "&[fechac]": it is
  // recognised, and replaced as the table writes it.
  EXPECT_EQ(InterpretarFormulaLeyenda("&[FechaC] &[fechac]", d), "10/11/2026 &[fechac]");
}

}  // namespace
}  // namespace kivmovfrec::formula
