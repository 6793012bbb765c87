// VB-compatible conversion and formatting of values, for hosts that show or read what the
// component stores: the functions the component itself uses, with the same results.
//
// Values follow VB: a Date counts days since 1899-12-30 (fraction = time of day), valid years
// are 100..9999. Text is UTF-8; positions and lengths count characters, not bytes. Failures
// throw VbError with VB's number: 5 invalid argument, 6 overflow, 13 type mismatch, 94 invalid
// use of Null. The locale is Spanish unless one is given: short date dd/mm/yyyy, decimal comma,
// "." grouping. Text written into SQL or formula text uses Locale::Invariant().
//
// Text is read as a person types it: a number with "." or the locale's decimal separator (an
// ambiguous "1.234" reads as one point two three four, never as a thousand), optional sign,
// blanks around it; a date as "dd/mm/yyyy [hh:nn[:ss]]" (day first) or ISO
// "yyyy-mm-dd[ hh:nn[:ss]]" / "yyyy-mm-ddThh:nn:ss".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/export.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::vb {

// The locale used when values are shown to people or read from their typing.
struct KMF_API Locale {
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

// ---- Conversions --------------------------------------------------------------------------

// Parses text as a date as described above; nothing when it is not one. Day and month take one
// or two digits, the year four; hours 0-23, minutes and seconds two digits; blanks around the
// text and between date and time are allowed; ISO seconds may carry a fraction, which is
// dropped. A time alone ("18:00") is that time on 30/12/1899, as VB reads it. Impossible days
// (31/02/2024) and months (2024-13-01) are refused, as are years outside 100-9999.
KMF_API std::optional<Date> ParseDate(std::string_view text);

// Banker's rounding of the decimal the value stands for: CInt(0.5) = 0, CInt(1.5) = 2,
// CInt(2.5) = 2; out of range -> 6. Booleans are -1 / 0.
KMF_API int16_t CInt(const Variant& v, const Locale& loc = Locale::Spanish());
KMF_API int32_t CLng(const Variant& v, const Locale& loc = Locale::Spanish());
// CStr: numbers as VB writes them (NumberToText / SingleToText; Currency with up to four
// decimals, trailing zeros dropped), dates as "dd/mm/yyyy", "dd/mm/yyyy hh:nn:ss" when the time
// is not midnight, "hh:nn:ss" alone on day zero; Booleans as the locale's words, Empty as "".
// Null -> 94.
KMF_API std::string CStr(const Variant& v, const Locale& loc = Locale::Spanish());

// A Double as VBScript writes it: 15 significant digits, trailing zeros dropped, scientific
// form ("1E+15", "8.33333333333333E-02") when the exponent is >= 15 or the number is too small
// for 15 digits in fixed form. Uses the locale's decimal separator; no grouping.
KMF_API std::string NumberToText(double value, const Locale& loc = Locale::Invariant());
// A Single: the same with 7 significant digits.
KMF_API std::string SingleToText(float value, const Locale& loc = Locale::Invariant());

// ---- Format -------------------------------------------------------------------------------

// Format(value, pattern). Date patterns: the named "Short Date" (dd/mm/yyyy), "Long Date"
// ("Martes, 02 de Agosto de 2005"), "General Date", "Medium Date", "Long Time", "Medium Time",
// "Short Time", and custom patterns of d m y h n s w q letters. Number patterns: 0 and #
// placeholders, "." decimal point and "," grouping written in the pattern, the output using the
// locale's separators ("#,##0.00" gives "1.234,56" in Spanish), halves rounded away from zero;
// sections "positive;negative;zero" and the named number formats. The pattern decides: a date
// pattern formats Date values, date text and numbers read as serials (outside the calendar ->
// VbError(6)); a number pattern formats numbers, Booleans, Empty (0) and numeric text. Text
// that cannot be read as required is returned unchanged. An empty pattern gives CStr. Null
// gives "".
KMF_API std::string Format(const Variant& value, std::string_view pattern,
                           const Locale& loc = Locale::Spanish());

// ---- Dates --------------------------------------------------------------------------------

struct KMF_API DateParts {
  int year = 1899, month = 12, day = 30;
  int hour = 0, minute = 0, second = 0;
};

// Splits a date into calendar fields (seconds rounded to the nearest whole second).
KMF_API DateParts Split(Date d);
// Builds a date from fields that must already be valid (year 100-9999, month 1-12, day within
// the month, hour 0-23, minute and second 0-59); VbError(5) otherwise.
KMF_API Date MakeDate(const DateParts& p);
// Date part only (time of day dropped, even when it would round up to the next day).
KMF_API Date DateOnly(Date d);

// ---- Text ---------------------------------------------------------------------------------

// Spaces only (not tabs), as VB's Trim.
KMF_API std::string Trim(std::string_view s);
// Case folding covers ASCII and the Latin-1 letters Spanish uses (á é í ó ú ü ñ ç).
KMF_API std::string LCase(std::string_view s);
// Length in characters.
KMF_API size_t Len(std::string_view s);
KMF_API std::string Left(std::string_view s, size_t n);
// 1-based start; start past the end gives "". Without n, to the end. Start 0 -> VbError(5).
KMF_API std::string Mid(std::string_view s, size_t start, size_t n = std::string_view::npos);
// Splits at every occurrence of `sep` (VB's Split): "a||b" gives "a", "", "b"; "" gives one "".
KMF_API std::vector<std::string> Split(std::string_view s, std::string_view sep);

// A value quoted in a message for people, cut when it is long: `text` when it has at most
// `max_chars` characters; otherwise its first `max_chars` characters (a UTF-8 sequence is never
// split) followed by "… (N caracteres)", N being the length of the whole text in characters.
inline constexpr size_t kMaxCharsInMessage = 60;
KMF_API std::string ShortForMessage(std::string_view text, size_t max_chars = kMaxCharsInMessage);

// A number a person typed at a prompt, read the Spanish way ("1.500,25"): the value, or nothing
// when the entry is not a number or could be read two ways ("1.5", "1,500"); `explicacion` then
// receives one Spanish sentence saying why. Every numeric prompt reads its answers this way.
KMF_API std::optional<double> LeerNumeroTecleado(std::string_view texto,
                                                 std::string* explicacion = nullptr);

}  // namespace kivmovfrec::vb
