// The dry run of the main job and the reading back of the documents it writes
// (kivmovfrec/simulacion.h states what a dry run is and what it can differ in).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "kivmovfrec/db.h"
#include "kivmovfrec/mov_frecuente.h"
#include "kivmovfrec/simulacion.h"

namespace kivmovfrec::api {

// Document `id` as stored: an entry (cceAsientos, `tipo` 1 or 4) or a voucher (cceComprobantes,
// `tipo` 2) with its lines in order and the code and name of each line's account; the debit and
// credit totals are the sums of its lines. Nothing when there is no such document. DbError
// propagates.
std::optional<DocumentoSimulado> LeerDocumento(Connection& cn, int16_t tipo, int32_t id);

// Called at the end of a dry run, still inside its transaction (before the rollback), with the
// result so far: it may read what the simulated occurrences wrote. It is not called when the
// transaction ended on its own. A DbError it throws stops the dry run (ResultadoSimulacion::
// detenida); any other exception reaches the caller, after the rollback.
using AlFinalSimulacion = std::function<void(const ResultadoSimulacion&)>;

// The dry run of api::EjecutarVencidos(mf, cn, empresa, hasta) inside one transaction of `cn`
// that is always rolled back. `cn` must be outside any transaction (otherwise the result says so
// and nothing runs). Database errors never propagate. Nothing runs when `mf` is not connected.
ResultadoSimulacion SimularVencidos(clsMovFrecuente& mf, Connection& cn, int32_t empresa,
                                    Date hasta, const AlFinalSimulacion& al_final = {});

}  // namespace kivmovfrec::api
