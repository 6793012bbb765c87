// Step scripts in the command line: reading the script file and printing what a dialog played
// by it did (kivmovfrec/guion.h), as text or JSON. Shared by the commands with --guion.
#pragma once

#include <nlohmann/json.hpp>

#include <ostream>
#include <string>

#include "kivmovfrec/guion.h"

namespace kivmovfrec::cli {

// The text of the script file; UsageError when it is a folder or cannot be read.
std::string LeerGuion(const std::string& archivo);

// The report as a JSON object: Mensajes (Numero, Texto, Titulo, Icono, Respuesta), Ayuda,
// Formulario, Panel, Foco, Seleccion, Resultado, Pasos, PasosEjecutados, Error (null when none).
nlohmann::ordered_json InformeJson(const InformeGuion& i);

// The report as text: one line per message ("Mensaje N [icono] texto -> respuesta"), per help
// topic, then the form, the steps, the script's error and the result.
void ImprimirInforme(std::ostream& out, const InformeGuion& i);

}  // namespace kivmovfrec::cli
