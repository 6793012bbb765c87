// The script host: evaluates the arithmetic text a formula leaves once its elements are replaced,
// the body of a [codescript] block, or a formula typed in the editor.
//
//  1. Text that already reads as a number (vb::ParseNumber, Spanish rules: "12.5", "3,5",
//     " -7 ") is returned unchanged; no engine is created.
//  2. Otherwise a fresh Engine evaluates it. With expose_connection (and a connection) the
//     connection is visible as "rdoCBase" with its members global, read-only (rdo.h).
//  3. On any error every "," is replaced by "." and the text is evaluated once more, so amounts
//     written with a decimal comma still compute ("3,5*2" -> "7"). String literals are not
//     spared: the rewritten text is evaluated as it comes out.
//  4. If that fails too (or there was no comma to replace), the result is the FIRST attempt's
//     error: number, Spanish description and 0-based column of the text as written, never the
//     error the rewritten text caused ("Mid(\"abc\",0)" is 5, not a missing ')').
//  5. A second attempt that succeeds after the first failed at run time (not a compile error)
//     may have changed the meaning rather than the notation: "Round(12000/0,2)" fails with
//     division by zero and "Round(12000/0.2)" gives 60000. The value is still the result, but
//     HostResult::first_error keeps the first error so callers can show it and refuse to use
//     the value unattended. After a compile error (the decimal-comma case) it stays empty.
// Nothing is kept between calls and nothing is thrown.
//
// Result text: whole numbers as digits; Double, Single and Currency with "." as the decimal
// point and no grouping, VBScript's 15 (Single 7) significant digits, scientific form where
// VBScript uses it ("1E+15"). The decimal point is invariant on purpose: the formula evaluator
// reads the text back and SQL/formula text is invariant throughout. Booleans give
// "Verdadero"/"Falso", dates the Spanish short date (with the time when not midnight), text
// itself, Empty "". A Null result is error 94; an object result is read through its default
// member.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"
#include "platform/script/engine.h"

namespace kivmovfrec::script {

struct HostOptions {
  // Date, Now and Time inside scripts; empty: system local time.
  std::function<Date()> clock;
};

struct HostResult {
  bool ok = false;
  std::string text;   // when ok
  ScriptError error;  // when !ok
  // When ok only because the text was evaluated again with every "," read as "." after the
  // first attempt failed at run time: that first attempt's error.
  std::optional<ScriptError> first_error;
};

// `connection` may be null (then rdoCBase is not defined); it is only used during the call.
HostResult EvaluateScript(Connection* connection, std::string_view expression,
                          bool expose_connection, const HostOptions& options = {});

// The same with the caller-facing shape: returns the result text ("" on failure) and leaves the
// error description and column in the output arguments (cleared to "" and 0 on success). The
// first error of a retried run (HostResult::first_error) is not reported through this form.
std::string EvaluateScript(Connection* connection, std::string_view expression,
                           bool expose_connection, std::string& error_text, int& error_column,
                           const HostOptions& options = {});

// The text the host returns for a value (see above). Throws VbError (94 for Null, 438 for an
// object without a default value).
std::string ResultText(const Variant& value);

}  // namespace kivmovfrec::script
