// Linked groups: movements that run together, one after the other, in a fixed order. Each member
// carries the group's identifier in MFrMovVinculado (the ID of the movement that heads it) and
// its place in the run in MFrMVOrden; the head may carry its own ID or nothing. The main job,
// marking an occurrence done and clsMovFrecuente::GrupoEnOrden read a group the same way.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kivmovfrec/export.h"

namespace kivmovfrec {

struct KMF_API MiembroGrupo {
  int32_t id = 0;
  std::string nombre;  // MFrNombre
  int16_t tipo = 0;    // MFrTipo
  int16_t estado = 0;  // MFrEstado
  int32_t orden = 0;   // MFrMVOrden (0 when not set)
};

struct KMF_API GrupoVinculado {
  int32_t id = 0;  // the group's identifier: the ID of the movement that heads it
  std::vector<MiembroGrupo> miembros;  // in execution order
};

}  // namespace kivmovfrec
