// The dialogs the wizard opens, in a window or played by a step script (guion_salida.h: every
// command also takes --captura PNG [--panel N]):
//   movfrec frecuencia [--guion ARCHIVO]             the frequency editor; the code composed
//   movfrec usuarios [CODIGOS] [--guion ARCHIVO]     the user picker on a choice; the codes chosen
//   movfrec vincular ID [--vinculos TEXTO] [--guion ARCHIVO]
//                                                   the link dialog for movement ID (its group's
//                                                   current links unless --vinculos); the new
//                                                   link text. Nothing is saved: the wizard saves
//                                                   links with the movement.
#include <memory>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "guion_salida.h"
#include "kivmovfrec/enums.h"

namespace kivmovfrec::cli {
namespace {

Action Frecuencia(CLI::App& app) {
  auto archivo = AgregarOpcionesDialogo(app);
  return [archivo](Context& ctx) {
    return CorrerDialogo(ctx, "frecuencia", *archivo, [](clsMovFrecuente& mf) {
      const std::string r = mf.EditarFrecuencia();
      return ResultadoDialogo::Texto(r.empty() ? std::nullopt : std::optional(r));
    });
  };
}

Action Usuarios(CLI::App& app) {
  auto codigos = std::make_shared<std::string>();
  app.add_option("CODIGOS", *codigos, "Usuarios elegidos de antemano, separados por \",\"");
  auto archivo = AgregarOpcionesDialogo(app);
  return [codigos, archivo](Context& ctx) {
    return CorrerDialogo(ctx, "usuarios", *archivo, [&](clsMovFrecuente& mf) {
      std::string identificaciones;
      const auto elegidos = mf.ElegirUsuarios(*codigos, &identificaciones);
      return ResultadoDialogo::Texto(
          elegidos ? std::optional(*elegidos + " (" + identificaciones + ")") : std::nullopt);
    });
  };
}

Action Vincular(CLI::App& app) {
  auto id = std::make_shared<int32_t>(0);
  auto vinculos = std::make_shared<std::optional<std::string>>();
  app.add_option("ID", *id, "Movimiento que se vincula")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  app.add_option("--vinculos", *vinculos, "Vínculos de partida (id:orden|...)");
  auto archivo = AgregarOpcionesDialogo(app);
  return [id, vinculos, archivo](Context& ctx) {
    const auto mov = MovimientoGuardado(ctx, *id);
    if (!mov) return Rechazo(ctx, "vincular", NoExiste(*id));
    const int16_t tipo = ToInt(mov->MovFrecuente()->Tipo());
    if (tipo != 1 && tipo != 2 && tipo != 4)
      return Rechazo(ctx, "vincular", "solo se vinculan asientos y comprobantes");
    return CorrerDialogo(ctx, "vincular", *archivo, [&](clsMovFrecuente& mf) {
      std::string inicial;
      if (*vinculos) {
        inicial = **vinculos;
      } else {
        for (const MiembroGrupo& m : mf.GrupoEnOrden(*id).miembros)
          inicial +=
              (inicial.empty() ? "" : "|") + std::to_string(m.id) + ":" + std::to_string(m.orden);
      }
      return ResultadoDialogo::Texto(mf.VincularMovimientos(*id, tipo, inicial));
    });
  };
}

const bool frecuencia = RegisterCommand(
    {"frecuencia", "Editor de frecuencias: [--guion ARCHIVO | --captura PNG]", 57, Frecuencia});
const bool usuarios = RegisterCommand(
    {"usuarios", "Selección de usuarios: [CODIGOS] [--guion ARCHIVO | --captura PNG]", 58,
     Usuarios});
const bool vincular = RegisterCommand(
    {"vincular", "Vínculos de un movimiento: ID [--guion ARCHIVO | --captura PNG [--panel N]]", 59,
     Vincular});

}  // namespace
}  // namespace kivmovfrec::cli
