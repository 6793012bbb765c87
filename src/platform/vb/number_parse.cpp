// ParseNumber and Val.
#include "platform/vb/number_parse.h"

#include <charconv>
#include <cstdint>
#include <string>

#include "platform/vb/convert.h"

namespace kivmovfrec::vb {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

bool AllDigits(std::string_view s) {
  for (char c : s) {
    if (!IsDigit(c)) return false;
  }
  return true;
}

// "&H1F" / "&O17" after the '&': the digits read as VB reads such literals (up to 0xFFFF as a
// signed 16-bit value, larger as signed 32-bit; a trailing '&' forces 32 bits). `used` gets the
// number of characters consumed (0 when there are no digits).
NumberReading ReadRadix(std::string_view s, size_t& used) {
  used = 0;
  NumberReading r;
  if (s.size() < 2 || s[0] != '&') return r;
  const char kind = static_cast<char>(s[1] | 0x20);
  const int radix = kind == 'h' ? 16 : kind == 'o' ? 8 : 0;
  if (radix == 0) return r;
  size_t i = 2;
  uint64_t value = 0;
  size_t digits = 0;
  while (i < s.size()) {
    const char c = static_cast<char>(s[i] | 0x20);
    int d = -1;
    if (c >= '0' && c <= '9') d = c - '0';
    if (radix == 16 && c >= 'a' && c <= 'f') d = c - 'a' + 10;
    if (d < 0 || d >= radix) break;
    value = value * static_cast<unsigned>(radix) + static_cast<unsigned>(d);
    ++digits;
    ++i;
    if (value > 0xFFFFFFFFu) {
      r.status = NumberReading::kOverflow;
      return r;
    }
  }
  if (digits == 0) return r;
  bool force_long = false;
  if (i < s.size() && s[i] == '&') {
    force_long = true;
    ++i;
  }
  used = i;
  r.status = NumberReading::kOk;
  if (value <= 0xFFFF && !force_long) {
    r.value = static_cast<int16_t>(static_cast<uint16_t>(value));
  } else {
    r.value = static_cast<int32_t>(static_cast<uint32_t>(value));
  }
  return r;
}

// Converts sign, mantissa digits (with '.' as the only separator) and exponent text with
// from_chars, telling overflow from underflow when the result leaves the range of a double.
NumberReading Convert(bool negative, std::string_view int_digits, std::string_view frac_digits,
                      std::string_view exponent) {
  std::string text;
  text.reserve(int_digits.size() + frac_digits.size() + exponent.size() + 4);
  text.append(int_digits.empty() ? "0" : int_digits);
  if (!frac_digits.empty()) {
    text += '.';
    text.append(frac_digits);
  }
  if (!exponent.empty()) {
    text += 'e';
    text.append(exponent);
  }
  NumberReading r;
  double value = 0;
  auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec == std::errc::result_out_of_range || ptr != text.data() + text.size()) {
    // Magnitude estimate: position of the first significant digit plus the exponent.
    long magnitude = 0;
    const size_t lead = int_digits.find_first_not_of('0');
    if (lead != std::string_view::npos) {
      magnitude = static_cast<long>(int_digits.size() - lead);
    } else {
      const size_t first = frac_digits.find_first_not_of('0');
      magnitude = first == std::string_view::npos ? 0 : -static_cast<long>(first);
    }
    long exp = 0;
    const bool exp_negative = !exponent.empty() && exponent.front() == '-';
    for (char c : exponent) {
      if (IsDigit(c) && exp < 100000) exp = exp * 10 + (c - '0');
    }
    magnitude += exp_negative ? -exp : exp;
    if (magnitude > 0) {
      r.status = NumberReading::kOverflow;
      return r;
    }
    value = 0;  // too small to represent: reads as zero
  } else if (ec != std::errc()) {
    return r;
  }
  r.status = NumberReading::kOk;
  r.value = negative ? -value : value;
  return r;
}

// Splits a mantissa into integer and fraction digits. Accepts digits with at most one decimal
// separator ('.' or the locale's), or the locale's grouping when the locale's decimal separator
// follows it ("1.234,56" in Spanish); a lone "1.234" is never a thousand.
bool SplitMantissa(std::string_view m, const Locale& loc, std::string& int_digits,
                   std::string& frac_digits) {
  const char dec = loc.decimal_separator;
  const size_t sep = m.find_first_of(".,");
  if (sep == std::string_view::npos || m.find_first_of(".,", sep + 1) == std::string_view::npos) {
    // Plain form: at most one separator, which must be '.' or the locale's.
    if (sep != std::string_view::npos && m[sep] != '.' && m[sep] != dec) return false;
    const std::string_view ip = m.substr(0, sep);
    const std::string_view fp = sep == std::string_view::npos ? "" : m.substr(sep + 1);
    if (!AllDigits(ip) || !AllDigits(fp) || (ip.empty() && fp.empty())) return false;
    int_digits.assign(ip);
    frac_digits.assign(fp);
    return true;
  }
  // Grouped form: 1-3 digits, then groups of three after the group separator, then the
  // decimal separator and the fraction.
  const char group = loc.group_separator;
  if (group == dec) return false;
  const size_t dpos = m.rfind(dec);
  if (dpos == std::string_view::npos) return false;
  const std::string_view fp = m.substr(dpos + 1);
  if (!AllDigits(fp)) return false;
  std::string_view ip = m.substr(0, dpos);
  int_digits.clear();
  size_t groups = 0;
  while (true) {
    const size_t g = ip.find(group);
    const std::string_view part = ip.substr(0, g);
    if (!AllDigits(part)) return false;
    if (groups == 0 ? (part.empty() || part.size() > 3) : part.size() != 3) return false;
    int_digits.append(part);
    ++groups;
    if (g == std::string_view::npos) break;
    ip.remove_prefix(g + 1);
  }
  if (groups < 2) return false;
  frac_digits.assign(fp);
  return true;
}

}  // namespace

NumberReading ReadNumber(std::string_view text, const Locale& loc) {
  std::string_view s = TrimBlanks(text);
  if (s.empty()) return {};
  if (s.front() == '&') {
    size_t used = 0;
    NumberReading r = ReadRadix(s, used);
    if (r.status == NumberReading::kOk && used != s.size()) return {};
    return r;
  }
  bool negative = false;
  if (s.front() == '+' || s.front() == '-') {
    negative = s.front() == '-';
    s.remove_prefix(1);
  }
  std::string_view exponent;
  const size_t e = s.find_first_of("eE");
  if (e != std::string_view::npos) {
    exponent = s.substr(e + 1);
    s = s.substr(0, e);
    std::string_view exp_digits = exponent;
    if (!exp_digits.empty() && (exp_digits.front() == '+' || exp_digits.front() == '-')) {
      exp_digits.remove_prefix(1);
    }
    if (exp_digits.empty() || !AllDigits(exp_digits)) return {};
  }
  std::string int_digits;
  std::string frac_digits;
  if (!SplitMantissa(s, loc, int_digits, frac_digits)) return {};
  return Convert(negative, int_digits, frac_digits, exponent);
}

std::optional<double> ParseNumber(std::string_view text, const Locale& loc) {
  const NumberReading r = ReadNumber(text, loc);
  if (r.status != NumberReading::kOk) return std::nullopt;
  return r.value;
}

double Val(std::string_view text) {
  // Blanks, tabs and line feeds are ignored wherever they are.
  std::string s;
  for (char c : text) {
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r') s.push_back(c);
  }
  std::string_view v = s;
  if (!v.empty() && v.front() == '&') {
    size_t used = 0;
    const NumberReading r = ReadRadix(v, used);
    if (r.status == NumberReading::kOverflow) throw VbError(6);
    return r.status == NumberReading::kOk ? r.value : 0.0;
  }
  size_t i = 0;
  bool negative = false;
  if (i < v.size() && (v[i] == '+' || v[i] == '-')) {
    negative = v[i] == '-';
    ++i;
  }
  const size_t int_begin = i;
  while (i < v.size() && IsDigit(v[i])) ++i;
  const std::string_view int_digits = v.substr(int_begin, i - int_begin);
  std::string_view frac_digits;
  if (i < v.size() && v[i] == '.') {
    const size_t frac_begin = ++i;
    while (i < v.size() && IsDigit(v[i])) ++i;
    frac_digits = v.substr(frac_begin, i - frac_begin);
  }
  if (int_digits.empty() && frac_digits.empty()) return 0.0;
  std::string_view exponent;
  if (i < v.size() && (v[i] == 'e' || v[i] == 'E' || v[i] == 'd' || v[i] == 'D')) {
    size_t j = i + 1;
    if (j < v.size() && (v[j] == '+' || v[j] == '-')) ++j;
    const size_t digits_begin = j;
    while (j < v.size() && IsDigit(v[j])) ++j;
    if (j > digits_begin) exponent = v.substr(i + 1, j - i - 1);
  }
  const NumberReading r = Convert(negative, int_digits, frac_digits, exponent);
  if (r.status == NumberReading::kOverflow) throw VbError(6);
  return r.value;
}

}  // namespace kivmovfrec::vb
