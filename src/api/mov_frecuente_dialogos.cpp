// The dialogs the wizard opens, as façade members of their own: the frequency editor, the user
// picker and the link dialog.
#include <string>

#include "api/derechos.h"
#include "kivmovfrec/mov_frecuente.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "storage/tabla_movimientos.h"
#include "ui/links/frm_vincular.h"
#include "ui/links/grupo_vinculos.h"
#include "ui/links/texto_vinculos.h"
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

bool clsMovFrecuente::GuardarVinculos(int32_t lIDMF, std::string_view sVinculos) {
  ultimo_error_.clear();
  if (!ctx_.cn) return false;
  try {
    const int idioma = Idioma();
    clsRegMovimientoFrecuente mov(ctx_.Reloj());
    if (!storage::CargarMovimiento(*ctx_.cn, lIDMF, mov)) return false;
    const int16_t tipo = ToInt(mov.Tipo());
    if (!api::TieneDerecho(*ctx_.servicios.rights, empresa_, api::OpcionDeTipo(tipo), 'M')) {
      api::MostrarSinDerechos(*ctx_.servicios.messages, tipo, idioma);
      return false;
    }
    const std::string titulo(resources::Texto(msg::TituloDeTipo(tipo), idioma));
    const ui::LecturaVinculos lectura = ui::LeerVinculos(sVinculos);
    if (!lectura.ok()) {
      ctx_.servicios.messages->Show(
          {lectura.error, titulo, MsgIcon::Exclamation, MsgButtons::OK, 1, -1});
      return false;
    }
    Transaccion transaccion(*ctx_.cn);
    const std::vector<int> rechazo =
        ui::RevisarGrupo(*ctx_.cn, lIDMF, mov.Recurrencia() > 0, sVinculos);
    if (!rechazo.empty()) {
      ctx_.servicios.messages->Show(
          resources::Mensaje({rechazo[0], rechazo[1]}, msg::TituloDeTipo(tipo),
                             MsgIcon::Exclamation, MsgButtons::OK, idioma));
      return false;
    }
    ui::RegrabarGrupo(*ctx_.cn, lIDMF, lIDMF, mov.MovVinculado() > 0 ? mov.MovVinculado() : lIDMF,
                      sVinculos);
    transaccion.Commit();
    return true;
  } catch (const std::exception& e) {
    Reportar(msg::kErrorGrabarMovimiento, e);
    return false;
  }
}

}  // namespace kivmovfrec
