// movfrec pronostico [--cuentas C,...] [--desde F] --hasta F [--por dia|semana|mes] [--csv]:
// the balances of accounts by period, from the posted entries plus every occurrence the main job
// would post up to F (clsMovFrecuente::PronosticarSaldos, kivmovfrec/simulacion.h). Nothing is
// written. Accounts are typed by code, name or number; by default, every account the pending
// entries and vouchers name.
//
// Text: a table per account (period, opening balance, inflows, outflows, closing balance), then
// the notices and task lists due in the range and the occurrences the real run would refuse.
// --json: one object with all of that. --csv: one row per account and period (dates
// aaaa-mm-dd, amounts with a decimal point); the notices and refused occurrences then go to
// stderr, one line each, so the output stays one table. Exit 1 when the request is refused or
// the dry run behind the figures stopped.
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "args.h"
#include "command.h"
#include "fachada.h"
#include "kivmovfrec/simulacion.h"
#include "kivmovfrec/vb.h"
#include "movement_json.h"
#include "output.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

struct Args {
  std::string cuentas, desde, hasta, por = "mes";
  bool csv = false;
};

std::string Importe(double v) {
  return vb::Format(Variant(v), "#,##0.00");
}

std::string Iso(Date d) {
  return vb::Format(Variant(d), "yyyy-mm-dd");
}

// A CSV field: quoted when it holds a separator, a quote or a line break.
std::string Campo(const std::string& s) {
  if (s.find_first_of(",\"\n\r") == std::string::npos) return s;
  std::string out = "\"";
  for (char c : s) out += c == '"' ? std::string("\"\"") : std::string(1, c);
  return out + "\"";
}

std::string Numero(double v) {
  return fmt::format("{:.2f}", v);
}

std::vector<std::string> Lista(const std::string& texto) {
  std::vector<std::string> out;
  std::stringstream ss(texto);
  for (std::string parte; std::getline(ss, parte, ',');) {
    if (!parte.empty()) out.push_back(parte);
  }
  return out;
}

std::string Recordatorio(const RecordatorioPronostico& r) {
  return fmt::format("{}  {} {}: {}", FechaTexto(r.fecha), NombreTipoMovFrec(r.tipo), r.movimiento,
                     r.nombre);
}

std::string Fallida(const OcurrenciaEjecutada& o) {
  return fmt::format("{}  {} {}: {}", FechaTexto(o.fecha), o.movimiento, o.nombre, o.error);
}

Json ComoJson(const ResultadoPronostico& r, const std::string& por) {
  Json cuentas = Json::array();
  for (const CuentaPronostico& c : r.cuentas) {
    Json periodos = Json::array();
    for (const SaldoPeriodo& p : c.periodos) {
      periodos.push_back({{"Desde", FechaTexto(p.desde)},
                          {"Hasta", FechaTexto(p.hasta)},
                          {"SaldoInicial", p.apertura},
                          {"Entradas", p.entradas},
                          {"Salidas", p.salidas},
                          {"SaldoFinal", p.cierre}});
    }
    cuentas.push_back({{"Cuenta", c.cuenta},
                       {"Codigo", c.codigo},
                       {"Nombre", c.nombre},
                       {"Periodos", std::move(periodos)}});
  }
  Json recordatorios = Json::array();
  for (const RecordatorioPronostico& x : r.recordatorios) {
    recordatorios.push_back({{"Fecha", FechaTexto(x.fecha)},
                             {"ID", x.movimiento},
                             {"Tipo", x.tipo},
                             {"Nombre", x.nombre}});
  }
  Json fallidas = Json::array();
  for (const OcurrenciaEjecutada& o : r.fallidas) {
    fallidas.push_back({{"ID", o.movimiento},
                        {"Nombre", o.nombre},
                        {"Fecha", FechaTexto(o.fecha)},
                        {"Error", o.error}});
  }
  return {{"Desde", FechaTexto(r.desde)},
          {"Hasta", FechaTexto(r.hasta)},
          {"Por", por},
          {"Cuentas", std::move(cuentas)},
          {"Recordatorios", recordatorios},
          {"NoEjecutables", fallidas},
          {"PorSimulacion", r.por_simulacion}};
}

// Why the figures took the slow way, the dry run of the main job.
std::string PorSimulacion(const ResultadoPronostico& r) {
  return "Calculado con la simulación de la corrida: " + r.por_simulacion + ".";
}

void Csv(std::ostream& out, std::ostream& err, const ResultadoPronostico& r) {
  out << "Cuenta,Codigo,Nombre,Desde,Hasta,SaldoInicial,Entradas,Salidas,SaldoFinal\n";
  for (const CuentaPronostico& c : r.cuentas) {
    for (const SaldoPeriodo& p : c.periodos) {
      out << c.cuenta << ',' << Campo(c.codigo) << ',' << Campo(c.nombre) << ',' << Iso(p.desde)
          << ',' << Iso(p.hasta) << ',' << Numero(p.apertura) << ',' << Numero(p.entradas) << ','
          << Numero(p.salidas) << ',' << Numero(p.cierre) << '\n';
    }
  }
  for (const auto& x : r.recordatorios) err << "recordatorio: " << Recordatorio(x) << "\n";
  for (const auto& o : r.fallidas) err << "no se ejecutaría: " << Fallida(o) << "\n";
  if (!r.por_simulacion.empty()) err << PorSimulacion(r) << "\n";
}

void Texto(std::ostream& out, const ResultadoPronostico& r) {
  out << fmt::format("Pronóstico del {} al {}\n", FechaTexto(r.desde), FechaTexto(r.hasta));
  for (const CuentaPronostico& c : r.cuentas) {
    out << fmt::format("\nCuenta {} {}\n", c.codigo, c.nombre);
    TextTable t{{"Período", "Saldo inicial", "Entradas", "Salidas", "Saldo final"},
                {},
                {false, true, true, true, true}};
    for (const SaldoPeriodo& p : c.periodos) {
      t.rows.push_back({p.desde == p.hasta ? FechaTexto(p.desde)
                                           : FechaTexto(p.desde) + " - " + FechaTexto(p.hasta),
                        Importe(p.apertura), Importe(p.entradas), Importe(p.salidas),
                        Importe(p.cierre)});
    }
    t.Print(out);
  }
  if (!r.recordatorios.empty()) {
    out << "\nAvisos y listas de tareas (no mueven dinero):\n";
    for (const auto& x : r.recordatorios) out << "  " << Recordatorio(x) << "\n";
  }
  if (!r.fallidas.empty()) {
    out << "\nNo se ejecutarían (fuera de las cifras):\n";
    for (const auto& o : r.fallidas) out << "  " << Fallida(o) << "\n";
  }
  if (!r.por_simulacion.empty()) out << "\n" << PorSimulacion(r) << "\n";
}

Action Setup(CLI::App& app) {
  auto a = std::make_shared<Args>();
  app.add_option("--cuentas", a->cuentas,
                 "Cuentas separadas por comas, por código, nombre o número (por omisión, las "
                 "que usan los movimientos agendados)");
  OpcionFecha(app, "--desde", a->desde, "Primer día (por omisión, hoy)");
  OpcionFecha(app, "--hasta", a->hasta, "Último día, inclusive")->required();
  app.add_option("--por", a->por, "Período: dia, semana o mes (por omisión, mes)");
  app.add_flag("--csv", a->csv, "Escribe una tabla CSV");
  return [a](Context& ctx) {
    SolicitudPronostico s;
    if (a->por == "dia" || a->por == "día") {
      s.por = PeriodoPronostico::Dia;
    } else if (a->por == "semana") {
      s.por = PeriodoPronostico::Semana;
    } else if (a->por != "mes") {
      throw UsageError("--por debe ser dia, semana o mes");
    }
    if (a->csv && ctx.json()) throw UsageError("--csv y --json no pueden ir juntas");
    s.cuentas = Lista(a->cuentas);
    if (!a->desde.empty()) s.desde = ParseFecha(a->desde);
    s.hasta = ParseFecha(a->hasta).value();
    auto fachada = AbrirFachada(ctx);
    const ResultadoPronostico r = fachada->PronosticarSaldos(s);
    if (!r.rechazo.empty()) return Rechazo(ctx, "pronostico", r.rechazo);
    if (!r.detenida.empty()) return Rechazo(ctx, "pronostico", "se detuvo: " + r.detenida);
    if (ctx.json()) {
      ctx.PrintJson(ComoJson(r, a->por == "día" ? "dia" : a->por));
    } else if (a->csv) {
      Csv(ctx.out(), ctx.err(), r);
    } else {
      Texto(ctx.out(), r);
    }
    return kExitOk;
  };
}

const bool registered = RegisterCommand(
    {"pronostico",
     "Pronostica los saldos de las cuentas por período con lo que ejecutaría la tarea principal",
     56, Setup});

}  // namespace
}  // namespace kivmovfrec::cli
