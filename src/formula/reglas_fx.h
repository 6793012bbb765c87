// The rules a movement's formulas must obey, as checks the wizard and the façade call.
//
// Each check looks at the lines of one movement (their keys, sides, stored formulas and
// amounts) and reports the first line that breaks its rule together with the catalogue message
// to show, or nothing when the rule holds. The checks never touch the database except
// ReglaReferenciasValidas when given a formula object, never throw, and do not change the lines.
//
// Rules and messages (resources/msg.h):
//   ReglaMismaCuenta              kFxMismaCuenta: a formula refers ("Cuenta Ingresada") to its
//                                 own line.
//   ReglaReferenciasValidas       kFxValorNoValido: a reference names no catalogue entry, has
//                                 arguments that are not valid, or names a line the movement no
//                                 longer has (and, with a formula object, a lookup row or a line
//                                 of another movement that no longer exists).
//   ReglaDiferenciaSola           kFxDiferenciaConOtros: a formula holding the difference
//                                 ("[10:]") holds anything else besides blanks.
//   ReglaUnaDiferencia            kFxRestoEnVariasCuentas: more than one line holds the
//                                 difference (the façade repeats this one before saving).
//   ReglaReferenciaCruzada        kFxReferenciaCruzada: line A refers to line B and B to A.
//   ReglaSumasIguales             kSumatoriaNoCoincide: debit and credit totals differ (compared
//                                 at four decimals).
//   ReglaDiferenciaEImporteMismaColumna
//                                 kFxDiferenciaEImporteEnColumnas: the difference and the
//                                 movement total ("[14:]") stand on different sides.
//   ReglaImportesCero             kCuentasImporteCero: some line amount is zero (a warning: the
//                                 movement's amount type is then taken as estimated).
#pragma once

#include <optional>
#include <span>
#include <string>

#include "formula/catalogo_fx.h"
#include "formula/elementos.h"

namespace kivmovfrec::formula {

class clsFormulaMF;

struct LineaRegla {
  ClaveLinea clave;      // account; project; department of the line
  bool al_debe = false;  // debit side
  std::string formula;   // stored form, "" = none
  double importe = 0;    // the line's amount
};

struct FalloRegla {
  int mensaje = 0;  // catalogue number (msg::k...)
  int linea = -1;   // 0-based index of the offending line (-1 when the rule is about totals)
  // The catalogue text of `mensaje`.
  std::string Texto(int idioma = 1) const;
};

using ResultadoRegla = std::optional<FalloRegla>;

ResultadoRegla ReglaMismaCuenta(std::span<const LineaRegla> lineas);
ResultadoRegla ReglaReferenciasValidas(std::span<const LineaRegla> lineas,
                                       const clsFormulaMF* formulas = nullptr);
ResultadoRegla ReglaDiferenciaSola(std::span<const LineaRegla> lineas);
ResultadoRegla ReglaUnaDiferencia(std::span<const LineaRegla> lineas);
ResultadoRegla ReglaReferenciaCruzada(std::span<const LineaRegla> lineas);
ResultadoRegla ReglaSumasIguales(std::span<const LineaRegla> lineas);
ResultadoRegla ReglaDiferenciaEImporteMismaColumna(std::span<const LineaRegla> lineas);
ResultadoRegla ReglaImportesCero(std::span<const LineaRegla> lineas);

// The formula rules in the order above, up to the side of the difference and the total (the
// totals and zero-amount checks depend on the amount type and are left to the caller): the
// first failure, or nothing.
ResultadoRegla ValidarFormulas(std::span<const LineaRegla> lineas,
                               const clsFormulaMF* formulas = nullptr);

}  // namespace kivmovfrec::formula
