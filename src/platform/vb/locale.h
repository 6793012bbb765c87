// The locale used when values are shown to people or read from their typing: Spanish, with a
// day-first short date, capitalised weekday and month names and a decimal comma. Text written
// into SQL or formula expressions never goes through a locale (see Invariant()).
#pragma once

#include <array>
#include <string>

namespace kivmovfrec::vb {

struct Locale {
  char decimal_separator;
  char group_separator;
  std::array<std::string, 7> day_names;     // Sunday first: "Domingo", "Lunes", ...
  std::array<std::string, 12> month_names;  // "Enero" ... "Diciembre"
  std::string true_text;                    // CStr(True)
  std::string false_text;

  // Spanish: "," decimal, "." grouping, "Verdadero" / "Falso".
  static const Locale& Spanish();
  // "." decimal, "," grouping, English booleans; day and month names stay Spanish.
  static const Locale& Invariant();
};

}  // namespace kivmovfrec::vb
