// The VBScript expression engine: evaluates one expression in VBScript syntax and semantics over
// kivmovfrec::Variant.
//
// What it accepts: literals (numbers, "strings", #dates#, &H/&O, True False Empty Null Nothing),
// every VBScript operator with its precedence and coercions, the built-in functions listed in
// builtins.h, and named objects added with AddObject (member calls `.Name(args)`, the default
// member through `(args)`, members of "global" objects reachable by their bare name).
//
// How it works: Eval compiles the text into a compact postfix program (no tree, no per-node
// allocation) and runs it on a value stack. A compile error always wins over a run-time one, and
// nothing is called on an object before the whole text has compiled.
//
// Errors: Eval never throws. A failure gives ScriptError{number, description, column}:
//   - compile errors (1002 1005 1006 1023 1025 1031 1032 1033, 28 for nesting deeper than
//     Options::max_depth) at the 0-based character offset where the offending token starts, or
//     the end of the text when it ends too early;
//   - run-time errors (5 6 11 13 94 424 438 450 ...) at the offset of the first non-blank
//     character. Calling an unknown function gives 13 "No coinciden los tipos: 'Name'".
//   - anything an object raises: VbError keeps its number and text; DbError becomes
//     kDatabaseError with the database's message; any other exception becomes 5.
//
// Lifetime: an Engine holds its options and objects; it keeps no state between Eval calls, so
// the same engine may evaluate many texts. It is cheap to create; create one per call.
// Not thread-safe.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/variant.h"
#include "platform/vb/locale.h"

namespace kivmovfrec::script {

// Number used for failures reported by the database behind a script object.
inline constexpr int kDatabaseError = 40002;

struct ScriptError {
  int number = 0;
  std::string description;  // Spanish
  int column = 0;           // 0-based character offset into the evaluated text
};

struct EvalResult {
  bool ok = false;
  Variant value;      // when ok
  ScriptError error;  // when !ok

  explicit operator bool() const { return ok; }
};

struct Options {
  // Current date and time for Date, Now and Time. Empty: the system's local time.
  std::function<Date()> clock;
  // Locale for implicit number/text conversions (CStr, &, reading numeric text) and for the
  // Boolean words. Must outlive the engine.
  const vb::Locale* locale = &vb::Locale::Spanish();
  // Deepest nesting of parentheses / unary operators / right operands accepted before the text
  // is refused with error 28; keeps the compiler's recursion far away from the stack limit.
  int max_depth = 256;
};

class Engine {
 public:
  Engine() : Engine(Options{}) {}
  explicit Engine(Options options);

  // Makes `obj` visible to expressions as `name` (case-insensitive). With members_global its
  // members are also reachable by bare name (`OpenResultset(...)` for `rdoCBase`). Adding a
  // name twice replaces the earlier object.
  void AddObject(std::string name, std::shared_ptr<Object> obj, bool members_global);

  // Compiles and evaluates `expression`. Empty or blank text gives Empty. Never throws.
  EvalResult Eval(std::string_view expression) const;

  struct NamedObject {
    std::string name;
    std::shared_ptr<Object> object;
    bool members_global = false;
  };

 private:
  Options options_;
  std::vector<NamedObject> objects_;
};

// Whether error `number` is one Eval reports while compiling, before anything runs (the syntax
// errors 1001-1099, and 28 for nesting too deep); every other number is a run-time error.
bool IsCompileError(int number);

// The Spanish description the engine reports for an error number: the standard VB text, plus the
// numbers only the engine raises (7, 91, 3021, 3265, kDatabaseError).
std::string ErrorDescription(int number);

}  // namespace kivmovfrec::script
