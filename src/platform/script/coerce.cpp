#include "platform/script/coerce.h"

#include <charconv>
#include <cmath>

#include "platform/vb/convert.h"

namespace kivmovfrec::script {

double ToDouble(const Variant& v, const vb::Locale& loc) {
  switch (KindOf(v)) {
    case kEmpty:
      return 0;
    case kBool:
      return v.AsBool() ? -1 : 0;
    case kByte:
      return v.AsByte();
    case kInt:
      return v.AsInteger();
    case kLong:
      return v.AsLong();
    case kSingle:
      return v.AsSingle();
    case kDouble:
      return v.AsDouble();
    case kCur:
      return v.AsCurrency().ToDouble();
    case kDate:
      return v.AsDate().serial;
    case kNull:
      throw VbError(94);
    case kStr:
      return vb::CDbl(v, loc);
    case kObj:
      break;
  }
  throw VbError(13);
}

int32_t ToLongRounded(const Variant& v, const vb::Locale& loc) {
  switch (KindOf(v)) {
    case kBool:
      return v.AsBool() ? -1 : 0;
    case kByte:
      return v.AsByte();
    case kInt:
      return v.AsInteger();
    case kLong:
      return v.AsLong();
    default:
      break;
  }
  const double d = std::nearbyint(ToDouble(v, loc));  // half to even
  if (!(d >= -2147483648.0 && d <= 2147483647.0)) throw VbError(6);
  return static_cast<int32_t>(d);
}

std::string ToText(const Variant& v, const vb::Locale& loc) {
  char buf[16];
  auto whole = [&](long x) {
    auto [end, ec] = std::to_chars(buf, buf + sizeof buf, x);
    return std::string(buf, end);
  };
  switch (KindOf(v)) {
    case kEmpty:
      return {};
    case kStr:
      return v.AsString();
    case kBool:
      return v.AsBool() ? loc.true_text : loc.false_text;
    case kByte:
      return whole(v.AsByte());
    case kInt:
      return whole(v.AsInteger());
    case kLong:
      return whole(v.AsLong());
    case kDouble:
      return vb::NumberToText(v.AsDouble(), loc);
    case kNull:
      throw VbError(94);
    case kObj:
      throw VbError(13);
    default:
      return vb::CStr(v, loc);
  }
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
