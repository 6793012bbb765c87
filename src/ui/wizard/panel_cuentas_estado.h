// The accounts panel's inner state and its actions, shared by its source files:
// panel_cuentas.cpp (controls, grid, menu), panel_cuentas_edicion.cpp (the edit strip and the
// checks of one line) and panel_cuentas_validacion.cpp (the checks over all lines).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formula/monedas.h"
#include "kivmovfrec/controles.h"
#include "kivmovfrec/mf_tipo.h"
#include "ui/wizard/panel_cuentas.h"

namespace kivmovfrec::ui {

// Grid columns ("<Cuenta|>Debe|>Haber|T.Cambio").
enum ColumnaCuentas : int { kColCuenta = 0, kColDebe = 1, kColHaber = 2, kColTC = 3 };

struct TipoCotizacionLinea {
  int32_t codigo = 0;
  std::string nombre;
};

struct PanelCuentas::Estado {
  Estado(controles::IFormulario& f, int p, const ContextoMF& c, clsMFTipo& m, int16_t t, int32_t e,
         EditorFormula ed)
      : form(f), panel(p), ctx(c), mf(m), tipo(t), empresa(e), editar_formula(std::move(ed)) {}

  controles::IFormulario& form;
  int panel;
  const ContextoMF& ctx;
  clsMFTipo& mf;
  int16_t tipo;
  int32_t empresa;
  EditorFormula editar_formula;
  int idioma = 1;

  controles::IGrilla* grilla = nullptr;
  controles::ITexto* cuenta = nullptr;
  controles::ITexto* debe = nullptr;
  controles::ITexto* haber = nullptr;
  controles::ILista* tipo_cambio = nullptr;
  controles::ITexto* valor_tc = nullptr;
  controles::ITexto* detalle = nullptr;
  controles::IBoton* hl_formula = nullptr;
  controles::IBoton* ok = nullptr;
  controles::IBoton* deshacer = nullptr;
  controles::IBoton* subir = nullptr;
  controles::IBoton* bajar = nullptr;
  controles::IBoton* quitar = nullptr;

  // Currencies (formats) and the rate types the strip offers, read once.
  std::unique_ptr<formula::clsMonedas> monedas;
  int16_t moneda_contabilidad = 0;
  std::vector<TipoCotizacionLinea> tipos_cotizacion;

  // The edit strip: the line loaded into it (-1: a new line), whether a person changed it, the
  // account text as it was loaded (unchanged text keeps the line's account without a lookup)
  // and the formula chosen for it so far.
  int fila = -1;
  bool editando = false;
  std::string cuenta_cargada;
  std::string formula;

  int16_t MonedaMovimiento() const;
  int16_t Resolver(int16_t moneda) const { return moneda == 0 ? moneda_contabilidad : moneda; }
  std::string FormatoImporte(int16_t moneda);
  std::string FormatoCotizacion(int16_t moneda);

  // The catalogue message `mensaje` with the exclamation icon and the kind's title.
  void Avisar(int mensaje);
  // Avisar, then the focus on `campo` with its text selected.
  void Rechazar(int mensaje, controles::IControl& campo);
  bool Preguntar(int mensaje);
  // Runs a handler; an error is shown with `accion`'s text (critical icon) and the error's.
  void Atrapar(int accion, const std::function<void()>& handler);

  // Grid (panel_cuentas.cpp).
  void CrearControles();
  void LeerMonedasYTipos();
  void Cargar();
  void LlenarFila(int fila);
  void Renumerar();
  void Mover(int paso);
  void Quitar();
  // Strip (panel_cuentas_edicion.cpp).
  void LimpiarEdicion();
  void CargarFila(int fila);
  void Aplicar();
  void ElegirFormula();
  // Removes line `fila` (0-based) from the aggregate and the grid; the strip follows.
  void QuitarLinea(int fila);
};

}  // namespace kivmovfrec::ui
