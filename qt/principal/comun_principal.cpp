#include "comun_principal.h"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTreeWidgetItem>
#include <QVBoxLayout>

#include "kivmovfrec/vb.h"

namespace kivmovfrec::qt {

QString Q(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

QString FechaQ(Date d) {
  return Q(vb::CStr(Variant(vb::DateOnly(d))));
}

QDate AQDate(Date d) {
  const vb::DateParts p = vb::Split(d);
  return QDate(p.year, p.month, p.day);
}

Date DeQDate(const QDate& d) {
  vb::DateParts p;
  p.year = d.year();
  p.month = d.month();
  p.day = d.day();
  return vb::MakeDate(p);
}

QTableWidgetItem* Celda(const QString& texto, bool importe) {
  auto* c = new QTableWidgetItem(texto);
  c->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  if (importe) c->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return c;
}

void AlinearImporte(QTreeWidgetItem& fila, int columna) {
  fila.setTextAlignment(columna, Qt::AlignRight | Qt::AlignVCenter);
}

QTableWidget* Tabla(QWidget* padre, const char* nombre, const QStringList& columnas) {
  auto* t = new QTableWidget(0, static_cast<int>(columnas.size()), padre);
  t->setObjectName(nombre);
  t->setHorizontalHeaderLabels(columnas);
  t->setEditTriggers(QAbstractItemView::NoEditTriggers);
  t->setSelectionBehavior(QAbstractItemView::SelectRows);
  t->verticalHeader()->hide();
  t->horizontalHeader()->setStretchLastSection(true);
  return t;
}

QLabel* LineaError(QWidget* padre, const char* nombre) {
  auto* l = new QLabel(padre);
  l->setObjectName(nombre);
  l->setWordWrap(true);
  l->setTextInteractionFlags(Qt::TextSelectableByMouse);
  l->setStyleSheet("color: #b00000;");
  l->hide();
  return l;
}

void MostrarError(QLabel& linea, const std::string& texto) {
  linea.setText(Q(texto));
  linea.setVisible(!texto.empty());
}

VentanaCalculo::VentanaCalculo(QWidget* padre, const char* nombre, const QString& titulo)
    : QDialog(padre) {
  setObjectName(nombre);
  setWindowTitle(titulo);
  setSizeGripEnabled(true);
  auto* marco = new QVBoxLayout(this);
  cuerpo_ = new QVBoxLayout;
  marco->addLayout(cuerpo_, 1);
  botones_ = new QDialogButtonBox(this);
  marco->addWidget(botones_);
  cerrar_ = botones_->addButton("&Cerrar", QDialogButtonBox::RejectRole);
  cerrar_->setObjectName("btnCerrar");
  cerrar_->setAutoDefault(false);
  QObject::connect(cerrar_, &QPushButton::clicked, this, [this] { reject(); });
}

void VentanaCalculo::reject() {
  if (ocupada) {
    if (al_rechazar) al_rechazar();
    return;
  }
  QDialog::reject();
}

void VentanaCalculo::closeEvent(QCloseEvent* e) {
  if (ocupada) {
    if (al_rechazar) al_rechazar();
    e->ignore();
    return;
  }
  QDialog::closeEvent(e);
}

}  // namespace kivmovfrec::qt
