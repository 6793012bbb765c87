// Coercions the engine applies to operands and arguments. Internal to the script engine.
// All throw VbError: 13 for text that is not a number, 94 for Null where a value is needed,
// 6 for a value outside the target range.
#pragma once

#include <cstdint>
#include <string>

#include "kivmovfrec/variant.h"
#include "platform/vb/locale.h"

namespace kivmovfrec::script {

// Subtype codes in the order of Variant::Storage, so KindOf is the variant index.
enum Kind : uint8_t {
  kEmpty,
  kNull,
  kBool,
  kByte,
  kInt,
  kLong,
  kSingle,
  kDouble,
  kCur,
  kDate,
  kStr,
  kObj,
};

inline Kind KindOf(const Variant& v) {
  return static_cast<Kind>(v.storage().index());
}

// Largest string the engine builds (String, Space, &, Replace...); beyond it error 7.
inline constexpr size_t kMaxStringBytes = size_t{64} << 20;

// The engine's coercions are vb::CDbl, vb::CLng and vb::CStr, except that an object (or Nothing)
// is always a type mismatch (13): script objects have no default value to read.
// Empty 0, Boolean -1/0, numbers, Date serial, numeric text in the locale. Null -> 94.
double ToDouble(const Variant& v, const vb::Locale& loc);
// vb::CLng: rounded half to even into the Long range (else 6).
int32_t ToLongRounded(const Variant& v, const vb::Locale& loc);
// ToLongRounded, for counts and positions of the text functions.
inline int64_t ToCount(const Variant& v, const vb::Locale& loc) {
  return ToLongRounded(v, loc);
}
// The text of a value as CStr writes it in `loc`; Null -> 94, Empty -> "".
std::string ToText(const Variant& v, const vb::Locale& loc);
// Throws VbError(7) when a string of `bytes` bytes would be too large.
void CheckStringSize(size_t bytes);

// Smallest whole-number subtype of the family that holds r, widening Byte -> Integer -> Long ->
// Double. `family` is kByte, kInt or kLong.
Variant FitWhole(int64_t r, Kind family);

}  // namespace kivmovfrec::script
