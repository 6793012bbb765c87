// frmCheckList: the task-list editor. One modal form in which a person creates or edits a task
// list (name, comment, schedule) and its items; a second form, the pick list "Lista de tareas",
// opens when the list an item precedes matches several lists.
//
// Controls (names, captions and hints from the message catalogue):
//   header: tNombreC, tMemoC, cfFrecuencia (the eleven frequencies, item datum the code),
//     dtVence, dtNotificar, tQOcurre, dtHasta, chSinEmpresa, labels lNextVto / lLastVto and the
//     link hlOcurre; item editor: tNombreI, tMemoI, cfImportancia (datum 1..5), tPrecede,
//     chRealizado; grid vsItems; buttons bfNew, bfEdit, bfDelCancel, bfHelp, bfFinish,
//     bfCancel.
//   vsItems columns: 0 tick (done), 1 "Ítems" (name) on view; hidden: 2 comment, 3 importance,
//     4 precedes-list id, 5 precedes-list name, 6 state (0, 1 done, 9 in the bin), 7 item id
//     (0 for an item not stored yet).
//
// Modes. Outside item editing the item fields are disabled; bfNew clears them and bfEdit copies
// the selected row into them, and either enters item editing: the item fields are enabled,
// bfEdit becomes "&Aceptar" (accept the item), bfDelCancel "&Cancelar" (drop the changes), and
// bfNew, bfFinish and the grid are disabled until the item is accepted or dropped.
//
// Checks. Item accept and save stop at the first refusal, show the catalogue message (title
// "Lista de tareas", exclamation) and put the focus on the field at fault with its whole text
// selected; every field keeps what was typed. The value checks themselves are the task-list
// library's (RevisarLista, GuardarListaTareas); the editor adds what only typed text can get
// wrong (a date or count that does not read) and the order in which a person meets them.
//
// Frequency. Choosing "Definido ..." or clicking hlOcurre asks the date calculator to compose a
// frequency (EditarFrecuencia). A code among the eleven selects that entry; any other valid code
// is kept behind "Definido ..."; an empty answer (cancelled) restores the previous choice.
//
// chSinEmpresa is shown ticked and disabled: a list always belongs to the company it was
// created in (MFrEmpresa), and the stored row has no place for "every company".
//
// Colours: genParametros 'sis_colores_1', element 'checklist', ParDescripcion split on "|":
//   0 background of the list's fields, 1 background of the item fields, 2 background of the
//   grid, 3 text of the required fields (tNombreC, dtVence, tNombreI), 4 text of the due-date
//   labels. A missing row or a value that is not a number keeps the toolkit's colour.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/controles.h"
#include "kivmovfrec/lista_tareas.h"
#include "kivmovfrec/services.h"
#include "ui/checklist/consultas_lista.h"
#include "ui/checklist/guardar_lista.h"

namespace kivmovfrec::checklist {

// How the editor reports an error it trapped: the "Error al ..." catalogue entry of the action
// and the error itself (the façade's error display).
using ReportarError = std::function<void(int accion, const std::exception& e)>;

class frmCheckList {
 public:
  // `ctx`: connection and services of the façade (a form factory among them); `calendario`: the
  // date calculator in use; `empresa`: the company of a new list; `reportar`: the error display.
  frmCheckList(const ContextoMF& ctx, IDateCalculator& calendario, int16_t empresa,
               ReportarError reportar);
  ~frmCheckList();
  frmCheckList(const frmCheckList&) = delete;
  frmCheckList& operator=(const frmCheckList&) = delete;

  // Shows the editor modally for list `lista` (0: a new one) on behalf of user `usuario`; with
  // `nuevo_item` the dialog opens with a new item started. Returns the saved list's id, or 0
  // when it was closed without saving. A list id that does not exist shows nothing and returns
  // 0. Database errors while loading reach the caller; those of a save are reported and the
  // dialog stays open.
  int32_t Mostrar(int32_t lista, int16_t usuario, bool nuevo_item);

 private:
  struct Controles;

  void CrearControles();
  void AplicarColores();
  void CargarCampos();
  void LlenarFila(int fila, const ItemListaTareas& it);
  ItemListaTareas LeerFila(int fila) const;

  // Handlers.
  void Nuevo();
  void Editar();
  void AceptarItem();
  void CancelarItem();
  void EliminarItem();
  void Guardar();
  void ElegirFrecuencia();
  void EditarFrecuencia();

  void ModoItem(bool editando);
  // The item the fields describe, with the precedes list resolved; nothing after a refusal
  // (already shown).
  std::optional<ItemListaTareas> ItemDeCampos();
  // The list the precedes text names: by id when the text is a number that finds a row,
  // otherwise by the text search; several matches open the pick list. Nothing when none
  // matches (refused) or the pick list was cancelled.
  std::optional<std::pair<int32_t, std::string>> ResolverPrecede(const std::string& texto,
                                                                 bool& cancelado);
  // The pick list "Lista de tareas": the index chosen, -1 when cancelled.
  int ElegirEntre(const std::vector<ListaCandidata>& candidatas);
  // The list as the fields and the grid describe it; nothing after a refusal of typed text.
  std::optional<ListaTareas> ListaDeCampos();
  int32_t FrecuenciaElegida() const;

  void Rechazar(int mensaje, controles::IControl& campo);
  void RechazarCampo(const RechazoLista& r);
  bool Preguntar(int mensaje, bool no_por_defecto);
  // Runs a handler, reporting what it throws instead of letting it reach the form.
  void Atrapar(int accion, const std::function<void()>& handler);

  const ContextoMF& ctx_;
  IDateCalculator& calendario_;
  int16_t empresa_;
  ReportarError reportar_;
  int idioma_ = 1;
  int16_t usuario_ = 0;
  ListaTareas lista_;  // as loaded (or a new one); the save starts from it
  int32_t frecuencia_definida_ = -1;
  int indice_frecuencia_ = 0;  // the entry chosen before "Definido ..."
  int fila_editada_ = -1;      // the row bfEdit copied, -1 for a new item
  bool editando_ = false;
  std::unique_ptr<controles::IFormulario> form_;
  std::unique_ptr<Controles> c_;
};

}  // namespace kivmovfrec::checklist
