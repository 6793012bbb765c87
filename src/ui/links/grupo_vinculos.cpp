#include "ui/links/grupo_vinculos.h"

#include <algorithm>
#include <set>
#include <string>

#include "kivmovfrec/enums.h"
#include "platform/vb/convert.h"
#include "resources/msg.h"
#include "ui/links/texto_vinculos.h"

namespace kivmovfrec::ui {
namespace {

int32_t Entero(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? 0 : vb::CLng(v);
}

std::string Lista(const std::vector<int32_t>& ids) {
  std::string out;
  for (int32_t id : ids) out += (out.empty() ? "" : ",") + std::to_string(id);
  return out;
}

}  // namespace

std::vector<int> RevisarGrupo(Connection& cn, int32_t propio, bool propio_agendado,
                              std::string_view vinculos) {
  std::vector<int32_t> ids;
  for (const Vinculo& v : LeerVinculos(vinculos).vinculos)
    if (v.id > 0 && v.id != propio) ids.push_back(v.id);
  if (ids.empty()) return {};
  size_t vivos = 0;
  int agendados = propio_agendado ? 1 : 0;
  for (auto rs = cn.OpenReadOnly("Select * From genMovimientosFrecuentes Where MFrID IN (" +
                                 Lista(ids) + ")");
       !rs->Eof(); rs->MoveNext()) {
    if (Entero(rs->Get("MFrEstado")) == ToInt(enuEstadoMF::EnProceso)) ++vivos;
    if (Entero(rs->Get("MFrRecurrencia")) > 0) ++agendados;
  }
  if (vivos < ids.size()) return {msg::kVinculadoEliminado, msg::kVerifiqueAntesDeGrabar};
  if (agendados > 1) return {msg::kMasDeUnAgendado, msg::kAgendadoVidaPropia};
  return {};
}

std::optional<PuestoEnGrupo> RegrabarGrupo(Connection& cn, int32_t id, int32_t propio,
                                           int32_t grupo_antes, std::string_view vinculos) {
  if (propio <= 0) propio = id;
  std::vector<Vinculo> pares;
  for (Vinculo v : LeerVinculos(vinculos).vinculos) {
    if (v.id == 0 || v.id == propio) v.id = id;  // the edited movement's own pair
    pares.push_back(v);
  }
  // The group is headed by the movement that runs first; a movement alone is no group.
  int32_t grupo = 0;
  if (pares.size() >= 2) {
    grupo = std::min_element(pares.begin(), pares.end(), [](const Vinculo& a, const Vinculo& b) {
              return a.orden < b.orden;
            })->id;
  }
  std::set<int32_t> quedan;
  for (const Vinculo& v : pares) quedan.insert(v.id);

  // Members of the former group that are no longer in it leave it.
  if (grupo_antes > 0) {
    auto rs = cn.OpenResultset("Select * From genMovimientosFrecuentes Where MFrMovVinculado = " +
                               std::to_string(grupo_antes) + " And MFrID <> " + std::to_string(id));
    for (; !rs->Eof(); rs->MoveNext()) {
      if (grupo > 0 && quedan.count(Entero(rs->Get("MFrID")))) continue;
      rs->Edit();
      rs->Set("MFrMovVinculado", Variant::Null());
      rs->Set("MFrMVOrden", Variant::Null());
      rs->Update();
    }
    rs->Close();
  }

  std::vector<int32_t> ids;
  for (const Vinculo& v : pares) ids.push_back(v.id);
  if (grupo == 0) ids = {id};
  std::optional<PuestoEnGrupo> puesto;
  auto rs = cn.OpenResultset("Select * From genMovimientosFrecuentes Where MFrID IN (" +
                             Lista(ids) + ")");
  for (; !rs->Eof(); rs->MoveNext()) {
    const int32_t fila = Entero(rs->Get("MFrID"));
    int32_t orden = 0;
    for (const Vinculo& v : pares)
      if (v.id == fila) orden = v.orden;
    rs->Edit();
    rs->Set("MFrMovVinculado", grupo > 0 ? Variant(grupo) : Variant::Null());
    rs->Set("MFrMVOrden", grupo > 0 ? Variant(orden) : Variant::Null());
    rs->Update();
    if (fila == id) puesto = PuestoEnGrupo{grupo, grupo > 0 ? orden : 0};
  }
  rs->Close();
  return puesto;
}

}  // namespace kivmovfrec::ui
