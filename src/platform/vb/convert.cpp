// VB coercions between Variant subtypes: IsNumeric, IsDate, CDbl, CSng, CInt, CLng, CByte,
// CCur, CBool, CDate, CStr.
#include "platform/vb/convert.h"

#include <cfloat>
#include <cmath>
#include <limits>
#include <span>

#include "platform/vb/dates.h"
#include "platform/vb/decimal.h"
#include "platform/vb/format.h"
#include "platform/vb/number_parse.h"
#include "platform/vb/text.h"

namespace kivmovfrec::vb {

namespace {

// Serial range of 0100-01-01 00:00:00 .. 9999-12-31 23:59:59.
constexpr double kMinSerial = -657434.0 - 0.99999;
constexpr double kMaxSerial = 2958465.0 + 0.99999;

// An object used as a plain value stands for its default member; Nothing cannot be converted.
Variant DefaultValue(const Variant& v) {
  const auto& obj = v.AsObject();
  if (!obj) throw VbError(13);
  Variant value = obj->Invoke("", std::span<const Variant>());
  for (int depth = 0; value.IsObject(); ++depth) {
    if (depth == 8 || !value.AsObject()) throw VbError(13);
    value = value.AsObject()->Invoke("", std::span<const Variant>());
  }
  return value;
}

double TextToDouble(const std::string& s, const Locale& loc) {
  const NumberReading r = ReadNumber(s, loc);
  if (r.status == NumberReading::kOverflow) throw VbError(6);
  if (r.status != NumberReading::kOk) throw VbError(13);
  return r.value;
}

// A Currency rounded to a whole number, halves to even.
int64_t CurrencyToWhole(Currency c) {
  int64_t q = c.units / Currency::kScale;
  const int64_t rem = c.units % Currency::kScale;
  const int64_t half = Currency::kScale / 2;
  if (rem > half || (rem == half && q % 2 != 0)) ++q;
  if (rem < -half || (rem == -half && q % 2 != 0)) --q;
  return q;
}

int64_t DoubleToWhole(double d) {
  if (!std::isfinite(d) || std::fabs(d) > 9.2e18) throw VbError(6);
  const auto whole = ToScaledInteger(RoundDecimal(d, 0, HalfRule::ToEven));
  if (!whole) throw VbError(6);
  return *whole;
}

// Any value as a whole number with banker's rounding (range checked by the caller). Empty,
// Boolean and the whole-number subtypes are read exactly through CDbl; Null fails there (94).
int64_t ToWhole(const Variant& v, const Locale& loc) {
  switch (v.type()) {
    case VarType::Currency:
      return CurrencyToWhole(v.AsCurrency());
    case VarType::Object:
      return ToWhole(DefaultValue(v), loc);
    case VarType::Single:
    case VarType::Double:
    case VarType::Date:
    case VarType::String:
      return DoubleToWhole(CDbl(v, loc));
    default:
      return static_cast<int64_t>(CDbl(v, loc));
  }
}

bool IsValidSerial(double x) {
  return std::isfinite(x) && x >= kMinSerial && x <= kMaxSerial;
}

std::string CurrencyText(Currency c, const Locale& loc) {
  const uint64_t magnitude =
      c.units < 0 ? 0 - static_cast<uint64_t>(c.units) : static_cast<uint64_t>(c.units);
  std::string out = c.units < 0 ? "-" : "";
  out += std::to_string(magnitude / Currency::kScale);
  std::string frac = std::to_string(magnitude % Currency::kScale + Currency::kScale).substr(1);
  while (!frac.empty() && frac.back() == '0') frac.pop_back();
  if (!frac.empty()) {
    out += loc.decimal_separator;
    out += frac;
  }
  return out;
}

}  // namespace

bool IsNumeric(const Variant& v, const Locale& loc) {
  switch (v.type()) {
    case VarType::Null:
    case VarType::Date:
      return false;
    case VarType::String:
      return ReadNumber(v.AsString(), loc).status == NumberReading::kOk;
    case VarType::Object:
      try {
        return IsNumeric(DefaultValue(v), loc);
      } catch (const VbError&) {
        return false;
      }
    default:
      return true;  // Empty, Boolean and the number subtypes
  }
}

bool IsDate(const Variant& v) {
  if (v.type() == VarType::Date) return true;
  if (v.IsString()) return ParseDate(v.AsString()).has_value();
  return false;
}

double CDbl(const Variant& v, const Locale& loc) {
  switch (v.type()) {
    case VarType::Empty:
      return 0;
    case VarType::Null:
      throw VbError(94);
    case VarType::Boolean:
      return v.AsBool() ? -1 : 0;
    case VarType::Byte:
      return v.AsByte();
    case VarType::Integer:
      return v.AsInteger();
    case VarType::Long:
      return v.AsLong();
    case VarType::Single:
      return v.AsSingle();
    case VarType::Double:
      return v.AsDouble();
    case VarType::Currency:
      return v.AsCurrency().ToDouble();
    case VarType::Date:
      return v.AsDate().serial;
    case VarType::String:
      return TextToDouble(v.AsString(), loc);
    case VarType::Object:
      return CDbl(DefaultValue(v), loc);
  }
  throw VbError(13);
}

float CSng(const Variant& v, const Locale& loc) {
  if (v.type() == VarType::Single) return v.AsSingle();
  const double d = CDbl(v, loc);
  if (std::fabs(d) > FLT_MAX) throw VbError(6);
  return static_cast<float>(d);
}

int16_t CInt(const Variant& v, const Locale& loc) {
  const int64_t w = ToWhole(v, loc);
  if (w < std::numeric_limits<int16_t>::min() || w > std::numeric_limits<int16_t>::max()) {
    throw VbError(6);
  }
  return static_cast<int16_t>(w);
}

int32_t CLng(const Variant& v, const Locale& loc) {
  const int64_t w = ToWhole(v, loc);
  if (w < std::numeric_limits<int32_t>::min() || w > std::numeric_limits<int32_t>::max()) {
    throw VbError(6);
  }
  return static_cast<int32_t>(w);
}

uint8_t CByte(const Variant& v, const Locale& loc) {
  // True is all bits set: 255 as a Byte.
  if (v.type() == VarType::Boolean) return v.AsBool() ? 255 : 0;
  const int64_t w = ToWhole(v, loc);
  if (w < 0 || w > 255) throw VbError(6);
  return static_cast<uint8_t>(w);
}

Currency CCur(const Variant& v, const Locale& loc) {
  switch (v.type()) {
    case VarType::Currency:
      return v.AsCurrency();
    case VarType::Boolean:
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Empty:
      return Currency::FromUnits(ToWhole(v, loc) * Currency::kScale);
    case VarType::Object:
      return CCur(DefaultValue(v), loc);
    default:
      return Currency::FromDouble(CDbl(v, loc));
  }
}

bool CBool(const Variant& v, const Locale& loc) {
  switch (v.type()) {
    case VarType::Empty:
      return false;
    case VarType::Null:
      throw VbError(94);
    case VarType::Boolean:
      return v.AsBool();
    case VarType::Currency:
      return v.AsCurrency().units != 0;
    case VarType::String: {
      const std::string& s = v.AsString();
      if (EqualsIgnoreCase(s, "True") || EqualsIgnoreCase(s, loc.true_text)) return true;
      if (EqualsIgnoreCase(s, "False") || EqualsIgnoreCase(s, loc.false_text)) return false;
      return TextToDouble(s, loc) != 0;
    }
    case VarType::Object:
      return CBool(DefaultValue(v), loc);
    default:
      return CDbl(v, loc) != 0;
  }
}

Date CDate(const Variant& v) {
  switch (v.type()) {
    case VarType::Null:
      throw VbError(94);
    case VarType::Date:
      return v.AsDate();
    case VarType::String: {
      const auto d = ParseDate(v.AsString());
      if (!d) throw VbError(13);
      return *d;
    }
    case VarType::Object:
      return CDate(DefaultValue(v));
    default: {
      const double x = CDbl(v, Locale::Invariant());
      if (!IsValidSerial(x)) throw VbError(6);
      return Date{x};
    }
  }
}

std::string CStr(const Variant& v, const Locale& loc) {
  switch (v.type()) {
    case VarType::Empty:
      return "";
    case VarType::Null:
      throw VbError(94);
    case VarType::Boolean:
      return v.AsBool() ? loc.true_text : loc.false_text;
    case VarType::Byte:
      return std::to_string(v.AsByte());
    case VarType::Integer:
      return std::to_string(v.AsInteger());
    case VarType::Long:
      return std::to_string(v.AsLong());
    case VarType::Single:
      return SingleToText(v.AsSingle(), loc);
    case VarType::Double:
      return NumberToText(v.AsDouble(), loc);
    case VarType::Currency:
      return CurrencyText(v.AsCurrency(), loc);
    case VarType::Date:
      return FormatDate(v.AsDate(), "General Date", loc);
    case VarType::String:
      return v.AsString();
    case VarType::Object:
      return CStr(DefaultValue(v), loc);
  }
  throw VbError(13);
}

}  // namespace kivmovfrec::vb
