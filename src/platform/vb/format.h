// VB's Format and FormatNumber for the patterns the component uses.
//
// Date patterns: the named "Short Date" (dd/mm/yyyy), "Long Date" ("Martes, 02 de Agosto de
// 2005"), "General Date" (as CStr), "Medium Date" (dd-mmm-yy), "Long Time" (hh:nn:ss),
// "Medium Time" and "Short Time" (hh:nn), names compared ignoring case; and custom patterns
// built from d dd ddd dddd ddddd dddddd m mm mmm mmmm y yy yyyy h hh n nn s ss w ww q (letters in
// either case), with other characters (/ : - blank) copied, "quoted" text and \x copied
// literally. "m"/"mm" after an hour or before seconds means minutes, as in VB. ddd and mmm are
// the first three letters of the names ("Mié", "Ago").
// Number patterns: 0 (digit, padded), # (digit, dropped when not significant), "." decimal
// point and "," grouping in the pattern; the output uses the locale's separators, so
// "#,##0.00" gives "1.234,56" in Spanish. Rounding is half away from zero on the decimal the
// double stands for, as Format does. Also: "0" placeholders fill from the right and the leftmost
// takes extra digits ("000-000"); trailing "#" decimals drop zeros ("#.##" of 1.5 = "1,5");
// "," right before the point or the end divides by 1000; "%" multiplies by 100; sections
// "positive;negative;zero" (the negative section is written without a sign); named "General
// Number", "Fixed", "Standard", "Percent", "Yes/No", "True/False", "On/Off". A result that
// rounds to zero has no sign. Scientific patterns ("0.00E+00") are not supported: E is copied.
// Format(value, pattern) itself is public (kivmovfrec/vb.h).
#pragma once

#include <string>
#include <string_view>

#include "kivmovfrec/variant.h"
#include "kivmovfrec/vb.h"

namespace kivmovfrec::vb {

std::string FormatDate(Date d, std::string_view pattern, const Locale& loc = Locale::Spanish());
std::string FormatNumberPattern(double x, std::string_view pattern,
                                const Locale& loc = Locale::Spanish());

// FormatNumber(x, digits): grouping, a leading zero and `digits` decimals, halves away from
// zero (FormatNumber(2.5793, 2) = "2,58" in Spanish). digits -1 means 2; other negatives -> 5.
std::string FormatNumber(double x, int digits = 2, const Locale& loc = Locale::Spanish());

}  // namespace kivmovfrec::vb
