// The main window's computation windows on the demo database of every engine, driven through
// their buttons: the run of what is due (review, progress bar, cancel between occurrences,
// summary), "Calcular" with its trace, and the forecast's table and chart.
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <set>
#include <tuple>

#include "api/fachada_fixture.h"
#include "persona_qt.h"
#include "ventanas_calculo.h"

namespace kivmovfrec::testing {
namespace {

Date Dia(int y, int m, int d) {
  return suite::SerialOf(y, m, d);
}

std::string Texto(QTreeWidgetItem& i, int c) {
  return i.text(c).toStdString();
}

std::string Celda(QTableWidget& t, int fila, const std::string& columna) {
  return t.item(fila, ColumnaDe(t, columna))->text().toStdString();
}

// Runs `accion` on the modal window named `nombre` once its loop runs (the function under test
// blocks in it), then closes it through its "Cerrar" button.
void AlAbrir(const std::string& nombre, std::function<void(QWidget&)> accion) {
  QTimer::singleShot(0, [nombre, accion = std::move(accion)] {
    QWidget* w = QApplication::activeModalWidget();
    if (!w || w->objectName().toStdString() != nombre) {
      ADD_FAILURE() << "no se abrió " << nombre;
      if (w) w->close();
      return;
    }
    try {
      accion(*w);
    } catch (const std::exception& e) {
      ADD_FAILURE() << nombre << ": " << e.what();
    }
    Pulsar(*w, "btnCerrar");
    EXPECT_FALSE(w->isVisible()) << nombre << " no se cerró";
  });
}

class VentanasCalculo : public Fachada {
 protected:
  void SetUpDatabase() override {
    Fachada::SetUpDatabase();
    AplicacionSinPantalla();
  }
  // Documents the run wrote (the demo's own stop at key 100).
  int Documentos() {
    return CountRows(*cn,
                     "Select AsiID From cceAsientos Where AsiID > 100 Union All Select ComID "
                     "From cceComprobantes Where ComID > 100");
  }
  // (movement, due date) of what is due up to `hasta`, as the library's dry run sees it now.
  std::vector<std::pair<int32_t, std::string>> Vencidas(Date hasta) {
    std::vector<std::pair<int32_t, std::string>> out;
    for (const auto& o : mf.SimularVencidos(hasta).ocurrencias) {
      out.emplace_back(o.ocurrencia.movimiento,
                       vb::CStr(Variant(vb::DateOnly(o.ocurrencia.fecha))));
    }
    return out;
  }
  static std::vector<std::pair<int32_t, std::string>> Revisadas(QWidget& w) {
    auto& arbol = Hijo<QTreeWidget>(w, "arbolRevision");
    std::vector<std::pair<int32_t, std::string>> out;
    for (int i = 0; i < arbol.topLevelItemCount(); ++i) {
      QTreeWidgetItem& f = *arbol.topLevelItem(i);
      out.emplace_back(std::stoi(Texto(f, 0)), Texto(f, 1));
    }
    return out;
  }
};

// Up to 30/11/2026 the demo has the rent (1) and the social charges group (25, 26) due on
// 10/11, the VAT settlement (3) on 20/11 and the exchange difference (4) on 30/11. The review
// lists them with the documents they would write; "Ejecutar" posts them all, the bar reaches
// its end, the summary counts what the database now holds and nothing is left due.
TEST_P(VentanasCalculo, TheRunPostsWhatTheReviewShowedAndTheBarReachesItsEnd) {
  const Date hasta = Dia(2026, 11, 30);
  const std::vector<std::pair<int32_t, std::string>> esperadas = {
      {1, "10/11/2026"}, {25, "10/11/2026"}, {3, "20/11/2026"}, {4, "30/11/2026"}};
  ASSERT_EQ(Vencidas(hasta), esperadas);
  std::string resumen;
  int asentadas_tabla = 0, documentos_tabla = 0;
  AlAbrir("frmEjecutarVencidos", [&](QWidget& w) {
    EXPECT_EQ(Revisadas(w), esperadas);
    // The group's occurrence shows both members' documents, each with its lines and amounts.
    QTreeWidgetItem& grupo = *Hijo<QTreeWidget>(w, "arbolRevision").topLevelItem(1);
    ASSERT_EQ(grupo.childCount(), 2);
    for (int d = 0; d < 2; ++d) {
      QTreeWidgetItem& doc = *grupo.child(d);
      EXPECT_GT(doc.childCount(), 1);
      EXPECT_EQ(Texto(doc, 3), Texto(doc, 4)) << "el documento no balancea";
      EXPECT_NE(Texto(doc, 3), "0,00");
    }
    Pulsar(w, "btnEjecutar");
    auto& barra = Hijo<QProgressBar>(w, "barraProgreso");
    EXPECT_EQ(barra.maximum(), 4);
    EXPECT_EQ(barra.value(), barra.maximum());
    resumen = Hijo<QLabel>(w, "lblResumen").text().toStdString();
    auto& t = Hijo<QTableWidget>(w, "tblResultado");
    for (int i = 0; i < t.rowCount(); ++i) {
      asentadas_tabla += Celda(t, i, "Resultado") == "Asentada";
      documentos_tabla += static_cast<int>(
          QString::fromStdString(Celda(t, i, "Documentos")).split(", ", Qt::SkipEmptyParts).size());
    }
  });
  const int asentadas = qt::EjecutarLoVencido(nullptr, mf, hasta);
  EXPECT_EQ(asentadas, 4);
  EXPECT_EQ(asentadas_tabla, 4);
  EXPECT_EQ(documentos_tabla, Documentos());
  EXPECT_EQ(Documentos(), 5);  // the group wrote two
  EXPECT_NE(resumen.find("Asentadas: 4. Rechazadas: 0."), std::string::npos) << resumen;
  EXPECT_TRUE(Vencidas(hasta).empty());
}

// "Cancelar" pressed while the first occurrence is reported: that one stays posted, the run
// ends there and the rest is still due. Nothing due: the window says so and cannot run.
TEST_P(VentanasCalculo, CancelStopsBetweenOccurrencesAndNothingDueRunsNothing) {
  const Date hasta = Dia(2026, 11, 30);
  std::string resumen;
  AlAbrir("frmEjecutarVencidos", [&](QWidget& w) {
    auto& barra = Hijo<QProgressBar>(w, "barraProgreso");
    QObject::connect(&barra, &QProgressBar::valueChanged, &w, [&w](int v) {
      if (v == 1) Pulsar(w, "btnCancelar");
    });
    Pulsar(w, "btnEjecutar");
    EXPECT_EQ(barra.value(), 1);
    resumen = Hijo<QLabel>(w, "lblResumen").text().toStdString();
  });
  EXPECT_EQ(qt::EjecutarLoVencido(nullptr, mf, hasta), 1);
  EXPECT_NE(resumen.find("Cancelada"), std::string::npos) << resumen;
  const std::vector<std::pair<int32_t, std::string>> resto = {
      {25, "10/11/2026"}, {3, "20/11/2026"}, {4, "30/11/2026"}};
  EXPECT_EQ(Vencidas(hasta), resto);
  EXPECT_EQ(Documentos(), 1);

  AlAbrir("frmEjecutarVencidos", [](QWidget& w) {
    EXPECT_NE(Hijo<QLabel>(w, "lblRevision").text().toStdString().find("No hay nada vencido"),
              std::string::npos);
    EXPECT_FALSE(Hijo<QPushButton>(w, "btnEjecutar").isEnabled());
  });
  EXPECT_EQ(qt::EjecutarLoVencido(nullptr, mf, Dia(2026, 11, 9)), 0);
  EXPECT_EQ(Documentos(), 1);
}

// Movement 27 as of 20/11/2026 (no due date: computed as of today) is the demo's month-end
// adjustment: 21.000 + 15.500 + 3.150 = 39.650,00, with the bank balance taken at the end of
// October and the dollar rate of 16/11. Movement 2 asks the gross pay: cancelled, the window shows
// why and the trace reached.
TEST_P(VentanasCalculo, CalcularShowsTheAmountsAndTheOriginOfEveryValue) {
  auto sv20 = suite::ScriptedServices::Make(cn, Dia(2026, 11, 20));
  clsMovFrecuente m20;
  m20.Servicios(sv20.Bundle());
  m20.Connect(cn);
  m20.Empresa(1);
  AlAbrir("frmCalculo", [](QWidget& w) {
    EXPECT_NE(Hijo<QLabel>(w, "lblEncabezado").text().toStdString().find("20/11/2026"),
              std::string::npos);
    EXPECT_EQ(Hijo<QLabel>(w, "lblTotales").text().toStdString(),
              "Total Debe: 39.650,00    Total Haber: 39.650,00    (balanceado)");
    EXPECT_FALSE(Hijo<QLabel>(w, "lblError").isVisible());
    auto& arbol = Hijo<QTreeWidget>(w, "arbolCalculo");
    ASSERT_EQ(arbol.topLevelItemCount(), 4);
    std::set<std::tuple<std::string, std::string, std::string>> origenes;  // element, origin, date
    const char* importes[] = {"21.000,00", "15.500,00", "3.150,00", "39.650,00"};
    for (int i = 0; i < 4; ++i) {
      QTreeWidgetItem& l = *arbol.topLevelItem(i);
      EXPECT_EQ(Texto(l, 3), importes[i]) << "renglón " << i + 1;
      EXPECT_EQ(l.textAlignment(3) & Qt::AlignRight, Qt::AlignRight);
      for (int j = 0; j < l.childCount(); ++j) {
        origenes.emplace(Texto(*l.child(j), 0), Texto(*l.child(j), 1), Texto(*l.child(j), 5));
      }
    }
    EXPECT_TRUE(origenes.count({"[4:102]", "saldo", "31/10/2026"}));
    EXPECT_TRUE(origenes.count({"[13:1;2]", "cotización", "16/11/2026"}));
    EXPECT_EQ(Texto(*arbol.topLevelItem(3), 2), "Haber");
  });
  qt::MostrarCalculo(nullptr, m20, 27);

  AlAbrir("frmCalculo", [](QWidget& w) {
    auto& error = Hijo<QLabel>(w, "lblError");
    EXPECT_TRUE(error.isVisible());
    EXPECT_NE(error.text().toStdString().find("Sin resultado"), std::string::npos);
    auto& arbol = Hijo<QTreeWidget>(w, "arbolCalculo");
    ASSERT_GT(arbol.topLevelItemCount(), 0);
    bool sin_importe = false;
    for (int i = 0; i < arbol.topLevelItemCount(); ++i)
      sin_importe |= Texto(*arbol.topLevelItem(i), 3) == "Error";
    EXPECT_TRUE(sin_importe);
  });
  qt::MostrarCalculo(nullptr, mf, 2);
}

// Two accounts ticked, twelve months by month: each period's closing is the next one's opening,
// and the chart draws one line per account. An unknown account is refused in the window.
TEST_P(VentanasCalculo, ForecastTableFollowsOnAndTheChartHasALinePerAccount) {
  AlAbrir("frmPronostico", [](QWidget& w) {
    auto& lista = Hijo<QListWidget>(w, "lstCuentas");
    ASSERT_GT(lista.count(), 2);
    std::set<std::string> marcadas;
    for (int i : {0, 1}) {
      QTest::mouseClick(lista.viewport(), Qt::LeftButton, {},
                        lista.visualItemRect(lista.item(i)).center());
      QTest::keyClick(&lista, Qt::Key_Space);
      // The chart names each line by the account's code, the first word of the list's text.
      marcadas.insert(lista.item(i)->text().section(' ', 0, 0).toStdString());
    }
    Pulsar(w, "btnCalcular");
    EXPECT_FALSE(Hijo<QLabel>(w, "lblError").isVisible());
    auto& t = Hijo<QTableWidget>(w, "tblSaldos");
    ASSERT_EQ(t.rowCount(), 2 * 13);  // 10/11/2026 to 10/11/2027: thirteen calendar months cut
    for (int i = 0; i + 1 < t.rowCount(); ++i) {
      if (Celda(t, i, "Cuenta") != Celda(t, i + 1, "Cuenta")) continue;
      EXPECT_EQ(Celda(t, i, "Cierre"), Celda(t, i + 1, "Apertura")) << i;
    }
    EXPECT_EQ(t.item(0, ColumnaDe(t, "Cierre"))->textAlignment() & Qt::AlignRight, Qt::AlignRight);
    std::set<std::string> series;
    for (QAbstractSeries* s : Hijo<QChartView>(w, "grafico").chart()->series()) {
      series.insert(s->name().toStdString());
      EXPECT_EQ(static_cast<QLineSeries*>(s)->count(), 13);
    }
    EXPECT_EQ(series, marcadas);

    Escribir(w, "txtCuentas", "9.9.99");
    Pulsar(w, "btnCalcular");
    EXPECT_NE(Hijo<QLabel>(w, "lblError").text().toStdString().find("«9.9.99»"), std::string::npos);
    EXPECT_EQ(t.rowCount(), 0);
    EXPECT_TRUE(Hijo<QChartView>(w, "grafico").chart()->series().isEmpty());
  });
  qt::MostrarPronostico(nullptr, mf);
}

KMF_INSTANTIATE_ENGINES(VentanasCalculo);

}  // namespace
}  // namespace kivmovfrec::testing
