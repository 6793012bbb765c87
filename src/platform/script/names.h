// The words the engine knows before any object is added: keywords, VBScript's intrinsic
// constants (vbCrLf, vbSunday, vbTextCompare, ...) and the built-in functions. Lookup ignores
// case. Internal to the script engine.
#pragma once

#include <cstdint>
#include <string_view>

#include "kivmovfrec/variant.h"
#include "platform/script/lexer.h"

namespace kivmovfrec::script {

// The keyword token for `word` (True, Not, Mod, ...), or Tok::Name for anything else.
Tok KeywordToken(std::string_view word);

enum class NameKind : uint8_t { Unknown, Builtin, Constant };

struct NameInfo {
  NameKind kind = NameKind::Unknown;
  uint16_t index = 0;  // into BuiltinTable() or the constants
};

// Built-in function or intrinsic constant called `name`.
NameInfo LookupName(std::string_view name);

// Value of the intrinsic constant `index` (from LookupName).
const Variant& ConstantValue(uint16_t index);

}  // namespace kivmovfrec::script
