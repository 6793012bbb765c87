// movfrec realizar ID: DarRealizadaFechaAgenda, then the schedule as it stands afterwards (and
// that of the other members of the linked group ID heads, in execution order, which the
// component processes with it).
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "movement_json.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

Json Situacion(const clsMFTipo& mf) {
  const clsRegMovimientoFrecuente& m = *mf.MovFrecuente();
  const clsRegRecurrencia& r = *mf.Recurrencia();
  return {{"ID", m.ID()},
          {"Estado", m.Estado()},
          {"FechaEstado", FechaTexto(m.FechaEstado())},
          {"FechaProxima",
           r.FechaProxima().empty() ? Json(nullptr) : Json(FechaTexto(Variant(r.FechaProxima())))},
          {"NumOcurrencia", r.NumOcurrencia()}};
}

std::string SituacionTexto(const clsMFTipo& mf) {
  const clsRegMovimientoFrecuente& m = *mf.MovFrecuente();
  const clsRegRecurrencia& r = *mf.Recurrencia();
  if (m.Estado() != ToInt(enuEstadoMF::EnProceso)) {
    return fmt::format("estado {} {}; última ocurrencia {} del {}", m.Estado(),
                       NombreEstadoMF(m.Estado()), r.NumOcurrencia(),
                       FechaTexto(Variant(r.FechaProxima())));
  }
  if (r.FechaProxima().empty()) return "sin agenda, sin cambios";
  return fmt::format("próximo vencimiento {}, ocurrencia {}, estado 0 En proceso",
                     FechaTexto(Variant(r.FechaProxima())), r.NumOcurrencia());
}

Action Setup(CLI::App& app) {
  auto id = std::make_shared<int32_t>(0);
  app.add_option("ID", *id, "Número del movimiento agendado")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  return [id](Context& ctx) {
    const auto antes = MovimientoGuardado(ctx, *id);
    if (!antes) return Rechazo(ctx, "realizar", NoExiste(*id));
    const clsRegMovimientoFrecuente& m = *antes->MovFrecuente();
    if (m.Estado() != ToInt(enuEstadoMF::EnProceso)) {
      return Rechazo(ctx, "realizar",
                     fmt::format("el movimiento {} no está en proceso (estado {} {}): no tiene "
                                 "ocurrencia pendiente",
                                 *id, m.Estado(), NombreEstadoMF(m.Estado())));
    }
    if (m.Recurrencia() < 1 || antes->Recurrencia()->ID() < 1) {
      return Rechazo(ctx, "realizar", fmt::format("el movimiento {} no está agendado", *id));
    }

    auto fachada = AbrirFachada(ctx);
    bool ultima = false;
    if (!fachada->DarRealizadaFechaAgenda(*id, ultima)) {
      return Rechazo(ctx, "realizar",
                     fmt::format("no se registró la ocurrencia del movimiento {}", *id));
    }

    const auto despues = MovimientoGuardado(ctx, *id);
    if (!despues) return Rechazo(ctx, "realizar", NoExiste(*id));
    std::vector<clsMFTipo> grupo;
    const GrupoVinculado vinculados = fachada->GrupoEnOrden(*id);
    for (const MiembroGrupo& v : vinculados.miembros) {
      if (vinculados.id != *id || v.id == *id) continue;
      if (auto mf = MovimientoGuardado(ctx, v.id)) grupo.push_back(std::move(*mf));
    }
    if (ctx.json()) {
      Json r = Situacion(*despues);
      r["UltimaOcurrencia"] = ultima;
      Json vinculados = Json::array();
      for (const clsMFTipo& mf : grupo) vinculados.push_back(Situacion(mf));
      r["Vinculados"] = std::move(vinculados);
      ctx.PrintJson(r);
    } else {
      ctx.out() << "Ocurrencia registrada. Movimiento " << *id << ": " << SituacionTexto(*despues)
                << ".\n";
      for (const clsMFTipo& mf : grupo) {
        ctx.out() << "  Vinculado " << mf.MovFrecuente()->ID() << ": " << SituacionTexto(mf)
                  << ".\n";
      }
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"realizar", "Da por realizada la ocurrencia actual de un movimiento agendado", 50, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
