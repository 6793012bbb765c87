#include "api/grupo_vinculado.h"

#include <algorithm>

#include "storage/columnas.h"

namespace kivmovfrec::api {

namespace {

constexpr const char* kColumnas =
    "Select MFrID, MFrNombre, MFrTipo, MFrEstado, MFrMVOrden, MFrMovVinculado "
    "From genMovimientosFrecuentes Where ";

}  // namespace

GrupoVinculado GrupoEnOrden(Connection& cn, int32_t id) {
  auto rs = cn.OpenResultset(kColumnas + std::string("MFrID = ?"), {Variant(id)});
  if (rs->Eof()) return {};
  const Variant v = rs->Get("MFrMovVinculado");
  return GrupoEnOrden(cn, id, storage::EsNulo(v) ? 0 : storage::ALong(v));
}

GrupoVinculado GrupoEnOrden(Connection& cn, int32_t id, int32_t mov_vinculado) {
  GrupoVinculado grupo;
  grupo.id = mov_vinculado < 1 ? id : mov_vinculado;
  std::vector<MiembroGrupo>& miembros = grupo.miembros;
  auto rs = cn.OpenResultset(kColumnas + std::string("MFrMovVinculado = ? Or MFrID = ?"),
                             {Variant(grupo.id), Variant(grupo.id)});
  for (; !rs->Eof(); rs->MoveNext()) {
    MiembroGrupo m;
    m.id = storage::ALong(rs->Get("MFrID"));
    storage::SiNoNulo(*rs, "MFrNombre", storage::ATexto, [&](std::string v) { m.nombre = v; });
    storage::SiNoNulo(*rs, "MFrTipo", storage::AInteger, [&](int16_t v) { m.tipo = v; });
    storage::SiNoNulo(*rs, "MFrEstado", storage::AInteger, [&](int16_t v) { m.estado = v; });
    storage::SiNoNulo(*rs, "MFrMVOrden", storage::ALong, [&](int32_t v) { m.orden = v; });
    miembros.push_back(std::move(m));
  }
  // Sorted here rather than by the query: the engines place NULLs at opposite ends.
  std::sort(miembros.begin(), miembros.end(), [](const MiembroGrupo& a, const MiembroGrupo& b) {
    return a.orden != b.orden ? a.orden < b.orden : a.id < b.id;
  });
  return grupo;
}

}  // namespace kivmovfrec::api
