// frmWMovFrec: the movement wizard, the one form in which a person creates or edits a frequent
// entry (Tipo 1), voucher (Tipo 2) or notice (Tipo 3) on the façade's current movement.
//
// Layout. Title "Asistente de Asientos" / "Asistente de Comprobantes" / "Avisos". Buttons on no
// panel: bfAnterior "&Anterior", bfSiguiente "&Siguiente", bfFinalizar "&Finalizar", bfCancelar
// "Cancelar", bfAyuda "A&yuda".
// An entry or voucher has three panels (form panels 1, 2, 3):
//   1 general data: tNombre "&Nombre:", tLeyenda ("&Leyenda:" / "D&etalle:"), an entry's cfLibro
//     "Li&bro:", cfImagen "As&ociar imagen:" and cfTipo "Ti&po:" (who owns it: "Del usuario" /
//     "Del sistema", shown disabled), a voucher's tEnte "&Contacto:" (the contact's
//     id or name), cfTipoComprobante "&Tipo de Comprobante:", cfMoneda "&Moneda:" and
//     cfTipoCambio "&TC a [p]:" ([p] the currency's symbol); both: cfTipoImporte "Tipo de
//     &Importe:" (Estimado 1, Fijo 2, Automático 3), cfAgendado ("Asi&ento:" / "Compro&bante:";
//     Agendado, Frecuente), cfAutoriza "A&utoriza:", chSinEmpresa (ticked, fixed: an accounting
//     movement belongs to its company), the links hlVincular "&Vincular Movimiento..." and
//     hlVerVinculos "&Ver Vínculos...";
//   2 the lines (PanelCuentas, ui/wizard/panel_cuentas.h);
//   3 the frequency: cfFrecuencia "&Ocurre:" with the link hlOcurre (the frequency in words),
//     dtVence "Primer &vencimiento:" ("&Vencimiento" for "Sólo esta vez"), tHora "&Hora:",
//     tQOcurre "Núme&ro de veces:", dtHasta "Última fec&ha:", dtNotificar "No&tificar:" with
//     tHoraNot, and the labels lPostergado, lbInicio, lbYaOcurrio.
// A notice has one panel: chSinEmpresa "Mo&strar sólo para esta empresa" (clear: the notice is
// shown in every company), tNombre, tMemoAviso "&Comentario:", tEnte "&Para:" (user codes
// separated by ",") with the link hlUsuarios "&Usuario:" that opens the user picker, then the
// frequency fields above with tHora.
//
// Navigation: bfSiguiente / bfAnterior move one panel and focus its first control; bfSiguiente
// is enabled on the lines panel only while "Agendado" is chosen. Help: the topic of the kind,
// the schedule choice and the panel on view ("asiAgeNom" ... "compFreCta", "calendario").
//
// Frequency fields: a change of frequency, first due date or count recomputes the last date and
// the count through the date calculator's CalcularFinal (a last date typed by hand gives the
// count); a last date before the first due date (or the notice date) is refused with 1825 and
// recomputed; a notice more than 255 days ahead is refused with 1849. "Definido ..." and hlOcurre
// open the calculator's frequency editor; a cancelled editor keeps the previous frequency, and
// leaves the list without one shows 1826 with the focus on the list.
//
// Finishing: the panels are checked in order (general, lines, frequency when "Agendado"; the
// notice form), each refusal shown with the exclamation icon on the panel holding the field at
// fault with the focus on it; then the question 1801-1803; Yes saves (frm_wmovfrec_guardar.cpp)
// in one transaction and closes the form with the movement's id. A refused or failed save
// leaves the database as it was and the form open.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/controles.h"
#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/services.h"
#include "ui/wizard/panel_cuentas.h"

namespace kivmovfrec::ui {

// The error display of the façade: the "Error al ..." catalogue entry and the error itself.
using ReportarErrorWizard = std::function<void(int accion, const std::exception& e)>;
// The façade's save of an aggregate (its recurrence completed, the company's default journal,
// the difference-formula check) inside the transaction the wizard opened; returns the id.
using GuardarAgregado = std::function<int32_t(clsMFTipo& mf)>;

struct DependenciasWizard {
  IDateCalculator* calendario = nullptr;  // required
  ReportarErrorWizard reportar;           // required
  GuardarAgregado guardar;                // required
  EditorFormula editar_formula;           // may be empty: no formula editor is offered
};

class frmWMovFrec {
 public:
  // `ctx` gives the connection and the services (a form factory among them); `empresa` is the
  // company of a new movement and of the lookups. Everything outlives the wizard.
  frmWMovFrec(const ContextoMF& ctx, int32_t empresa, DependenciasWizard dep);
  ~frmWMovFrec();
  frmWMovFrec(const frmWMovFrec&) = delete;
  frmWMovFrec& operator=(const frmWMovFrec&) = delete;

  // Shows the wizard modally on `mf` (its header's Tipo says the kind, 1..3; an ID above 0 is
  // a stored movement already loaded) for user `usuario`. Returns the saved movement's id, 0
  // when nothing was saved. On success `mf` holds what was saved. Throws std::logic_error
  // without a form factory or for a kind without a wizard; errors while building or loading are
  // reported (1948, 1949, 1911) and give 0.
  int32_t Mostrar(clsMFTipo& mf, int16_t usuario);

  struct Estado;  // the form's controls and what it remembers (frm_wmovfrec_partes.h)

 private:
  std::unique_ptr<Estado> e_;
};

}  // namespace kivmovfrec::ui
