#include "ui/checklist/frm_check_list.h"

#include <algorithm>
#include <stdexcept>

#include "kivmovfrec/frecuencia.h"
#include "kivmovfrec/vb.h"
#include "platform/vb/format.h"
#include "resources/catalogue.h"
#include "resources/help_topics.h"
#include "resources/msg.h"
#include "storage/columnas.h"
#include "ui/checklist/frm_check_list_partes.h"
#include "ui/checklist/textos_lista.h"

namespace kivmovfrec::checklist {

using namespace controles;

namespace {

constexpr const char* kFormulario = "frmCheckList";
constexpr const char* kEsquemaColores = "1";
constexpr const char* kElementoColores = "checklist";

std::string Dia(const std::optional<Date>& d) {
  return d ? vb::FormatDate(*d, "dd/mm/yyyy") : "";
}

// A date field's text: nothing when blank; `valida` false when it holds text that is no date.
std::optional<Date> LeerFecha(const ITexto& t, bool& valida) {
  const std::string texto = vb::Trim(t.Text());
  valida = true;
  if (texto.empty()) return std::nullopt;
  const std::optional<Date> d = vb::ParseDate(texto);
  valida = d.has_value();
  return d;
}

}  // namespace

frmCheckList::frmCheckList(const ContextoMF& ctx, IDateCalculator& calendario, int16_t empresa,
                           ReportarError reportar)
    : ctx_(ctx),
      calendario_(calendario),
      empresa_(empresa),
      reportar_(std::move(reportar)),
      idioma_(ctx.parametros.idioma < 1 ? 1 : ctx.parametros.idioma) {}

frmCheckList::~frmCheckList() = default;

int32_t frmCheckList::Mostrar(int32_t lista, int16_t usuario, bool nuevo_item) {
  if (!ctx_.servicios.formularios) throw std::logic_error("no hay dónde mostrar formularios");
  usuario_ = usuario;
  if (lista > 0) {
    std::optional<ListaTareas> leida = CargarListaTareas(*ctx_.cn, lista);
    if (!leida) return 0;
    lista_ = std::move(*leida);
  } else {
    lista_ = ListaTareas{};
    lista_.empresa = empresa_;
    lista_.vencimiento = ctx_.Reloj().Today();
  }
  form_ = ctx_.servicios.formularios->Crear(kFormulario);
  c_ = std::make_unique<Controles>();
  CrearControles();
  AplicarColores();
  CargarCampos();
  ModoItem(false);
  if (nuevo_item) Nuevo();
  const int resultado = form_->MostrarModal();
  form_.reset();
  return resultado;
}

void frmCheckList::CrearControles() {
  IFormulario& f = *form_;
  auto texto = [&](int n) { return std::string(resources::Texto(n, idioma_)); };
  auto campo = [&](auto& control, int caption, int hint) -> auto& {
    if (caption >= 0) control.Caption(texto(caption));
    control.Hint(texto(hint));
    return control;
  };
  f.Titulo(texto(msg::kTituloListaTareas));
  Controles& c = *c_;
  c.nombre = &campo(f.CrearTexto("tNombreC"), msg::kCapNombre, msg::kAyudaNombreLista);
  c.memo = &campo(f.CrearTexto("tMemoC"), msg::kCapComentario, msg::kAyudaComentarioLista);
  c.frecuencia = &campo(f.CrearLista("cfFrecuencia"), msg::kCapOcurre, msg::kAyudaFrecuenciaLista);
  for (const EntradaLista& e : Frecuencias(idioma_)) c.frecuencia->Agregar(e.texto, e.dato);
  c.vence = &campo(f.CrearTexto("dtVence", 0, ClaseControl::Fecha), msg::kCapVencimiento,
                   msg::kAyudaVencimientoLista);
  c.notificar = &campo(f.CrearTexto("dtNotificar", 0, ClaseControl::Fecha), msg::kCapNotificar,
                       msg::kAyudaNotificarLista);
  c.q_ocurre = &campo(f.CrearTexto("tQOcurre"), msg::kCapNumeroDeVeces, msg::kAyudaNumeroDeVeces);
  c.hasta = &campo(f.CrearTexto("dtHasta", 0, ClaseControl::Fecha), msg::kCapUltimaFecha,
                   msg::kAyudaUltimaFecha);
  c.sin_empresa =
      &campo(f.CrearCasilla("chSinEmpresa"), msg::kCapSoloEstaEmpresa, msg::kAyudaSoloEstaEmpresa);
  c.sin_empresa->Marcada(true);
  c.sin_empresa->Enabled(false);
  c.next_vto = &f.CrearEtiqueta("lNextVto");
  c.last_vto = &f.CrearEtiqueta("lLastVto");
  c.hl_ocurre = &f.CrearBoton("hlOcurre", 0, ClaseControl::Enlace);
  c.hl_ocurre->Caption(texto(msg::kEditeFrecuencia));
  c.hl_ocurre->Hint(texto(msg::kEditeFrecuencia));

  c.nombre_i = &campo(f.CrearTexto("tNombreI"), msg::kCapNombreItem, msg::kAyudaNombreItem);
  c.memo_i = &campo(f.CrearTexto("tMemoI"), msg::kCapComentarioItem, msg::kAyudaComentarioItem);
  c.importancia =
      &campo(f.CrearLista("cfImportancia"), msg::kCapImportancia, msg::kAyudaImportancia);
  for (const EntradaLista& e : Importancias(idioma_)) c.importancia->Agregar(e.texto, e.dato);
  c.precede = &campo(f.CrearTexto("tPrecede"), msg::kCapPrecede, msg::kAyudaPrecede);
  c.realizado = &campo(f.CrearCasilla("chRealizado"), msg::kCapRealizado, msg::kAyudaRealizado);

  c.items = &campo(f.CrearGrilla("vsItems"), -1, msg::kAyudaItems);
  c.items->Columnas(texto(msg::kEncabezadoItems) + std::string(kColumnasItems - 3, '|'));
  c.items->ColumnaCasilla(kTilde, true);
  for (int col = kComentario; col < kColumnasItems; ++col) c.items->ColumnaOculta(col, true);

  auto boton = [&](const char* nombre, int caption) -> IBoton& {
    IBoton& b = f.CrearBoton(nombre);
    b.Caption(texto(caption));
    return b;
  };
  c.nuevo = &boton("bfNew", msg::kBotonNuevo);
  c.editar = &boton("bfEdit", msg::kBotonEditar);
  c.del_cancel = &boton("bfDelCancel", msg::kBotonEliminar);
  c.ayuda = &boton("bfHelp", msg::kBotonAyuda);
  c.finalizar = &boton("bfFinish", msg::kCapAceptar);
  c.cancelar = &boton("bfCancel", msg::kBotonCancelar);
  c.finalizar->PorDefecto(true);
  c.cancelar->Cancela(true);

  const int guardar = msg::kErrorGrabarMovimiento;
  c.nuevo->AlPulsar([this] { Atrapar(guardar, [this] { Nuevo(); }); });
  c.editar->AlPulsar(
      [this] { Atrapar(guardar, [this] { editando_ ? AceptarItem() : Editar(); }); });
  c.del_cancel->AlPulsar(
      [this] { Atrapar(guardar, [this] { editando_ ? CancelarItem() : EliminarItem(); }); });
  c.ayuda->AlPulsar([this] {
    // The suite's help operation, reached through the message service in use (the one a step
    // script installs records it).
    Atrapar(guardar,
            [this] { ctx_.servicios.messages->ShowHelp(resources::HelpContext("checkList")); });
  });
  c.finalizar->AlPulsar([this] { Atrapar(guardar, [this] { Guardar(); }); });
  c.cancelar->AlPulsar([this] { form_->Cerrar(0); });
  form_->AlPedirCierre([this] { form_->Cerrar(0); });
  c.frecuencia->AlElegir([this] { Atrapar(guardar, [this] { ElegirFrecuencia(); }); });
  c.hl_ocurre->AlPulsar([this] { Atrapar(guardar, [this] { EditarFrecuencia(); }); });
}

void frmCheckList::AplicarColores() {
  auto rs = ctx_.cn->OpenResultset(
      std::string("Select * from genParametros Where ParNombre = 'sis_colores_") + kEsquemaColores +
      "' And ParTexto = '" + kElementoColores + "'");
  if (rs->Eof()) return;
  const Variant v = rs->Get("ParDescripcion");
  rs->Close();
  if (storage::EsNulo(v)) return;
  std::vector<int32_t> colores;
  for (const std::string& parte : vb::Split(vb::CStr(v), "|")) {
    const std::string p = vb::Trim(parte);
    colores.push_back(SoloDigitos(p) ? ANumero(p) : -1);
  }
  auto color = [&](size_t i) { return i < colores.size() ? colores[i] : -1; };
  Controles& c = *c_;
  for (IControl* x : std::initializer_list<IControl*>{c.nombre, c.memo, c.frecuencia, c.vence,
                                                      c.notificar, c.q_ocurre, c.hasta}) {
    x->ColorFondo(color(0));
  }
  for (IControl* x :
       std::initializer_list<IControl*>{c.nombre_i, c.memo_i, c.importancia, c.precede}) {
    x->ColorFondo(color(1));
  }
  c.items->ColorFondo(color(2));
  for (IControl* x : std::initializer_list<IControl*>{c.nombre, c.vence, c.nombre_i}) {
    x->ColorTexto(color(3));
  }
  c.next_vto->ColorTexto(color(4));
  c.last_vto->ColorTexto(color(4));
}

void frmCheckList::CargarCampos() {
  Controles& c = *c_;
  c.nombre->Text(lista_.nombre);
  c.memo->Text(lista_.comentario);
  int indice = -1;
  for (int i = 0; i < c.frecuencia->Cantidad(); ++i) {
    if (c.frecuencia->Dato(i) == lista_.frecuencia) indice = i;
    if (c.frecuencia->Dato(i) == -1 && indice < 0 && i == c.frecuencia->Cantidad() - 1) {
      indice = i;  // a code none of the entries carries: "Definido ..."
      frecuencia_definida_ = lista_.frecuencia;
    }
  }
  c.frecuencia->Indice(indice);
  indice_frecuencia_ = indice;
  c.vence->Text(Dia(lista_.vencimiento));
  c.notificar->Text(Dia(lista_.notificar));
  c.q_ocurre->Text(lista_.cantidad > 0 ? std::to_string(lista_.cantidad) : "");
  c.hasta->Text(Dia(lista_.hasta));
  c.next_vto->Caption(EtiquetaProximoVencimiento(lista_, idioma_));
  c.last_vto->Caption(EtiquetaUltimoVencimiento(lista_));
  c.items->LimpiarFilas();
  for (const ItemListaTareas& it : lista_.items) LlenarFila(c.items->AgregarFila(), it);
  if (c.items->Filas() > 0) c.items->Fila(0);
}

int32_t frmCheckList::FrecuenciaElegida() const {
  const ILista& l = *c_->frecuencia;
  if (l.Indice() < 0) return -1;
  const int32_t dato = l.Dato(l.Indice());
  return dato == -1 ? frecuencia_definida_ : dato;
}

void frmCheckList::ElegirFrecuencia() {
  const ILista& l = *c_->frecuencia;
  if (l.Indice() >= 0 && l.Dato(l.Indice()) == -1) {
    EditarFrecuencia();
  } else {
    indice_frecuencia_ = l.Indice();
  }
}

void frmCheckList::EditarFrecuencia() {
  ILista& l = *c_->frecuencia;
  const std::string texto = calendario_.EditarFrecuencia();
  const std::string codigo = texto.substr(0, std::min<size_t>(texto.size(), 6));
  if (!SoloDigitos(codigo) || !schedule::FrequencyFromCode(ANumero(codigo))) {
    l.Indice(indice_frecuencia_);  // cancelled: the previous choice stays
    return;
  }
  const int32_t valor = ANumero(codigo);
  for (int i = 0; i < l.Cantidad(); ++i) {
    if (l.Dato(i) == valor || (l.Dato(i) == -1 && i == l.Cantidad() - 1)) {
      if (l.Dato(i) == -1) frecuencia_definida_ = valor;
      l.Indice(i);
      indice_frecuencia_ = i;
      return;
    }
  }
}

std::optional<ListaTareas> frmCheckList::ListaDeCampos() {
  Controles& c = *c_;
  ListaTareas l = lista_;
  l.nombre = c.nombre->Text();
  l.comentario = c.memo->Text();
  l.frecuencia = FrecuenciaElegida();
  bool vence_ok = true, notificar_ok = true, hasta_ok = true;
  l.vencimiento = LeerFecha(*c.vence, vence_ok);
  l.notificar = LeerFecha(*c.notificar, notificar_ok);
  l.hasta = LeerFecha(*c.hasta, hasta_ok);
  const std::string veces = vb::Trim(c.q_ocurre->Text());
  const bool veces_ok = veces.empty() || (SoloDigitos(veces) && veces.size() <= 4);
  l.cantidad = veces_ok && !veces.empty() ? ANumero(veces) : 0;
  l.items.clear();
  for (int f = 0; f < c.items->Filas(); ++f) l.items.push_back(LeerFila(f));

  // Typed text that does not read comes after the name and comment checks and the due date,
  // in the order of the fields; then the library's checks on the values.
  const std::optional<RechazoLista> r = RevisarLista(l);
  if (r && (r->campo == CampoLista::Nombre || r->campo == CampoLista::Comentario ||
            r->campo == CampoLista::Vencimiento)) {
    RechazarCampo(*r);
    return std::nullopt;
  }
  if (!vence_ok) {
    Rechazar(msg::kCampoNoValido, *c.vence);
    return std::nullopt;
  }
  if (!veces_ok) {
    Rechazar(msg::kCampoNoValido, *c.q_ocurre);
    return std::nullopt;
  }
  if (!hasta_ok) {
    Rechazar(msg::kCampoNoValido, *c.hasta);
    return std::nullopt;
  }
  if (!notificar_ok) {
    Rechazar(msg::kCampoNoValido, *c.notificar);
    return std::nullopt;
  }
  if (r) {
    RechazarCampo(*r);
    return std::nullopt;
  }
  return l;
}

void frmCheckList::Guardar() {
  if (!Preguntar(msg::kConfirmaGrabarLista, false)) return;
  std::optional<ListaTareas> l = ListaDeCampos();
  if (!l) return;
  ResultadoGuardarLista r;
  try {
    r = GuardarListaTareas(ctx_, *l, usuario_);
  } catch (const std::exception& e) {
    reportar_(msg::kErrorGrabarMovimiento, e);  // nothing was written; the dialog stays open
    return;
  }
  if (r.rechazo) {
    RechazarCampo(*r.rechazo);
    return;
  }
  form_->Cerrar(r.id);
}

void frmCheckList::Rechazar(int mensaje, IControl& campo) {
  ctx_.servicios.messages->Show({std::string(resources::Texto(mensaje, idioma_)),
                                 std::string(resources::Texto(msg::kTituloListaTareas, idioma_)),
                                 MsgIcon::Exclamation, MsgButtons::OK, 1, mensaje});
  campo.SetFocus();
  if (auto* t = dynamic_cast<ITexto*>(&campo)) t->SeleccionarTodo();
}

void frmCheckList::RechazarCampo(const RechazoLista& r) {
  Controles& c = *c_;
  IControl* campo = nullptr;
  switch (r.campo) {
    case CampoLista::Nombre:
      campo = c.nombre;
      break;
    case CampoLista::Comentario:
      campo = c.memo;
      break;
    case CampoLista::Frecuencia:
      campo = c.frecuencia;
      break;
    case CampoLista::Vencimiento:
      campo = c.vence;
      break;
    case CampoLista::Notificar:
      campo = c.notificar;
      break;
    case CampoLista::NumeroDeVeces:
      campo = c.q_ocurre;
      break;
    case CampoLista::Hasta:
      campo = c.hasta;
      break;
    case CampoLista::NombreItem:
      campo = c.nombre_i;
      break;
    case CampoLista::ComentarioItem:
      campo = c.memo_i;
      break;
    case CampoLista::Importancia:
      campo = c.importancia;
      break;
  }
  const bool de_item = r.campo == CampoLista::NombreItem || r.campo == CampoLista::ComentarioItem ||
                       r.campo == CampoLista::Importancia;
  if (de_item && !editando_) {
    // A row refused at save: the grid shows which one (items are the grid's rows in order).
    if (r.item >= 0 && r.item < c.items->Filas()) c.items->Fila(r.item);
    campo = c.items;
  }
  Rechazar(r.mensaje, *campo);
}

bool frmCheckList::Preguntar(int mensaje, bool no_por_defecto) {
  return ctx_.servicios.messages->Show(
             {std::string(resources::Texto(mensaje, idioma_)),
              std::string(resources::Texto(msg::kTituloListaTareas, idioma_)), MsgIcon::Question,
              MsgButtons::YesNo, no_por_defecto ? 2 : 1, mensaje}) == kMsgYes;
}

void frmCheckList::Atrapar(int accion, const std::function<void()>& handler) {
  try {
    handler();
  } catch (const std::exception& e) {
    reportar_(accion, e);
  }
}

}  // namespace kivmovfrec::checklist
