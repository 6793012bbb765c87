// movfrec ejecutar [--hasta F]: the main job. Every scheduled entry and voucher of the company
// due on or before F (default today), missed occurrences included, becomes a posted document and
// its schedule advances; see api/ejecucion.h for the rules. Prints one line per occurrence and a
// summary; exit status 1 when any occurrence could not be executed (it stays due for the next
// run, nothing of it written).
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "api/ejecucion.h"
#include "args.h"
#include "command.h"
#include "fachada.h"
#include "output.h"
#include "platform/vb/format.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

std::string Importe(double v) {
  return vb::Format(Variant(v), "#,##0.00");
}

std::string Clase(int16_t tipo) {
  return tipo == 2 ? "comprobante" : "asiento";
}

std::string Documentos(const api::OcurrenciaEjecutada& o) {
  std::string out;
  for (const api::DocumentoGenerado& d : o.documentos) {
    if (!out.empty()) out += "; ";
    const std::string origen =
        d.movimiento == o.movimiento ? "" : fmt::format(" del movimiento {}", d.movimiento);
    out += d.id == 0 ? fmt::format("sin importes{}: nada que asentar", origen)
                     : fmt::format("{} {}{} por {}", Clase(d.tipo), d.id, origen, Importe(d.total));
  }
  return out;
}

Json ComoJson(const api::OcurrenciaEjecutada& o) {
  Json docs = Json::array();
  for (const api::DocumentoGenerado& d : o.documentos) {
    docs.push_back({{"Movimiento", d.movimiento},
                    {"Tipo", d.tipo},
                    {"Documento", d.id == 0 ? Json(nullptr) : Json(d.id)},
                    {"Total", d.total}});
  }
  return {{"ID", o.movimiento},
          {"Nombre", o.nombre},
          {"Fecha", FechaTexto(o.fecha)},
          {"Ejecutada", o.ok()},
          {"UltimaOcurrencia", o.terminada},
          {"Documentos", std::move(docs)},
          {"Error", o.ok() ? Json(nullptr) : Json(o.error)}};
}

Action Setup(CLI::App& app) {
  auto hasta = std::make_shared<std::string>();
  app.add_option("--hasta", *hasta,
                 "Ejecuta lo vencido hasta esta fecha inclusive (dd/mm/aaaa o aaaa-mm-dd; por "
                 "omisión, hoy)")
      ->check(FechaValida());
  return [hasta](Context& ctx) {
    const Date limite = hasta->empty() ? ctx.services().clock->Today() : ParseFecha(*hasta).value();
    auto fachada = AbrirFachada(ctx);
    const auto hechas =
        api::EjecutarVencidos(*fachada, *ctx.connection(), ctx.options().empresa, limite);
    int fallidas = 0, documentos = 0;
    for (const auto& o : hechas) {
      if (!o.ok()) ++fallidas;
      for (const auto& d : o.documentos) documentos += d.id != 0;
    }
    if (ctx.json()) {
      Json lista = Json::array();
      for (const auto& o : hechas) lista.push_back(ComoJson(o));
      ctx.PrintJson(lista);
    } else {
      for (const auto& o : hechas) {
        ctx.out() << FechaTexto(o.fecha) << "  " << o.movimiento << " " << o.nombre << ": "
                  << (o.ok() ? Documentos(o) : "no ejecutado: " + o.error)
                  << (o.ok() && o.terminada ? " (última ocurrencia)" : "") << "\n";
      }
      ctx.out() << fmt::format(
          "{} ocurrencias ejecutadas hasta el {}, {} documentos, {} con error.\n",
          hechas.size() - fallidas, FechaTexto(limite), documentos, fallidas);
    }
    return fallidas == 0 ? kExitOk : kExitFailed;
  };
}

const bool registered = RegisterCommand(
    {"ejecutar",
     "Ejecuta lo vencido: genera los asientos y comprobantes agendados y avanza sus agendas", 55,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
