#include "ui/checklist/guardar_lista.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <set>
#include <utility>

#include "kivmovfrec/errors.h"
#include "kivmovfrec/frecuencia.h"
#include "kivmovfrec/mf_tipo.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "platform/vb/text.h"
#include "resources/msg.h"
#include "schedule/date_calculator.h"
#include "storage/sql_texto.h"
#include "ui/checklist/consultas_lista.h"

namespace kivmovfrec::checklist {
namespace {

constexpr double kMaxDiasNotificar = 255;

std::string Dia(Date d) {
  return vb::FormatDate(d, "dd/mm/yyyy");
}

// The list's schedule as it will be stored (rules in the header).
void LlenarAgenda(const ListaTareas& l, clsRegRecurrencia& rec, IDateCalculator& cal) {
  const schedule::Frequency f = *schedule::FrequencyFromCode(l.frecuencia);
  const std::string codigo = schedule::FormatFrequencyCode(l.frecuencia);
  const Date dia = vb::DateOnly(*l.vencimiento);
  const std::string proxima = Dia(dia) + (l.notificar ? " 00:00:01" : " 00:00:00");

  const std::optional<Date> antes = vb::ParseDate(rec.FechaProxima());
  const bool misma = rec.ID() > 0 && rec.Frecuencia() == codigo && antes &&
                     vb::DateOnly(*antes) == dia && vb::ParseDate(rec.FechaInicio());
  if (!misma) {
    rec.FechaInicio(proxima);
    rec.NumOcurrencia(1);
    rec.Postergado(0.0f);
  }
  rec.Frecuencia(codigo);
  rec.TipoRecurrencia(static_cast<enuTipoRecurrencia>(f.unit));
  rec.CadaCuanto(static_cast<int16_t>(f.step));
  rec.FechaProxima(proxima);
  rec.NotificarDias(l.notificar ? static_cast<float>(dia.serial - vb::DateOnly(*l.notificar).serial)
                                : 0.0f);
  rec.Notificar(l.notificar ? 1 : 0);
  rec.CantidadVeces(0);
  rec.SinVencimiento(0);
  if (f.once()) {
    rec.FechaFinal(Dia(dia));
    rec.CantidadVeces(1);
  } else if (l.hasta) {
    rec.FechaFinal(Dia(*l.hasta));
  } else if (l.cantidad > 0) {
    int32_t cantidad = l.cantidad;
    Date final_{};
    const Date inicio = vb::DateOnly(*vb::ParseDate(rec.FechaInicio()));
    cal.CalcularFinal(codigo, inicio, cantidad, final_);
    rec.FechaFinal(Dia(final_));
    rec.CantidadVeces(static_cast<int16_t>(std::min<int32_t>(cantidad, INT16_MAX)));
  } else {
    rec.FechaFinal("");
    rec.SinVencimiento(1);
  }
}

uint8_t EstadoItem(const ItemListaTareas& it) {
  if (it.realizado) return ToInt(enuEstadoMF::Realizado);
  return it.en_papelera ? ToInt(enuEstadoMF::Papelera) : ToInt(enuEstadoMF::EnProceso);
}

}  // namespace

std::optional<RechazoLista> RevisarLista(const ListaTareas& l) {
  using C = CampoLista;
  auto no = [](int mensaje, C campo, int item = -1) {
    return std::optional<RechazoLista>(RechazoLista{mensaje, campo, item});
  };
  if (vb::Trim(l.nombre).empty()) return no(msg::kCampoObligatorio, C::Nombre);
  if (storage::TieneComilla(l.nombre)) return no(msg::kComillaSimple, C::Nombre);
  if (storage::TieneComilla(l.comentario)) return no(msg::kComillaSimple, C::Comentario);
  if (!l.vencimiento) return no(msg::kCampoNoValido, C::Vencimiento);
  if (!schedule::FrequencyFromCode(l.frecuencia)) return no(msg::kCampoNoValido, C::Frecuencia);
  if (l.cantidad < 0) return no(msg::kCampoNoValido, C::NumeroDeVeces);
  const Date dia = vb::DateOnly(*l.vencimiento);
  const std::optional<Date> aviso =
      l.notificar ? std::optional<Date>(vb::DateOnly(*l.notificar)) : std::nullopt;
  if (l.hasta && (vb::DateOnly(*l.hasta) < dia || (aviso && vb::DateOnly(*l.hasta) < *aviso))) {
    return no(msg::kFechaHastaMenor, C::Hasta);
  }
  if (aviso && !(*aviso < dia)) return no(msg::kNotificacionAntesDeVencimiento, C::Notificar);
  if (aviso && dia.serial - aviso->serial > kMaxDiasNotificar) {
    return no(msg::kDiferenciaNotificar, C::Notificar);
  }
  std::set<std::string> nombres;
  for (size_t i = 0; i < l.items.size(); ++i) {
    const ItemListaTareas& it = l.items[i];
    if (it.eliminado) continue;
    const int n = static_cast<int>(i);
    const std::string nombre = vb::Trim(it.nombre);
    if (nombre.empty()) return no(msg::kCampoObligatorio, C::NombreItem, n);
    if (storage::TieneComilla(it.nombre)) return no(msg::kComillaSimple, C::NombreItem, n);
    if (storage::TieneComilla(it.comentario)) return no(msg::kComillaSimple, C::ComentarioItem, n);
    if (it.importancia < kImportanciaMinima || it.importancia > kImportanciaMaxima) {
      return no(msg::kCampoNoValido, C::Importancia, n);
    }
    if (!nombres.insert(nombre).second) return no(msg::kItemDuplicado, C::NombreItem, n);
  }
  return std::nullopt;
}

ResultadoGuardarLista GuardarListaTareas(const ContextoMF& ctx, ListaTareas& lista,
                                         int16_t usuario) {
  if (auto rechazo = RevisarLista(lista)) return {0, rechazo};
  Connection& cn = *ctx.cn;
  IDBFncs& dbf = *ctx.servicios.db;
  schedule::DateCalculator propio;
  IDateCalculator& cal = ctx.servicios.calendar ? *ctx.servicios.calendar : propio;

  ListaTareas nueva = lista;
  nueva.nombre = vb::Trim(nueva.nombre);
  Transaccion transaccion(cn);
  if (NombreListaDuplicado(cn, nueva.id, nueva.nombre, nueva.empresa)) {
    return {0, RechazoLista{msg::kListaDuplicada, CampoLista::Nombre, -1}};
  }

  // The list and its schedule.
  clsMFTipo mf(ctx.servicios.clock);
  const bool existe = nueva.id > 0 && mf.Load(cn, nueva.id);
  clsRegMovimientoFrecuente& mov = *mf.MovFrecuente();
  if (!existe) mov.UsuarioAlta(usuario);
  mov.Tipo(enuTipoMovFrec::CheckList);
  mov.Nombre(nueva.nombre);
  mov.Memo(nueva.comentario);
  mov.Empresa(nueva.empresa);
  if (existe && mov.Estado() != nueva.estado) mov.FechaEstado(ctx.Reloj().Now());
  mov.Estado(nueva.estado);
  mov.Vista(nueva.vista);
  LlenarAgenda(nueva, *mf.Recurrencia(), cal);
  nueva.id = mf.Save(cn, dbf, 0, ctx.parametros);
  const clsRegRecurrencia& rec = *mf.Recurrencia();
  nueva.vencimiento = vb::ParseDate(rec.FechaProxima());
  nueva.inicio = vb::ParseDate(rec.FechaInicio());
  nueva.hasta = vb::ParseDate(rec.FechaFinal());
  nueva.num_ocurrencia = std::max(rec.NumOcurrencia(), 1);
  nueva.postergado = rec.Postergado();
  if (nueva.id > std::numeric_limits<int16_t>::max()) throw VbError(6);  // MFrEnte of its items

  // The items, in grid order.
  std::vector<ItemListaTareas> quedan;
  for (ItemListaTareas it : nueva.items) {
    if (it.eliminado) {
      if (it.id > 0) clsMFTipo::Delete(cn, it.id);
      continue;
    }
    clsMFTipo item(ctx.servicios.clock);
    const bool guardado = it.id > 0 && item.Load(cn, it.id);
    clsRegMovimientoFrecuente& m = *item.MovFrecuente();
    if (!guardado) {
      m.ID(0);
      m.UsuarioAlta(usuario);
    }
    m.Tipo(static_cast<enuTipoMovFrec>(kTipoItemCheckList));
    m.Empresa(nueva.empresa);
    m.Ente(static_cast<int16_t>(nueva.id));
    it.nombre = vb::Trim(it.nombre);
    m.Nombre(it.nombre);
    m.Memo(it.comentario);
    m.Modalidad(it.importancia);
    m.MovVinculado(it.precede);
    const uint8_t estado = EstadoItem(it);
    if (guardado && m.Estado() != estado) m.FechaEstado(ctx.Reloj().Now());
    m.Estado(estado);
    it.id = item.Save(cn, dbf, 0, ctx.parametros);
    quedan.push_back(std::move(it));
  }
  transaccion.Commit();
  nueva.items = std::move(quedan);
  lista = std::move(nueva);
  return {lista.id, std::nullopt};
}

}  // namespace kivmovfrec::checklist
