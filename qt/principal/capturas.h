// Pictures of the windows for the documentation and for checks without a person: a window drawn
// by itself, the screen as a display shows it, and the next dialog that opens.
#pragma once

#include <functional>
#include <memory>
#include <string>

class QDialog;
class QWidget;

namespace kivmovfrec::qt {

// Renders `ventana` (shown at its size, off any screen when the platform is offscreen) to the
// PNG file `png`. Returns "" when written, otherwise why not.
std::string GuardarCaptura(QWidget& ventana, const std::string& png);

// Shows `ventana` on its screen, waits (at most ten seconds) until the display shows it and
// writes the whole screen, as it is seen, to the PNG file `png`: the proof that the window opens
// on a real display. Returns "" when written, otherwise why not.
std::string FotografiarPantalla(QWidget& ventana, const std::string& png);

// Arranges that the next dialog shown as a window of its own is, once on view, given to `antes`
// (which may press its buttons, as a person would), drawn into `png` and closed as if cancelled.
// The returned text is "" until then, and then "" when written or why not; "no se abrió ninguna
// ventana" while no dialog has been shown. Only the first dialog is taken.
std::shared_ptr<const std::string> CapturarProximoDialogo(const std::string& png,
                                                          std::function<void(QDialog&)> antes = {});

}  // namespace kivmovfrec::qt
