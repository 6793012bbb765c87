// The dialogs the wizard opens, as façade members of their own: the frequency editor, the user
// picker and the link dialog.
#include <string>

#include "api/derechos.h"
#include "kivmovfrec/mov_frecuente.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "ui/links/frm_vincular.h"
#include "ui/user_picker/frm_find_user.h"

namespace kivmovfrec {

bool clsMovFrecuente::FormulariosDisponibles(int titulo, std::string_view que) {
  if (ctx_.servicios.formularios) return true;
  ultimo_error_ = "no hay dónde mostrar diálogos (los servicios no tienen formularios)";
  if (ctx_.servicios.messages) {
    MessageRequest m =
        resources::Mensaje({}, titulo, MsgIcon::Exclamation, MsgButtons::OK, Idioma());
    m.text = "No se puede mostrar " + std::string(que) + ": " + ultimo_error_ + ".";
    ctx_.servicios.messages->Show(m);
  }
  return false;
}

std::string clsMovFrecuente::EditarFrecuencia() {
  ultimo_error_.clear();
  if (!ctx_.cn) return "";
  try {
    if (!ctx_.servicios.calendar &&
        !FormulariosDisponibles(msg::kTituloFrecuencia, "el editor de frecuencias"))
      return "";
    return Calendario().EditarFrecuencia();
  } catch (const std::exception& e) {
    Reportar(msg::kErrorGrabarMovimiento, e);
    return "";
  }
}

std::optional<std::string> clsMovFrecuente::ElegirUsuarios(std::string_view sUsuarios,
                                                           std::string* identificaciones) {
  ultimo_error_.clear();
  if (!ctx_.cn) return std::nullopt;
  try {
    if (!FormulariosDisponibles(msg::kTituloSeleccionUsuarios, "la selección de usuarios"))
      return std::nullopt;
    const auto eleccion = ui::frmFindUser(*ctx_.cn, ctx_.servicios, Idioma()).Mostrar(sUsuarios);
    if (!eleccion) return std::nullopt;
    if (identificaciones) *identificaciones = eleccion->identificaciones;
    return eleccion->codigos;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorGrabarMovimiento, e);
    return std::nullopt;
  }
}

std::optional<std::string> clsMovFrecuente::VincularMovimientos(int32_t lIDMF, int16_t iTipo,
                                                                std::string_view sVinculos) {
  ultimo_error_.clear();
  if (!ctx_.cn) return std::nullopt;
  try {
    if (!FormulariosDisponibles(msg::kTituloVincular, "el diálogo de vínculos"))
      return std::nullopt;
    return ui::frmVincular(*ctx_.cn, ctx_.servicios, Idioma(), empresa_, lIDMF,
                           std::string(api::OpcionDeTipo(iTipo)))
        .Mostrar(sVinculos);
  } catch (const std::exception& e) {
    Reportar(msg::kErrorGrabarMovimiento, e);
    return std::nullopt;
  }
}

}  // namespace kivmovfrec
