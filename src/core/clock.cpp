#include "core/clock.h"

#include "kivmovfrec/contexto.h"
#include "platform/suite/clock.h"

namespace kivmovfrec {
namespace core {

IClock& RelojOSistema(IClock* reloj) {
  // SystemClock has no state: one shared instance is as good as a new one per call.
  static suite::SystemClock sistema;
  return reloj != nullptr ? *reloj : sistema;
}

}  // namespace core

IClock& ContextoMF::Reloj() const {
  return core::RelojOSistema(servicios.clock.get());
}

}  // namespace kivmovfrec
