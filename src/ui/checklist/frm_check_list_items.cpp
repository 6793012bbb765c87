// frmCheckList's item half: the grid rows, item editing and its checks, deletion, and the pick
// list of the list an item precedes.
#include <algorithm>
#include <memory>

#include "kivmovfrec/vb.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "ui/checklist/frm_check_list_partes.h"

namespace kivmovfrec::checklist {

using namespace controles;

void frmCheckList::LlenarFila(int fila, const ItemListaTareas& it) {
  IGrilla& g = *c_->items;
  g.Tilde(fila, kTilde, it.realizado);
  g.Celda(fila, kNombre, it.nombre);
  g.Celda(fila, kComentario, it.comentario);
  g.Celda(fila, kImportancia, std::to_string(it.importancia));
  g.Celda(fila, kPrecede, std::to_string(it.precede));
  g.Celda(fila, kPrecedeNombre, it.precede_nombre);
  g.Celda(fila, kEstado, it.realizado ? "1" : it.en_papelera ? "9" : "0");
  g.Celda(fila, kID, std::to_string(it.id));
}

ItemListaTareas frmCheckList::LeerFila(int fila) const {
  const IGrilla& g = *c_->items;
  ItemListaTareas it;
  it.id = ANumero(g.Celda(fila, kID));
  it.nombre = g.Celda(fila, kNombre);
  it.comentario = g.Celda(fila, kComentario);
  it.importancia = static_cast<int16_t>(ANumero(g.Celda(fila, kImportancia)));
  it.precede = ANumero(g.Celda(fila, kPrecede));
  it.precede_nombre = g.Celda(fila, kPrecedeNombre);
  it.realizado = g.Tilde(fila, kTilde);
  it.en_papelera = g.Celda(fila, kEstado) == "9";
  it.eliminado = g.FilaOculta(fila);
  return it;
}

void frmCheckList::ModoItem(bool editando) {
  editando_ = editando;
  Controles& c = *c_;
  for (IControl* x : std::initializer_list<IControl*>{c.nombre_i, c.memo_i, c.importancia,
                                                      c.precede, c.realizado}) {
    x->Enabled(editando);
  }
  c.nuevo->Enabled(!editando);
  c.finalizar->Enabled(!editando);
  c.items->Enabled(!editando);
  c.editar->Caption(
      resources::Texto(editando ? msg::kBotonGuardarItem : msg::kBotonEditar, idioma_));
  c.del_cancel->Caption(
      resources::Texto(editando ? msg::kBotonDescartarItem : msg::kBotonEliminar, idioma_));
}

void frmCheckList::Nuevo() {
  Controles& c = *c_;
  fila_editada_ = -1;
  ModoItem(true);
  c.nombre_i->Text("");
  c.memo_i->Text("");
  c.importancia->Indice(kImportanciaInicial - kImportanciaMinima);
  c.precede->Text("");
  c.realizado->Marcada(false);
  c.nombre_i->SetFocus();
}

void frmCheckList::Editar() {
  Controles& c = *c_;
  const int fila = c.items->Fila();
  if (fila < 0 || c.items->FilaOculta(fila)) return;
  const ItemListaTareas it = LeerFila(fila);
  fila_editada_ = fila;
  ModoItem(true);
  c.nombre_i->Text(it.nombre);
  c.memo_i->Text(it.comentario);
  c.importancia->Indice(std::clamp<int>(it.importancia, kImportanciaMinima, kImportanciaMaxima) -
                        kImportanciaMinima);
  c.precede->Text(it.precede_nombre);
  c.realizado->Marcada(it.realizado);
  c.nombre_i->SetFocus();
}

void frmCheckList::CancelarItem() {
  ModoItem(false);
  fila_editada_ = -1;
  c_->items->SetFocus();
}

std::optional<ItemListaTareas> frmCheckList::ItemDeCampos() {
  Controles& c = *c_;
  ItemListaTareas it = fila_editada_ >= 0 ? LeerFila(fila_editada_) : ItemListaTareas{};
  it.nombre = c.nombre_i->Text();
  it.comentario = c.memo_i->Text();
  const int imp = c.importancia->Indice();
  it.importancia = static_cast<int16_t>(imp < 0 ? 0 : c.importancia->Dato(imp));
  it.realizado = c.realizado->Marcada();

  // Name, quotes and importance: the library's checks on a list holding this item alone.
  ListaTareas sola;
  sola.nombre = "-";
  sola.vencimiento = Date{};
  sola.items = {it};
  if (const auto r = RevisarLista(sola)) {
    RechazarCampo(*r);
    return std::nullopt;
  }

  const std::string precede = vb::Trim(c.precede->Text());
  if (precede.empty()) {
    it.precede = 0;
    it.precede_nombre.clear();
  } else if (!(it.precede != 0 && precede == it.precede_nombre)) {
    bool cancelado = false;
    const auto elegida = ResolverPrecede(precede, cancelado);
    if (!elegida) {
      if (cancelado) {
        c.precede->SetFocus();
        c.precede->SeleccionarTodo();
      } else {
        Rechazar(msg::kCampoNoValido, *c.precede);
      }
      return std::nullopt;
    }
    it.precede = elegida->first;
    it.precede_nombre = elegida->second;
    c.precede->Text(it.precede_nombre);
  }

  // The grid's other rows on view, then this one: a trimmed name already there is refused.
  ListaTareas todas = sola;
  todas.items.clear();
  for (int f = 0; f < c.items->Filas(); ++f) {
    if (f == fila_editada_ || c.items->FilaOculta(f)) continue;
    todas.items.push_back(LeerFila(f));
  }
  todas.items.push_back(it);
  if (const auto r = RevisarLista(todas); r && r->mensaje == msg::kItemDuplicado &&
                                          r->item == static_cast<int>(todas.items.size()) - 1) {
    RechazarCampo(*r);
    return std::nullopt;
  }
  return it;
}

void frmCheckList::AceptarItem() {
  const std::optional<ItemListaTareas> it = ItemDeCampos();
  if (!it) return;
  IGrilla& g = *c_->items;
  const int fila = fila_editada_ >= 0 ? fila_editada_ : g.AgregarFila();
  LlenarFila(fila, *it);
  ModoItem(false);
  fila_editada_ = -1;
  g.Fila(fila);
  g.SetFocus();
}

void frmCheckList::EliminarItem() {
  IGrilla& g = *c_->items;
  const int fila = g.Fila();
  if (fila < 0 || g.FilaOculta(fila)) return;
  if (!Preguntar(msg::kConfirmaEliminarItem, true)) return;
  if (ANumero(g.Celda(fila, kID)) > 0) {
    g.FilaOculta(fila, true);  // deleted from the table when the list is saved
  } else {
    g.QuitarFila(fila);
  }
  int siguiente = -1;
  for (int f = 0; f < g.Filas(); ++f) {
    if (!g.FilaOculta(f) && (siguiente < 0 || f <= fila)) siguiente = f;
  }
  g.Fila(siguiente);
}

std::optional<std::pair<int32_t, std::string>> frmCheckList::ResolverPrecede(
    const std::string& texto, bool& cancelado) {
  cancelado = false;
  if (SoloDigitos(texto)) {
    if (const auto p = BuscarListaPorID(*ctx_.cn, ANumero(texto)); p && p->id != lista_.id)
      return std::make_pair(p->id, p->nombre);
  }
  const std::vector<ListaCandidata> candidatas =
      BuscarListasPorTexto(*ctx_.cn, lista_.empresa, texto, lista_.id, usuario_);
  if (candidatas.empty()) return std::nullopt;
  if (candidatas.size() == 1) return std::make_pair(candidatas[0].id, candidatas[0].nombre);
  const int i = ElegirEntre(candidatas);
  if (i < 0) {
    cancelado = true;
    return std::nullopt;
  }
  return std::make_pair(candidatas[i].id, candidatas[i].nombre);
}

int frmCheckList::ElegirEntre(const std::vector<ListaCandidata>& candidatas) {
  const std::string titulo(resources::Texto(msg::kTituloListaTareas, idioma_));
  std::unique_ptr<IFormulario> f = ctx_.servicios.formularios->Crear(kFormularioElegirLista);
  f->Titulo(titulo);
  IGrilla& g = f->CrearGrilla("vsListas");
  g.Columnas(titulo);
  for (const ListaCandidata& l : candidatas) g.Celda(g.AgregarFila(), 0, l.nombre);
  g.Fila(0);
  IBoton& ok = f->CrearBoton("bfOK");
  ok.Caption(resources::Texto(msg::kCapAceptar, idioma_));
  ok.PorDefecto(true);
  IBoton& cancelar = f->CrearBoton("bfCancel");
  cancelar.Caption(resources::Texto(msg::kBotonCancelar, idioma_));
  cancelar.Cancela(true);
  IFormulario* form = f.get();
  ok.AlPulsar([form, &g] { form->Cerrar(g.Fila() + 1); });
  cancelar.AlPulsar([form] { form->Cerrar(0); });
  return f->MostrarModal() - 1;
}

}  // namespace kivmovfrec::checklist
