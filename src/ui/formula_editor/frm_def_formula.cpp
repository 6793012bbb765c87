#include "ui/formula_editor/frm_def_formula.h"

#include <exception>
#include <stdexcept>
#include <vector>

#include "formula/catalogo_fx.h"
#include "formula/elementos.h"
#include "formula/formula_mf.h"
#include "kivmovfrec/empresa.h"
#include "platform/vb/text.h"
#include "resources/catalogue.h"
#include "resources/help_topics.h"
#include "resources/msg.h"
#include "storage/consulta_lookup.h"
#include "ui/formula_editor/arbol_fx.h"
#include "ui/formula_editor/argumentos_fx.h"

namespace kivmovfrec::ui {
namespace {

using fx::NodoFx;
using fx::OpcionFx;

constexpr int kAceptado = 1;

// Everything one showing of the dialog works with.
class Sesion {
 public:
  Sesion(const ContextoMF& ctx, const clsMFTipo& mf, int linea, bool leyenda)
      : ctx_(ctx), idioma_(ctx.parametros.idioma), linea_(linea), leyenda_(leyenda) {
    const clsRegMovimientoFrecuente& cab = *mf.MovFrecuente();
    formula::ContextoFormula fctx{cab.Empresa(), cab.ID(), false};
    if (ctx.cn) {
      clsEmpresa empresa;
      if (empresa.Load(cab.Empresa(), *ctx.cn))
        fctx = formula::ContextoFormula::De(empresa, cab.ID());
    }
    formula_ = std::make_unique<formula::clsFormulaMF>(ctx.cn, fctx);
    const clsRenglonesMF& r = *mf.Renglones();
    for (int16_t i = 1; i <= r.QRenglones(); ++i) {
      const clsRegRenglonMF& l = *r.Renglon(i);
      lineas_.push_back({{l.Cuenta(), l.Proyecto(), l.Departamento()},
                         l.CuentaCodigo(),
                         l.CuentaNombre(),
                         l.ProyectoAbreviacion(),
                         l.DepartamentoAbreviacion()});
    }
    formula_->LineasEnMemoria(lineas_);
  }

  std::optional<std::string> Mostrar(const std::string& formula);

 private:
  std::string T(int n) const { return std::string(resources::Texto(n, idioma_)); }
  storage::ContextoLookup Lookup(int32_t pre_id) const {
    const auto& c = formula_->Contexto();
    return {c.empresa, c.id_mov, pre_id, c.mostrar_codigo_cta};
  }

  void Cargar();
  void MostrarAyuda();
  void Agregar();
  // The arguments of entry `e` as the person chooses them; nothing when a choice is cancelled.
  std::optional<std::vector<std::string>> Argumentos(const formula::EntradaFx& e);
  std::optional<std::string> Elegir(std::string_view titulo, const std::vector<OpcionFx>& op);
  std::optional<std::string> PedirDato();
  void Anexar(const std::string& texto);
  void Aceptar();
  void Avisar(MessageRequest m) {
    if (ctx_.servicios.messages) ctx_.servicios.messages->Show(m);
  }

  const ContextoMF& ctx_;
  int idioma_;
  int linea_;
  bool leyenda_;
  std::unique_ptr<formula::clsFormulaMF> formula_;
  std::vector<formula::LineaVisible> lineas_;

  std::unique_ptr<controles::IFormulario> f_;
  controles::IGrilla* grilla_ = nullptr;
  controles::ITexto* texto_ = nullptr;
  controles::IControl* ayuda_ = nullptr;
  controles::IControl* nivel_ = nullptr;
  controles::IBoton* atras_ = nullptr;
  controles::IBoton* inicio_ = nullptr;
  std::vector<int> pila_{0};  // levels visited, the top level first
  std::vector<NodoFx> filas_;
  std::string titulo_nivel_;
  std::string resultado_;
};

std::optional<std::string> Sesion::Mostrar(const std::string& formula) {
  f_ = ctx_.servicios.formularios->Crear("frmDefFormula");
  f_->Titulo(T(msg::kTituloAgregarFormula));
  atras_ = &f_->CrearBoton("imgBack", 0, controles::ClaseControl::BotonImagen);
  atras_->Caption(T(msg::kAtras));
  atras_->Hint(T(msg::kAtras));
  atras_->Imagenes("atras", "atras_resaltada");
  atras_->AlPulsar([this] {
    if (pila_.size() > 1) pila_.pop_back();
    Cargar();
  });
  inicio_ = &f_->CrearBoton("imgHome", 0, controles::ClaseControl::BotonImagen);
  inicio_->Caption(T(msg::kInicio));
  inicio_->Hint(T(msg::kInicio));
  inicio_->Imagenes("inicio", "inicio_resaltada");
  inicio_->AlPulsar([this] {
    pila_.resize(1);
    Cargar();
  });
  nivel_ = &f_->CrearEtiqueta("lNivel");
  grilla_ = &f_->CrearGrilla("vsGrid");
  grilla_->Columnas(T(leyenda_ ? msg::kEncabezadoLeyendas : msg::kEncabezadoFormulas));
  grilla_->AlCambiarFila([this] { MostrarAyuda(); });
  ayuda_ = &f_->CrearEtiqueta("lAyuda");
  texto_ = &f_->CrearTexto("tFormula");
  texto_->Text(leyenda_ ? formula : formula_->AVisible(formula));

  controles::IBoton& agregar = f_->CrearBoton("bfAgregar");
  agregar.Caption(T(msg::kBotonAgregarFormula));
  agregar.AlPulsar([this] { Agregar(); });
  controles::IBoton& aceptar = f_->CrearBoton("bfFinish");
  aceptar.Caption(T(msg::kCapAceptar));
  aceptar.PorDefecto(true);
  aceptar.AlPulsar([this] { Aceptar(); });
  controles::IBoton& cancelar = f_->CrearBoton("bfCancel");
  cancelar.Caption(T(msg::kCapCancelar));
  cancelar.Cancela(true);
  cancelar.AlPulsar([this] { f_->Cerrar(0); });
  controles::IBoton& ayuda = f_->CrearBoton("bfHelp");
  ayuda.Caption(T(msg::kBotonAyuda));
  ayuda.AlPulsar([this] {
    if (ctx_.servicios.messages)
      ctx_.servicios.messages->ShowHelp(resources::HelpContext(leyenda_ ? "fxLey" : "fxCta"));
  });
  f_->AlPedirCierre([this] { f_->Cerrar(0); });

  Cargar();
  grilla_->SetFocus();
  if (f_->MostrarModal() != kAceptado) return std::nullopt;
  return resultado_;
}

void Sesion::Cargar() {
  const int padre = pila_.back();
  filas_ = fx::Nivel(leyenda_, padre, idioma_);
  grilla_->LimpiarFilas();
  for (const NodoFx& n : filas_) {
    const int r = grilla_->AgregarFila();
    grilla_->Celda(r, 0, fx::DoblarAmpersand(n.titulo));
    grilla_->Celda(r, 1, n.descripcion);
    if (leyenda_) grilla_->Celda(r, 2, n.ejemplo);
  }
  if (!filas_.empty()) grilla_->Fila(0);
  // The caption of the open group above the grid ("" at the top).
  std::string titulo;
  if (padre != 0) {
    for (const NodoFx& n : fx::Nivel(leyenda_, pila_[pila_.size() - 2], idioma_))
      if (n.id == padre) titulo = n.titulo;
  }
  nivel_->Caption(fx::DoblarAmpersand(titulo));
  atras_->Enabled(pila_.size() > 1);
  inicio_->Enabled(pila_.size() > 1);
  MostrarAyuda();
}

void Sesion::MostrarAyuda() {
  const int r = grilla_->Fila();
  if (r < 0 || r >= static_cast<int>(filas_.size())) {
    ayuda_->Caption("");
    return;
  }
  const NodoFx& n = filas_[static_cast<size_t>(r)];
  std::string texto = n.descripcion;
  if (n.tipo == NodoFx::Tipo::Funcion) {
    const formula::EntradaFx* e = formula::clsFxMovFrec().BuscarEntrada(n.id);
    // A function that stands for a defined formula shows it as it will run.
    if (e && vb::StartsWithIgnoreCase(e->palabra, "[query]"))
      texto += "\n" + storage::ReemplazarContexto(e->palabra, Lookup(0));
  } else if (n.tipo == NodoFx::Tipo::Macro) {
    texto += "\n" + n.ejemplo;
  }
  ayuda_->Caption(fx::DoblarAmpersand(texto));
}

void Sesion::Agregar() {
  const int r = grilla_->Fila();
  if (r < 0 || r >= static_cast<int>(filas_.size())) return;
  const NodoFx n = filas_[static_cast<size_t>(r)];
  if (n.EsGrupo()) {
    pila_.push_back(n.id);
    Cargar();
    return;
  }
  if (n.tipo == NodoFx::Tipo::Macro) {
    Anexar(fx::RestaurarAmpersand(grilla_->Celda(r, 0)));
    return;
  }
  const formula::EntradaFx* e = formula::clsFxMovFrec().BuscarEntrada(n.id);
  if (!e) return;
  try {
    const auto args = Argumentos(*e);
    if (!args) return;
    Anexar(formula_->AVisible(fx::Referencia(e->id, *args)));
  } catch (const std::exception& ex) {
    Avisar({T(msg::kErrorCargarFormulas) + "\n" + ex.what(), T(msg::kTituloAgregarFormula),
            MsgIcon::Critical, MsgButtons::OK, 1, msg::kErrorCargarFormulas});
  }
}

std::optional<std::vector<std::string>> Sesion::Argumentos(const formula::EntradaFx& e) {
  std::vector<std::string> args;
  int32_t pre_id = 0;
  Connection* cn = ctx_.cn.get();
  if (!e.consulta1.empty()) {
    if (!cn) return std::nullopt;
    const auto v = Elegir(e.titulo, fx::OpcionesConsulta(*cn, e.consulta1, Lookup(0)));
    if (!v) return std::nullopt;
    args.push_back(*v);
    if (e.ArgumentoEsLinea()) pre_id = static_cast<int32_t>(std::stol(*v));
  }
  std::optional<std::string> v;
  if (e.consulta2 == formula::kPalabraCuentaMovFrecuente) {
    // The lines of this movement, the edited one left out: a formula cannot refer to itself.
    std::vector<formula::LineaVisible> otras;
    for (size_t i = 0; i < lineas_.size(); ++i)
      if (static_cast<int>(i) != linea_) otras.push_back(lineas_[i]);
    v = Elegir(e.titulo, fx::LineasEnMemoria(otras));
  } else if (e.consulta2 == formula::kPalabraCuentaOtroMov) {
    if (!cn) return std::nullopt;
    v = Elegir(e.titulo, fx::LineasGuardadas(*cn, pre_id));
  } else if (vb::StartsWithIgnoreCase(e.consulta2, "Select")) {
    if (!cn) return std::nullopt;
    v = Elegir(e.titulo, fx::OpcionesConsulta(*cn, e.consulta2, Lookup(pre_id)));
  } else if (e.id == formula::kFxPedirValor) {
    v = PedirDato();
  } else {
    return args;  // [RestoCuenta], [ImpMov], [CantidadOcurrencia]: nothing to ask
  }
  if (!v) return std::nullopt;
  args.push_back(*v);
  return args;
}

std::optional<std::string> Sesion::Elegir(std::string_view titulo,
                                          const std::vector<OpcionFx>& opciones) {
  auto f = ctx_.servicios.formularios->Crear("frmElegirDato");
  f->Titulo(std::string(titulo));
  controles::IGrilla& lista = f->CrearGrilla("vsLista");
  lista.Columnas(resources::Texto(msg::kEncabezadoElegirDato, idioma_, titulo));
  for (const OpcionFx& o : opciones)
    lista.Celda(lista.AgregarFila(), 0, fx::DoblarAmpersand(o.texto));
  if (!opciones.empty()) lista.Fila(0);
  controles::IBoton& aceptar = f->CrearBoton("bfFinish");
  aceptar.Caption(T(msg::kCapAceptar));
  aceptar.PorDefecto(true);
  aceptar.AlPulsar([&] { f->Cerrar(lista.Fila() >= 0 ? kAceptado : 0); });
  controles::IBoton& cancelar = f->CrearBoton("bfCancel");
  cancelar.Caption(T(msg::kCapCancelar));
  cancelar.Cancela(true);
  cancelar.AlPulsar([&] { f->Cerrar(0); });
  f->AlPedirCierre([&] { f->Cerrar(0); });
  lista.SetFocus();
  if (f->MostrarModal() != kAceptado) return std::nullopt;
  const int r = lista.Fila();
  if (r < 0 || r >= static_cast<int>(opciones.size())) return std::nullopt;
  return opciones[static_cast<size_t>(r)].valor;
}

std::optional<std::string> Sesion::PedirDato() {
  if (!ctx_.servicios.input) return std::nullopt;
  auto dato = ctx_.servicios.input->PedirTexto(T(msg::kIngreseCaracteristica),
                                               T(msg::kTituloPedirDato), "");
  if (!dato) return std::nullopt;
  const std::string texto = vb::Trim(*dato);
  if (texto.empty()) return std::nullopt;
  // These characters would end the reference or split its argument.
  if (texto.find_first_of("[];") != std::string::npos) {
    Avisar(resources::Mensaje({msg::kFxValorNoValido}, msg::kTituloAgregarFormula,
                              MsgIcon::Exclamation, MsgButtons::OK, idioma_));
    return std::nullopt;
  }
  return texto;
}

void Sesion::Anexar(const std::string& texto) {
  texto_->Text(texto_->Text() + texto);
}

void Sesion::Aceptar() {
  const std::string texto = texto_->Text();
  if (leyenda_ || vb::Trim(texto).empty()) {
    resultado_ = leyenda_ ? texto : "";
    f_->Cerrar(kAceptado);
    return;
  }
  const formula::LecturaFormula lectura = formula_->LeerVisible(texto);
  if (!lectura.ok) {
    Avisar({resources::Texto(msg::kFormulaNoLegible, idioma_, std::to_string(lectura.posicion)) +
                (lectura.error.empty() ? "" : "\n" + lectura.error),
            T(msg::kTituloAgregarFormula), MsgIcon::Exclamation, MsgButtons::OK, 1,
            msg::kFormulaNoLegible});
    texto_->SetFocus();
    texto_->Seleccionar(lectura.posicion > 0 ? lectura.posicion - 1 : 0, 0);
    return;
  }
  if (linea_ >= 0 && linea_ < static_cast<int>(lineas_.size()) &&
      formula::ReferenciaLinea(lectura.formula, lineas_[static_cast<size_t>(linea_)].clave)) {
    Avisar(resources::Mensaje({msg::kFxMismaCuenta}, msg::kTituloAgregarFormula,
                              MsgIcon::Exclamation, MsgButtons::OK, idioma_));
    texto_->SetFocus();
    texto_->SeleccionarTodo();
    return;
  }
  resultado_ = lectura.formula;
  f_->Cerrar(kAceptado);
}

}  // namespace

frmDefFormula::frmDefFormula(const ContextoMF& ctx, const clsMFTipo& mf, int linea, bool leyenda)
    : ctx_(ctx), mf_(mf), linea_(linea), leyenda_(leyenda) {}

std::optional<std::string> frmDefFormula::Mostrar(const std::string& formula) {
  if (!ctx_.servicios.formularios)
    throw std::logic_error("no hay dónde mostrar el editor de fórmulas");
  Sesion sesion(ctx_, mf_, linea_, leyenda_);
  return sesion.Mostrar(formula);
}

}  // namespace kivmovfrec::ui
