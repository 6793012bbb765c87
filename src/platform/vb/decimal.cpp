#include "platform/vb/decimal.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::vb {

namespace {

// Shortest round-trip digits of |value| (no leading zeros) and the decimal exponent of the
// first digit: value = d.ddd × 10^exponent.
struct Shortest {
  std::string digits;
  int exponent = 0;
};

Shortest ShortestDigits(double value) {
  char buf[64];
  auto [end, ec] =
      std::to_chars(buf, buf + sizeof buf, std::fabs(value), std::chars_format::scientific);
  if (ec != std::errc()) throw VbError(6);
  std::string_view text(buf, static_cast<size_t>(end - buf));
  Shortest s;
  const size_t e = text.find('e');
  for (char c : text.substr(0, e)) {
    if (c != '.') s.digits.push_back(c);
  }
  std::string_view exp = text.substr(e + 1);
  const bool neg_exp = exp.front() == '-';
  exp.remove_prefix(1);  // to_chars always writes the exponent's sign
  std::from_chars(exp.data(), exp.data() + exp.size(), s.exponent);
  if (neg_exp) s.exponent = -s.exponent;
  return s;
}

// Adds one to a string of decimal digits.
void Increment(std::string& digits) {
  for (size_t i = digits.size(); i-- > 0;) {
    if (digits[i] != '9') {
      ++digits[i];
      return;
    }
    digits[i] = '0';
  }
  digits.insert(digits.begin(), '1');
}

}  // namespace

std::string RoundedDecimal::IntegerDigits() const {
  const size_t p = static_cast<size_t>(places);
  if (digits.size() <= p) return "0";
  return digits.substr(0, digits.size() - p);
}

std::string RoundedDecimal::FractionDigits() const {
  const size_t p = static_cast<size_t>(places);
  if (digits.size() >= p) return digits.substr(digits.size() - p);
  return std::string(p - digits.size(), '0') + digits;
}

RoundedDecimal RoundDecimal(double value, int places, HalfRule rule, int shift) {
  if (!std::isfinite(value)) throw VbError(6);
  if (places < 0 || places > 340 || shift < -400 || shift > 400) throw VbError(5);
  RoundedDecimal r;
  r.places = places;
  if (value == 0) {
    r.digits = "0";
    return r;
  }
  Shortest s = ShortestDigits(value);
  s.exponent += shift;
  const long n = static_cast<long>(s.digits.size());
  // Number of leading digits that lie at or above the 10^-places position.
  const long keep = static_cast<long>(s.exponent) + 1 + places;
  if (keep >= n) {
    r.digits = s.digits + std::string(static_cast<size_t>(keep - n), '0');
  } else if (keep < 0) {
    r.digits = "0";  // below half of the last kept unit
  } else {
    std::string kept = s.digits.substr(0, static_cast<size_t>(keep));
    const int next = s.digits[static_cast<size_t>(keep)] - '0';
    const bool rest_nonzero =
        s.digits.find_first_not_of('0', static_cast<size_t>(keep) + 1) != std::string::npos;
    const bool last_odd = !kept.empty() && (kept.back() - '0') % 2 != 0;
    bool up = next > 5;
    if (next == 5) up = rest_nonzero || rule == HalfRule::AwayFromZero || last_odd;
    if (kept.empty()) kept = "0";
    if (up) Increment(kept);
    const size_t first = kept.find_first_not_of('0');
    r.digits = first == std::string::npos ? "0" : kept.substr(first);
  }
  r.negative = value < 0 && !r.IsZero();
  return r;
}

double ToDouble(const RoundedDecimal& r) {
  const std::string text = r.digits + "e-" + std::to_string(r.places);
  double result = 0;
  auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), result);
  (void)ptr;
  if (ec == std::errc::result_out_of_range) {
    // Only reachable for magnitudes next to the limits of double; keep the sign and the
    // direction of the overflow.
    result =
        r.digits.size() > static_cast<size_t>(r.places) ? std::numeric_limits<double>::max() : 0.0;
  }
  return r.negative ? -result : result;
}

std::optional<int64_t> ToScaledInteger(const RoundedDecimal& r) {
  uint64_t magnitude = 0;
  constexpr uint64_t kMax = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
  for (char c : r.digits) {
    const uint64_t d = static_cast<uint64_t>(c - '0');
    if (magnitude > (kMax - d) / 10) return std::nullopt;
    magnitude = magnitude * 10 + d;
  }
  const auto m = static_cast<int64_t>(magnitude);
  return r.negative ? -m : m;
}

}  // namespace kivmovfrec::vb
