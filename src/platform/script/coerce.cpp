#include "platform/script/coerce.h"

#include "platform/vb/convert.h"

namespace kivmovfrec::script {

namespace {

// Script objects have no default value the engine could read: used as a number or text they
// are a type mismatch.
const Variant& NotObject(const Variant& v) {
  if (KindOf(v) == kObj) throw VbError(13);
  return v;
}

}  // namespace

double ToDouble(const Variant& v, const vb::Locale& loc) {
  return vb::CDbl(NotObject(v), loc);
}

int32_t ToLongRounded(const Variant& v, const vb::Locale& loc) {
  return vb::CLng(NotObject(v), loc);
}

std::string ToText(const Variant& v, const vb::Locale& loc) {
  return vb::CStr(NotObject(v), loc);
}

void CheckStringSize(size_t bytes) {
  if (bytes > kMaxStringBytes) throw VbError(7, "Memoria insuficiente");
}

Variant FitWhole(int64_t r, Kind family) {
  if (family == kByte && r >= 0 && r <= 255) return Variant(static_cast<uint8_t>(r));
  if (family != kLong && r >= -32768 && r <= 32767) return Variant(static_cast<int16_t>(r));
  if (r >= INT32_MIN && r <= INT32_MAX) return Variant(static_cast<int32_t>(r));
  return Variant(static_cast<double>(r));
}

}  // namespace kivmovfrec::script
