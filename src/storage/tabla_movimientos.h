// genMovimientosFrecuentes: the header row of a movement.
//
// Row mapping (column <- field):
//   MFrID ID, MFrEmpresa Empresa, MFrTipo Tipo, MFrDelSistema DelSistema, MFrNombre Nombre,
//   MFrMemo Memo, MFrEnte Ente, MFrModalidad Modalidad, MFrTipoImporte TipoImporte,
//   MFrMoneda Moneda, MFrRecurrencia Recurrencia (NULL when 0), MFrMovVinculado MovVinculado
//   (NULL when 0), MFrMVOrden OrdenMovVinculado, MFrUsuarioAlta UsuarioAlta, MFrUsuarioAutoriza
//   UsuarioAutoriza, MFrEstado Estado, MFrFechaEstado FechaEstado, MFrVista Vista,
//   MFrIcono Imagen.
// MFrRecurrencia is NULL for a movement without schedule because the suite's queries tell
// frequent from scheduled movements with "MFrRecurrencia Is Null"; MFrMovVinculado likewise
// for unlinked ones. Reading, a NULL column leaves the field as it is (its default on a new
// record). Values are written through the result set, never as SQL text.
//
// Database errors (DbError) and conversion errors of stored values (VbError) propagate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/services.h"
#include "storage/fila.h"

namespace kivmovfrec::storage {

// "Select * from genMovimientosFrecuentes Where MFrID = " + id
std::string SqlMovimientoPorID(int32_t id);

// Copies the header columns of the current row into `mf` (NULL columns leave the field). Works
// on any row that carries the header columns, including the joined load of a whole movement.
void LeerMovimiento(const Resultset& rs, clsRegMovimientoFrecuente& mf);

// Every header column except MFrID with the value written for `mf`.
ValoresFila ValoresMovimiento(const clsRegMovimientoFrecuente& mf);

// Assigns every header column except MFrID on the current row being added or edited.
void EscribirMovimiento(Resultset& rs, const clsRegMovimientoFrecuente& mf);

// Reads header `id` into `mf`. Returns false, leaving `mf` untouched, when there is no such row.
bool CargarMovimiento(Connection& cn, int32_t id, clsRegMovimientoFrecuente& mf);

// The movements `ids` read as clsMFTipo::Load reads one (header, schedule, lines with their
// accounts), a few hundred per statement, by ID; the ones that do not exist are left out. Each
// is stamped with `reloj`. Database errors propagate.
std::map<int32_t, clsMFTipo> CargarMovimientos(Connection& cn, const std::vector<int32_t>& ids,
                                               const std::shared_ptr<IClock>& reloj);

// MFrNombre's width, in characters.
inline constexpr size_t kLargoNombre = 255;

// Refuses (TextoRechazado) a Nombre or Memo holding a single quote, a NUL or bytes that are not
// UTF-8, and a Nombre longer than kLargoNombre. Run before any statement of a save is built.
void RechazarTextosMovimiento(const clsRegMovimientoFrecuente& mf);

// Saves the header row: checks the texts (RechazarTextosMovimiento), opens
// SqlMovimientoPorID(mf.ID()); when no row is found draws a new key for
// "genMovimientosFrecuentes" (NuevoID: ComponentError 8000 on -1, and then nothing is written)
// and adds the row, otherwise edits the one found. Every column is written and the key is stored
// back in mf.ID(). Returns the key. Lines and schedule are not touched. `p`: the database's
// settings (the language of the counter's error).
int32_t GuardarMovimiento(Connection& cn, IDBFncs& dbf, clsRegMovimientoFrecuente& mf,
                          const ParametrosBD& p);

// The statement that writes every header column of row mf.ID() (the same values as
// GuardarMovimiento), after checking the texts (RechazarTextosMovimiento). For a row the
// caller has just read in its transaction: it changes no row when there is none.
DbStatement SentenciaActualizarMovimiento(const clsRegMovimientoFrecuente& mf);

// "Select Max(MFrMVOrden) From genMovimientosFrecuentes Where MFrMovVinculado = " + id
std::string SqlMaxOrdenVinculo(int32_t mov_vinculado);

// One more than the highest MFrMVOrden among the movements linked to `mov_vinculado` (1 when
// there are none). Throws VbError(6), overflow, when the chain already holds position 255.
uint8_t SiguienteOrdenVinculo(Connection& cn, int32_t mov_vinculado);

// Places a new member of a link chain: when mf is linked (MovVinculado >= 1), has no position
// yet (OrdenMovVinculado 0) and is an entry, voucher or notice (Tipo below 4), its
// OrdenMovVinculado becomes SiguienteOrdenVinculo. Task lists and their items are never placed.
void AsignarOrdenVinculo(Connection& cn, clsRegMovimientoFrecuente& mf);

}  // namespace kivmovfrec::storage
