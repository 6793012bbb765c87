// Shared helpers of the formula tests: the demo database on every engine (DemoEngineTest,
// instantiated with KMF_INSTANTIATE_ENGINES) and the formula object over it.
#pragma once

#include <memory>

#include "formula/formula_mf.h"
#include "kivmovfrec/db.h"
#include "support/demo_engine.h"

namespace kivmovfrec::testing {

// Company 1 shows account codes; `id_mov` is the movement being edited.
inline formula::clsFormulaMF FormulaDemo(std::shared_ptr<Connection> cn, int32_t id_mov,
                                         bool codigos = true) {
  return formula::clsFormulaMF(std::move(cn), {1, id_mov, codigos});
}

}  // namespace kivmovfrec::testing
