// movfrec agenda [--desde F] [--hasta F] [--importes] [--ics ARCHIVO]: every due date and notice
// date in a range, for every pending scheduled movement, notice and task list of the company.
// With --importes every due date of an entry or voucher is computed (SetCalculoFormulasMF,
// without prompts) as of that due date: the debit total, or "Error" when a formula has no
// result; JSON adds the lines' amounts. A formula reading the occurrence count
// ([CantidadOcurrencia]) sees the stored count, which belongs to the next due date.
//
// Occurrences are stepped from the stored FechaProxima by the library's rule for the next due
// date and the end of a schedule (schedule::NextOccurrence), the one that marking an occurrence
// done applies, with the calculator the façade uses. The notice of an occurrence falls
// NotificarDias before its due date; the current occurrence's notice is put off by Postergado
// days. Dates before --desde are stepped over, not listed.
#include <algorithm>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "api/avance_agenda.h"
#include "args.h"
#include "command.h"
#include "fachada.h"
#include "icalendar.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/traza_fx.h"
#include "movement_json.h"
#include "output.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "schedule/date_calculator.h"
#include "schedule/next_occurrence.h"
#include "storage/tabla_recurrencias.h"

namespace kivmovfrec::cli {
namespace {

using Json = nlohmann::ordered_json;

// Stepping stops here even for a daily schedule without end over a huge range.
constexpr int kMaxOcurrencias = 100000;

struct Args {
  std::string desde, hasta, ics;
  bool importes = false;
};

// The amounts of one occurrence (agenda --importes).
struct Importes {
  bool ok = false;
  TrazaCalculoFx traza;
};

struct Evento {
  Date fecha;
  bool aviso = false;  // notice date (else due date)
  int32_t id = 0;
  int tipo = 0;
  std::string nombre;
  std::string memo;
  int32_t ocurrencia = 0;
  Date vencimiento;                    // the due date the event belongs to
  std::shared_ptr<Importes> importes;  // --importes, due dates of entries and vouchers
};

struct Agendado {
  int32_t id = 0;
  int tipo = 0;
  std::string nombre;
  std::string memo;
  clsRegRecurrencia rec;
};

std::string Sql(int32_t empresa) {
  return "Select * From genMovimientosFrecuentes Inner Join genRecurrencias On "
         "genRecurrencias.RecID = genMovimientosFrecuentes.MFrRecurrencia Where MFrEmpresa = " +
         std::to_string(empresa) + " And MFrEstado = 0 Order By MFrID";
}

std::vector<Agendado> Leer(Connection& cn, int32_t empresa) {
  std::vector<Agendado> lista;
  auto rs = cn.OpenResultset(Sql(empresa));
  for (; !rs->Eof(); rs->MoveNext()) {
    Agendado a;
    a.id = vb::CLng(rs->Get("MFrID"));
    const Variant tipo = rs->Get("MFrTipo");
    a.tipo = tipo.IsNull() ? 0 : vb::CInt(tipo);
    const Variant nombre = rs->Get("MFrNombre");
    a.nombre = nombre.IsNull() ? "" : vb::CStr(nombre);
    const Variant memo = rs->Get("MFrMemo");
    a.memo = memo.IsNull() ? "" : vb::CStr(memo);
    storage::LeerRecurrencia(*rs, a.rec);
    lista.push_back(std::move(a));
  }
  return lista;
}

// The occurrences of one schedule whose due or notice date falls in [desde, hasta] (by day).
void Ocurrencias(const Agendado& a, Date desde, Date hasta, IDateCalculator& cal,
                 std::vector<Evento>& eventos, std::ostream& err) {
  const clsRegRecurrencia& r = a.rec;
  std::optional<schedule::Schedule> agenda = api::AgendaDe(r);
  if (!agenda) {
    err << fmt::format(
        "movfrec agenda: el movimiento {} tiene una próxima fecha ilegible («{}»); "
        "se omite\n",
        a.id, r.FechaProxima());
    return;
  }
  const double antelacion = r.NotificarDias() > 0 ? r.NotificarDias() : 0.0;
  auto en_rango = [&](Date x) {
    const Date xd = vb::DateOnly(x);
    return xd >= desde && xd <= hasta;
  };

  for (int paso = 0; paso < kMaxOcurrencias; ++paso) {
    const Date d = agenda->due;
    const int32_t n = agenda->occurrence;
    const std::optional<Date> aviso =
        antelacion > 0
            ? std::optional<Date>(Date{d.serial - antelacion + (paso == 0 ? r.Postergado() : 0.0)})
            : std::nullopt;
    if (en_rango(d)) eventos.push_back({d, false, a.id, a.tipo, a.nombre, a.memo, n, d, {}});
    if (aviso && en_rango(*aviso)) {
      eventos.push_back({*aviso, true, a.id, a.tipo, a.nombre, a.memo, n, d, {}});
    }
    if (vb::DateOnly(d) > hasta && (!aviso || vb::DateOnly(*aviso) > hasta)) break;

    schedule::AfterOccurrence siguiente;
    try {
      siguiente = schedule::NextOccurrence(*agenda, cal);
    } catch (const std::exception& e) {
      err << fmt::format(
          "movfrec agenda: el movimiento {} (frecuencia «{}») no tiene un vencimiento calculable "
          "después del {}: {}\n",
          a.id, agenda->code, FechaTexto(d), e.what());
      break;
    }
    if (siguiente.ended) break;
    agenda->due = siguiente.due;
    agenda->occurrence = siguiente.occurrence;
    agenda->count = siguiente.count;
  }
}

std::string EventoTexto(const Evento& e) {
  return e.aviso ? "Notificación" : "Vencimiento";
}

Json EventoJson(const Evento& e) {
  return {{"Fecha", FechaTexto(e.fecha)},
          {"Evento", EventoTexto(e)},
          {"ID", e.id},
          {"Tipo", e.tipo},
          {"Nombre", e.nombre},
          {"NumOcurrencia", e.ocurrencia},
          {"FechaVencimiento", FechaTexto(e.vencimiento)}};
}

EventoIcs EventoCalendario(const Evento& e, int32_t empresa) {
  EventoIcs ics;
  ics.uid = fmt::format("mf{}-{}-{}-e{}@movfrec.kivmovfrec", e.id, e.ocurrencia,
                        e.aviso ? "aviso" : "vto", empresa);
  ics.inicio = e.fecha;
  ics.resumen =
      e.aviso ? fmt::format("Notificación: {} (vence el {})", e.nombre, FechaTexto(e.vencimiento))
              : fmt::format("Vencimiento: {}", e.nombre);
  ics.descripcion = e.memo;
  if (!ics.descripcion.empty()) ics.descripcion += "\n";
  ics.descripcion += fmt::format("{} {}, ocurrencia {}", TipoTexto(e.tipo), e.id, e.ocurrencia);
  return ics;
}

bool TieneImportes(const Evento& e) {
  return !e.aviso && (e.tipo == ToInt(enuTipoMovFrec::Asiento) ||
                      e.tipo == ToInt(enuTipoMovFrec::Comprobante) ||
                      e.tipo == ToInt(enuTipoMovFrec::AsientoSistema));
}

// Computes every due date of an entry or voucher as of that date, without prompts.
void Calcular(Context& ctx, std::vector<Evento>& eventos) {
  auto mf = AbrirFachada(ctx);
  for (Evento& e : eventos) {
    if (!TieneImportes(e)) continue;
    mf->EstructuraMovFrec()->Recurrencia()->FechaProxima(vb::CStr(Variant(e.vencimiento)));
    auto r = std::make_shared<Importes>();
    r->ok = mf->SetCalculoFormulasMF(e.id, true);
    r->traza = mf->UltimaTrazaFx();
    e.importes = std::move(r);
  }
}

Json ImportesJson(const Importes& r) {
  Json renglones = Json::array();
  for (const TrazaLineaFx& l : r.traza.lineas) {
    renglones.push_back({{"Orden", l.indice},
                         {"Cuenta", l.cuenta},
                         {"CuentaCodigo", l.cuenta_codigo},
                         {"AlDebe", l.al_debe},
                         {"ImporteMF", l.ok ? Json(l.importe_mf) : Json(nullptr)},
                         {"ImporteCta", l.ok ? Json(l.importe_cta) : Json(nullptr)}});
  }
  return {{"Ok", r.ok},
          {"FechaCalculo", FechaTexto(r.traza.fecha)},
          {"TotalDebe", r.ok ? Json(r.traza.total_debe) : Json(nullptr)},
          {"TotalHaber", r.ok ? Json(r.traza.total_haber) : Json(nullptr)},
          {"Error", r.traza.error},
          {"Renglones", std::move(renglones)}};
}

Date Fecha(const std::string& texto) {
  // Validated by FechaValida when parsed.
  return *ParseFecha(texto);
}

Action Setup(CLI::App& app) {
  auto args = std::make_shared<Args>();
  app.add_option("--desde", args->desde, "Primer día (hoy si falta)")
      ->type_name("FECHA")
      ->check(FechaValida());
  app.add_option("--hasta", args->hasta, "Último día (30 días después de --desde si falta)")
      ->type_name("FECHA")
      ->check(FechaValida());
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

    // The calculator the façade steps schedules with when an occurrence is marked done.
    schedule::DateCalculator propia;
    IDateCalculator& calculadora =
        ctx.services().calendar ? *ctx.services().calendar : static_cast<IDateCalculator&>(propia);
    std::vector<Evento> eventos;
    for (const Agendado& a : Leer(*ctx.connection(), ctx.options().empresa)) {
      Ocurrencias(a, desde, hasta, calculadora, eventos, ctx.err());
    }
    std::stable_sort(eventos.begin(), eventos.end(), [](const Evento& x, const Evento& y) {
      return std::tuple(x.fecha, x.id, !x.aviso) < std::tuple(y.fecha, y.id, !y.aviso);
    });
    if (args->importes) Calcular(ctx, eventos);

    if (!args->ics.empty()) {
      std::vector<EventoIcs> ics;
      for (const Evento& e : eventos) ics.push_back(EventoCalendario(e, ctx.options().empresa));
      std::ofstream out(args->ics, std::ios::binary | std::ios::trunc);
      out << Calendario(ics, SelloUtcAhora());
      out.close();
      if (!out) return Rechazo(ctx, "agenda", "no se pudo escribir el archivo " + args->ics);
    }

    if (ctx.json()) {
      Json lista = Json::array();
      for (const Evento& e : eventos) {
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
      for (const Evento& e : eventos) {
        tabla.rows.push_back({FechaTexto(e.fecha), EventoTexto(e), std::to_string(e.id),
                              TipoTexto(e.tipo), e.nombre, std::to_string(e.ocurrencia),
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
