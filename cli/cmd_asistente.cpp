// movfrec asistente [ID] [--tipo asiento|comprobante|aviso] [--guion ARCHIVO | --captura PNG
// [--panel N]]: the movement wizard (ShowWizard) in a window, rendered to a PNG (guion_salida.h)
// or played by a step script without a display (kivmovfrec/guion.h has the step
// format). ID opens that movement (its own kind); without it a new movement of --tipo (an entry
// by default). Prints what lista-tareas prints: every message with its answer, the form, panel,
// focused control and selected text when it closed, the result (the saved movement's id, 0 when
// nothing was saved) and why the script stopped. Exit 0 when every step ran and the movement was
// saved, 1 when the wizard ended with 0, the script stopped or ID does not exist, 2 when the
// script cannot be read.
#include <map>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "guion_salida.h"

namespace kivmovfrec::cli {
namespace {

const std::map<std::string, enuTipoMovFrec> kTipos = {{"asiento", enuTipoMovFrec::Asiento},
                                                      {"comprobante", enuTipoMovFrec::Comprobante},
                                                      {"aviso", enuTipoMovFrec::Calendario}};

int Correr(Context& ctx, int32_t id, const std::string& tipo, const OpcionesDialogo& opciones) {
  return CorrerDialogo(ctx, "asistente", opciones, [&](clsMovFrecuente& fachada) {
    if (id > 0) {
      if (!fachada.LoadMF(id)) {
        ResultadoDialogo r;
        r.rechazo = NoExiste(id);
        return r;
      }
    } else {
      fachada.CleanEstructura();
      fachada.EstructuraMovFrec()->MovFrecuente()->Tipo(kTipos.at(tipo));
    }
    return ResultadoDialogo::Numero(fachada.ShowWizard(ctx.options().usuario));
  });
}

Action Setup(CLI::App& app) {
  auto id = std::make_shared<int32_t>(0);
  auto tipo = std::make_shared<std::string>("asiento");
  app.add_option("ID", *id, "Movimiento a editar (0 o ninguno: uno nuevo)")
      ->check(EnteroEntre(0, INT32_MAX));
  app.add_option("--tipo", *tipo, "Tipo de un movimiento nuevo: asiento, comprobante o aviso")
      ->check(CLI::IsMember({"asiento", "comprobante", "aviso"}));
  auto archivo = AgregarOpcionesDialogo(app);
  return [id, tipo, archivo](Context& ctx) { return Correr(ctx, *id, *tipo, *archivo); };
}

const bool registered =
    RegisterCommand({"asistente",
                     "Asistente de un movimiento: [ID] [--tipo asiento|comprobante|aviso] "
                     "[--guion ARCHIVO | --captura PNG [--panel N]]",
                     54, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
