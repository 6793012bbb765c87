// "Ejecutar lo vencido": the dry run for review (each due occurrence with the documents it would
// write, line by line, or why it would be refused), then the run itself with a progress bar and
// a cancel button, then the run's summary.
//
// The run happens on this thread: the façade's connection belongs to it. Between occurrences
// the library calls back; the callback moves the progress bar and lets Qt handle pending events,
// so the window repaints and "Cancelar" can be pressed. A cancel request is honoured by
// throwing from the next callback: the occurrence just reported stays committed and the rest
// stays due.
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTreeWidget>
#include <algorithm>
#include <exception>
#include <map>

#include "comun_principal.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/presentacion.h"
#include "ventanas_calculo.h"

namespace kivmovfrec::qt {
namespace {

// Thrown from the progress callback when the person pressed "Cancelar".
struct Cancelada {};

enum Col { kMovimiento, kVence, kDocumento, kDebe, kHaber, kDetalle, kColumnas };

QString Tipo(int16_t tipo) {
  return tipo == 2 ? "Comprobante" : "Asiento";
}

QString Estado(EstadoOcurrencia e) {
  switch (e) {
    case EstadoOcurrencia::Ejecutada:
      return "Asentada";
    case EstadoOcurrencia::YaGenerada:
      return "Ya generada";
    case EstadoOcurrencia::HechaEnOtraParte:
      return "Hecha en otra parte";
    case EstadoOcurrencia::Fallida:
      break;
  }
  return "Rechazada";
}

// Amounts of documents: a voucher in its own currency, an entry in the accounting one.
class Importes {
 public:
  explicit Importes(clsMovFrecuente& mf)
      : p_(mf.Contexto().cn, *mf.EstructuraMovFrec()), contable_(0) {}
  void MonedaContable(int16_t m) { contable_ = m; }
  QString De(double v, const DocumentoSimulado& d) const {
    return Q(p_.Importe(v, d.moneda ? d.moneda : contable_));
  }

 private:
  clsPresentacionMF p_;
  int16_t contable_;
};

// The accounting currency of the company whose movements fall due (entries are kept in it); 0,
// the general format, when it cannot be read.
int16_t MonedaContable(clsMovFrecuente& mf, const ResultadoSimulacion& s) {
  const auto& cn = mf.Contexto().cn;
  if (!cn) return 0;
  try {
    clsMFTipo mov;
    clsEmpresa empresa;
    if (mov.Load(*cn, s.ocurrencias.front().ocurrencia.movimiento) &&
        empresa.Load(mov.MovFrecuente()->Empresa(), *cn)) {
      return empresa.MonedaContabilidad();
    }
  } catch (const std::exception&) {
    // Amounts then use the general format.
  }
  return 0;
}

void Revision(QTreeWidget& arbol, const ResultadoSimulacion& s, const Importes& imp) {
  for (const OcurrenciaSimulada& os : s.ocurrencias) {
    const OcurrenciaEjecutada& o = os.ocurrencia;
    auto* fila = new QTreeWidgetItem(&arbol);
    fila->setText(kMovimiento, QString::number(o.movimiento) + " " + Q(o.nombre));
    fila->setText(kVence, FechaQ(o.fecha));
    fila->setText(kDocumento, o.estado == EstadoOcurrencia::Ejecutada ? QString("Se asentaría")
                                                                      : Estado(o.estado));
    if (!o.ok()) {
      fila->setText(kDetalle, Q(o.error));
      fila->setToolTip(kDetalle, Q(o.error));
      fila->setForeground(kDetalle, QColor(0xb0, 0, 0));
    } else if (!o.detalle.empty()) {
      fila->setText(kDetalle, Q(o.detalle));
    }
    for (const DocumentoSimulado& d : os.documentos) {
      auto* doc = new QTreeWidgetItem(fila);
      doc->setText(kMovimiento, "Movimiento " + QString::number(d.movimiento));
      doc->setText(kVence, FechaQ(d.fecha));
      doc->setText(kDocumento, Tipo(d.tipo) + " " + QString::number(d.id));
      doc->setText(kDebe, imp.De(d.debe, d));
      doc->setText(kHaber, imp.De(d.haber, d));
      doc->setText(kDetalle, Q(d.leyenda));
      doc->setToolTip(kDetalle, Q(d.leyenda));
      for (const LineaDocumento& l : d.lineas) {
        auto* r = new QTreeWidgetItem(doc);
        r->setText(kDocumento, Q(l.codigo.empty() ? std::to_string(l.cuenta) : l.codigo) + " " +
                                   Q(l.nombre_cuenta));
        if (l.debe != 0) r->setText(kDebe, imp.De(l.debe, d));
        if (l.haber != 0) r->setText(kHaber, imp.De(l.haber, d));
        r->setText(kDetalle, Q(l.detalle));
        AlinearImporte(*r, kDebe);
        AlinearImporte(*r, kHaber);
      }
      AlinearImporte(*doc, kDebe);
      AlinearImporte(*doc, kHaber);
    }
  }
  arbol.expandAll();
  for (int c = 0; c < kDetalle; ++c) {
    arbol.resizeColumnToContents(c);
    arbol.setColumnWidth(c, std::min(arbol.columnWidth(c), 320));
  }
}

void Resultado(QTableWidget& tabla, const std::vector<OcurrenciaEjecutada>& ocurrencias) {
  tabla.setRowCount(static_cast<int>(ocurrencias.size()));
  for (int i = 0; i < tabla.rowCount(); ++i) {
    const OcurrenciaEjecutada& o = ocurrencias[static_cast<size_t>(i)];
    QString docs;
    for (const DocumentoGenerado& d : o.documentos) {
      if (!docs.isEmpty()) docs += ", ";
      docs += Tipo(d.tipo) + " " + QString::number(d.id);
    }
    tabla.setItem(i, 0, Celda(QString::number(o.movimiento) + " " + Q(o.nombre)));
    tabla.setItem(i, 1, Celda(FechaQ(o.fecha)));
    tabla.setItem(i, 2, Celda(Estado(o.estado)));
    tabla.setItem(i, 3, Celda(docs));
    tabla.setItem(i, 4, Celda(Q(o.ok() ? o.detalle : o.error)));
    tabla.item(i, 4)->setToolTip(tabla.item(i, 4)->text());
  }
  tabla.resizeColumnsToContents();
}

}  // namespace

int EjecutarLoVencido(QWidget* padre, clsMovFrecuente& mf, Date hasta) {
  VentanaCalculo v(padre, "frmEjecutarVencidos", "Ejecutar lo vencido");
  const ResultadoSimulacion simulada = mf.SimularVencidos(hasta);
  Importes importes(mf);
  if (!simulada.ocurrencias.empty()) importes.MonedaContable(MonedaContable(mf, simulada));
  const QString dia = FechaQ(hasta);

  auto* aviso = new QLabel(&v);
  aviso->setObjectName("lblRevision");
  aviso->setWordWrap(true);
  v.Cuerpo().addWidget(aviso);
  auto* arbol = new QTreeWidget(&v);
  arbol->setObjectName("arbolRevision");
  arbol->setColumnCount(kColumnas);
  arbol->setHeaderLabels({"Movimiento", "Vence", "Documento / cuenta", "Debe", "Haber", "Detalle"});
  arbol->headerItem()->setTextAlignment(kDebe, Qt::AlignRight | Qt::AlignVCenter);
  arbol->headerItem()->setTextAlignment(kHaber, Qt::AlignRight | Qt::AlignVCenter);
  Revision(*arbol, simulada, importes);
  v.Cuerpo().addWidget(arbol, 2);
  auto* error = LineaError(&v, "lblError");
  v.Cuerpo().addWidget(error);

  auto* barra = new QProgressBar(&v);
  barra->setObjectName("barraProgreso");
  barra->setRange(0, 1);
  barra->setValue(0);
  barra->setFormat("%v de %m");
  v.Cuerpo().addWidget(barra);
  auto* resumen = new QLabel(&v);
  resumen->setObjectName("lblResumen");
  resumen->setWordWrap(true);
  v.Cuerpo().addWidget(resumen);
  auto* tabla =
      Tabla(&v, "tblResultado", {"Movimiento", "Vence", "Resultado", "Documentos", "Detalle"});
  v.Cuerpo().addWidget(tabla, 1);
  barra->hide();
  resumen->hide();
  tabla->hide();

  auto* ejecutar = v.Botones().addButton("&Ejecutar", QDialogButtonBox::AcceptRole);
  ejecutar->setObjectName("btnEjecutar");
  auto* cancelar = v.Botones().addButton("Ca&ncelar", QDialogButtonBox::ActionRole);
  cancelar->setObjectName("btnCancelar");
  cancelar->setEnabled(false);
  cancelar->setAutoDefault(false);

  size_t rechazadas = 0;
  for (const auto& o : simulada.ocurrencias) rechazadas += o.ocurrencia.ok() ? 0 : 1;
  const size_t n = simulada.ocurrencias.size();
  if (!simulada.completa()) {
    MostrarError(*error, "La simulación se detuvo: " + simulada.detenida);
  }
  if (n == 0 && simulada.completa()) {
    aviso->setText("No hay nada vencido hasta el " + dia + ".");
    arbol->hide();
    ejecutar->setEnabled(false);
    v.Cerrar().setDefault(true);
  } else {
    aviso->setText(QString("Vencidas hasta el %1: %2 ocurrencias").arg(dia).arg(n) +
                   (rechazadas ? QString(", %1 serían rechazadas").arg(rechazadas) : QString()) +
                   ". Revise lo que se asentaría y pulse «Ejecutar».");
    ejecutar->setDefault(true);
  }

  int asentadas = 0;
  bool pedida_cancelacion = false;
  v.al_rechazar = [&] { cancelar->click(); };
  QObject::connect(cancelar, &QPushButton::clicked, &v, [&] {
    pedida_cancelacion = true;
    cancelar->setEnabled(false);
    cancelar->setText("Cancelando…");
  });
  QObject::connect(ejecutar, &QPushButton::clicked, &v, [&] {
    ejecutar->setEnabled(false);
    v.Cerrar().setEnabled(false);
    cancelar->setEnabled(true);
    cancelar->setDefault(true);
    barra->show();
    barra->setRange(0, static_cast<int>(n ? n : 1));
    barra->setValue(0);
    v.ocupada = true;
    ResultadoEjecucion r;
    std::vector<OcurrenciaEjecutada> hechas;  // what the callback saw, kept if the run is ended
    bool cancelada = false;
    std::string fallo;
    try {
      r = mf.EjecutarVencidos(hasta, [&](const OcurrenciaEjecutada& o, const ProgresoEjecucion& p) {
        hechas.push_back(o);
        barra->setMaximum(static_cast<int>(p.conocidas));
        barra->setValue(static_cast<int>(p.terminadas));
        QCoreApplication::processEvents();
        if (pedida_cancelacion) throw Cancelada{};
      });
    } catch (const Cancelada&) {
      cancelada = true;
      r.ocurrencias = hechas;
    } catch (const std::exception& e) {
      fallo = e.what();
      r.ocurrencias = hechas;
    } catch (...) {
      fallo = "error desconocido";
      r.ocurrencias = hechas;
    }
    v.ocupada = false;
    if (r.ocurrencias.empty() || (r.completa() && !cancelada && fallo.empty())) {
      barra->setMaximum(std::max(barra->maximum(), 1));
      barra->setValue(barra->maximum());
    }
    size_t fallidas = 0;
    for (const auto& o : r.ocurrencias) {
      if (o.estado == EstadoOcurrencia::Ejecutada) ++asentadas;
      if (!o.ok()) ++fallidas;
    }
    QString texto = QString("Asentadas: %1. Rechazadas: %2. Otras: %3.")
                        .arg(asentadas)
                        .arg(fallidas)
                        .arg(r.ocurrencias.size() - fallidas - static_cast<size_t>(asentadas));
    if (cancelada) texto += " Cancelada: lo que falta sigue vencido.";
    if (!r.completa()) texto += " Detenida: " + Q(r.detenida) + " Lo que falta sigue vencido.";
    if (!fallo.empty()) texto += " Interrumpida: " + Q(fallo);
    resumen->setText(texto);
    resumen->show();
    Resultado(*tabla, r.ocurrencias);
    tabla->show();
    cancelar->setEnabled(false);
    cancelar->setText("Ca&ncelar");
    v.Cerrar().setEnabled(true);
    v.Cerrar().setDefault(true);
    v.Cerrar().setFocus();
  });
  v.resize(1000, 640);
  v.exec();
  return asentadas;
}

}  // namespace kivmovfrec::qt
