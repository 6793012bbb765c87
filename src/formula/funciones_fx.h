// clsFuncionesFx: the values of the function words of the formula language, each with the trace
// of where it came from. The evaluator (formula/calculo_fx.h) replaces every bracketed element of
// a line's formula by one of these values.
//
// Words (arguments as stored; d = the calculation date, its time of day ignored):
//   [SaldoCtaDia] / [SaldoCtaDiaAnterior] / [SaldoCtaMesAnterior] (account id): the balance
//     (IAccountBalance, accounting currency, not converted) at d, d − 1 day, or the last day of
//     the month before d (the first of d's month less one day). The account must exist and not
//     be a folder, checked with "Select CueEsCarpeta from cceCuentas Where CueID = " + id.
//   [IndiceHoy] / [IndiceAyer] / [IndiceMes] (index, a currency of type 2): the rate of the index
//     in the accounting currency for the index rate type, which is read once per object with
//     kSqlTipoIndice, at the same three dates.
//   [CotizacionMonedaHoy] / [CotizacionMonedaAyer] / [CotizacionMonedaMesAnterior] (rate type;
//     currency): the rate of the currency in the accounting currency (clsMonedas::Cotizacion,
//     with its fall-back to 1 when no quotation exists; the trace says so).
//   [query] ... [/query]: the placeholders are replaced (Marcadores) and the statement is run
//     read-only (Connection::OpenReadOnly: a statement that would write is refused and writes
//     nothing); the first column of the first row is the value. No row, Null or a value that is
//     not a number gives no value.
//   [codescript] ... [/codescript]: the same placeholders; the text is run by the script host
//     with the connection visible as rdoCBase; its result must read as a number. When the value
//     comes from the host's second attempt after a run-time error (HostResult::first_error),
//     the element's reintento_tras_error says so.
//   Both blocks run under the connection's query limit (Connection::QueryLimit): a statement
//   cancelled there gives no value, with the limit named in the detail. A [query] reads only
//   the first row of its statement.
// The other movement's lines ([CuentaProyectoCentroCosto]) are read by OtroMovimiento.
//
// Every value is returned inside a TrazaElementoFx: `valor` holds it, or is empty when there is
// none, and `detalle` says in Spanish where it came from or why there is none. Nothing here
// throws: database and script errors become "no value" with their message in the detail.
//
// Lifetime: one object per evaluator; it shares the connection and the services. Not
// thread-safe.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "formula/elementos.h"
#include "formula/monedas.h"
#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/services.h"
#include "kivmovfrec/traza_fx.h"
#include "kivmovfrec/variant.h"
#include "platform/script/script_host.h"

namespace kivmovfrec::formula {

// The statements the functions send, exactly as sent (the ids are appended).
extern const char* const kSqlTipoIndice;     // the index rate type
extern const char* const kSqlEsCarpeta;      // + account id
extern const char* const kSqlRenglonesOtro;  // + movement id

// What the evaluator asks of the suite. A null input cancels every prompt; a null clock is the
// machine's clock; a null balance makes every balance fail.
struct ServiciosFx {
  std::shared_ptr<IInput> input;
  std::shared_ptr<IClock> clock;
  std::shared_ptr<IAccountBalance> balance;
};

// For the main job: the document a movement generated in the occurrence being executed, 0 when
// it was worked out and generated none (every amount 0), nothing when it has not been worked out
// in this occurrence (it is not part of it, or comes later in the group's order).
using DocumentosOcurrencia = std::function<std::optional<int32_t>(int32_t movimiento)>;

// Reduces an arithmetic expression or runs a script: the script host (EvaluateScript) unless a
// caller installs another one (tests count the calls through it).
using EvaluadorExpresion =
    std::function<script::HostResult(Connection*, std::string_view expresion, bool exponer)>;

// A number as written into an expression: "." as decimal point, no grouping, up to 15
// significant digits; a negative number in parentheses ("(-12.5)") so that it can follow any
// operator.
std::string NumeroInvariante(double v);
// Text that reads as a number ("12.5", "3,5", " -7 ", "1E+15"), as the script host decides it.
std::optional<double> LeerNumero(std::string_view texto);
// Number of decimals a numeric format pattern shows (digit placeholders after its "."):
// "#,##0.00" -> 2, "#,##0" -> 0, "#.###" -> 3.
int DecimalesFormato(std::string_view formato);
// `v` rounded as Format(v, formato) rounds it (halves away from zero), kept as a number.
double RedondearFormato(double v, std::string_view formato);
// How a retried expression's first error is shown in the trace: "error 11: División por cero".
std::string TextoReintento(const script::ScriptError& primero);
// The first day of d's month less one day.
Date UltimoDiaMesAnterior(Date d);
// "dd/mm/aaaa".
std::string FechaCorta(Date d);

// The company context an evaluator works in: the company, its parameter items (EmpPrms, name
// and value, for the "[prm" name "]" placeholders) and, once read, the database's currencies.
// Formulas only read (their statements run in savepoints that are rolled back), so an
// evaluator can hand its context to the next one on the same connection and company instead of
// both reading it (the main job runs one evaluator per member of each occurrence).
// The pieces (DividirFormula) of the formulas an evaluator has worked out, by formula text: a
// text always splits alike, so evaluators that share them split each formula once.
// The results of expressions made only of number literals, arithmetic operators and
// parentheses ("1045*1.21"), by text: such a text names nothing and reads no clock, so the
// script host always gives it the same result, and evaluators that share them reduce each once.
// Each keeps what the formulas read from it too: the expression and the result's text as
// numbers (LeerNumero).
struct ResultadoAritmetica {
  script::HostResult resultado;
  std::optional<double> numero_expresion;  // LeerNumero(the expression)
  std::optional<double> numero;            // LeerNumero(resultado.text)
};
struct HashTexto {
  using is_transparent = void;
  size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};
using ResultadosAritmetica =
    std::unordered_map<std::string, ResultadoAritmetica, HashTexto, std::equal_to<>>;

// The worked-out expression of a formula of plain text pieces (FormulaDividida::Fija); a type
// of its own so that it is complete where std::optional asks whether it can be made empty.
struct FormulaFija {
  std::string expresion;                   // the pieces joined and trimmed
  std::optional<double> numero_expresion;  // LeerNumero(expresion)
  bool reducida = false;                   // whether `aritmetica` was worked out
  // When it is not a number: the kept result (used only by evaluators without an installed
  // evaluator, the only ones that reduce it so).
  ResultadoAritmetica aritmetica;
};

// A formula split into its pieces and, for a formula of plain text pieces alone (no reference,
// no block), the expression they make once worked out: when it is a number, or an arithmetic
// expression the script host reduced (ResultadosAritmetica), it never changes.
struct FormulaDividida {
  using Fija = FormulaFija;
  std::vector<ElementoFx> piezas;
  bool fija_vista = false;   // whether `fija` was worked out
  std::optional<Fija> fija;  // nothing for any other formula
};

// The pieces (DividirFormula) of the formulas an evaluator has worked out, by formula text: a
// text always splits alike, so evaluators that share them split each formula once.
using PiezasFormulas = std::unordered_map<std::string, FormulaDividida>;

struct ContextoEmpresaFx {
  clsEmpresa empresa;
  std::vector<std::pair<std::string, std::string>> prms;
  std::optional<std::vector<MonedaFx>> monedas;      // nothing until read
  std::shared_ptr<PiezasFormulas> piezas;            // shared by the evaluators of the context
  std::shared_ptr<ResultadosAritmetica> aritmetica;  // the same
};

class clsFuncionesFx {
 public:
  // `parametros`: the settings of the database `cn` is on ("[prmBDDateCharSQLs]",
  // the language of the messages); copied.
  clsFuncionesFx(std::shared_ptr<Connection> cn, ServiciosFx servicios,
                 const ParametrosBD& parametros);

  // The company context: its record and its parameter items (EmpPrms, read from cceEmpresas for
  // the "[prm" name "]" placeholders). Sets the rate service's accounting currency.
  void Empresa(const clsEmpresa& empresa);
  // Makes `contexto` the company context without reading anything.
  void Empresa(const ContextoEmpresaFx& contexto);
  // The current company context, with the currencies when they have been read.
  ContextoEmpresaFx Contexto() const;
  // Loads company `id` and makes it the context; false (context unchanged) when it does not
  // exist. Database errors propagate.
  bool CargarEmpresa(int16_t id);
  const clsEmpresa& Empresa() const { return empresa_; }
  int16_t MonedaContabilidad() const { return empresa_.MonedaContabilidad(); }

  // The rate service, with the currencies loaded on first use.
  clsMonedas& Monedas() {
    if (!monedas_cargadas_) monedas_cargadas_ = monedas_.Load();
    return monedas_;
  }
  Connection* Conexion() const { return cn_.get(); }
  const ServiciosFx& Servicios() const { return servicios_; }
  const ParametrosBD& Parametros() const { return parametros_; }
  Date Ahora() const;
  Date Hoy() const;

  // The pieces of `formula` (DividirFormula), split once and kept with the context; the
  // reference stays valid while the context's pieces live (they are never dropped).
  const std::vector<ElementoFx>& Piezas(const std::string& formula);
  // The same with what is kept of it (FormulaDividida); the reference lives as long.
  FormulaDividida& Dividida(const std::string& formula);
  // The expression of a formula of plain text pieces, worked out once (FormulaDividida::Fija);
  // null for any other formula, or when it is an arithmetic expression and this evaluator has
  // an installed evaluator or the script host could not reduce it.
  const FormulaDividida::Fija* Fija(FormulaDividida& formula) const;

  void Evaluador(EvaluadorExpresion f) { evaluador_ = std::move(f); }
  // Runs the installed evaluator (the script host by default; the result of an expression of
  // number literals and arithmetic alone is kept, see ResultadosAritmetica); never throws.
  script::HostResult Evaluar(std::string_view expresion, bool exponer_conexion) const;
  // The kept result of `expresion` when it is made of number literals and arithmetic alone and
  // is not itself a number (LeerNumero), worked out and kept when new, as Evaluar(expresion,
  // false) gives it; null for any other expression, with an installed evaluator, or when the
  // host throws. Valid until the next Evaluar or Aritmetica of an evaluator of the context.
  const ResultadoAritmetica* Aritmetica(std::string_view expresion) const;

  // Replaces in a block's text: [pIDMov], [pEmp], [prmBDDateCharSQLs], [prmMonedaContabilidad]
  // and every "[prm" + name + "]" of the company's parameter items (names without regard to
  // case). Unknown "[prm...]" placeholders are left as they are (the statement then fails).
  std::string Marcadores(std::string texto, int32_t id_mov) const;

  // The value of one function word or block (see above). `elemento` is the element as stored,
  // kept in the trace.
  TrazaElementoFx Palabra(std::string_view palabra, const std::vector<std::string>& args, Date d,
                          int32_t id_mov, std::string_view elemento);

  // The value of a line of another movement (entries 2, 9, 19, 20: movement; account; project;
  // department): the line is looked up among that movement's stored lines (its side from
  // RMFAlDebe), then the newest document generated from it in the last two minutes (the clock's
  // now less two minutes, a bound value) is read with SqlDocumentos. In that one
  // document the rows of the same account, project and department give the value: Debe − Haber
  // for a debit line, Haber − Debe for a credit one (the document's amounts in its own currency;
  // a Null counts as 0 beside a non-Null, both Null is no value). ImporteCuenta, in the
  // account's currency, is reported in the trace and never mixed into the formula. No document
  // in the window, or a newest document without that line, gives no value: the formula then
  // has no result rather than a stale or invented amount.
  // Inside an occurrence of the main job (Ocurrencia set) only what this occurrence generated
  // counts, because a run that catches up on several due dates writes documents of earlier
  // occurrences within the same two minutes: a movement that generated no document here gives
  // 0 (its amounts were 0), one not worked out here gives no value, and the newest document
  // must be the one generated here.
  TrazaElementoFx OtroMovimiento(bool es_comprobante, const std::vector<std::string>& args,
                                 std::string_view elemento);

  // Limits OtroMovimiento to the documents of the occurrence being executed (see above).
  void Ocurrencia(DocumentosOcurrencia f) { ocurrencia_ = std::move(f); }

  // The statements that look for the documents generated from movement `id` since a moment,
  // which is bound as the one value ("?").
  std::string SqlDocumentos(bool es_comprobante, int32_t id) const;

 private:
  // Runs `leer`, the reads of one element. Inside a transaction (the main job posts each
  // occurrence in one) they run in a savepoint of their own that is always rolled back: an
  // element only reads, and a failed statement, which the element traps and reports as "no
  // value", must not spoil the transaction around it (PostgreSQL aborts the whole transaction
  // after a failed statement, SQLite does not; the savepoint makes both behave alike).
  template <class F>
  TrazaElementoFx EnNivelPropio(F&& leer);
  TrazaElementoFx PalabraEnNivel(std::string_view palabra, const std::vector<std::string>& args,
                                 Date d, int32_t id_mov, std::string_view elemento);
  TrazaElementoFx OtroMovimientoEnNivel(bool es_comprobante, const std::vector<std::string>& args,
                                        std::string_view elemento);
  TrazaElementoFx Saldo(int cual, const std::vector<std::string>& args, Date d, TrazaElementoFx t);
  TrazaElementoFx Indice(int cual, const std::vector<std::string>& args, Date d, TrazaElementoFx t);
  TrazaElementoFx Cotizacion(int cual, const std::vector<std::string>& args, Date d,
                             TrazaElementoFx t);
  TrazaElementoFx Consulta(std::string_view bloque, int32_t id_mov, TrazaElementoFx t);
  TrazaElementoFx Script(std::string_view bloque, int32_t id_mov, TrazaElementoFx t);
  std::optional<int32_t> TipoIndice(std::string& error);

  std::shared_ptr<Connection> cn_;
  ServiciosFx servicios_;
  ParametrosBD parametros_;
  clsEmpresa empresa_;
  std::vector<std::pair<std::string, std::string>> prms_;  // EmpPrms items: name, value
  clsMonedas monedas_;
  bool monedas_cargadas_ = false;
  std::optional<int32_t> tipo_indice_;
  bool tipo_indice_leido_ = false;
  EvaluadorExpresion evaluador_;
  DocumentosOcurrencia ocurrencia_;
  std::shared_ptr<PiezasFormulas> piezas_ = std::make_shared<PiezasFormulas>();
  std::shared_ptr<ResultadosAritmetica> aritmetica_ = std::make_shared<ResultadosAritmetica>();
};

}  // namespace kivmovfrec::formula
