// Arithmetic follows VBScript's subtype rules:
//  - + - * keep whole-number subtypes (Byte, Integer, Long) and widen the result on overflow
//    Byte -> Integer -> Long -> Double; Boolean and Empty count as Integer; Single with Long gives
//    Double; Currency stays exact unless mixed with Single/Double; a Date plus or minus a number
//    is a Date, a Date minus a Date a Double; text operands are read as Double.
//  - / and ^ give Double (Single for Single / Single); \ and Mod round both operands half to even
//    into Long first.
//  - Null makes the result Null, except & (Null counts as "") and the logical shortcuts
//    Null And False = False, Null Or True = True.
#include "platform/script/operators.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <string>

#include "platform/script/coerce.h"

namespace kivmovfrec::script {

namespace {

__extension__ using Int128 = __int128;

bool IsWholeKind(Kind k) {
  return k == kEmpty || k == kBool || k == kByte || k == kInt || k == kLong;
}

// Result subtype of + - * for two operands that are numeric, Empty or Boolean.
Kind Promote(Kind x, Kind y, OpCode op) {
  if (x == kDate || y == kDate) {
    if (op == OpCode::Mul || (x == kDate && y == kDate && op == OpCode::Sub)) return kDouble;
    return kDate;
  }
  if (x == kCur || y == kCur) {
    return (x == kSingle || y == kSingle || x == kDouble || y == kDouble) ? kDouble : kCur;
  }
  if (x == kDouble || y == kDouble) return kDouble;
  if (x == kSingle || y == kSingle) return (x == kLong || y == kLong) ? kDouble : kSingle;
  if (x == kLong || y == kLong) return kLong;
  if (x == kByte && y == kByte) return kByte;
  return kInt;
}

double Finite(double r) {
  if (!std::isfinite(r)) throw VbError(6);
  return r;
}

Variant SingleOrDouble(double r) {
  if (std::fabs(r) <= FLT_MAX) return Variant(static_cast<float>(r));
  return Variant(Finite(r));
}

int64_t CurrencyUnits(const Variant& v, const vb::Locale& loc) {
  if (KindOf(v) == kCur) return v.AsCurrency().units;
  return Currency::FromDouble(ToDouble(v, loc)).units;
}

Variant CurrencyArith(OpCode op, const Variant& a, const Variant& b, const vb::Locale& loc) {
  const int64_t x = CurrencyUnits(a, loc);
  const int64_t y = CurrencyUnits(b, loc);
  int64_t r = 0;
  if (op == OpCode::Add) {
    if (__builtin_add_overflow(x, y, &r)) throw VbError(6);
  } else if (op == OpCode::Sub) {
    if (__builtin_sub_overflow(x, y, &r)) throw VbError(6);
  } else {
    const Int128 p = static_cast<Int128>(x) * y;
    Int128 q = p / Currency::kScale;
    const Int128 rem = p % Currency::kScale;
    const Int128 twice = (rem < 0 ? -rem : rem) * 2;
    if (twice > Currency::kScale || (twice == Currency::kScale && (q % 2 != 0))) {
      q += p < 0 ? -1 : 1;
    }
    if (q > INT64_MAX || q < INT64_MIN) throw VbError(6);
    r = static_cast<int64_t>(q);
  }
  return Variant(Currency::FromUnits(r));
}

void Arithmetic(OpCode op, Variant& a, const Variant& b, const vb::Locale& loc) {
  Kind ka = KindOf(a), kb = KindOf(b);
  if (ka == kNull || kb == kNull) {
    a = Variant::Null();
    return;
  }
  if (op == OpCode::Add) {
    if (ka == kStr && kb == kStr) {
      CheckStringSize(a.AsString().size() + b.AsString().size());
      a = Variant(a.AsString() + b.AsString());
      return;
    }
    if (ka == kStr && kb == kEmpty) return;
    if (ka == kEmpty && kb == kStr) {
      a = b;
      return;
    }
  }
  if (ka == kObj || kb == kObj) throw VbError(13);
  // Text takes part as a Double.
  Variant converted_b;
  const Variant* pb = &b;
  if (ka == kStr) {
    a = Variant(ToDouble(a, loc));
    ka = kDouble;
  }
  if (kb == kStr) {
    converted_b = Variant(ToDouble(b, loc));
    pb = &converted_b;
    kb = kDouble;
  }
  const Kind result = Promote(ka, kb, op);
  switch (result) {
    case kByte:
    case kInt:
    case kLong: {
      const int64_t x = ToLongRounded(a, loc), y = ToLongRounded(*pb, loc);
      const int64_t r = op == OpCode::Add ? x + y : op == OpCode::Sub ? x - y : x * y;
      a = FitWhole(r, result);
      return;
    }
    case kCur:
      a = CurrencyArith(op, a, *pb, loc);
      return;
    default:
      break;
  }
  const double x = ToDouble(a, loc), y = ToDouble(*pb, loc);
  const double r = op == OpCode::Add ? x + y : op == OpCode::Sub ? x - y : x * y;
  if (result == kSingle) {
    a = SingleOrDouble(r);
  } else if (result == kDate) {
    a = Variant(Date{Finite(r)});
  } else {
    a = Variant(Finite(r));
  }
}

void Divide(Variant& a, const Variant& b, const vb::Locale& loc) {
  const Kind ka = KindOf(a), kb = KindOf(b);
  if (ka == kNull || kb == kNull) {
    a = Variant::Null();
    return;
  }
  const double x = ToDouble(a, loc), y = ToDouble(b, loc);
  if (y == 0) throw VbError(x == 0 ? 6 : 11);
  const double r = x / y;
  auto single_friendly = [](Kind k) {
    return k == kSingle || k == kEmpty || k == kBool || k == kByte || k == kInt;
  };
  if ((ka == kSingle || kb == kSingle) && single_friendly(ka) && single_friendly(kb)) {
    a = SingleOrDouble(r);
  } else {
    a = Variant(Finite(r));
  }
}

void IntegerDivide(OpCode op, Variant& a, const Variant& b, const vb::Locale& loc) {
  const Kind ka = KindOf(a), kb = KindOf(b);
  if (ka == kNull || kb == kNull) {
    a = Variant::Null();
    return;
  }
  const int64_t x = ToLongRounded(a, loc), y = ToLongRounded(b, loc);
  if (y == 0) throw VbError(11);
  const int64_t r = op == OpCode::IntDiv ? x / y : x % y;
  Kind family = kLong;
  if (ka == kByte && kb == kByte) {
    family = kByte;
  } else if (IsWholeKind(ka) && IsWholeKind(kb) && ka != kLong && kb != kLong) {
    family = kInt;
  }
  if (family == kLong && (r < INT32_MIN || r > INT32_MAX)) throw VbError(6);
  a = FitWhole(r, family);
}

void Power(Variant& a, const Variant& b, const vb::Locale& loc) {
  if (a.IsNull() || b.IsNull()) {
    a = Variant::Null();
    return;
  }
  const double x = ToDouble(a, loc), y = ToDouble(b, loc);
  if (x < 0 && y != std::floor(y)) throw VbError(5);
  if (x == 0 && y < 0) throw VbError(5);
  const double r = std::pow(x, y);
  if (std::isnan(r)) throw VbError(5);
  a = Variant(Finite(r));
}

void Concatenate(Variant& a, const Variant& b, const vb::Locale& loc) {
  if (a.IsNull() && b.IsNull()) return;
  std::string left = a.IsNull() ? std::string() : ToText(a, loc);
  if (b.IsNull()) {
    a = Variant(std::move(left));
    return;
  }
  if (KindOf(b) == kStr) {
    CheckStringSize(left.size() + b.AsString().size());
    left += b.AsString();
  } else {
    const std::string right = ToText(b, loc);
    CheckStringSize(left.size() + right.size());
    left += right;
  }
  a = Variant(std::move(left));
}

// -1, 0, 1, or 2 when either side is Null.
int Compare(const Variant& a, const Variant& b, const vb::Locale& loc) {
  const Kind ka = KindOf(a), kb = KindOf(b);
  if (ka == kNull || kb == kNull) return 2;
  if (ka == kObj || kb == kObj) throw VbError(13);
  if (ka == kStr || kb == kStr) {
    if (ka == kStr && kb == kStr) {
      const int c = a.AsString().compare(b.AsString());
      return c < 0 ? -1 : c > 0 ? 1 : 0;
    }
    // Empty reads as "" against text; any other value is less than text.
    if (ka == kEmpty) return b.AsString().empty() ? 0 : -1;
    if (kb == kEmpty) return a.AsString().empty() ? 0 : 1;
    return ka == kStr ? 1 : -1;
  }
  if (ka == kCur && kb == kCur) {
    const int64_t x = a.AsCurrency().units, y = b.AsCurrency().units;
    return x < y ? -1 : x > y ? 1 : 0;
  }
  const double x = ToDouble(a, loc), y = ToDouble(b, loc);
  return x < y ? -1 : x > y ? 1 : 0;
}

// Operands of the logical operators: Boolean stays Boolean, whole numbers keep their width,
// anything else is rounded into a Long.
struct Logical {
  Kind family;  // kBool, kByte, kInt or kLong
  int32_t value;
};

Logical ToLogical(const Variant& v, const vb::Locale& loc) {
  switch (KindOf(v)) {
    case kBool:
      return {kBool, v.AsBool() ? -1 : 0};
    case kEmpty:
      return {kInt, 0};
    case kByte:
      return {kByte, v.AsByte()};
    case kInt:
      return {kInt, v.AsInteger()};
    case kLong:
      return {kLong, v.AsLong()};
    default:
      return {kLong, ToLongRounded(v, loc)};
  }
}

Kind LogicalFamily(Kind x, Kind y) {
  if (x == y) return x;
  if (x == kLong || y == kLong) return kLong;
  return kInt;
}

Variant MakeLogical(Kind family, int32_t value) {
  switch (family) {
    case kBool:
      return Variant(value != 0);
    case kByte:
      return Variant(static_cast<uint8_t>(value));
    case kInt:
      return Variant(static_cast<int16_t>(value));
    default:
      return Variant(value);
  }
}

bool AllBits(const Logical& l) {
  return l.family == kByte ? (l.value & 0xFF) == 0xFF : l.value == -1;
}

void LogicalBinary(OpCode op, Variant& a, const Variant& b, const vb::Locale& loc) {
  const bool na = a.IsNull(), nb = b.IsNull();
  if (na || nb) {
    if (na && nb) return;  // Null
    const Logical other = ToLogical(na ? b : a, loc);
    const Variant other_value = MakeLogical(other.family, other.value);
    switch (op) {
      case OpCode::And:
        // Null And False = False; anything else with Null is unknown.
        a = other.value == 0 ? other_value : Variant::Null();
        return;
      case OpCode::Or:
        a = AllBits(other) ? other_value : Variant::Null();
        return;
      case OpCode::Imp:
        // Null Imp True = True; False Imp Null = True.
        if (na) {
          a = AllBits(other) ? other_value : Variant::Null();
        } else {
          a = other.value == 0 ? MakeLogical(other.family, other.family == kByte ? 0xFF : -1)
                               : Variant::Null();
        }
        return;
      default:
        a = Variant::Null();
        return;
    }
  }
  const Logical x = ToLogical(a, loc), y = ToLogical(b, loc);
  int32_t r = 0;
  switch (op) {
    case OpCode::And:
      r = x.value & y.value;
      break;
    case OpCode::Or:
      r = x.value | y.value;
      break;
    case OpCode::Xor:
      r = x.value ^ y.value;
      break;
    case OpCode::Eqv:
      r = ~(x.value ^ y.value);
      break;
    default:
      r = ~x.value | y.value;
      break;  // Imp
  }
  a = MakeLogical(LogicalFamily(x.family, y.family), r);
}

}  // namespace

void ApplyBinary(OpCode op, Variant& a, const Variant& b, const vb::Locale& loc) {
  switch (op) {
    case OpCode::Add:
    case OpCode::Sub:
    case OpCode::Mul:
      Arithmetic(op, a, b, loc);
      return;
    case OpCode::Div:
      Divide(a, b, loc);
      return;
    case OpCode::IntDiv:
    case OpCode::Mod:
      IntegerDivide(op, a, b, loc);
      return;
    case OpCode::Pow:
      Power(a, b, loc);
      return;
    case OpCode::Concat:
      Concatenate(a, b, loc);
      return;
    case OpCode::Eq:
    case OpCode::Ne:
    case OpCode::Lt:
    case OpCode::Gt:
    case OpCode::Le:
    case OpCode::Ge: {
      const int c = Compare(a, b, loc);
      if (c == 2) {
        a = Variant::Null();
        return;
      }
      bool r = false;
      switch (op) {
        case OpCode::Eq:
          r = c == 0;
          break;
        case OpCode::Ne:
          r = c != 0;
          break;
        case OpCode::Lt:
          r = c < 0;
          break;
        case OpCode::Gt:
          r = c > 0;
          break;
        case OpCode::Le:
          r = c <= 0;
          break;
        default:
          r = c >= 0;
          break;
      }
      a = Variant(r);
      return;
    }
    case OpCode::And:
    case OpCode::Or:
    case OpCode::Xor:
    case OpCode::Eqv:
    case OpCode::Imp:
      LogicalBinary(op, a, b, loc);
      return;
    default:
      throw VbError(5);
  }
}

void ApplyNegate(Variant& a, const vb::Locale& loc) {
  switch (KindOf(a)) {
    case kNull:
      return;
    case kEmpty:
      a = Variant(int16_t{0});
      return;
    case kBool:
    case kByte:
    case kInt:
      a = FitWhole(-int64_t{ToLongRounded(a, loc)}, kInt);
      return;
    case kLong:
      a = FitWhole(-int64_t{ToLongRounded(a, loc)}, kLong);
      return;
    case kSingle:
      a = Variant(-a.AsSingle());
      return;
    case kDouble:
      a = Variant(-a.AsDouble());
      return;
    case kCur: {
      const int64_t u = a.AsCurrency().units;
      if (u == INT64_MIN) throw VbError(6);
      a = Variant(Currency::FromUnits(-u));
      return;
    }
    case kDate:
      a = Variant(Date{-a.AsDate().serial});
      return;
    case kStr:
      a = Variant(-ToDouble(a, loc));
      return;
    case kObj:
      break;
  }
  throw VbError(13);
}

void ApplyNot(Variant& a, const vb::Locale& loc) {
  if (a.IsNull()) return;
  if (KindOf(a) == kEmpty) {
    a = Variant(int16_t{-1});
    return;
  }
  const Logical x = ToLogical(a, loc);
  a = MakeLogical(x.family, ~x.value);
}

}  // namespace kivmovfrec::script
