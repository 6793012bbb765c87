// movfrec estado ID N: CambiarEstadoMF. The component asks first ("¿Confirma ...?", answered
// per --responder) and checks the user's rights; its refusals appear on stderr as
// "[caption] text". N is 0 (en proceso), 1 (realizado) or 9 (papelera).
#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "movement_json.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

struct Args {
  int32_t id = 0;
  int estado = 0;
};

Action Setup(CLI::App& app) {
  auto args = std::make_shared<Args>();
  app.add_option("ID", args->id, "Número del movimiento")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  app.add_option("N", args->estado, "Estado nuevo: 0 en proceso, 1 realizado, 9 papelera")
      ->required()
      ->check(EnteroEntre(0, 9));
  return [args](Context& ctx) {
    if (args->estado != 0 && args->estado != 1 && args->estado != 9) {
      throw UsageError("el estado debe ser 0 (en proceso), 1 (realizado) o 9 (papelera)");
    }
    if (!MovimientoGuardado(ctx, args->id)) return Rechazo(ctx, "estado", NoExiste(args->id));
    auto fachada = AbrirFachada(ctx);
    const bool hecho = fachada->CambiarEstadoMF(
        args->id, static_cast<enuEstadoMF>(static_cast<uint8_t>(args->estado)), true);
    const auto despues = MovimientoGuardado(ctx, args->id);
    if (ctx.json()) {
      nlohmann::ordered_json r = {{"ID", args->id}, {"Cambiado", hecho}};
      if (despues) {
        r["Estado"] = despues->MovFrecuente()->Estado();
        r["FechaEstado"] = FechaTexto(despues->MovFrecuente()->FechaEstado());
      }
      ctx.PrintJson(r);
    }
    if (!hecho) {
      return Rechazo(ctx, "estado",
                     "no se cambió el estado del movimiento " + std::to_string(args->id));
    }
    if (!ctx.json()) {
      ctx.out() << "Movimiento " << args->id << ": estado " << args->estado << " ("
                << NombreEstadoMF(args->estado) << ").\n";
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"estado", "Cambia el estado de un movimiento (0 en proceso, 1 realizado, 9 papelera)", 40,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
