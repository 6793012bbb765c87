// movfrec lista-tareas [ID] --guion ARCHIVO: the task-list editor (ShowCheckList) played by a
// step script without a display (kivmovfrec/guion.h has the step format). Prints every message
// the editor showed with its answer, the form, panel, focused control and selected text when it
// closed, the result (the saved list's id, 0 when nothing was saved) and why the script stopped.
// Exit 0 when every step ran and the list was saved, 1 when the editor ended with 0 or the
// script stopped, 2 when the script cannot be read.
#include <memory>
#include <ostream>
#include <string>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "informe_guion.h"
#include "kivmovfrec/guion.h"

namespace kivmovfrec::cli {
namespace {

int Correr(Context& ctx, int32_t id, const std::string& archivo) {
  std::shared_ptr<GuionDialogos> guion;
  try {
    guion = GuionDialogos::Leer(LeerGuion(archivo));
  } catch (const std::invalid_argument& e) {
    throw UsageError(archivo + ": " + e.what());
  }
  guion->Instalar(ctx.services());
  auto fachada = AbrirFachada(ctx);
  const int32_t resultado =
      fachada->ShowCheckList(id, static_cast<int16_t>(ctx.options().usuario), false);
  InformeGuion informe = guion->Informe();
  informe.resultado = resultado;
  if (ctx.json()) {
    ctx.PrintJson(InformeJson(informe));
  } else {
    ImprimirInforme(ctx.out(), informe);
  }
  if (!fachada->UltimoError().empty())
    ctx.err() << "movfrec lista-tareas: " << fachada->UltimoError() << "\n";
  return informe.error.empty() && resultado != 0 ? kExitOk : kExitFailed;
}

Action Setup(CLI::App& app) {
  auto id = std::make_shared<int32_t>(0);
  auto archivo = std::make_shared<std::string>();
  app.add_option("ID", *id, "Lista de tareas a editar (0 o ninguna: una lista nueva)")
      ->check(EnteroEntre(0, INT32_MAX));
  app.add_option("--guion", *archivo, "Guion de pasos (JSON) que juega el editor sin pantalla")
      ->required();
  return [id, archivo](Context& ctx) { return Correr(ctx, *id, *archivo); };
}

const bool registered = RegisterCommand(
    {"lista-tareas", "Editor de una lista de tareas jugado por un guion: [ID] --guion ARCHIVO", 56,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
