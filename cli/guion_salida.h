// What the dialog commands played by a step script (lista-tareas, asistente) share: reading the
// script file and printing the script's report, as text or JSON.
#pragma once

#include <memory>
#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

#include "command.h"
#include "kivmovfrec/guion.h"

namespace kivmovfrec::cli {

// Reads and parses the step script in `archivo`; UsageError when it cannot be read or parsed.
std::shared_ptr<GuionDialogos> LeerGuionDialogos(const std::string& archivo);

// The report as JSON: Mensajes (Numero, Texto, Titulo, Icono, Respuesta), Ayuda, Formulario,
// Panel, Foco, Seleccion, Resultado, Pasos, PasosEjecutados, Error (null when every step ran).
nlohmann::ordered_json InformeGuionJson(const InformeGuion& i);

// The report as text: one line per message ("Mensaje N [icono] texto -> respuesta", lines of a
// message joined by " / "), the help topics, the form with its panel, focus and selection, the
// steps run, why the script stopped, and the result.
void ImprimirInformeGuion(std::ostream& out, const InformeGuion& i);

// Prints the report as --json asks; the exit status: 0 when every step ran and the dialog
// saved (resultado not 0), 1 otherwise.
int SalidaGuion(Context& ctx, const InformeGuion& informe);

}  // namespace kivmovfrec::cli
