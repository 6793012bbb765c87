// The built-in functions of the engine. Internal to the script engine.
//
// Each function receives its arguments already evaluated, objects replaced by their default
// value (unless the entry is marked kRawArgs), and the count already checked against
// min_args..max_args (450 otherwise). It returns the result or throws VbError with the VBScript
// error number (5 invalid argument, 6 overflow, 13 type mismatch, 94 invalid use of Null, ...).
// Arguments may be moved from.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "kivmovfrec/variant.h"
#include "platform/vb/locale.h"

namespace kivmovfrec::script {

struct CallContext {
  const vb::Locale& loc;
  const std::function<Date()>& clock;  // may be empty: system local time

  Date Now() const;
};

using BuiltinFn = Variant (*)(std::span<Variant> args, const CallContext& cx);

enum BuiltinFlags : uint8_t {
  kRawArgs = 1,  // objects reach the function unconverted (IsObject, TypeName, VarType, ...)
};

struct Builtin {
  std::string_view name;
  uint8_t min_args;
  uint8_t max_args;
  uint8_t flags;
  BuiltinFn fn;
};

// Every built-in function (order not significant; LookupName indexes into it).
std::span<const Builtin> BuiltinTable();

// Group tables, one per source file.
std::span<const Builtin> MathBuiltins();
std::span<const Builtin> ConvertBuiltins();
std::span<const Builtin> TextBuiltins();
std::span<const Builtin> DateBuiltins();

}  // namespace kivmovfrec::script
