// VB coercions between Variant subtypes. Every function throws VbError with VB's number:
// 13 type mismatch (text that does not read as the target), 94 invalid use of Null, 6 overflow.
//
// Text is read as a person types it: a number with "." or the locale's decimal separator
// (an ambiguous "1.234" reads as one point two three four, never as a thousand), optional
// sign, blanks around it; a date as "dd/mm/yyyy [hh:nn[:ss]]" (day first) or ISO
// "yyyy-mm-dd[ hh:nn[:ss]]" / "yyyy-mm-ddThh:nn:ss".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kivmovfrec/variant.h"
#include "platform/vb/locale.h"

namespace kivmovfrec::vb {

// Parses text as a number as described above; nothing when it is not one.
std::optional<double> ParseNumber(std::string_view text, const Locale& loc = Locale::Spanish());
// Parses text as a date as described above; nothing when it is not one.
std::optional<Date> ParseDate(std::string_view text);

// IsNumeric: numbers, Booleans, Empty, numeric text; not Null, not dates, not objects.
bool IsNumeric(const Variant& v, const Locale& loc = Locale::Spanish());
// IsDate: Date values and text that reads as a date.
bool IsDate(const Variant& v);

// Val: reads the leading number of a text with "." as decimal point, skipping blanks; 0 when
// there is none. Never throws.
double Val(std::string_view text);

double CDbl(const Variant& v, const Locale& loc = Locale::Spanish());
float CSng(const Variant& v, const Locale& loc = Locale::Spanish());
// Banker's rounding: CInt(0.5) = 0, CInt(1.5) = 2, CInt(2.5) = 2; out of range -> 6.
int16_t CInt(const Variant& v, const Locale& loc = Locale::Spanish());
int32_t CLng(const Variant& v, const Locale& loc = Locale::Spanish());
uint8_t CByte(const Variant& v, const Locale& loc = Locale::Spanish());
Currency CCur(const Variant& v, const Locale& loc = Locale::Spanish());
bool CBool(const Variant& v, const Locale& loc = Locale::Spanish());
Date CDate(const Variant& v);
// CStr: numbers as VB writes them (NumberToText), dates as short date with the time when it is
// not midnight, Booleans as the locale's words, Empty as "". Null -> 94.
std::string CStr(const Variant& v, const Locale& loc = Locale::Spanish());

// A Double as VBScript writes it: 15 significant digits, trailing zeros dropped, scientific
// form ("1E+15", "8.33333333333333E-02") when the exponent is >= 15 or the number is too small
// for 15 digits in fixed form. Uses the locale's decimal separator; no grouping.
std::string NumberToText(double value, const Locale& loc = Locale::Invariant());
// A Single: the same with 7 significant digits.
std::string SingleToText(float value, const Locale& loc = Locale::Invariant());

// Banker's rounding of x to `digits` decimals (VB's Round).
double RoundHalfEven(double x, int digits = 0);

}  // namespace kivmovfrec::vb
