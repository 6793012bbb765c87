// The dynamic value shared by the database layer and the script engine.
//
// Variant mirrors the VB/VBScript Variant: a tagged value with the subtypes below. Conversions
// between subtypes follow VB rules and live in platform/vb (convert.h); this header only
// holds the representation, construction and subtype inspection, so it can be used anywhere
// without pulling in the conversion machinery.
//
// Currency is a 64-bit integer scaled by 10^4 (four decimals, exact). Date is a double counting
// days since 1899-12-30; the fraction is the time of day.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kivmovfrec/export.h"

namespace kivmovfrec {

// Fixed-point money value: units of 1/10000. Arithmetic on Currency stays exact; conversion
// from double rounds half to even at the fourth decimal (banker's rounding, as VB does).
struct KMF_API Currency {
  static constexpr int64_t kScale = 10000;
  int64_t units = 0;

  static Currency FromUnits(int64_t u) { return Currency{u}; }
  // Rounds half to even at the fourth decimal. Throws VbError(6) when out of range.
  static Currency FromDouble(double value);
  double ToDouble() const { return static_cast<double>(units) / kScale; }

  friend bool operator==(Currency a, Currency b) = default;
  friend auto operator<=>(Currency a, Currency b) = default;
};

// A date-time as VB stores it: whole days since 1899-12-30 plus the time of day as a fraction.
struct KMF_API Date {
  double serial = 0.0;

  friend bool operator==(Date a, Date b) = default;
  friend auto operator<=>(Date a, Date b) = default;
};

class Variant;

// An object a Variant can hold: the script engine's named objects (the database connection,
// result sets, fields). Member names are compared without regard to case.
class KMF_API Object {
 public:
  virtual ~Object() = default;
  // Name reported by TypeName() in scripts.
  virtual std::string TypeName() const = 0;
  // Calls member `name` (property read or method) with `args`. An empty name is the default
  // member. Throws VbError(438) when there is no such member, VbError(450) on a wrong number of
  // arguments; other VbErrors as the member defines.
  virtual Variant Invoke(std::string_view name, std::span<const Variant> args) = 0;
};

// An error with a VB error number and a Spanish description, raised by the VB-compatible
// functions and the script engine (5 invalid argument, 6 overflow, 11 division by zero,
// 13 type mismatch, 94 invalid use of Null, ...).
class KMF_API VbError : public std::runtime_error {
 public:
  VbError(int number, const std::string& description)
      : std::runtime_error(description), number_(number) {}
  // Uses the standard Spanish description of `number`.
  explicit VbError(int number);
  int number() const { return number_; }

 private:
  int number_;
};

// The standard Spanish description of a VB error number ("" when unknown).
KMF_API std::string VbErrorDescription(int number);

// Subtype codes, numbered as VB's VarType() reports them.
enum class VarType : uint8_t {
  Empty = 0,
  Null = 1,
  Integer = 2,
  Long = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  Date = 7,
  String = 8,
  Object = 9,
  Boolean = 11,
  Byte = 17,
};

class KMF_API Variant {
 public:
  struct NullTag {
    friend bool operator==(NullTag, NullTag) = default;
  };

  Variant() = default;  // Empty
  Variant(bool b) : v_(b) {}
  Variant(uint8_t b) : v_(b) {}
  Variant(int16_t i) : v_(i) {}
  Variant(int32_t l) : v_(l) {}
  Variant(float f) : v_(f) {}
  Variant(double d) : v_(d) {}
  Variant(Currency c) : v_(c) {}
  Variant(Date d) : v_(d) {}
  Variant(std::string s) : v_(std::move(s)) {}
  Variant(const char* s) : v_(std::string(s)) {}
  Variant(std::string_view s) : v_(std::string(s)) {}
  Variant(std::shared_ptr<Object> o) : v_(std::move(o)) {}

  static Variant Null() {
    Variant v;
    v.v_ = NullTag{};
    return v;
  }

  VarType type() const;
  bool IsEmpty() const { return std::holds_alternative<std::monostate>(v_); }
  bool IsNull() const { return std::holds_alternative<NullTag>(v_); }
  bool IsString() const { return std::holds_alternative<std::string>(v_); }
  bool IsObject() const { return std::holds_alternative<std::shared_ptr<Object>>(v_); }
  // Boolean, Byte, Integer, Long, Single, Double, Currency (Date is not counted as numeric).
  bool IsNumericType() const;

  // Direct access to the stored alternative; throws std::bad_variant_access on a mismatch.
  // Use the conversion functions of platform/vb to coerce.
  bool AsBool() const { return std::get<bool>(v_); }
  uint8_t AsByte() const { return std::get<uint8_t>(v_); }
  int16_t AsInteger() const { return std::get<int16_t>(v_); }
  int32_t AsLong() const { return std::get<int32_t>(v_); }
  float AsSingle() const { return std::get<float>(v_); }
  double AsDouble() const { return std::get<double>(v_); }
  Currency AsCurrency() const { return std::get<Currency>(v_); }
  Date AsDate() const { return std::get<Date>(v_); }
  const std::string& AsString() const { return std::get<std::string>(v_); }
  const std::shared_ptr<Object>& AsObject() const { return std::get<std::shared_ptr<Object>>(v_); }

  // Same subtype and same value (strings compared exactly). Not VB's `=` operator.
  friend bool operator==(const Variant& a, const Variant& b) { return a.v_ == b.v_; }

  using Storage = std::variant<std::monostate, NullTag, bool, uint8_t, int16_t, int32_t, float,
                               double, Currency, Date, std::string, std::shared_ptr<Object>>;
  const Storage& storage() const { return v_; }

 private:
  Storage v_;
};

// Readable form for test failure messages: subtype and value, e.g. `Double(2.5)`.
KMF_API std::string DebugString(const Variant& v);

}  // namespace kivmovfrec
