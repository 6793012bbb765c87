// clsCalculoFx: the formula evaluator. It works out the amounts of a movement's lines from their
// stored formulas when the movement is executed, recalculated or previewed. The façade's
// SetCalculoFormulasMF, GetValueUnaPata and RecalcularFormulasMF create one, give it the
// connection and the company context, call one entry point and release it.
//
// How a line is worked out (elements, references, the difference line, rounding and the
// conversion to the account's currency) is described in formula/corrida_fx.h; the function
// words in formula/funciones_fx.h. Every call leaves a trace (Traza) saying where every value
// came from.
//
// Calculation date: 01/01/1958 (FechaNoIndicada) marks a date that is not set; it is never used
// as a calculation date. The words use the date without its time of day.
//
// Failures: every entry point traps its errors (database, script, conversion) and returns
// false; nothing propagates. The reason is in Traza().error and in the failing lines' traces.
// The caller shows "Fórmula sin resultado" (movement and lines) or "Formula sin resultado"
// (one leg). Line records are only changed when the whole call succeeds.
//
// Lifetime: shares the connection; keeps its own copy of the company context (reloading it
// for a movement of another company does not touch the caller's). Not thread-safe.
#pragma once

#include <cstdint>
#include <memory>

#include "formula/corrida_fx.h"
#include "formula/funciones_fx.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/renglones_mf.h"
#include "kivmovfrec/traza_fx.h"

namespace kivmovfrec::formula {

// 01/01/1958: the calculation date is not set.
Date FechaNoIndicada();

class clsCalculoFx {
 public:
  // `cn` must not be null (std::invalid_argument). The company's parameters are read at once;
  // a database error there propagates. `parametros`: the settings of the database `cn` is on
  // ("[prmBDDateCharSQLs]", language of the messages; copied).
  clsCalculoFx(std::shared_ptr<Connection> cn, const clsEmpresa& empresa, ServiciosFx servicios,
               const ParametrosBD& parametros);
  // The same in a company context another evaluator on the same connection has already read
  // (clsFuncionesFx::Contexto): nothing is read here.
  clsCalculoFx(std::shared_ptr<Connection> cn, const ContextoEmpresaFx& contexto,
               ServiciosFx servicios, const ParametrosBD& parametros);

  // Evaluates movement `lMovFrec`, loaded into `mf` (header, schedule and lines as stored; the
  // lines then receive the computed ImporteMF / ImporteCta; a new header is stamped with the
  // evaluator's clock).
  // Date: when `fecha` is the not-set marker, the movement's next due date is used when it has
  // a schedule (recurrence ID ≥ 1) whose FechaProxima is a date, otherwise today (the clock's);
  // the date used is written back to `fecha`. Another company than the context's reloads the
  // context. A movement without lines computes nothing and succeeds. `bNoPedirDatos` true: no
  // prompt for [ImpMov] (total 0) nor [PedirDato]. False when the movement does not exist, a
  // line has no result, or a prompt was cancelled.
  bool SetCalculoFormulasMF(clsMFTipo& mf, int32_t lMovFrec, bool bNoPedirDatos, Date& fecha);
  // The same for a movement the caller has just loaded into `mf` (clsMFTipo::Load on this
  // connection, stamped with the evaluator's clock), which is not read again.
  bool CalcularCargado(clsMFTipo& mf, bool bNoPedirDatos, Date& fecha);

  // The single open leg of the given lines, in currency iMonMF of company iEmpresaMF. The lines
  // are worked out on copies (they are not changed) without any prompt; dbImporte comes in as
  // the movement total ([ImpMov]) and goes out as the leg's amount.
  // The open leg is:
  //   1. the line holding the difference formula, when one does (two or more: failure);
  //   2. otherwise the only line on its side, the other side having two or more lines;
  //   3. with one line on each side: the one without a formula when exactly one has none, else
  //      the one whose formula waits on a value ([ImpMov] / [PedirDato]) when exactly one does.
  //   Anything else (no line, every line on one side, several on both sides) has no single
  //   open leg: failure.
  // Amount and editability:
  //   - difference formula: the amount that balances the other lines; not editable;
  //   - no formula: the amount that balances the other lines, offered as a proposal; editable;
  //   - a formula waiting on [ImpMov] or [PedirDato]: its computed amount; editable (the value
  //     it waits on is the user's);
  //   - any other formula: its computed amount; not editable.
  // False when a line needed for the amount has no result; bImporteEditable and dbImporte are
  // then left as they came.
  bool GetValueUnaPata(const clsRenglonesMF& renglones, int16_t iMonMF, int16_t iEmpresaMF,
                       bool& bImporteEditable, double& dbImporte, Date fecha);

  // Recomputes the given lines in place, in currency iMonMF, for movement `id_mov` ([pIDMov]).
  // No data prompts ([ImpMov] total 0, [PedirDato] as without prompting). Unless bNoPedirTC, for
  // each currency that a line without fixed rate (ValorTC 0) must be converted with, the user is
  // asked once with catalogue text 1473 "Tasa de cambio para [p]" ([p] = the quoted currency's
  // symbol), proposing the effective rate as of the last day of the month before the date; a
  // positive answer becomes those lines' ValorTC, anything else leaves them unchanged. The
  // not-set marker as date means today. False when a line has no result (the amounts are then
  // not changed).
  bool RecalcularFormulasMF(clsRenglonesMF& renglones, int16_t iMonMF, bool bNoPedirTC, Date fecha,
                            int32_t id_mov = 0);

  // The trace of the last call.
  const TrazaCalculoFx& Traza() const { return traza_; }
  // Replaces the script host (tests).
  void Evaluador(EvaluadorExpresion f) { fx_.Evaluador(std::move(f)); }
  clsFuncionesFx& Funciones() { return fx_; }

 private:
  bool Calcular(clsMFTipo& mf, int32_t lMovFrec, bool bNoPedirDatos, Date& fecha);
  void PedirTasas(clsRenglonesMF& renglones, int16_t moneda, Date fecha);
  Date FechaEfectiva(Date fecha, std::string& origen) const;

  std::shared_ptr<Connection> cn_;
  clsFuncionesFx fx_;
  TrazaCalculoFx traza_;
};

}  // namespace kivmovfrec::formula
