// Rights checks of the façade: which option's letters apply to a kind of movement, whether a
// letter is granted, and the refusal shown when it is not.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kivmovfrec/services.h"

namespace kivmovfrec::api {

// The option whose rights apply to movements of type `tipo`: 1 and 4 "PasajeAsientos",
// 2 "Comprobantes", 5 and 6 "CheckList"; "" for a notice (3, no right needed) and any other
// value.
std::string_view OpcionDeTipo(int16_t tipo);

// True when `letra` occurs in `letras`, compared without regard to case ("E" grants "e").
bool TieneLetra(std::string_view letras, char letra);

// True when the current user holds `letra` on `opcion` in company `empresa`.
bool TieneDerecho(IUserRights& derechos, int32_t empresa, std::string_view opcion, char letra);

// The refusal: "Su usuario no está habilitado para acceder a ésta opción." and, on a second
// line, "Consulte con el administrador del sistema.", captioned with the title of movements of
// type `tipo`, exclamation icon, OK.
void MostrarSinDerechos(IMessages& mensajes, int16_t tipo, int idioma);

}  // namespace kivmovfrec::api
