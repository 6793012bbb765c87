// movfrec lista-tareas [ID] --guion ARCHIVO: the task-list editor (ShowCheckList) played by a
// step script without a display (kivmovfrec/guion.h has the step format; guion_salida.h what is
// printed). The result is the saved list's id, 0 when nothing was saved.
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
  auto archivo = std::make_shared<std::string>();
  app.add_option("ID", *id, "Lista de tareas a editar (0 o ninguna: una lista nueva)")
      ->check(EnteroEntre(0, INT32_MAX));
  app.add_option("--guion", *archivo, "Guion de pasos (JSON) que juega el editor sin pantalla")
      ->required();
  return [id, archivo](Context& ctx) {
    return CorrerGuion(ctx, "lista-tareas", *archivo, [&](clsMovFrecuente& mf) {
      return ResultadoDialogo::Numero(
          mf.ShowCheckList(*id, static_cast<int16_t>(ctx.options().usuario), false));
    });
  };
}

const bool registered = RegisterCommand(
    {"lista-tareas", "Editor de una lista de tareas jugado por un guion: [ID] --guion ARCHIVO", 56,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
