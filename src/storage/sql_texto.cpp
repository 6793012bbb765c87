#include "storage/sql_texto.h"

#include <fmt/format.h>

#include "platform/vb/text.h"

namespace kivmovfrec::storage {

namespace {

std::string MensajeRechazo(const std::string& campo, MotivoRechazo motivo, size_t largo_maximo) {
  switch (motivo) {
    case MotivoRechazo::NoEsTexto:
      return fmt::format("El campo {} contiene caracteres que no son texto válido.", campo);
    case MotivoRechazo::Largo:
      return fmt::format("El campo {} admite hasta {} caracteres.", campo, largo_maximo);
    case MotivoRechazo::Comilla:
      break;
  }
  return fmt::format("El campo {} no puede contener comillas simples (').", campo);
}

}  // namespace

TextoRechazado::TextoRechazado(std::string campo, std::string texto, MotivoRechazo motivo,
                               size_t largo_maximo)
    : std::invalid_argument(MensajeRechazo(campo, motivo, largo_maximo)),
      campo_(std::move(campo)),
      texto_(std::move(texto)),
      motivo_(motivo) {}

bool TieneComilla(std::string_view texto) {
  return texto.find('\'') != std::string_view::npos;
}

void RechazarComilla(std::string_view texto, std::string_view campo) {
  if (TieneComilla(texto)) throw TextoRechazado(std::string(campo), std::string(texto));
}

void RechazarTextoNoAlmacenable(std::string_view texto, std::string_view campo,
                                size_t largo_maximo) {
  if (texto.find('\0') != std::string_view::npos || !vb::IsValidUtf8(texto)) {
    throw TextoRechazado(std::string(campo), std::string(texto), MotivoRechazo::NoEsTexto);
  }
  if (largo_maximo > 0 && vb::Len(texto) > largo_maximo) {
    throw TextoRechazado(std::string(campo), std::string(texto), MotivoRechazo::Largo,
                         largo_maximo);
  }
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
