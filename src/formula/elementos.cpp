#include "formula/elementos.h"

#include <algorithm>
#include <charconv>

#include "formula/catalogo_fx.h"
#include "platform/vb/text.h"

namespace kivmovfrec::formula {
namespace {

struct Bloque {
  std::string_view abre;
  std::string_view cierra;
};
constexpr Bloque kBloques[] = {{"[query]", "[/query]"}, {"[codescript]", "[/codescript]"}};

// Byte offset of `buscar` in `s` at or after `desde`, ignoring ASCII case; npos when absent.
size_t BuscarSinCaso(std::string_view s, std::string_view buscar, size_t desde) {
  if (buscar.empty() || s.size() < buscar.size()) return std::string_view::npos;
  for (size_t i = desde; i + buscar.size() <= s.size(); ++i) {
    if (vb::StartsWithIgnoreCase(s.substr(i), buscar)) return i;
  }
  return std::string_view::npos;
}

bool EsDigito(char c) {
  return c >= '0' && c <= '9';
}

std::optional<int32_t> Entero(std::string_view s) {
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  if (s.empty()) return 0;
  int32_t v = 0;
  const char* b = s.data();
  const char* e = s.data() + s.size();
  if (*b == '+') ++b;
  auto [p, ec] = std::from_chars(b, e, v);
  if (ec != std::errc() || p != e) return std::nullopt;
  return v;
}

}  // namespace

std::vector<ElementoFx> DividirFormula(std::string_view f) {
  std::vector<ElementoFx> out;
  size_t texto_desde = 0;
  auto cerrar_texto = [&](size_t hasta) {
    if (hasta > texto_desde) {
      ElementoFx t;
      t.inicio = texto_desde;
      t.texto = std::string(f.substr(texto_desde, hasta - texto_desde));
      out.push_back(std::move(t));
    }
  };
  size_t i = 0;
  while (i < f.size()) {
    if (f[i] != '[') {
      ++i;
      continue;
    }
    const Bloque* bloque = nullptr;
    for (const Bloque& b : kBloques) {
      if (vb::StartsWithIgnoreCase(f.substr(i), b.abre)) bloque = &b;
    }
    if (bloque != nullptr) {
      size_t fin = BuscarSinCaso(f, bloque->cierra, i + bloque->abre.size());
      fin = fin == std::string_view::npos ? f.size() : fin + bloque->cierra.size();
      cerrar_texto(i);
      ElementoFx b;
      b.tipo = ElementoFx::Tipo::Bloque;
      b.inicio = i;
      b.texto = std::string(f.substr(i, fin - i));
      out.push_back(std::move(b));
      i = texto_desde = fin;
      continue;
    }
    size_t cierre = f.find(']', i + 1);
    size_t dos_puntos = f.find(':', i + 1);
    if (cierre == std::string_view::npos || dos_puntos == std::string_view::npos ||
        dos_puntos > cierre) {
      ++i;
      continue;
    }
    std::string_view id = f.substr(i + 1, dos_puntos - i - 1);
    if (id.empty() || id.size() > 3 || !std::all_of(id.begin(), id.end(), EsDigito)) {
      ++i;
      continue;
    }
    cerrar_texto(i);
    ElementoFx r;
    r.tipo = ElementoFx::Tipo::Referencia;
    r.inicio = i;
    r.texto = std::string(f.substr(i, cierre + 1 - i));
    r.id = std::stoi(std::string(id));
    r.argumentos = std::string(f.substr(dos_puntos + 1, cierre - dos_puntos - 1));
    out.push_back(std::move(r));
    i = texto_desde = cierre + 1;
  }
  cerrar_texto(f.size());
  return out;
}

std::vector<std::string> SepararArgumentos(std::string_view argumentos) {
  if (argumentos.empty()) return {};
  return vb::Split(argumentos, ";");
}

std::string ClaveLinea::Texto() const {
  return std::to_string(cuenta) + ";" + std::to_string(proyecto) + ";" +
         std::to_string(departamento);
}

std::optional<ClaveLinea> LeerClaveLinea(const std::vector<std::string>& partes, size_t desde) {
  if (desde >= partes.size() || partes.size() - desde > 3) return std::nullopt;
  ClaveLinea c;
  auto cuenta = Entero(partes[desde]);
  if (!cuenta || vb::Trim(partes[desde]).empty()) return std::nullopt;
  c.cuenta = *cuenta;
  if (desde + 1 < partes.size()) {
    auto p = Entero(partes[desde + 1]);
    if (!p) return std::nullopt;
    c.proyecto = *p;
  }
  if (desde + 2 < partes.size()) {
    auto d = Entero(partes[desde + 2]);
    if (!d) return std::nullopt;
    c.departamento = *d;
  }
  return c;
}

std::optional<ClaveLinea> LeerClaveLinea(std::string_view texto) {
  return LeerClaveLinea(SepararArgumentos(texto));
}

std::vector<ClaveLinea> LineasReferidas(std::string_view formula) {
  std::vector<ClaveLinea> out;
  for (const ElementoFx& e : DividirFormula(formula)) {
    if (e.tipo != ElementoFx::Tipo::Referencia || e.id != kFxCuentaIngresada) continue;
    auto clave = LeerClaveLinea(e.argumentos);
    if (clave && std::find(out.begin(), out.end(), *clave) == out.end()) out.push_back(*clave);
  }
  return out;
}

bool ReferenciaLinea(std::string_view formula, const ClaveLinea& linea) {
  auto refs = LineasReferidas(formula);
  return std::find(refs.begin(), refs.end(), linea) != refs.end();
}

bool ContieneReferencia(std::string_view formula, int id) {
  for (const ElementoFx& e : DividirFormula(formula)) {
    if (e.tipo == ElementoFx::Tipo::Referencia && e.id == id) return true;
  }
  return false;
}

}  // namespace kivmovfrec::formula
