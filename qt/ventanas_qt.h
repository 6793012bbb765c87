// Real windows for the component's dialogs: Qt6 Widgets behind the control interfaces
// (kivmovfrec/controles.h), message boxes and input boxes.
//
// A host calls Instalar on the services it hands to the façade; from then on every dialog the
// façade opens is a QDialog, every message a QMessageBox and every prompt a small input box (a
// numeric one reads Spanish numbers as the console does: "1.500,25"). This header pulls in no
// Qt header, so a host can include it in code that never shows a window; the application object
// is made only when AsegurarAplicacion (or Instalar) runs.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kivmovfrec/services.h"

class QWidget;

namespace kivmovfrec::qt {

struct OpcionesVentanas {
  // Called with each window (a form, a message box, a numeric prompt) once its modal loop runs;
  // whatever it does happens as a person's actions would. Tests and recorders use it. A form's
  // window has the form's name as its object name and each control's widget the control's name;
  // message boxes are named "mensaje", numeric prompts "pedirNumero" and text prompts
  // "pedirTexto".
  std::function<void(QWidget& ventana)> al_mostrar;
  // When set, the first form shown is not run: its panel `panel_captura` (the one the dialog
  // shows when 0) is rendered to this PNG file and the form returns 0, as if cancelled. Messages
  // and prompts are then left to the services already installed (they need no window).
  std::string captura;
  int panel_captura = 0;
};

// What became of a capture: done, or why not (the PNG could not be written, no such panel).
struct EstadoCaptura {
  bool hecha = false;
  std::string error;
};

// Creates the QApplication when there is none yet. `sin_pantalla` selects the offscreen
// platform unless QT_QPA_PLATFORM already names one, so a capture needs no display.
void AsegurarAplicacion(bool sin_pantalla = false);

// Makes Qt the services' form factory and, unless capturing, their messages and numeric input.
// Creates the application object when needed. The returned state tells how a capture went.
std::shared_ptr<const EstadoCaptura> Instalar(SuiteServices& servicios,
                                              OpcionesVentanas opciones = {});

}  // namespace kivmovfrec::qt
