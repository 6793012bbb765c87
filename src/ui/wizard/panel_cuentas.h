// The accounts panel of the movement wizard: the lines grid vsCuentas of an entry or a voucher,
// its edit strip, the grid menu and the checks over one line and over all lines.
//
// The wizard (frmWMovFrec) owns the form and the movement aggregate; it builds this panel on
// one of its panels and asks it to check the lines before leaving the panel and when finishing.
// The panel edits the aggregate's lines in place: grid order is line order (Orden 1, 2, ...),
// which is the order the aggregate saves.
//
// Contract (both sides keep it):
// - Construct after the form exists and before it is shown; the panel creates its controls
//   (the frame picCuentas with the panel caption "Cuentas del asiento" / "Cuentas del
//   comprobante", vsCuentas, the strip frame picEditGrid, tEditCta, ocEditD, ocEditH, the
//   rate-type list, the typed rate tValorTC, tMemoRenglon, hlFormula, bfEditOK, bfEditUndo,
//   the menu buttons MnuGridUp / MnuGridDown / MnuGridDel) on panel `panel` of `form`. The
//   rate-type list is cfTipoCambio on an entry and cfTCComp on a voucher, whose general panel
//   has a cfTipoCambio of its own (the voucher's rate).
// - Cargar() fills the grid from the aggregate's lines; call it after the aggregate is loaded
//   (or cleaned for a new movement) and again whenever the movement's currency changes: the
//   panel reads the currency from the aggregate's header (Moneda, 0 = the company's accounting
//   currency), so the wizard writes it there first.
// - Editing: selecting a grid row loads its line into the strip; typing into the strip or
//   choosing a formula starts an edit (Editando()), which bfEditOK applies to the line (a new
//   line when no row was loaded) and bfEditUndo discards. A line's side is the amount field
//   that holds text; a line with a formula and both fields empty keeps its side (a new one goes
//   to the debit). The menu buttons act on the selected row; grid order is line order and the
//   lines are renumbered (Orden 1, 2, ...) after every change.
// - Confirming a row checks, in order: an emptied existing row (question 1831, Yes removes the
//   line), amounts (text that is no number 1812; both sides or, without a formula, neither side
//   1833), a detail longer than RMFDetalle (584), a line in another currency than the
//   movement's without a rate type or a typed rate (1835), no account (1832: the text names no
//   account of the company that is not a folder, by code, name or "code name"), an account
//   already in the movement with the same project and department (1830).
// - Every refusal shows its catalogue message (exclamation icon, title of the movement's kind)
//   through the context's messages, selects the row or the field at fault and gives it the
//   focus; the panel on view must be `panel` when a check runs (the wizard shows it first).
// - Formulas are chosen through `editar_formula`: given the line's position (0-based) and its
//   current stored formula, it returns the new stored formula text, or nothing when cancelled.
//   The wizard passes one that opens the formula editor; tests pass their own.
// - The panel's own handlers trap their errors: an unexpected one (a database error in an
//   account lookup, say) is shown with the grid's error text for the action and leaves the grid
//   and the aggregate as they were. The checks the wizard calls (ValidarRenglones, ...) let
//   database errors (DbError) through; the wizard reports them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/controles.h"
#include "kivmovfrec/mf_tipo.h"

namespace kivmovfrec::ui {

// MFrTipoImporte of an estimated amount ("Estimado"); "Fijo" is 2 and "Automático" 3.
inline constexpr int16_t kTipoImporteEstimado = 1;

using EditorFormula =
    std::function<std::optional<std::string>(int linea, const std::string& formula)>;

class PanelCuentas {
 public:
  // `tipo` is the movement's kind (1 entry, 2 voucher); `empresa` the company whose accounts
  // are offered. `mf`, `ctx` and `form` outlive the panel.
  PanelCuentas(controles::IFormulario& form, int panel, const ContextoMF& ctx, clsMFTipo& mf,
               int16_t tipo, int32_t empresa, EditorFormula editar_formula);
  ~PanelCuentas();
  PanelCuentas(const PanelCuentas&) = delete;
  PanelCuentas& operator=(const PanelCuentas&) = delete;

  void Cargar();

  // True while a row is being edited in the strip (the wizard does not leave the panel then).
  bool Editando() const;

  // The all-lines check: at least one debit and one credit line (1814), then each formula in
  // grid order (1817, 1818, ...), the failing row selected. True when every line passes.
  bool ValidarRenglones();

  // The panel-level totals checks the wizard runs when finishing: debit and credit totals equal
  // (1822) and, for a scheduled movement whose amount type is not "Estimado", no zero amount
  // (1823). `agendado` and `tipo_importe` are the general panel's current choices (the item
  // data of cfTipoImporte: kTipoImporteEstimado, 2 "Fijo", 3 "Automático"). A line with a
  // formula gets its amount when the movement is executed: when any line has one the totals
  // are not compared, and a line with a formula never counts as a zero amount.
  bool ValidarTotales(bool agendado, int16_t tipo_importe);

  // The linking rule: false when the difference formula and the movement-total formula stand on
  // different sides (1824 is the caller's message to show).
  bool FormulasEnLaMismaColumna() const;

 private:
  struct Estado;
  std::unique_ptr<Estado> e_;
};

}  // namespace kivmovfrec::ui
