// movfrec exportar ID...: the movements as a JSON array, in the order given, ready for importar.
#include <memory>
#include <vector>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "formula_visible.h"
#include "movement_json.h"

namespace kivmovfrec::cli {
namespace {

Action Setup(CLI::App& app) {
  auto ids = std::make_shared<std::vector<int32_t>>();
  app.add_option("ID", *ids, "Números de los movimientos")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  app.footer(
      "Escribe siempre JSON: una lista con un objeto {\"MovFrecuente\", \"Recurrencia\", "
      "\"Renglones\"} por movimiento. Si alguno no existe no se escribe nada.");
  return [ids](Context& ctx) {
    nlohmann::ordered_json lista = nlohmann::ordered_json::array();
    for (int32_t id : *ids) {
      const auto mf = MovimientoGuardado(ctx, id);
      if (!mf) return Rechazo(ctx, "exportar", NoExiste(id) + "; no se exportó nada");
      nlohmann::ordered_json mov = MovimientoJson(*mf);
      AgregarFormulaVisible(mov, *mf, ctx.connection());
      lista.push_back(std::move(mov));
    }
    ctx.PrintJson(lista);
    return kExitOk;
  };
}

const bool registered =
    RegisterCommand({"exportar", "Escribe movimientos en JSON (para importar)", 31, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
