#include "api/saldos_memoria.h"

#include <cmath>

#include "platform/vb/convert.h"

namespace kivmovfrec::api {

namespace {
int64_t Dia(Date d) {
  return static_cast<int64_t>(std::floor(d.serial));
}
}  // namespace

double SaldosEnMemoria::Saldo(int32_t cuenta, Date fecha) {
  const double base = base_ ? base_->Saldo(cuenta, fecha) : 0.0;
  return vb::RoundHalfEven(base + Neto(cuenta, Dia(fecha)), 4);
}

void SaldosEnMemoria::Agregar(int32_t cuenta, Date fecha, double debe, double haber) {
  pendientes_.push_back({cuenta, Dia(fecha), debe, haber});
}

void SaldosEnMemoria::Confirmar() {
  for (const Linea& l : pendientes_) {
    auto& d = diario_[l.cuenta][l.dia];
    d.first += l.debe;
    d.second += l.haber;
  }
  pendientes_.clear();
}

void SaldosEnMemoria::Descartar() {
  pendientes_.clear();
}

const SaldosEnMemoria::PorDia& SaldosEnMemoria::Diario(int32_t cuenta) const {
  static const PorDia kNinguno;
  const auto c = diario_.find(cuenta);
  return c == diario_.end() ? kNinguno : c->second;
}

double SaldosEnMemoria::Neto(int32_t cuenta, int64_t dia) const {
  double neto = 0;
  const PorDia& dias = Diario(cuenta);
  for (auto d = dias.begin(); d != dias.end() && d->first <= dia; ++d) {
    neto += d->second.first - d->second.second;
  }
  for (const Linea& l : pendientes_) {
    if (l.cuenta == cuenta && l.dia <= dia) neto += l.debe - l.haber;
  }
  return neto;
}

}  // namespace kivmovfrec::api
