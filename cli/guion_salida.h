// Dialogs played by a step script (`--guion ARCHIVO`): reading the script, installing it in the
// context's services, showing the dialog through the façade and printing what happened: every
// message with its answer, the form, panel, focused control and selected text when it closed,
// the steps run, why the script stopped, and the result (with --json the same as data).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "command.h"
#include "kivmovfrec/mov_frecuente.h"

namespace kivmovfrec::cli {

// What the dialog handed back: a number (a saved id; 0 for nothing) and, for dialogs that
// return a text (a link text, a choice of users, a frequency code), that text.
struct ResultadoDialogo {
  int32_t resultado = 0;
  std::optional<std::string> valor;
};

// Runs `mostrar` on a façade whose messages, input and forms are the script in `archivo`.
// Exit 0 when every step ran and the dialog handed something back (a non-zero result or a
// text), 1 when it ended with nothing or the script stopped, 2 (UsageError) when the script
// cannot be read. `comando` names the command in error lines.
int CorrerGuion(Context& ctx, const std::string& comando, const std::string& archivo,
                const std::function<ResultadoDialogo(clsMovFrecuente&)>& mostrar);

}  // namespace kivmovfrec::cli
