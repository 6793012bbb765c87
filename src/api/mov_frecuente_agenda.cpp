// clsMovFrecuente's members for hosts that run the schedules: the main job, the agenda and the
// linked group of a movement. The rules live in api/ejecucion.h, schedule/next_occurrence.h and
// api/grupo_vinculado.h; these members only hand them the façade's context.
#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include <fmt/format.h>

#include "api/avance_agenda.h"
#include "api/ejecucion.h"
#include "api/grupo_vinculado.h"
#include "api/pronostico.h"
#include "api/simulacion.h"
#include "formula/funciones_fx.h"
#include "kivmovfrec/mov_frecuente.h"
#include "kivmovfrec/records.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "schedule/next_occurrence.h"
#include "storage/columnas.h"
#include "storage/tabla_recurrencias.h"

namespace kivmovfrec {
namespace {

// Stepping stops here even for a daily schedule without end over a huge range.
constexpr int kMaxOcurrencias = 100000;

struct Agendado {
  int32_t id = 0;
  int16_t tipo = 0;
  std::string nombre;
  std::string memo;
  clsRegRecurrencia rec;
};

// The company's pending movements that have a schedule row, by ID; only notices and task
// lists when `solo_recordatorios`.
std::vector<Agendado> LeerAgendados(Connection& cn, int32_t empresa, bool solo_recordatorios) {
  std::vector<Agendado> lista;
  auto rs = cn.OpenResultset(
      "Select * From genMovimientosFrecuentes Inner Join genRecurrencias On "
      "genRecurrencias.RecID = genMovimientosFrecuentes.MFrRecurrencia Where MFrEmpresa = " +
      std::to_string(empresa) + " And MFrEstado = 0" +
      (solo_recordatorios ? " And MFrTipo In (3, 5)" : "") + " Order By MFrID");
  for (; !rs->Eof(); rs->MoveNext()) {
    Agendado a;
    a.id = vb::CLng(rs->Get("MFrID"));
    const Variant tipo = rs->Get("MFrTipo");
    a.tipo = tipo.IsNull() ? int16_t{0} : vb::CInt(tipo);
    a.nombre = storage::ATexto(rs->Get("MFrNombre"));
    a.memo = storage::ATexto(rs->Get("MFrMemo"));
    storage::LeerRecurrencia(*rs, a.rec);
    lista.push_back(std::move(a));
  }
  return lista;
}

using formula::FechaCorta;

// The occurrences of one schedule whose due or notice date falls in [desde, hasta] (by day).
void Ocurrencias(const Agendado& a, Date desde, Date hasta, IDateCalculator& cal,
                 ResultadoAgenda& r) {
  const clsRegRecurrencia& rec = a.rec;
  std::optional<schedule::Schedule> agenda = api::AgendaDe(rec);
  if (!agenda) {
    r.omitidos.push_back(fmt::format("el movimiento {} tiene una próxima fecha ilegible («{}»)",
                                     a.id, rec.FechaProxima()));
    return;
  }
  const double antelacion = rec.NotificarDias() > 0 ? rec.NotificarDias() : 0.0;
  auto en_rango = [&](Date x) {
    const Date xd = vb::DateOnly(x);
    return xd >= desde && xd <= hasta;
  };
  auto evento = [&](Date fecha, bool aviso, int32_t n, Date vence, std::optional<Date> nota) {
    r.ocurrencias.push_back({fecha, aviso, a.id, a.tipo, a.nombre, a.memo, n, vence, nota, {}});
  };

  for (int paso = 0; paso < kMaxOcurrencias; ++paso) {
    const Date d = agenda->due;
    const int32_t n = agenda->occurrence;
    // A postponement belongs to the current occurrence only.
    const std::optional<Date> aviso =
        antelacion > 0 ? std::optional<Date>(
                             Date{d.serial - antelacion + (paso == 0 ? rec.Postergado() : 0.0)})
                       : std::nullopt;
    if (en_rango(d)) evento(d, false, n, d, aviso);
    if (aviso && en_rango(*aviso)) evento(*aviso, true, n, d, aviso);
    if (vb::DateOnly(d) > hasta && (!aviso || vb::DateOnly(*aviso) > hasta)) break;

    schedule::AfterOccurrence siguiente;
    try {
      siguiente = schedule::NextOccurrence(*agenda, cal);
    } catch (const std::exception& e) {
      r.omitidos.push_back(fmt::format(
          "el movimiento {} (frecuencia «{}») no tiene un vencimiento calculable después del {}: "
          "{}",
          a.id, agenda->code, FechaCorta(d), e.what()));
      return;
    }
    if (siguiente.ended) break;
    agenda->due = siguiente.due;
    agenda->occurrence = siguiente.occurrence;
    agenda->count = siguiente.count;
  }
}

bool PostaDocumento(int16_t tipo) {
  return tipo == ToInt(enuTipoMovFrec::Asiento) || tipo == ToInt(enuTipoMovFrec::Comprobante) ||
         tipo == ToInt(enuTipoMovFrec::AsientoSistema);
}

// The agenda's dates (clsMovFrecuente::Agenda) without amounts.
ResultadoAgenda Fechas(Connection& cn, int32_t empresa, Date dDesde, Date dHasta,
                       IDateCalculator& cal, bool solo_recordatorios) {
  ResultadoAgenda r;
  const Date desde = vb::DateOnly(dDesde);
  const Date hasta = vb::DateOnly(dHasta);
  for (const Agendado& a : LeerAgendados(cn, empresa, solo_recordatorios)) {
    Ocurrencias(a, desde, hasta, cal, r);
  }
  std::stable_sort(r.ocurrencias.begin(), r.ocurrencias.end(),
                   [](const OcurrenciaAgenda& x, const OcurrenciaAgenda& y) {
                     return std::tuple(x.fecha, x.movimiento, !x.aviso) <
                            std::tuple(y.fecha, y.movimiento, !y.aviso);
                   });
  return r;
}

}  // namespace

ResultadoEjecucion clsMovFrecuente::EjecutarVencidos(Date dHasta,
                                                     const AlTerminarOcurrencia& alTerminar) {
  if (!ctx_.cn) return {};
  return api::EjecutarVencidos(*this, *ctx_.cn, empresa_, dHasta, alTerminar);
}

ResultadoSimulacion clsMovFrecuente::SimularVencidos(Date dHasta) {
  if (!ctx_.cn) return {};
  return api::SimularVencidos(*this, *ctx_.cn, empresa_, dHasta);
}

ResultadoPronostico clsMovFrecuente::PronosticarSaldos(const SolicitudPronostico& solicitud) {
  if (!ctx_.cn) return {};
  // Only notices and task lists are listed beside the figures: the other schedules are not
  // stepped for them.
  return api::Pronosticar(*this, *ctx_.cn, empresa_, solicitud, api::MotorPronostico::Automatico,
                          [this](Date desde, Date hasta) {
                            return Fechas(*ctx_.cn, empresa_, desde, hasta, Calendario(), true);
                          });
}

ResultadoAgenda clsMovFrecuente::Agenda(Date dDesde, Date dHasta, bool bImportes) {
  if (!ctx_.cn) return {};
  ResultadoAgenda r = Fechas(*ctx_.cn, empresa_, dDesde, dHasta, Calendario(), false);
  if (!bImportes) return r;

  // A façade of its own, so the current movement and its trace stay as they were.
  clsMovFrecuente calculo;
  calculo.Servicios(dados_);
  calculo.Connect(ctx_.cn);
  calculo.Empresa(empresa_);
  calculo.FechaHoyCalculoFx(fecha_hoy_calculo_fx_);
  for (OcurrenciaAgenda& o : r.ocurrencias) {
    if (o.aviso || !PostaDocumento(o.tipo)) continue;
    calculo.EstructuraMovFrec()->Recurrencia()->FechaProxima(vb::CStr(Variant(o.vencimiento)));
    ImportesAgenda importes;
    importes.ok = calculo.SetCalculoFormulasMF(o.movimiento, true);
    importes.traza = calculo.UltimaTrazaFx();
    o.importes = std::move(importes);
  }
  return r;
}

GrupoVinculado clsMovFrecuente::GrupoEnOrden(int32_t lIDMF) {
  if (!ctx_.cn) return {};
  return api::GrupoEnOrden(*ctx_.cn, lIDMF);
}

}  // namespace kivmovfrec
