#include "kivmovfrec/variant.h"

#include <fmt/format.h>

#include <cmath>

#include "platform/vb/decimal.h"

namespace kivmovfrec {

namespace {

struct ErrorText {
  int number;
  const char* text;
};

// Spanish descriptions of the VB run-time and compile errors the component can raise.
constexpr ErrorText kErrorTexts[] = {
    {5, "Argumento o llamada a procedimiento no válidos"},
    {6, "Desbordamiento"},
    {9, "Subíndice fuera del intervalo"},
    {11, "División por cero"},
    {13, "No coinciden los tipos"},
    {28, "Espacio de pila insuficiente"},
    {94, "Uso no válido de Null"},
    {424, "Se requiere un objeto"},
    {438, "El objeto no acepta esta propiedad o método"},
    {450, "Número de argumentos incorrecto o asignación de propiedad no válida"},
    {1002, "Error de sintaxis"},
    {1005, "Se esperaba '('"},
    {1006, "Se esperaba ')'"},
    {1023, "Se esperaba una expresión"},
    {1025, "Se esperaba el final de la instrucción"},
    {1031, "Número no válido"},
    {1032, "Carácter no válido"},
    {1033, "Constante de cadena sin terminar"},
};

}  // namespace

std::string VbErrorDescription(int number) {
  for (const auto& e : kErrorTexts) {
    if (e.number == number) return e.text;
  }
  return "";
}

VbError::VbError(int number) : VbError(number, VbErrorDescription(number)) {}

Currency Currency::FromDouble(double value) {
  const double scaled = value * static_cast<double>(kScale);
  // The representable range of a 64-bit count of ten-thousandths.
  if (!std::isfinite(scaled) || scaled >= 9.2233720368547758e18 ||
      scaled < -9.2233720368547758e18) {
    throw VbError(6);
  }
  // Rounds the decimal the double stands for, not its binary expansion: 0.00015 is a half of a
  // unit and goes to the even neighbour, as a person reading the amount expects.
  const auto units = vb::ToScaledInteger(vb::RoundDecimal(value, 4, vb::HalfRule::ToEven));
  if (!units) throw VbError(6);
  return Currency{*units};
}

VarType Variant::type() const {
  static constexpr VarType kByIndex[] = {
      VarType::Empty,    VarType::Null, VarType::Boolean, VarType::Byte,
      VarType::Integer,  VarType::Long, VarType::Single,  VarType::Double,
      VarType::Currency, VarType::Date, VarType::String,  VarType::Object,
  };
  return kByIndex[v_.index()];
}

bool Variant::IsNumericType() const {
  switch (type()) {
    case VarType::Boolean:
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Currency:
      return true;
    default:
      return false;
  }
}

std::string DebugString(const Variant& v) {
  struct Visitor {
    std::string operator()(std::monostate) const { return "Empty"; }
    std::string operator()(Variant::NullTag) const { return "Null"; }
    std::string operator()(bool b) const { return b ? "Boolean(True)" : "Boolean(False)"; }
    std::string operator()(uint8_t b) const { return fmt::format("Byte({})", b); }
    std::string operator()(int16_t i) const { return fmt::format("Integer({})", i); }
    std::string operator()(int32_t l) const { return fmt::format("Long({})", l); }
    std::string operator()(float f) const { return fmt::format("Single({})", f); }
    std::string operator()(double d) const { return fmt::format("Double({})", d); }
    std::string operator()(Currency c) const { return fmt::format("Currency({})", c.ToDouble()); }
    std::string operator()(Date d) const { return fmt::format("Date({})", d.serial); }
    std::string operator()(const std::string& s) const { return fmt::format("String(\"{}\")", s); }
    std::string operator()(const std::shared_ptr<Object>& o) const {
      return o ? fmt::format("Object({})", o->TypeName()) : "Object(Nothing)";
    }
  };
  return std::visit(Visitor{}, v.storage());
}

}  // namespace kivmovfrec
