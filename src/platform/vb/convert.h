// VB coercions between Variant subtypes (ParseDate, CInt, CLng, CStr, NumberToText and
// SingleToText are public: kivmovfrec/vb.h). Every function throws VbError with VB's number:
// 13 type mismatch (text that does not read as the target), 94 invalid use of Null, 6 overflow.
// An Object converts through its default member (Invoke with an empty name); Nothing -> 13.
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
#include "kivmovfrec/vb.h"

namespace kivmovfrec::vb {

// Parses text as a number as described above; nothing when it is not one. Also accepted:
// an exponent ("1E5", "2e-3"; "1e" is not a number), the locale's grouping when the locale's
// decimal separator follows it ("1.234,56" in Spanish; groups of three digits), and VB's
// "&H1F" / "&O17" (up to &HFFFF read as a signed 16-bit value, larger as 32-bit). A number
// beyond the range of a double is not one (CDbl reports it as overflow 6); one too small
// reads as 0.
std::optional<double> ParseNumber(std::string_view text, const Locale& loc = Locale::Spanish());

// IsNumeric: numbers, Booleans, Empty, numeric text; not Null, not dates, not objects.
bool IsNumeric(const Variant& v, const Locale& loc = Locale::Spanish());
// IsDate: Date values and text that reads as a date.
bool IsDate(const Variant& v);

// Val: reads the leading number of a text with "." as decimal point, ignoring blanks, tabs and
// line breaks anywhere ("1 2 3" -> 123); exponents with E or D, and &H / &O. 0 when there is
// none. Throws only VbError(6), for a number beyond the range of a double.
double Val(std::string_view text);

double CDbl(const Variant& v, const Locale& loc = Locale::Spanish());
float CSng(const Variant& v, const Locale& loc = Locale::Spanish());
// CByte(True) = 255 (all bits set).
uint8_t CByte(const Variant& v, const Locale& loc = Locale::Spanish());
Currency CCur(const Variant& v, const Locale& loc = Locale::Spanish());
bool CBool(const Variant& v, const Locale& loc = Locale::Spanish());
Date CDate(const Variant& v);
// CDate: dates, date text (ParseDate) and numbers as serials; numeric text is not a date (13);
// serials outside 100-9999 -> 6.

// Banker's rounding of x to `digits` decimals (VB's Round), applied to the decimal the double
// stands for: RoundHalfEven(1.765, 2) = 1.76, RoundHalfEven(1.775, 2) = 1.78. digits < 0 -> 5.
double RoundHalfEven(double x, int digits = 0);

}  // namespace kivmovfrec::vb
