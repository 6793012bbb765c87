#include "api/avance_agenda.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "kivmovfrec/records.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "storage/columnas.h"
#include "storage/tabla_movimientos.h"
#include "storage/tabla_recurrencias.h"

namespace kivmovfrec::api {

namespace {

void Digitos(std::string& texto, int valor, int ancho) {
  char d[4];
  for (int i = ancho - 1; i >= 0; --i, valor /= 10) d[i] = static_cast<char>('0' + valor % 10);
  texto.append(d, static_cast<size_t>(ancho));
}

// Format(proxima, "dd/mm/yyyy") and Format(proxima, "hh:nn") of a date's parts (the main job
// writes one per occurrence).
std::string TextoDePartes(const vb::DateParts& p) {
  if (p.year < 1000 || p.year > 9999) {
    std::string texto = fmt::format("{:02d}/{:02d}/{:04d}", p.day, p.month, p.year);
    if (p.hour != 0 || p.minute != 0 || p.second != 0) {
      texto += fmt::format(" {:02d}:{:02d}", p.hour, p.minute);
    }
    return texto;
  }
  std::string texto;
  texto.reserve(16);
  Digitos(texto, p.day, 2);
  texto += '/';
  Digitos(texto, p.month, 2);
  texto += '/';
  Digitos(texto, p.year, 4);
  if (p.hour != 0 || p.minute != 0 || p.second != 0) {
    texto += ' ';
    Digitos(texto, p.hour, 2);
    texto += ':';
    Digitos(texto, p.minute, 2);
  }
  return texto;
}

}  // namespace

std::string TextoProxima(Date proxima) {
  return TextoDePartes(vb::Split(proxima));
}

std::optional<schedule::Schedule> AgendaDe(const clsRegRecurrencia& rec) {
  const std::optional<Date> proxima = vb::ParseDate(rec.FechaProxima());
  if (!proxima) return std::nullopt;
  schedule::Schedule s;
  s.code = rec.Frecuencia();
  s.start = vb::ParseDate(rec.FechaInicio());
  s.due = *proxima;
  s.occurrence = std::max(rec.NumOcurrencia(), 1);
  s.count = rec.CantidadVeces();
  s.last = vb::ParseDate(rec.FechaFinal());
  s.no_end = rec.SinVencimiento() != 0;
  return s;
}

bool AvanzarRegistros(const ContextoMF& ctx, IDateCalculator& calendario,
                      clsRegMovimientoFrecuente& mov, clsRegRecurrencia& rec, Date* proxima) {
  std::optional<schedule::Schedule> agenda = AgendaDe(rec);
  return AvanzarRegistros(ctx, calendario, mov, rec, agenda, proxima);
}

bool AvanzarRegistros(const ContextoMF& ctx, IDateCalculator& calendario,
                      clsRegMovimientoFrecuente& mov, clsRegRecurrencia& rec,
                      std::optional<schedule::Schedule>& agenda, Date* proxima) {
  if (!agenda) throw VbError(13);
  const schedule::AfterOccurrence siguiente = schedule::NextOccurrence(*agenda, calendario);
  if (siguiente.ended) {
    mov.Estado(enuEstadoMF::Realizado);
    mov.FechaEstado(ctx.Reloj().Now());
    return true;
  }
  vb::DateParts partes = vb::Split(siguiente.due);
  rec.FechaProxima(TextoDePartes(partes));
  rec.NumOcurrencia(siguiente.occurrence);
  rec.Postergado(0.0f);
  // The text just written read back: its parts without the seconds, for the four-digit years
  // it always reads back as such; the schedule read again from the text otherwise.
  if (partes.year >= 1000 && partes.year <= 9999) {
    partes.second = 0;
    agenda->due = vb::MakeDate(partes);
    agenda->occurrence = std::max(rec.NumOcurrencia(), 1);
  } else {
    agenda = AgendaDe(rec);
  }
  if (proxima != nullptr) {
    *proxima = storage::FechaSegunFormatoBD(
        agenda ? agenda->due : vb::CDate(Variant(rec.FechaProxima())), ctx.parametros);
  }
  return false;
}

const char* const AvanceAgenda::kSqlReservar =
    "Update genMovimientosFrecuentes Set MFrEstado = MFrEstado Where MFrID = ?";

std::string AvanceAgenda::SqlMarcarAvisosVistos(int32_t id, int16_t modalidad) {
  return "Update genMovimientosfrecuentes Set MFrVista = 2 where MFrID <> " + std::to_string(id) +
         " And MFrEstado = 0 And MFrModalidad = " + std::to_string(modalidad);
}

bool AvanceAgenda::Reservar(int32_t id) {
  if (const auto hecha = reservados_.find(id); hecha != reservados_.end()) return hecha->second;
  const bool existe = cn_.Execute(kSqlReservar, {Variant(id)}) > 0;
  reservados_.emplace(id, existe);
  return existe;
}

ResultadoOcurrencia AvanceAgenda::Realizar(int32_t id) {
  if (hechos_.count(id) != 0) return ResultadoOcurrencia::NoAplica;
  // The row is claimed before it is read (see the header): no row, nothing to mark.
  if (!Reservar(id)) {
    hechos_.insert(id);
    return ResultadoOcurrencia::NoAplica;
  }
  clsRegMovimientoFrecuente mov(ctx_.Reloj());
  clsRegRecurrencia rec;
  if (storage::CargarMovimiento(cn_, id, mov) && mov.Estado() == ToInt(enuEstadoMF::EnProceso) &&
      mov.Recurrencia() >= 1) {
    rec.ID(mov.Recurrencia());
    if (!storage::CargarRecurrencia(cn_, rec)) rec.ID(0);
  }
  return Realizar(id, std::move(mov), std::move(rec), nullptr);
}

ResultadoOcurrencia AvanceAgenda::Realizar(int32_t id, clsRegMovimientoFrecuente mov,
                                           clsRegRecurrencia rec, Date* proxima) {
  if (!hechos_.insert(id).second) return ResultadoOcurrencia::NoAplica;
  if (!Reservar(id)) return ResultadoOcurrencia::NoAplica;
  if (mov.ID() != id || mov.Estado() != ToInt(enuEstadoMF::EnProceso)) {
    return ResultadoOcurrencia::NoAplica;
  }
  if (mov.Recurrencia() < 1 || rec.ID() != mov.Recurrencia()) return ResultadoOcurrencia::NoAplica;

  const bool termina = AvanzarRegistros(ctx_, cal_, mov, rec, proxima);
  // Both rows were read in this transaction after the claim, so they are there and are written
  // together; should one be gone all the same, the full save puts it back as it always did.
  std::vector<DbStatement> escribir;
  if (!termina) escribir.push_back(storage::SentenciaActualizarRecurrencia(rec, ctx_.parametros));
  escribir.push_back(storage::SentenciaActualizarMovimiento(mov));
  const std::vector<int64_t> escritas = cn_.ExecuteAll(escribir);
  if (!termina && escritas.front() == 0) {
    storage::GuardarRecurrencia(cn_, dbf_, rec, ctx_.parametros);
  }
  if (escritas.back() == 0) storage::GuardarMovimiento(cn_, dbf_, mov, ctx_.parametros);
  if (mov.Tipo() == enuTipoMovFrec::Calendario) {
    cn_.Execute(SqlMarcarAvisosVistos(id, mov.Modalidad()));
  }
  return termina ? ResultadoOcurrencia::Terminada : ResultadoOcurrencia::Avanzada;
}

}  // namespace kivmovfrec::api
