// movfrec leyenda TEXTO [--fecha F]: the legend with its date macros expanded
// (InterpretarFormulaLeyenda) for date F, today when it is not given.
#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"

namespace kivmovfrec::cli {
namespace {

Action Setup(CLI::App& app) {
  auto texto = std::make_shared<std::string>();
  auto fecha = std::make_shared<std::string>();
  app.add_option("TEXTO", *texto, "Leyenda con macros (&[FechaC], &[FFAñoMes], ...)")->required();
  OpcionFecha(app, "--fecha", *fecha,
              "Fecha del movimiento (dd/mm/aaaa o aaaa-mm-dd); hoy si falta");
  return [texto, fecha](Context& ctx) {
    const Date d = fecha->empty() ? ctx.services().clock->Today() : *ParseFecha(*fecha);
    auto mf = AbrirFachada(ctx);
    const std::string resultado = mf->InterpretarFormulaLeyenda(*texto, d);
    if (resultado.empty() && !texto->empty()) {
      return Rechazo(ctx, "leyenda", "no se pudo interpretar la leyenda");
    }
    if (ctx.json()) {
      ctx.PrintJson({{"Leyenda", resultado}});
    } else {
      ctx.out() << resultado << '\n';
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"leyenda", "Expande las macros de fecha de una leyenda (&[FDia], &[FFAñoMes], ...)", 46, Setup,
     /*empresa=*/false});

}  // namespace
}  // namespace kivmovfrec::cli
