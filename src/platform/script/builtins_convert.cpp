// Conversion and inspection functions: CInt CLng CByte CDbl CSng CCur CStr CBool CDate
// IsNumeric IsDate IsNull IsEmpty IsObject TypeName VarType.
#include <string>

#include "platform/script/builtins.h"
#include "platform/script/coerce.h"
#include "platform/vb/convert.h"

namespace kivmovfrec::script {

namespace {

// CInt CLng CByte CDbl CSng CCur CBool: the vb conversion in the script's locale.
template <auto Convert>
Variant ConvertF(std::span<Variant> a, const CallContext& cx) {
  return Variant(Convert(a[0], cx.loc));
}

Variant CStrF(std::span<Variant> a, const CallContext& cx) {
  if (a[0].IsString()) return std::move(a[0]);
  return Variant(vb::CStr(a[0], cx.loc));
}
Variant CDateF(std::span<Variant> a, const CallContext&) {
  return Variant(vb::CDate(a[0]));
}

Variant IsNumericF(std::span<Variant> a, const CallContext& cx) {
  return Variant(vb::IsNumeric(a[0], cx.loc));
}
Variant IsDateF(std::span<Variant> a, const CallContext&) {
  return Variant(vb::IsDate(a[0]));
}
Variant IsNullF(std::span<Variant> a, const CallContext&) {
  return Variant(a[0].IsNull());
}
Variant IsEmptyF(std::span<Variant> a, const CallContext&) {
  return Variant(a[0].IsEmpty());
}
Variant IsObjectF(std::span<Variant> a, const CallContext&) {
  return Variant(a[0].IsObject());
}

Variant TypeNameF(std::span<Variant> a, const CallContext&) {
  const Variant& v = a[0];
  switch (KindOf(v)) {
    case kEmpty:
      return Variant("Empty");
    case kNull:
      return Variant("Null");
    case kBool:
      return Variant("Boolean");
    case kByte:
      return Variant("Byte");
    case kInt:
      return Variant("Integer");
    case kLong:
      return Variant("Long");
    case kSingle:
      return Variant("Single");
    case kDouble:
      return Variant("Double");
    case kCur:
      return Variant("Currency");
    case kDate:
      return Variant("Date");
    case kStr:
      return Variant("String");
    case kObj:
      break;
  }
  return v.AsObject() ? Variant(v.AsObject()->TypeName()) : Variant("Nothing");
}

Variant VarTypeF(std::span<Variant> a, const CallContext&) {
  return Variant(static_cast<int16_t>(a[0].type()));
}

const Builtin kConvert[] = {
    {"CInt", 1, 1, 0, ConvertF<vb::CInt>},
    {"CLng", 1, 1, 0, ConvertF<vb::CLng>},
    {"CByte", 1, 1, 0, ConvertF<vb::CByte>},
    {"CDbl", 1, 1, 0, ConvertF<vb::CDbl>},
    {"CSng", 1, 1, 0, ConvertF<vb::CSng>},
    {"CCur", 1, 1, 0, ConvertF<vb::CCur>},
    {"CStr", 1, 1, 0, CStrF},
    {"CBool", 1, 1, 0, ConvertF<vb::CBool>},
    {"CDate", 1, 1, 0, CDateF},
    {"IsNumeric", 1, 1, 0, IsNumericF},
    {"IsDate", 1, 1, 0, IsDateF},
    {"IsNull", 1, 1, kRawArgs, IsNullF},
    {"IsEmpty", 1, 1, kRawArgs, IsEmptyF},
    {"IsObject", 1, 1, kRawArgs, IsObjectF},
    {"TypeName", 1, 1, kRawArgs, TypeNameF},
    {"VarType", 1, 1, kRawArgs, VarTypeF},
};

}  // namespace

std::span<const Builtin> ConvertBuiltins() {
  return kConvert;
}

}  // namespace kivmovfrec::script
