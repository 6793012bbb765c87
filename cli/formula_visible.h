// The display form of the lines' formulas in a movement's JSON (ver, exportar): every line
// object gets "FormulaVisible" after its other keys. importar ignores that key.
#pragma once

#include <memory>

#include <nlohmann/json.hpp>

#include "kivmovfrec/db.h"
#include "kivmovfrec/mf_tipo.h"

namespace kivmovfrec::cli {

// `mov` is MovimientoJson(mf). A formula that cannot be shown keeps its stored form (the
// display form leaves what it cannot resolve as it is); a line without formula gets "".
void AgregarFormulaVisible(nlohmann::ordered_json& mov, const clsMFTipo& mf,
                           std::shared_ptr<Connection> cn);

}  // namespace kivmovfrec::cli
