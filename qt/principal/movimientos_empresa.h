// The company's movements as the main window lists them: one row per movement of the company
// (task-list items excluded, they belong to their list), with what the list shows and what the
// actions need to know to apply, and the captions of their kinds, states and amount types.
// Its header pulls in no Qt header.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/db.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::qt {

struct FilaMovimiento {
  int32_t id = 0;               // MFrID
  int16_t tipo = 0;             // MFrTipo (enuTipoMovFrec)
  std::string nombre;           // MFrNombre, trimmed
  int16_t tipo_importe = 0;     // MFrTipoImporte (0 when not set)
  int16_t estado = 0;           // MFrEstado (enuEstadoMF)
  std::optional<Date> proxima;  // RecFechaProxima; none for a movement without schedule
  int32_t vinculado = 0;        // MFrMovVinculado: the group it belongs to (0 none)
};

// The movements of company `empresa` by ID. Database errors reach the caller.
std::vector<FilaMovimiento> LeerMovimientos(Connection& cn, int32_t empresa);

// What the list shows: a kind (0 any), a state (-1 any) and a text the name must contain
// (compared without regard to case, accented letters included; blanks around it ignored; ""
// any).
struct FiltroMovimientos {
  int16_t tipo = 0;
  int16_t estado = -1;
  std::string texto;
};
bool Cumple(const FilaMovimiento& fila, const FiltroMovimientos& filtro);

// The library's names of a kind and of a state (kivmovfrec/nombres.h); the number for a code
// that has none, so that no row hides what it holds.
std::string TipoTexto(int tipo);
std::string EstadoTexto(int estado);
// "dd/mm/aaaa", with " hh:nn" when the moment has a time of day.
std::string FechaTexto(Date fecha);

}  // namespace kivmovfrec::qt
