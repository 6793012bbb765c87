// VB's Format and FormatNumber for the patterns the component uses.
//
// Date patterns: the named "Short Date" (dd/mm/yyyy) and "Long Date" ("Martes, 02 de Agosto de
// 2005"), and custom patterns built from d dd ddd dddd m mm mmm mmmm yy yyyy h hh n nn s ss,
// with other characters (/ : - blank) copied and "quoted" text copied literally. "m" after
// "h"/"hh" means minutes, as in VB.
// Number patterns: 0 (digit, padded), # (digit, dropped when not significant), "." decimal
// point and "," grouping in the pattern; the output uses the locale's separators, so
// "#,##0.00" gives "1.234,56" in Spanish. Rounding is half away from zero, as Format does.
#pragma once

#include <string>
#include <string_view>

#include "kivmovfrec/variant.h"
#include "platform/vb/locale.h"

namespace kivmovfrec::vb {

// Format(value, pattern). A Date value or date-like text uses the date rules; numbers and
// numeric text the number rules; an empty pattern gives CStr. Null gives "".
std::string Format(const Variant& value, std::string_view pattern,
                   const Locale& loc = Locale::Spanish());
std::string FormatDate(Date d, std::string_view pattern, const Locale& loc = Locale::Spanish());
std::string FormatNumberPattern(double x, std::string_view pattern,
                                const Locale& loc = Locale::Spanish());

// FormatNumber(x, digits): grouping and `digits` decimals, halves away from zero
// (FormatNumber(2.5793, 2) = "2,58" in Spanish).
std::string FormatNumber(double x, int digits = 2, const Locale& loc = Locale::Spanish());

}  // namespace kivmovfrec::vb
