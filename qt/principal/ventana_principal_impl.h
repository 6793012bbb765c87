// The main window's parts, shared by its views (ventana_principal.cpp) and its actions
// (acciones_principal.cpp).
#pragma once

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolBar>
#include <functional>
#include <optional>
#include <vector>

#include "movimientos_empresa.h"
#include "ventana_principal.h"

namespace kivmovfrec::qt {

struct VentanaPrincipal::Impl {
  Impl(VentanaPrincipal& v, clsMovFrecuente& f, int32_t e, int32_t u)
      : ventana(v), mf(f), empresa(e), usuario(u) {}

  VentanaPrincipal& ventana;
  clsMovFrecuente& mf;
  int32_t empresa;
  int32_t usuario;
  std::vector<FilaMovimiento> filas;  // every movement of the company, as last read

  QTabWidget* pestanas = nullptr;
  QTableWidget* tabla = nullptr;
  QComboBox* filtro_tipo = nullptr;
  QComboBox* filtro_estado = nullptr;
  QLineEdit* filtro_nombre = nullptr;
  QTableWidget* agenda = nullptr;
  QComboBox* mes = nullptr;
  QSpinBox* anio = nullptr;
  QLabel* nota_agenda = nullptr;
  QToolBar* barra = nullptr;

  QAction* nuevo_asiento = nullptr;
  QAction* nuevo_comprobante = nullptr;
  QAction* nuevo_aviso = nullptr;
  QAction* nueva_lista = nullptr;
  QAction* editar = nullptr;
  QAction* vincular = nullptr;
  QAction* papelera = nullptr;
  QAction* eliminar = nullptr;
  QAction* realizado = nullptr;
  QAction* calcular = nullptr;
  QAction* pronostico = nullptr;
  QAction* ejecutar = nullptr;
  QAction* actualizar = nullptr;
  QAction* salir = nullptr;

  // Views (ventana_principal.cpp).
  void ArmarLista(QWidget& pagina);
  void ArmarAgenda(QWidget& pagina);
  // Reads the movements again and shows those the filters let through, selecting `id` when it
  // is among them.
  void LeerLista(int32_t id);
  // Shows the rows of `filas` the filters let through, selecting `id` when it is among them.
  void MostrarLista(int32_t id);
  void LeerAgenda();
  std::optional<FilaMovimiento> Seleccionada() const;

  // Actions (acciones_principal.cpp).
  void CrearAcciones();
  // Enables each action that applies to the selected row.
  void Habilitar();
  // Runs an action's work; an error the façade let through is shown, never thrown. Both views
  // are read again afterwards, selecting `id` (or what `trabajo` returns when above 0).
  void Correr(const std::function<int32_t()>& trabajo);
};

}  // namespace kivmovfrec::qt
