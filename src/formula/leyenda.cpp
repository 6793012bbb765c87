#include "formula/leyenda.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/clock.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "platform/vb/text.h"
#include "resources/legend_macros.h"

namespace kivmovfrec::formula {
namespace {

struct Palabra {
  std::string_view palabra;
  std::function<std::string(Date, IClock*)> valor;
};

std::string Corta(Date d) {
  return vb::FormatDate(d, "Short Date");
}

Date PrimerDia(Date d) {
  return vb::DateSerial(vb::Year(d), vb::Month(d), 1);
}

const std::vector<Palabra>& Palabras() {
  static const std::vector<Palabra> kPalabras = {
      {"&[fechac]", [](Date d, IClock*) { return Corta(d); }},
      {"&[fechal]", [](Date d, IClock*) { return vb::FormatDate(d, "Long Date"); }},
      {"&[fechah]",
       [](Date d, IClock* reloj) {
         Date ahora = core::RelojOSistema(reloj).Now();
         return vb::FormatDate(d, "Long Date") + " " + vb::FormatDate(ahora, "hh:nn:ss");
       }},
      {"&[FDia]", [](Date d, IClock*) { return vb::FormatDate(d, "dddd"); }},
      {"&[FMes]", [](Date d, IClock*) { return vb::FormatDate(d, "mmmm"); }},
      {"&[FAnio]", [](Date d, IClock*) { return vb::FormatDate(d, "yyyy"); }},
      {"&[FPrimerDia]", [](Date d, IClock*) { return Corta(PrimerDia(d)); }},
      {"&[FUltimoDia]",
       [](Date d, IClock*) {
         Date siguiente = vb::DateSerial(vb::Year(d), vb::Month(d) + 1, 1);
         return Corta(vb::DateAdd("d", -1, siguiente));
       }},
      {"&[FUltimoDiaMes-1]",
       [](Date d, IClock*) { return Corta(vb::DateAdd("d", -1, PrimerDia(d))); }},
      {"&[FFAño-1]", [](Date d, IClock*) { return Corta(vb::DateAdd("yyyy", -1, d)); }},
      {"&[FFMes-1]", [](Date d, IClock*) { return Corta(vb::DateAdd("m", -1, d)); }},
      {"&[FFAñoMes]", [](Date d, IClock*) { return vb::FormatDate(d, "mm/yyyy"); }},
      {"&[FFAñoMes-1]",
       [](Date d, IClock*) { return vb::FormatDate(vb::DateAdd("m", -1, d), "mm/yyyy"); }},
      {"&[FMes-1]",
       [](Date d, IClock*) { return vb::FormatDate(vb::DateAdd("m", -1, d), "mmmm"); }},
      {"&[FAño-1]",
       [](Date d, IClock*) { return vb::FormatDate(vb::DateAdd("yyyy", -1, d), "yyyy"); }},
  };
  return kPalabras;
}

}  // namespace

std::string InterpretarFormulaLeyenda(std::string_view leyenda, Date fecha, IClock* reloj) {
  std::string out(leyenda);
  int n = 0;
  if (auto cuenta = vb::ParseNumber(resources::LegendMacroEntry(0))) n = static_cast<int>(*cuenta);
  for (int i = 1; i <= n; ++i) {
    auto campos = vb::Split(resources::LegendMacroEntry(i), "|");
    std::string macro = vb::Trim(campos[0]);
    if (macro.empty()) continue;
    const std::string clave = vb::LCase(macro);
    for (const Palabra& p : Palabras()) {
      if (vb::LCase(p.palabra) != clave) continue;
      if (out.find(macro) != std::string::npos)
        out = vb::Replace(out, macro, p.valor(fecha, reloj));
      break;
    }
  }
  return out;
}

}  // namespace kivmovfrec::formula
