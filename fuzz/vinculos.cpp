// libFuzzer target for the link text and the order step's rule. Any text must either be refused
// with a message or read into pairs that are valid (distinct ids ≥ 0, 0 being the movement edited
// while it is new; orders 1..255) and that read back unchanged from the text written for them.
// Any set of order cells must get a verdict consistent with reading each cell on its own.
// Nothing may throw.
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ui/links/texto_vinculos.h"

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

void CheckTexto(std::string_view texto) {
  using namespace kivmovfrec::ui;
  const LecturaVinculos r = LeerVinculos(texto);
  if (!r.ok()) {
    Check(r.vinculos.empty());
    return;
  }
  std::set<int32_t> ids;
  for (const Vinculo& v : r.vinculos) {
    Check(v.id >= 0);
    Check(v.orden >= 1 && v.orden <= kOrdenMaximo);
    Check(ids.insert(v.id).second);
  }
  const LecturaVinculos otra = LeerVinculos(EscribirVinculos(r.vinculos));
  Check(otra.ok() && otra.vinculos == r.vinculos);
}

void CheckCeldas(std::string_view texto) {
  using namespace kivmovfrec::ui;
  std::vector<std::string> celdas;
  for (size_t fin; (fin = texto.find('\n')) != std::string_view::npos; texto.remove_prefix(fin + 1))
    celdas.emplace_back(texto.substr(0, fin));
  celdas.emplace_back(texto);
  const auto malo = PrimerOrdenIncorrecto(celdas);
  std::set<int32_t> usados;
  for (size_t i = 0; i < celdas.size(); ++i) {
    const auto orden = LeerOrden(celdas[i]);
    const bool bien = orden && usados.insert(*orden).second;
    if (!bien) {
      Check(malo == i);
      return;
    }
  }
  Check(!malo.has_value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view texto(reinterpret_cast<const char*>(data + 1), size - 1);
  if (data[0] % 2 == 0)
    CheckTexto(texto);
  else
    CheckCeldas(texto);
  return 0;
}
