#include "platform/controls/memoria.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

#include "kivmovfrec/vb.h"
#include "platform/vb/utf8.h"

namespace kivmovfrec::controles {

std::string SinMarcasDeAcceso(std::string_view caption) {
  std::string out;
  for (size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&') {
      if (i + 1 < caption.size() && caption[i + 1] == '&') out += caption[++i];
      continue;
    }
    out += caption[i];
  }
  return out;
}

namespace memoria {

namespace {

std::string Entre(std::string_view s) {
  return "«" + std::string(s) + "»";
}

[[noreturn]] void Rechazar(std::string_view motivo) {
  throw std::invalid_argument(std::string(motivo));
}

int Caracteres(std::string_view s) {
  return static_cast<int>(vb::utf8::Decode(s).size());
}

}  // namespace

std::string CaptionVisible(std::string_view caption) {
  return vb::Trim(SinMarcasDeAcceso(caption));
}

// What the form keeps of every control: the common properties.
class Control {
 public:
  Control(Formulario& form, std::string_view nombre, ClaseControl clase, int panel)
      : form(form), nombre(nombre), clase(clase), panel(panel) {}
  virtual ~Control() = default;
  virtual IControl& Interfaz() = 0;

  Formulario& form;
  std::string nombre;
  ClaseControl clase;
  int panel;
  std::string caption;
  std::string hint;
  bool enabled = true;
  bool visible = true;
  int32_t fondo = -1;
  int32_t texto = -1;
};

namespace {

template <class I>
class ControlDe : public I, public Control {
 public:
  ControlDe(Formulario& f, std::string_view nombre, ClaseControl clase, int panel)
      : Control(f, nombre, clase, panel) {}
  IControl& Interfaz() override { return *this; }
  const std::string& Nombre() const override { return nombre; }
  ClaseControl Clase() const override { return clase; }
  int Panel() const override { return panel; }
  std::string Caption() const override { return caption; }
  void Caption(std::string_view c) override { caption = c; }
  std::string Hint() const override { return hint; }
  void Hint(std::string_view h) override { hint = h; }
  bool Enabled() const override { return enabled; }
  void Enabled(bool e) override { enabled = e; }
  bool Visible() const override { return visible; }
  void Visible(bool v) override { visible = v; }
  int32_t ColorFondo() const override { return fondo; }
  void ColorFondo(int32_t c) override { fondo = c; }
  int32_t ColorTexto() const override { return texto; }
  void ColorTexto(int32_t c) override { texto = c; }
  void SetFocus() override { form.TomarFoco(*this); }
};

class Simple final : public ControlDe<IControl> {
  using ControlDe::ControlDe;
};

}  // namespace

class Texto final : public ControlDe<ITexto> {
 public:
  using ControlDe::ControlDe;
  std::string Text() const override { return text_; }
  void Text(std::string_view t) override {
    text_ = t;
    start_ = 0;
    length_ = 0;
  }
  int SelStart() const override { return start_; }
  int SelLength() const override { return length_; }
  void Seleccionar(int start, int length) override {
    const int n = Caracteres(text_);
    start_ = std::clamp(start, 0, n);
    length_ = length < 0 ? n - start_ : std::min(length, n - start_);
  }
  int MaxLength() const override { return max_; }
  void MaxLength(int m) override { max_ = std::max(m, 0); }
  void AlCambiar(Evento e) override { al_cambiar_ = std::move(e); }

  void Teclear(std::string_view t) {
    if (max_ > 0 && Caracteres(t) > max_)
      Rechazar(Entre(nombre) + " admite hasta " + std::to_string(max_) + " caracteres");
    text_ = t;
    start_ = Caracteres(text_);
    length_ = 0;
    if (al_cambiar_) al_cambiar_();
  }
  std::string Seleccion() const {
    const auto cps = vb::utf8::Decode(text_);
    return vb::utf8::Encode(std::u32string_view(cps).substr(start_, length_));
  }

 private:
  std::string text_;
  int start_ = 0;
  int length_ = 0;
  int max_ = 0;
  Evento al_cambiar_;
};

class Lista final : public ControlDe<ILista> {
 public:
  using ControlDe::ControlDe;
  void Limpiar() override {
    items_.clear();
    indice_ = -1;
  }
  void Agregar(std::string_view caption, int32_t dato) override {
    items_.emplace_back(std::string(caption), dato);
  }
  int Cantidad() const override { return static_cast<int>(items_.size()); }
  std::string Item(int i) const override { return items_.at(i).first; }
  int32_t Dato(int i) const override { return items_.at(i).second; }
  int Indice() const override { return indice_; }
  void Indice(int i) override {
    if (i < -1 || i >= Cantidad()) throw std::out_of_range("índice de lista fuera de rango");
    indice_ = i;
  }
  void AlElegir(Evento e) override { al_elegir_ = std::move(e); }

  void Elegir(std::string_view caption) {
    const std::string buscado = CaptionVisible(caption);
    for (int i = 0; i < Cantidad(); ++i) {
      if (CaptionVisible(items_[i].first) != buscado) continue;
      indice_ = i;
      if (al_elegir_) al_elegir_();
      return;
    }
    Rechazar(Entre(nombre) + " no tiene la opción " + Entre(caption));
  }

 private:
  std::vector<std::pair<std::string, int32_t>> items_;
  int indice_ = -1;
  Evento al_elegir_;
};

class Casilla final : public ControlDe<ICasilla> {
 public:
  using ControlDe::ControlDe;
  bool Marcada() const override { return marcada_; }
  void Marcada(bool m) override { marcada_ = m; }
  void AlCambiar(Evento e) override { al_cambiar_ = std::move(e); }
  void Marcar(bool m) {
    if (m == marcada_) return;
    marcada_ = m;
    if (al_cambiar_) al_cambiar_();
  }

 private:
  bool marcada_ = false;
  Evento al_cambiar_;
};

class Boton final : public ControlDe<IBoton> {
 public:
  using ControlDe::ControlDe;
  void PorDefecto(bool si) override { por_defecto = si; }
  void Cancela(bool si) override { cancela = si; }
  void Imagenes(std::string_view n, std::string_view r) override {
    imagen = n;
    resaltada = r;
  }
  void AlPulsar(Evento e) override { al_pulsar_ = std::move(e); }
  void Pulsar() {
    if (al_pulsar_) al_pulsar_();
  }

  bool por_defecto = false;
  bool cancela = false;
  std::string imagen;
  std::string resaltada;

 private:
  Evento al_pulsar_;
};

class Grilla final : public ControlDe<IGrilla> {
 public:
  using ControlDe::ControlDe;

  void Columnas(std::string_view formato) override {
    columnas_.clear();
    filas_.clear();
    fila_ = -1;
    for (const std::string& h : vb::Split(formato, "|")) {
      Columna_ c{h};
      if (!h.empty() && (h[0] == '<' || h[0] == '^' || h[0] == '>')) {
        c.alineacion = h[0] == '<'   ? Alineacion::Izquierda
                       : h[0] == '^' ? Alineacion::Centro
                                     : Alineacion::Derecha;
        c.encabezado.erase(0, 1);
      }
      columnas_.push_back(std::move(c));
    }
  }
  int CantidadColumnas() const override { return static_cast<int>(columnas_.size()); }
  std::string Encabezado(int c) const override { return Col(c).encabezado; }
  void ColumnaOculta(int c, bool v) override { Col(c).oculta = v; }
  bool ColumnaOculta(int c) const override { return Col(c).oculta; }
  void ColumnaCasilla(int c, bool v) override { Col(c).casilla = v; }
  bool ColumnaCasilla(int c) const override { return Col(c).casilla; }
  void ColumnaEditable(int c, bool v) override { Col(c).editable = v; }
  bool ColumnaEditable(int c) const override { return Col(c).editable; }
  void ColumnaAlineacion(int c, Alineacion a) override { Col(c).alineacion = a; }
  Alineacion ColumnaAlineacion(int c) const override { return Col(c).alineacion; }

  int Filas() const override { return static_cast<int>(filas_.size()); }
  int AgregarFila() override {
    filas_.push_back(
        {std::vector<std::string>(columnas_.size()), std::vector<bool>(columnas_.size()), false});
    return Filas() - 1;
  }
  void QuitarFila(int f) override {
    Row(f);
    filas_.erase(filas_.begin() + f);
    if (fila_ >= Filas()) fila_ = Filas() - 1;
  }
  void LimpiarFilas() override {
    filas_.clear();
    fila_ = -1;
  }
  void FilaOculta(int f, bool v) override { Row(f).oculta = v; }
  bool FilaOculta(int f) const override { return Row(f).oculta; }
  std::string Celda(int f, int c) const override {
    Col(c);
    return Row(f).celdas[c];
  }
  void Celda(int f, int c, std::string_view t) override {
    Col(c);
    Row(f).celdas[c] = t;
  }
  bool Tilde(int f, int c) const override {
    Col(c);
    return Row(f).tildes[c];
  }
  void Tilde(int f, int c, bool v) override {
    Col(c);
    Row(f).tildes[c] = v;
  }
  int Fila() const override { return fila_; }
  void Fila(int f) override {
    if (f != -1) Row(f);
    fila_ = f;
  }
  void AlCambiarFila(Evento e) override { al_cambiar_fila_ = std::move(e); }
  void AlEditarCelda(std::function<void(int, int)> e) override { al_editar_ = std::move(e); }

  // The index of the n-th row on view (1-based), or -1.
  int FilaReal(int visible) const {
    for (int f = 0; f < Filas(); ++f)
      if (!filas_[f].oculta && --visible == 0) return f;
    return -1;
  }
  int Columna(std::string_view columna) const {
    const std::string buscado = CaptionVisible(columna);
    for (int c = 0; c < CantidadColumnas(); ++c)
      if (!buscado.empty() && CaptionVisible(columnas_[c].encabezado) == buscado) return c;
    int numero = 0;
    const auto [fin, ec] = std::from_chars(buscado.data(), buscado.data() + buscado.size(), numero);
    if (ec == std::errc() && fin == buscado.data() + buscado.size() && numero >= 1 &&
        numero <= CantidadColumnas())
      return numero - 1;
    Rechazar(Entre(nombre) + " no tiene la columna " + Entre(columna));
  }
  void Elegir(int f) {
    if (f == fila_) return;
    fila_ = f;
    if (al_cambiar_fila_) al_cambiar_fila_();
  }
  void Editado(int f, int c) {
    if (al_editar_) al_editar_(f, c);
  }

 private:
  struct Columna_ {
    std::string encabezado;
    bool oculta = false;
    bool casilla = false;
    bool editable = false;
    Alineacion alineacion = Alineacion::Izquierda;
  };
  struct Fila_ {
    std::vector<std::string> celdas;
    std::vector<bool> tildes;
    bool oculta = false;
  };
  Columna_& Col(int c) { return const_cast<Columna_&>(std::as_const(*this).Col(c)); }
  const Columna_& Col(int c) const {
    if (c < 0 || c >= CantidadColumnas())
      throw std::out_of_range(Entre(nombre) + ": columna " + std::to_string(c) + " fuera de rango");
    return columnas_[c];
  }
  Fila_& Row(int f) { return const_cast<Fila_&>(std::as_const(*this).Row(f)); }
  const Fila_& Row(int f) const {
    if (f < 0 || f >= Filas())
      throw std::out_of_range(Entre(nombre) + ": fila " + std::to_string(f) + " fuera de rango");
    return filas_[f];
  }

  std::vector<Columna_> columnas_;
  std::vector<Fila_> filas_;
  int fila_ = -1;
  Evento al_cambiar_fila_;
  std::function<void(int, int)> al_editar_;
};

class Arbol final : public ControlDe<IArbol> {
 public:
  using ControlDe::ControlDe;
  void Limpiar() override {
    nodos_.clear();
    seleccionado_.clear();
  }
  void Agregar(std::string_view clave, std::string_view padre, std::string_view caption) override {
    if (Indice(clave) >= 0)
      throw std::logic_error(Entre(nombre) + ": la clave " + Entre(clave) + " ya existe");
    if (!padre.empty() && Indice(padre) < 0)
      throw std::logic_error(Entre(nombre) + ": no existe el nodo " + Entre(padre));
    nodos_.push_back({std::string(clave), std::string(padre), std::string(caption)});
  }
  std::vector<std::string> Hijos(std::string_view padre) const override {
    std::vector<std::string> out;
    for (const Nodo& n : nodos_)
      if (n.padre == padre) out.push_back(n.clave);
    return out;
  }
  std::string CaptionNodo(std::string_view clave) const override {
    const int i = Indice(clave);
    if (i < 0) throw std::out_of_range(Entre(nombre) + ": no existe el nodo " + Entre(clave));
    return nodos_[i].caption;
  }
  std::string Seleccionado() const override { return seleccionado_; }
  void Seleccionar(std::string_view clave) override {
    if (!clave.empty()) CaptionNodo(clave);
    seleccionado_ = clave;
  }
  void AlSeleccionar(Evento e) override { al_seleccionar_ = std::move(e); }
  void AlActivar(Evento e) override { al_activar_ = std::move(e); }

  void Elegir(std::string_view nodo, bool activar) {
    int i = Indice(nodo);
    for (int k = 0; i < 0 && k < static_cast<int>(nodos_.size()); ++k)
      if (CaptionVisible(nodos_[k].caption) == CaptionVisible(nodo)) i = k;
    if (i < 0) Rechazar(Entre(nombre) + " no tiene el nodo " + Entre(nodo));
    if (seleccionado_ != nodos_[i].clave) {
      seleccionado_ = nodos_[i].clave;
      if (al_seleccionar_) al_seleccionar_();
    }
    if (activar && al_activar_) al_activar_();
  }

 private:
  struct Nodo {
    std::string clave, padre, caption;
  };
  int Indice(std::string_view clave) const {
    for (size_t i = 0; i < nodos_.size(); ++i)
      if (nodos_[i].clave == clave) return static_cast<int>(i);
    return -1;
  }
  std::vector<Nodo> nodos_;
  std::string seleccionado_;
  Evento al_seleccionar_;
  Evento al_activar_;
};

// ---- Formulario -----------------------------------------------------------------------------

Formulario::Formulario(std::string nombre, std::function<void(Formulario&)> al_mostrar)
    : nombre_(std::move(nombre)), al_mostrar_(std::move(al_mostrar)) {}

Formulario::~Formulario() = default;

IControl& Formulario::Agregar(std::string_view nombre, ClaseControl clase, int panel) {
  if (Buscar(nombre))
    throw std::logic_error(nombre_ + ": el control " + Entre(nombre) + " ya existe");
  std::unique_ptr<Control> c;
  switch (clase) {
    case ClaseControl::Texto:
    case ClaseControl::Fecha:
    case ClaseControl::Hora:
      c = std::make_unique<Texto>(*this, nombre, clase, panel);
      break;
    case ClaseControl::Lista:
      c = std::make_unique<Lista>(*this, nombre, clase, panel);
      break;
    case ClaseControl::Casilla:
      c = std::make_unique<Casilla>(*this, nombre, clase, panel);
      break;
    case ClaseControl::Boton:
    case ClaseControl::Enlace:
    case ClaseControl::BotonImagen:
      c = std::make_unique<Boton>(*this, nombre, clase, panel);
      break;
    case ClaseControl::Grilla:
      c = std::make_unique<Grilla>(*this, nombre, clase, panel);
      break;
    case ClaseControl::Arbol:
      c = std::make_unique<Arbol>(*this, nombre, clase, panel);
      break;
    case ClaseControl::Etiqueta:
    case ClaseControl::Panel:
      c = std::make_unique<Simple>(*this, nombre, clase, panel);
      break;
  }
  controles_.push_back(std::move(c));
  return controles_.back()->Interfaz();
}

IControl* Formulario::Buscar(std::string_view nombre) {
  for (auto& c : controles_)
    if (c->nombre == nombre) return &c->Interfaz();
  return nullptr;
}

std::vector<IControl*> Formulario::Controles() {
  std::vector<IControl*> out;
  for (auto& c : controles_) out.push_back(&c->Interfaz());
  return out;
}

IControl* Formulario::Foco() {
  return foco_ ? &foco_->Interfaz() : nullptr;
}

void Formulario::MostrarPanel(int panel) {
  panel_ = panel;
  if (foco_ && !AlAlcance(*foco_)) foco_ = nullptr;
}

bool Formulario::AlAlcance(const Control& c) const {
  return c.visible && c.enabled && (c.panel == 0 || c.panel == panel_);
}

void Formulario::TomarFoco(Control& c) {
  if (!AlAlcance(c))
    throw std::logic_error(nombre_ + ": " + Entre(c.nombre) +
                           " no puede recibir el foco (oculto, deshabilitado o en otro panel)");
  foco_ = &c;
}

int Formulario::MostrarModal() {
  if (abierto_) throw std::logic_error(nombre_ + " ya se está mostrando");
  abierto_ = true;
  resultado_ = 0;
  if (al_mostrar_) al_mostrar_(*this);
  abierto_ = false;
  return resultado_;
}

void Formulario::Cerrar(int resultado) {
  resultado_ = resultado;
  abierto_ = false;
}

std::string Formulario::TextoSeleccionado() {
  auto* t = foco_ ? dynamic_cast<Texto*>(foco_) : nullptr;
  return t ? t->Seleccion() : std::string();
}

Control& Formulario::AlAlcance(std::string_view nombre,
                               std::initializer_list<ClaseControl> clases) {
  if (!abierto_) Rechazar(nombre_ + " no está abierto");
  Control* c = nullptr;
  for (auto& p : controles_)
    if (p->nombre == nombre) c = p.get();
  if (!c) Rechazar(nombre_ + " no tiene un control " + Entre(nombre));
  if (std::find(clases.begin(), clases.end(), c->clase) == clases.end())
    Rechazar(Entre(nombre) + " no admite esa acción");
  if (!c->visible) Rechazar(Entre(nombre) + " está oculto");
  if (!c->enabled) Rechazar(Entre(nombre) + " está deshabilitado");
  if (c->panel != 0 && c->panel != panel_)
    Rechazar(Entre(nombre) + " está en el panel " + std::to_string(c->panel) +
             " y se muestra el panel " + std::to_string(panel_));
  foco_ = c;
  return *c;
}

template <class F>
void Formulario::Actuar(F&& accion) {
  Control* antes = foco_;
  try {
    accion();
  } catch (const std::invalid_argument&) {
    foco_ = antes;
    throw;
  }
}

void Formulario::Escribir(std::string_view control, std::string_view texto) {
  Actuar([&] {
    static_cast<Texto&>(
        AlAlcance(control, {ClaseControl::Texto, ClaseControl::Fecha, ClaseControl::Hora}))
        .Teclear(texto);
  });
}

void Formulario::Elegir(std::string_view control, std::string_view caption) {
  Actuar([&] { static_cast<Lista&>(AlAlcance(control, {ClaseControl::Lista})).Elegir(caption); });
}

void Formulario::Marcar(std::string_view control, bool marcada) {
  Actuar(
      [&] { static_cast<Casilla&>(AlAlcance(control, {ClaseControl::Casilla})).Marcar(marcada); });
}

void Formulario::Pulsar(std::string_view nombre_o_caption) {
  Actuar([&] {
    std::string nombre(nombre_o_caption);
    if (!Buscar(nombre)) {
      const std::string buscado = CaptionVisible(nombre_o_caption);
      std::vector<Control*> hallados;
      for (auto& c : controles_) {
        const bool boton = c->clase == ClaseControl::Boton || c->clase == ClaseControl::Enlace ||
                           c->clase == ClaseControl::BotonImagen;
        if (boton && AlAlcance(*c) && CaptionVisible(c->caption) == buscado)
          hallados.push_back(c.get());
      }
      if (hallados.size() > 1)
        Rechazar("hay más de un botón " + Entre(buscado) + " a la vista; nómbrelo");
      if (hallados.size() == 1) nombre = hallados[0]->nombre;
    }
    static_cast<Boton&>(
        AlAlcance(nombre, {ClaseControl::Boton, ClaseControl::Enlace, ClaseControl::BotonImagen}))
        .Pulsar();
  });
}

int Formulario::FilaReal(Grilla& g, int fila_visible) const {
  const int f = g.FilaReal(fila_visible);
  if (f < 0) Rechazar(Entre(g.nombre) + " no muestra la fila " + std::to_string(fila_visible));
  return f;
}

void Formulario::SeleccionarFila(std::string_view grilla, int fila_visible) {
  Actuar([&] {
    auto& g = static_cast<Grilla&>(AlAlcance(grilla, {ClaseControl::Grilla}));
    g.Elegir(FilaReal(g, fila_visible));
  });
}

void Formulario::EscribirCelda(std::string_view grilla, int fila_visible, std::string_view columna,
                               std::string_view texto) {
  Actuar([&] {
    auto& g = static_cast<Grilla&>(AlAlcance(grilla, {ClaseControl::Grilla}));
    const int f = FilaReal(g, fila_visible);
    const int c = g.Columna(columna);
    if (g.ColumnaOculta(c) || !g.ColumnaEditable(c) || g.ColumnaCasilla(c))
      Rechazar("en " + Entre(g.nombre) + " no se escribe en la columna " + Entre(columna));
    g.Elegir(f);
    g.Celda(f, c, texto);
    g.Editado(f, c);
  });
}

void Formulario::TildarCelda(std::string_view grilla, int fila_visible, std::string_view columna,
                             bool tilde) {
  Actuar([&] {
    auto& g = static_cast<Grilla&>(AlAlcance(grilla, {ClaseControl::Grilla}));
    const int f = FilaReal(g, fila_visible);
    const int c = g.Columna(columna);
    if (g.ColumnaOculta(c) || !g.ColumnaEditable(c) || !g.ColumnaCasilla(c))
      Rechazar("en " + Entre(g.nombre) + " no se tilda la columna " + Entre(columna));
    g.Elegir(f);
    if (g.Tilde(f, c) == tilde) return;
    g.Tilde(f, c, tilde);
    g.Editado(f, c);
  });
}

void Formulario::ElegirNodo(std::string_view arbol, std::string_view nodo) {
  Actuar([&] { static_cast<Arbol&>(AlAlcance(arbol, {ClaseControl::Arbol})).Elegir(nodo, false); });
}

void Formulario::ActivarNodo(std::string_view arbol, std::string_view nodo) {
  Actuar([&] { static_cast<Arbol&>(AlAlcance(arbol, {ClaseControl::Arbol})).Elegir(nodo, true); });
}

void Formulario::PedirCierre() {
  if (!abierto_) Rechazar(nombre_ + " no está abierto");
  if (al_pedir_cierre_)
    al_pedir_cierre_();
  else
    Cerrar(0);
}

std::unique_ptr<IFormulario> Fabrica::Crear(std::string_view nombre) {
  return std::make_unique<Formulario>(std::string(nombre), al_mostrar_);
}

}  // namespace memoria
}  // namespace kivmovfrec::controles
