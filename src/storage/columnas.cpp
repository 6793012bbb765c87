#include "storage/columnas.h"

#include "platform/vb/convert.h"

namespace kivmovfrec::storage {

// Values come from the database, not from a person: numbers are read with the invariant
// locale so that a numeric text such as "2.5" is two and a half whatever the display locale.

uint8_t AByte(const Variant& v) {
  return EsNulo(v) ? 0 : vb::CByte(v, vb::Locale::Invariant());
}
int16_t AInteger(const Variant& v) {
  return EsNulo(v) ? 0 : vb::CInt(v, vb::Locale::Invariant());
}
int32_t ALong(const Variant& v) {
  return EsNulo(v) ? 0 : vb::CLng(v, vb::Locale::Invariant());
}
float ASingle(const Variant& v) {
  return EsNulo(v) ? 0.0f : vb::CSng(v, vb::Locale::Invariant());
}
double ADouble(const Variant& v) {
  return EsNulo(v) ? 0.0 : vb::CDbl(v, vb::Locale::Invariant());
}
bool ABool(const Variant& v) {
  return EsNulo(v) ? false : vb::CBool(v, vb::Locale::Invariant());
}
std::string ATexto(const Variant& v) {
  return EsNulo(v) ? std::string() : vb::CStr(v, vb::Locale::Invariant());
}
Date AFecha(const Variant& v) {
  return EsNulo(v) ? Date{} : vb::CDate(v);
}

}  // namespace kivmovfrec::storage
