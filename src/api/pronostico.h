// The balance forecast (kivmovfrec/simulacion.h): balances of accounts by period over the posted
// entries plus what a dry run of the main job posts up to the forecast's last day.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "kivmovfrec/agenda.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/mov_frecuente.h"
#include "kivmovfrec/simulacion.h"

namespace kivmovfrec::api {

// The periods from `desde` to `hasta` (both by day, `desde` not after `hasta`): whole days,
// weeks from Monday to Sunday or calendar months, the first and the last cut to the range.
// Only desde and hasta of each are set.
std::vector<SaldoPeriodo> Periodos(Date desde, Date hasta, PeriodoPronostico por);

// How the forecast works out the occurrences: in memory unless a formula needs the dry run
// (Automatico), or always by the dry run (Simulacion: the reference the in-memory figures are
// checked against).
enum class MotorPronostico { Automatico, Simulacion };

// The forecast for `mf` (connected to `cn`, company `empresa`). Balances follow the definition
// of suite::DbAccountBalance over `cn`: read inside the dry run's transaction, so they count
// the simulated entries; or with the entries of the in-memory run (api::CalcularVencidos) added
// to them. Database errors never propagate (ResultadoPronostico::detenida).
// `agenda`: the agenda's dates from one day to another, of which the notices and task lists
// are listed; by default mf.Agenda.
using FechasAgenda = std::function<ResultadoAgenda(Date desde, Date hasta)>;
ResultadoPronostico Pronosticar(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                const SolicitudPronostico& solicitud,
                                MotorPronostico motor = MotorPronostico::Automatico,
                                const FechasAgenda& agenda = {});

}  // namespace kivmovfrec::api
