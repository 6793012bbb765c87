#include "resources/legend_macros.h"

#include <array>

namespace kivmovfrec::resources {

namespace {

#define KMF_NOTA_EJEMPLO "\n«Se toma 02/08/2005 como referencia para el ejemplo»"

constexpr std::array<std::string_view, kLegendMacroEntries> kTabla{
    "14",
    "&[FechaC]|Despliega la fecha del movimiento en formato corto.|"
    "Ejemplo: 02/08/2005" KMF_NOTA_EJEMPLO,
    "&[FechaL]|Despliega la fecha del movimiento en formato largo.|"
    "Ejemplo: Martes, 02 de Agosto de 2005" KMF_NOTA_EJEMPLO,
    "&[FechaH]|Despliega la fecha del movimiento en formato largo con hora.|"
    "Ejemplo: Martes, 02 de Agosto de 2005 10:57:58" KMF_NOTA_EJEMPLO,
    "&[FDia]|Despliega el día de la fecha del movimiento.|Ejemplo: Martes" KMF_NOTA_EJEMPLO,
    "&[FMes]|Despliega el mes de la fecha del movimiento.|Ejemplo: Agosto" KMF_NOTA_EJEMPLO,
    "&[FAño]|Despliega el año de la fecha del movimiento.|Ejemplo: 2005" KMF_NOTA_EJEMPLO,
    "&[FPrimerDia]|Despliega el primer día del mes para la fecha del movimiento.|"
    "Ejemplo: 01/08/2005" KMF_NOTA_EJEMPLO,
    "&[FUltimoDia]|Despliega el último día del mes para la fecha del movimiento.|"
    "Ejemplo: 31/08/2005" KMF_NOTA_EJEMPLO,
    "&[FUltimoDiaMes-1]|Despliega el último día del mes anterior para la fecha del "
    "movimiento.|Ejemplo: 31/07/2005" KMF_NOTA_EJEMPLO,
    "&[FFMes-1]|Despliega la fecha del movimiento restándole un mes.|"
    "Ejemplo: 02/07/2005" KMF_NOTA_EJEMPLO,
    "&[FFAñoMes]|Despliega el mes y año del movimiento.|Ejemplo: 08/2005" KMF_NOTA_EJEMPLO,
    "&[FFAñoMes-1]|Despliega el mes y año del movimiento restándole un mes.|"
    "Ejemplo: 07/2005" KMF_NOTA_EJEMPLO,
    "&[FMes-1]|Despliega el mes del movimiento restándole un mes.|"
    "Ejemplo: Julio" KMF_NOTA_EJEMPLO,
    "&[FFAño-1]|Despliega la fecha del movimiento restándole un año.|"
    "Ejemplo: 02/08/2004" KMF_NOTA_EJEMPLO,
    "&[FAño-1]|Despliega el año del movimiento restándole un año.|"
    "Ejemplo: 2004" KMF_NOTA_EJEMPLO,
};

#undef KMF_NOTA_EJEMPLO

}  // namespace

std::string_view LegendMacroEntry(int i) {
  if (i < 0 || i >= kLegendMacroEntries) return {};
  return kTabla[static_cast<size_t>(i)];
}

}  // namespace kivmovfrec::resources
