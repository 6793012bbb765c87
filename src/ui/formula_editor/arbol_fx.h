// What the formula editor offers: the levels of its list and the texts its entries insert.
//
// Line formulas: the top level holds the catalogue's entries without a parent (functions and
// groups, in catalogue order); a group opens the entries whose parent is its id. Legend texts:
// the top level holds one group, "Fórmulas de leyendas", which opens every macro of the legend
// table (all fifteen rows, also the ones the interpreter leaves as typed) with its description
// and example.
//
// Nothing here touches the database or throws.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kivmovfrec::ui::fx {

struct NodoFx {
  enum class Tipo { Grupo, Funcion, Macro };
  Tipo tipo = Tipo::Funcion;
  int id = 0;               // catalogue id (groups and functions); the macro's row (1..15)
  std::string titulo;       // caption, or the macro itself ("&[FDia]")
  std::string descripcion;  // help text, or the macro's description
  std::string ejemplo;      // macros: the example with its note; "" otherwise
  bool EsGrupo() const { return tipo == Tipo::Grupo; }
};

// The id of the one group of the legend list.
inline constexpr int kGrupoLeyendas = -1;

// The entries of level `padre` (0 = the top) in the line-formula list or the legend list. A
// level that does not exist gives none. `idioma` chooses the caption of the legend group.
std::vector<NodoFx> Nivel(bool leyendas, int padre, int idioma);

// A caption as a grid cell shows it: every "&" written "&&", so it is not an access key.
std::string DoblarAmpersand(std::string_view caption);
// The text back from a grid cell: "&&" read as "&".
std::string RestaurarAmpersand(std::string_view celda);

// The stored reference of catalogue entry `id` with `argumentos`: "[id:a;b;c]".
std::string Referencia(int id, const std::vector<std::string>& argumentos);

}  // namespace kivmovfrec::ui::fx
