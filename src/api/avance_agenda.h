// Marking a scheduled occurrence done: the work behind clsMovFrecuente::DarRealizadaFechaAgenda.
//
// The caller owns the transaction; this class only reads and writes through the connection it
// is given, takes the counters, the clock and the database settings from the façade's context,
// and lets every error through (DbError, VbError(13) for a FechaProxima that is not a
// date, ComponentError from a counter, an unreadable frequency code from the calculator).
//
// Rules for one movement:
// - Its header row is claimed first (kSqlReservar, a write that changes nothing), so that two
//   transactions marking the same movement run one after the other: the second waits for the
//   first to end and then reads what it wrote. SQLite holds the whole database from BeginTrans
//   already; PostgreSQL locks a row only when it is written, and its reads never wait, so
//   without the claim both would read the same occurrence and count it twice.
// - Only a pending movement (Estado 0) with a stored schedule has an occurrence to mark.
// - The next due date, and whether the schedule ends after this occurrence, are those of
//   schedule::NextOccurrence (schedule/next_occurrence.h) for the schedule row (AgendaDe). The
//   next date is written "dd/mm/yyyy hh:nn", or "dd/mm/yyyy" when it has no time of day.
// - Advancing: FechaProxima = the next date, occurrence number + 1, Postergado cleared (a
//   postponement belongs to the occurrence it delayed); the schedule row is saved (one
//   statement writing every column, as GuardarRecurrencia would).
// - Ending: the schedule row is left on its last occurrence; the header becomes Realizado with
//   FechaEstado now.
// - The header row is saved in both cases. For a notice (Tipo 3) the other pending movements of
//   the same modality are marked as seen (MFrVista = 2).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/reg_recurrencia.h"
#include "kivmovfrec/services.h"
#include "schedule/next_occurrence.h"

namespace kivmovfrec::api {

enum class ResultadoOcurrencia {
  NoAplica,   // missing, not pending, or without a stored schedule: nothing written
  Avanzada,   // moved to the next due date
  Terminada,  // that was the last occurrence: now Realizado
};

// The schedule a row describes, its texts read as dates (FechaInicio and FechaFinal count as
// missing when they are not dates); nothing when FechaProxima is not a date.
std::optional<schedule::Schedule> AgendaDe(const clsRegRecurrencia& rec);

// The next due date as a schedule keeps it: "dd/mm/yyyy hh:nn", or "dd/mm/yyyy" at midnight.
std::string TextoProxima(Date proxima);

// Moves the records of a pending movement with a schedule past its current occurrence, in
// memory (the rules above): either `rec` holds the next due date, occurrence number + 1 and no
// postponement, and `proxima` (when given) receives that date as the database keeps it; or the
// schedule ended and `mov` is Realizado since now. True when it ended. VbError(13) when
// FechaProxima is not a date; the calculator's errors propagate. AvanceAgenda::Realizar writes
// what this leaves; the in-memory run of the main job keeps it.
bool AvanzarRegistros(const ContextoMF& ctx, IDateCalculator& calendario,
                      clsRegMovimientoFrecuente& mov, clsRegRecurrencia& rec, Date* proxima);
// The same for a caller that keeps `agenda` = AgendaDe(rec) beside the records, so that the
// schedule is not read from its texts again on each occurrence: `agenda` then follows `rec`
// (what AgendaDe would read from it afterwards).
bool AvanzarRegistros(const ContextoMF& ctx, IDateCalculator& calendario,
                      clsRegMovimientoFrecuente& mov, clsRegRecurrencia& rec,
                      std::optional<schedule::Schedule>& agenda, Date* proxima);

class AvanceAgenda {
 public:
  // `ctx` must have its services (a connected façade's context) and outlive this object; `cn`
  // is the connection the caller's transaction runs on.
  AvanceAgenda(const ContextoMF& ctx, Connection& cn, IDateCalculator& calendario)
      : ctx_(ctx), cn_(cn), dbf_(*ctx.servicios.db), cal_(calendario) {}

  // Marks the current occurrence of movement `id` done (rules above). A movement already
  // processed by this object is not processed again (NoAplica).
  ResultadoOcurrencia Realizar(int32_t id);
  // The same for a caller that claimed the row (Reservar) and then read the header `mov` and
  // its schedule row `rec` in the same transaction (the main job, which needs them before):
  // they are used as read instead of being read again. A `rec` that is not the header's
  // schedule (ID 0 when it has no row) is no stored schedule. `proxima`, when given, receives
  // the next due date as written when the schedule advances.
  ResultadoOcurrencia Realizar(int32_t id, clsRegMovimientoFrecuente mov, clsRegRecurrencia rec,
                               Date* proxima);

  // Claims the header row of movement `id` (kSqlReservar) for the caller's transaction, once
  // per object: a caller that claims the row before reading it (the main job) and then calls
  // Realizar does not claim it twice. False when the movement has no row.
  bool Reservar(int32_t id);

  // The claim, the movement's ID bound:
  // "Update genMovimientosFrecuentes Set MFrEstado = MFrEstado Where MFrID = ?"
  static const char* const kSqlReservar;
  // "Update genMovimientosfrecuentes Set MFrVista = 2 where MFrID <> " + id +
  // " And MFrEstado = 0 And MFrModalidad = " + modalidad
  static std::string SqlMarcarAvisosVistos(int32_t id, int16_t modalidad);

 private:
  const ContextoMF& ctx_;
  Connection& cn_;
  IDBFncs& dbf_;
  IDateCalculator& cal_;
  std::set<int32_t> hechos_;
  std::map<int32_t, bool> reservados_;  // claimed rows: whether the row existed
};

}  // namespace kivmovfrec::api
