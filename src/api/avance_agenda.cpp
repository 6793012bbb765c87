#include "api/avance_agenda.h"

#include "core/clock.h"
#include "kivmovfrec/records.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "storage/columnas.h"
#include "storage/tabla_movimientos.h"
#include "storage/tabla_recurrencias.h"

namespace kivmovfrec::api {
namespace {

bool EsFecha(const std::string& texto) {
  return vb::IsDate(Variant(texto));
}

Date AFecha(const std::string& texto) {
  return vb::CDate(Variant(texto));
}

// The date handed to the calculator as a start date: its short form with "  00:00:00"
// appended, read back, so the time of day never reaches the calendar.
Date SinHora(Date d) {
  return vb::CDate(Variant(vb::FormatDate(d, "Short Date") + "  00:00:00"));
}

// The next due date as the schedule keeps it: the day of `proxima` with the time of day of
// `actual`, "dd/mm/yyyy hh:nn" or, at midnight, "dd/mm/yyyy".
std::string TextoProxima(Date proxima, Date actual) {
  std::string texto = vb::FormatDate(proxima, "dd/mm/yyyy");
  const vb::DateParts hora = vb::Split(actual);
  if (hora.hour != 0 || hora.minute != 0 || hora.second != 0) {
    texto += " " + vb::FormatDate(actual, "hh:nn");
  }
  return texto;
}

}  // namespace

std::string AvanceAgenda::SqlReservar(int32_t id) {
  return "Update genMovimientosFrecuentes Set MFrEstado = MFrEstado Where MFrID = " +
         std::to_string(id);
}

std::string AvanceAgenda::SqlMarcarAvisosVistos(int32_t id, int16_t modalidad) {
  return "Update genMovimientosfrecuentes Set MFrVista = 2 where MFrID <> " + std::to_string(id) +
         " And MFrEstado = 0 And MFrModalidad = " + std::to_string(modalidad);
}

ResultadoOcurrencia AvanceAgenda::Realizar(int32_t id) {
  if (!hechos_.insert(id).second) return ResultadoOcurrencia::NoAplica;

  // The row is claimed before it is read (see the header): no row, nothing to mark.
  if (cn_.Execute(SqlReservar(id)) == 0) return ResultadoOcurrencia::NoAplica;
  clsRegMovimientoFrecuente mov;
  if (!storage::CargarMovimiento(cn_, id, mov)) return ResultadoOcurrencia::NoAplica;
  if (mov.Estado() != ToInt(enuEstadoMF::EnProceso)) return ResultadoOcurrencia::NoAplica;
  if (mov.Recurrencia() < 1) return ResultadoOcurrencia::NoAplica;
  clsRegRecurrencia rec;
  rec.ID(mov.Recurrencia());
  if (!storage::CargarRecurrencia(cn_, rec)) return ResultadoOcurrencia::NoAplica;

  const std::string& codigo = rec.Frecuencia();
  const Date actual = AFecha(rec.FechaProxima());
  const bool una_vez = vb::Val(codigo) == 0;
  const int32_t siguiente = (rec.NumOcurrencia() < 1 ? 1 : rec.NumOcurrencia()) + 1;

  bool termina = una_vez;
  Date proxima = actual;
  if (!una_vez) {
    proxima = cal_.ProximaFecha(codigo, actual);
    if (rec.SinVencimiento() == 0) {
      const bool hay_final = EsFecha(rec.FechaFinal());
      if (hay_final && vb::DateOnly(proxima) > vb::DateOnly(AFecha(rec.FechaFinal()))) {
        termina = true;
      }
      int32_t cantidad = rec.CantidadVeces();
      if (cantidad <= 0 && hay_final && EsFecha(rec.FechaInicio())) {
        Date final_ = AFecha(rec.FechaFinal());
        cantidad = 0;
        cal_.CalcularFinal(codigo, SinHora(AFecha(rec.FechaInicio())), cantidad, final_);
      }
      if (cantidad > 0 && siguiente > cantidad) termina = true;
    }
  }

  if (termina) {
    mov.Estado(enuEstadoMF::Realizado);
    mov.FechaEstado(core::Now());
  } else {
    rec.FechaProxima(TextoProxima(proxima, actual));
    rec.NumOcurrencia(siguiente);
    rec.Postergado(0.0f);
    storage::GuardarRecurrencia(cn_, dbf_, rec);
  }
  storage::GuardarMovimiento(cn_, dbf_, mov);
  if (mov.Tipo() == enuTipoMovFrec::Calendario) {
    cn_.Execute(SqlMarcarAvisosVistos(id, mov.Modalidad()));
  }
  return termina ? ResultadoOcurrencia::Terminada : ResultadoOcurrencia::Avanzada;
}

}  // namespace kivmovfrec::api
