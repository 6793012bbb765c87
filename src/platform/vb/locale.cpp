#include "platform/vb/locale.h"

namespace kivmovfrec::vb {

namespace {

constexpr std::array<const char*, 7> kDayNames = {"Domingo", "Lunes",   "Martes", "Miércoles",
                                                  "Jueves",  "Viernes", "Sábado"};
constexpr std::array<const char*, 12> kMonthNames = {
    "Enero", "Febrero", "Marzo",      "Abril",   "Mayo",      "Junio",
    "Julio", "Agosto",  "Septiembre", "Octubre", "Noviembre", "Diciembre"};

Locale MakeLocale(char decimal, char group, const char* true_text, const char* false_text) {
  Locale loc{decimal, group, {}, {}, true_text, false_text};
  for (size_t i = 0; i < kDayNames.size(); ++i) loc.day_names[i] = kDayNames[i];
  for (size_t i = 0; i < kMonthNames.size(); ++i) loc.month_names[i] = kMonthNames[i];
  return loc;
}

}  // namespace

const Locale& Locale::Spanish() {
  static const Locale loc = MakeLocale(',', '.', "Verdadero", "Falso");
  return loc;
}

const Locale& Locale::Invariant() {
  static const Locale loc = MakeLocale('.', ',', "True", "False");
  return loc;
}

}  // namespace kivmovfrec::vb
