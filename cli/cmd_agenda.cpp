// movfrec agenda [--desde F] [--hasta F] [--importes] [--ics ARCHIVO]: every due date and notice
// date in a range, for every pending scheduled movement, notice and task list of the company
// (clsMovFrecuente::Agenda, kivmovfrec/agenda.h). With --importes each due date of an entry or
// voucher shows the debit total it would post, or "Error" when a formula has no result; JSON
// adds the lines' amounts. Schedules the library could not step are named on stderr. The
// iCalendar file has one event per due date, its notice as the event's alarm.
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "icalendar.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/traza_fx.h"
#include "kivmovfrec/vb.h"
#include "movement_json.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

struct Args {
  std::string desde, hasta, ics;
  bool importes = false;
};

std::string EventoTexto(const OcurrenciaAgenda& e) {
  return e.aviso ? "Notificación" : "Vencimiento";
}

Json EventoJson(const OcurrenciaAgenda& e) {
  return {{"Fecha", FechaTexto(e.fecha)},
          {"Evento", EventoTexto(e)},
          {"ID", e.movimiento},
          {"Tipo", e.tipo},
          {"Nombre", e.nombre},
          {"NumOcurrencia", e.ocurrencia},
          {"FechaVencimiento", FechaTexto(e.vencimiento)}};
}

// What names the database in the events' UIDs: the SQLite file's absolute path, or the
// PostgreSQL server and database without the user, the password or the parameters, so that a
// changed password or another working folder keeps every UID.
std::string IdentidadBase(const std::string& uri) {
  if (uri.starts_with("sqlite:") && uri != "sqlite::memory:") {
    std::error_code ec;
    const std::filesystem::path ruta = std::filesystem::weakly_canonical(uri.substr(7), ec);
    return "sqlite:" + (ec ? uri.substr(7) : ruta.string());
  }
  std::string resto = uri;
  if (const size_t esquema = resto.find("://"); esquema != std::string::npos) {
    const size_t arroba = resto.find('@', esquema + 3);
    const size_t barra = resto.find('/', esquema + 3);
    if (arroba != std::string::npos && (barra == std::string::npos || arroba < barra)) {
      resto.erase(esquema + 3, arroba + 1 - (esquema + 3));
    }
  }
  return resto.substr(0, resto.find('?'));
}

// One event per due date (the agenda lists a notified one twice, on its notice date and on its
// due date; either may fall outside the range): the event starts at the due date, and its notice
// is the event's alarm.
std::vector<EventoIcs> EventosCalendario(const std::vector<OcurrenciaAgenda>& agenda,
                                         int32_t empresa, const std::string& base) {
  std::vector<EventoIcs> eventos;
  std::set<std::string> vistos;
  for (const OcurrenciaAgenda& e : agenda) {
    EventoIcs ics;
    ics.uid = UidVencimiento(e.movimiento, e.vencimiento, empresa, base);
    if (!vistos.insert(ics.uid).second) continue;
    ics.inicio = e.vencimiento;
    ics.resumen = fmt::format("Vencimiento: {}", e.nombre);
    ics.descripcion = e.memo;
    if (!ics.descripcion.empty()) ics.descripcion += "\n";
    ics.descripcion +=
        fmt::format("{} {}, ocurrencia {}", NombreTipoMovFrec(e.tipo), e.movimiento, e.ocurrencia);
    ics.alarma = e.notificacion;
    ics.alarma_texto =
        fmt::format("Notificación: {} (vence el {})", e.nombre, FechaTexto(e.vencimiento));
    eventos.push_back(std::move(ics));
  }
  return eventos;
}

// The items of the task list an occurrence belongs to, as to-dos due with it. Items in the bin
// stay out; an item is shown done only on its list's current occurrence (marking an occurrence
// done sets every item done, so later occurrences start open).
void TareasDeLista(const OcurrenciaAgenda& e, const ListaTareas& lista, int32_t empresa,
                   std::vector<TareaIcs>& tareas) {
  for (const ItemListaTareas& it : lista.items) {
    if (it.en_papelera && !it.realizado) continue;
    TareaIcs t;
    t.uid =
        fmt::format("it{}-mf{}-{}-e{}@movfrec.kivmovfrec", it.id, lista.id, e.ocurrencia, empresa);
    t.vence = e.fecha;
    t.resumen = it.nombre;
    t.descripcion = it.comentario;
    if (!t.descripcion.empty()) t.descripcion += "\n";
    t.descripcion += fmt::format("Lista de tareas {}: {}", lista.id, lista.nombre);
    if (it.precede != 0) t.descripcion += fmt::format("; precede a {}", it.precede_nombre);
    t.prioridad = 2 * it.importancia - 1;  // importance 1..5 onto PRIORITY 1, 3, 5, 7, 9
    t.completada = it.realizado && e.ocurrencia == lista.num_ocurrencia;
    tareas.push_back(std::move(t));
  }
}

Json ImportesJson(const ImportesAgenda& r) {
  Json renglones = Json::array();
  for (const TrazaLineaFx& l : r.traza.lineas) {
    renglones.push_back({{"Orden", l.indice},
                         {"Cuenta", l.cuenta},
                         {"CuentaCodigo", l.cuenta_codigo},
                         {"AlDebe", l.al_debe},
                         {"ImporteMF", l.ok ? Json(l.importe_mf) : Json(nullptr)},
                         {"ImporteCta", l.ok ? Json(l.importe_cta) : Json(nullptr)}});
  }
  return {
      {"Ok", r.ok},
      {"FechaCalculo", FechaTexto(r.traza.fecha)},
      {"TotalDebe", r.ok ? Json(r.traza.total_debe) : Json(nullptr)},
      {"TotalHaber", r.ok ? Json(r.traza.total_haber) : Json(nullptr)},
      {"Error", r.ok ? Json(nullptr) : ErrorJson(std::nullopt, "movfrec agenda", r.traza.error)},
      {"Renglones", std::move(renglones)}};
}

Date Fecha(const std::string& texto) {
  // Validated by FechaValida when parsed.
  return *ParseFecha(texto);
}

Action Setup(CLI::App& app) {
  auto args = std::make_shared<Args>();
  OpcionFecha(app, "--desde", args->desde, "Primer día (hoy si falta)");
  OpcionFecha(app, "--hasta", args->hasta, "Último día (30 días después de --desde si falta)");
  app.add_option("--ics", args->ics, "Escribe también un archivo iCalendar")->type_name("ARCHIVO");
  app.add_flag("--importes", args->importes,
               "Calcula los importes de cada vencimiento de asientos y comprobantes a su fecha");
  app.footer(
      "Lista los vencimientos y las fechas de notificación de los movimientos, avisos y\n"
      "listas de tareas agendados en proceso, desde su próximo vencimiento en adelante. Las\n"
      "fechas se escriben dd/mm/aaaa o aaaa-mm-dd.");
  return [args](Context& ctx) {
    const Date hoy = vb::DateOnly(ctx.services().clock->Today());
    const Date desde = args->desde.empty() ? hoy : Fecha(args->desde);
    const Date hasta = args->hasta.empty() ? Date{desde.serial + 30} : Fecha(args->hasta);
    if (hasta < desde) {
      throw UsageError(fmt::format("--hasta ({}) es anterior a --desde ({})", FechaTexto(hasta),
                                   FechaTexto(desde)));
    }

    auto fachada = AbrirFachada(ctx);
    const ResultadoAgenda agenda = fachada->Agenda(desde, hasta, args->importes);
    for (const std::string& omitido : agenda.omitidos) {
      ctx.err() << "movfrec agenda: " << omitido << "; se omite\n";
    }
    const std::vector<OcurrenciaAgenda>& eventos = agenda.ocurrencias;
    if (!args->ics.empty()) {
      const std::vector<EventoIcs> ics =
          EventosCalendario(eventos, ctx.options().empresa, IdentidadBase(ctx.options().db));
      std::vector<TareaIcs> tareas;
      std::map<int32_t, std::optional<ListaTareas>> listas;
      for (const OcurrenciaAgenda& e : eventos) {
        if (e.aviso || e.tipo != ToInt(enuTipoMovFrec::CheckList)) continue;
        auto [lista, nueva] = listas.try_emplace(e.movimiento);
        if (nueva) lista->second = fachada->CargarListaTareas(e.movimiento);
        if (lista->second) TareasDeLista(e, *lista->second, ctx.options().empresa, tareas);
      }
      std::ofstream out(args->ics, std::ios::binary | std::ios::trunc);
      out << Calendario(ics, SelloUtcAhora(), tareas);
      out.close();
      if (!out) return Rechazo(ctx, "agenda", "no se pudo escribir el archivo " + args->ics);
    }

    if (ctx.json()) {
      Json lista = Json::array();
      for (const OcurrenciaAgenda& e : eventos) {
        Json j = EventoJson(e);
        if (e.importes) j["Importes"] = ImportesJson(*e.importes);
        lista.push_back(std::move(j));
      }
      ctx.PrintJson(lista);
    } else if (eventos.empty()) {
      ctx.out() << "No hay vencimientos ni avisos entre el " << FechaTexto(desde) << " y el "
                << FechaTexto(hasta) << ".\n";
    } else {
      TextTable tabla{{"Fecha", "Evento", "ID", "Tipo", "Nombre", "Ocurrencia", "Vence"},
                      {},
                      {false, false, true, false, false, true, false, true}};
      if (args->importes) tabla.headers.push_back("Importe");
      for (const OcurrenciaAgenda& e : eventos) {
        tabla.rows.push_back({FechaTexto(e.fecha), EventoTexto(e), std::to_string(e.movimiento),
                              NombreTipoMovFrec(e.tipo), e.nombre, std::to_string(e.ocurrencia),
                              e.aviso ? FechaTexto(e.vencimiento) : ""});
        if (!args->importes) continue;
        std::string importe;
        if (e.importes) {
          importe = e.importes->ok ? vb::Format(Variant(e.importes->traza.total_debe), "#,##0.00")
                                   : "Error";
        }
        tabla.rows.back().push_back(importe);
      }
      tabla.Print(ctx.out());
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"agenda", "Vencimientos y notificaciones de un período (--desde, --hasta, --ics)", 60, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
