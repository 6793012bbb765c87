// The trace of a formula calculation: for every line, the formula, each element's value and where
// that value came from, the expression that was finally reduced and the amounts written. The
// formula members of clsMovFrecuente leave the trace of their last call (TrazaCalculoFx), so an
// accountant can explain every amount: the balance of which account as of which date, the rate
// and the date of the quotation used (directly, through the intermediate currency, or the
// fall-back 1), the query or script and its result, the document generated from another
// movement, the line of the same movement a value was taken from.
//
// Plain values; nothing here touches the database.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/export.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec {

// Where an element's value came from.
enum class enuOrigenFx : uint8_t {
  Linea,           // a line of the same movement ([CuentaMovFrecuente])
  OtroMovimiento,  // a document generated from another movement ([CuentaProyectoCentroCosto])
  Saldo,           // an account balance
  Indice,          // an index value
  Cotizacion,      // an exchange rate
  Consulta,        // a [query] block
  Script,          // a [codescript] block
  ImporteTotal,    // the movement total ([ImpMov])
  PedirDato,       // a value asked of the user ([PedirDato])
  Diferencia,      // the balancing amount ([RestoCuenta])
  Desconocido      // an element the evaluator does not know
};

// The origin in Spanish as a person reads it in a trace: "renglón", "saldo", "cotización", ...
KMF_API const char* NombreOrigenFx(enuOrigenFx o);

// One bracketed element of a line's formula.
struct KMF_API TrazaElementoFx {
  std::string elemento;  // as stored: "[5:101]", "[query]...[/query]"
  enuOrigenFx origen = enuOrigenFx::Desconocido;
  std::optional<double> valor;  // the value put in its place; nothing when there was none
  std::string detalle;          // where it came from, in Spanish
  std::optional<Date> fecha;    // date of the balance, of the rate used, of the document
  int32_t documento = 0;        // id of the other movement's document (OtroMovimiento)
  int16_t linea = 0;            // 1-based line referred to (Linea)
  // A [codescript] whose value exists only because the script was run again with every ","
  // read as "." after its first run failed at run time: that first error (as on the line).
  std::string reintento_tras_error;
};

// One line of the movement.
struct KMF_API TrazaLineaFx {
  int16_t indice = 0;  // 1-based position
  int32_t cuenta = 0;
  int16_t proyecto = 0;
  int16_t departamento = 0;
  std::string cuenta_codigo;
  std::string cuenta_nombre;
  bool al_debe = false;
  std::string formula;    // stored form, "" = none (the stored amount is kept)
  std::string expresion;  // the arithmetic left once every element was replaced
  bool ok = true;         // false: the line has no result ("Error")
  std::string error;      // why, in Spanish, when !ok
  // Set when the line's value exists only because its expression was evaluated again with
  // every "," read as "." after the first attempt failed at run time (not a syntax error):
  // that first error, for instance "error 11: División por cero". Unattended posting
  // refuses such a line.
  std::string reintento_tras_error;
  double importe_mf = 0;   // amount in the movement's currency (rounded with its format)
  double importe_cta = 0;  // amount in the account's currency
  std::string conversion;  // how importe_cta was obtained ("" when the currencies agree)
  std::vector<TrazaElementoFx> elementos;
};

// One call of a formula member.
struct KMF_API TrazaCalculoFx {
  int32_t movimiento = 0;    // 0 when lines were given without a movement
  Date fecha{};              // calculation date actually used
  std::string origen_fecha;  // why that date ("próximo vencimiento", "hoy", "indicada")
  int16_t moneda = 0;        // currency of the movement
  double importe_total = 0;  // the movement total [ImpMov] worked with
  std::string origen_total;  // where the total came from
  std::vector<TrazaLineaFx> lineas;
  double total_debe = 0;  // sums of importe_mf per side
  double total_haber = 0;
  bool ok = false;
  std::string error;  // first failure, in Spanish
};

}  // namespace kivmovfrec
