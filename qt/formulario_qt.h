// A form as a QDialog: the controls the logic creates become widgets laid out in creation order.
//
// Layout: each panel (1, 2, ...) is a page of a QStackedWidget on top; controls on no panel
// follow below it. Inside a page (or the part below) rows come in creation order in a form
// layout: a field with its caption as a label on the left (the label is the field's buddy, so
// its "&" access key moves the focus there), check boxes, labels and links across, grids and
// trees across with their caption above, consecutive buttons in one row aligned right. A panel
// frame (ClaseControl::Panel) is a group box that holds the controls of its panel created after
// it. Tab order is creation order.
//
// Events: the logic's setters run with the form's events silenced (Silencio), so only a
// person's action reaches a handler. Escape presses the button marked Cancela (nothing without
// one); Enter presses the one marked PorDefecto; the close box asks the logic (AlPedirCierre).
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <QPointer>

#include "kivmovfrec/controles.h"
#include "ventanas_qt.h"

class QDialog;
class QFormLayout;
class QHBoxLayout;
class QStackedWidget;
class QWidget;
class QLabel;

namespace kivmovfrec::qt {

class DialogoQt;
class FormularioQt;

// What every control keeps beside its widget: the common properties, applied to the widget and
// to its caption label.
class ControlQt {
 public:
  ControlQt(FormularioQt& form, std::string_view nombre, controles::ClaseControl clase, int panel)
      : form(form), nombre(nombre), clase(clase), panel(panel) {}
  virtual ~ControlQt() = default;
  virtual controles::IControl& Interfaz() = 0;
  // The widget that takes the focus, the one laid out, and the caption label (may be null).
  virtual QWidget* Foco() const { return widget; }
  virtual void MostrarCaption();
  // Fits the widget to what the logic put in it, just before the window is shown.
  virtual void AntesDeMostrar() {}
  void Aplicar();  // enabled, visible, hint and colours onto the widgets

  FormularioQt& form;
  std::string nombre;
  controles::ClaseControl clase;
  int panel;
  QWidget* widget = nullptr;   // laid out in the form
  QLabel* etiqueta = nullptr;  // the caption beside or above it, when the control has one
  std::string caption;
  std::string hint;
  bool enabled = true;
  bool visible = true;
  int32_t fondo = -1;
  int32_t texto = -1;
};

class FormularioQt final : public controles::IFormulario {
 public:
  FormularioQt(std::string nombre, OpcionesVentanas opciones,
               std::shared_ptr<EstadoCaptura> captura);
  ~FormularioQt() override;

  const std::string& Nombre() const override { return nombre_; }
  std::string Titulo() const override { return titulo_; }
  void Titulo(std::string_view titulo) override;
  controles::IControl* Buscar(std::string_view nombre) override;
  std::vector<controles::IControl*> Controles() override;
  int PanelVisible() const override { return panel_; }
  void MostrarPanel(int panel) override;
  controles::IControl* Foco() override;
  int MostrarModal() override;
  void Cerrar(int resultado) override;
  void AlPedirCierre(controles::Evento evento) override { al_pedir_cierre_ = std::move(evento); }

  // ---- For the controls and the window ----
  QDialog& Ventana();
  // Whether the logic is setting values (events are not fired then).
  bool Silenciado() const { return silencio_ > 0; }
  struct Silencio {
    explicit Silencio(FormularioQt& f) : f(f) { ++f.silencio_; }
    ~Silencio() { --f.silencio_; }
    FormularioQt& f;
  };
  bool AlAlcance(const ControlQt& c) const;
  void TomarFoco(ControlQt& c);
  void FocoDePersona(QWidget* w);
  void MarcarCancela(ControlQt* boton, bool si);
  void PedirCierre();  // the close box
  void Escape();
  // Runs a person's action on a control: an exception thrown by the logic's handler must not
  // cross Qt's event loop, so it ends the modal loop and MostrarModal rethrows it.
  void Evento(const std::function<void()>& handler);

 protected:
  controles::IControl& Agregar(std::string_view nombre, controles::ClaseControl clase,
                               int panel) override;

 private:
  struct Contenedor {
    QFormLayout* layout = nullptr;
    QHBoxLayout* botones = nullptr;  // the row the last button went into, while buttons follow
  };
  Contenedor& ContenedorDe(int panel);
  void Ubicar(ControlQt& c);
  void Capturar();

  std::string nombre_;
  std::string titulo_;
  OpcionesVentanas opciones_;
  std::shared_ptr<EstadoCaptura> captura_;
  QPointer<DialogoQt> ventana_;
  QStackedWidget* paginas_ = nullptr;
  std::map<int, QWidget*> pagina_;
  std::map<int, Contenedor> contenedor_;
  std::vector<std::unique_ptr<ControlQt>> controles_;
  QWidget* ultimo_en_tab_ = nullptr;
  ControlQt* cancela_ = nullptr;
  ControlQt* foco_ = nullptr;
  int panel_ = 0;
  int silencio_ = 0;
  bool abierto_ = false;
  int resultado_ = 0;
  std::exception_ptr fallo_;
  controles::Evento al_pedir_cierre_;
};

class FabricaQt final : public controles::IFabricaFormularios {
 public:
  FabricaQt(OpcionesVentanas opciones, std::shared_ptr<EstadoCaptura> captura)
      : opciones_(std::move(opciones)), captura_(std::move(captura)) {}
  std::unique_ptr<controles::IFormulario> Crear(std::string_view nombre) override;

 private:
  OpcionesVentanas opciones_;
  std::shared_ptr<EstadoCaptura> captura_;
};

// The control object for `clase` (controles_qt.cpp); its widgets are made, not yet laid out.
std::unique_ptr<ControlQt> NuevoControl(FormularioQt& form, std::string_view nombre,
                                        controles::ClaseControl clase, int panel);

}  // namespace kivmovfrec::qt
