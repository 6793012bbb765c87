// The component's dialogs in real windows on the demo database of every engine, through key and
// mouse events on their widgets: a task list with two items, two movements linked in order, two
// users picked, a frequency composed.
#include <QCheckBox>

#include "api/fachada_fixture.h"
#include "persona_qt.h"
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

// Movement 18's links: rows of step 1 by name are 5, 17, 24, 2, 16, 7 (vinculos_test.cpp).
// Ticking 5 and 2 and ordering them 2, 1 and the edited movement 3.
TEST_P(DialogosQt, TwoMovementsAreLinkedInTheOrderTyped) {
  persona.En("frmVincular", [](QWidget& w) {
    auto& t = Hijo<QTableWidget>(w, "vsGrid");
    const int nombre = ColumnaDe(t, "Nombre");
    TildarPrimera(w, "vsGrid", 0, nombre);
    TildarPrimera(w, "vsGrid", 3, nombre);
    Pulsar(w, "bfContinuar");
    const int orden = ColumnaDe(t, "Orden");
    int escritas = 0;
    for (const char* o : {"2", "1", "3"}) {
      while (escritas < t.rowCount() && t.isRowHidden(escritas)) ++escritas;
      EscribirCelda(w, "vsGrid", escritas++, orden, o);
    }
    Pulsar(w, "bfContinuar");
  });
  const auto vinculos = ui::frmVincular(*cn, servicios, 1, 1, 18, "PasajeAsientos").Mostrar("");
  EXPECT_EQ(vinculos, "5:2|2:1|18:3");
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

KMF_INSTANTIATE_ENGINES(DialogosQt);

}  // namespace
}  // namespace kivmovfrec::testing
