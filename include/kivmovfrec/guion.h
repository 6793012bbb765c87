// Step scripts: dialogs run without a display, played from a JSON list of steps.
//
// A GuionDialogos installed into a façade's services (Instalar) becomes its form factory, its
// message service and its numeric-input service. When a dialog is shown, the script's steps are
// applied to it one by one, as a person would act, until the dialog closes; a dialog the first
// one opens (a pick list, an editor) takes the steps that follow until it closes in turn. Every
// message shown is recorded with the answer it got.
//
// The script is a JSON array of steps (or an object whose "pasos" is that array). Each step is an
// object with one action; controls are named as the dialog names them:
//   {"escribir": "tNombreC", "texto": "Cierre"}             type into a text, date or time field
//   {"escribir": "vsItems", "fila": 1, "columna": "Ítems", "texto": "x"}   type into a grid cell
//   {"elegir": "cfFrecuencia", "opcion": "Mensual"}          choose a list entry by caption
//   {"elegir": TREE, "opcion": NODE}                         choose a tree node (key or caption)
//   {"activar": TREE, "opcion": NODE}                        double-click a tree node
//   {"marcar": "chRealizado", "valor": true}                 tick (or clear) a check box
//   {"tildar": "vsItems", "fila": 2, "columna": "Para", "valor": true}   tick a grid cell
//   {"seleccionar": "vsItems", "fila": 2}                    select a grid row
//   {"pulsar": "bfFinish"}  or  {"pulsar": "Aceptar"}        press a button by name or caption
//   {"cerrar": true}                                         the window's close box
//   {"responder": "si" | "no" | "aceptar" | "cancelar"}      answer the message just shown
//   {"responder": "1.500,25"}                                answer a numeric prompt
//   {"responder": "Horas extra"}                             answer a text prompt as typed
// Grid rows count the rows on view from 1; a column is named by its header or by its number
// from 1. "valor" defaults to true. Any step may add "en": "<form name>", which stops the run
// when the step would reach another form. Captions are compared without access-key "&" and
// surrounding blanks.
//
// A question (a message with more than an OK button), a numeric or a text prompt must be followed
// by a "responder" step ("cancelar" cancels a prompt); an OK-only message takes a following
// "responder": "aceptar" when there is one. A step that cannot be carried out (no such control, a
// hidden or disabled one, a question without its answer) stops the run: the open dialogs close as
// cancelled and the report says which step failed and why. Steps left over when the dialog has
// closed are reported too.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/export.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec {

struct KMF_API MensajeGuion {
  int numero = -1;  // catalogue number, -1 when the text is not one catalogue entry
  std::string texto;
  std::string titulo;
  std::string icono;      // "pregunta", "exclamacion", "informacion", "critico" or ""
  std::string respuesta;  // "aceptar", "cancelar", "si", "no", or the number typed
};

struct KMF_API InformeGuion {
  std::vector<MensajeGuion> mensajes;  // in the order shown (numeric prompts included)
  std::vector<int> ayuda;              // help context numbers asked for
  // The first dialog shown, as it was when it closed: its name, the panel on view, the
  // control with the focus ("" for none) and the text selected in it.
  std::string formulario;
  int panel = 0;
  std::string foco;
  std::string seleccion;
  int32_t resultado = 0;  // what the dialog reported when it closed (0 when cancelled)
  int pasos = 0;          // steps in the script
  int pasos_ejecutados = 0;
  // Why the run did not go as written: the failing step and its reason, or the steps left
  // over. Empty when every step ran.
  std::string error;
};

class KMF_API GuionDialogos {
 public:
  // Reads a script. Throws std::invalid_argument naming the step and the fault when the text is
  // not JSON, a step has no action or two, an unknown key, or a value of the wrong kind.
  static std::shared_ptr<GuionDialogos> Leer(std::string_view json);

  // Makes the script the services' form factory, message service and input (numbers and texts).
  virtual void Instalar(SuiteServices& servicios) = 0;
  // What happened so far (complete once the dialog has closed).
  virtual InformeGuion Informe() const = 0;

  virtual ~GuionDialogos() = default;
};

}  // namespace kivmovfrec
