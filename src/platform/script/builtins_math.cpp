// Numeric functions: Abs Int Fix Round Sgn Sqr Log Exp Atn Sin Cos Tan Hex Oct.
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/script/builtins.h"
#include "platform/script/coerce.h"
#include "platform/vb/convert.h"

namespace kivmovfrec::script {

namespace {

// Null, Empty, Boolean and the whole-number subtypes are their own whole part and their own
// rounding: Null stays Null, Empty and Boolean become the Integer 0 / -1. Nothing for the rest.
std::optional<Variant> AlreadyWhole(const Variant& v) {
  switch (KindOf(v)) {
    case kNull:
      return Variant::Null();
    case kEmpty:
      return Variant(int16_t{0});
    case kBool:
      return Variant(static_cast<int16_t>(v.AsBool() ? -1 : 0));
    case kByte:
    case kInt:
    case kLong:
      return v;
    default:
      return std::nullopt;
  }
}

// Int (toward minus infinity) and Fix (toward zero), keeping the subtype.
Variant WholePart(const Variant& v, const vb::Locale& loc, bool toward_minus_infinity) {
  auto round = [&](double x) { return toward_minus_infinity ? std::floor(x) : std::trunc(x); };
  if (auto whole = AlreadyWhole(v)) return *whole;
  switch (KindOf(v)) {
    case kSingle:
      return Variant(static_cast<float>(round(v.AsSingle())));
    case kCur: {
      const int64_t u = v.AsCurrency().units;
      int64_t q = u / Currency::kScale;
      if (toward_minus_infinity && u < 0 && u % Currency::kScale != 0) --q;
      return Variant(Currency::FromUnits(q * Currency::kScale));
    }
    case kDate:
      return Variant(Date{round(v.AsDate().serial)});
    default:
      return Variant(round(ToDouble(v, loc)));
  }
}

Variant Abs(std::span<Variant> a, const CallContext& cx) {
  const Variant& v = a[0];
  switch (KindOf(v)) {
    case kNull:
      return Variant::Null();
    case kEmpty:
      return Variant(int16_t{0});
    case kBool:
      return Variant(static_cast<int16_t>(v.AsBool() ? 1 : 0));
    case kByte:
      return v;
    case kInt:
      return FitWhole(std::abs(static_cast<int64_t>(v.AsInteger())), kInt);
    case kLong:
      return FitWhole(std::abs(static_cast<int64_t>(v.AsLong())), kLong);
    case kSingle:
      return Variant(std::fabs(v.AsSingle()));
    case kCur: {
      const int64_t u = v.AsCurrency().units;
      if (u == INT64_MIN) throw VbError(6);
      return Variant(Currency::FromUnits(u < 0 ? -u : u));
    }
    case kDate:
      return Variant(Date{std::fabs(v.AsDate().serial)});
    default:
      return Variant(std::fabs(ToDouble(v, cx.loc)));
  }
}

Variant Int(std::span<Variant> a, const CallContext& cx) {
  return WholePart(a[0], cx.loc, true);
}

Variant Fix(std::span<Variant> a, const CallContext& cx) {
  return WholePart(a[0], cx.loc, false);
}

Variant Round(std::span<Variant> a, const CallContext& cx) {
  const Variant& v = a[0];
  int digits = 0;
  if (a.size() > 1) {
    const int32_t n = ToLongRounded(a[1], cx.loc);
    if (n < 0) throw VbError(5);
    digits = n > 30 ? 30 : n;
  }
  if (auto whole = AlreadyWhole(v)) return *whole;
  switch (KindOf(v)) {
    case kSingle:
      return Variant(static_cast<float>(vb::RoundHalfEven(v.AsSingle(), digits)));
    case kCur: {
      if (digits >= 4) return v;
      int64_t step = 1;
      for (int i = digits; i < 4; ++i) step *= 10;
      const int64_t u = v.AsCurrency().units;
      int64_t q = u / step;
      const int64_t rem = u % step;
      const int64_t twice = (rem < 0 ? -rem : rem) * 2;
      if (twice > step || (twice == step && q % 2 != 0)) q += u < 0 ? -1 : 1;
      return Variant(Currency::FromUnits(q * step));
    }
    case kDate:
      return Variant(Date{vb::RoundHalfEven(v.AsDate().serial, digits)});
    default:
      return Variant(vb::RoundHalfEven(ToDouble(v, cx.loc), digits));
  }
}

Variant Sgn(std::span<Variant> a, const CallContext& cx) {
  const double x = ToDouble(a[0], cx.loc);
  return Variant(static_cast<int16_t>(x > 0 ? 1 : x < 0 ? -1 : 0));
}

Variant Sqr(std::span<Variant> a, const CallContext& cx) {
  const double x = ToDouble(a[0], cx.loc);
  if (x < 0) throw VbError(5);
  return Variant(std::sqrt(x));
}

Variant Log(std::span<Variant> a, const CallContext& cx) {
  const double x = ToDouble(a[0], cx.loc);
  if (x <= 0) throw VbError(5);
  return Variant(std::log(x));
}

Variant Exp(std::span<Variant> a, const CallContext& cx) {
  const double r = std::exp(ToDouble(a[0], cx.loc));
  if (!std::isfinite(r)) throw VbError(6);
  return Variant(r);
}

// Trigonometry on finite arguments; an infinite or undefined result is an invalid argument.
template <double (*F)(double)>
Variant Trig(std::span<Variant> a, const CallContext& cx) {
  const double r = F(ToDouble(a[0], cx.loc));
  if (!std::isfinite(r)) throw VbError(5);
  return Variant(r);
}

double AtnOf(double x) {
  return std::atan(x);
}
double SinOf(double x) {
  return std::sin(x);
}
double CosOf(double x) {
  return std::cos(x);
}
double TanOf(double x) {
  return std::tan(x);
}

// Hex / Oct: 16-bit two's complement for Integer-sized values, 32-bit otherwise.
Variant Radix(const Variant& v, const CallContext& cx, unsigned base) {
  if (v.IsNull()) return Variant::Null();
  const int32_t n = ToLongRounded(v, cx.loc);
  const Kind k = KindOf(v);
  const bool narrow = k == kEmpty || k == kBool || k == kByte || k == kInt;
  uint32_t u = narrow ? static_cast<uint16_t>(n) : static_cast<uint32_t>(n);
  static constexpr char kDigits[] = "0123456789ABCDEF";
  char buf[16];
  int i = sizeof buf;
  do {
    buf[--i] = kDigits[u % base];
    u /= base;
  } while (u != 0);
  return Variant(std::string(buf + i, buf + sizeof buf));
}

Variant Hex(std::span<Variant> a, const CallContext& cx) {
  return Radix(a[0], cx, 16);
}
Variant Oct(std::span<Variant> a, const CallContext& cx) {
  return Radix(a[0], cx, 8);
}

const Builtin kMath[] = {
    {"Abs", 1, 1, 0, Abs},         {"Int", 1, 1, 0, Int},         {"Fix", 1, 1, 0, Fix},
    {"Round", 1, 2, 0, Round},     {"Sgn", 1, 1, 0, Sgn},         {"Sqr", 1, 1, 0, Sqr},
    {"Log", 1, 1, 0, Log},         {"Exp", 1, 1, 0, Exp},         {"Atn", 1, 1, 0, Trig<AtnOf>},
    {"Sin", 1, 1, 0, Trig<SinOf>}, {"Cos", 1, 1, 0, Trig<CosOf>}, {"Tan", 1, 1, 0, Trig<TanOf>},
    {"Hex", 1, 1, 0, Hex},         {"Oct", 1, 1, 0, Oct},
};

}  // namespace

std::span<const Builtin> MathBuiltins() {
  return kMath;
}

}  // namespace kivmovfrec::script
