// genRecurrencias: the schedule row of a movement (clsRegRecurrencia), pointed at by the
// header's MFrRecurrencia.
//
// Row mapping (column <- field), as written by GuardarRecurrencia:
//   RecID               ID (a new key from the "genRecurrencias" counter for a new row)
//   RecNumOcurrencia    NumOcurrencia; 0 is written as 1
//   RecFrecuencia       Frecuencia, the six-digit code, as text
//   RecFechaInicio      FechaInicio; when it is not a valid date FechaProxima is copied into it
//                       first (the record keeps the copy)
//   RecFechaProxima     FechaProxima
//   RecFechaFinal       FechaFinal, NULL when it is not a valid date
//   RecPostergado       Postergado when above 0, else NULL
//   RecSinVencimiento   SinVencimiento
//   RecNotificar        NotificarDias when above 0, else NULL
//   RecEraNotificacion  EraNotificacion as a date value, NULL when it is not a valid date
// The three schedule dates (start, next, last) are written as date values cut to the precision
// of the database date format (defBDDateFormat): no time of day when the format has no hours,
// whole seconds otherwise. The adapter stores date values in the engine's own form, so nothing
// depends on how the format orders day and month.
//
// Reading fills the same fields from the same columns; a NULL column leaves the field as it is.
// Dates come back as text in the Spanish short form ("10/11/2026", "20/11/2026 10:00:00"), the
// code as six digits. CantidadVeces, CadaCuanto, TipoRecurrencia and Notificar have no column
// and are left untouched.
//
// Database errors (DbError), stored values that do not fit (VbError) and a FechaProxima that is
// not a date when one is needed (VbError 13) propagate; nothing is caught here.
#pragma once

#include <cstdint>
#include <string>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/services.h"
#include "kivmovfrec/variant.h"
#include "storage/fila.h"

namespace kivmovfrec::storage {

// "Select * From genRecurrencias Where RecID = " + id
std::string SqlRecurrenciaPorID(int32_t id);

// Copies the schedule columns of the current row into `rec` (RecID included). Works on the
// joined load of a whole movement too.
void LeerRecurrencia(const Resultset& rs, clsRegRecurrencia& rec);

// Every column except RecID with the value written for `rec`. Fills an invalid FechaInicio from
// FechaProxima first; dates are cut to the precision of `p`'s date format (FechaSegunFormatoBD).
ValoresFila ValoresRecurrencia(clsRegRecurrencia& rec, const ParametrosBD& p);

// Assigns every column except RecID on the row being added or edited. Fills an invalid
// FechaInicio from FechaProxima first.
// Dates are cut to the precision of `p`'s date format (FechaSegunFormatoBD).
void EscribirRecurrencia(Resultset& rs, clsRegRecurrencia& rec, const ParametrosBD& p);

// Load: reads row rec.ID() into `rec`. False, leaving `rec` untouched, when there is none.
bool CargarRecurrencia(Connection& cn, clsRegRecurrencia& rec);

// Save: opens SqlRecurrenciaPorID(rec.ID()); when there is no row draws a new key
// (NuevoIDRecurrencia) and adds the row, otherwise edits it. Returns the key, also stored in
// rec.ID(). `p`: the database's settings (date precision, language of the counter's error).
int32_t GuardarRecurrencia(Connection& cn, IDBFncs& dbf, clsRegRecurrencia& rec,
                           const ParametrosBD& p);

// The statement that writes every column of row rec.ID() (the same values as
// GuardarRecurrencia). For a row the caller has just read in its transaction: it changes no
// row when there is none.
DbStatement SentenciaActualizarRecurrencia(clsRegRecurrencia& rec, const ParametrosBD& p);

// Delete: removes row `id` when there is one; no row is no error.
void BorrarRecurrencia(Connection& cn, int32_t id);

// NewID: the next key of "genRecurrencias"; ComponentError{8000, "DBFncs", text 904} when the
// counter answers -1 (in language `idioma`).
int32_t NuevoIDRecurrencia(IDBFncs& dbf, int idioma);

// `d` cut to the precision of the database date format: the date alone when the format has no
// hour, otherwise whole seconds (whole minutes when it has hours but no seconds).
Date FechaSegunFormatoBD(Date d, const ParametrosBD& p);

}  // namespace kivmovfrec::storage
