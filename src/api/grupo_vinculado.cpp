#include "api/grupo_vinculado.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "storage/columnas.h"
#include "storage/fila.h"

namespace kivmovfrec::api {

namespace {

constexpr const char* kColumnas =
    "Select MFrID, MFrNombre, MFrTipo, MFrEstado, MFrMVOrden, MFrMovVinculado "
    "From genMovimientosFrecuentes Where ";

MiembroGrupo LeerMiembro(const Resultset& rs) {
  MiembroGrupo m;
  m.id = storage::ALong(rs.Get("MFrID"));
  storage::SiNoNulo(rs, "MFrNombre", storage::ATexto, [&](std::string v) { m.nombre = v; });
  storage::SiNoNulo(rs, "MFrTipo", storage::AInteger, [&](int16_t v) { m.tipo = v; });
  storage::SiNoNulo(rs, "MFrEstado", storage::AInteger, [&](int16_t v) { m.estado = v; });
  storage::SiNoNulo(rs, "MFrMVOrden", storage::ALong, [&](int32_t v) { m.orden = v; });
  return m;
}

// Sorted here rather than by the query: the engines place NULLs at opposite ends.
void Ordenar(std::vector<MiembroGrupo>& miembros) {
  std::sort(miembros.begin(), miembros.end(), [](const MiembroGrupo& a, const MiembroGrupo& b) {
    return a.orden != b.orden ? a.orden < b.orden : a.id < b.id;
  });
}

int32_t Identificador(int32_t id, int32_t mov_vinculado) {
  return mov_vinculado < 1 ? id : mov_vinculado;
}

}  // namespace

GrupoVinculado GrupoEnOrden(Connection& cn, int32_t id) {
  auto rs = cn.OpenResultset(kColumnas + std::string("MFrID = ?"), {Variant(id)});
  if (rs->Eof()) return {};
  const Variant v = rs->Get("MFrMovVinculado");
  return GrupoEnOrden(cn, id, storage::EsNulo(v) ? 0 : storage::ALong(v));
}

GrupoVinculado GrupoEnOrden(Connection& cn, int32_t id, int32_t mov_vinculado) {
  GrupoVinculado grupo;
  grupo.id = Identificador(id, mov_vinculado);
  auto rs = cn.OpenResultset(kColumnas + std::string("MFrMovVinculado = ? Or MFrID = ?"),
                             {Variant(grupo.id), Variant(grupo.id)});
  for (; !rs->Eof(); rs->MoveNext()) grupo.miembros.push_back(LeerMiembro(*rs));
  Ordenar(grupo.miembros);
  return grupo;
}

std::map<int32_t, GrupoVinculado> GruposEnOrden(Connection& cn,
                                                const std::map<int32_t, int32_t>& movimientos) {
  constexpr size_t kPorLectura = 250;
  std::map<int32_t, GrupoVinculado> grupos;  // by identifier
  for (const auto& [id, vinculado] : movimientos) {
    const int32_t g = Identificador(id, vinculado);
    grupos[g].id = g;
  }
  std::vector<int32_t> ids;
  for (const auto& [g, grupo] : grupos) ids.push_back(g);
  for (size_t desde = 0; desde < ids.size(); desde += kPorLectura) {
    auto [lista, params] = storage::ListaDeIds(ids, desde, kPorLectura);
    params.insert(params.end(), params.begin(), params.end());
    auto rs = cn.OpenResultset(
        kColumnas + ("MFrMovVinculado In (" + lista + ") Or MFrID In (" + lista + ")"), params);
    for (; !rs->Eof(); rs->MoveNext()) {
      const MiembroGrupo m = LeerMiembro(*rs);
      const Variant v = rs->Get("MFrMovVinculado");
      const int32_t vinculado = storage::EsNulo(v) ? 0 : storage::ALong(v);
      // A row belongs to the group it carries and to the one its own ID names.
      if (const auto grupo = grupos.find(vinculado); grupo != grupos.end()) {
        grupo->second.miembros.push_back(m);
      }
      if (const auto grupo = grupos.find(m.id); m.id != vinculado && grupo != grupos.end()) {
        grupo->second.miembros.push_back(m);
      }
    }
  }
  std::map<int32_t, GrupoVinculado> out;
  for (const auto& [id, vinculado] : movimientos) {
    GrupoVinculado& grupo = grupos.at(Identificador(id, vinculado));
    Ordenar(grupo.miembros);
    out[id] = grupo;
  }
  return out;
}

}  // namespace kivmovfrec::api
