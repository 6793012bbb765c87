// The component's façade as the commands use it: wired to the context's connection, services
// and company, plus the reads the commands make before calling a member.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "command.h"
#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/mov_frecuente.h"

namespace kivmovfrec::cli {

// A connected clsMovFrecuente for --empresa with the context's services (console messages that
// honour --responder, the clock fixed by --hoy) over `cn`, or over the context's connection when
// `cn` is null. Database errors while connecting propagate.
std::unique_ptr<clsMovFrecuente> AbrirFachada(Context& ctx, std::shared_ptr<Connection> cn = {});

// Movement `id` read from the database (header, schedule, lines), or nothing when it does not
// exist.
std::optional<clsMFTipo> MovimientoGuardado(Context& ctx, int32_t id);

// "no existe el movimiento frecuente N" (for refusals).
std::string NoExiste(int32_t id);

// Writes "movfrec COMANDO: texto" on the error stream (and with --json the error object on the
// output, when the command wrote no result) and returns kExitFailed.
int Rechazo(Context& ctx, const std::string& comando, const std::string& texto);

}  // namespace kivmovfrec::cli
