// CorridaFx: one pass of the evaluator over the lines of a movement (used by clsCalculoFx).
//
// Order of work:
//  0. The movement total: when a formula holds [ImpMov] (entry 14) and the total given is 0, it
//     stays 0 without prompting (pedir_datos false), or is asked with catalogue text 1472
//     through the numeric prompt ("kivcalculator:" + text; cancelling makes the pass fail).
//  1. Every line in line order, except the difference line: a line without formula keeps its
//     stored amounts; a line with one has each element replaced by its value (written with
//     NumeroInvariante) and the remaining arithmetic reduced (a plain number is read directly,
//     anything else goes to the script host). The result is rounded with the movement
//     currency's amount format (ImporteMF) and converted to the account's currency (ImporteCta).
//     A line referred to ([CuentaMovFrecuente]) is worked out first, once: its rounded amount
//     is what the referring formula uses. A line being worked out that is reached again
//     (a cycle of any length) has no value, so every line of the cycle ends "Error"; a line
//     referring to itself or to the difference line has no value either.
//  2. The difference line ([RestoCuenta], a formula that is exactly that one reference)
//     receives the amount that makes the debit and credit totals (ImporteMF) equal: credits
//     less debits of the other lines on a debit line, debits less credits on a credit line.
//     More than one difference line, or a difference formula holding anything else, fails.
//
// [PedirDato] (entry 11; its argument is the prompt): asked with "kivcalculator:" + argument,
// the argument as caption and the line's current amount proposed; cancelling fails the line.
// Without prompting, a formula made only of that element keeps the line's current amount, and
// inside a larger formula the value is 0 (the trace says which).
//
// Conversion to the account's currency, with C the accounting currency, M the movement's and A
// the account's (0 standing for C):
//   M = A            ImporteCta = ImporteMF
//   A = C, M ≠ C     ImporteCta = ImporteMF × rate of M in C
//   M = C, A ≠ C     ImporteCta = ImporteMF ÷ rate of A in C
//   otherwise        ImporteCta = ImporteMF × rate of M in A
// The rate is the line's ValorTC when set, else the effective rate (clsMonedas) of the line's
// TipoCambio, or of the company's TipoTCComprobantes when the line has none, on the calculation
// date. A conversion without a rate type, or for which no quotation exists (the rate service
// would answer 1), fails the line instead of inventing an amount. ImporteCta is rounded with
// the account currency's format.
//
// A line whose value exists only because the script host evaluated its expression, or one of
// its [codescript] blocks, again with every "," read as "." after a run-time error keeps its
// value and records that first error in reintento_tras_error (the first such error of the line).
//
// A line that cannot be worked out gets ok = false and the reason in its trace; the pass then
// fails, but still works out every other line so the trace is complete. Nothing is written to
// the line records until Aplicar, which the caller runs only after a successful pass.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formula/catalogo_fx.h"
#include "formula/elementos.h"
#include "formula/funciones_fx.h"
#include "kivmovfrec/reg_renglon_mf.h"
#include "kivmovfrec/traza_fx.h"

namespace kivmovfrec::formula {

// Which rate converts a line between movement currency m and account currency a (both already
// resolved, c the accounting currency): the rate of x in y, dividing by it when `dividir`.
struct ParConversion {
  int16_t x = 0;
  int16_t y = 0;
  bool dividir = false;
};
ParConversion ParDeConversion(int16_t m, int16_t a, int16_t c);

struct OpcionesCorrida {
  int32_t id_mov = 0;  // [pIDMov]
  int16_t moneda = 0;  // movement currency (0 = accounting currency)
  Date fecha{};        // calculation date
  double total = 0;    // movement total for [ImpMov]
  bool pedir_datos = true;
};

class CorridaFx {
 public:
  // `traza` receives the lines' traces (its `lineas` are replaced).
  CorridaFx(clsFuncionesFx& fx, std::vector<std::shared_ptr<clsRegRenglonMF>> lineas,
            const OpcionesCorrida& op, TrazaCalculoFx& traza);

  // Works out every line (see above). True when every line has a result.
  bool Calcular();
  // Writes ImporteMF / ImporteCta of the lines that have a formula.
  void Aplicar() const;

  // After Calcular: the amount in the movement's currency (computed, or stored for a line
  // without formula) and whether the line has a result.
  double ImporteMF(size_t i) const { return lineas_[i].mf; }
  bool Resuelta(size_t i) const { return lineas_[i].estado == Estado::Hecha; }
  bool EsDiferencia(size_t i) const { return lineas_[i].diferencia; }
  double Total() const { return total_; }

 private:
  enum class Estado { Pendiente, EnCurso, Hecha, Fallida };
  struct Linea {
    std::shared_ptr<clsRegRenglonMF> r;
    std::string formula;                              // trimmed
    FormulaDividida* dividida = nullptr;              // of `formula`, kept by clsFuncionesFx
    const std::vector<ElementoFx>* piezas = nullptr;  // its pieces
    bool diferencia = false;
    Estado estado = Estado::Pendiente;
    double mf = 0;
    double cta = 0;
  };

  bool PedirTotal();
  std::optional<double> Evaluar(size_t i);
  std::optional<double> Formula(size_t i);
  // The value of line i's expression from the host's result `r` and its text read as a number.
  std::optional<double> Resultado(TrazaLineaFx& tl, size_t i, const std::string& expresion,
                                  const script::HostResult& r, std::optional<double> v);
  TrazaElementoFx Referencia(size_t i, const ElementoFx& e, bool sola);
  TrazaElementoFx ReferenciaLinea(size_t i, const std::vector<std::string>& args,
                                  TrazaElementoFx t);
  TrazaElementoFx PedirDato(size_t i, const std::string& texto, TrazaElementoFx t, bool sola);
  void Diferencia(size_t i);
  bool Convertir(size_t i);
  void Fallar(size_t i, const std::string& error);
  void Terminar(size_t i);
  std::string Simbolo(int16_t moneda);
  std::string FormatoImporte(int16_t moneda);
  int16_t Resolver(int16_t moneda) const;
  // Catalogue text `n` in the language of the evaluator's database.
  std::string Texto(int n) const;

  clsFuncionesFx& fx_;
  std::vector<Linea> lineas_;
  OpcionesCorrida op_;
  TrazaCalculoFx& traza_;
  clsFxMovFrec catalogo_;
  double total_ = 0;
};

}  // namespace kivmovfrec::formula
