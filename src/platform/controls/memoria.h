// Controls in memory: forms with no window, for step scripts, unattended hosts and tests.
//
// The dialog logic drives a memoria::Formulario through the IFormulario interface exactly as it
// drives real widgets. Whoever plays the person (the step-script driver, a test) uses the
// actions below, which behave as a person at the keyboard would: each finds the control by
// name, refuses what a person could not do, gives the control the focus (as a click does),
// changes its value and fires its event.
//
// An action is refused with std::invalid_argument and a Spanish reason, changing nothing, when
// the control does not exist, is of another kind, is hidden, disabled or on a panel not on
// view, or when the value cannot be entered (no list entry with that caption, a text longer
// than the field takes, a row or column that is not there or not editable).
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/controles.h"

namespace kivmovfrec::controles::memoria {

class Control;

class Formulario final : public IFormulario {
 public:
  // `al_mostrar` plays the person while the form is shown modally; it returns when it has
  // nothing more to do. Null: the form closes at once with 0, as if cancelled.
  Formulario(std::string nombre, std::function<void(Formulario&)> al_mostrar);
  ~Formulario() override;

  // ---- IFormulario ----
  const std::string& Nombre() const override { return nombre_; }
  std::string Titulo() const override { return titulo_; }
  void Titulo(std::string_view titulo) override { titulo_ = titulo; }
  IControl* Buscar(std::string_view nombre) override;
  std::vector<IControl*> Controles() override;
  int PanelVisible() const override { return panel_; }
  void MostrarPanel(int panel) override;
  IControl* Foco() override;
  int MostrarModal() override;
  void Cerrar(int resultado) override;
  void AlPedirCierre(Evento evento) override { al_pedir_cierre_ = std::move(evento); }

  // ---- A person's actions ----
  // Replaces the text of a text, date or time field (select all, type).
  void Escribir(std::string_view control, std::string_view texto);
  // Chooses the list entry whose caption is `caption` (access-key "&" ignored, blanks around
  // it ignored).
  void Elegir(std::string_view control, std::string_view caption);
  void Marcar(std::string_view control, bool marcada);
  // Presses a button, link label or image button, named or by its caption (access-key "&"
  // ignored) among the controls on view. A caption shared by two of them is refused.
  void Pulsar(std::string_view nombre_o_caption);
  // Grids: rows are counted among the rows on view (1 = the first shown), columns by header
  // (or a 1-based number among all columns when the header is a number).
  void SeleccionarFila(std::string_view grilla, int fila_visible);
  void EscribirCelda(std::string_view grilla, int fila_visible, std::string_view columna,
                     std::string_view texto);
  void TildarCelda(std::string_view grilla, int fila_visible, std::string_view columna, bool tilde);
  // Trees: a node by key or caption.
  void ElegirNodo(std::string_view arbol, std::string_view nodo);
  void ActivarNodo(std::string_view arbol, std::string_view nodo);
  // The close box.
  void PedirCierre();

  bool Abierto() const { return abierto_; }
  int Resultado() const { return resultado_; }
  // Text selected in the focused text field ("" when none or not a text field).
  std::string TextoSeleccionado();

  // For the controls of this form.
  void TomarFoco(Control& c);

 protected:
  IControl& Agregar(std::string_view nombre, ClaseControl clase, int panel) override;

 private:
  // The control a person is about to act on, checked as the actions say; it takes the focus.
  Control& AlAlcance(std::string_view nombre, std::initializer_list<ClaseControl> clases);
  bool AlAlcance(const Control& c) const;
  // Runs a person's action; a refused one leaves the focus where it was.
  template <class F>
  void Actuar(F&& accion);
  int FilaReal(class Grilla& g, int fila_visible) const;

  std::string nombre_;
  std::string titulo_;
  std::function<void(Formulario&)> al_mostrar_;
  std::vector<std::unique_ptr<Control>> controles_;
  int panel_ = 0;
  Control* foco_ = nullptr;
  bool abierto_ = false;
  int resultado_ = 0;
  Evento al_pedir_cierre_;
};

// Makes memoria::Formulario forms; every form it makes is played by the same `al_mostrar`.
class Fabrica final : public IFabricaFormularios {
 public:
  explicit Fabrica(std::function<void(Formulario&)> al_mostrar = {})
      : al_mostrar_(std::move(al_mostrar)) {}
  std::unique_ptr<IFormulario> Crear(std::string_view nombre) override;

 private:
  std::function<void(Formulario&)> al_mostrar_;
};

// A caption as shown: "&" access keys removed, "&&" as "&", blanks around it trimmed.
std::string CaptionVisible(std::string_view caption);

}  // namespace kivmovfrec::controles::memoria
