#include "ui/links/texto_vinculos.h"

#include <limits>
#include <set>

#include "resources/catalogue.h"
#include "resources/msg.h"
#include "ui/texto_numeros.h"

namespace kivmovfrec::ui {

namespace {

constexpr char kSeparadorPares = '|';
constexpr char kSeparadorOrden = ':';

std::string Error(int mensaje, size_t par) {
  return resources::Texto(mensaje, 1, std::to_string(par));
}

}  // namespace

LecturaVinculos LeerVinculos(std::string_view texto) {
  LecturaVinculos out;
  if (RecortarBlancos(texto).empty()) return out;
  std::set<int32_t> vistos;
  size_t par = 0;
  for (std::string_view resto = texto;;) {
    ++par;
    const size_t fin = resto.find(kSeparadorPares);
    const std::string_view pieza = resto.substr(0, fin);
    const size_t dos_puntos = pieza.find(kSeparadorOrden);
    if (dos_puntos == std::string_view::npos) {
      out.error = Error(msg::kVinculosParInvalido, par);
      break;
    }
    // Id 0 stands for the movement being edited while it has no id yet.
    const std::string_view id_texto = pieza.substr(0, dos_puntos);
    const auto id = RecortarBlancos(id_texto) == "0"
                        ? std::optional<int32_t>(0)
                        : LeerEnteroPositivo(id_texto, std::numeric_limits<int32_t>::max());
    const std::string_view orden_texto = pieza.substr(dos_puntos + 1);
    const auto orden = LeerEnteroPositivo(orden_texto, std::numeric_limits<int32_t>::max());
    if (!id || !orden) {
      out.error = Error(msg::kVinculosParInvalido, par);
      break;
    }
    if (*orden > kOrdenMaximo) {
      out.error = Error(msg::kVinculosOrdenFuera, par);
      break;
    }
    if (!vistos.insert(*id).second) {
      out.error = Error(msg::kVinculosRepetido, par);
      break;
    }
    out.vinculos.push_back({*id, *orden});
    if (fin == std::string_view::npos) break;
    resto.remove_prefix(fin + 1);
  }
  if (!out.ok()) out.vinculos.clear();
  return out;
}

std::string EscribirVinculos(const std::vector<Vinculo>& vinculos) {
  std::string out;
  for (const Vinculo& v : vinculos) {
    if (!out.empty()) out += kSeparadorPares;
    out += std::to_string(v.id);
    out += kSeparadorOrden;
    out += std::to_string(v.orden);
  }
  return out;
}

std::optional<int32_t> LeerOrden(std::string_view celda) {
  return LeerEnteroPositivo(celda, kOrdenMaximo);
}

std::optional<size_t> PrimerOrdenIncorrecto(const std::vector<std::string>& celdas) {
  std::set<int32_t> usados;
  for (size_t i = 0; i < celdas.size(); ++i) {
    const auto orden = LeerOrden(celdas[i]);
    if (!orden || !usados.insert(*orden).second) return i;
  }
  return std::nullopt;
}

}  // namespace kivmovfrec::ui
