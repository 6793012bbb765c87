// The clock to read when a caller may leave it unset.
//
// The component keeps no clock of its own: every "now" and "today" comes from the clock service
// of the façade's context (kivmovfrec/contexto.h), handed down to whatever needs it. Pieces that
// accept an optional clock (the evaluator's services, the rate service, the legend) fall back to
// the machine's clock, which holds no state.
#pragma once

#include "kivmovfrec/services.h"

namespace kivmovfrec::core {

// `reloj` itself, or the machine's local clock (suite::SystemClock) when it is null.
IClock& RelojOSistema(IClock* reloj);

}  // namespace kivmovfrec::core
