// "Calcular": one movement computed as of its date, every line's amount and where each value of
// its formula came from, as a tree (line -> formula, elements, expression, conversion).
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <algorithm>
#include <cmath>

#include "comun_principal.h"
#include "kivmovfrec/presentacion.h"
#include "kivmovfrec/vb.h"
#include "ventanas_calculo.h"

namespace kivmovfrec::qt {
namespace {

// Columns of the tree.
enum Col { kRenglon, kCuenta, kLado, kImporte, kImporteCuenta, kFecha, kDetalle, kColumnas };

// A value of an element: a balance, a rate, an index; as many decimals as it has.
QString Valor(const std::optional<double>& v) {
  if (!v) return "sin valor";
  // The digits as the number has them, with the thousands grouped: "1.050.000", "638,9012".
  QString texto = Q(vb::NumberToText(*v, vb::Locale::Spanish()));
  const int signo = texto.startsWith('-') ? 1 : 0;
  const int coma = texto.indexOf(',');
  for (int i = (coma < 0 ? texto.size() : coma) - 3; i > signo; i -= 3) texto.insert(i, '.');
  return texto;
}

QTreeWidgetItem* Hoja(QTreeWidgetItem& padre, const QString& titulo, const QString& detalle) {
  auto* h = new QTreeWidgetItem(&padre);
  h->setText(kRenglon, titulo);
  h->setText(kDetalle, detalle);
  h->setFirstColumnSpanned(false);
  return h;
}

void Renglon(QTreeWidget& arbol, const clsPresentacionMF& p, const TrazaLineaFx& l, int16_t moneda,
             int16_t moneda_cuenta) {
  auto* fila = new QTreeWidgetItem(&arbol);
  fila->setText(kRenglon, QString::number(l.indice));
  fila->setText(kCuenta, Q(l.cuenta_codigo.empty() ? std::to_string(l.cuenta) : l.cuenta_codigo) +
                             " " + Q(l.cuenta_nombre));
  fila->setText(kLado, l.al_debe ? "Debe" : "Haber");
  fila->setText(kImporte, l.ok ? Q(p.Importe(l.importe_mf, moneda)) : QString("Error"));
  fila->setText(kImporteCuenta, l.ok ? Q(p.Importe(l.importe_cta, moneda_cuenta)) : "Error");
  AlinearImporte(*fila, kImporte);
  AlinearImporte(*fila, kImporteCuenta);
  if (!l.ok) fila->setText(kDetalle, Q(l.error));
  if (l.formula.empty()) {
    Hoja(*fila, "Sin fórmula", "importe guardado");
    return;
  }
  Hoja(*fila, "Fórmula", Q(p.FormulaVisible(l.formula)));
  for (const TrazaElementoFx& e : l.elementos) {
    // A query or a script can be long: shortened in its cell, whole in the tooltip.
    auto* h = Hoja(*fila, Q(vb::ShortForMessage(e.elemento, 40)), Q(e.detalle));
    h->setText(kCuenta, NombreOrigenFx(e.origen));
    h->setText(kImporte, Valor(e.valor));
    AlinearImporte(*h, kImporte);
    if (e.fecha) h->setText(kFecha, FechaQ(*e.fecha));
    if (!e.reintento_tras_error.empty()) {
      h->setText(kDetalle, Q(e.detalle + " (tras el error: " + e.reintento_tras_error + ")"));
    }
    h->setToolTip(kRenglon, Q(e.elemento));
    h->setToolTip(kDetalle, h->text(kDetalle));
  }
  if (!l.expresion.empty()) Hoja(*fila, "Expresión", Q(l.expresion));
  if (!l.reintento_tras_error.empty()) {
    Hoja(*fila, "Aviso",
         Q("importe obtenido al evaluar de nuevo leyendo cada \",\" como \".\"; tal como está "
           "escrita, la fórmula da " +
           l.reintento_tras_error));
  }
  if (!l.conversion.empty()) Hoja(*fila, "Conversión", Q(l.conversion));
  if (!l.ok) Hoja(*fila, "Error", Q(l.error));
}

}  // namespace

void MostrarCalculo(QWidget* padre, clsMovFrecuente& mf, int32_t id) {
  VentanaCalculo v(padre, "frmCalculo", "Calcular movimiento");
  const bool ok = mf.SetCalculoFormulasMF(id, false);
  const TrazaCalculoFx& t = mf.UltimaTrazaFx();
  const clsMFTipo& estructura = *mf.EstructuraMovFrec();
  const clsPresentacionMF p(mf.Contexto().cn, estructura);
  const clsRegMovimientoFrecuente& mov = *estructura.MovFrecuente();
  const int16_t moneda = mov.Moneda();

  QString cabecera = "Movimiento " + QString::number(id);
  if (mov.ID() == id) cabecera += ": " + Q(mov.Nombre());
  cabecera += "\nFecha del cálculo: " + FechaQ(t.fecha);
  if (!t.origen_fecha.empty()) cabecera += " (" + Q(t.origen_fecha) + ")";
  cabecera += "\nMoneda: " + Q(p.SimboloMoneda(moneda));
  if (!t.origen_total.empty()) {
    cabecera += "\nImporte total: " + Q(p.Importe(t.importe_total, moneda)) + " (" +
                Q(t.origen_total) + ")";
  }
  auto* encabezado = new QLabel(cabecera, &v);
  encabezado->setObjectName("lblEncabezado");
  encabezado->setTextInteractionFlags(Qt::TextSelectableByMouse);
  v.Cuerpo().addWidget(encabezado);

  auto* arbol = new QTreeWidget(&v);
  arbol->setObjectName("arbolCalculo");
  arbol->setColumnCount(kColumnas);
  arbol->setHeaderLabels(
      {"Renglón", "Cuenta / origen", "D/H", "Importe", "Importe cuenta", "Fecha", "Detalle"});
  arbol->headerItem()->setTextAlignment(kImporte, Qt::AlignRight | Qt::AlignVCenter);
  arbol->headerItem()->setTextAlignment(kImporteCuenta, Qt::AlignRight | Qt::AlignVCenter);
  const auto& renglones = *estructura.Renglones();
  for (size_t i = 0; i < t.lineas.size(); ++i) {
    const int16_t n = static_cast<int16_t>(i + 1);
    const int16_t moneda_cuenta =
        n <= renglones.QRenglones() ? renglones.Renglon(n)->Moneda() : moneda;
    Renglon(*arbol, p, t.lineas[i], moneda, moneda_cuenta);
  }
  arbol->expandAll();
  for (int c = 0; c < kDetalle; ++c) {
    arbol->resizeColumnToContents(c);
    arbol->setColumnWidth(c, std::min(arbol->columnWidth(c), c == kRenglon ? 240 : 320));
  }
  v.Cuerpo().addWidget(arbol, 1);

  auto* totales = new QLabel(&v);
  totales->setObjectName("lblTotales");
  if (t.ok) {
    const bool balanceado = std::fabs(t.total_debe - t.total_haber) < 0.005;
    totales->setText(
        "Total Debe: " + Q(p.Importe(t.total_debe, moneda)) +
        "    Total Haber: " + Q(p.Importe(t.total_haber, moneda)) + "    " +
        (balanceado ? QString("(balanceado)")
                    : "(diferencia " + Q(p.Importe(t.total_debe - t.total_haber, moneda)) + ")"));
  }
  v.Cuerpo().addWidget(totales);
  auto* error = LineaError(&v, "lblError");
  v.Cuerpo().addWidget(error);
  if (!ok) {
    std::string motivo = t.error.empty() ? mf.UltimoError() : t.error;
    MostrarError(*error, "Sin resultado: " + (motivo.empty() ? "fórmula sin resultado" : motivo));
  }
  v.Cerrar().setDefault(true);
  v.resize(1100, 560);
  v.exec();
}

}  // namespace kivmovfrec::qt
