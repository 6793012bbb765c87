// The desktop main window over one company: its movements (kind, name, next due date, amount
// type, state) with filters, an agenda by month, and the actions that create, edit, link, bin,
// delete and mark done movements and task lists, compute one, forecast, and run what is due.
//
// Every action goes through the façade: the dialogs it opens are those of the services the
// façade was given (real windows once qt::Instalar ran on them), its questions and refusals are
// the library's own. An action is enabled only when it applies to the selected row; both views
// are read again after each action, keeping the selection on the same movement.
//
// Widget names, for tests and recorders: the list "tablaMovimientos" (the movement's ID as the
// first column's Qt::UserRole data), the filters "filtroTipo", "filtroEstado", "filtroNombre";
// the tabs "pestanas"; the agenda "tablaAgenda" with the month "agendaMes" (a combo box of the
// twelve months), the year "agendaAnio" and the buttons "bfMesAnterior" and "bfMesSiguiente".
// Actions: "accNuevoAsiento", "accNuevoComprobante", "accNuevoAviso", "accNuevaLista",
// "accEditar", "accVincular", "accPapelera", "accEliminar", "accRealizado", "accCalcular",
// "accPronostico", "accEjecutar", "accActualizar", "accSalir"; each has its button on the tool
// bar "barraAcciones" except the last two.
#pragma once

#include <QMainWindow>
#include <cstdint>
#include <memory>
#include <string>

#include "kivmovfrec/mov_frecuente.h"

namespace kivmovfrec::qt {

class VentanaPrincipal : public QMainWindow {
 public:
  // `mf` must be connected with company `empresa` set, and outlive the window; `usuario` is who
  // creates and edits (the wizard's and the task-list editor's user). The agenda opens on the
  // month of the façade's today. Reading the views may throw the database's errors.
  VentanaPrincipal(clsMovFrecuente& mf, int32_t empresa, int32_t usuario, QWidget* padre = nullptr);
  ~VentanaPrincipal() override;

  // Reads the list and the agenda again.
  void Actualizar();
  // Shows the agenda of month `mes` (1-12) of `anio`.
  void MostrarMes(int anio, int mes);
  // Selects the row of movement `id` in the list as filtered. False when the list does not
  // show it.
  bool Seleccionar(int32_t id);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace kivmovfrec::qt
