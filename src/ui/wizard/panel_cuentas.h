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
//   (vsCuentas, tEditCta, ocEditD, ocEditH, cfTipoCambio, tMemoRenglon, hlFormula, bfEditOK,
//   bfEditUndo, the menu buttons MnuGridUp / MnuGridDown / MnuGridDel) on panel `panel` of
//   `form`, and the panel caption ("Cuentas del asiento" / "Cuentas del comprobante").
// - Cargar() fills the grid from the aggregate's lines; call it after the aggregate is loaded
//   (or cleaned for a new movement) and again whenever the movement's currency changes.
// - Every refusal shows its catalogue message (exclamation icon, title of the movement's kind)
//   through the context's messages, selects the row or the field at fault and gives it the
//   focus; the panel on view must be `panel` when a check runs (the wizard shows it first).
// - Formulas are chosen through `editar_formula`: given the line's position (0-based) and its
//   current stored formula, it returns the new stored formula text, or nothing when cancelled.
//   The wizard passes one that opens the formula editor; tests pass their own.
// - Database errors (account lookups) propagate as DbError; the wizard reports them.
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
  // (1823). `agendado` and `tipo_importe` are the general panel's current choices.
  bool ValidarTotales(bool agendado, int16_t tipo_importe);

  // The linking rule: false when the difference formula and the movement-total formula stand on
  // different sides (1824 is the caller's message to show).
  bool FormulasEnLaMismaColumna() const;

 private:
  struct Estado;
  std::unique_ptr<Estado> e_;
};

}  // namespace kivmovfrec::ui
