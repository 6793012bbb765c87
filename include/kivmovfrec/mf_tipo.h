// clsMFTipo: one frequent movement as a unit: its header, its schedule and its lines.
//
// The façade keeps one of these as its current movement; the wizard, the task lists and the
// formula engine edit it in memory and only Load, Save and Delete touch the database. The three
// parts are shared references: MovFrecuente() returns the stored header itself, and setting a
// part replaces the object (a null part throws std::invalid_argument).
//
// None of the three operations opens a transaction or catches an error: database errors
// (DbError), conversion errors of stored values (VbError), a refused text (TextoRechazado, a
// std::invalid_argument) and the counter failure (ComponentError 8000 "DBFncs") reach the
// caller, who decides whether a transaction surrounds them.
#pragma once

#include <cstdint>
#include <memory>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/export.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/renglones_mf.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec {

class KMF_API clsMFTipo {
 public:
  // Empty header (ID 0), empty schedule, no lines. The header records this object creates (here
  // and in Load) are stamped with `reloj` (see clsRegMovimientoFrecuente); without one, with
  // the machine's clock.
  clsMFTipo();
  explicit clsMFTipo(std::shared_ptr<IClock> reloj);

  std::shared_ptr<clsRegMovimientoFrecuente> MovFrecuente() const { return mov_; }
  void MovFrecuente(std::shared_ptr<clsRegMovimientoFrecuente> v);
  std::shared_ptr<clsRegRecurrencia> Recurrencia() const { return rec_; }
  void Recurrencia(std::shared_ptr<clsRegRecurrencia> v);
  std::shared_ptr<clsRenglonesMF> Renglones() const { return renglones_; }
  void Renglones(std::shared_ptr<clsRenglonesMF> v);

  // Reads movement `id` with its lines (in RMFOrden order, display fields from the joined
  // account, project and department) and its schedule in one joined query. The three parts are
  // replaced by new objects filled from the rows; a movement without lines gets an empty
  // collection, one without schedule an empty schedule. Returns false, changing nothing, when
  // there is no such movement. The new header is created with `reloj` (without it, with this
  // object's clock), which stamps FechaEstado when the row holds none.
  bool Load(Connection& cn, int32_t id);
  bool Load(Connection& cn, int32_t id, IClock& reloj);

  // Saves the movement; returns its ID. Steps, in order:
  //  0. Texts holding a single quote (header Nombre / Memo, line Detalle) are refused before
  //     any statement runs.
  //  1. Schedule: when the header's Recurrencia is 0 but the schedule record has an ID, that
  //     row is deleted (the movement lost its schedule). Otherwise, when FechaProxima is not
  //     empty, the schedule row is saved (new key from the counter when new) and the header's
  //     Recurrencia takes its key. A schedule with an empty FechaProxima is not stored.
  //  2. Link order: a linked entry, voucher or notice without a position gets the highest
  //     position of its group + 1.
  //  3. An entry (Tipo 1) without Modalidad takes `libro`, the company's default journal.
  //  4. Header row (new key from the counter when new; stored back in the header's ID).
  //  5. Lines: the movement's stored lines are all deleted and the ones in memory inserted in
  //     list order; a line with Orden 0 is numbered with its position, an explicit Orden kept.
  // Records in memory keep what the save gave them (keys, positions, Orden) even when a later
  // step fails; the caller's rollback restores the tables, not the records. `p`: the database's
  // settings (date precision of the schedule, language of the counter's error).
  int32_t Save(Connection& cn, IDBFncs& dbf, int16_t libro, const ParametrosBD& p);

  // Deletes movement `id`: its lines, its schedule row (when the header points at one) and its
  // header row. A movement that does not exist is no error. The records in memory are not
  // touched.
  static void Delete(Connection& cn, int32_t id);

 private:
  std::shared_ptr<IClock> reloj_;
  std::shared_ptr<clsRegMovimientoFrecuente> mov_;
  std::shared_ptr<clsRegRecurrencia> rec_;
  std::shared_ptr<clsRenglonesMF> renglones_;
};

}  // namespace kivmovfrec
