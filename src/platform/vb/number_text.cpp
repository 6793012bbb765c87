// NumberToText, SingleToText and RoundHalfEven.
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "platform/vb/convert.h"
#include "platform/vb/decimal.h"

namespace kivmovfrec::vb {

namespace {

// Writes `value` with `precision` significant digits as VB does: trailing zeros dropped,
// scientific notation when the decimal exponent E is >= precision, or when E < 0 and the
// fixed form would need more than `precision` digits after the leading zeros.
std::string SignificantText(double value, int precision, char decimal_separator) {
  if (value == 0) return "0";  // also negative zero
  if (!std::isfinite(value)) throw VbError(6);
  char buf[64];
  auto [end, ec] =
      std::to_chars(buf, buf + sizeof buf, value, std::chars_format::scientific, precision - 1);
  if (ec != std::errc()) throw VbError(6);
  const std::string_view text(buf, static_cast<size_t>(end - buf));
  const bool negative = text.front() == '-';
  const size_t e = text.find('e');
  std::string digits;
  for (char c : text.substr(negative ? 1 : 0, e - (negative ? 1 : 0))) {
    if (c != '.') digits.push_back(c);
  }
  const int exponent = std::atoi(std::string(text.substr(e + 1)).c_str());
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
  const int n = static_cast<int>(digits.size());

  std::string out = negative ? "-" : "";
  if (exponent >= precision || (exponent < 0 && (-exponent - 1) + n > precision)) {
    out += digits[0];
    if (n > 1) {
      out += decimal_separator;
      out.append(digits, 1);
    }
    out += exponent < 0 ? "E-" : "E+";
    const int abs_exp = std::abs(exponent);
    if (abs_exp < 10) out += '0';
    out += std::to_string(abs_exp);
  } else if (exponent >= 0) {
    const auto whole = static_cast<size_t>(exponent) + 1;
    if (digits.size() <= whole) {
      out += digits;
      out.append(whole - digits.size(), '0');
    } else {
      out.append(digits, 0, whole);
      out += decimal_separator;
      out.append(digits, whole);
    }
  } else {
    out += '0';
    out += decimal_separator;
    out.append(static_cast<size_t>(-exponent - 1), '0');
    out += digits;
  }
  return out;
}

}  // namespace

std::string NumberToText(double value, const Locale& loc) {
  return SignificantText(value, 15, loc.decimal_separator);
}

std::string SingleToText(float value, const Locale& loc) {
  return SignificantText(static_cast<double>(value), 7, loc.decimal_separator);
}

double RoundHalfEven(double x, int digits) {
  if (digits < 0) throw VbError(5);
  if (!std::isfinite(x)) throw VbError(6);
  // Past this many decimals every double is already exact.
  if (digits > 340) return x;
  return ToDouble(RoundDecimal(x, digits, HalfRule::ToEven));
}

}  // namespace kivmovfrec::vb
