// The component's dialogs in real windows on the demo database of every engine, through key and
// mouse events on their widgets: a scheduled entry typed in the wizard with a formula built in the
// formula editor, a formula composed and saved, a task list with two items, two users picked, a
// frequency composed (the link dialog is driven from the main window's tool bar).
#include <QCheckBox>
#include <QGroupBox>
#include <QStackedWidget>
#include <map>
#include <vector>

#include "api/fachada_fixture.h"
#include "persona_qt.h"
#include "platform/vb/format.h"
#include "ui/checklist/consultas_lista.h"
#include "ui/links/frm_vincular.h"

namespace kivmovfrec::testing {
namespace {

class DialogosQt : public Fachada {
 protected:
  void SetUpDatabase() override {
    Fachada::SetUpDatabase();
    AplicacionSinPantalla();
    sv.rights->Set(1, "CheckList", "AM");
    sv.rights->Set(1, "PasajeAsientos", "AM");
    servicios = sv.Bundle();
    qt::Instalar(servicios, persona.Opciones());
    mf.Servicios(servicios);
  }
  void TearDown() override {
    EXPECT_TRUE(persona.Terminada()) << "a window the test expected did not open";
  }
  SuiteServices servicios;
  Persona persona;
};

// Clicks row `fila` of the grid and presses the button, as a person picks an element of a list.
void ElegirFila(QWidget& w, const std::string& grilla, int fila, const std::string& boton) {
  ClicEnCelda(w, grilla, fila, 0);
  Pulsar(w, boton);
}

// A new scheduled entry: Caja 1.500,25 on the debit side (Enter applies the row); Ventas on the
// credit side with the formula "Cuenta Ingresada" built in the formula editor (the first line's
// account picked from its list); monthly from 10/12/2026 09:30, twelve times (the last date the
// count gives is checked in tests/wizard). Finalizar and Sí save all of it.
TEST_P(DialogosQt, AScheduledEntryWithAFormulaLineIsTypedInTheWizardAndSaved) {
  std::string confirmacion;
  persona
      .En("frmWMovFrec",
          [](QWidget& w) {
            Escribir(w, "tNombre", "Venta mensual");
            Elegir(w, "cfAgendado", "Agendado");
            Pulsar(w, "bfSiguiente");
            Escribir(w, "tEditCta", "1.1.01");
            Escribir(w, "ocEditD", "1.500,25");
            QTest::keyClick(&Hijo<QLineEdit>(w, "ocEditD"), Qt::Key_Return);  // applies the row
            Escribir(w, "tEditCta", "4.1.01");
            Escribir(w, "ocEditH", "0");
            SeguirEnlace(w, "hlFormula");  // the editor's window runs its own steps
            Pulsar(w, "bfEditOK");
            Pulsar(w, "bfSiguiente");
            Elegir(w, "cfFrecuencia", "Mensual");
            Escribir(w, "dtVence", "10/12/2026");
            Escribir(w, "tHora", "09:30");
            Escribir(w, "tQOcurre", "12");
            Pulsar(w, "bfFinalizar");
          })
      .En("frmDefFormula",
          [](QWidget& w) {
            ElegirFila(w, "vsGrid", 0, "bfAgregar");  // the pick list runs its own steps
            Pulsar(w, "bfFinish");
          })
      .En("frmElegirDato",
          [](QWidget& w) {
            ASSERT_EQ(Hijo<QTableWidget>(w, "vsLista").rowCount(), 1) << "only the first line";
            ElegirFila(w, "vsLista", 0, "bfFinish");
          })
      .En("mensaje", [&](QWidget& w) {
        confirmacion = static_cast<QMessageBox&>(w).text().toStdString();
        Pulsar(w, "Sí");
      });
  mf.CleanEstructura();
  mf.EstructuraMovFrec()->MovFrecuente()->Tipo(enuTipoMovFrec::Asiento);
  const int32_t id = mf.ShowWizard(1);
  ASSERT_GT(id, 0) << mf.UltimoError();
  EXPECT_EQ(confirmacion, "¿Confirma grabar los datos para el asiento?");

  clsMFTipo leido;
  ASSERT_TRUE(leido.Load(*cn, id));
  EXPECT_EQ(leido.MovFrecuente()->Nombre(), "Venta mensual");
  ASSERT_EQ(leido.Renglones()->QRenglones(), 2);
  const clsRegRenglonMF& caja = *leido.Renglones()->Renglon(1);
  EXPECT_EQ(caja.Cuenta(), 101);
  EXPECT_TRUE(caja.AlDebe());
  EXPECT_DOUBLE_EQ(caja.ImporteMF(), 1500.25);
  EXPECT_EQ(caja.Formula(), "");
  const clsRegRenglonMF& ventas = *leido.Renglones()->Renglon(2);
  EXPECT_EQ(ventas.Cuenta(), 131);
  EXPECT_FALSE(ventas.AlDebe());
  EXPECT_EQ(ventas.Formula(), "[1:101;0;0]");

  const clsRegRecurrencia& agenda = *leido.Recurrencia();
  EXPECT_EQ(agenda.Frecuencia(), "200001");
  EXPECT_EQ(vb::FormatDate(*vb::ParseDate(agenda.FechaProxima()), "dd/mm/yyyy hh:nn"),
            "10/12/2026 09:30");
}

// Line 2 of movement 2 ("[1:141;0;1]*0.24") rewritten in the editor: "2*" typed, then the
// balance of Caja (group "Saldo de una Cuenta", its first function, Caja fifth by name in the
// pick list), "+" typed, and "Pedir valor" with its caption answered in the input box.
TEST_P(DialogosQt, AFormulaIsComposedFromTheCatalogueAndAPrompt) {
  std::string pregunta;
  persona
      .En("frmDefFormula",
          [](QWidget& w) {
            Escribir(w, "tFormula", "2*");
            ElegirFila(w, "vsGrid", 3, "bfAgregar");
            ElegirFila(w, "vsGrid", 0, "bfAgregar");
            auto& texto = Hijo<QLineEdit>(w, "tFormula");
            texto.setFocus();
            QTest::keyClick(&texto, Qt::Key_End);
            QTest::keyClicks(&texto, "+");
            Pulsar(w, "imgHome");
            ElegirFila(w, "vsGrid", 1, "bfAgregar");
            Pulsar(w, "bfFinish");
          })
      .En("frmElegirDato", [](QWidget& w) { ElegirFila(w, "vsLista", 4, "bfFinish"); })
      .En("pedirTexto", [&](QWidget& w) {
        pregunta = Hijo<QLabel>(w, "lPregunta").text().toStdString();
        Escribir(w, "tTexto", "Horas extra");
        Pulsar(w, "Aceptar");
      });
  const auto formula = mf.EditarFormula(2, 2);
  ASSERT_TRUE(formula) << mf.UltimoError();
  EXPECT_EQ(*formula, "2*[5:101]+[11:Horas extra]");
  EXPECT_EQ(pregunta, "Ingrese una característica para pedir el dato.");
}

TEST_P(DialogosQt, ATaskListWithTwoItemsIsTypedAndSaved) {
  std::string pregunta;
  persona
      .En("frmCheckList",
          [](QWidget& w) {
            Escribir(w, "tNombreC", "Cierre de mes");
            Escribir(w, "dtVence", "30/11/2026");
            for (const char* item : {"Conciliar bancos", "Revisar IVA"}) {
              Pulsar(w, "bfNew");
              Escribir(w, "tNombreI", item);
              Pulsar(w, "bfEdit");
            }
            Pulsar(w, "bfFinish");
          })
      .En("mensaje", [&](QWidget& w) {
        pregunta = static_cast<QMessageBox&>(w).text().toStdString();
        Pulsar(w, "Sí");
      });
  const int32_t id = mf.ShowCheckList(0, 1);
  ASSERT_GT(id, 0) << mf.UltimoError();
  EXPECT_FALSE(pregunta.empty());
  const auto lista = checklist::CargarListaTareas(*cn, id);
  ASSERT_TRUE(lista);
  EXPECT_EQ(lista->nombre, "Cierre de mes");
  EXPECT_EQ(lista->vencimiento, suite::SerialOf(2026, 11, 30));
  ASSERT_EQ(lista->items.size(), 2u);
  EXPECT_EQ(lista->items[0].nombre, "Conciliar bancos");
  EXPECT_EQ(lista->items[1].nombre, "Revisar IVA");
}

TEST_P(DialogosQt, TwoUsersArePickedAndAFrequencyComposed) {
  // Rows: admin (1), cfernandez (4), jperez (2).
  persona.En("frmFindUser", [](QWidget& w) {
    TildarPrimera(w, "vsGrid", 0, 1);
    TildarPrimera(w, "vsGrid", 2, 1);
    Pulsar(w, "bfFinish");
  });
  std::string identificaciones;
  EXPECT_EQ(mf.ElegirUsuarios("", &identificaciones), "1, 2");
  EXPECT_EQ(identificaciones, "admin; jperez");

  persona.En("frmFrecuencia", [](QWidget& w) {
    Elegir(w, "cfUnidad", "El último día hábil del mes");
    Escribir(w, "tCada", "3");
    Pulsar(w, "Aceptar");
  });
  EXPECT_EQ(mf.EditarFrecuencia(), "500003 El último día hábil de cada 3 meses");
}

// The access key of a caption ("&x"; "&&" is a literal "&"), lower case; empty without one.
QString Tecla(const QString& caption) {
  for (qsizetype i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] != '&') return caption.mid(i + 1, 1).toLower();
    ++i;
  }
  return {};
}

// Captions on view that share an access key, on each page of the window: "a: &Aceptar, &Anterior".
std::vector<std::string> TeclasRepetidas(QWidget& w) {
  std::vector<std::string> repetidas;
  auto revisar = [&] {
    std::map<QString, QStringList> por_tecla;
    for (QWidget* c : w.findChildren<QWidget*>()) {
      if (!c->isVisibleTo(&w)) continue;
      QString caption;
      if (auto* l = qobject_cast<QLabel*>(c); l && l->buddy()) caption = l->text();
      if (auto* b = qobject_cast<QAbstractButton*>(c)) caption = b->text();
      if (auto* g = qobject_cast<QGroupBox*>(c)) caption = g->title();
      if (const QString t = Tecla(caption); !t.isEmpty()) por_tecla[t] << caption;
    }
    for (const auto& [tecla, captions] : por_tecla)
      if (captions.size() > 1)
        repetidas.push_back((tecla + ": " + captions.join(", ")).toStdString());
  };
  auto* paginas = w.findChild<QStackedWidget*>();
  if (!paginas || paginas->count() == 0) {
    revisar();
    return repetidas;
  }
  const int actual = paginas->currentIndex();
  for (int i = 0; i < paginas->count(); ++i) {
    paginas->setCurrentIndex(i);
    revisar();
  }
  paginas->setCurrentIndex(actual);
  return repetidas;
}

// Every dialog as it opens (each wizard panel): no two captions on view share an access key,
// so that Alt and a letter always reach one control.
TEST_P(DialogosQt, NoTwoCaptionsOnViewShareAnAccessKey) {
  sv.rights->Set(1, "Comprobantes", "A");
  std::map<std::string, std::vector<std::string>> repetidas;
  auto revisar = [&](const std::string& como) {
    return [&repetidas, como](QWidget& w) {
      repetidas[como] = TeclasRepetidas(w);
      QTest::keyClick(&w, Qt::Key_Escape);
    };
  };
  for (auto [tipo, como] : {std::pair{enuTipoMovFrec::Asiento, "asiento"},
                            {enuTipoMovFrec::Comprobante, "comprobante"},
                            {enuTipoMovFrec::Calendario, "aviso"}}) {
    persona.En("frmWMovFrec", revisar(como));
    mf.CleanEstructura();
    mf.EstructuraMovFrec()->MovFrecuente()->Tipo(tipo);
    mf.ShowWizard(1);
  }
  // The task list twice: as it opens, and while an item is edited (two buttons change caption).
  persona.En("frmCheckList", [&repetidas](QWidget& w) {
    repetidas["lista de tareas"] = TeclasRepetidas(w);
    Pulsar(w, "bfNew");
    repetidas["lista de tareas, ítem"] = TeclasRepetidas(w);
    Pulsar(w, "bfDelCancel");
    QTest::keyClick(&w, Qt::Key_Escape);
  });
  mf.ShowCheckList(0, 1);
  persona.En("frmVincular", revisar("vínculos"));
  ui::frmVincular(*cn, servicios, 1, 1, 18, "PasajeAsientos").Mostrar("");
  persona.En("frmFindUser", revisar("usuarios"));
  mf.ElegirUsuarios("");
  persona.En("frmFrecuencia", revisar("frecuencia"));
  mf.EditarFrecuencia();
  persona.En("frmDefFormula", revisar("fórmula"));
  mf.EditarFormula(2, 2);

  ASSERT_EQ(repetidas.size(), 9u) << "every dialog opened";
  for (const auto& [como, teclas] : repetidas)
    EXPECT_EQ(teclas, std::vector<std::string>{}) << como;
}

KMF_INSTANTIATE_ENGINES(DialogosQt);

}  // namespace
}  // namespace kivmovfrec::testing
