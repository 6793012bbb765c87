// Executing what falls due: every pending scheduled entry (Tipo 1 and 4) and voucher (Tipo 2)
// of the façade's company whose next due date is on or before a given day becomes a posted
// document, one occurrence at a time, missed occurrences included.
//
// Order: occurrences run by due date (then movement id); an occurrence of a movement that
// belongs to a linked group runs the whole group in MFrMVOrden order (the other members have
// no schedule of their own and share the scheduled one's due dates).
//
// One occurrence is one transaction:
//  1. The scheduled movement's header row is claimed (AvanceAgenda::SqlReservar) and re-read:
//     if it is no longer pending or its next due date moved (another run got there first) the
//     occurrence is skipped without writing anything. So an occurrence is never executed twice.
//  2. Each member's lines are computed as of the due date (clsMovFrecuente::SetCalculoFormulasMF,
//     prompts allowed: a movement that needs a typed value cannot run unattended).
//  3. Each member becomes a document: an entry (cceAsientos + cceAsientoCuenta, AsiEstado 1,
//     AsiLibro = Modalidad) or a voucher (cceComprobantes + cceComprobanteCuenta, ComEstado 1,
//     ComTipoComprobante = Modalidad), dated on the due day, keyed by the table counters and
//     pointing back at the movement. Amounts are rounded to cents; a negative amount goes to the
//     other side; lines of amount 0 are left out. A member whose every line is 0 writes no
//     document. Refused (nothing of the occurrence is written): debits and credits that differ
//     after rounding, and an entry in a currency other than the company's accounting currency
//     (its debit and credit are kept in the accounting currency and no conversion is made).
//     The legend (AsiLeyenda / ComDetalle) is the movement's memo, or its name when it has none,
//     with its date macros expanded for the due day.
//  4. The schedule advances (AvanceAgenda::Realizar): next due date, or Realizado after the last.
// A failed occurrence is rolled back and reported; the movement's later occurrences are not
// attempted in this run (they would come out of order), the other movements go on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kivmovfrec/db.h"
#include "kivmovfrec/mov_frecuente.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::api {

// A document written for one member of an occurrence.
struct DocumentoGenerado {
  int32_t movimiento = 0;  // the member it comes from
  int16_t tipo = 0;        // its MFrTipo (1, 2 or 4)
  int32_t id = 0;          // AsiID / ComID; 0 when every line was 0 and nothing was written
  double total = 0;        // the debit total (= the credit total), in cents
};

struct OcurrenciaEjecutada {
  int32_t movimiento = 0;  // the scheduled movement
  std::string nombre;
  Date fecha{};                               // its due date
  std::vector<DocumentoGenerado> documentos;  // in execution order (when done)
  bool terminada = false;                     // that was the schedule's last occurrence
  Date proxima{};     // the next due date after it (when done and not terminada)
  std::string error;  // why it was not executed ("" when done)
  bool ok() const { return error.empty(); }
};

// `mf` is connected to `cn` with company `empresa` set; its services give the counters, the
// clock, the user (rights) and, when set, the date calculator. Occurrences due on or before the
// day of `hasta` run. Database errors outside an occurrence (reading what is due) propagate;
// errors inside one are reported in its entry. Nothing runs when `mf` is not connected.
std::vector<OcurrenciaEjecutada> EjecutarVencidos(clsMovFrecuente& mf, Connection& cn,
                                                  int32_t empresa, Date hasta);

}  // namespace kivmovfrec::api
