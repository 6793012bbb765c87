// Looking ahead before posting: the dry run of the main job (clsMovFrecuente::SimularVencidos)
// and the balance forecast built on it (clsMovFrecuente::PronosticarSaldos).
//
// The dry run is the main job itself (kivmovfrec/ejecucion.h) run inside one transaction of the
// façade's connection that is rolled back at the end: each occurrence's own transaction is a
// savepoint in it. So every due occurrence is computed exactly as the real run computes it, in
// the same order, with the same refusals, and a later occurrence sees the documents the earlier
// ones wrote (a formula on an account's balance gives the figure the real run will give). What
// each occurrence wrote is read back before the rollback. Nothing is kept: the documents, the
// advanced schedules and the table counters drawn for their keys all go with the rollback, and
// no other connection ever sees them.
//
// What a dry run can differ in from the real run that follows it:
//  - the keys (AsiID / ComID) and anything numbered by the table counters: another process may
//    draw keys in between, so the real run can give other numbers;
//  - the moment of writing (AsiFechaModificado / ComFechaModificacion);
//  - anything that changes in between: another user's documents, a movement edited or done
//    meanwhile, the answer typed to a prompt ([PedirDato] asks during the dry run too).
// The dates, lines, accounts, amounts, legends and errors are otherwise those of the real run.
//
// Locks: the transaction takes the write lock as the real run does (SQLite: the whole database;
// PostgreSQL: the movements table and the rows it writes) and holds it until the dry run ends,
// so other writers wait for it as they would for the real run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/ejecucion.h"
#include "kivmovfrec/export.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec {

// One line of a document as it was written.
struct KMF_API LineaDocumento {
  int32_t cuenta = 0;  // CueID
  std::string codigo;  // CueCodigo ("" when the account cannot be read)
  std::string nombre_cuenta;
  int32_t proyecto = 0;      // 0 when none
  int32_t departamento = 0;  // 0 when none
  double debe = 0;           // in the document's currency
  double haber = 0;
  double importe_cuenta = 0;  // in the account's currency
  std::string detalle;
};

// A document a dry-run occurrence wrote (then rolled back), or one it found already written.
struct KMF_API DocumentoSimulado {
  int32_t movimiento = 0;  // the member it comes from
  int16_t tipo = 0;        // MFrTipo: 1 or 4 an entry (cceAsientos), 2 a voucher (cceComprobantes)
  int32_t id = 0;          // the key it got in the dry run (the real run may draw another)
  Date fecha{};
  int32_t modalidad = 0;  // AsiLibro / ComTipoComprobante
  std::string leyenda;    // AsiLeyenda / ComDetalle
  int16_t estado = 0;     // AsiEstado / ComEstado
  int16_t moneda = 0;     // ComMoneda of a voucher; 0 for an entry (the accounting currency)
  int32_t ente = 0;       // ComEnte of a voucher, 0 when none
  double debe = 0;        // the sums of its lines
  double haber = 0;
  std::vector<LineaDocumento> lineas;  // in their order (ACuOrden / CCuOrden)
};

struct KMF_API OcurrenciaSimulada {
  OcurrenciaEjecutada ocurrencia;  // as the real run would report it
  // The documents of ocurrencia.documentos that were written or found (id other than 0), in
  // the same order, as stored.
  std::vector<DocumentoSimulado> documentos;
};

struct KMF_API ResultadoSimulacion {
  std::vector<OcurrenciaSimulada> ocurrencias;  // in the order the real run would run them
  // Why the dry run stopped before its end ("" when it did not), as for the real run; also when
  // the transaction could not be opened or ended on its own.
  std::string detenida;
  bool completa() const { return detenida.empty(); }
};

// ---- The forecast -------------------------------------------------------------------------

enum class PeriodoPronostico : uint8_t { Dia, Semana, Mes };

struct KMF_API SolicitudPronostico {
  // Accounts of the façade's company, each typed as its code or its name (a code wins), or as
  // its number (CueID) when no code or name matches; folders are refused. Empty: every account
  // the lines of the company's pending entries and vouchers name, by code.
  std::vector<std::string> cuentas;
  std::optional<Date> desde;  // first day; default: today (the façade's clock)
  Date hasta{};               // last day, inclusive
  PeriodoPronostico por = PeriodoPronostico::Mes;
};

// One period of one account. Periods are whole days: a week runs Monday to Sunday and a month
// is a calendar month, the first and last cut to the requested range.
struct KMF_API SaldoPeriodo {
  Date desde{};
  Date hasta{};
  double apertura = 0;  // the balance at the end of the day before `desde`
  double entradas = 0;  // debits of the period's posted entries
  double salidas = 0;   // credits of the period's posted entries
  double cierre = 0;    // the balance at the end of `hasta` (= apertura + entradas - salidas)
};

struct KMF_API CuentaPronostico {
  int32_t cuenta = 0;
  std::string codigo;
  std::string nombre;
  std::vector<SaldoPeriodo> periodos;
};

// A notice or a task list due in the range: it moves no money and is listed beside the figures.
struct KMF_API RecordatorioPronostico {
  Date fecha{};
  int32_t movimiento = 0;
  int16_t tipo = 0;  // 3 a notice, 5 a task list
  std::string nombre;
};

// How it is worked out. Every occurrence the main job would run up to the last day is computed
// as that run computes it (same order, formulas, rounding, refusals), in memory: nothing is
// written and no lock is taken, and a formula reading an account's balance sees the entries of
// the occurrences before it. A formula whose value could depend on the documents or schedules
// the run would write — a [query] or [codescript] block (the occurrence count is one), or a
// line of another movement's document — cannot be followed in memory: when any pending entry
// or voucher has one, the whole forecast is made by the dry run of the main job instead
// (SimularVencidos, above), which is exact but takes the write lock and is much slower;
// ResultadoPronostico::por_simulacion then says which formula asked for it.
//
// Balances follow the account-balance service (IAccountBalance, suite::DbAccountBalance): debit
// minus credit of the lines of posted entries (AsiEstado 1), in the accounting currency, to four
// decimals. The main job posts its entries in that state, so each simulated entry counts exactly
// as it will once the real run has written it. Vouchers do not enter an account's balance (their
// accounts move when the suite posts them as entries), so their occurrences move no figure here.
struct KMF_API ResultadoPronostico {
  Date desde{};
  Date hasta{};
  std::vector<CuentaPronostico> cuentas;              // in the order asked, or by code
  std::vector<RecordatorioPronostico> recordatorios;  // by date, then movement
  // Simulated occurrences that the real run would refuse: their documents are not in the
  // figures (they would stay due).
  std::vector<OcurrenciaEjecutada> fallidas;
  // Why no forecast was made: a range that ends before it starts, an account that is not one of
  // the company's; "" when it was.
  std::string rechazo;
  // Why the run behind it stopped early (the figures then miss what was not worked out).
  std::string detenida;
  // Why the figures come from the dry run instead of the in-memory run; "" when from memory.
  std::string por_simulacion;
  bool ok() const { return rechazo.empty() && detenida.empty(); }
};

}  // namespace kivmovfrec
