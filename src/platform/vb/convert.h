// VB coercions between Variant subtypes. Every function throws VbError with VB's number:
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
#include "platform/vb/locale.h"

namespace kivmovfrec::vb {

// Parses text as a number as described above; nothing when it is not one. Also accepted:
// an exponent ("1E5", "2e-3"; "1e" is not a number), the locale's grouping when the locale's
// decimal separator follows it ("1.234,56" in Spanish; groups of three digits), and VB's
// "&H1F" / "&O17" (up to &HFFFF read as a signed 16-bit value, larger as 32-bit). A number
// beyond the range of a double is not one (CDbl reports it as overflow 6); one too small
// reads as 0.
std::optional<double> ParseNumber(std::string_view text, const Locale& loc = Locale::Spanish());
// Parses text as a date as described above; nothing when it is not one. Day and month take one
// or two digits, the year four; hours 0-23, minutes and seconds two digits; blanks around the
// text and between date and time are allowed; ISO seconds may carry a fraction, which is
// dropped. A time alone ("18:00") is that time on 30/12/1899, as VB reads it. Impossible days
// (31/02/2024) and months (2024-13-01) are refused, as are years outside 100-9999.
std::optional<Date> ParseDate(std::string_view text);

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
// Banker's rounding of the decimal the value stands for: CInt(0.5) = 0, CInt(1.5) = 2,
// CInt(2.5) = 2; out of range -> 6. Booleans are -1 / 0 (CByte(True) = 255, all bits set).
int16_t CInt(const Variant& v, const Locale& loc = Locale::Spanish());
int32_t CLng(const Variant& v, const Locale& loc = Locale::Spanish());
uint8_t CByte(const Variant& v, const Locale& loc = Locale::Spanish());
Currency CCur(const Variant& v, const Locale& loc = Locale::Spanish());
bool CBool(const Variant& v, const Locale& loc = Locale::Spanish());
Date CDate(const Variant& v);
// CDate: dates, date text (ParseDate) and numbers as serials; numeric text is not a date (13);
// serials outside 100-9999 -> 6.
// CStr: numbers as VB writes them (NumberToText / SingleToText; Currency with up to four
// decimals, trailing zeros dropped), dates as "dd/mm/yyyy", "dd/mm/yyyy hh:nn:ss" when the time
// is not midnight, "hh:nn:ss" alone on day zero; Booleans as the locale's words, Empty as "".
// Null -> 94.
std::string CStr(const Variant& v, const Locale& loc = Locale::Spanish());

// A Double as VBScript writes it: 15 significant digits, trailing zeros dropped, scientific
// form ("1E+15", "8.33333333333333E-02") when the exponent is >= 15 or the number is too small
// for 15 digits in fixed form. Uses the locale's decimal separator; no grouping.
std::string NumberToText(double value, const Locale& loc = Locale::Invariant());
// A Single: the same with 7 significant digits.
std::string SingleToText(float value, const Locale& loc = Locale::Invariant());

// Banker's rounding of x to `digits` decimals (VB's Round), applied to the decimal the double
// stands for: RoundHalfEven(1.765, 2) = 1.76, RoundHalfEven(1.775, 2) = 1.78. digits < 0 -> 5.
double RoundHalfEven(double x, int digits = 0);

}  // namespace kivmovfrec::vb
