// The controls as widgets: each class implements its control interface over one Qt widget.
// Setters called by the logic run silenced; a widget's signal reaches the logic's handler only
// when the form is not silenced, that is when a person acted.
#include <QApplication>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QScrollBar>
#include <QStyle>
#include <QTableWidget>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWidgetAction>
#include <algorithm>
#include <stdexcept>

#include "formulario_qt.h"

namespace kivmovfrec::qt {

using controles::Alineacion;
using controles::ClaseControl;
using controles::Evento;

namespace {

QString Q(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}
std::string S(const QString& s) {
  return s.toStdString();
}
std::string Entre(std::string_view s) {
  return "«" + std::string(s) + "»";
}

Qt::Alignment AlineacionQt(Alineacion a) {
  switch (a) {
    case Alineacion::Centro:
      return Qt::AlignCenter;
    case Alineacion::Derecha:
      return Qt::AlignRight | Qt::AlignVCenter;
    case Alineacion::Izquierda:
      break;
  }
  return Qt::AlignLeft | Qt::AlignVCenter;
}

// An image by name: the icon theme's, else the style's picture for the dialogs' own names
// (the formula editor's "atras" and "inicio", plain or highlighted); none for an unknown name.
QIcon Imagen(std::string_view nombre) {
  QIcon icono = QIcon::fromTheme(Q(nombre));
  if (!icono.isNull()) return icono;
  std::string base(nombre);
  if (const auto p = base.find("_resaltada"); p != std::string::npos) base.erase(p);
  if (base == "atras") return QApplication::style()->standardIcon(QStyle::SP_ArrowBack);
  if (base == "inicio") return QApplication::style()->standardIcon(QStyle::SP_DirHomeIcon);
  return {};
}

// VB colours are &HBBGGRR.
QColor ColorQt(int32_t c) {
  return QColor(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF);
}

template <class I>
class ControlDe : public I, public ControlQt {
 public:
  ControlDe(FormularioQt& f, std::string_view nombre, ClaseControl clase, int panel)
      : ControlQt(f, nombre, clase, panel) {}
  controles::IControl& Interfaz() override { return *this; }
  const std::string& Nombre() const override { return nombre; }
  ClaseControl Clase() const override { return clase; }
  int Panel() const override { return panel; }
  std::string Caption() const override { return caption; }
  void Caption(std::string_view c) override {
    caption = c;
    FormularioQt::Silencio s(form);
    MostrarCaption();
    Aplicar();
  }
  std::string Hint() const override { return hint; }
  void Hint(std::string_view h) override {
    hint = h;
    Aplicar();
  }
  bool Enabled() const override { return enabled; }
  void Enabled(bool e) override {
    enabled = e;
    Aplicar();
  }
  bool Visible() const override { return visible; }
  void Visible(bool v) override {
    visible = v;
    Aplicar();
  }
  int32_t ColorFondo() const override { return fondo; }
  void ColorFondo(int32_t c) override {
    fondo = c;
    Aplicar();
  }
  int32_t ColorTexto() const override { return texto; }
  void ColorTexto(int32_t c) override {
    texto = c;
    Aplicar();
  }
  void SetFocus() override { form.TomarFoco(*this); }

 protected:
  // Connects a widget signal to the logic's handler, for a person's actions only.
  void Disparar(const Evento& e) {
    if (e && !form.Silenciado()) form.Evento(e);
  }
};

// Labels and panel frames.
class Simple final : public ControlDe<controles::IControl> {
 public:
  Simple(FormularioQt& f, std::string_view nombre, ClaseControl clase, int panel)
      : ControlDe(f, nombre, clase, panel) {
    if (clase == ClaseControl::Panel) {
      widget = new QGroupBox;
    } else {
      auto* l = new QLabel;
      l->setWordWrap(true);
      widget = l;
    }
  }
  // A frame that holds no control is only its title (a step's heading), not an empty box.
  void AntesDeMostrar() override {
    auto* g = qobject_cast<QGroupBox*>(widget);
    if (!g || !g->layout() || g->layout()->count() > 0) return;
    g->setFlat(true);
    g->setFixedHeight(g->fontMetrics().height() + 2 * g->fontMetrics().descent());
  }
  void MostrarCaption() override {
    if (auto* g = qobject_cast<QGroupBox*>(widget))
      g->setTitle(Q(caption));
    else
      static_cast<QLabel*>(widget)->setText(Q(controles::SinMarcasDeAcceso(caption)));
  }
};

class Texto final : public ControlDe<controles::ITexto> {
 public:
  Texto(FormularioQt& f, std::string_view nombre, ClaseControl clase, int panel)
      : ControlDe(f, nombre, clase, panel) {
    edit_ = new QLineEdit;
    etiqueta = new QLabel;
    etiqueta->setBuddy(edit_);
    QObject::connect(edit_, &QLineEdit::textEdited, edit_, [this] { Disparar(al_cambiar_); });
    if (clase == ClaseControl::Texto) {
      widget = edit_;
      return;
    }
    // Dates and times stay typed text (the logic reads and refuses them as it does for every
    // host, so an invalid date can be typed and is refused with the field's message); the
    // validator keeps out what can never be part of one. A date field has a calendar button
    // that types the chosen day as dd/mm/aaaa.
    const bool fecha = clase == ClaseControl::Fecha;
    edit_->setValidator(new QRegularExpressionValidator(
        QRegularExpression(fecha ? "[0-9/.\\-]{0,10}" : "[0-9:.]{0,8}"), edit_));
    edit_->setPlaceholderText(fecha ? "dd/mm/aaaa" : "hh:mm");
    if (!fecha) {
      widget = edit_;
      return;
    }
    widget = new QWidget;
    auto* fila = new QHBoxLayout(widget);
    fila->setContentsMargins(0, 0, 0, 0);
    fila->addWidget(edit_, 1);
    auto* boton = new QToolButton;
    boton->setText("…");
    boton->setToolTip("Calendario");
    boton->setPopupMode(QToolButton::InstantPopup);
    boton->setFocusPolicy(Qt::NoFocus);
    auto* menu = new QMenu(boton);
    auto* calendario = new QCalendarWidget;
    auto* accion = new QWidgetAction(menu);
    accion->setDefaultWidget(calendario);
    menu->addAction(accion);
    boton->setMenu(menu);
    QObject::connect(menu, &QMenu::aboutToShow, calendario, [this, calendario] {
      const QDate d = QDate::fromString(edit_->text(), "dd/MM/yyyy");
      calendario->setSelectedDate(d.isValid() ? d : QDate::currentDate());
    });
    QObject::connect(calendario, &QCalendarWidget::activated, menu, [this, menu](const QDate& d) {
      menu->close();
      edit_->setText(d.toString("dd/MM/yyyy"));
      edit_->setFocus();
      Disparar(al_cambiar_);
    });
    fila->addWidget(boton);
    widget->setFocusProxy(edit_);
  }
  QWidget* Foco() const override { return edit_; }
  void MostrarCaption() override { etiqueta->setText(Q(caption)); }

  std::string Text() const override { return S(edit_->text()); }
  // A new text puts the cursor at its start. The logic often writes back what a person is
  // typing (a count tidied after each key): the same text leaves the cursor where it is, or the
  // next key would land before the ones typed.
  void Text(std::string_view t) override {
    const QString nuevo = Q(t);
    if (nuevo == edit_->text()) return;
    FormularioQt::Silencio s(form);
    edit_->setText(nuevo);
    edit_->setCursorPosition(0);
  }
  int SelStart() const override {
    return edit_->hasSelectedText() ? edit_->selectionStart() : edit_->cursorPosition();
  }
  int SelLength() const override { return edit_->hasSelectedText() ? edit_->selectionLength() : 0; }
  void Seleccionar(int start, int length) override {
    const int n = static_cast<int>(edit_->text().size());
    start = std::clamp(start, 0, n);
    length = length < 0 ? n - start : std::min(length, n - start);
    FormularioQt::Silencio s(form);
    edit_->setSelection(start, length);
  }
  int MaxLength() const override { return max_; }
  void MaxLength(int m) override {
    max_ = std::max(m, 0);
    edit_->setMaxLength(max_ > 0 ? max_ : 32767);
  }
  void AlCambiar(Evento e) override { al_cambiar_ = std::move(e); }

 private:
  QLineEdit* edit_;
  int max_ = 0;
  Evento al_cambiar_;
};

class Lista final : public ControlDe<controles::ILista> {
 public:
  Lista(FormularioQt& f, std::string_view nombre, ClaseControl clase, int panel)
      : ControlDe(f, nombre, clase, panel) {
    combo_ = new QComboBox;
    combo_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    widget = combo_;
    etiqueta = new QLabel;
    etiqueta->setBuddy(combo_);
    QObject::connect(combo_, &QComboBox::activated, combo_, [this] { Disparar(al_elegir_); });
  }
  void MostrarCaption() override { etiqueta->setText(Q(caption)); }
  void Limpiar() override {
    FormularioQt::Silencio s(form);
    combo_->clear();
  }
  void Agregar(std::string_view caption, int32_t dato) override {
    FormularioQt::Silencio s(form);
    const int antes = combo_->currentIndex();
    combo_->addItem(Q(caption), QVariant(static_cast<int>(dato)));
    // A combo box chooses its first entry by itself; the list stays without a choice.
    if (antes < 0) combo_->setCurrentIndex(-1);
  }
  int Cantidad() const override { return combo_->count(); }
  std::string Item(int i) const override { return S(combo_->itemText(Index(i))); }
  int32_t Dato(int i) const override { return combo_->itemData(Index(i)).toInt(); }
  int Indice() const override { return combo_->currentIndex(); }
  void Indice(int i) override {
    if (i < -1 || i >= Cantidad()) throw std::out_of_range("índice de lista fuera de rango");
    FormularioQt::Silencio s(form);
    combo_->setCurrentIndex(i);
  }
  void AlElegir(Evento e) override { al_elegir_ = std::move(e); }

 private:
  int Index(int i) const {
    if (i < 0 || i >= Cantidad()) throw std::out_of_range("índice de lista fuera de rango");
    return i;
  }
  QComboBox* combo_;
  Evento al_elegir_;
};

class Casilla final : public ControlDe<controles::ICasilla> {
 public:
  Casilla(FormularioQt& f, std::string_view nombre, ClaseControl clase, int panel)
      : ControlDe(f, nombre, clase, panel) {
    box_ = new QCheckBox;
    widget = box_;
    QObject::connect(box_, &QCheckBox::clicked, box_, [this] { Disparar(al_cambiar_); });
  }
  void MostrarCaption() override { box_->setText(Q(caption)); }
  bool Marcada() const override { return box_->isChecked(); }
  void Marcada(bool m) override {
    FormularioQt::Silencio s(form);
    box_->setChecked(m);
  }
  void AlCambiar(Evento e) override { al_cambiar_ = std::move(e); }

 private:
  QCheckBox* box_;
  Evento al_cambiar_;
};

// Push buttons, link labels and image buttons (a tool button whose picture changes under the
// pointer: the highlighted picture is the icon's Active mode).
class Boton final : public ControlDe<controles::IBoton> {
 public:
  Boton(FormularioQt& f, std::string_view nombre, ClaseControl clase, int panel)
      : ControlDe(f, nombre, clase, panel) {
    const auto pulsar = [this] { Disparar(al_pulsar_); };
    if (clase == ClaseControl::Enlace) {
      auto* l = new QLabel;
      l->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
      l->setFocusPolicy(Qt::StrongFocus);
      QObject::connect(l, &QLabel::linkActivated, l, pulsar);
      widget = l;
    } else if (clase == ClaseControl::BotonImagen) {
      auto* t = new QToolButton;
      t->setAutoRaise(true);
      t->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
      QObject::connect(t, &QToolButton::clicked, t, pulsar);
      widget = t;
    } else {
      auto* b = new QPushButton;
      b->setAutoDefault(false);
      QObject::connect(b, &QPushButton::clicked, b, pulsar);
      widget = b;
    }
  }
  ~Boton() override { form.MarcarCancela(this, false); }
  void MostrarCaption() override {
    if (auto* l = qobject_cast<QLabel*>(widget))
      l->setText("<a href=\"#\">" + Q(controles::SinMarcasDeAcceso(caption)).toHtmlEscaped() +
                 "</a>");
    else
      static_cast<QAbstractButton*>(widget)->setText(Q(caption));
  }
  void PorDefecto(bool si) override {
    if (auto* b = qobject_cast<QPushButton*>(widget)) b->setDefault(si);
  }
  void Cancela(bool si) override { form.MarcarCancela(this, si); }
  void Imagenes(std::string_view normal, std::string_view resaltada) override {
    auto* t = qobject_cast<QToolButton*>(widget);
    if (!t) return;
    QIcon icono = Imagen(normal);
    const QIcon encima = Imagen(resaltada);
    if (!encima.isNull())
      for (int lado : {16, 24, 32}) icono.addPixmap(encima.pixmap(lado), QIcon::Active);
    t->setIcon(icono);
  }
  void AlPulsar(Evento e) override { al_pulsar_ = std::move(e); }

 private:
  Evento al_pulsar_;
};

class Grilla final : public ControlDe<controles::IGrilla> {
 public:
  Grilla(FormularioQt& f, std::string_view nombre, ClaseControl clase, int panel)
      : ControlDe(f, nombre, clase, panel) {
    t_ = new QTableWidget;
    t_->setSelectionBehavior(QAbstractItemView::SelectRows);
    t_->setSelectionMode(QAbstractItemView::SingleSelection);
    t_->verticalHeader()->hide();
    t_->horizontalHeader()->setStretchLastSection(true);
    // Typing into a cell opens it at once (a click on a selected cell does not wait for a
    // possible double click first, which would swallow the first keys typed).
    t_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                        QAbstractItemView::AnyKeyPressed);
    widget = new QWidget;
    auto* v = new QVBoxLayout(widget);
    v->setContentsMargins(0, 0, 0, 0);
    etiqueta = new QLabel;
    etiqueta->setBuddy(t_);
    v->addWidget(etiqueta);
    v->addWidget(t_);
    widget->setFocusProxy(t_);
    QObject::connect(t_, &QTableWidget::currentCellChanged, t_,
                     [this](int fila, int, int antes, int) {
                       if (fila != antes) Disparar(al_cambiar_fila_);
                     });
    QObject::connect(t_, &QTableWidget::itemChanged, t_, [this](QTableWidgetItem* item) {
      if (form.Silenciado() || !al_editar_) return;
      const int fila = item->row(), columna = item->column();
      form.Evento([this, fila, columna] { al_editar_(fila, columna); });
    });
  }
  QWidget* Foco() const override { return t_; }
  void MostrarCaption() override { etiqueta->setText(Q(caption)); }
  // Every column wide enough for its contents and up to ten rows on view, so that nothing is
  // clipped in Spanish unless the grid would outgrow a screen. A grid still empty (rows come as
  // a person types them) gets its first text column wide enough for an account's code and name
  // and the others for an amount. The widest text column takes the room left over.
  void AntesDeMostrar() override {
    QHeaderView& h = *t_->horizontalHeader();
    h.setStretchLastSection(false);
    h.setSectionResizeMode(QHeaderView::Interactive);
    t_->resizeColumnsToContents();
    bool vacia = true;
    for (int f = 0; f < Filas() && vacia; ++f) vacia = t_->isRowHidden(f);
    const QFontMetrics letras(t_->font());
    int estirar = -1;
    for (int c = 0; c < CantidadColumnas(); ++c) {
      const Col& col = ColDe(c);
      if (col.oculta || col.casilla) continue;
      const bool texto = col.alineacion != Alineacion::Derecha;
      if (vacia) {
        const char* muestra =
            texto && estirar < 0 ? "0.0.00 Cuenta de nombre largo" : "000.000.000,00";
        t_->setColumnWidth(c, std::max(t_->columnWidth(c), letras.horizontalAdvance(muestra)));
      }
      if (texto && (estirar < 0 || t_->columnWidth(c) > t_->columnWidth(estirar))) estirar = c;
    }
    int ancho = 2 * t_->frameWidth() + t_->verticalScrollBar()->sizeHint().width();
    for (int c = 0; c < CantidadColumnas(); ++c)
      if (!t_->isColumnHidden(c)) ancho += t_->columnWidth(c);
    int alto = 2 * t_->frameWidth() + t_->horizontalHeader()->sizeHint().height();
    int filas = 0;
    for (int f = 0; f < Filas() && filas < 10; ++f)
      if (!t_->isRowHidden(f)) alto += t_->rowHeight(f), ++filas;
    if (filas < 4) alto += (4 - filas) * t_->verticalHeader()->defaultSectionSize();
    t_->setMinimumSize(std::min(ancho, 1000), std::min(alto, 600));
    h.setStretchLastSection(estirar < 0);
    if (estirar >= 0) h.setSectionResizeMode(estirar, QHeaderView::Stretch);
  }

  void Columnas(std::string_view formato) override {
    FormularioQt::Silencio s(form);
    cols_.clear();
    t_->clear();
    t_->setRowCount(0);
    QStringList encabezados;
    for (const QString& h : Q(formato).split('|')) {
      Col c{S(h)};
      if (!h.isEmpty() && (h[0] == '<' || h[0] == '^' || h[0] == '>')) {
        c.alineacion = h[0] == '<'   ? Alineacion::Izquierda
                       : h[0] == '^' ? Alineacion::Centro
                                     : Alineacion::Derecha;
        c.encabezado = S(h.mid(1));
      }
      encabezados << Q(c.encabezado);
      cols_.push_back(c);
    }
    t_->setColumnCount(static_cast<int>(cols_.size()));
    t_->setHorizontalHeaderLabels(encabezados);
    for (int c = 0; c < CantidadColumnas(); ++c) t_->setColumnHidden(c, false);
  }
  int CantidadColumnas() const override { return static_cast<int>(cols_.size()); }
  std::string Encabezado(int c) const override { return ColDe(c).encabezado; }
  void ColumnaOculta(int c, bool v) override {
    ColDe(c).oculta = v;
    t_->setColumnHidden(c, v);
  }
  bool ColumnaOculta(int c) const override { return ColDe(c).oculta; }
  void ColumnaCasilla(int c, bool v) override {
    ColDe(c).casilla = v;
    AjustarColumna(c);
  }
  bool ColumnaCasilla(int c) const override { return ColDe(c).casilla; }
  void ColumnaEditable(int c, bool v) override {
    ColDe(c).editable = v;
    AjustarColumna(c);
  }
  bool ColumnaEditable(int c) const override { return ColDe(c).editable; }
  void ColumnaAlineacion(int c, Alineacion a) override {
    ColDe(c).alineacion = a;
    AjustarColumna(c);
  }
  Alineacion ColumnaAlineacion(int c) const override { return ColDe(c).alineacion; }

  int Filas() const override { return t_->rowCount(); }
  int AgregarFila() override {
    FormularioQt::Silencio s(form);
    const int f = t_->rowCount();
    t_->insertRow(f);
    for (int c = 0; c < CantidadColumnas(); ++c) {
      t_->setItem(f, c, new QTableWidgetItem);
      Ajustar(f, c);
    }
    return f;
  }
  void QuitarFila(int f) override {
    FilaDe(f);
    FormularioQt::Silencio s(form);
    t_->removeRow(f);
  }
  void LimpiarFilas() override {
    FormularioQt::Silencio s(form);
    t_->setRowCount(0);
  }
  void FilaOculta(int f, bool v) override { t_->setRowHidden(FilaDe(f), v); }
  bool FilaOculta(int f) const override { return t_->isRowHidden(FilaDe(f)); }
  std::string Celda(int f, int c) const override { return S(Item(f, c)->text()); }
  void Celda(int f, int c, std::string_view texto) override {
    FormularioQt::Silencio s(form);
    Item(f, c)->setText(Q(texto));
  }
  bool Tilde(int f, int c) const override { return Item(f, c)->checkState() == Qt::Checked; }
  void Tilde(int f, int c, bool v) override {
    FormularioQt::Silencio s(form);
    Item(f, c)->setCheckState(v ? Qt::Checked : Qt::Unchecked);
  }
  int Fila() const override { return t_->currentRow(); }
  void Fila(int f) override {
    if (f != -1) FilaDe(f);
    FormularioQt::Silencio s(form);
    if (f < 0) {
      t_->setCurrentCell(-1, -1);
      t_->clearSelection();
      return;
    }
    int c = 0;
    while (c < CantidadColumnas() - 1 && cols_[c].oculta) ++c;
    t_->setCurrentCell(f, c);
  }
  void AlCambiarFila(Evento e) override { al_cambiar_fila_ = std::move(e); }
  void AlEditarCelda(std::function<void(int, int)> e) override { al_editar_ = std::move(e); }

 private:
  struct Col {
    std::string encabezado;
    bool oculta = false;
    bool casilla = false;
    bool editable = false;
    Alineacion alineacion = Alineacion::Izquierda;
  };
  Col& ColDe(int c) { return const_cast<Col&>(std::as_const(*this).ColDe(c)); }
  const Col& ColDe(int c) const {
    if (c < 0 || c >= CantidadColumnas())
      throw std::out_of_range(Entre(nombre) + ": columna " + std::to_string(c) + " fuera de rango");
    return cols_[c];
  }
  int FilaDe(int f) const {
    if (f < 0 || f >= Filas())
      throw std::out_of_range(Entre(nombre) + ": fila " + std::to_string(f) + " fuera de rango");
    return f;
  }
  QTableWidgetItem* Item(int f, int c) const {
    ColDe(c);
    return t_->item(FilaDe(f), c);
  }
  void AjustarColumna(int c) {
    FormularioQt::Silencio s(form);
    for (int f = 0; f < Filas(); ++f) Ajustar(f, c);
  }
  // A cell's flags and alignment from its column: check-box cells always show their box (ticked
  // or not), and a person may change only the cells of editable columns.
  void Ajustar(int f, int c) {
    QTableWidgetItem* item = t_->item(f, c);
    const Col& col = cols_[c];
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (col.editable) flags |= col.casilla ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
    if (col.casilla && item->data(Qt::CheckStateRole).isNull()) item->setCheckState(Qt::Unchecked);
    if (!col.casilla) item->setData(Qt::CheckStateRole, QVariant());
    item->setFlags(flags);
    item->setTextAlignment(AlineacionQt(col.alineacion));
  }

  QTableWidget* t_;
  std::vector<Col> cols_;
  Evento al_cambiar_fila_;
  std::function<void(int, int)> al_editar_;
};

class Arbol final : public ControlDe<controles::IArbol> {
 public:
  Arbol(FormularioQt& f, std::string_view nombre, ClaseControl clase, int panel)
      : ControlDe(f, nombre, clase, panel) {
    t_ = new QTreeWidget;
    t_->setHeaderHidden(true);
    widget = new QWidget;
    auto* v = new QVBoxLayout(widget);
    v->setContentsMargins(0, 0, 0, 0);
    etiqueta = new QLabel;
    etiqueta->setBuddy(t_);
    v->addWidget(etiqueta);
    v->addWidget(t_);
    widget->setFocusProxy(t_);
    QObject::connect(t_, &QTreeWidget::currentItemChanged, t_,
                     [this] { Disparar(al_seleccionar_); });
    QObject::connect(t_, &QTreeWidget::itemActivated, t_, [this] { Disparar(al_activar_); });
  }
  QWidget* Foco() const override { return t_; }
  void MostrarCaption() override { etiqueta->setText(Q(caption)); }
  void Limpiar() override {
    FormularioQt::Silencio s(form);
    t_->clear();
    nodos_.clear();
  }
  void Agregar(std::string_view clave, std::string_view padre, std::string_view caption) override {
    if (nodos_.count(std::string(clave)))
      throw std::logic_error(Entre(nombre) + ": la clave " + Entre(clave) + " ya existe");
    QTreeWidgetItem* arriba = nullptr;
    if (!padre.empty()) {
      auto p = nodos_.find(std::string(padre));
      if (p == nodos_.end())
        throw std::logic_error(Entre(nombre) + ": no existe el nodo " + Entre(padre));
      arriba = p->second;
    }
    FormularioQt::Silencio s(form);
    auto* item = arriba ? new QTreeWidgetItem(arriba) : new QTreeWidgetItem(t_);
    item->setText(0, Q(caption));
    item->setData(0, Qt::UserRole, Q(clave));
    nodos_[std::string(clave)] = item;
  }
  std::vector<std::string> Hijos(std::string_view padre) const override {
    std::vector<std::string> out;
    if (padre.empty()) {
      for (int i = 0; i < t_->topLevelItemCount(); ++i) out.push_back(Clave(t_->topLevelItem(i)));
      return out;
    }
    auto p = nodos_.find(std::string(padre));
    if (p == nodos_.end()) return out;
    for (int i = 0; i < p->second->childCount(); ++i) out.push_back(Clave(p->second->child(i)));
    return out;
  }
  std::string CaptionNodo(std::string_view clave) const override { return S(Nodo(clave)->text(0)); }
  std::string Seleccionado() const override {
    return t_->currentItem() ? Clave(t_->currentItem()) : std::string();
  }
  void Seleccionar(std::string_view clave) override {
    QTreeWidgetItem* item = clave.empty() ? nullptr : Nodo(clave);
    FormularioQt::Silencio s(form);
    t_->setCurrentItem(item);
  }
  void AlSeleccionar(Evento e) override { al_seleccionar_ = std::move(e); }
  void AlActivar(Evento e) override { al_activar_ = std::move(e); }

 private:
  static std::string Clave(QTreeWidgetItem* item) {
    return S(item->data(0, Qt::UserRole).toString());
  }
  QTreeWidgetItem* Nodo(std::string_view clave) const {
    auto n = nodos_.find(std::string(clave));
    if (n == nodos_.end())
      throw std::out_of_range(Entre(nombre) + ": no existe el nodo " + Entre(clave));
    return n->second;
  }
  QTreeWidget* t_;
  std::map<std::string, QTreeWidgetItem*> nodos_;
  Evento al_seleccionar_;
  Evento al_activar_;
};

}  // namespace

void ControlQt::MostrarCaption() {}

void ControlQt::Aplicar() {
  for (QWidget* w : {widget, static_cast<QWidget*>(etiqueta)}) {
    if (!w) continue;
    w->setEnabled(enabled);
    w->setToolTip(Q(hint));
  }
  // A label or a link without text takes no row (a schedule line with nothing to say yet).
  const bool vacio =
      caption.empty() && (clase == ClaseControl::Etiqueta || clase == ClaseControl::Enlace);
  widget->setVisible(visible && !vacio);
  if (etiqueta) etiqueta->setVisible(visible && !caption.empty());
  // Colours go to the field itself (not to a grid's header or a date's calendar button):
  // the background of what is typed or shown, and its text.
  QWidget* w = Foco();
  QPalette p = w->palette();
  const QPalette base = QApplication::palette(w);
  for (auto rol : {QPalette::Base, QPalette::Window})
    p.setColor(rol, fondo >= 0 ? ColorQt(fondo) : base.color(rol));
  for (auto rol : {QPalette::Text, QPalette::WindowText})
    p.setColor(rol, texto >= 0 ? ColorQt(texto) : base.color(rol));
  w->setPalette(p);
  w->setAutoFillBackground(fondo >= 0 && clase == ClaseControl::Etiqueta);
}

std::unique_ptr<ControlQt> NuevoControl(FormularioQt& form, std::string_view nombre,
                                        ClaseControl clase, int panel) {
  std::unique_ptr<ControlQt> c;
  switch (clase) {
    case ClaseControl::Texto:
    case ClaseControl::Fecha:
    case ClaseControl::Hora:
      c = std::make_unique<Texto>(form, nombre, clase, panel);
      break;
    case ClaseControl::Lista:
      c = std::make_unique<Lista>(form, nombre, clase, panel);
      break;
    case ClaseControl::Casilla:
      c = std::make_unique<Casilla>(form, nombre, clase, panel);
      break;
    case ClaseControl::Boton:
    case ClaseControl::Enlace:
    case ClaseControl::BotonImagen:
      c = std::make_unique<Boton>(form, nombre, clase, panel);
      break;
    case ClaseControl::Grilla:
      c = std::make_unique<Grilla>(form, nombre, clase, panel);
      break;
    case ClaseControl::Arbol:
      c = std::make_unique<Arbol>(form, nombre, clase, panel);
      break;
    case ClaseControl::Etiqueta:
    case ClaseControl::Panel:
      c = std::make_unique<Simple>(form, nombre, clase, panel);
      break;
  }
  c->Foco()->setObjectName(Q(nombre));
  if (c->etiqueta) c->etiqueta->hide();  // until it has a caption
  return c;
}

}  // namespace kivmovfrec::qt
