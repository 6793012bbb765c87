// Executing what falls due: every pending scheduled entry (Tipo 1 and 4) and voucher (Tipo 2)
// of the façade's company whose next due date is on or before a given day becomes a posted
// document, one occurrence at a time, missed occurrences included.
//
// Order: occurrences run by due date (then movement id); an occurrence of a movement that
// belongs to a linked group runs the whole group in execution order (api/grupo_vinculado.h:
// MFrMVOrden, then MFrID), the group's pending entries and vouchers each writing its document.
// The other members have no schedule of their own and share the scheduled one's due dates.
//
// One occurrence is one transaction:
//  1. The movements table is taken for writing (a write that touches no row, so only a lock on
//     the table or on the whole database can hold it up), then the scheduled movement's header
//     row is claimed (AvanceAgenda::kSqlReservar) and re-read. If it is no longer pending or its
//     next due date is not the one being run, another run (or a user) got there first: the
//     occurrence is reported as done elsewhere and nothing is written.
//  2. Documents already generated for the occurrence (cceAsientos.AsiMovFrecuente /
//     cceComprobantes.ComMovFrecuente of any member of the group, dated on the due day, in any
//     state) mean it was executed before — a schedule rewound by importing an old export, for
//     instance. Nothing is generated again: the schedule advances and the documents found are
//     reported. An occurrence whose lines were all 0 wrote nothing and so leaves nothing to find.
//  3. Each member's lines are computed as of the due date by the formula evaluator with the
//     façade's services (prompts allowed: a movement that needs a typed value cannot run
//     unattended). A line whose value exists only because its expression was retried with ","
//     read as "." after a run-time error (TrazaLineaFx::reintento_tras_error) refuses the
//     occurrence. A value read from another movement's document ([CuentaProyectoCentroCosto])
//     comes only from a document a member before it generated in this occurrence, or is 0 when
//     that member generated none; any other document (one of an earlier occurrence written
//     moments ago by the same run, say) gives no value and refuses the occurrence.
//  4. Each line that is written must name an account of the movement's company that is not a
//     folder (storage::ProblemaCuentaRenglon); one that does not refuses the occurrence.
//     Each member becomes a document: an entry (cceAsientos + cceAsientoCuenta, AsiEstado 1,
//     AsiLibro = Modalidad) or a voucher (cceComprobantes + cceComprobanteCuenta, ComEstado 1,
//     ComTipoComprobante = Modalidad), dated on the due day, keyed by the table counters and
//     pointing back at the movement. A negative amount goes to the other side; lines of amount
//     0 are left out; a member whose every line is 0 writes no document. The legend
//     (AsiLeyenda / ComDetalle) is the movement's memo, or its name when it has none, with its
//     date macros expanded for the due day.
//  5. The schedule advances (AvanceAgenda::Realizar): next due date, or Realizado after the last.
//
// Round trips. The scheduled movement is read once (header, schedule and lines, after the claim)
// and serves the check of step 1, the group, the evaluator and the advance; the evaluators of a
// run share the company's parameter items and the currencies, read by the first one; documents
// and their lines are inserted by bound statements (the lines of one document together), and
// the advance writes its two rows by one statement each.
//
// Amounts are rounded once, by the formula evaluator, to the amount format (MonRedondeo) of the
// movement's currency (ImporteMF) and of the account's (ImporteCta); they are written as the
// evaluator gives them. Each is first checked to be a whole number of the currency's minor units
// (cents for "#,##0.00", thousandths for "#,##0.000"): an amount with more decimals — a stored
// amount of a line without formula, say — refuses the occurrence rather than being rounded a
// second time. Debits and credits are compared in exact minor units. Lines that balance before
// rounding need not balance after it (10,005 on one side, 5,0025 twice on the other: 10,01
// against 10,00); the run does not invent the missing cent: such an occurrence is refused with
// both totals in the message. A movement that wants its rounding absorbed has a difference line
// ([RestoCuenta]), which the evaluator works out from the other lines' rounded amounts, so it
// always balances. An entry in a currency other than the company's accounting currency is
// refused too (its debit and credit are kept in the accounting currency and no conversion is
// made). A refused occurrence writes nothing.
//
// Failures. A failed occurrence is rolled back and reported with the movement's name and why (a
// database error says its kind and the engine's text); it stays due, and that movement's later
// occurrences are not attempted in this run (they would come out of order); the other
// movements go on. Except when the database itself cannot be used, because every further
// occurrence would fail the same way, each after waiting out the lock timeout: a Busy error
// anywhere but the claim of the movement's own row (SQLite: BeginTrans; PostgreSQL: the table
// taken for writing, a table counter, the commit), a Timeout, a lost connection, a read-only
// database or a missing table stop the run at once. The occurrence being run is then not
// reported (it stays due) and the run's result says why it stopped. On PostgreSQL a Busy claim
// of the movement's row, after the table was taken, can only mean that another transaction
// holds that one movement: it alone is skipped and stays due.
#pragma once

#include <cstdint>

#include "kivmovfrec/db.h"
#include "kivmovfrec/ejecucion.h"
#include "kivmovfrec/mov_frecuente.h"

namespace kivmovfrec::api {

class SaldosEnMemoria;

using kivmovfrec::AlTerminarOcurrencia;
using kivmovfrec::DocumentoGenerado;
using kivmovfrec::EstadoOcurrencia;
using kivmovfrec::OcurrenciaEjecutada;
using kivmovfrec::ProgresoEjecucion;
using kivmovfrec::ResultadoEjecucion;

// `mf` is connected to `cn` with company `empresa` set; its services give the counters, the
// clock, the user (rights) and, when set, the date calculator. Occurrences due on or before the
// day of `hasta` run. Database errors never propagate: inside an occurrence they are reported in
// its entry, and one that makes the database unusable — or any failure to read what is due —
// stops the run (ResultadoEjecucion::detenida). Nothing runs when `mf` is not connected.
// Hosts call it through clsMovFrecuente::EjecutarVencidos; the result types are public
// (kivmovfrec/ejecucion.h).
//
// `nivel` > 0: the run is a dry run inside the transaction level `nivel` of `cn` that the caller
// holds open and will roll back; each occurrence's transaction is a savepoint in it, and
// `al_terminar` runs inside it (it may read what the occurrence wrote). Before each occurrence
// the connection must still be at that level: when the engine has ended the caller's
// transaction (or a level was left open) the run stops rather than write outside it.
ResultadoEjecucion EjecutarVencidos(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                    Date hasta, const AlTerminarOcurrencia& al_terminar = {},
                                    int nivel = 0);

// The same run worked out in memory, for the balance forecast: nothing is written and no
// transaction is opened. The occurrences are those EjecutarVencidos would run, in its order,
// with the same steps, refusals and messages, except that each movement is read once (and its
// schedule then advanced on the records kept in memory), the accounts' checks and the documents
// already generated are read once, and each entry an occurrence generates is added to `saldos`
// (kept when the occurrence succeeds, dropped when it is refused) instead of being written;
// vouchers are only reported. Formulas read their balances from `saldos`, so they see the
// entries of the occurrences before them. Documents worked out here get negative keys (-1, -2,
// ...). What this cannot show as the real run would: a formula that reads the database by a
// query or a script, or reads another movement's document, sees the database as it is, without
// the documents and schedules worked out here; callers that need those exact (the forecast)
// take the dry run for them. Only the occurrences that did not run (refused or done elsewhere)
// are in the result. Database errors never propagate, as for the real run.
ResultadoEjecucion CalcularVencidos(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                    Date hasta, SaldosEnMemoria& saldos);

}  // namespace kivmovfrec::api
