// Shared helpers for the script engine tests.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "kivmovfrec/variant.h"
#include "platform/script/engine.h"

namespace kivmovfrec::script::testing {

// 2005-08-02 10:30:00, a Tuesday.
inline constexpr double kFixedNow = 38566.0 + 10.5 / 24.0;

inline Options FixedClock() {
  Options o;
  o.clock = [] { return Date{kFixedNow}; };
  return o;
}

inline EvalResult Evaluate(std::string_view text) {
  return Engine(FixedClock()).Eval(text);
}

// An expression and the value (subtype included) it must give.
struct ValueCase {
  const char* text;
  Variant expected;
};

// An expression and the error it must give; column -1 means "not checked".
struct ErrorCase {
  const char* text;
  int number;
  int column = -1;
};

// The default engine has no objects and the fixed clock.
inline void ExpectValues(std::initializer_list<ValueCase> cases,
                         const Engine& engine = Engine(FixedClock())) {
  for (const auto& c : cases) {
    const EvalResult r = engine.Eval(c.text);
    ASSERT_TRUE(r.ok) << c.text << " failed: " << r.error.number << " " << r.error.description
                      << " at " << r.error.column;
    EXPECT_EQ(r.value, c.expected)
        << c.text << " gave " << DebugString(r.value) << ", expected " << DebugString(c.expected);
  }
}

inline void ExpectErrors(std::initializer_list<ErrorCase> cases,
                         const Engine& engine = Engine(FixedClock())) {
  for (const auto& c : cases) {
    const EvalResult r = engine.Eval(c.text);
    ASSERT_FALSE(r.ok) << c.text << " gave " << DebugString(r.value);
    EXPECT_EQ(r.error.number, c.number) << c.text << ": " << r.error.description;
    EXPECT_FALSE(r.error.description.empty()) << c.text;
    if (c.column >= 0) {
      EXPECT_EQ(r.error.column, c.column) << c.text;
    }
  }
}

inline Variant I(int v) {
  return Variant(static_cast<int16_t>(v));
}
inline Variant L(int32_t v) {
  return Variant(v);
}
inline Variant D(double v) {
  return Variant(v);
}
inline Variant S(const char* v) {
  return Variant(v);
}
inline Variant B(bool v) {
  return Variant(v);
}
inline Variant DateOf(double serial) {
  return Variant(Date{serial});
}

}  // namespace kivmovfrec::script::testing
