// frmDefFormula: the modal dialog "Agregar fórmula" in which the formula of a line (or a legend
// text) is composed by choosing functions instead of typing the bracket syntax.
//
// The grid vsGrid lists one level of the catalogue (ui/formula_editor/arbol_fx.h): groups and
// functions with their help texts, or, for a legend, the legend macros with their descriptions
// and examples. bfAgregar "A&gregar" acts on the selected row as a double click would: a group
// opens its level; a function asks for its arguments and its text is appended to tFormula; a
// macro is appended as it is. imgBack "Atrás" goes one level up and imgHome "Inicio" to the
// top (image buttons with a highlighted picture under the pointer; disabled at the top). The
// label lAyuda shows the selected row's help text and, for a function that stands for a
// defined formula, that formula with the company and movement filled in.
//
// Arguments: a lookup (rate type, currency, index, account, another movement) is chosen in the
// pick list frmElegirDato (grid vsLista, bfFinish / bfCancel) among every row its query gives;
// "Cuenta Ingresada" offers the lines of the movement being edited (as held in memory, the
// edited line left out) and the functions of another movement's lines offer that movement's
// stored lines; "Pedir valor" asks the caption of the value through the input service's text
// prompt ("Pedir dato" / "Ingrese una característica para pedir el dato."; an answer holding
// "[", "]" or ";" is refused with 818). Cancelling any of them appends nothing. "Diferencia",
// "Importe total" and "Ocurrencia" take no argument. Captions shown in grids have "&" doubled
// and come back with one.
//
// tFormula holds the display form (formula/formula_mf.h). bfFinish "&Aceptar" reads it back:
// a text that cannot be read is refused (689, the cursor put where reading stopped), one that
// refers to the edited line's own account is refused (817); otherwise the stored form is
// returned. In legend mode the text is returned as it is. bfCancel "&Cancelar" and the close box
// return nothing; bfHelp "A&yuda" shows the topic "fxCta" (line formulas) or "fxLey" (legends).
// A database error while the choices are read is reported with 583 and the dialog stays open.
#pragma once

#include <optional>
#include <string>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/mf_tipo.h"

namespace kivmovfrec::ui {

class frmDefFormula {
 public:
  // `ctx` gives the connection, the services (the form factory is required; messages, text
  // input and help are used) and the language. `mf` is the movement being edited: its company,
  // its id ([pIDMov], 0 while new) and its lines as they are now. `linea` is the 0-based
  // position of the line whose formula is edited (-1: none, as for a legend). `ctx` and `mf`
  // outlive the dialog; the lines are read when Mostrar is called.
  frmDefFormula(const ContextoMF& ctx, const clsMFTipo& mf, int linea, bool leyenda);

  // Shows the dialog on `formula` (stored form; the text itself for a legend). Returns the new
  // stored formula (legend text) on Aceptar, nothing when cancelled. Throws std::logic_error
  // without a form factory and DbError when the company cannot be read.
  std::optional<std::string> Mostrar(const std::string& formula);

 private:
  const ContextoMF& ctx_;
  const clsMFTipo& mf_;
  int linea_;
  bool leyenda_;
};

}  // namespace kivmovfrec::ui
