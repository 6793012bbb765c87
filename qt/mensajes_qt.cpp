// Message boxes, numeric prompts and the installation of the Qt services.
#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <cstdlib>
#include <utility>

#include "formulario_qt.h"
#include "kivmovfrec/vb.h"
#include "ventanas_qt.h"

namespace kivmovfrec::qt {
namespace {

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

// Runs the window's modal loop, handing it to the hook once the loop runs.
template <class W>
int Ejecutar(W& ventana, const std::function<void(QWidget&)>& al_mostrar) {
  if (al_mostrar) {
    QPointer<QWidget> v = &ventana;
    QTimer::singleShot(0, &ventana, [v, al_mostrar] {
      if (v && v->isVisible()) al_mostrar(*v);
    });
  }
  return ventana.exec();
}

class MensajesQt final : public IMessages {
 public:
  explicit MensajesQt(std::function<void(QWidget&)> al_mostrar)
      : al_mostrar_(std::move(al_mostrar)) {}

  // The buttons in the order the request counts them (default_button 1 is the first), with
  // their Spanish captions; the close box and Escape answer the last one (No, Cancelar, or
  // Aceptar when it is alone).
  int Show(const MessageRequest& r) override {
    QMessageBox caja;
    caja.setObjectName("mensaje");
    caja.setWindowTitle(Q(r.caption));
    caja.setText(Q(r.text));
    switch (r.icon) {
      case MsgIcon::Critical:
        caja.setIcon(QMessageBox::Critical);
        break;
      case MsgIcon::Question:
        caja.setIcon(QMessageBox::Question);
        break;
      case MsgIcon::Exclamation:
        caja.setIcon(QMessageBox::Warning);
        break;
      case MsgIcon::Information:
        caja.setIcon(QMessageBox::Information);
        break;
      case MsgIcon::None:
        break;
    }
    std::vector<std::pair<QPushButton*, int>> botones;
    const auto agregar = [&](const char* caption, QMessageBox::ButtonRole rol, int codigo) {
      botones.emplace_back(caja.addButton(QString::fromUtf8(caption), rol), codigo);
    };
    switch (r.buttons) {
      case MsgButtons::OK:
        agregar("&Aceptar", QMessageBox::AcceptRole, kMsgOK);
        break;
      case MsgButtons::OKCancel:
        agregar("&Aceptar", QMessageBox::AcceptRole, kMsgOK);
        agregar("&Cancelar", QMessageBox::RejectRole, kMsgCancel);
        break;
      case MsgButtons::YesNoCancel:
        agregar("&Sí", QMessageBox::YesRole, kMsgYes);
        agregar("&No", QMessageBox::NoRole, kMsgNo);
        agregar("&Cancelar", QMessageBox::RejectRole, kMsgCancel);
        break;
      case MsgButtons::YesNo:
        agregar("&Sí", QMessageBox::YesRole, kMsgYes);
        agregar("&No", QMessageBox::NoRole, kMsgNo);
        break;
    }
    const size_t defecto = static_cast<size_t>(r.default_button) - 1;
    caja.setDefaultButton(botones[defecto < botones.size() ? defecto : 0].first);
    caja.setEscapeButton(botones.back().first);
    Ejecutar(caja, al_mostrar_);
    for (const auto& [boton, codigo] : botones)
      if (caja.clickedButton() == boton) return codigo;
    return botones.back().second;
  }

 private:
  std::function<void(QWidget&)> al_mostrar_;
};

// An input box: the prompt, a field with the proposed text selected, Aceptar and Cancelar. A
// numeric prompt ("pedirNumero") takes the text only when it reads as a Spanish number
// (vb::LeerNumeroTecleado, as the console does) and otherwise shows why beneath the field and stays
// open; a text prompt ("pedirTexto") takes any text.
class PedirQt final : public QDialog {
 public:
  PedirQt(bool numero, const std::string& prompt, const std::string& caption,
          const std::string& propuesto)
      : numero_(numero) {
    setObjectName(numero ? "pedirNumero" : "pedirTexto");
    setWindowTitle(Q(caption));
    auto* v = new QVBoxLayout(this);
    auto* etiqueta = new QLabel(Q(prompt));
    etiqueta->setObjectName("lPregunta");
    etiqueta->setWordWrap(true);
    v->addWidget(etiqueta);
    campo_ = new QLineEdit(Q(propuesto));
    campo_->setObjectName(numero ? "tNumero" : "tTexto");
    campo_->selectAll();
    etiqueta->setBuddy(campo_);
    v->addWidget(campo_);
    error_ = new QLabel;
    error_->setObjectName("lError");
    error_->setWordWrap(true);
    error_->hide();
    v->addWidget(error_);
    auto* botones = new QDialogButtonBox;
    botones->addButton("&Aceptar", QDialogButtonBox::AcceptRole)->setDefault(true);
    botones->addButton("&Cancelar", QDialogButtonBox::RejectRole);
    connect(botones, &QDialogButtonBox::accepted, this, &PedirQt::accept);
    connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);
    v->addWidget(botones);
  }
  void accept() override {
    texto = campo_->text().toStdString();
    if (numero_) {
      std::string explicacion;
      const std::optional<double> n = vb::LeerNumeroTecleado(texto, &explicacion);
      if (!n) {
        error_->setText(Q(explicacion));
        error_->show();
        campo_->selectAll();
        campo_->setFocus();
        return;
      }
      valor = *n;
    }
    QDialog::accept();
  }
  double valor = 0;
  std::string texto;

 private:
  bool numero_;
  QLineEdit* campo_;
  QLabel* error_;
};

class EntradaQt final : public IInput {
 public:
  explicit EntradaQt(std::function<void(QWidget&)> al_mostrar)
      : al_mostrar_(std::move(al_mostrar)) {}
  std::optional<double> PedirNumero(const std::string& prompt, const std::string& caption,
                                    double propuesto) override {
    PedirQt d(true, prompt, caption, vb::CStr(Variant(propuesto)));
    if (Ejecutar(d, al_mostrar_) != QDialog::Accepted) return std::nullopt;
    return d.valor;
  }
  std::optional<std::string> PedirTexto(const std::string& prompt, const std::string& caption,
                                        const std::string& propuesto) override {
    PedirQt d(false, prompt, caption, propuesto);
    if (Ejecutar(d, al_mostrar_) != QDialog::Accepted) return std::nullopt;
    return d.texto;
  }

 private:
  std::function<void(QWidget&)> al_mostrar_;
};

}  // namespace

void AsegurarAplicacion(bool sin_pantalla) {
  if (QApplication::instance()) return;
  if (sin_pantalla && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char nombre[] = "movfrec";
  static char* argv[] = {nombre, nullptr};
  // Lives until the process ends: the windows of every later dialog need it.
  static QApplication* aplicacion = new QApplication(argc, argv);
  (void)aplicacion;
}

std::shared_ptr<const EstadoCaptura> Instalar(SuiteServices& servicios, OpcionesVentanas opciones) {
  AsegurarAplicacion(!opciones.captura.empty());
  auto estado = std::make_shared<EstadoCaptura>();
  if (opciones.captura.empty()) {
    servicios.messages = std::make_shared<MensajesQt>(opciones.al_mostrar);
    servicios.input = std::make_shared<EntradaQt>(opciones.al_mostrar);
  }
  servicios.formularios = std::make_shared<FabricaQt>(std::move(opciones), estado);
  return estado;
}

}  // namespace kivmovfrec::qt
