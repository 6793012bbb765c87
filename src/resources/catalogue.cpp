#include "resources/catalogue.h"

#include <algorithm>
#include <climits>

namespace kivmovfrec::resources {

namespace {

std::string_view Buscar(long long entrada) {
  if (entrada < INT_MIN || entrada > INT_MAX) return {};
  const auto tabla = Entradas();
  const auto it = std::lower_bound(
      tabla.begin(), tabla.end(), entrada,
      [](const EntradaCatalogo& e, long long numero) { return e.entrada < numero; });
  if (it == tabla.end() || it->entrada != entrada) return {};
  return it->texto;
}

constexpr std::string_view kMarcador = "[p]";

}  // namespace

std::string_view Entrada(int entrada) {
  return Buscar(entrada);
}

std::string_view Texto(int n, int idioma) {
  if (n < 0 || n > 999) return {};
  const std::string_view texto = Buscar(NumeroEntrada(n, idioma));
  if (!texto.empty() || idioma <= 1) return texto;
  return Buscar(NumeroEntrada(n, 1));
}

std::string Texto(int n, int idioma, std::string_view p) {
  std::string resultado(Texto(n, idioma));
  for (size_t pos = resultado.find(kMarcador); pos != std::string::npos;
       pos = resultado.find(kMarcador, pos + p.size())) {
    resultado.replace(pos, kMarcador.size(), p);
  }
  return resultado;
}

std::string Lineas(std::initializer_list<int> numeros, int idioma) {
  std::string resultado;
  bool primera = true;
  for (const int n : numeros) {
    if (!primera) resultado += '\n';
    resultado += Texto(n, idioma);
    primera = false;
  }
  return resultado;
}

MessageRequest Mensaje(std::initializer_list<int> lineas, int titulo, MsgIcon icono,
                       MsgButtons botones, int idioma, int boton_por_defecto) {
  return {Lineas(lineas, idioma), std::string(Texto(titulo, idioma)),  icono, botones,
          boton_por_defecto,      lineas.size() ? *lineas.begin() : -1};
}

}  // namespace kivmovfrec::resources
