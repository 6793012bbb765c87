// Rounding of a double as the decimal number it stands for.
//
// A double such as 1.765 is stored as 1.76499999999999990230...; rounding its binary expansion
// to two decimals would give 1.76 whatever the rule for halves. People (and VB) read the value
// as the decimal 1.765, so every rounding in platform/vb works on the shortest decimal text that
// reads back as the same double, and only then applies the rule for halves. Currency, Round,
// CInt/CLng/CByte, Format and FormatNumber all go through this one helper.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kivmovfrec::vb {

enum class HalfRule {
  ToEven,        // banker's rounding: Round, CInt, CLng, CByte, Currency
  AwayFromZero,  // Format, FormatNumber
};

// |value| × 10^places rounded to a whole number, kept as decimal digits so that no range is lost.
struct RoundedDecimal {
  bool negative = false;  // the sign of the rounded result (false when it is zero)
  std::string digits;     // no leading zeros; "0" for zero
  int places = 0;

  bool IsZero() const { return digits == "0"; }
  // The digits before and after the decimal point ("1234", 2 -> "12" and "34"; "5", 2 -> "0"
  // and "05").
  std::string IntegerDigits() const;
  std::string FractionDigits() const;
};

// Rounds `value` × 10^shift to `places` decimals (0 <= places <= 340) by `rule`. The shift is
// applied to the decimal digits, so Format's percent (shift 2) and thousands scaling (shift -3)
// add no binary error. Throws VbError(6) when value is NaN or infinite, VbError(5) when places
// is out of range.
RoundedDecimal RoundDecimal(double value, int places, HalfRule rule, int shift = 0);

// The rounded value as the nearest double.
double ToDouble(const RoundedDecimal& r);
// The rounded value as a signed count of 10^-places units; nothing when it does not fit.
std::optional<int64_t> ToScaledInteger(const RoundedDecimal& r);

}  // namespace kivmovfrec::vb
