// movfrec tareas listar | realizar ID | papelera ID: the company's task lists with their items,
// and the two state operations of the façade (CheckListDarPorRealizado, CheckListAPapelera),
// which ask their question through the console (--responder answers it).
#include <memory>
#include <optional>
#include <ostream>
#include <string>

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

std::string Fecha(const std::optional<Date>& d) {
  return d ? FechaTexto(*d) : "";
}

Json FechaJson(const std::optional<Date>& d) {
  return d ? Json(FechaTexto(*d)) : Json(nullptr);
}

int EstadoItem(const ItemListaTareas& it) {
  return it.realizado ? 1 : it.en_papelera ? 9 : 0;
}

Json ListaJson(const ListaTareas& l) {
  Json items = Json::array();
  for (const ItemListaTareas& it : l.items) {
    items.push_back({{"ID", it.id},
                     {"Nombre", it.nombre},
                     {"Comentario", it.comentario},
                     {"Importancia", it.importancia},
                     {"Precede", it.precede == 0 ? Json(nullptr) : Json(it.precede)},
                     {"PrecedeNombre", it.precede == 0 ? Json(nullptr) : Json(it.precede_nombre)},
                     {"Estado", EstadoItem(it)}});
  }
  return {{"ID", l.id},
          {"Nombre", l.nombre},
          {"Comentario", l.comentario},
          {"Estado", l.estado},
          {"Frecuencia", l.frecuencia},
          {"FechaProxima", FechaJson(l.vencimiento)},
          {"FechaNotificacion", FechaJson(l.notificar)},
          {"FechaFinal", FechaJson(l.hasta)},
          {"NumOcurrencia", l.num_ocurrencia},
          {"Postergado", l.postergado},
          {"Items", std::move(items)}};
}

void ImprimirLista(std::ostream& out, const ListaTareas& l) {
  out << "Lista " << l.id << ": " << l.nombre << " (" << NombreEstadoMF(l.estado) << ")";
  if (l.vencimiento) out << ", vence " << Fecha(l.vencimiento);
  out << ", ocurrencia " << l.num_ocurrencia;
  if (l.hasta) out << ", última fecha " << Fecha(l.hasta);
  out << "\n";
  if (l.items.empty()) out << "  (sin ítems)\n";
  for (const ItemListaTareas& it : l.items) {
    const char* marca = it.en_papelera && !it.realizado ? "[papelera]"
                        : it.realizado                  ? "[x]"
                                                        : "[ ]";
    out << "  " << marca << " " << it.nombre << " (importancia " << it.importancia << ")";
    if (it.precede != 0) out << ", precede a " << it.precede << " " << it.precede_nombre;
    out << "\n";
  }
}

int Listar(Context& ctx) {
  auto fachada = AbrirFachada(ctx);
  const auto listas = fachada->ListasTareas();
  if (ctx.json()) {
    Json r = Json::array();
    for (const ListaTareas& l : listas) r.push_back(ListaJson(l));
    ctx.PrintJson(r);
  } else if (listas.empty()) {
    ctx.out() << "No hay listas de tareas.\n";
  } else {
    for (const ListaTareas& l : listas) ImprimirLista(ctx.out(), l);
  }
  return kExitOk;
}

// realizar / papelera: the member, then the list as it stands.
int CambiarEstado(Context& ctx, int32_t id, bool realizar) {
  const std::string comando = realizar ? "tareas realizar" : "tareas papelera";
  auto fachada = AbrirFachada(ctx);
  const auto antes = fachada->CargarListaTareas(id);
  if (!antes) return Rechazo(ctx, comando, fmt::format("no existe la lista de tareas {}", id));
  if (realizar && antes->estado != 0) {
    return Rechazo(ctx, comando,
                   fmt::format("la lista de tareas {} no está en proceso (estado {} {})", id,
                               antes->estado, NombreEstadoMF(antes->estado)));
  }
  const bool hecho =
      realizar ? fachada->CheckListDarPorRealizado(id) : fachada->CheckListAPapelera(id);
  if (!hecho) {
    const std::string motivo = fachada->UltimoError().empty()
                                   ? "no se confirmó o el usuario no tiene derechos"
                                   : fachada->UltimoError();
    return Rechazo(ctx, comando, fmt::format("no se cambió la lista de tareas {}: {}", id, motivo));
  }
  const auto despues = fachada->CargarListaTareas(id);
  if (!despues) return Rechazo(ctx, comando, fmt::format("no existe la lista de tareas {}", id));
  if (ctx.json()) {
    ctx.PrintJson(ListaJson(*despues));
  } else {
    ctx.out() << (realizar ? "Lista de tareas cumplida.\n" : "Lista de tareas en la papelera.\n");
    ImprimirLista(ctx.out(), *despues);
  }
  return kExitOk;
}

Action Setup(CLI::App& app) {
  auto id = std::make_shared<int32_t>(0);
  CLI::App* listar = app.add_subcommand("listar", "Las listas de tareas de la empresa y sus ítems");
  CLI::App* realizar =
      app.add_subcommand("realizar", "Da por cumplida la ocurrencia actual de una lista");
  realizar->add_option("ID", *id, "Número de la lista de tareas")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  CLI::App* papelera = app.add_subcommand("papelera", "Envía una lista y sus ítems a la papelera");
  papelera->add_option("ID", *id, "Número de la lista de tareas")
      ->required()
      ->check(EnteroEntre(1, INT32_MAX));
  app.require_subcommand(1);
  return [id, listar, realizar](Context& ctx) {
    if (listar->parsed()) return Listar(ctx);
    return CambiarEstado(ctx, *id, realizar->parsed());
  };
}

const bool registered =
    RegisterCommand({"tareas", "Listas de tareas: listar, realizar ID, papelera ID", 55, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
