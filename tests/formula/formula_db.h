// Shared helpers of the formula tests: the demo database and the formula object over it.
#pragma once

#include <memory>
#include <string_view>

#include "formula/formula_mf.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/install.h"

namespace kivmovfrec::testing {

inline std::shared_ptr<Connection> DemoDb() {
  auto cn = OpenConnection("sqlite::memory:");
  InstallSchema(*cn, {.demo = true});
  return cn;
}

// Company 1 shows account codes; `id_mov` is the movement being edited.
inline formula::clsFormulaMF FormulaDemo(std::shared_ptr<Connection> cn, int32_t id_mov,
                                         bool codigos = true) {
  return formula::clsFormulaMF(std::move(cn), {1, id_mov, codigos});
}

}  // namespace kivmovfrec::testing
