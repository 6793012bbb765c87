// Account balances over the posted entries plus entries held in memory: what the formulas of a
// forecast read, and what its figures are built from, when the main job's occurrences are
// worked out without being written (api/ejecucion.h, CalcularVencidos).
//
// An entry held here counts as a posted entry (AsiEstado 1) of its day: a balance at a date is
// the base service's balance plus the debits less the credits held for that account up to that
// day, rounded to four decimals as the balance service rounds. Entries are added to the
// occurrence being worked out (pending, already seen by balances, so a later member of a linked
// group sees an earlier member's entry) and then kept (Confirmar) or dropped (Descartar), as the
// occurrence's transaction would be committed or rolled back.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kivmovfrec/services.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::api {

class SaldosEnMemoria final : public IAccountBalance {
 public:
  // `base`: the balances of the posted entries (null counts as 0 everywhere).
  explicit SaldosEnMemoria(std::shared_ptr<IAccountBalance> base) : base_(std::move(base)) {}

  double Saldo(int32_t cuenta, Date fecha) override;

  // One line of an entry of the occurrence being worked out.
  void Agregar(int32_t cuenta, Date fecha, double debe, double haber);
  void Confirmar();
  void Descartar();

  // The kept entries' debits and credits of `cuenta` by day (the day's serial number).
  using PorDia = std::map<int64_t, std::pair<double, double>>;
  const PorDia& Diario(int32_t cuenta) const;
  // Debits less credits of the kept and pending entries of `cuenta` up to day `dia`, inclusive.
  double Neto(int32_t cuenta, int64_t dia) const;

 private:
  struct Linea {
    int32_t cuenta;
    int64_t dia;
    double debe;
    double haber;
  };
  std::shared_ptr<IAccountBalance> base_;
  std::unordered_map<int32_t, PorDia> diario_;
  std::vector<Linea> pendientes_;
};

}  // namespace kivmovfrec::api
