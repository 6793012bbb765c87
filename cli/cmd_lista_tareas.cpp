// movfrec lista-tareas [ID] [--guion ARCHIVO | --captura PNG]: the task-list editor
// (ShowCheckList) in a window, played by a step script without a display (kivmovfrec/guion.h has
// the step format), or rendered to a PNG (guion_salida.h). The result is the saved list's id, 0
// when nothing was saved.
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "guion_salida.h"

namespace kivmovfrec::cli {
namespace {

Action Setup(CLI::App& app) {
  auto id = std::make_shared<int32_t>(0);
  app.add_option("ID", *id, "Lista de tareas a editar (0 o ninguna: una lista nueva)")
      ->check(EnteroEntre(0, INT32_MAX));
  auto archivo = AgregarOpcionesDialogo(app);
  return [id, archivo](Context& ctx) {
    return CorrerDialogo(ctx, "lista-tareas", *archivo, [&](clsMovFrecuente& mf) {
      return ResultadoDialogo::Numero(
          mf.ShowCheckList(*id, static_cast<int16_t>(ctx.options().usuario), false));
    });
  };
}

const bool registered = RegisterCommand(
    {"lista-tareas", "Editor de una lista de tareas: [ID] [--guion ARCHIVO | --captura PNG]", 56,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
