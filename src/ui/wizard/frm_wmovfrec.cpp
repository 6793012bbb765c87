// frmWMovFrec: building the form, navigation between panels, help, finishing, and the way every
// handler reports a refusal or a trapped error.
#include "ui/wizard/frm_wmovfrec.h"

#include <stdexcept>

#include "resources/catalogue.h"
#include "resources/help_topics.h"
#include "resources/msg.h"
#include "ui/wizard/frm_wmovfrec_partes.h"

namespace kivmovfrec::ui {

using namespace controles;

namespace {

constexpr const char* kFormulario = "frmWMovFrec";

// Help topic of panel `panel` of a movement of kind `tipo`.
const char* TemaAyuda(int tipo, bool agendado, int panel) {
  if (tipo == 3) return "calendario";
  static const char* const kAsiento[2][3] = {{"asiFreNom", "asiFreCta", "asiFreCta"},
                                             {"asiAgeNom", "asiAgeCta", "asiAgeFrec"}};
  static const char* const kComprobante[2][3] = {{"compFreNom", "compFreCta", "compFreCta"},
                                                 {"compAgeNom", "compAgeCta", "compAgeFrec"}};
  const auto& tabla = tipo == 1 ? kAsiento : kComprobante;
  return tabla[agendado ? 1 : 0][panel - kPanelGeneral];
}

}  // namespace

frmWMovFrec::frmWMovFrec(const ContextoMF& ctx, int32_t empresa, DependenciasWizard dep)
    : e_(std::make_unique<Estado>(ctx, empresa, std::move(dep))) {
  e_->idioma = ctx.parametros.idioma < 1 ? 1 : ctx.parametros.idioma;
}

frmWMovFrec::~frmWMovFrec() = default;

int32_t frmWMovFrec::Mostrar(clsMFTipo& mf, int16_t usuario) {
  Estado& e = *e_;
  if (!e.ctx.servicios.formularios) throw std::logic_error("no hay dónde mostrar formularios");
  if (!e.dep.calendario || !e.dep.reportar || !e.dep.guardar)
    throw std::logic_error("frmWMovFrec: faltan dependencias");
  const int tipo = ToInt(mf.MovFrecuente()->Tipo());
  if (tipo < 1 || tipo > 3) throw std::logic_error("frmWMovFrec: tipo sin asistente");
  e.tipo = tipo;
  e.mf = &mf;
  e.usuario = usuario;
  e.form = e.ctx.servicios.formularios->Crear(kFormulario);
  int paso = msg::kErrorInicializarPanel;
  try {
    e.form->Titulo(e.Texto(msg::TituloDeTipo(tipo)));
    if (tipo == 3) {
      e.CrearAviso();
    } else {
      e.CrearGeneral();
      e.cuentas = std::make_unique<PanelCuentas>(*e.form, kPanelCuentas, e.ctx, mf,
                                                 static_cast<int16_t>(tipo), e.empresa,
                                                 e.dep.editar_formula);
      e.CrearFrecuencia(kPanelFrecuencia);
    }
    e.CrearBotones();
    paso = msg::kErrorSetearPanel;
    if (tipo != 3) e.LlenarListas();
    paso = msg::kErrorCargarAsistente;
    if (tipo == 3) {
      e.CargarAviso();
    } else {
      e.CargarGeneral();
      e.cuentas->Cargar();
    }
    e.CargarFrecuencia();
    e.MostrarPanel(kPanelGeneral);
    e.nombre->SetFocus();
  } catch (const std::exception& ex) {
    e.dep.reportar(paso, ex);
    e.cuentas.reset();
    e.form.reset();
    return 0;
  }
  const int resultado = e.form->MostrarModal();
  e.cuentas.reset();
  e.form.reset();
  return resultado;
}

std::string frmWMovFrec::Estado::Texto(int n) const {
  return std::string(resources::Texto(n, idioma));
}

void frmWMovFrec::Estado::CrearBotones() {
  auto boton = [&](const char* nombre, int caption) -> IBoton& {
    IBoton& b = form->CrearBoton(nombre);
    b.Caption(Texto(caption));
    return b;
  };
  anterior = &boton("bfAnterior", msg::kBotonAnterior);
  siguiente = &boton("bfSiguiente", msg::kBotonSiguiente);
  finalizar = &boton("bfFinalizar", msg::kBotonFinalizar);
  cancelar = &boton("bfCancelar", msg::kBotonCancelar);
  ayuda = &boton("bfAyuda", msg::kBotonAyuda);
  cancelar->Cancela(true);
  anterior->AlPulsar([this] { Atrapar(msg::kErrorSetearPanel, [this] { Anterior(); }); });
  siguiente->AlPulsar([this] { Atrapar(msg::kErrorValidarPanel, [this] { Siguiente(); }); });
  finalizar->AlPulsar([this] { Finalizar(); });
  ayuda->AlPulsar([this] { Atrapar(msg::kErrorSetearPanel, [this] { Ayuda(); }); });
  cancelar->AlPulsar([this] { form->Cerrar(0); });
  form->AlPedirCierre([this] { form->Cerrar(0); });
}

int frmWMovFrec::Estado::UltimoPanel() const {
  return tipo == 3 ? kPanelGeneral : kPanelFrecuencia;
}

bool frmWMovFrec::Estado::EsAgendado() const {
  if (tipo == 3) return true;
  return agendado->Indice() >= 0 && agendado->Dato(agendado->Indice()) == kAgendado;
}

void frmWMovFrec::Estado::MostrarPanel(int p) {
  form->MostrarPanel(p);
  panel = p;
  anterior->Enabled(p > kPanelGeneral);
  siguiente->Enabled(p < UltimoPanel() && (p != kPanelCuentas || EsAgendado()));
}

IControl& frmWMovFrec::Estado::PrimerControl(int p) {
  if (p == kPanelCuentas) {
    if (IControl* grilla = form->Buscar("vsCuentas")) return *grilla;
  }
  if (p == kPanelFrecuencia) return *frecuencia;
  return *nombre;
}

void frmWMovFrec::Estado::Siguiente() {
  if (panel >= UltimoPanel()) return;
  if (panel == kPanelCuentas) {
    // The lines are checked before the frequency panel is shown.
    if (cuentas->Editando() || !cuentas->ValidarRenglones()) return;
    if (!EsAgendado()) return;
  }
  MostrarPanel(panel + 1);
  PrimerControl(panel).SetFocus();
}

void frmWMovFrec::Estado::Anterior() {
  if (panel <= kPanelGeneral) return;
  if (panel == kPanelCuentas && cuentas->Editando()) return;
  MostrarPanel(panel - 1);
  PrimerControl(panel).SetFocus();
}

void frmWMovFrec::Estado::Ayuda() {
  ctx.servicios.messages->ShowHelp(resources::HelpContext(TemaAyuda(tipo, EsAgendado(), panel)));
}

void frmWMovFrec::Estado::Finalizar() {
  const int en_vista = panel;
  bool valido = false;
  Atrapar(msg::kErrorValidarPanel, [&] {
    if (tipo == 3) {
      valido = ValidarAviso();
    } else {
      valido = ValidarGeneral() && ValidarCuentas() && (!EsAgendado() || ValidarFrecuencia());
    }
  });
  if (!valido) return;
  if (panel != en_vista) MostrarPanel(en_vista);  // the checks passed: back where the person was
  if (!Preguntar({msg::ConfirmaGrabarDeTipo(tipo)})) return;
  int32_t id = 0;
  Atrapar(msg::kErrorGrabarMovimiento, [&] { id = Guardar(); });
  if (id > 0) form->Cerrar(id);
}

void frmWMovFrec::Estado::Rechazar(std::initializer_list<int> lineas, IControl& campo) {
  ctx.servicios.messages->Show(resources::Mensaje(lineas, msg::TituloDeTipo(tipo),
                                                  MsgIcon::Exclamation, MsgButtons::OK, idioma));
  if (campo.Panel() > 0 && campo.Panel() != form->PanelVisible()) MostrarPanel(campo.Panel());
  campo.SetFocus();
  if (auto* t = dynamic_cast<ITexto*>(&campo)) t->SeleccionarTodo();
}

bool frmWMovFrec::Estado::Preguntar(std::initializer_list<int> lineas) {
  return ctx.servicios.messages->Show(resources::Mensaje(
             lineas, msg::TituloDeTipo(tipo), MsgIcon::Question, MsgButtons::YesNo, idioma)) ==
         kMsgYes;
}

void frmWMovFrec::Estado::Atrapar(int accion, const std::function<void()>& handler) {
  try {
    handler();
  } catch (const std::exception& ex) {
    dep.reportar(accion, ex);
  }
}

}  // namespace kivmovfrec::ui
