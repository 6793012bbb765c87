#include "formulario_qt.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPixmap>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <stdexcept>

namespace kivmovfrec::qt {

using controles::ClaseControl;

// The window: the close box and Escape go to the form, which asks the logic.
class DialogoQt final : public QDialog {
 public:
  explicit DialogoQt(FormularioQt& form) : form_(form) {}
  bool cerrando = false;

 protected:
  void closeEvent(QCloseEvent* e) override {
    if (cerrando) {
      e->accept();
      return;
    }
    e->ignore();
    form_.PedirCierre();
  }
  void reject() override { form_.PedirCierre(); }
  void keyPressEvent(QKeyEvent* e) override {
    if (e->key() == Qt::Key_Escape && e->modifiers() == Qt::NoModifier) {
      form_.Escape();
      return;
    }
    QDialog::keyPressEvent(e);
  }

 private:
  FormularioQt& form_;
};

namespace {

QString Q(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

bool EsBoton(ClaseControl c) {
  return c == ClaseControl::Boton || c == ClaseControl::BotonImagen;
}

}  // namespace

FormularioQt::FormularioQt(std::string nombre, OpcionesVentanas opciones,
                           std::shared_ptr<EstadoCaptura> captura)
    : nombre_(std::move(nombre)), opciones_(std::move(opciones)), captura_(std::move(captura)) {
  ventana_ = new DialogoQt(*this);
  ventana_->setObjectName(Q(nombre_));
  ventana_->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  auto* v = new QVBoxLayout(ventana_);
  paginas_ = new QStackedWidget;
  paginas_->hide();
  v->addWidget(paginas_);
  auto* general = new QFormLayout;
  general->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  v->addLayout(general);
  contenedor_[0].layout = general;
  QObject::connect(qApp, &QApplication::focusChanged, ventana_, [this](QWidget*, QWidget* ahora) {
    if (abierto_) FocoDePersona(ahora);
  });
}

FormularioQt::~FormularioQt() {
  // The widgets go with the window; the control objects only point at them.
  cancela_ = nullptr;
  QObject::disconnect(qApp, nullptr, ventana_, nullptr);
  delete ventana_.data();
  controles_.clear();
}

QDialog& FormularioQt::Ventana() {
  return *ventana_;
}

void FormularioQt::Titulo(std::string_view titulo) {
  titulo_ = titulo;
  ventana_->setWindowTitle(Q(titulo_));
}

controles::IControl* FormularioQt::Buscar(std::string_view nombre) {
  for (auto& c : controles_)
    if (c->nombre == nombre) return &c->Interfaz();
  return nullptr;
}

std::vector<controles::IControl*> FormularioQt::Controles() {
  std::vector<controles::IControl*> out;
  for (auto& c : controles_) out.push_back(&c->Interfaz());
  return out;
}

FormularioQt::Contenedor& FormularioQt::ContenedorDe(int panel) {
  auto c = contenedor_.find(panel);
  if (c != contenedor_.end()) return c->second;
  auto* pagina = new QWidget;
  auto* layout = new QFormLayout(pagina);
  layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  paginas_->addWidget(pagina);
  pagina_[panel] = pagina;
  return contenedor_[panel] = {layout, nullptr};
}

void FormularioQt::Ubicar(ControlQt& c) {
  Contenedor& donde = ContenedorDe(c.panel);
  if (EsBoton(c.clase)) {
    if (!donde.botones) {
      auto* fila = new QWidget;
      donde.botones = new QHBoxLayout(fila);
      donde.botones->setContentsMargins(0, 0, 0, 0);
      donde.botones->addStretch(1);
      donde.layout->addRow(fila);
    }
    donde.botones->addWidget(c.widget);
    return;
  }
  donde.botones = nullptr;
  switch (c.clase) {
    case ClaseControl::Texto:
    case ClaseControl::Fecha:
    case ClaseControl::Hora:
    case ClaseControl::Lista:
      donde.layout->addRow(c.etiqueta, c.widget);
      break;
    case ClaseControl::Casilla:
      donde.layout->addRow(QString(), c.widget);
      break;
    case ClaseControl::Panel: {
      donde.layout->addRow(c.widget);
      auto* interior = new QFormLayout(c.widget);
      interior->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
      donde.layout = interior;  // the panel's next controls go inside the frame
      break;
    }
    default:
      donde.layout->addRow(c.widget);
      break;
  }
}

controles::IControl& FormularioQt::Agregar(std::string_view nombre, ClaseControl clase, int panel) {
  if (Buscar(nombre))
    throw std::logic_error(nombre_ + ": el control «" + std::string(nombre) + "» ya existe");
  Silencio s(*this);
  std::unique_ptr<ControlQt> c = NuevoControl(*this, nombre, clase, panel);
  Ubicar(*c);
  c->Aplicar();
  QWidget* foco = c->Foco();
  if (foco->focusPolicy() != Qt::NoFocus) {
    if (ultimo_en_tab_) QWidget::setTabOrder(ultimo_en_tab_, foco);
    ultimo_en_tab_ = foco;
  }
  controles_.push_back(std::move(c));
  return controles_.back()->Interfaz();
}

void FormularioQt::MostrarPanel(int panel) {
  panel_ = panel;
  auto p = pagina_.find(panel);
  paginas_->setVisible(p != pagina_.end());
  if (p != pagina_.end()) paginas_->setCurrentWidget(p->second);
  if (foco_ && !AlAlcance(*foco_)) foco_ = nullptr;
}

bool FormularioQt::AlAlcance(const ControlQt& c) const {
  return c.visible && c.enabled && (c.panel == 0 || c.panel == panel_);
}

void FormularioQt::TomarFoco(ControlQt& c) {
  if (!AlAlcance(c))
    throw std::logic_error(nombre_ + ": «" + c.nombre +
                           "» no puede recibir el foco (oculto, deshabilitado o en otro panel)");
  foco_ = &c;
  c.Foco()->setFocus(Qt::OtherFocusReason);
}

void FormularioQt::FocoDePersona(QWidget* w) {
  for (; w; w = w->parentWidget()) {
    if (w == ventana_) return;
    for (auto& c : controles_)
      if (c->Foco() == w || c->widget == w) {
        foco_ = c.get();
        return;
      }
  }
}

// The window's focus child is where a person's clicks and tabs left the focus, whether or not
// the window is active; the logic's last SetFocus stands in when it is not a control in reach.
controles::IControl* FormularioQt::Foco() {
  if (QWidget* w = abierto_ ? ventana_->focusWidget() : nullptr) FocoDePersona(w);
  return foco_ && AlAlcance(*foco_) ? &foco_->Interfaz() : nullptr;
}

void FormularioQt::MarcarCancela(ControlQt* boton, bool si) {
  if (si)
    cancela_ = boton;
  else if (cancela_ == boton)
    cancela_ = nullptr;
}

void FormularioQt::Escape() {
  if (!cancela_ || !AlAlcance(*cancela_)) return;
  if (auto* b = qobject_cast<QAbstractButton*>(cancela_->widget)) b->click();
}

void FormularioQt::PedirCierre() {
  if (!abierto_) return;
  if (al_pedir_cierre_)
    Evento(al_pedir_cierre_);
  else
    Cerrar(0);
}

void FormularioQt::Evento(const std::function<void()>& handler) {
  if (fallo_) return;
  try {
    handler();
  } catch (...) {
    fallo_ = std::current_exception();
    Cerrar(0);
  }
}

void FormularioQt::Cerrar(int resultado) {
  resultado_ = resultado;
  if (!abierto_) return;
  Foco();  // as it was when the window closed
  abierto_ = false;
  ventana_->cerrando = true;
  ventana_->done(resultado);
  ventana_->cerrando = false;
}

void FormularioQt::Capturar() {
  captura_->hecha = false;
  if (opciones_.panel_captura > 0) {
    if (!pagina_.count(opciones_.panel_captura)) {
      captura_->error = nombre_ + " no tiene el panel " + std::to_string(opciones_.panel_captura);
      return;
    }
    MostrarPanel(opciones_.panel_captura);
  }
  for (auto& c : controles_) c->AntesDeMostrar();
  ventana_->adjustSize();
  ventana_->show();
  QApplication::processEvents();
  const QPixmap imagen = ventana_->grab();
  ventana_->hide();
  if (!imagen.save(Q(opciones_.captura), "PNG", 0)) {  // 0: smallest file
    captura_->error = "no se puede escribir " + opciones_.captura;
    return;
  }
  captura_->hecha = true;
}

int FormularioQt::MostrarModal() {
  if (abierto_) throw std::logic_error(nombre_ + " ya se está mostrando");
  resultado_ = 0;
  fallo_ = nullptr;
  if (!opciones_.captura.empty()) {
    // Only the first form is rendered; any other one a capture reaches closes at once.
    if (!captura_->hecha && captura_->error.empty()) Capturar();
    return 0;
  }
  abierto_ = true;
  for (auto& c : controles_) c->AntesDeMostrar();
  if (opciones_.al_mostrar) {
    QPointer<DialogoQt> v = ventana_;
    auto hook = opciones_.al_mostrar;
    QTimer::singleShot(0, ventana_, [v, hook] {
      if (v && v->isVisible()) hook(*v);
    });
  }
  ventana_->exec();
  if (abierto_) Foco();
  abierto_ = false;
  if (fallo_) std::rethrow_exception(std::exchange(fallo_, nullptr));
  return resultado_;
}

std::unique_ptr<controles::IFormulario> FabricaQt::Crear(std::string_view nombre) {
  return std::make_unique<FormularioQt>(std::string(nombre), opciones_, captura_);
}

}  // namespace kivmovfrec::qt
