// The data behind the user picker: which enabled users can receive a notice, which of them are
// ticked for a given choice, and the texts a choice is handed back as.
//
// A choice travels as the user codes separated by "," (blanks around a code are allowed). When
// it is read, every piece that is not a positive whole number is ignored, and a code that
// belongs to no listed user (disabled, code 0 or below, unknown) simply ticks no row, so it is
// dropped from the choice handed back: the picker never invents or keeps a recipient that could
// not receive the notice.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/db.h"

namespace kivmovfrec::ui {

// The users offered: enabled, code above 0, by identification.
inline constexpr std::string_view kSqlUsuarios =
    "Select UsuCodigo, UsuIdentificacion, UsuNombres, UsuApellidos From admUsuarios Where "
    "UsuCodigo > 0 and UsuHabilitado <> 0 Order by UsuIdentificacion";

// The codes of a choice text, in text order (repeats kept; they tick the same row).
std::vector<int32_t> LeerCodigosUsuario(std::string_view texto);

// One row of the picker's grid.
struct FilaUsuario {
  int32_t codigo = 0;          // kept with the row, not shown
  std::string identificacion;  // trimmed UsuIdentificacion
  std::string nombre;          // trimmed UsuNombres + " " + trimmed UsuApellidos
  bool para = false;           // the tick: this user receives the notice
};

// The grid for the choice `codigos`: one row per offered user, ticked when its code is among
// the given ones. Throws DbError when the query fails.
std::vector<FilaUsuario> CargarUsuarios(Connection& cn, std::string_view codigos);

// What the picker hands back on accept: the ticked rows' codes joined by ", " and their
// identifications joined by "; ", in grid order; both empty when nothing is ticked.
struct EleccionUsuarios {
  std::string codigos;
  std::string identificaciones;
};
EleccionUsuarios Elegidos(const std::vector<FilaUsuario>& filas);

}  // namespace kivmovfrec::ui
