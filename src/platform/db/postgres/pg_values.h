// Values between PostgreSQL's text format and Variant. Internal to the PostgreSQL adapter.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::postgres {

// Type OIDs of the built-in types the adapter maps (pg_type.oid).
namespace oid {
inline constexpr unsigned kBool = 16;
inline constexpr unsigned kBytea = 17;
inline constexpr unsigned kInt8 = 20;
inline constexpr unsigned kInt2 = 21;
inline constexpr unsigned kInt4 = 23;
inline constexpr unsigned kOid = 26;
inline constexpr unsigned kFloat4 = 700;
inline constexpr unsigned kFloat8 = 701;
inline constexpr unsigned kDate = 1082;
inline constexpr unsigned kTime = 1083;
inline constexpr unsigned kTimestamp = 1114;
inline constexpr unsigned kTimestampTz = 1184;
inline constexpr unsigned kNumeric = 1700;
}  // namespace oid

// The value of a column in text format, by the column's type:
//   int2, int4, int8, oid      -> Long; Double when it does not fit 32 bits
//   float4, float8, numeric    -> Double
//   bool                       -> Boolean
//   timestamp, date            -> Date; timestamptz -> Date of the time shown (the session's
//                                 zone); time -> Date holding only the time of day. A value a
//                                 Date cannot hold (infinity, BC, year > 9999) -> String.
//   bytea                      -> String of its bytes
//   anything else (text, varchar, bpchar, name, json...) -> String as the server writes it;
//   bpchar keeps its padding, as the engine returns it (the suite trims where it matters).
Variant FromText(unsigned type, std::string_view text);

// A value as a statement parameter in text form (nullopt = NULL):
//   Empty, Null -> NULL; Boolean -> "1" / "0" (accepted by integer and boolean columns);
//   Byte, Integer, Long -> decimal; Single, Double -> shortest text that reads back the same
//   double; Currency -> its exact decimal; Date -> "yyyy-mm-dd hh:nn:ss"; String -> itself.
// Whole numbers are written without a fraction ("2", not "2.0"), so they fit integer columns.
// An Object throws DbError.
std::optional<std::string> ToParam(const Variant& value);

}  // namespace kivmovfrec::postgres
