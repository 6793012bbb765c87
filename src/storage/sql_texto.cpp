#include "storage/sql_texto.h"

#include <fmt/format.h>

#include "platform/vb/format.h"

namespace kivmovfrec::storage {

std::string FormatoFechaBD(Date d, const ParametrosBD& p) {
  return vb::FormatDate(d, p.formato_fecha, vb::Locale::Invariant());
}

std::string FechaSQL(Date d, const ParametrosBD& p) {
  return p.caracter_fecha + FormatoFechaBD(d, p) + p.caracter_fecha;
}

TextoRechazado::TextoRechazado(std::string campo, std::string texto)
    : std::invalid_argument(
          fmt::format("El campo {} no puede contener comillas simples (').", campo)),
      campo_(std::move(campo)),
      texto_(std::move(texto)) {}

bool TieneComilla(std::string_view texto) {
  return texto.find('\'') != std::string_view::npos;
}

void RechazarComilla(std::string_view texto, std::string_view campo) {
  if (TieneComilla(texto)) throw TextoRechazado(std::string(campo), std::string(texto));
}

std::string LiteralTexto(std::string_view texto) {
  std::string out;
  out.reserve(texto.size() + 2);
  out += '\'';
  for (char c : texto) {
    if (c == '\'') out += '\'';
    out += c;
  }
  out += '\'';
  return out;
}

}  // namespace kivmovfrec::storage
