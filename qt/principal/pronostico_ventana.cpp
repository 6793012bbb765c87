// The forecast window: the accounts (ticked from those the scheduled movements use, or typed),
// the range and the period; "Calcular" asks the library for the projected balances and shows
// them as a chart (one line per account, the closing balance of each period) and a table, with
// the notices and task lists due in the range and the occurrences the run would refuse.
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTableWidget>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QDateTimeAxis>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>
#include <algorithm>
#include <limits>

#include "comun_principal.h"
#include "kivmovfrec/presentacion.h"
#include "kivmovfrec/vb.h"
#include "ventanas_calculo.h"

namespace kivmovfrec::qt {
namespace {

QString Cuenta(const CuentaPronostico& c) {
  return Q(c.codigo.empty() ? std::to_string(c.cuenta) : c.codigo) + " " + Q(c.nombre);
}

// The accounts the company's scheduled entries and vouchers use, offered unticked: a forecast
// without accounts names them. It is asked for one day long past, so that nothing falls due in
// it: no occurrence is simulated and no formula asks for a value.
void OfrecerCuentas(clsMovFrecuente& mf, QListWidget& lista) {
  vb::DateParts dia;
  dia.year = 1900;
  dia.month = 1;
  dia.day = 1;
  const Date antes = vb::MakeDate(dia);
  const ResultadoPronostico r = mf.PronosticarSaldos({{}, antes, antes, PeriodoPronostico::Dia});
  for (const CuentaPronostico& c : r.cuentas) {
    auto* item = new QListWidgetItem(Cuenta(c), &lista);
    item->setData(Qt::UserRole, Q(c.codigo.empty() ? std::to_string(c.cuenta) : c.codigo));
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
    item->setCheckState(Qt::Unchecked);
  }
}

std::vector<std::string> CuentasPedidas(const QListWidget& lista, const QLineEdit& otras) {
  std::vector<std::string> out;
  for (int i = 0; i < lista.count(); ++i) {
    const QListWidgetItem& item = *lista.item(i);
    if (item.checkState() == Qt::Checked)
      out.push_back(item.data(Qt::UserRole).toString().toStdString());
  }
  for (const QString& t : otras.text().split(';', Qt::SkipEmptyParts)) {
    if (!t.trimmed().isEmpty()) out.push_back(t.trimmed().toStdString());
  }
  return out;
}

qint64 Milisegundos(Date d) {
  return QDateTime(AQDate(d), QTime(0, 0)).toMSecsSinceEpoch();
}

// One line per account through the closing balance of each period, dated at the period's end.
void Grafico(QChart& grafico, const ResultadoPronostico& r, PeriodoPronostico por) {
  grafico.removeAllSeries();
  for (QAbstractAxis* eje : grafico.axes()) {
    grafico.removeAxis(eje);
    delete eje;
  }
  auto* fechas = new QDateTimeAxis;
  fechas->setFormat(por == PeriodoPronostico::Mes ? "MM/yyyy" : "dd/MM/yyyy");
  fechas->setTitleText("Fin del período");
  auto* saldos = new QValueAxis;
  saldos->setTitleText("Saldo al cierre");
  saldos->setLabelFormat("%.2f");
  grafico.legend()->setAlignment(Qt::AlignRight);
  grafico.addAxis(fechas, Qt::AlignBottom);
  grafico.addAxis(saldos, Qt::AlignLeft);
  double minimo = std::numeric_limits<double>::max(),
         maximo = std::numeric_limits<double>::lowest();
  for (const CuentaPronostico& c : r.cuentas) {
    auto* serie = new QLineSeries;
    // The legend holds one code per line at the side; the names are in the table.
    serie->setName(Q(c.codigo.empty() ? std::to_string(c.cuenta) : c.codigo));
    for (const SaldoPeriodo& p : c.periodos) {
      serie->append(static_cast<qreal>(Milisegundos(p.hasta)), p.cierre);
      minimo = std::min(minimo, p.cierre);
      maximo = std::max(maximo, p.cierre);
    }
    serie->setPointsVisible(true);
    grafico.addSeries(serie);
    serie->attachAxis(fechas);
    serie->attachAxis(saldos);
  }
  if (r.cuentas.empty()) return;
  fechas->setRange(QDateTime(AQDate(r.desde), QTime(0, 0)),
                   QDateTime(AQDate(r.hasta), QTime(0, 0)));
  const double margen = std::max(1.0, (maximo - minimo) * 0.05);
  saldos->setRange(minimo - margen, maximo + margen);
  saldos->applyNiceNumbers();
}

void Tabla(QTableWidget& t, const ResultadoPronostico& r, const clsPresentacionMF& p) {
  int filas = 0;
  for (const CuentaPronostico& c : r.cuentas) filas += static_cast<int>(c.periodos.size());
  t.setRowCount(filas);
  int i = 0;
  // Balances are in the accounting currency; its format is the general one.
  const auto importe = [&](double v) { return Celda(Q(p.Importe(v, 0)), true); };
  for (const CuentaPronostico& c : r.cuentas) {
    for (const SaldoPeriodo& x : c.periodos) {
      t.setItem(i, 0, Celda(Cuenta(c)));
      t.setItem(i, 1, Celda(FechaQ(x.desde) + " – " + FechaQ(x.hasta)));
      t.setItem(i, 2, importe(x.apertura));
      t.setItem(i, 3, importe(x.entradas));
      t.setItem(i, 4, importe(x.salidas));
      t.setItem(i, 5, importe(x.cierre));
      ++i;
    }
  }
  t.resizeColumnsToContents();
}

void Avisos(QTableWidget& t, const ResultadoPronostico& r) {
  t.setRowCount(static_cast<int>(r.recordatorios.size()));
  for (int i = 0; i < t.rowCount(); ++i) {
    const RecordatorioPronostico& x = r.recordatorios[static_cast<size_t>(i)];
    t.setItem(i, 0, Celda(FechaQ(x.fecha)));
    t.setItem(i, 1, Celda(QString::number(x.movimiento)));
    t.setItem(i, 2, Celda(x.tipo == 5 ? "Lista de tareas" : "Aviso"));
    t.setItem(i, 3, Celda(Q(x.nombre)));
  }
  t.resizeColumnsToContents();
}

void Rechazadas(QTableWidget& t, const ResultadoPronostico& r) {
  t.setRowCount(static_cast<int>(r.fallidas.size()));
  for (int i = 0; i < t.rowCount(); ++i) {
    const OcurrenciaEjecutada& o = r.fallidas[static_cast<size_t>(i)];
    t.setItem(i, 0, Celda(QString::number(o.movimiento) + " " + Q(o.nombre)));
    t.setItem(i, 1, Celda(FechaQ(o.fecha)));
    t.setItem(i, 2, Celda(Q(o.error)));
  }
  t.resizeColumnsToContents();
}

}  // namespace

void MostrarPronostico(QWidget* padre, clsMovFrecuente& mf) {
  VentanaCalculo v(padre, "frmPronostico", "Pronóstico de saldos");
  const auto& reloj = mf.Servicios().clock;
  const Date hoy = reloj ? reloj->Today() : DeQDate(QDate::currentDate());

  auto* pedido = new QHBoxLayout;
  auto* cuentas = new QListWidget(&v);
  cuentas->setObjectName("lstCuentas");
  cuentas->setToolTip(
      "Cuentas a pronosticar; ninguna marcada ni escrita: todas las que usan los "
      "movimientos agendados");
  OfrecerCuentas(mf, *cuentas);
  auto* izquierda = new QVBoxLayout;
  auto* rotulo_cuentas = new QLabel("C&uentas:", &v);
  rotulo_cuentas->setBuddy(cuentas);
  izquierda->addWidget(rotulo_cuentas);
  izquierda->addWidget(cuentas);
  pedido->addLayout(izquierda, 2);

  auto* form = new QFormLayout;
  auto* otras = new QLineEdit(&v);
  otras->setObjectName("txtCuentas");
  otras->setPlaceholderText("código, nombre o número; separadas por «;»");
  otras->setToolTip("Cualquier otra cuenta de la empresa, además de las marcadas");
  form->addRow("&Otras cuentas:", otras);
  auto* desde = new QDateEdit(AQDate(hoy), &v);
  desde->setObjectName("dtDesde");
  desde->setCalendarPopup(true);
  desde->setDisplayFormat("dd/MM/yyyy");
  form->addRow("&Desde:", desde);
  auto* hasta = new QDateEdit(AQDate(hoy).addMonths(12), &v);
  hasta->setObjectName("dtHasta");
  hasta->setCalendarPopup(true);
  hasta->setDisplayFormat("dd/MM/yyyy");
  form->addRow("&Hasta:", hasta);
  auto* periodo = new QComboBox(&v);
  periodo->setObjectName("cboPeriodo");
  periodo->addItem("Mes", static_cast<int>(PeriodoPronostico::Mes));
  periodo->addItem("Semana", static_cast<int>(PeriodoPronostico::Semana));
  periodo->addItem("Día", static_cast<int>(PeriodoPronostico::Dia));
  form->addRow("&Período:", periodo);
  auto* calcular = new QPushButton("&Calcular", &v);
  calcular->setObjectName("btnCalcular");
  calcular->setDefault(true);
  form->addRow(calcular);
  pedido->addLayout(form, 3);
  v.Cuerpo().addLayout(pedido);

  auto* error = LineaError(&v, "lblError");
  v.Cuerpo().addWidget(error);

  auto* hojas = new QTabWidget(&v);
  hojas->setObjectName("tabResultado");
  auto* grafico = new QChart;
  grafico->setLocalizeNumbers(true);
  grafico->setLocale(QLocale(QLocale::Spanish, QLocale::Argentina));
  auto* vista = new QChartView(grafico, &v);
  vista->setObjectName("grafico");
  vista->setRenderHint(QPainter::Antialiasing);
  vista->setMinimumHeight(260);
  hojas->addTab(vista, "&Gráfico");
  auto* tabla =
      Tabla(&v, "tblSaldos", {"Cuenta", "Período", "Apertura", "Entradas", "Salidas", "Cierre"});
  hojas->addTab(tabla, "&Tabla");
  auto* avisos = Tabla(&v, "tblAvisos", {"Fecha", "Movimiento", "Clase", "Nombre"});
  hojas->addTab(avisos, "&Avisos y listas");
  auto* rechazadas = Tabla(&v, "tblRechazadas", {"Movimiento", "Vence", "Motivo"});
  hojas->addTab(rechazadas, "&Rechazadas");
  v.Cuerpo().addWidget(hojas, 1);

  QWidget::setTabOrder(cuentas, otras);
  QWidget::setTabOrder(otras, desde);
  QWidget::setTabOrder(desde, hasta);
  QWidget::setTabOrder(hasta, periodo);
  QWidget::setTabOrder(periodo, calcular);

  const clsPresentacionMF presentacion(mf.Contexto().cn, *mf.EstructuraMovFrec());
  QObject::connect(calcular, &QPushButton::clicked, &v, [&] {
    SolicitudPronostico s;
    s.cuentas = CuentasPedidas(*cuentas, *otras);
    s.desde = DeQDate(desde->date());
    s.hasta = DeQDate(hasta->date());
    s.por = static_cast<PeriodoPronostico>(periodo->currentData().toInt());
    const ResultadoPronostico r = mf.PronosticarSaldos(s);
    MostrarError(*error, !r.rechazo.empty()    ? r.rechazo
                         : !r.detenida.empty() ? "La simulación se detuvo: " + r.detenida +
                                                     " (faltan las cifras de lo no simulado)"
                                               : std::string());
    Grafico(*grafico, r, s.por);
    Tabla(*tabla, r, presentacion);
    Avisos(*avisos, r);
    Rechazadas(*rechazadas, r);
    hojas->setTabText(3, r.fallidas.empty() ? QString("&Rechazadas")
                                            : QString("&Rechazadas (%1)").arg(r.fallidas.size()));
  });
  v.resize(960, 720);
  v.exec();
}

}  // namespace kivmovfrec::qt
