#include "ventana_principal.h"

#include <QApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>
#include <map>

#include "comun_principal.h"
#include "kivmovfrec/enums.h"
#include "kivmovfrec/nombres.h"
#include "kivmovfrec/vb.h"
#include "ventana_principal_impl.h"

namespace kivmovfrec::qt {
namespace {

QTableWidget* NuevaTabla(const char* nombre, const QStringList& encabezados) {
  auto* t = new QTableWidget(0, static_cast<int>(encabezados.size()));
  t->setObjectName(nombre);
  t->setHorizontalHeaderLabels(encabezados);
  t->setSelectionBehavior(QAbstractItemView::SelectRows);
  t->setSelectionMode(QAbstractItemView::SingleSelection);
  t->setEditTriggers(QAbstractItemView::NoEditTriggers);
  t->verticalHeader()->hide();
  t->horizontalHeader()->setStretchLastSection(false);
  return t;
}

QTableWidgetItem* CeldaDe(const std::string& texto, bool derecha = false) {
  return qt::Celda(Q(texto), derecha);
}

// A caption beside the widget it names, which its access key focuses.
QLabel* Rotulo(const char* texto, QWidget* de) {
  auto* r = new QLabel(QString::fromUtf8(texto));
  r->setBuddy(de);
  return r;
}

Date PrimerDia(int anio, int mes) {
  return vb::MakeDate({anio, mes, 1, 0, 0, 0});
}

}  // namespace

VentanaPrincipal::VentanaPrincipal(clsMovFrecuente& mf, int32_t empresa, int32_t usuario,
                                   QWidget* padre)
    : QMainWindow(padre), impl_(std::make_unique<Impl>(*this, mf, empresa, usuario)) {
  setObjectName("frmPrincipal");
  setWindowTitle("Movimientos Frecuentes");
  impl_->pestanas = new QTabWidget;
  impl_->pestanas->setObjectName("pestanas");
  auto* lista = new QWidget;
  auto* agenda = new QWidget;
  impl_->ArmarLista(*lista);
  impl_->ArmarAgenda(*agenda);
  impl_->pestanas->addTab(lista, "&Movimientos");
  impl_->pestanas->addTab(agenda, "A&genda");
  setCentralWidget(impl_->pestanas);
  impl_->CrearAcciones();
  statusBar();
  // Wide enough for every tool-bar action, so that none hides behind the overflow arrow.
  int ancho = 980;
  for (const QToolBar* barra : findChildren<QToolBar*>())
    ancho = std::max(ancho, barra->sizeHint().width() + 24);
  resize(ancho, 560);

  const vb::DateParts hoy = vb::Split(mf.Contexto().Reloj().Today());
  impl_->anio->setValue(hoy.year);
  impl_->mes->setCurrentIndex(hoy.month - 1);
  Actualizar();
}

VentanaPrincipal::~VentanaPrincipal() = default;

void VentanaPrincipal::Actualizar() {
  const auto fila = impl_->Seleccionada();
  impl_->LeerLista(fila ? fila->id : 0);
  impl_->LeerAgenda();
}

void VentanaPrincipal::MostrarMes(int anio, int mes) {
  // Both widgets change together; the agenda is read once.
  QSignalBlocker b1(impl_->anio), b2(impl_->mes);
  impl_->anio->setValue(anio);
  impl_->mes->setCurrentIndex(mes - 1);
  impl_->LeerAgenda();
}

void VentanaPrincipal::Impl::ArmarLista(QWidget& pagina) {
  filtro_tipo = new QComboBox;
  filtro_tipo->setObjectName("filtroTipo");
  filtro_tipo->addItem("Todos", 0);
  for (enuTipoMovFrec t :
       {enuTipoMovFrec::Asiento, enuTipoMovFrec::Comprobante, enuTipoMovFrec::Calendario,
        enuTipoMovFrec::AsientoSistema, enuTipoMovFrec::CheckList})
    filtro_tipo->addItem(Q(TipoTexto(ToInt(t))), ToInt(t));
  filtro_estado = new QComboBox;
  filtro_estado->setObjectName("filtroEstado");
  filtro_estado->addItem("Todos", -1);
  for (enuEstadoMF e : {enuEstadoMF::EnProceso, enuEstadoMF::Realizado, enuEstadoMF::Papelera})
    filtro_estado->addItem(Q(EstadoTexto(ToInt(e))), ToInt(e));
  filtro_nombre = new QLineEdit;
  filtro_nombre->setObjectName("filtroNombre");
  filtro_nombre->setClearButtonEnabled(true);
  filtro_nombre->setPlaceholderText("Parte del nombre");

  auto* filtros = new QHBoxLayout;
  filtros->addWidget(Rotulo("&Tipo:", filtro_tipo));
  filtros->addWidget(filtro_tipo);
  filtros->addWidget(Rotulo("E&stado:", filtro_estado));
  filtros->addWidget(filtro_estado);
  filtros->addWidget(Rotulo("&Nombre:", filtro_nombre));
  filtros->addWidget(filtro_nombre, 1);

  tabla = NuevaTabla("tablaMovimientos",
                     {"ID", "Tipo", "Nombre", "Próximo vencimiento", "Tipo de importe", "Estado"});
  tabla->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
  auto* capa = new QVBoxLayout(&pagina);
  capa->addLayout(filtros);
  capa->addWidget(tabla, 1);

  const auto refiltrar = [this] {
    const auto fila = Seleccionada();
    MostrarLista(fila ? fila->id : 0);
  };
  QObject::connect(filtro_tipo, &QComboBox::currentIndexChanged, &ventana, refiltrar);
  QObject::connect(filtro_estado, &QComboBox::currentIndexChanged, &ventana, refiltrar);
  QObject::connect(filtro_nombre, &QLineEdit::textChanged, &ventana, refiltrar);
  QObject::connect(tabla, &QTableWidget::itemSelectionChanged, &ventana, [this] { Habilitar(); });
  // Enter or a double click on a row edits it.
  QObject::connect(tabla, &QTableWidget::activated, &ventana, [this] {
    if (editar->isEnabled()) editar->trigger();
  });
}

void VentanaPrincipal::Impl::ArmarAgenda(QWidget& pagina) {
  mes = new QComboBox;
  mes->setObjectName("agendaMes");
  for (const std::string& m : vb::Locale::Spanish().month_names) mes->addItem(Q(m));
  anio = new QSpinBox;
  anio->setObjectName("agendaAnio");
  anio->setRange(1900, 9998);
  auto* anterior = new QPushButton("< Mes ante&rior");
  anterior->setObjectName("bfMesAnterior");
  auto* siguiente = new QPushButton("Mes s&iguiente >");
  siguiente->setObjectName("bfMesSiguiente");
  nota_agenda = new QLabel;
  nota_agenda->setObjectName("notaAgenda");
  nota_agenda->setWordWrap(true);

  auto* barra_mes = new QHBoxLayout;
  barra_mes->addWidget(anterior);
  barra_mes->addWidget(Rotulo("Me&s:", mes));
  barra_mes->addWidget(mes);
  barra_mes->addWidget(new QLabel("Año:"));
  barra_mes->addWidget(anio);
  barra_mes->addWidget(siguiente);
  barra_mes->addStretch(1);

  agenda = NuevaTabla(
      "tablaAgenda", {"Fecha", "Evento", "ID", "Tipo", "Nombre", "Ocurrencia", "Vence", "Detalle"});
  agenda->horizontalHeader()->setSectionResizeMode(4, QHeaderView::Stretch);
  auto* capa = new QVBoxLayout(&pagina);
  capa->addLayout(barra_mes);
  capa->addWidget(agenda, 1);
  capa->addWidget(nota_agenda);

  const auto mover = [this](int pasos) {
    int m = mes->currentIndex() + pasos, a = anio->value();
    if (m < 0) m += 12, --a;
    if (m > 11) m -= 12, ++a;
    ventana.MostrarMes(a, m + 1);
  };
  QObject::connect(anterior, &QPushButton::clicked, &ventana, [mover] { mover(-1); });
  QObject::connect(siguiente, &QPushButton::clicked, &ventana, [mover] { mover(1); });
  QObject::connect(mes, &QComboBox::currentIndexChanged, &ventana, [this] { LeerAgenda(); });
  QObject::connect(anio, &QSpinBox::valueChanged, &ventana, [this] { LeerAgenda(); });
}

void VentanaPrincipal::Impl::LeerLista(int32_t id) {
  filas = LeerMovimientos(*mf.Contexto().cn, empresa);
  MostrarLista(id);
}

void VentanaPrincipal::Impl::MostrarLista(int32_t id) {
  FiltroMovimientos filtro;
  filtro.tipo = static_cast<int16_t>(filtro_tipo->currentData().toInt());
  filtro.estado = static_cast<int16_t>(filtro_estado->currentData().toInt());
  filtro.texto = filtro_nombre->text().toStdString();
  QSignalBlocker bloqueo(tabla);
  tabla->clearContents();
  tabla->setRowCount(0);
  int elegida = -1;
  for (const FilaMovimiento& f : filas) {
    if (!Cumple(f, filtro)) continue;
    const int r = tabla->rowCount();
    tabla->insertRow(r);
    auto* celda_id = CeldaDe(std::to_string(f.id), true);
    celda_id->setData(Qt::UserRole, f.id);
    tabla->setItem(r, 0, celda_id);
    tabla->setItem(r, 1, CeldaDe(TipoTexto(f.tipo)));
    tabla->setItem(r, 2, CeldaDe(f.nombre));
    tabla->setItem(r, 3, CeldaDe(f.proxima ? FechaTexto(*f.proxima) : ""));
    tabla->setItem(r, 4, CeldaDe(NombreTipoImporte(f.tipo_importe)));
    tabla->setItem(r, 5, CeldaDe(EstadoTexto(f.estado)));
    if (f.id == id) elegida = r;
  }
  tabla->resizeColumnsToContents();
  if (elegida >= 0) tabla->selectRow(elegida);
  ventana.statusBar()->showMessage(
      QString("%1 de %2 movimientos").arg(tabla->rowCount()).arg(filas.size()));
  Habilitar();
}

void VentanaPrincipal::Impl::LeerAgenda() {
  const int a = anio->value(), m = mes->currentIndex() + 1;
  const Date desde = PrimerDia(a, m);
  const Date hasta{(m == 12 ? PrimerDia(a + 1, 1) : PrimerDia(a, m + 1)).serial - 1};
  const ResultadoAgenda r = mf.Agenda(desde, hasta);
  // The task lists' items: how many are still open on each list.
  std::map<int32_t, std::pair<int, int>> tareas;  // list -> (open, all not in the bin)
  for (const ListaTareas& l : mf.ListasTareas()) {
    auto& [abiertas, todas] = tareas[l.id];
    for (const ItemListaTareas& it : l.items) {
      if (it.en_papelera) continue;
      ++todas;
      if (!it.realizado) ++abiertas;
    }
  }
  agenda->clearContents();
  agenda->setRowCount(0);
  for (const OcurrenciaAgenda& e : r.ocurrencias) {
    const int f = agenda->rowCount();
    agenda->insertRow(f);
    std::string detalle = e.memo;
    if (e.tipo == ToInt(enuTipoMovFrec::CheckList)) {
      const auto [abiertas, todas] = tareas[e.movimiento];
      detalle = std::to_string(abiertas) + " de " + std::to_string(todas) +
                (todas == 1 ? " tarea pendiente" : " tareas pendientes");
    }
    agenda->setItem(f, 0, CeldaDe(FechaTexto(e.fecha)));
    agenda->setItem(f, 1, CeldaDe(e.aviso ? "Notificación" : "Vencimiento"));
    agenda->setItem(f, 2, CeldaDe(std::to_string(e.movimiento), true));
    agenda->setItem(f, 3, CeldaDe(TipoTexto(e.tipo)));
    agenda->setItem(f, 4, CeldaDe(e.nombre));
    agenda->setItem(f, 5, CeldaDe(std::to_string(e.ocurrencia), true));
    agenda->setItem(f, 6, CeldaDe(e.aviso ? FechaTexto(e.vencimiento) : ""));
    agenda->setItem(f, 7, CeldaDe(detalle));
  }
  agenda->resizeColumnsToContents();
  QString nota = r.ocurrencias.empty() ? "No hay vencimientos ni notificaciones en el mes." : "";
  for (const std::string& o : r.omitidos)
    nota += (nota.isEmpty() ? "" : "\n") + Q(o) + "; se omite";
  nota_agenda->setText(nota);
}

std::optional<FilaMovimiento> VentanaPrincipal::Impl::Seleccionada() const {
  const auto elegidas = tabla->selectionModel()->selectedRows();
  if (elegidas.isEmpty()) return std::nullopt;
  const int32_t id = tabla->item(elegidas.front().row(), 0)->data(Qt::UserRole).toInt();
  for (const FilaMovimiento& f : filas)
    if (f.id == id) return f;
  return std::nullopt;
}

bool VentanaPrincipal::Seleccionar(int32_t id) {
  impl_->MostrarLista(id);
  const auto f = impl_->Seleccionada();
  return f && f->id == id;
}

}  // namespace kivmovfrec::qt
