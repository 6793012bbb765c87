// Saving a task list from the editor: the checks on its values, then the list, its schedule and
// its items written through the movement aggregate (clsMFTipo) in one transaction.
//
// Schedule written for the list (genRecurrencias):
// - The frequency code as six digits; the "Definido ..." entry (-1) is no code and is refused.
// - The next due date is written as its day with an explicit time: " 00:00:01" when the list
//   has a notice date, " 00:00:00" otherwise, so a notice (always a whole day, checked to be
//   earlier than the due day) lies strictly before the due moment on every engine. A time of
//   day the list had before is therefore replaced.
// - Notice: RecNotificar = due day - notice day, in days (1..255); no notice stores NULL.
// - End: a once-only code ends on its due date; otherwise the last date when given, else the
//   last date of `cantidad` occurrences counted from the schedule's start (the date
//   calculator's CalcularFinal), else no end (RecSinVencimiento 1).
// - A new list, or one whose frequency or due day changed, starts its schedule again: start =
//   due date, occurrence 1, postponement cleared. Otherwise start, occurrence number and
//   postponement are kept.
// Items, in grid order: a row marked `eliminado` that was stored is deleted by its id (one
// never stored is skipped); every other row is loaded by its id (0 or an id without row: a new
// item) and saved with MFrTipo 6, MFrEnte = the list, name (trimmed), comment, importance,
// precedes id and state (1 when ticked; 9 kept for an item in the bin that is not ticked;
// otherwise 0). MFrFechaEstado is set to now when the state changes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/lista_tareas.h"

namespace kivmovfrec::checklist {

// The field a refusal is about, for the editor to focus and select.
enum class CampoLista {
  Nombre,
  Comentario,
  Frecuencia,
  Vencimiento,
  Notificar,
  NumeroDeVeces,
  Hasta,
  NombreItem,
  ComentarioItem,
  Importancia,
};

// A refused value: the catalogue message to show (exclamation icon, title "Lista de tareas"),
// the field and, for an item field, the index of the item in ListaTareas::items.
struct RechazoLista {
  int mensaje = 0;
  CampoLista campo = CampoLista::Nombre;
  int item = -1;
  friend bool operator==(const RechazoLista&, const RechazoLista&) = default;
};

// The checks that need no database, in this order, stopping at the first failure:
//  name (trimmed) empty: msg::kCampoObligatorio; a single quote in name or comment:
//  msg::kComillaSimple; no due date: msg::kCampoNoValido; a frequency that is no code (-1 or
//  out of range): msg::kCampoNoValido; a negative count: msg::kCampoNoValido; a last date
//  before the due day or the notice day: msg::kFechaHastaMenor; a notice day not before the due
//  day: msg::kNotificacionAntesDeVencimiento, more than 255 days before: msg::kDiferenciaNotificar;
//  then each item not deleted, in order: empty name (kCampoObligatorio), a single quote in name
//  or comment (kComillaSimple), importance outside 1..5 (kCampoNoValido), a trimmed name equal
//  to an earlier item's (msg::kItemDuplicado).
std::optional<RechazoLista> RevisarLista(const ListaTareas& lista);

struct ResultadoGuardarLista {
  int32_t id = 0;                       // the list's id after a save; 0 when refused
  std::optional<RechazoLista> rechazo;  // why nothing was written
};

// Saves `lista` for user `usuario` (MFrUsuarioAlta of a new list and of new items) in company
// `ctx`'s database, in one transaction of ctx.cn (a savepoint when one is open):
//  1. RevisarLista; a refusal returns before any statement runs.
//  2. The name check (NombreListaDuplicado): another active list of the same company with the
//     same name refuses with msg::kListaDuplicada on the name; nothing is written.
//  3. The list and its schedule (rules above), then the items.
// On success `lista` gets the stored values: its id, the new items' ids, names trimmed,
// deleted rows dropped, and the schedule as stored (due moment, start, last date, occurrence
// number, postponement). A database error, a counter failure (ComponentError 8000) or a stored
// value that does not fit (VbError) rolls the transaction back and reaches the caller, with the
// database and `lista` as they were. The calendar is ctx's, or the suite's own when it has none.
ResultadoGuardarLista GuardarListaTareas(const ContextoMF& ctx, ListaTareas& lista,
                                         int16_t usuario);

}  // namespace kivmovfrec::checklist
