#include "ui/texto_numeros.h"

namespace kivmovfrec::ui {

std::string_view RecortarBlancos(std::string_view texto) {
  constexpr std::string_view kBlancos = " \t";
  const size_t inicio = texto.find_first_not_of(kBlancos);
  if (inicio == std::string_view::npos) return {};
  return texto.substr(inicio, texto.find_last_not_of(kBlancos) - inicio + 1);
}

std::optional<int32_t> LeerEnteroPositivo(std::string_view texto, int32_t maximo) {
  texto = RecortarBlancos(texto);
  if (texto.empty()) return std::nullopt;
  int64_t valor = 0;
  for (char c : texto) {
    if (c < '0' || c > '9') return std::nullopt;
    valor = valor * 10 + (c - '0');
    if (valor > maximo) return std::nullopt;
  }
  if (valor < 1) return std::nullopt;
  return static_cast<int32_t>(valor);
}

}  // namespace kivmovfrec::ui
