// libFuzzer target for the codes text of the user picker: any text must read into positive
// codes, one per piece at most, each written in its piece; and a choice written as the picker
// hands it back (codes joined by ", ") must read back into the same codes. Nothing may throw.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "ui/user_picker/eleccion_usuarios.h"

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kivmovfrec::ui;
  const std::string_view texto(reinterpret_cast<const char*>(data), size);
  const std::vector<int32_t> codigos = LeerCodigosUsuario(texto);
  size_t piezas = 1;
  for (char c : texto) piezas += c == ',';
  Check(codigos.size() <= piezas);

  std::vector<FilaUsuario> filas;
  for (int32_t codigo : codigos) {
    Check(codigo >= 1);
    Check(texto.find(std::to_string(codigo)) != std::string_view::npos);
    filas.push_back({codigo, "u" + std::to_string(codigo), "", true});
  }
  const EleccionUsuarios eleccion = Elegidos(filas);
  Check(LeerCodigosUsuario(eleccion.codigos) == codigos);
  return 0;
}
