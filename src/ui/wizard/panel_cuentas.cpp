#include "ui/wizard/panel_cuentas.h"

#include <utility>

#include "kivmovfrec/empresa.h"
#include "kivmovfrec/vb.h"
#include "platform/vb/format.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "storage/columnas.h"
#include "ui/wizard/panel_cuentas_estado.h"

namespace kivmovfrec::ui {

using namespace controles;

namespace {

// Rate types a line may take: the ordinary ones, never the index type.
constexpr const char* kSqlTiposCotizacion =
    "Select TCMCodigo, TCMNombre From genTipoCotizacionMoneda "
    "Where (TCMIndice = 0 or TCMIndice Is Null) Order by TCMNombre";

// RMFDetalle holds at most this many characters.
constexpr int kLargoDetalle = 255;

std::string TextoCuenta(const clsRegRenglonMF& r) {
  if (r.CuentaCodigo().empty() && r.CuentaNombre().empty())
    return r.Cuenta() ? std::to_string(r.Cuenta()) : "";
  if (r.CuentaCodigo().empty()) return r.CuentaNombre();
  if (r.CuentaNombre().empty()) return r.CuentaCodigo();
  return r.CuentaCodigo() + " " + r.CuentaNombre();
}

}  // namespace

// ---- Estado: currencies and messages --------------------------------------------------------

int16_t PanelCuentas::Estado::MonedaMovimiento() const {
  return Resolver(mf.MovFrecuente()->Moneda());
}

std::string PanelCuentas::Estado::FormatoImporte(int16_t moneda) {
  const formula::MonedaFx* m = monedas->Moneda(Resolver(moneda));
  return m ? m->formato_importe : formula::MonedaFx{}.formato_importe;
}

std::string PanelCuentas::Estado::FormatoCotizacion(int16_t moneda) {
  const formula::MonedaFx* m = monedas->Moneda(Resolver(moneda));
  return m ? m->formato_cotizacion : formula::MonedaFx{}.formato_cotizacion;
}

void PanelCuentas::Estado::Avisar(int mensaje) {
  ctx.servicios.messages->Show(resources::Mensaje({mensaje}, msg::TituloDeTipo(tipo),
                                                  MsgIcon::Exclamation, MsgButtons::OK, idioma));
}

void PanelCuentas::Estado::Rechazar(int mensaje, IControl& campo) {
  Avisar(mensaje);
  campo.SetFocus();
  if (auto* t = dynamic_cast<ITexto*>(&campo)) t->SeleccionarTodo();
}

bool PanelCuentas::Estado::Preguntar(int mensaje) {
  return ctx.servicios.messages->Show(resources::Mensaje(
             {mensaje}, msg::TituloDeTipo(tipo), MsgIcon::Question, MsgButtons::YesNo, idioma)) ==
         kMsgYes;
}

void PanelCuentas::Estado::Atrapar(int accion, const std::function<void()>& handler) {
  try {
    handler();
  } catch (const std::exception& e) {
    MessageRequest m = resources::Mensaje({accion}, msg::TituloDeTipo(tipo), MsgIcon::Critical,
                                          MsgButtons::OK, idioma);
    m.text += "\n" + std::string(e.what());
    ctx.servicios.messages->Show(m);
  }
}

// ---- Construction ---------------------------------------------------------------------------

// The grid, the strip and the menu, in tab order; the handlers are connected by the panel.
void PanelCuentas::Estado::CrearControles() {
  Estado& e = *this;
  IFormulario& f = e.form;
  const int p = e.panel;
  auto texto = [&](int n) { return std::string(resources::Texto(n, e.idioma)); };
  IControl& marco = f.CrearEtiqueta("picCuentas", p, ClaseControl::Panel);
  marco.Caption(texto(e.tipo == 2 ? msg::kCuentasDelComprobante : msg::kCuentasDelAsiento));
  e.grilla = &f.CrearGrilla("vsCuentas", p);
  e.grilla->Columnas(texto(msg::kEncabezadoCuentas));
  f.CrearEtiqueta("picEditGrid", p, ClaseControl::Panel);
  e.cuenta = &f.CrearTexto("tEditCta", p);
  e.cuenta->Caption(texto(msg::kCapCuentaRenglon));
  e.debe = &f.CrearTexto("ocEditD", p);
  e.debe->Caption(texto(msg::kCapDebe));
  e.haber = &f.CrearTexto("ocEditH", p);
  e.haber->Caption(texto(msg::kCapHaber));
  e.tipo_cambio = &f.CrearLista(e.tipo == 2 ? "cfTCComp" : "cfTipoCambio", p);
  e.tipo_cambio->Caption(texto(msg::kCapTipoCambioRenglon));
  e.valor_tc = &f.CrearTexto("tValorTC", p);
  e.valor_tc->Caption(texto(msg::kCapValorTC));
  e.detalle = &f.CrearTexto("tMemoRenglon", p);
  e.detalle->Caption(texto(msg::kCapDetalleRenglon));
  e.detalle->MaxLength(kLargoDetalle);
  e.hl_formula = &f.CrearBoton("hlFormula", p, ClaseControl::Enlace);
  e.hl_formula->Caption(texto(msg::kEditarFormula));
  // The strip's own buttons and the grid menu; each says in its hint what it does.
  auto boton = [&](const char* nombre, int caption, int ayuda) {
    IBoton& b = f.CrearBoton(nombre, p);
    b.Caption(texto(caption));
    b.Hint(texto(ayuda));
    return &b;
  };
  e.ok = boton("bfEditOK", msg::kBotonAplicarRenglon, msg::kAyudaAplicarRenglon);
  e.ok->PorDefecto(true);  // Enter applies the row typed (the panel's only default button)
  e.deshacer = boton("bfEditUndo", msg::kBotonDeshacerRenglon, msg::kAyudaDeshacerRenglon);
  e.subir = boton("MnuGridUp", msg::kBotonSubir, msg::kAyudaSubir);
  e.bajar = boton("MnuGridDown", msg::kBotonBajar, msg::kAyudaBajar);
  e.quitar = boton("MnuGridDel", msg::kBotonEliminar, msg::kAyudaQuitarRenglon);
}

void PanelCuentas::Estado::LeerMonedasYTipos() {
  Estado& e = *this;
  clsEmpresa empresa;
  if (empresa.Load(e.empresa, *e.ctx.cn)) e.moneda_contabilidad = empresa.MonedaContabilidad();
  if (e.moneda_contabilidad == 0) e.moneda_contabilidad = e.ctx.parametros.moneda_contabilidad;
  e.monedas = std::make_unique<formula::clsMonedas>(nullptr, e.ctx.parametros);
  e.monedas->MonedaContabilidad(e.moneda_contabilidad);
  e.monedas->Connect(e.ctx.cn);
  e.monedas->Load();
  auto rs = e.ctx.cn->OpenResultset(kSqlTiposCotizacion);
  for (; !rs->Eof(); rs->MoveNext()) {
    e.tipos_cotizacion.push_back(
        {storage::ALong(rs->Get(0)), vb::Trim(storage::ATexto(rs->Get(1)))});
  }
  rs->Close();
  for (const TipoCotizacionLinea& t : e.tipos_cotizacion)
    e.tipo_cambio->Agregar(t.nombre, t.codigo);
}

PanelCuentas::PanelCuentas(IFormulario& form, int panel, const ContextoMF& ctx, clsMFTipo& mf,
                           int16_t tipo, int32_t empresa, EditorFormula editar_formula)
    : e_(std::make_unique<Estado>(form, panel, ctx, mf, tipo, empresa, std::move(editar_formula))) {
  Estado& e = *e_;
  e.idioma = ctx.parametros.idioma < 1 ? 1 : ctx.parametros.idioma;
  e.CrearControles();
  e.LeerMonedasYTipos();

  Estado* s = &e;
  auto editado = [s] { s->editando = true; };
  for (ITexto* t : {e.cuenta, e.debe, e.haber, e.valor_tc, e.detalle}) t->AlCambiar(editado);
  e.tipo_cambio->AlElegir(editado);
  e.grilla->AlCambiarFila(
      [s] { s->Atrapar(msg::kErrorEdicionGrilla, [s] { s->CargarFila(s->grilla->Fila()); }); });
  e.ok->AlPulsar([s] { s->Atrapar(msg::kErrorAplicarEdicion, [s] { s->Aplicar(); }); });
  e.deshacer->AlPulsar([s] { s->Atrapar(msg::kErrorAplicarEdicion, [s] { s->CargarFila(-1); }); });
  e.hl_formula->AlPulsar(
      [s] { s->Atrapar(msg::kErrorCargarFormulas, [s] { s->ElegirFormula(); }); });
  e.subir->AlPulsar([s] { s->Atrapar(msg::kErrorMoverFila, [s] { s->Mover(-1); }); });
  e.bajar->AlPulsar([s] { s->Atrapar(msg::kErrorMoverFila, [s] { s->Mover(+1); }); });
  e.quitar->AlPulsar([s] { s->Atrapar(msg::kErrorMoverFila, [s] { s->Quitar(); }); });
}

PanelCuentas::~PanelCuentas() = default;

bool PanelCuentas::Editando() const {
  return e_->editando;
}

void PanelCuentas::Cargar() {
  e_->Cargar();
}

// ---- Grid -----------------------------------------------------------------------------------

void PanelCuentas::Estado::Cargar() {
  grilla->LimpiarFilas();
  const clsRenglonesMF& lineas = *mf.Renglones();
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i) {
    grilla->AgregarFila();
    LlenarFila(i - 1);
  }
  fila = -1;
  LimpiarEdicion();
}

void PanelCuentas::Estado::LlenarFila(int f) {
  const clsRegRenglonMF& r = *mf.Renglones()->Renglon(static_cast<int16_t>(f + 1));
  const std::string importe =
      vb::FormatNumberPattern(r.ImporteMF(), FormatoImporte(mf.MovFrecuente()->Moneda()));
  std::string tc;
  if (r.ValorTC() != 0) {
    tc = vb::FormatNumberPattern(r.ValorTC(), FormatoCotizacion(r.Moneda()));
  } else if (r.TipoCambio() != 0) {
    for (const TipoCotizacionLinea& t : tipos_cotizacion)
      if (t.codigo == r.TipoCambio()) tc = t.nombre;
  }
  grilla->Celda(f, kColCuenta, TextoCuenta(r));
  grilla->Celda(f, kColDebe, r.AlDebe() ? importe : "");
  grilla->Celda(f, kColHaber, r.AlDebe() ? "" : importe);
  grilla->Celda(f, kColTC, tc);
}

void PanelCuentas::Estado::Renumerar() {
  const clsRenglonesMF& lineas = *mf.Renglones();
  for (int16_t i = 1; i <= lineas.QRenglones(); ++i)
    lineas.Renglon(i)->Orden(i <= 255 ? static_cast<uint8_t>(i) : 0);
}

void PanelCuentas::Estado::Mover(int paso) {
  const int f = grilla->Fila();
  const int destino = f + paso;
  clsRenglonesMF& lineas = *mf.Renglones();
  if (f < 0 || destino < 0 || destino >= lineas.QRenglones()) return;
  auto a = lineas.Renglon(static_cast<int16_t>(f + 1));
  auto b = lineas.Renglon(static_cast<int16_t>(destino + 1));
  lineas.SetRenglon(static_cast<int16_t>(f + 1), b);
  lineas.SetRenglon(static_cast<int16_t>(destino + 1), a);
  Renumerar();
  LlenarFila(f);
  LlenarFila(destino);
  // The strip stays with the line it holds, wherever that line went.
  if (fila == f) {
    fila = destino;
  } else if (fila == destino) {
    fila = f;
  }
  grilla->Fila(destino);
}

void PanelCuentas::Estado::Quitar() {
  const int f = grilla->Fila();
  if (f < 0 || f >= mf.Renglones()->QRenglones()) return;
  QuitarLinea(f);
}

void PanelCuentas::Estado::QuitarLinea(int f) {
  mf.Renglones()->RemoveRenglon(static_cast<int16_t>(f + 1));
  grilla->QuitarFila(f);
  Renumerar();
  grilla->Fila(-1);
  if (fila == f) {
    fila = -1;
    LimpiarEdicion();
  } else if (fila > f) {
    --fila;
  }
}

}  // namespace kivmovfrec::ui
