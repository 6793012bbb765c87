// Linked groups: movements that run together, one after the other, in a fixed order. A group
// lives on its members' rows: each carries the group's identifier in MFrMovVinculado (the ID of
// the movement that heads it) and its place in the run in MFrMVOrden. The head may carry its
// own ID or nothing.
//
// GrupoEnOrden is the one reading of a group in execution order. The main job
// (api/ejecucion.h), marking an occurrence done (clsMovFrecuente::DarRealizadaFechaAgenda) and
// clsMovFrecuente::GrupoEnOrden all take a group from it, so they agree on who belongs and in
// which order.
#pragma once

#include <cstdint>
#include <map>

#include "kivmovfrec/db.h"
#include "kivmovfrec/grupo_vinculado.h"

namespace kivmovfrec::api {

using kivmovfrec::GrupoVinculado;
using kivmovfrec::MiembroGrupo;

// The group of movement `id`: its identifier is the movement's MFrMovVinculado, or its own ID
// when that is empty; its members are the movements carrying that identifier and the movement
// with that ID, every one whatever its state or kind, `id` included, in execution order:
// MFrMVOrden, then MFrID between equal orders (an order not set counts as 0). A movement in no
// group gives just itself (heading its own group of one); one that does not exist, no member.
// Two reads, no write; database errors propagate.
GrupoVinculado GrupoEnOrden(Connection& cn, int32_t id);
// The same for a movement the caller has just read in its transaction, whose MFrMovVinculado is
// `mov_vinculado` (0 when empty): one read.
GrupoVinculado GrupoEnOrden(Connection& cn, int32_t id, int32_t mov_vinculado);

// The same for many movements at once, each given with its MFrMovVinculado (0 when empty):
// their groups, by movement, read a few hundred groups per statement. For a run that needs the
// groups of all the movements it will run (the in-memory run of the main job).
std::map<int32_t, GrupoVinculado> GruposEnOrden(Connection& cn,
                                                const std::map<int32_t, int32_t>& movimientos);

}  // namespace kivmovfrec::api
