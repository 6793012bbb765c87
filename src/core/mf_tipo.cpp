#include "kivmovfrec/mf_tipo.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "core/clock.h"

namespace kivmovfrec {
namespace {

template <typename T>
std::shared_ptr<T> NoNulo(std::shared_ptr<T> v, const char* parte) {
  if (!v) throw std::invalid_argument(std::string("clsMFTipo: ") + parte + " nulo");
  return v;
}

}  // namespace

clsMFTipo::clsMFTipo() : clsMFTipo(nullptr) {}

clsMFTipo::clsMFTipo(std::shared_ptr<IClock> reloj)
    : reloj_(std::move(reloj)),
      mov_(std::make_shared<clsRegMovimientoFrecuente>(core::RelojOSistema(reloj_.get()))),
      rec_(std::make_shared<clsRegRecurrencia>()),
      renglones_(std::make_shared<clsRenglonesMF>()) {}

void clsMFTipo::MovFrecuente(std::shared_ptr<clsRegMovimientoFrecuente> v) {
  mov_ = NoNulo(std::move(v), "MovFrecuente");
}

void clsMFTipo::Recurrencia(std::shared_ptr<clsRegRecurrencia> v) {
  rec_ = NoNulo(std::move(v), "Recurrencia");
}

void clsMFTipo::Renglones(std::shared_ptr<clsRenglonesMF> v) {
  renglones_ = NoNulo(std::move(v), "Renglones");
}

}  // namespace kivmovfrec
