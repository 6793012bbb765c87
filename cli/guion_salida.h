// How the dialog commands show their dialog: played by a step script (`--guion ARCHIVO`), in a
// real window, or rendered to a PNG (`--captura PNG [--panel N]`).
//
// With a script: reading it, installing it in the context's services, showing the dialog through
// the façade and printing what happened: every message with its answer, the form, panel, focused
// control and selected text when it closed, the steps run, why the script stopped, and the
// result (with --json the same as data).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "command.h"
#include "kivmovfrec/mov_frecuente.h"

namespace kivmovfrec::cli {

// What the dialog handed back: a number (a saved id; 0 for nothing) and, for dialogs that
// return a text (a link text, a choice of users, a frequency code), that text. A command that
// does more with it (saves it) adds its own keys to the JSON report and lines to the text one,
// and gives `rechazo` when that failed or the dialog could not be opened.
struct ResultadoDialogo {
  int32_t resultado = 0;
  std::optional<std::string> valor;
  nlohmann::ordered_json extra = nlohmann::ordered_json::object();
  std::string lineas_extra;
  std::optional<std::string> rechazo;

  static ResultadoDialogo Numero(int32_t n) {
    ResultadoDialogo r;
    r.resultado = n;
    return r;
  }
  static ResultadoDialogo Texto(std::optional<std::string> v) {
    ResultadoDialogo r;
    r.valor = std::move(v);
    return r;
  }
};

// Runs `mostrar` on a façade whose messages, input and forms are the script in `archivo`.
// Exit 0 when every step ran and the dialog handed something back (a non-zero result or a
// text), 1 when it ended with nothing, the script stopped or `rechazo` was given (a refusal
// before any dialog was shown prints no report), 2 (UsageError) when the script cannot be
// read. `comando` names the command in error lines.
int CorrerGuion(Context& ctx, const std::string& comando, const std::string& archivo,
                const std::function<ResultadoDialogo(clsMovFrecuente&)>& mostrar);

// The options every dialog command takes: --guion, --captura and --panel.
struct OpcionesDialogo {
  std::string guion;
  std::string captura;
  int panel = 0;
};
std::shared_ptr<OpcionesDialogo> AgregarOpcionesDialogo(CLI::App& app);

// Shows the dialog as the options say: CorrerGuion with --guion; otherwise a window (a Qt
// application is made only now, so no other command needs a display), whose result is printed
// ("Valor: ..." or "Resultado: N"; with --json {"Resultado", "Valor"}); with --captura the
// dialog's first panel (or --panel N) is written to the PNG without a display and the command
// exits 0 once it is written. A window without a display (no DISPLAY, WAYLAND_DISPLAY or
// QT_QPA_PLATFORM) is refused (exit 1), and so is one in a build without the Qt front end
// (UsageError).
int CorrerDialogo(Context& ctx, const std::string& comando, const OpcionesDialogo& opciones,
                  const std::function<ResultadoDialogo(clsMovFrecuente&)>& mostrar);

}  // namespace kivmovfrec::cli
