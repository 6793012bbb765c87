// movfrec borrar ID: DeleteRegistroMFConfirmar. Deletes the movement for good, with its lines
// and schedule, after the component checks the right to delete from the bin and asks
// "¿Confirma eliminar el registro?" (answered per --responder; with no terminal and no
// --responder the answer is No).
#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"

namespace kivmovfrec::cli {
namespace {

Action Setup(CLI::App& app) {
  auto id = std::make_shared<int32_t>(0);
  app.add_option("ID", *id, "Número del movimiento")->required()->check(EnteroEntre(1, INT32_MAX));
  app.footer(
      "Elimina el movimiento definitivamente (cabecera, agenda y renglones), esté o no en la\n"
      "papelera. Requiere el derecho «e» sobre la opción Papelera y confirmación.");
  return [id](Context& ctx) {
    if (!MovimientoGuardado(ctx, *id)) return Rechazo(ctx, "borrar", NoExiste(*id));
    auto fachada = AbrirFachada(ctx);
    const bool hecho = fachada->DeleteRegistroMFConfirmar(*id);
    if (ctx.json()) ctx.PrintJson({{"ID", *id}, {"Eliminado", hecho}});
    if (!hecho) {
      return Rechazo(ctx, "borrar", "no se eliminó el movimiento " + std::to_string(*id));
    }
    if (!ctx.json()) ctx.out() << "Movimiento " << *id << " eliminado.\n";
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"borrar", "Elimina un movimiento definitivamente (pide confirmación)", 41, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
