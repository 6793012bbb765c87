#include "ui/checklist/consultas_lista.h"

#include <utility>

#include "kivmovfrec/enums.h"
#include "kivmovfrec/frecuencia.h"
#include "kivmovfrec/records.h"
#include "platform/vb/dates.h"
#include "platform/vb/text.h"
#include "storage/columnas.h"
#include "storage/tabla_recurrencias.h"

namespace kivmovfrec::checklist {
namespace {

using storage::EsNulo;

// The schedule columns of the list's first row, as the editor shows them.
void LeerAgenda(const Resultset& rs, ListaTareas& l) {
  clsRegRecurrencia rec;
  storage::LeerRecurrencia(rs, rec);
  if (const auto f = schedule::ParseFrequency(rec.Frecuencia())) l.frecuencia = f->code();
  l.vencimiento = vb::ParseDate(rec.FechaProxima());
  l.inicio = vb::ParseDate(rec.FechaInicio());
  l.hasta = vb::ParseDate(rec.FechaFinal());
  l.postergado = rec.Postergado();
  l.num_ocurrencia = rec.NumOcurrencia() < 1 ? 1 : rec.NumOcurrencia();
  if (rec.NotificarDias() > 0 && l.vencimiento) {
    l.notificar = Date{vb::DateOnly(*l.vencimiento).serial - rec.NotificarDias()};
  }
}

ItemListaTareas LeerItem(const Resultset& rs) {
  ItemListaTareas it;
  it.id = storage::ALong(rs.Get("ItID"));
  it.nombre = storage::ATexto(rs.Get("ItNo"));
  it.comentario = storage::ATexto(rs.Get("ItCo"));
  storage::SiNoNulo(rs, "ItIm", storage::AInteger, [&](int16_t v) { it.importancia = v; });
  storage::SiNoNulo(rs, "ItSC", storage::ALong, [&](int32_t v) { it.precede = v; });
  const uint8_t estado = EsNulo(rs.Get("ItEst")) ? 0 : storage::AByte(rs.Get("ItEst"));
  it.realizado = estado == ToInt(enuEstadoMF::Realizado);
  it.en_papelera = estado == ToInt(enuEstadoMF::Papelera);
  return it;
}

}  // namespace

std::string SqlCargarLista(int32_t lista) {
  return "SELECT genRecurrencias.*, genMovimientosFrecuentes.MFrNombre, "
         "genMovimientosFrecuentes.MFrMemo, genMovimientosFrecuentes.MFrEmpresa, "
         "genMovimientosFrecuentes.MFrVista, genMovimientosFrecuentes.MFrEstado, "
         "MFItem.MFrNombre As ItNo, MFItem.MFrMemo as ItCo, MFItem.MFrModalidad as ItIm, "
         "MFItem.MFrMovVinculado as ItSC, genMovimientosFrecuentes.MFrTipo, MFItem.MFrID as ItID, "
         "MFItem.MFrEstado as ItEst"
         " FROM (genMovimientosFrecuentes LEFT JOIN genMovimientosFrecuentes AS MFItem ON "
         "(MFItem.MFrEnte = genMovimientosFrecuentes.MFrID AND MFItem.MFrTipo = 6))"
         " INNER JOIN genRecurrencias ON genMovimientosFrecuentes.MFrRecurrencia = "
         "genRecurrencias.RecID"
         " WHERE genMovimientosFrecuentes.MFrID = " +
         std::to_string(lista) +
         " And genMovimientosFrecuentes.MFrTipo = 5 Order by MFItem.MFrNombre";
}

std::optional<ListaTareas> CargarListaTareas(Connection& cn, int32_t lista) {
  auto rs = cn.OpenResultset(SqlCargarLista(lista));
  if (rs->Eof()) return std::nullopt;
  ListaTareas l;
  l.id = lista;
  l.nombre = storage::ATexto(rs->Get("MFrNombre"));
  l.comentario = storage::ATexto(rs->Get("MFrMemo"));
  storage::SiNoNulo(*rs, "MFrEmpresa", storage::AInteger, [&](int16_t v) { l.empresa = v; });
  storage::SiNoNulo(*rs, "MFrEstado", storage::AByte, [&](uint8_t v) { l.estado = v; });
  storage::SiNoNulo(*rs, "MFrVista", storage::AByte, [&](uint8_t v) { l.vista = v; });
  LeerAgenda(*rs, l);
  for (; !rs->Eof(); rs->MoveNext()) {
    if (EsNulo(rs->Get("ItID"))) continue;  // the one row of a list without items
    l.items.push_back(LeerItem(*rs));
  }
  rs->Close();
  for (ItemListaTareas& it : l.items) {
    if (it.precede == 0) continue;
    if (const auto p = BuscarListaPorID(cn, it.precede)) it.precede_nombre = p->nombre;
  }
  return l;
}

std::vector<ListaTareas> ListasDeEmpresa(Connection& cn, int32_t empresa) {
  std::vector<int32_t> ids;
  auto rs = cn.OpenResultset(
      "Select MFrID From genMovimientosFrecuentes Where MFrTipo = 5 And MFrEstado <> 9 And "
      "MFrEmpresa = " +
      std::to_string(empresa) + " Order By MFrID");
  for (; !rs->Eof(); rs->MoveNext()) ids.push_back(storage::ALong(rs->Get("MFrID")));
  rs->Close();
  std::vector<ListaTareas> listas;
  for (int32_t id : ids) {
    if (auto l = CargarListaTareas(cn, id)) listas.push_back(std::move(*l));
  }
  return listas;
}

bool NombreListaDuplicado(Connection& cn, int32_t lista, std::string_view nombre, int32_t empresa) {
  auto rs = cn.OpenResultset(
      "Select MFrID From genMovimientosFrecuentes Where MFrID <> " + std::to_string(lista) +
          " And MFrNombre = ? and MFrTipo = 5 And MFrEmpresa = " + std::to_string(empresa) +
          " And MFrEstado = 0",
      {Variant(vb::Trim(nombre))});
  return !rs->Eof();
}

std::string SqlListaPorID(int32_t id) {
  return "Select MFrID, MFrNombre  From genMovimientosFrecuentes Where MFrID = " +
         std::to_string(id);
}

std::optional<ListaCandidata> BuscarListaPorID(Connection& cn, int32_t id) {
  auto rs = cn.OpenResultset(SqlListaPorID(id));
  if (rs->Eof()) return std::nullopt;
  return ListaCandidata{storage::ALong(rs->Get("MFrID")), storage::ATexto(rs->Get("MFrNombre"))};
}

std::string PatronPrecede(std::string_view texto) {
  std::string patron = "%";
  for (char c : texto) patron += c == ' ' ? '%' : c;
  return patron + "%";
}

std::vector<ListaCandidata> BuscarListasPorTexto(Connection& cn, int32_t empresa,
                                                 std::string_view texto, int32_t lista,
                                                 int16_t usuario) {
  auto rs = cn.OpenResultset(
      "Select MFrID, MFrNombre  From genMovimientosFrecuentes Where MFrTipo = 5 And MFrEmpresa = " +
          std::to_string(empresa) + " And MFrEstado = 0 And MFrNombre Like ? And MFrID <> " +
          std::to_string(lista) + " And MFrUsuarioAlta = " + std::to_string(usuario) +
          " Order By MFrNombre",
      {Variant(PatronPrecede(texto))});
  std::vector<ListaCandidata> r;
  for (; !rs->Eof(); rs->MoveNext()) {
    r.push_back({storage::ALong(rs->Get("MFrID")), storage::ATexto(rs->Get("MFrNombre"))});
  }
  return r;
}

std::string SqlItemsVivos(int32_t lista) {
  return "Select * From genMovimientosFrecuentes Where MFrEnte = " + std::to_string(lista) +
         " And MFrTipo = 6 And MFrEstado <> 9";
}

}  // namespace kivmovfrec::checklist
