// clsMovFrecuente::ShowWizard: the movement wizard (frmWMovFrec) on the current movement, after
// the rights check of its kind.
#include <string>

#include "api/derechos.h"
#include "kivmovfrec/mov_frecuente.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "ui/formula_editor/frm_def_formula.h"
#include "ui/wizard/frm_wmovfrec.h"

namespace kivmovfrec {

int32_t clsMovFrecuente::ShowWizard(int32_t lUser) {
  ultimo_error_.clear();
  if (!ctx_.cn) return 0;
  try {
    const int idioma = Idioma();
    const clsRegMovimientoFrecuente& cabecera = *estructura_->MovFrecuente();
    const int16_t tipo = ToInt(cabecera.Tipo());
    IMessages& mensajes = *ctx_.servicios.messages;
    const std::string_view opcion = api::OpcionDeTipo(tipo);
    if (!opcion.empty() && !api::TieneDerecho(*ctx_.servicios.rights, empresa_, opcion,
                                              cabecera.ID() > 0 ? 'M' : 'A')) {
      mensajes.Show(resources::Mensaje({msg::kSinDerechos, msg::kConsulteAdministrador},
                                       msg::kTituloMovimientosFrecuentes, MsgIcon::Exclamation,
                                       MsgButtons::OK, idioma));
      return 0;
    }
    if (!ctx_.servicios.formularios) {
      ultimo_error_ = "no hay dónde mostrar el asistente (sin formularios)";
      mensajes.Show({"No se puede mostrar el asistente: " + ultimo_error_ + ".",
                     std::string(resources::Texto(msg::kTituloMovimientosFrecuentes, idioma)),
                     MsgIcon::Exclamation, MsgButtons::OK, 1});
      return 0;
    }
    if (tipo < 1 || tipo > 3) {
      ultimo_error_ = "el movimiento de tipo " + std::to_string(tipo) + " no tiene asistente";
      return 0;
    }
    ui::DependenciasWizard dep;
    dep.calendario = &Calendario();
    dep.reportar = [this](int accion, const std::exception& e) { Reportar(accion, e); };
    dep.guardar = [this](clsMFTipo& mf) { return GuardarEnTransaccion(mf, *ctx_.servicios.db); };
    dep.editar_formula = [this](int linea, const std::string& formula) {
      return ui::frmDefFormula(ctx_, *estructura_, linea, false).Mostrar(formula);
    };
    ui::frmWMovFrec wizard(ctx_, empresa_, std::move(dep));
    return wizard.Mostrar(*estructura_, static_cast<int16_t>(lUser));
  } catch (const std::exception& e) {
    Reportar(msg::kErrorCargarAsistente, e);
    return 0;
  }
}

}  // namespace kivmovfrec
