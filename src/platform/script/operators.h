// VBScript operators over Variants. Internal to the script engine.
//
// Operands never hold objects here: the engine replaces an object by its default value first.
// Each function stores its result in `a` (the left operand) and throws VbError on failure.
#pragma once

#include "kivmovfrec/variant.h"
#include "platform/script/program.h"
#include "platform/vb/locale.h"

namespace kivmovfrec::script {

// Any binary OpCode except Is (which needs the objects themselves).
void ApplyBinary(OpCode op, Variant& a, const Variant& b, const vb::Locale& loc);
void ApplyNegate(Variant& a, const vb::Locale& loc);
void ApplyNot(Variant& a, const vb::Locale& loc);

}  // namespace kivmovfrec::script
