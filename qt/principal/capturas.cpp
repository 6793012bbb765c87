#include "capturas.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QEvent>
#include <QPixmap>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include "comun_principal.h"

namespace kivmovfrec::qt {

std::string GuardarCaptura(QWidget& ventana, const std::string& png) {
  ventana.show();
  QApplication::processEvents();
  const QPixmap imagen = ventana.grab();
  if (imagen.isNull()) return "no se pudo dibujar la ventana";
  if (!imagen.save(Q(png), "PNG")) return "no se puede escribir " + png;
  return "";
}

std::string FotografiarPantalla(QWidget& ventana, const std::string& png) {
  ventana.show();
  // A window manager may take a moment to map the window; give it a few seconds.
  const QDeadlineTimer plazo(10000);
  while (!(ventana.windowHandle() && ventana.windowHandle()->isExposed()) && !plazo.hasExpired())
    QApplication::processEvents(QEventLoop::AllEvents, 50);
  if (!ventana.windowHandle() || !ventana.windowHandle()->isExposed())
    return "la ventana no llegó a verse en la pantalla";
  QApplication::processEvents();
  QScreen* pantalla = ventana.screen();
  const QPixmap imagen = pantalla ? pantalla->grabWindow(0) : QPixmap();
  if (imagen.isNull()) return "la pantalla no se pudo fotografiar";
  if (!imagen.save(Q(png), "PNG")) return "no se puede escribir " + png;
  return "";
}

namespace {

// Watches the application for the first dialog shown; removes itself once it has one.
class Vigia : public QObject {
 public:
  Vigia(std::string png, std::function<void(QDialog&)> antes, std::shared_ptr<std::string> estado)
      : QObject(qApp), png_(std::move(png)), antes_(std::move(antes)), estado_(std::move(estado)) {}

  bool eventFilter(QObject* objeto, QEvent* evento) override {
    auto* dialogo = qobject_cast<QDialog*>(objeto);
    if (evento->type() != QEvent::Show || !dialogo || !dialogo->isWindow()) return false;
    qApp->removeEventFilter(this);
    // Taken once the dialog's own loop runs, so that it is laid out and its buttons work.
    QTimer::singleShot(0, dialogo, [this, d = QPointer<QDialog>(dialogo)] {
      if (d && antes_) antes_(*d);
      if (!d) {
        *estado_ = "la ventana se cerró antes de dibujarla";
      } else {
        QApplication::processEvents();
        *estado_ = GuardarCaptura(*d, png_);
        d->reject();
      }
      deleteLater();
    });
    return false;
  }

 private:
  std::string png_;
  std::function<void(QDialog&)> antes_;
  std::shared_ptr<std::string> estado_;
};

}  // namespace

std::shared_ptr<const std::string> CapturarProximoDialogo(const std::string& png,
                                                          std::function<void(QDialog&)> antes) {
  auto estado = std::make_shared<std::string>("no se abrió ninguna ventana");
  qApp->installEventFilter(new Vigia(png, std::move(antes), estado));
  return estado;
}

}  // namespace kivmovfrec::qt
