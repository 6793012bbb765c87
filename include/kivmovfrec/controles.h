// The controls a dialog is made of, as the dialog logic sees them.
//
// Each dialog (frmCheckList, frmWMovFrec, ...) is a logic class that asks a form factory for a
// form, creates its controls on it by name and reacts to their events. It never sees a widget:
// the in-memory implementation (headless hosts, step scripts, tests) and a desktop
// implementation (real widgets) both implement these interfaces, so the same logic runs in
// both.
//
// Conventions every implementation keeps:
// - A control belongs to the form that created it and lives as long as the form; references
//   handed out by the creators stay valid until the form is destroyed. Names are unique within
//   a form; creating a second control with a name in use throws std::logic_error.
// - Creation order is tab order. A control sits on a panel (1, 2, ...) or on none (0: always
//   on view); only the form's shown panel is on view.
// - Changing a value from the logic never fires an event; events come from a person (or a step
//   script acting as one). Handlers run on the caller's thread, before the action returns.
// - SetFocus on a control that cannot take the focus (hidden, disabled, on a panel not shown)
//   throws std::logic_error: it is a fault of the dialog, which must show the panel first.
// - Captions keep their access-key "&"; "&&" shows a literal "&".
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/export.h"

namespace kivmovfrec::controles {

enum class ClaseControl {
  Texto,        // t...: one- or multi-line text
  Fecha,        // dt...: a date typed as dd/mm/aaaa (the text may be incomplete or invalid)
  Hora,         // a time of day typed as hh:mm
  Lista,        // cf...: a drop-down list whose entries carry a 32-bit item datum
  Casilla,      // ch...: a check box
  Etiqueta,     // l...: a label
  Enlace,       // hl...: a link label; a click is its event
  Boton,        // bf...: a push button
  BotonImagen,  // img...: an image button with a highlighted picture under the pointer
  Grilla,       // vs...: a grid; cells may be check boxes; rows and columns may be hidden
  Arbol,        // a tree of captioned nodes with keys
  Panel,        // a frame that groups the controls of one panel
};

using Evento = std::function<void()>;

// A caption as shown: each access-key "&" removed, "&&" shown as one "&".
KMF_API std::string SinMarcasDeAcceso(std::string_view caption);

enum class Alineacion { Izquierda, Centro, Derecha };

class KMF_API IControl {
 public:
  virtual ~IControl() = default;
  virtual const std::string& Nombre() const = 0;
  virtual ClaseControl Clase() const = 0;
  virtual int Panel() const = 0;

  virtual std::string Caption() const = 0;
  virtual void Caption(std::string_view caption) = 0;
  // The hint shown when the pointer rests on the control (ToolTipText).
  virtual std::string Hint() const = 0;
  virtual void Hint(std::string_view hint) = 0;
  virtual bool Enabled() const = 0;
  virtual void Enabled(bool enabled) = 0;
  virtual bool Visible() const = 0;
  virtual void Visible(bool visible) = 0;
  // Background and text colour as VB colour values (&HBBGGRR); -1 keeps the toolkit's own.
  virtual int32_t ColorFondo() const = 0;
  virtual void ColorFondo(int32_t color) = 0;
  virtual int32_t ColorTexto() const = 0;
  virtual void ColorTexto(int32_t color) = 0;

  // Moves the form's focus here (see the conventions above).
  virtual void SetFocus() = 0;
};

// Text, date and time fields. A date or time field holds what was typed; the logic reads it
// with the VB date functions and refuses what is not a date.
class KMF_API ITexto : public IControl {
 public:
  virtual std::string Text() const = 0;
  virtual void Text(std::string_view text) = 0;
  // Selection in characters (not bytes) from the start of the text.
  virtual int SelStart() const = 0;
  virtual int SelLength() const = 0;
  virtual void Seleccionar(int start, int length) = 0;
  // Selects the whole text (after a refused check the field at fault shows it so).
  void SeleccionarTodo() { Seleccionar(0, -1); }
  // Most characters a person may type; 0 for no limit.
  virtual int MaxLength() const = 0;
  virtual void MaxLength(int length) = 0;
  // A person changed the text.
  virtual void AlCambiar(Evento evento) = 0;
};

class KMF_API ILista : public IControl {
 public:
  virtual void Limpiar() = 0;
  virtual void Agregar(std::string_view caption, int32_t dato) = 0;
  virtual int Cantidad() const = 0;
  virtual std::string Item(int indice) const = 0;
  virtual int32_t Dato(int indice) const = 0;
  // The chosen entry, -1 for none. Setting an index out of range throws std::out_of_range.
  virtual int Indice() const = 0;
  virtual void Indice(int indice) = 0;
  // A person chose an entry (also when it is the one already chosen).
  virtual void AlElegir(Evento evento) = 0;
};

class KMF_API ICasilla : public IControl {
 public:
  virtual bool Marcada() const = 0;
  virtual void Marcada(bool marcada) = 0;
  // A person ticked or cleared the box.
  virtual void AlCambiar(Evento evento) = 0;
};

// Buttons, link labels and image buttons.
class KMF_API IBoton : public IControl {
 public:
  // The button Enter presses and the one Escape presses.
  virtual void PorDefecto(bool si) = 0;
  virtual void Cancela(bool si) = 0;
  // Pictures of an image button: the normal one and the one shown under the pointer (names of
  // the toolkit's images).
  virtual void Imagenes(std::string_view normal, std::string_view resaltada) = 0;
  virtual void AlPulsar(Evento evento) = 0;
};

class KMF_API IGrilla : public IControl {
 public:
  // Columns and their headers, as VB's FormatString: "|Ítems|" is an untitled column, a
  // column "Ítems" and an untitled one; a header beginning with "<", "^" or ">" aligns its
  // column left, centred or right (the mark is not part of the header). Replaces every column
  // and clears the rows.
  virtual void Columnas(std::string_view formato) = 0;
  virtual int CantidadColumnas() const = 0;
  virtual std::string Encabezado(int columna) const = 0;
  virtual void ColumnaOculta(int columna, bool oculta) = 0;
  virtual bool ColumnaOculta(int columna) const = 0;
  // Cells of a check-box column show a tick instead of text.
  virtual void ColumnaCasilla(int columna, bool casilla) = 0;
  virtual bool ColumnaCasilla(int columna) const = 0;
  // A person may type into (or tick) the cells of an editable column.
  virtual void ColumnaEditable(int columna, bool editable) = 0;
  virtual bool ColumnaEditable(int columna) const = 0;
  virtual void ColumnaAlineacion(int columna, Alineacion alineacion) = 0;
  virtual Alineacion ColumnaAlineacion(int columna) const = 0;

  virtual int Filas() const = 0;
  // Appends a row and returns its index.
  virtual int AgregarFila() = 0;
  virtual void QuitarFila(int fila) = 0;
  virtual void LimpiarFilas() = 0;
  virtual void FilaOculta(int fila, bool oculta) = 0;
  virtual bool FilaOculta(int fila) const = 0;

  virtual std::string Celda(int fila, int columna) const = 0;
  virtual void Celda(int fila, int columna, std::string_view texto) = 0;
  virtual bool Tilde(int fila, int columna) const = 0;
  virtual void Tilde(int fila, int columna, bool tilde) = 0;

  // The selected row, -1 for none. Out-of-range cells and rows throw std::out_of_range.
  virtual int Fila() const = 0;
  virtual void Fila(int fila) = 0;
  // A person selected another row.
  virtual void AlCambiarFila(Evento evento) = 0;
  // A person typed into or ticked a cell; the handler gets the row and column.
  virtual void AlEditarCelda(std::function<void(int fila, int columna)> evento) = 0;
};

class KMF_API IArbol : public IControl {
 public:
  virtual void Limpiar() = 0;
  // Adds a node under `padre` ("" for a root). Keys are unique within the tree.
  virtual void Agregar(std::string_view clave, std::string_view padre,
                       std::string_view caption) = 0;
  virtual std::vector<std::string> Hijos(std::string_view padre) const = 0;
  virtual std::string CaptionNodo(std::string_view clave) const = 0;
  // The selected node's key, "" for none.
  virtual std::string Seleccionado() const = 0;
  virtual void Seleccionar(std::string_view clave) = 0;
  virtual void AlSeleccionar(Evento evento) = 0;
  virtual void AlActivar(Evento evento) = 0;  // double click or Enter on a node
};

class KMF_API IFormulario {
 public:
  virtual ~IFormulario() = default;
  virtual const std::string& Nombre() const = 0;
  virtual std::string Titulo() const = 0;
  virtual void Titulo(std::string_view titulo) = 0;

  // Creators (see the conventions above). `panel` 0 puts the control on no panel. A class that
  // does not fit the creator (a button class for a text field) throws std::logic_error.
  ITexto& CrearTexto(std::string_view nombre, int panel = 0,
                     ClaseControl clase = ClaseControl::Texto) {
    return Nuevo<ITexto>(nombre, clase, panel,
                         {ClaseControl::Texto, ClaseControl::Fecha, ClaseControl::Hora});
  }
  ILista& CrearLista(std::string_view nombre, int panel = 0) {
    return Nuevo<ILista>(nombre, ClaseControl::Lista, panel, {ClaseControl::Lista});
  }
  ICasilla& CrearCasilla(std::string_view nombre, int panel = 0) {
    return Nuevo<ICasilla>(nombre, ClaseControl::Casilla, panel, {ClaseControl::Casilla});
  }
  IBoton& CrearBoton(std::string_view nombre, int panel = 0,
                     ClaseControl clase = ClaseControl::Boton) {
    return Nuevo<IBoton>(nombre, clase, panel,
                         {ClaseControl::Boton, ClaseControl::Enlace, ClaseControl::BotonImagen});
  }
  IGrilla& CrearGrilla(std::string_view nombre, int panel = 0) {
    return Nuevo<IGrilla>(nombre, ClaseControl::Grilla, panel, {ClaseControl::Grilla});
  }
  IArbol& CrearArbol(std::string_view nombre, int panel = 0) {
    return Nuevo<IArbol>(nombre, ClaseControl::Arbol, panel, {ClaseControl::Arbol});
  }
  // Labels and panel frames: nothing beyond the common properties.
  IControl& CrearEtiqueta(std::string_view nombre, int panel = 0,
                          ClaseControl clase = ClaseControl::Etiqueta) {
    return Nuevo<IControl>(nombre, clase, panel, {ClaseControl::Etiqueta, ClaseControl::Panel});
  }

  // The control of that name (exact), or null.
  virtual IControl* Buscar(std::string_view nombre) = 0;
  // Every control in tab order.
  virtual std::vector<IControl*> Controles() = 0;

  // The panel on view (0 before any is shown).
  virtual int PanelVisible() const = 0;
  virtual void MostrarPanel(int panel) = 0;
  // The control that has the focus, or null.
  virtual IControl* Foco() = 0;

  // Shows the form modally and returns the result given to Cerrar once it closes. A form closed
  // by its window's close box (or left by a step script that ran out) returns 0.
  virtual int MostrarModal() = 0;
  virtual void Cerrar(int resultado) = 0;
  // A person asked to close the window (close box); the logic decides (usually as Cancelar).
  // Without a handler the form closes with 0.
  virtual void AlPedirCierre(Evento evento) = 0;

 protected:
  // Creates a control of class `clase` named `nombre` on `panel`; the returned object
  // implements the interface of its class (ITexto for Texto, Fecha and Hora, IBoton for the
  // three button classes, IControl alone for labels and panels). A name in use throws
  // std::logic_error.
  virtual IControl& Agregar(std::string_view nombre, ClaseControl clase, int panel) = 0;

 private:
  template <class I>
  I& Nuevo(std::string_view nombre, ClaseControl clase, int panel,
           std::initializer_list<ClaseControl> admitidas) {
    for (ClaseControl c : admitidas)
      if (c == clase) return dynamic_cast<I&>(Agregar(nombre, clase, panel));
    throw std::logic_error(std::string(nombre) + ": clase de control que no corresponde");
  }
};

// Where dialogs get their forms. A host that shows real windows supplies one; so does a step
// script (kivmovfrec/guion.h).
class KMF_API IFabricaFormularios {
 public:
  virtual ~IFabricaFormularios() = default;
  virtual std::unique_ptr<IFormulario> Crear(std::string_view nombre) = 0;
};

}  // namespace kivmovfrec::controles
