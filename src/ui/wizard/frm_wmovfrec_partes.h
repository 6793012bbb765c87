// What the files of frmWMovFrec share: its controls, what the form remembers between events, and
// the handlers each file implements (structure and navigation, general panel, frequency fields,
// notice form, checks, save).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kivmovfrec/controles.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/variant.h"
#include "ui/wizard/frm_wmovfrec.h"

namespace kivmovfrec::ui {

// Form panels of an entry or voucher; a notice uses kPanelGeneral alone.
inline constexpr int kPanelGeneral = 1;
inline constexpr int kPanelCuentas = 2;
inline constexpr int kPanelFrecuencia = 3;

// Amount types (cfTipoImporte item data, MFrTipoImporte).
inline constexpr int32_t kImporteEstimado = 1;
inline constexpr int32_t kImporteFijo = 2;
inline constexpr int32_t kImporteAutomatico = 3;

// cfAgendado item data.
inline constexpr int32_t kAgendado = 1;
inline constexpr int32_t kFrecuente = 0;

// Lookups of the general panel.
inline constexpr const char* kSqlLibros =
    "Select LibCodigo, LibNombre From genLibros Where LibDelSistema = 0 Order by LibNombre";
inline constexpr const char* kSqlImagenes =
    "Select IcoCodigo as Codigo, IcoNombre as Nombre from sisIconos Order by IcoNombre";
inline constexpr const char* kSqlMonedas =
    "Select MonID, MonNombre + ' (' + RTrim(MonSimbolo) + ')' as Nombre, MonSimbolo "
    " From genMonedas "
    " Where MonTipo = 1 Order by MonNombre";
inline constexpr const char* kSqlAutoriza =
    "Select UsuCodigo, UsuIdentificacion From admUsuarios"
    " Where UsuCodigo > 0  And UsuHabilitado <> 0";
inline constexpr const char* kSqlTiposCotizacion =
    "Select TCMCodigo, TCMNombre From genTipoCotizacionMoneda "
    "Where (TCMIndice = 0 or TCMIndice Is Null) Order by TCMNombre";
std::string SqlTiposComprobante(int32_t empresa);
std::string SqlTipoComprobante(int32_t tipo);

// An amount type a voucher type with obligatory numbering does not allow: an automatic voucher
// is posted with no one to give its number.
bool ImportePermitido(bool numeracion_obligatoria, int32_t tipo_importe);

// A column read as a whole number (Null and Empty as 0) or as trimmed text (Null as "").
int32_t Entero(const Variant& v);
std::string TextoDe(const Variant& v);

// The list entry whose item datum is `dato`, -1 when none.
int IndiceDeDato(const controles::ILista& l, int32_t dato);
// The chosen entry's item datum, `ninguno` when nothing is chosen.
int32_t DatoElegido(const controles::ILista& l, int32_t ninguno = 0);

struct frmWMovFrec::Estado {
  using ITexto = controles::ITexto;
  using ILista = controles::ILista;
  using ICasilla = controles::ICasilla;
  using IBoton = controles::IBoton;
  using IControl = controles::IControl;

  Estado(const ContextoMF& c, int32_t emp, DependenciasWizard d)
      : ctx(c), empresa(emp), dep(std::move(d)) {}

  const ContextoMF& ctx;
  int32_t empresa;
  DependenciasWizard dep;
  int idioma = 1;
  int16_t usuario = 0;
  int tipo = 1;             // 1 entry, 2 voucher, 3 notice
  clsMFTipo* mf = nullptr;  // the movement being edited
  std::unique_ptr<controles::IFormulario> form;
  std::unique_ptr<PanelCuentas> cuentas;

  // General panel.
  ITexto* nombre = nullptr;
  ITexto* leyenda = nullptr;  // tLeyenda (entry, voucher) or tMemoAviso (notice)
  ILista* libro = nullptr;
  ILista* tipo_importe = nullptr;
  ILista* agendado = nullptr;
  ILista* autoriza = nullptr;
  ILista* imagen = nullptr;
  ILista* clasificacion = nullptr;  // an entry's cfTipo: who owns it (shown, not edited)
  ILista* tipo_comprobante = nullptr;
  ILista* moneda = nullptr;
  ILista* tipo_cambio = nullptr;
  ITexto* ente = nullptr;  // contact (voucher) or receiving users (notice)
  ICasilla* sin_empresa = nullptr;
  IBoton* vincular = nullptr;
  IBoton* ver_vinculos = nullptr;
  IBoton* usuarios = nullptr;
  // Frequency fields.
  ILista* frecuencia = nullptr;
  IBoton* hl_ocurre = nullptr;
  ITexto* vence = nullptr;
  ITexto* hora = nullptr;
  ITexto* q_ocurre = nullptr;
  ITexto* hasta = nullptr;
  ITexto* notificar = nullptr;
  ITexto* hora_not = nullptr;
  IControl* postergado = nullptr;
  IControl* inicio = nullptr;
  IControl* ya_ocurrio = nullptr;
  // Buttons.
  IBoton* anterior = nullptr;
  IBoton* siguiente = nullptr;
  IBoton* finalizar = nullptr;
  IBoton* cancelar = nullptr;
  IBoton* ayuda = nullptr;

  int panel = kPanelGeneral;         // the panel on view
  int32_t frecuencia_definida = -1;  // the code behind "Definido ..."
  int indice_frecuencia = -1;        // the entry chosen before "Definido ..."
  std::string vinculos;              // the link text of the movement's group
  std::optional<int32_t> contacto;   // the voucher's contact, once tEnte names one
  bool contacto_a_publico = false;   // Yes to 1810 for that contact
  std::vector<std::string> monedas;  // symbol of each cfMoneda entry

  // ---- frm_wmovfrec.cpp: structure and navigation ----
  std::string Texto(int n) const;
  void CrearBotones();
  void MostrarPanel(int p);
  int UltimoPanel() const;
  bool EsAgendado() const;
  void Siguiente();
  void Anterior();
  void Ayuda();
  void Finalizar();
  void Rechazar(int mensaje, IControl& campo) { Rechazar({mensaje}, campo); }
  void Rechazar(std::initializer_list<int> lineas, IControl& campo);
  bool Preguntar(std::initializer_list<int> lineas);
  void Atrapar(int accion, const std::function<void()>& handler);
  IControl& PrimerControl(int p);

  // ---- frm_wmovfrec_general.cpp ----
  void CrearGeneral();
  void LlenarListas();
  void CargarGeneral();
  void ElegirContacto();
  void ElegirMoneda();
  void Vincular();
  void VerVinculos();
  std::string VinculosDelGrupo();

  // ---- frm_wmovfrec_frecuencia.cpp ----
  void CrearFrecuencia(int p);
  void CargarFrecuencia();
  int32_t FrecuenciaElegida() const;
  void ElegirFrecuencia();
  void EditarFrecuencia();
  void RotuloVencimiento();
  void CalcularFinal();
  void CambioHasta();
  void CambioNotificar();
  void CopiarAgenda(const clsRegRecurrencia& rec);

  // ---- frm_wmovfrec_aviso.cpp ----
  void CrearAviso();
  void CargarAviso();
  void ElegirUsuarios();

  // ---- frm_wmovfrec_validar.cpp: true when the panel passes; a refusal is shown ----
  bool ValidarNombreYLeyenda();
  bool ValidarGeneral();
  bool ValidarCuentas();
  bool ValidarFrecuencia();
  bool ValidarAviso();

  // ---- frm_wmovfrec_guardar.cpp ----
  // Checks the links, moves the panels into the records and saves; the id, or 0 when refused.
  int32_t Guardar();
  bool RevisarVinculos();
  void PanelesARegistros();
  void AgendaARegistro(clsRegRecurrencia& rec);
  // Writes MFrMovVinculado / MFrMVOrden of the group's rows from the link text, once the
  // movement has its id; `grupo_antes` is the group it belonged to before.
  void RegrabarGrupo(int32_t id, int32_t grupo_antes);
  // The other members of the group whose schedule equals `antes` (the edited movement's
  // schedule as it was loaded).
  std::vector<int32_t> AgendasIguales(const clsRegRecurrencia& antes);
  // Gives those members the edited movement's new schedule, or takes theirs away when
  // `eliminar`.
  void AgendasVinculadas(const std::vector<int32_t>& ids, bool eliminar);
};

}  // namespace kivmovfrec::ui
