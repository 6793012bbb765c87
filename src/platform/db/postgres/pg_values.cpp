#include "platform/db/postgres/pg_values.h"

#include <fmt/format.h>
#include <libpq-fe.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "kivmovfrec/db.h"
#include "platform/db/sql_tokens.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::postgres {

namespace {

Variant WholeNumber(std::string_view text) {
  int64_t v = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
  if (ec != std::errc() || end != text.data() + text.size()) {
    // Beyond 64 bits (an unsigned oid never is): read it as a number all the same.
    double d = 0;
    auto [e2, ec2] = std::from_chars(text.data(), text.data() + text.size(), d);
    if (ec2 == std::errc() && e2 == text.data() + text.size()) return Variant(d);
    return Variant(std::string(text));
  }
  if (v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max()) {
    return Variant(static_cast<int32_t>(v));
  }
  return Variant(static_cast<double>(v));
}

Variant FractionalNumber(std::string_view text) {
  double d = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), d);
  if (ec == std::errc() && end == text.data() + text.size()) return Variant(d);
  return Variant(std::string(text));  // a numeric beyond the range of a double
}

Variant DateTime(std::string_view text) {
  if (auto d = vb::ParseIsoDateTime(text)) return Variant(*d);
  return Variant(std::string(text));
}

// "2026-11-10 09:00:00-03" or "...+05:30": the time as shown, without its offset.
Variant DateTimeWithZone(std::string_view text) {
  const size_t at = text.find_last_of("+-");
  if (at != std::string_view::npos && at > 10) text = text.substr(0, at);
  return DateTime(text);
}

Variant TimeOfDay(std::string_view text) {
  if (auto d = vb::ParseIsoDateTime("1899-12-30 " + std::string(text))) return Variant(*d);
  return Variant(std::string(text));
}

Variant Bytes(std::string_view text) {
  size_t length = 0;
  const std::string owned(text);
  unsigned char* raw =
      PQunescapeBytea(reinterpret_cast<const unsigned char*>(owned.c_str()), &length);
  if (raw == nullptr) return Variant(owned);
  std::string bytes(reinterpret_cast<const char*>(raw), length);
  PQfreemem(raw);
  return Variant(std::move(bytes));
}

// The exact decimal text of a Currency, without trailing zeros ("12.5", "-3", "0.0001").
std::string CurrencyText(Currency c) {
  const bool negative = c.units < 0;
  // Magnitude as unsigned so that the most negative value does not overflow.
  const uint64_t magnitude =
      negative ? static_cast<uint64_t>(-(c.units + 1)) + 1 : static_cast<uint64_t>(c.units);
  const uint64_t whole = magnitude / Currency::kScale;
  std::string frac = fmt::format("{:04}", magnitude % Currency::kScale);
  while (!frac.empty() && frac.back() == '0') frac.pop_back();
  return fmt::format("{}{}{}{}", negative ? "-" : "", whole, frac.empty() ? "" : ".", frac);
}

std::string DoubleText(double d) {
  if (std::isnan(d)) return "NaN";
  if (std::isinf(d)) return d > 0 ? "Infinity" : "-Infinity";
  return fmt::format("{}", d);
}

}  // namespace

Variant FromText(unsigned type, std::string_view text) {
  switch (type) {
    case oid::kBool:
      return Variant(text == "t");
    case oid::kInt2:
    case oid::kInt4:
    case oid::kInt8:
    case oid::kOid:
      return WholeNumber(text);
    case oid::kFloat4:
    case oid::kFloat8:
    case oid::kNumeric:
      return FractionalNumber(text);
    case oid::kDate:
    case oid::kTimestamp:
      return DateTime(text);
    case oid::kTimestampTz:
      return DateTimeWithZone(text);
    case oid::kTime:
      return TimeOfDay(text);
    case oid::kBytea:
      return Bytes(text);
    default:
      return Variant(std::string(text));
  }
}

std::optional<std::string> ToParam(const Variant& value) {
  return std::visit(
      [](const auto& v) -> std::optional<std::string> {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::monostate> || std::is_same_v<T, Variant::NullTag>) {
          return std::nullopt;
        } else if constexpr (std::is_same_v<T, bool>) {
          return std::string(v ? "1" : "0");
        } else if constexpr (std::is_same_v<T, uint8_t> || std::is_same_v<T, int16_t> ||
                             std::is_same_v<T, int32_t>) {
          return std::to_string(v);
        } else if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>) {
          return DoubleText(static_cast<double>(v));
        } else if constexpr (std::is_same_v<T, Currency>) {
          return CurrencyText(v);
        } else if constexpr (std::is_same_v<T, Date>) {
          return sql::StoredDateText(v);
        } else if constexpr (std::is_same_v<T, std::string>) {
          return v;
        } else {
          throw DbError("Un objeto no se puede guardar en una columna de la base de datos");
        }
      },
      value.storage());
}

}  // namespace kivmovfrec::postgres
