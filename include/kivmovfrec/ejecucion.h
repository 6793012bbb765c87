// The result of the main job (clsMovFrecuente::EjecutarVencidos): what became of each
// occurrence that fell due, reported as it finishes and collected in the run's result.
//
// The run posts every pending scheduled entry (Tipo 1 and 4) and voucher (Tipo 2) of the
// façade's company whose next due date is on or before the given day, missed occurrences
// included, by due date then movement ID; a movement that belongs to a linked group runs its
// whole group in execution order (clsMovFrecuente::GrupoEnOrden). One occurrence is one
// transaction: its documents are written and its schedule advances, or nothing of it is
// written. The same occurrence is never posted twice: one done meanwhile by another run
// (HechaEnOtraParte) or whose documents exist already (YaGenerada) writes nothing.
//
// An occurrence fails (Fallida, it stays due) when a formula has no result or needs a typed
// value, its debits and credits do not balance in the currency's minor units, a line names an
// account that cannot take it, or the database refuses a write; that movement's later
// occurrences then wait for the next run, the other movements go on. When the database itself
// cannot be used (locked past the timeout, read-only, lost, a table missing) the run stops:
// ResultadoEjecucion::detenida says why, what was reported stays done and the rest stays due.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "kivmovfrec/export.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec {

// A document of one member of an occurrence.
struct KMF_API DocumentoGenerado {
  int32_t movimiento = 0;  // the member it comes from
  int16_t tipo = 0;        // its MFrTipo (1, 2 or 4)
  int32_t id = 0;          // AsiID / ComID; 0 when every line was 0 and nothing was written
  double total = 0;        // the debit total (= the credit total); 0 for a document found
};

enum class EstadoOcurrencia : uint8_t {
  Ejecutada,         // its documents were written and its schedule advanced
  YaGenerada,        // its documents existed already: nothing written, the schedule advanced
  HechaEnOtraParte,  // another run or a user had done it or moved the schedule: nothing written
  Fallida,           // not executed: nothing written, it stays due
};

struct KMF_API OcurrenciaEjecutada {
  int32_t movimiento = 0;  // the scheduled movement
  std::string nombre;
  Date fecha{};  // its due date
  EstadoOcurrencia estado = EstadoOcurrencia::Fallida;
  // Ejecutada: the documents written, in execution order. YaGenerada: those found.
  std::vector<DocumentoGenerado> documentos;
  bool terminada = false;  // Ejecutada / YaGenerada: that was the schedule's last occurrence
  Date proxima{};          // the next due date after it, when there is one
  std::string detalle;     // HechaEnOtraParte: what was found instead
  std::string error;       // Fallida: why
  // Nothing is left to do for it (whoever did it).
  bool ok() const { return estado != EstadoOcurrencia::Fallida; }
};

struct KMF_API ProgresoEjecucion {
  size_t terminadas = 0;  // occurrences finished so far, the one just reported included
  // Those plus the ones still waiting. It grows when an advanced schedule falls due again
  // before the run's last day.
  size_t conocidas = 0;
};

// Called once for each occurrence as soon as it is finished, before the next one begins, in the
// order of the run's result. It runs outside the run's transactions (it holds up no other
// process and may read through the connection, but must leave no transaction open). An
// exception it throws ends the run and reaches the caller of EjecutarVencidos; what was
// committed stays.
using AlTerminarOcurrencia =
    std::function<void(const OcurrenciaEjecutada&, const ProgresoEjecucion&)>;

struct KMF_API ResultadoEjecucion {
  std::vector<OcurrenciaEjecutada> ocurrencias;  // in the order they finished
  // Why the run stopped before its end ("" when it did not): the database could not be read or
  // used (see above). What was reported stays done; the rest stays due.
  std::string detenida;
  bool completa() const { return detenida.empty(); }
};

}  // namespace kivmovfrec
