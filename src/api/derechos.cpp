#include "api/derechos.h"

#include <cctype>

#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec::api {

std::string_view OpcionDeTipo(int16_t tipo) {
  switch (tipo) {
    case 1:
    case 4:
      return "PasajeAsientos";
    case 2:
      return "Comprobantes";
    case 5:
    case 6:
      return "CheckList";
    default:
      return "";
  }
}

bool TieneLetra(std::string_view letras, char letra) {
  const auto buscada = std::tolower(static_cast<unsigned char>(letra));
  for (char c : letras) {
    if (std::tolower(static_cast<unsigned char>(c)) == buscada) return true;
  }
  return false;
}

bool TieneDerecho(IUserRights& derechos, int32_t empresa, std::string_view opcion, char letra) {
  return TieneLetra(derechos.Letras(empresa, opcion), letra);
}

void MostrarSinDerechos(IMessages& mensajes, int16_t tipo, int idioma) {
  mensajes.Show({resources::Lineas({msg::kSinDerechos, msg::kConsulteAdministrador}, idioma),
                 std::string(resources::Texto(msg::TituloDeTipo(tipo), idioma)),
                 MsgIcon::Exclamation, MsgButtons::OK, 1, msg::kSinDerechos});
}

}  // namespace kivmovfrec::api
