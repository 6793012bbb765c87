// The main window on the demo database of every engine: what it lists and shows in the agenda,
// its filters, and actions run through its tool bar with their questions answered in the real
// message boxes.
#include <QApplication>
#include <QToolBar>
#include <map>
#include <set>

#include "api/fachada_fixture.h"
#include "movimientos_empresa.h"
#include "persona_qt.h"
#include "ventana_principal.h"

namespace kivmovfrec::testing {
namespace {

class VentanaPrincipalQt : public Fachada {
 protected:
  void SetUpDatabase() override {
    Fachada::SetUpDatabase();
    AplicacionSinPantalla();
    sv.rights->Set(1, "PasajeAsientos", "M");
    sv.rights->Set(1, "Comprobantes", "AME");
    sv.rights->Set(1, "Papelera", "e");
    sv.rights->Set(1, "CheckList", "AM");
    servicios = sv.Bundle();
    qt::Instalar(servicios, persona.Opciones());
    mf.Servicios(servicios);
    ventana = std::make_unique<qt::VentanaPrincipal>(mf, 1, 1);
    ventana->show();
  }
  void TearDown() override {
    EXPECT_TRUE(persona.Terminada()) << "a window the test expected did not open";
  }

  QTableWidget& Tabla(const char* nombre = "tablaMovimientos") {
    return Hijo<QTableWidget>(*ventana, nombre);
  }
  // The list as shown: ID -> the text of column `encabezado`.
  std::map<int32_t, std::string> Columna(const std::string& encabezado) {
    auto& t = Tabla();
    const int c = ColumnaDe(t, encabezado);
    std::map<int32_t, std::string> filas;
    for (int r = 0; r < t.rowCount(); ++r)
      filas[t.item(r, 0)->text().toInt()] = t.item(r, c)->text().toStdString();
    return filas;
  }
  std::set<int32_t> Ids() {
    std::set<int32_t> ids;
    for (const auto& [id, _] : Columna("ID")) ids.insert(id);
    return ids;
  }
  // Clicks the row of movement `id` in the list.
  void ElegirFila(int32_t id) {
    auto& t = Tabla();
    for (int r = 0; r < t.rowCount(); ++r)
      if (t.item(r, 0)->text().toInt() == id) {
        ClicEnCelda(*ventana, "tablaMovimientos", r, ColumnaDe(t, "Nombre"));
        return;
      }
    FAIL() << "the list does not show movement " << id;
  }
  QAction& Accion(const char* nombre) { return Hijo<QAction>(*ventana, nombre); }
  // Clicks the action's button on the tool bar.
  void PulsarAccion(const char* accion) {
    auto& barra = Hijo<QToolBar>(*ventana, "barraAcciones");
    QTest::mouseClick(barra.widgetForAction(&Accion(accion)), Qt::LeftButton);
  }
  // The agenda as shown: "date|event|ID|detail" per row.
  std::vector<std::string> FilasAgenda() {
    auto& t = Tabla("tablaAgenda");
    std::vector<std::string> filas;
    for (int r = 0; r < t.rowCount(); ++r)
      filas.push_back(
          t.item(r, 0)->text().toStdString() + "|" + t.item(r, 1)->text().toStdString() + "|" +
          t.item(r, 2)->text().toStdString() + "|" + t.item(r, 7)->text().toStdString());
    return filas;
  }

  SuiteServices servicios;
  Persona persona;
  std::unique_ptr<qt::VentanaPrincipal> ventana;
};

TEST_P(VentanaPrincipalQt, ListsTheCompanysMovementsWithTheirKindDueDateAndState) {
  // Company 1 only (23 is company 2's), task-list items (11-14, 29, 30) under their lists.
  EXPECT_EQ(Ids().size(), 23u);
  EXPECT_FALSE(Ids().count(23));
  EXPECT_FALSE(Ids().count(11));
  const auto tipo = Columna("Tipo");
  const auto proxima = Columna("Próximo vencimiento");
  const auto importe = Columna("Tipo de importe");
  const auto estado = Columna("Estado");
  struct Caso {
    int32_t id;
    const char *tipo, *proxima, *importe, *estado;
  };
  for (const Caso& c : {Caso{1, "Asiento", "10/11/2026", "Automático", "En proceso"},
                        Caso{2, "Asiento", "", "Estimado", "En proceso"},
                        Caso{6, "Comprobante", "01/12/2026", "Fijo", "En proceso"},
                        Caso{8, "Aviso", "20/11/2026 10:00", "", "En proceso"},
                        Caso{10, "Lista de tareas", "30/11/2026 18:00", "", "En proceso"},
                        Caso{19, "Asiento del sistema", "", "Automático", "En proceso"},
                        Caso{20, "Asiento", "", "Fijo", "Papelera"},
                        Caso{21, "Aviso", "15/06/2026 09:00", "", "Realizado"}}) {
    SCOPED_TRACE(c.id);
    EXPECT_EQ(tipo.at(c.id), c.tipo);
    EXPECT_EQ(proxima.at(c.id), c.proxima);
    EXPECT_EQ(importe.at(c.id), c.importe);
    EXPECT_EQ(estado.at(c.id), c.estado);
  }
}

TEST_P(VentanaPrincipalQt, FiltersNarrowTheList) {
  Elegir(*ventana, "filtroTipo", "Aviso");
  EXPECT_EQ(Ids(), (std::set<int32_t>{8, 9, 21, 22}));
  Elegir(*ventana, "filtroEstado", "En proceso");
  EXPECT_EQ(Ids(), (std::set<int32_t>{8, 9, 22}));
  Elegir(*ventana, "filtroTipo", "Todos");
  Elegir(*ventana, "filtroEstado", "Todos");
  Escribir(*ventana, "filtroNombre", "CIERRE");  // case ignored
  EXPECT_EQ(Ids(), (std::set<int32_t>{10, 15, 19, 27}));
  // Accented capitals too (QTest types ASCII only, so the text is put in the field).
  Hijo<QLineEdit>(*ventana, "filtroNombre").setText("PRÉSTAMO");
  EXPECT_EQ(Ids(), (std::set<int32_t>{5}));
}

TEST_P(VentanaPrincipalQt, TheAgendaShowsTheMonthsDueDatesNoticesAndTaskLists) {
  // Opens on today's month: the rent due on 10/11 and the month-end list with two of its three
  // items open (one done, one in the bin).
  const auto noviembre = FilasAgenda();
  EXPECT_NE(std::find(noviembre.begin(), noviembre.end(),
                      "10/11/2026|Vencimiento|1|Alquiler de oficina &[FFAñoMes]"),
            noviembre.end());
  EXPECT_NE(std::find(noviembre.begin(), noviembre.end(),
                      "30/11/2026 18:00|Vencimiento|10|2 de 3 tareas pendientes"),
            noviembre.end());
  Pulsar(*ventana, "bfMesSiguiente");
  const auto diciembre = FilasAgenda();
  // The voucher due on the 1st; the meeting and its notice a day before it.
  for (const char* fila :
       {"01/12/2026|Vencimiento|6|Honorarios de &[FMes-1]",
        "14/12/2026 15:30|Notificación|9|Revisar el cierre del ejercicio con el estudio.",
        "15/12/2026 15:30|Vencimiento|9|Revisar el cierre del ejercicio con el estudio."})
    EXPECT_NE(std::find(diciembre.begin(), diciembre.end(), fila), diciembre.end()) << fila;
  for (const std::string& f : diciembre) EXPECT_EQ(f.find("10/11/2026"), std::string::npos) << f;
}

TEST_P(VentanaPrincipalQt, ActionsApplyOnlyToTheRowsTheyFit) {
  // editar, vincular, papelera, eliminar, realizado, calcular
  const std::map<int32_t, std::string> casos = {
      {1, "111011"},   // scheduled entry
      {2, "111001"},   // frequent entry: no due date
      {8, "101010"},   // notice
      {10, "101010"},  // task list
      {19, "001001"},  // system entry: computed, never edited in the wizard
      {20, "000100"},  // in the bin
      {21, "101000"},  // done
  };
  EXPECT_FALSE(Accion("accEditar").isEnabled());  // nothing selected
  for (const auto& [id, esperado] : casos) {
    ElegirFila(id);
    std::string habilitadas;
    for (const char* a :
         {"accEditar", "accVincular", "accPapelera", "accEliminar", "accRealizado", "accCalcular"})
      habilitadas += Accion(a).isEnabled() ? '1' : '0';
    EXPECT_EQ(habilitadas, esperado) << "movement " << id;
  }
}

// Enter on a row opens the editor of its kind on that movement; cancelling it changes nothing.
TEST_P(VentanaPrincipalQt, EnterEditsTheRowInTheEditorOfItsKind) {
  struct Caso {
    int32_t id;
    const char *formulario, *nombre, *cancelar;
  };
  for (const Caso& c : {Caso{10, "frmCheckList", "tNombreC", "bfCancel"},
                        Caso{8, "frmWMovFrec", "tNombre", "bfCancelar"},
                        Caso{6, "frmWMovFrec", "tNombre", "bfCancelar"}}) {
    SCOPED_TRACE(c.id);
    std::string nombre;
    persona.En(c.formulario, [&](QWidget& w) {
      nombre = Hijo<QLineEdit>(w, c.nombre).text().toStdString();
      Pulsar(w, c.cancelar);
    });
    ElegirFila(c.id);
    const auto antes = Tablas();
    QTest::keyClick(&Tabla(), Qt::Key_Return);
    EXPECT_TRUE(persona.Terminada());
    EXPECT_EQ(nombre, vb::CStr(Mov(c.id, "MFrNombre")));
    EXPECT_EQ(Tablas(), antes);
  }
}

TEST_P(VentanaPrincipalQt, AVoucherGoesToTheBinAndIsThenDeleted) {
  std::string pregunta;
  persona.En("mensaje", [&](QWidget& w) {
    pregunta = static_cast<QMessageBox&>(w).text().toStdString();
    Pulsar(w, "Sí");
  });
  ElegirFila(24);
  PulsarAccion("accPapelera");
  EXPECT_FALSE(pregunta.empty());
  EXPECT_EQ(Columna("Estado").at(24), "Papelera");
  EXPECT_EQ(Estado(24), 9);
  // Still selected: the bin's actions now apply.
  EXPECT_FALSE(Accion("accPapelera").isEnabled());
  ASSERT_TRUE(Accion("accEliminar").isEnabled());

  persona.En("mensaje", [](QWidget& w) { Pulsar(w, "No"); });
  PulsarAccion("accEliminar");
  EXPECT_TRUE(Ids().count(24));
  persona.En("mensaje", [](QWidget& w) { Pulsar(w, "Sí"); });
  PulsarAccion("accEliminar");
  EXPECT_FALSE(Ids().count(24));
  EXPECT_TRUE(Mov(24, "MFrID").IsNull());
}

// The next due date keeps the day of the schedule's start: the rent started on 10/01, the
// month-end list on 31/01 at 18:00 (so December's is the 31st, not the 30th).
TEST_P(VentanaPrincipalQt, MarkingDoneMovesTheNextDueDate) {
  struct Caso {
    int32_t id;
    const char* siguiente;
  };
  for (const Caso& c : {Caso{1, "10/12/2026"}, Caso{10, "31/12/2026 18:00"}}) {
    SCOPED_TRACE(c.id);
    persona.En("mensaje", [](QWidget& w) { Pulsar(w, "Sí"); });
    ElegirFila(c.id);
    PulsarAccion("accRealizado");
    EXPECT_EQ(Columna("Próximo vencimiento").at(c.id), c.siguiente);
    EXPECT_EQ(qt::FechaTexto(*vb::ParseDate(vb::CStr(Agenda(c.id).FechaProxima()))), c.siguiente);
  }
  // November's agenda no longer holds the rent's occurrence that was done.
  for (const std::string& f : FilasAgenda())
    EXPECT_FALSE(f.starts_with("10/11/2026|Vencimiento|1|")) << f;
}

// The link dialog opens on movement 18 (rows by name: 5, 17, 24, 2, 16, 7); 5 and 2 are ticked
// and ordered 2, 1 and 18 third, and the group is saved in that order.
TEST_P(VentanaPrincipalQt, LinkingSavesTheGroupChosenInTheDialog) {
  persona.En("frmVincular", [](QWidget& w) {
    auto& t = Hijo<QTableWidget>(w, "vsGrid");
    TildarPrimera(w, "vsGrid", 0, ColumnaDe(t, "Nombre"));
    TildarPrimera(w, "vsGrid", 3, ColumnaDe(t, "Nombre"));
    Pulsar(w, "bfContinuar");
    int fila = 0;
    for (const char* orden : {"2", "1", "3"}) {
      while (t.isRowHidden(fila)) ++fila;
      EscribirCelda(w, "vsGrid", fila++, ColumnaDe(t, "Orden"), orden);
    }
    Pulsar(w, "bfContinuar");
  });
  ElegirFila(18);
  PulsarAccion("accVincular");
  const GrupoVinculado grupo = mf.GrupoEnOrden(18);
  EXPECT_EQ(grupo.id, 2);
  std::vector<int32_t> orden;
  for (const MiembroGrupo& m : grupo.miembros) orden.push_back(m.id);
  EXPECT_EQ(orden, (std::vector<int32_t>{2, 5, 18}));
}

// "Ejecutar lo vencido" up to today (10/11/2026) posts the rent (1) and the social charges (25,
// with 26 in its group); once its window is closed the list shows their next due dates.
TEST_P(VentanaPrincipalQt, RunningWhatIsDueMovesTheListedDueDates) {
  bool ejecutada = false;
  QTimer::singleShot(0, [&] {
    QWidget* w = QApplication::activeModalWidget();
    if (!w || w->objectName() != "frmEjecutarVencidos") {
      ADD_FAILURE() << "the run's window did not open";
      if (w) w->close();
      return;
    }
    Pulsar(*w, "btnEjecutar");
    ejecutada = true;
    Pulsar(*w, "btnCerrar");
  });
  PulsarAccion("accEjecutar");
  EXPECT_TRUE(ejecutada);
  const auto proxima = Columna("Próximo vencimiento");
  EXPECT_EQ(proxima.at(1), "10/12/2026");
  EXPECT_EQ(proxima.at(25), "10/12/2026");
  EXPECT_EQ(proxima.at(3), "20/11/2026");  // not due yet
}

KMF_INSTANTIATE_ENGINES(VentanaPrincipalQt);

}  // namespace
}  // namespace kivmovfrec::testing
