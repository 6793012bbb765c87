// clsMovFrecuente: the class through which the host application uses the component.
//
// It holds the connection, the company number, the current movement (EstructuraMovFrec) and a
// company context created on first need. Typical use:
//
//   kivmovfrec::clsMovFrecuente mf;
//   mf.Servicios(kivmovfrec::SuiteServices::Defaults(cn));   // or scripted services
//   mf.Connect(cn);
//   mf.Empresa(1);
//   if (mf.LoadMF(12)) { ... mf.EstructuraMovFrec()->MovFrecuente()->Nombre() ... }
//
// Contract shared by every member:
// - Before Connect (or after Connect(nullptr)) every method does nothing and returns its zero
//   value (0, false, nothing). The properties (EstructuraMovFrec, FechaHoyCalculoFx, Empresa)
//   only keep values and work at any time.
// - Questions and refusals go through the message service (caption "Movimientos Frecuentes"
//   unless said otherwise); a question's answer is compared with No (kMsgNo).
// - Members that run their own transaction (SaveMovimientoFrecuenteConBloqueo,
//   DeleteRegistroMFConfirmar, DarRealizadaFechaAgenda) roll back on any error and return
//   0 / false; the tables are then exactly as before the call.
// - SaveMovimientoFrecuente, LoadMF and DeleteMF run without a transaction and let every error
//   (DbError, VbError, ComponentError, std::invalid_argument for a refused movement) reach the
//   caller.
// - The other members trap their errors, show the catalogue's "Error al ..." text of the action
//   that failed with the error's own text on a second line (critical icon) and return their
//   zero value. UltimoError() then says why (and likewise after a failed locked save).
// - Services: what Servicios gave; any service left null is taken at Connect from
//   SuiteServices::Defaults(cn) and a null date calculator is replaced by the suite's own
//   (schedule::DateCalculator).
// - Context: the façade owns its context (kivmovfrec/contexto.h) — connection, services with
//   their clock, and the settings of its database — and hands it down to everything it calls.
//   Nothing is shared between façades, so several façades on several databases may live in one
//   process, each used from its own thread. Every record the façade creates is stamped with the
//   context's clock.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/agenda.h"
#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/ejecucion.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/enums.h"
#include "kivmovfrec/export.h"
#include "kivmovfrec/grupo_vinculado.h"
#include "kivmovfrec/lista_tareas.h"
#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/renglones_mf.h"
#include "kivmovfrec/services.h"
#include "kivmovfrec/simulacion.h"
#include "kivmovfrec/traza_fx.h"

namespace kivmovfrec {

class KMF_API clsMovFrecuente {
 public:
  clsMovFrecuente();
  ~clsMovFrecuente();
  clsMovFrecuente(const clsMovFrecuente&) = delete;
  clsMovFrecuente& operator=(const clsMovFrecuente&) = delete;

  // ---- Host wiring (not members of the suite's type library) ------------------------------

  // Services the component asks of the suite. Call before Connect; calling it after Connect
  // replaces them (null ones are filled again from the defaults over the current connection).
  void Servicios(SuiteServices s);
  // The services in use: after Connect, the given ones completed with the defaults.
  const SuiteServices& Servicios() const { return ctx_.servicios; }
  // The façade's context: connection, services and database settings, as filled at Connect.
  const ContextoMF& Contexto() const { return ctx_; }
  // True between a Connect with a connection and the next Connect(nullptr).
  bool Conectado() const { return ctx_.cn != nullptr; }

  // ---- Properties ------------------------------------------------------------------------

  // The current movement. Set replaces it (null throws std::invalid_argument); get hands out
  // the object itself, so edits through it are edits of the façade's movement.
  std::shared_ptr<clsMFTipo> EstructuraMovFrec() const { return estructura_; }
  void EstructuraMovFrec(std::shared_ptr<clsMFTipo> v);
  // When true a movement without due date is computed as of today; when false as of
  // 01/01/1958. Default false.
  bool FechaHoyCalculoFx() const { return fecha_hoy_calculo_fx_; }
  void FechaHoyCalculoFx(bool v) { fecha_hoy_calculo_fx_ = v; }
  // Company number; nothing else happens (the company context is loaded on first need).
  void Empresa(int32_t v);
  // Keeps the connection; fills the services Servicios left null with the defaults over this
  // connection (a second Connect rebinds them to the new one; the ones the host gave are
  // kept); reads the language ("Idioma" through DBFncs) and the database parameters (date
  // literal, multi-user flag) into the context. A database error while reading the parameters
  // propagates, and the façade then stays unconnected. nullptr disconnects.
  void Connect(std::shared_ptr<Connection> cn);

  // ---- Methods ---------------------------------------------------------------------------

  // Replaces the current movement by a new empty one.
  void CleanEstructura();

  // Opens the movement wizard (frmWMovFrec) modally on the current movement for user lUser: its
  // header's Tipo (1 entry, 2 voucher, 3 notice) says the kind, and an ID above 0 is a stored
  // movement (loaded with LoadMF). A new movement needs the letter "A" on the option of its kind,
  // an existing one "M" (a notice needs none); without it message 870 with "Consulte con el
  // administrador del sistema." (caption "Movimientos Frecuentes", exclamation) and 0. Without
  // a form factory an exclamation message says the wizard cannot be shown. Returns the saved
  // movement's ID, 0 when nothing was saved; the current movement then holds what was saved.
  // Errors are trapped and reported (UltimoError); a failed save inside the wizard is reported
  // there and the wizard stays open with nothing written.
  int32_t ShowWizard(int32_t lUser);

  // Saves the current movement (schedule, link order, default journal, header, lines) with the
  // company's default journal, without a transaction. Returns the movement ID; errors reach
  // the caller. Refused before anything is written (std::invalid_argument, what() the
  // catalogue's text): more than one line holding the difference formula
  // (msg::kFxRestoEnVariasCuentas); a name, comment or line text that cannot be stored
  // (storage::TextoRechazado).
  int32_t SaveMovimientoFrecuente();

  // The same save, with the same refusals, inside one transaction. A new once-only schedule
  // (ID 0, CadaCuanto 0, CantidadVeces 1) whose occurrence number is above 1 is reset to
  // occurrence 1 first (only this save does so). Any error rolls back and returns 0, and the
  // current movement's records get back the values they had before the call (keys, positions,
  // line numbers); no message is shown whatever bDisplayMsgError says: the caller reports, and
  // finds why in UltimoError().
  int32_t SaveMovimientoFrecuenteConBloqueo(bool bDisplayMsgError = true);

  // The locked save of several movements, all or nothing, in one transaction (a level of the
  // caller's when one is open): each movement of `lote` is saved in order as
  // SaveMovimientoFrecuenteConBloqueo saves the current one, with the same refusals. The new
  // keys are drawn from the counters beforehand, one block per table, so a long run costs one
  // counter update per table instead of one per movement. Returns the IDs in the order of `lote`.
  // Any error rolls back every save of the run (and the keys drawn), returns nothing, puts back
  // the records of every movement of `lote` as they were before the call, tells in `*fallido`
  // (when given) the position in `lote` of the movement that failed (lote.size() when every
  // save went through and the commit failed) and why in UltimoError().
  // The current movement (EstructuraMovFrec) is not used. A null entry throws
  // std::invalid_argument before anything is written.
  std::vector<int32_t> SaveMovimientosFrecuentesConBloqueo(
      const std::vector<std::shared_ptr<clsMFTipo>>& lote, size_t* fallido = nullptr);

  // Why the last failing call of a member that traps its errors (the locked save and the
  // members that show "Error al ...") failed: the refusal's text, "error 8000 (DBFncs): ..." for
  // the key counter, or for a database error its kind in plain words followed by the engine's
  // message ("la base de datos es de solo lectura (...)", "la base de datos está bloqueada por
  // otro proceso (...)"; the engine's message alone for other failures); a long text is cut
  // (vb::ShortForMessage). Each of those members clears it when it starts, so it is "" after a
  // call that did not fail on an error (a refusal shown as a message, such as missing rights,
  // is not an error).
  const std::string& UltimoError() const { return ultimo_error_; }

  // Loads movement lIDMF into the current movement. Returns false, leaving the current
  // movement as it was, when there is no such movement; errors reach the caller.
  bool LoadMF(int32_t lIDMF);

  // Deletes movement lIDMF with its lines and schedule: no question, no rights check, no
  // transaction; errors reach the caller. The current movement in memory is not touched.
  void DeleteMF(int32_t lIDMF);

  // Changes the state of movement lIDMF (header only) to iEstado and FechaEstado to now.
  // - bDisplayMsgQuestion true: asks 807 (to the bin) or 808 (other states) first; No → false.
  //   (The suite passes it by reference; the member only reads it.)
  // - A notice (Tipo 3) needs no rights and may change even when linked.
  // - Other kinds need the letter "E" (to the bin) or "M" (other states) on the option of
  //   their kind, compared without regard to case; without it message 870 + "Consulte con el
  //   administrador del sistema." (caption: the title of the kind, exclamation) → false.
  // - A linked one (MovVinculado ≥ 1) is refused with 871 (same caption and icon) → false.
  // Returns true when the state was written; false for a movement that does not exist.
  bool CambiarEstadoMF(int32_t lIDMF, enuEstadoMF iEstado, bool bDisplayMsgQuestion = true);

  // Deletes movement lIDMF for good (from the bin): needs the letter "e" on "Papelera"
  // (without regard to case; otherwise 870 with the title of the kind as caption), asks 806
  // with No as default button, then deletes in one transaction. True when deleted; false when
  // refused, answered No, not found, or on any error (rolled back).
  bool DeleteRegistroMFConfirmar(int32_t lIDMF);

  // Marks the current occurrence of scheduled movement lIDMF as done, in ONE transaction:
  // - The schedule's next due date is ProximaFechaAnclada(code, RecFechaInicio, FechaProxima)
  //   of the date calculator, so a monthly or yearly schedule keeps its start's day of the
  //   month; the occurrence number grows by one. A time of day in FechaProxima is kept
  //   ("dd/mm/yyyy hh:nn").
  // - No occurrence remains when: the code is once-only (000000); or SinVencimiento is 0 and
  //   either the next date falls after the last date (RecFechaFinal, compared by day) or the
  //   new occurrence number exceeds the count (CantidadVeces, or when 0 the count that the
  //   calculator derives from the start and last dates). SinVencimiento 1 never ends. The
  //   whole rule is schedule::NextOccurrence (schedule/next_occurrence.h).
  //   Then the schedule is left on its last occurrence and the header becomes Realizado with
  //   FechaEstado now; otherwise the advanced schedule is saved (its Postergado cleared: a
  //   postponement belongs to the occurrence it delayed).
  // - A notice (Tipo 3) also marks the other pending notices of its modality as seen
  //   (MFrVista = 2).
  // - Chain: when lIDMF heads a group of linked movements (other movements carry its ID in
  //   MFrMovVinculado), the others are then processed in execution order (MFrMVOrden, then
  //   MFrID) by the same rules.
  //   A member with its own schedule advances (or ends) as above; a member without schedule
  //   has no occurrence of its own and is left unchanged; a member not pending (Estado ≠ 0) is
  //   skipped. Each movement is processed at most once per call.
  // bPorUnicaVez is output only: true when lIDMF has just used up its last occurrence (it is
  // now Realizado), false when it moved to a next due date or nothing was done.
  // Returns true when the occurrence was recorded. False, changing nothing, when the movement
  // does not exist, is not pending (Estado ≠ 0 — so an occurrence is never counted twice),
  // has no schedule, or on any error (rolled back and reported).
  bool DarRealizadaFechaAgenda(int32_t lIDMF, bool& bPorUnicaVez);
  bool DarRealizadaFechaAgenda(int32_t lIDMF);

  // ---- Task lists ---------------------------------------------------------------------------
  // Both members work on a task list (MFrTipo 5) and its items (MFrTipo 6, MFrEnte = the list)
  // in ONE transaction: any error rolls back (list and items exactly as before), is shown as the
  // member's "Error al ..." text with the reason below and gives false. Their questions and the
  // rights refusal ("Su usuario no está habilitado..." / "Consulte con el administrador del
  // sistema.", exclamation) carry the caption "Movimientos Frecuentes"; the rights are the
  // letters of option "CheckList" (without regard to case). A No, a refusal, an id that is no
  // task list: false, nothing written.

  // Sends list lCL to the bin: asks "¿Confirma enviar a la papelera?", needs "E"; the list's
  // state becomes Papelera and each of its items not yet in the bin too, all with FechaEstado
  // now.
  bool CheckListAPapelera(int32_t lCL);

  // Marks the current occurrence of list lID done: asks "¿Confirma dar por cumplida la lista de
  // tareas?", needs "M"; only a list en proceso has an occurrence (otherwise false). Its row is
  // claimed first, as DarRealizadaFechaAgenda does. The next due date and whether the schedule
  // ends are DarRealizadaFechaAgenda's (schedule::NextOccurrence, time of day kept); a due date
  // that is not a date has no next one. In both cases the occurrence number grows by one, the
  // postponement is cleared and FechaEstado is now; with a next date the list stays en proceso
  // on it, otherwise it becomes Realizado. Every item not in the bin becomes Realizado with
  // FechaEstado now.
  bool CheckListDarPorRealizado(int32_t lID);

  // Opens the task-list editor (frmCheckList) modally on list IDCheckList, 0 for a new list,
  // for user UID (the creator of a new list and its items, and whose lists the precedes search
  // offers); with bNewItem the editor opens with a new item started. The user needs letter "A"
  // of option "CheckList" for a new list and "M" for an existing one; without it the rights
  // refusal is shown under the title "Lista de tareas" and the editor is not opened. Without a
  // form factory (Servicios().formularios) the editor cannot be shown: an exclamation message
  // says so. Returns the saved list's id, or 0 when the editor was cancelled, refused, not
  // shown, or the list does not exist. Errors are trapped and reported like the other members
  // (UltimoError); a failed save inside the editor is reported there and the editor stays open.
  int32_t ShowCheckList(int32_t IDCheckList, int16_t UID, bool bNewItem = false);

  // Task list lID with its schedule and items, by item name (host wiring, not part of the type
  // library); nothing when there is no such list. Database errors reach the caller.
  std::optional<ListaTareas> CargarListaTareas(int32_t lID);
  // The company's task lists not in the bin, by id, read as CargarListaTareas reads one.
  std::vector<ListaTareas> ListasTareas();

  // ---- Main job and agenda (host wiring, not members of the suite's type library) --------

  // The main job: posts every occurrence of the company's scheduled entries and vouchers due on
  // or before the day of dHasta (kivmovfrec/ejecucion.h says what succeeds and what fails).
  // Each finished occurrence is handed to alTerminar, when given, before the next one begins.
  // Database errors never propagate: they are reported in the occurrence they hit, or stop the
  // run (ResultadoEjecucion::detenida). An exception thrown by alTerminar ends the run and
  // reaches the caller. The current movement (EstructuraMovFrec) is not touched. Before Connect:
  // an empty, complete result.
  ResultadoEjecucion EjecutarVencidos(Date dHasta, const AlTerminarOcurrencia& alTerminar = {});

  // The dry run of the main job up to the day of dHasta: every occurrence EjecutarVencidos
  // would run, run the same way inside a transaction that is rolled back, with the documents
  // each one wrote read back (kivmovfrec/simulacion.h says what can differ from the real run).
  // Nothing is kept. Must be called outside any transaction of the connection (otherwise the
  // result says it stopped and nothing runs). Database errors never propagate. Before Connect:
  // an empty, complete result.
  ResultadoSimulacion SimularVencidos(Date dHasta);

  // The balances of accounts by period from dDesde to dHasta: the posted entries plus every
  // occurrence the main job would post up to dHasta, computed in memory as that run computes
  // them (or by the dry run, SimularVencidos, when a formula needs it), with the notices and
  // task lists due in the range (kivmovfrec/simulacion.h). Nothing is kept. A bad
  // request is refused in ResultadoPronostico::rechazo; database errors never propagate.
  // Before Connect: an empty result.
  ResultadoPronostico PronosticarSaldos(const SolicitudPronostico& solicitud);

  // Every due date and notice date from dDesde to dHasta (both by day) of the company's pending
  // scheduled movements (kivmovfrec/agenda.h). With bImportes, each due date of an entry or
  // voucher is computed as of that date without prompts, as SetCalculoFormulasMF would, but on
  // a movement of its own: the current movement and UltimaTrazaFx are not touched; a formula
  // without result still shows its message. Nothing is written. Database errors reach the
  // caller. Before Connect: an empty result.
  ResultadoAgenda Agenda(Date dDesde, Date dHasta, bool bImportes = false);

  // The linked group of movement lIDMF in execution order (kivmovfrec/grupo_vinculado.h): the
  // group's members whatever their state or kind, lIDMF included; just lIDMF when it belongs
  // to no group; no member when it does not exist. Database errors reach the caller.
  GrupoVinculado GrupoEnOrden(int32_t lIDMF);

  // The language of the component's texts (the suite's "Idioma" setting, 1 when not set).
  int Idioma() const;

  // ---- Formulas ----------------------------------------------------------------------------
  // The three formula members prepare the same context before they hand over to the formula
  // evaluator (formula/calculo_fx.h):
  //  1. When the current movement's schedule has an empty FechaProxima it is set to today's
  //     date as text ("dd/mm/aaaa", from the clock service) when FechaHoyCalculoFx is true,
  //     otherwise to "01/01/1958", the mark of a date not set.
  //  2. The company context is created and loaded on first need, and its accounting currency
  //     copied into the façade's database settings, which the rate service reads.
  //  3. An evaluator is created with the connection and the company context, called with the
  //     calculation date FechaProxima (as a date) and released.
  // The date marker is never a calculation date: the evaluator then takes the movement's next
  // due date, or today. Every call leaves its trace (UltimaTrazaFx). On failure the member
  // shows "Fórmula sin resultado" (GetValueUnaPata: "Formula sin resultado"), exclamation icon,
  // and returns false; errors never reach the caller.

  // Evaluates movement lMovFrec into the current movement: it is loaded (header, schedule,
  // lines) and its lines receive the computed amounts (ImporteMF in the movement's currency,
  // ImporteCta in the account's). bNoPedirDatos true: no prompt for the movement total
  // ([ImpMov], computed as 0) nor for [PedirDato]. When the loaded movement has no due date its
  // schedule keeps the FechaProxima text of step 1. The date actually used is in
  // UltimaTrazaFx().fecha. False (and the message) when the movement does not exist, a line has
  // no result or a prompt was cancelled.
  bool SetCalculoFormulasMF(int32_t lMovFrec, bool bNoPedirDatos);

  // The amount of the single open leg of the given lines (currency iMonMF, company iEmpresaMF)
  // and whether it may still be edited; dbImporte comes in as the movement total. The lines are
  // not changed. The rule for the open leg is in formula/calculo_fx.h.
  bool GetValueUnaPata(const clsRenglonesMF& RenglonesMF, int16_t iMonMF, int16_t iEmpresaMF,
                       bool& bImporteEditable, double& dbImporte);

  // Recomputes the amounts of the given lines in place, in currency iMonMF, for the current
  // movement ([pIDMov] = its ID). Unless bNoPedirTC, the exchange rate of each foreign currency
  // the lines need is asked first ("Tasa de cambio para [p]"). No other prompt.
  bool RecalcularFormulasMF(clsRenglonesMF& RenglonesMF, int16_t iMonMF, bool bNoPedirTC);

  // The legend with its date macros ("&[FDia]", "&[FFAñoMes]", ...) expanded for date
  // dFechaMF (formula/leyenda.h); "" before Connect or on error.
  std::string InterpretarFormulaLeyenda(std::string_view sLeyenda, Date dFechaMF);

  // ---- Dialogs the wizard opens, reachable on their own (host wiring) ----
  // Each shows its dialog through the services' form factory (Servicios().formularios) and
  // hands back what the person chose; nothing ("" for EditarFrecuencia) when cancelled, before
  // Connect, or when no dialog can be shown (an exclamation message says so and UltimoError
  // keeps why). Errors are trapped like the other members'.

  // The frequency editor of the date calculator in use (the suite's own shows frmFrecuencia):
  // the code composed with its description ("200002 Cada 2 meses").
  std::string EditarFrecuencia();

  // The user picker (frmFindUser) on the choice sUsuarios (user codes separated by ","): the
  // codes ticked, joined by ", "; `identificaciones`, when given, receives their
  // identifications joined by "; ".
  std::optional<std::string> ElegirUsuarios(std::string_view sUsuarios,
                                            std::string* identificaciones = nullptr);

  // The link dialog (frmVincular) for movement lIDMF (0 while new) of kind iTipo (1 entry,
  // 2 voucher; its rights option opens other companies to "todas mis empresas") on the link
  // text sVinculos ("id:orden|..."): the new link text.
  std::optional<std::string> VincularMovimientos(int32_t lIDMF, int16_t iTipo,
                                                 std::string_view sVinculos);

  // Saves the link text sVinculos (as VincularMovimientos hands it back) of stored movement
  // lIDMF in ONE transaction, as the wizard saves a movement's links: the other members must be
  // pending and at most one movement of the group scheduled (refusals 862 and 863 with their
  // second line, exclamation, the title of the kind as caption), then the group's rows are
  // rewritten (the member that runs first heads it; a movement alone is no group; members of
  // its former group left out of the text leave it). Needs "M" on the kind's option (the rights
  // refusal otherwise); a text that cannot be read is refused with its reason. True when saved;
  // false when refused, when the movement does not exist, or on any error (rolled back and
  // reported as "Error al grabar el movimiento.").
  bool GuardarVinculos(int32_t lIDMF, std::string_view sVinculos);

  // Opens the formula editor (frmDefFormula, host wiring, not part of the type library) on the
  // stored formula of the line of movement lIDMF whose Orden is `orden`. The movement is read
  // anew for the editor: its company, its id and its lines are what the editor offers; the
  // current movement (EstructuraMovFrec) is not touched and nothing is saved, the caller saves
  // what comes back. Returns the new stored formula when the person accepts ("" when the text
  // was emptied), nothing when cancelled, before Connect, when the movement or the line does not
  // exist or when no dialog can be shown (the reason in UltimoError).
  std::optional<std::string> EditarFormula(int32_t lIDMF, int16_t orden);

  // The trace of the last formula member's calculation (host wiring, not part of the type
  // library): date used, every line's elements with the origin of each value, amounts, totals.
  const TrazaCalculoFx& UltimaTrazaFx() const { return traza_fx_; }

 private:
  // Keeps a trapped error in UltimoError and shows it under the catalogue text `accion` (an
  // "Error al ..." entry; critical icon, caption "Movimientos Frecuentes").
  void Reportar(int accion, const std::exception& e);
  // The company context, loaded with the company number on first need.
  clsEmpresa& EmpresaContexto();
  // The injected date calculator, or the suite's own.
  IDateCalculator& Calendario();
  // True when dialogs can be shown; otherwise says so under the catalogue title `titulo`
  // ("No se puede mostrar <que>: ...") and keeps the reason in UltimoError.
  bool FormulariosDisponibles(int titulo, std::string_view que);
  // Steps 1 and 2 of the formula members; returns the calculation date.
  Date PrepararCalculoFx();
  void AvisarSinResultado(int mensaje);
  // The body of the locked saves: `mf`'s checks and save with the keys of `dbf`, inside the
  // caller's transaction.
  int32_t GuardarEnTransaccion(clsMFTipo& mf, IDBFncs& dbf);
  // The two task-list members' question and rights check: false (after showing the refusal)
  // when the user answers No or lacks `letra` on "CheckList".
  bool ConfirmarListaTareas(int pregunta, char letra);

  // The services as the host gave them (nulls kept), completed anew at every Connect.
  SuiteServices dados_;
  ContextoMF ctx_;
  std::shared_ptr<clsMFTipo> estructura_;
  bool fecha_hoy_calculo_fx_ = false;
  int32_t empresa_ = 0;
  std::unique_ptr<clsEmpresa> empresa_ctx_;
  std::unique_ptr<IDateCalculator> calendario_propio_;
  TrazaCalculoFx traza_fx_;
  std::string ultimo_error_;
};

}  // namespace kivmovfrec
