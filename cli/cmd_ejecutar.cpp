// movfrec ejecutar [--hasta F]: the main job. Every scheduled entry and voucher of the company
// due on or before F (default today), missed occurrences included, becomes a posted document and
// its schedule advances; see kivmovfrec/ejecucion.h for what succeeds and what fails.
//
// Each occurrence's line is written and flushed as soon as it finishes, so a run that is killed
// leaves the log of what it did (with --json the array is written element by element). On a
// terminal, stderr also shows the progress "n/N" on one line that is rewritten; it never enters
// the output. A run that stops because the database cannot be used says so once on stderr.
// Exit status 1 when an occurrence could not be executed (it stays due, nothing of it written)
// or the run stopped; an occurrence another run had already done is not a failure.
//
// With --simular it is the dry run (clsMovFrecuente::SimularVencidos, kivmovfrec/simulacion.h):
// the same occurrences computed the same way, written and rolled back, printed at the end with
// each document's lines (account, debit, credit); nothing stays written. The exit status is the
// one the real run would give.
#include <unistd.h>

#include <iostream>
#include <map>
#include <memory>
#include <ostream>
#include <string>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "kivmovfrec/simulacion.h"
#include "kivmovfrec/vb.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

std::string Importe(double v) {
  return vb::Format(Variant(v), "#,##0.00");
}

std::string Clase(int16_t tipo) {
  return tipo == 2 ? "comprobante" : "asiento";
}

std::string Documentos(const OcurrenciaEjecutada& o) {
  std::string out;
  for (const DocumentoGenerado& d : o.documentos) {
    if (!out.empty()) out += "; ";
    const std::string origen =
        d.movimiento == o.movimiento ? "" : fmt::format(" del movimiento {}", d.movimiento);
    if (o.estado == EstadoOcurrencia::YaGenerada) {
      out += fmt::format("{} {}{}", Clase(d.tipo), d.id, origen);
    } else {
      out += d.id == 0
                 ? fmt::format("sin importes{}: nada que asentar", origen)
                 : fmt::format("{} {}{} por {}", Clase(d.tipo), d.id, origen, Importe(d.total));
    }
  }
  return out;
}

std::string Resultado(const OcurrenciaEjecutada& o) {
  switch (o.estado) {
    case EstadoOcurrencia::Ejecutada:
      return Documentos(o) + (o.terminada ? " (última ocurrencia)" : "");
    case EstadoOcurrencia::YaGenerada:
      return "ya generado: " + Documentos(o) + "; la agenda avanza" +
             (o.terminada ? " (última ocurrencia)" : "");
    case EstadoOcurrencia::HechaEnOtraParte:
      return "hecho en otra ejecución: " + o.detalle;
    case EstadoOcurrencia::Fallida:
      break;
  }
  return "no ejecutado: " + o.error;
}

const char* EstadoOcurrenciaTexto(EstadoOcurrencia e) {
  switch (e) {
    case EstadoOcurrencia::Ejecutada:
      return "ejecutada";
    case EstadoOcurrencia::YaGenerada:
      return "ya generada";
    case EstadoOcurrencia::HechaEnOtraParte:
      return "hecha en otra ejecución";
    case EstadoOcurrencia::Fallida:
      break;
  }
  return "fallida";
}

Json ComoJson(const OcurrenciaEjecutada& o) {
  Json docs = Json::array();
  const bool hallados = o.estado == EstadoOcurrencia::YaGenerada;
  for (const DocumentoGenerado& d : o.documentos) {
    docs.push_back({{"Movimiento", d.movimiento},
                    {"Tipo", d.tipo},
                    {"Documento", d.id == 0 ? Json(nullptr) : Json(d.id)},
                    {"Total", hallados ? Json(nullptr) : Json(d.total)}});
  }
  return {{"ID", o.movimiento},
          {"Nombre", o.nombre},
          {"Fecha", FechaTexto(o.fecha)},
          {"Estado", EstadoOcurrenciaTexto(o.estado)},
          {"Ok", o.ok()},
          {"UltimaOcurrencia", o.terminada},
          {"Documentos", std::move(docs)},
          {"Detalle", o.detalle.empty() ? Json(nullptr) : Json(o.detalle)},
          {"Error", o.ok() ? Json(nullptr) : ErrorJson(std::nullopt, "movfrec ejecutar", o.error)}};
}

Json LineaJson(const LineaDocumento& l) {
  return {{"Cuenta", l.cuenta},
          {"Codigo", l.codigo},
          {"NombreCuenta", l.nombre_cuenta},
          {"Proyecto", l.proyecto == 0 ? Json(nullptr) : Json(l.proyecto)},
          {"Departamento", l.departamento == 0 ? Json(nullptr) : Json(l.departamento)},
          {"Debe", l.debe},
          {"Haber", l.haber},
          {"ImporteCuenta", l.importe_cuenta},
          {"Detalle", l.detalle.empty() ? Json(nullptr) : Json(l.detalle)}};
}

Json SimuladoJson(const DocumentoSimulado& d) {
  Json lineas = Json::array();
  for (const LineaDocumento& l : d.lineas) lineas.push_back(LineaJson(l));
  return {{"Movimiento", d.movimiento},
          {"Tipo", d.tipo},
          {"Documento", d.id},
          {"Fecha", FechaTexto(d.fecha)},
          {"Modalidad", d.modalidad},
          {"Leyenda", d.leyenda},
          {"Estado", d.estado},
          {"Moneda", d.tipo == 2 ? Json(d.moneda) : Json(nullptr)},
          {"Ente", d.ente == 0 ? Json(nullptr) : Json(d.ente)},
          {"Debe", d.debe},
          {"Haber", d.haber},
          {"Lineas", std::move(lineas)}};
}

void ImprimirSimulado(std::ostream& out, const DocumentoSimulado& d) {
  out << fmt::format("    {} {} del {}: {} (Debe {}, Haber {})\n", Clase(d.tipo), d.id,
                     FechaTexto(d.fecha), d.leyenda, Importe(d.debe), Importe(d.haber));
  for (const LineaDocumento& l : d.lineas) {
    out << fmt::format("      {:<12} {:<32} {:>16} {:>16}{}\n", l.codigo, l.nombre_cuenta,
                       l.debe != 0 ? Importe(l.debe) : "", l.haber != 0 ? Importe(l.haber) : "",
                       l.detalle.empty() ? "" : "  " + l.detalle);
  }
}

// The dry run: everything is printed at the end, since nothing of it lasts.
int Simular(Context& ctx, clsMovFrecuente& fachada, Date limite) {
  const ResultadoSimulacion r = fachada.SimularVencidos(limite);
  std::map<EstadoOcurrencia, size_t> por_estado;
  int documentos = 0;
  Json todo = Json::array();
  for (const OcurrenciaSimulada& s : r.ocurrencias) {
    const OcurrenciaEjecutada& o = s.ocurrencia;
    ++por_estado[o.estado];
    if (o.estado == EstadoOcurrencia::Ejecutada)
      documentos += static_cast<int>(s.documentos.size());
    if (ctx.json()) {
      Json j = ComoJson(o);
      Json docs = Json::array();
      for (const DocumentoSimulado& d : s.documentos) docs.push_back(SimuladoJson(d));
      j["DocumentosSimulados"] = std::move(docs);
      todo.push_back(std::move(j));
      continue;
    }
    ctx.out() << FechaTexto(o.fecha) << "  " << o.movimiento << " " << o.nombre << ": "
              << Resultado(o) << "\n";
    if (o.estado != EstadoOcurrencia::Ejecutada) continue;
    for (const DocumentoSimulado& d : s.documentos) ImprimirSimulado(ctx.out(), d);
  }
  if (ctx.json()) {
    ctx.PrintJson(todo);
  } else {
    ctx.out() << fmt::format(
        "Simulación hasta el {}: {} ocurrencias, {} se ejecutarían, {} ya generadas, {} hechas en "
        "otra ejecución, {} con error; {} documentos. No se escribió nada.\n",
        FechaTexto(limite), r.ocurrencias.size(), por_estado[EstadoOcurrencia::Ejecutada],
        por_estado[EstadoOcurrencia::YaGenerada], por_estado[EstadoOcurrencia::HechaEnOtraParte],
        por_estado[EstadoOcurrencia::Fallida], documentos);
  }
  ctx.out().flush();
  if (!r.completa()) return Rechazo(ctx, "ejecutar", "la simulación se detuvo: " + r.detenida);
  return por_estado[EstadoOcurrencia::Fallida] == 0 ? kExitOk : kExitFailed;
}

// The progress line, on a terminal only: rewritten in place, cleared at the end.
class Progreso {
 public:
  explicit Progreso(Context& ctx) : err_(ctx.err()) {
    activo_ = &ctx.err() == &std::cerr && ::isatty(STDERR_FILENO) == 1;
  }
  void Mostrar(const ProgresoEjecucion& p) {
    if (!activo_) return;
    err_ << "\r" << p.terminadas << "/" << p.conocidas << std::flush;
    mostrado_ = true;
  }
  void Borrar() {
    if (mostrado_) err_ << "\r\033[K" << std::flush;
    mostrado_ = false;
  }

 private:
  std::ostream& err_;
  bool activo_ = false;
  bool mostrado_ = false;
};

Action Setup(CLI::App& app) {
  auto hasta = std::make_shared<std::string>();
  OpcionFecha(app, "--hasta", *hasta,
              "Ejecuta lo vencido hasta esta fecha inclusive (dd/mm/aaaa o aaaa-mm-dd; por "
              "omisión, hoy)");
  auto simular = std::make_shared<bool>(false);
  app.add_flag("--simular", *simular,
               "Muestra los documentos que se generarían, con sus líneas, sin escribir nada");
  return [hasta, simular](Context& ctx) {
    const Date limite = hasta->empty() ? ctx.services().clock->Today() : ParseFecha(*hasta).value();
    auto fachada = AbrirFachada(ctx);
    if (*simular) return Simular(ctx, *fachada, limite);
    Progreso progreso(ctx);
    std::map<EstadoOcurrencia, size_t> por_estado;
    int documentos = 0;
    if (ctx.json()) {
      ctx.SalidaJsonIniciada();
      ctx.out() << "[" << std::flush;
    }
    const auto al_terminar = [&](const OcurrenciaEjecutada& o, const ProgresoEjecucion& p) {
      ++por_estado[o.estado];
      if (o.estado == EstadoOcurrencia::Ejecutada) {
        for (const auto& d : o.documentos) documentos += d.id != 0;
      }
      progreso.Borrar();
      if (ctx.json()) {
        ctx.out() << (p.terminadas > 1 ? ",\n" : "\n")
                  << ComoJson(o).dump(2, ' ', false, Json::error_handler_t::replace);
      } else {
        ctx.out() << FechaTexto(o.fecha) << "  " << o.movimiento << " " << o.nombre << ": "
                  << Resultado(o) << "\n";
      }
      ctx.out().flush();
      progreso.Mostrar(p);
    };
    const ResultadoEjecucion r = fachada->EjecutarVencidos(limite, al_terminar);
    progreso.Borrar();
    if (ctx.json()) {
      ctx.out() << (r.ocurrencias.empty() ? "]\n" : "\n]\n");
    } else {
      ctx.out() << fmt::format(
          "{} ocurrencias hasta el {}: {} ejecutadas, {} ya generadas, {} hechas en otra "
          "ejecución, {} con error; {} documentos.\n",
          r.ocurrencias.size(), FechaTexto(limite), por_estado[EstadoOcurrencia::Ejecutada],
          por_estado[EstadoOcurrencia::YaGenerada], por_estado[EstadoOcurrencia::HechaEnOtraParte],
          por_estado[EstadoOcurrencia::Fallida], documentos);
    }
    ctx.out().flush();
    if (!r.completa()) return Rechazo(ctx, "ejecutar", "se detuvo: " + r.detenida);
    return por_estado[EstadoOcurrencia::Fallida] == 0 ? kExitOk : kExitFailed;
  };
}

const bool registered = RegisterCommand(
    {"ejecutar",
     "Ejecuta lo vencido: genera los asientos y comprobantes agendados y avanza sus agendas", 55,
     Setup});

}  // namespace
}  // namespace kivmovfrec::cli
