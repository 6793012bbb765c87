// Saving a link text: the checks the other members of a group must pass and the rewrite of the
// group's rows (MFrMovVinculado, MFrMVOrden). The movement wizard runs them when it saves a
// movement, clsMovFrecuente::GuardarVinculos when only the links change; both inside their
// transaction.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "kivmovfrec/db.h"

namespace kivmovfrec::ui {

// What the link text `vinculos` of movement `propio` (0 while new) asks of the other members:
// each must be pending (else catalogue lines kVinculadoEliminado, kVerifiqueAntesDeGrabar), and
// at most one movement of the group may have a schedule, the edited one counting when
// `propio_agendado` (else kMasDeUnAgendado, kAgendadoVidaPropia). Returns the refusal's lines,
// empty when the group may be saved.
std::vector<int> RevisarGrupo(Connection& cn, int32_t propio, bool propio_agendado,
                              std::string_view vinculos);

// Where the rewrite left the edited movement: its group (0 none) and its order in it.
struct PuestoEnGrupo {
  int32_t grupo = 0;
  int32_t orden = 0;
};

// Rewrites the group of movement `id` (stored; `propio` is the ID it had while edited, 0 when
// it was new) from `vinculos`: the group is headed by the member that runs first, a movement
// alone is no group; the members of its former group `grupo_antes` (0 none) that are no longer
// in it leave it. The text must have been read without error (LeerVinculos). Nothing when the
// text left the movement's own row as it was (a text without its pair).
std::optional<PuestoEnGrupo> RegrabarGrupo(Connection& cn, int32_t id, int32_t propio,
                                           int32_t grupo_antes, std::string_view vinculos);

}  // namespace kivmovfrec::ui
