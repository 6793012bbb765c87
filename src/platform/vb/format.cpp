// Format: chooses the date or number rules from the pattern and coerces the value to match.
#include "platform/vb/format.h"

#include <cmath>
#include <span>

#include "platform/vb/convert.h"
#include "platform/vb/format_detail.h"
#include "platform/vb/number_parse.h"

namespace kivmovfrec::vb {

namespace {

// Serial range of 0100-01-01 .. 9999-12-31 23:59:59.
bool IsValidSerial(double x) {
  return std::isfinite(x) && x > -657435.0 && x < 2958466.0;
}

std::string FormatAsDate(const Variant& value, std::string_view pattern, const Locale& loc) {
  switch (value.type()) {
    case VarType::Date:
      return FormatDate(value.AsDate(), pattern, loc);
    case VarType::String: {
      if (const auto d = ParseDate(value.AsString())) return FormatDate(*d, pattern, loc);
      const NumberReading r = ReadNumber(value.AsString(), loc);
      if (r.status == NumberReading::kOk && IsValidSerial(r.value)) {
        return FormatDate(Date{r.value}, pattern, loc);
      }
      return value.AsString();  // text that is neither a date nor a number is left as it is
    }
    default: {
      const double x = CDbl(value, loc);
      if (!IsValidSerial(x)) throw VbError(6);
      return FormatDate(Date{x}, pattern, loc);
    }
  }
}

std::string FormatAsNumber(const Variant& value, std::string_view pattern, const Locale& loc) {
  if (value.IsString()) {
    const NumberReading r = ReadNumber(value.AsString(), loc);
    if (r.status != NumberReading::kOk) return value.AsString();
    return FormatNumberPattern(r.value, pattern, loc);
  }
  return FormatNumberPattern(CDbl(value, loc), pattern, loc);
}

}  // namespace

std::string Format(const Variant& value, std::string_view pattern, const Locale& loc) {
  if (value.IsNull()) return "";
  if (value.IsObject()) {
    const auto& obj = value.AsObject();
    if (!obj) throw VbError(13);
    return Format(obj->Invoke("", std::span<const Variant>()), pattern, loc);
  }
  if (pattern.empty()) return CStr(value, loc);
  if (IsDatePattern(pattern)) return FormatAsDate(value, pattern, loc);
  return FormatAsNumber(value, pattern, loc);
}

}  // namespace kivmovfrec::vb
