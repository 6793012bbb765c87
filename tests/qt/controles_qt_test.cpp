// The Qt forms, message boxes and numeric prompts driven through real key and mouse events:
// events come only from a person, Enter and Escape press the marked buttons, the close box
// asks the logic, focus rules, message buttons and defaults, Spanish numbers, captures (a
// missing panel is refused in tests/cli/guion_test.cpp).
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <cstdio>
#include <string>

#include "kivmovfrec/controles.h"
#include "persona_qt.h"

namespace kivmovfrec::testing {
namespace {

using controles::ClaseControl;
using controles::IFormulario;

struct Contadores {
  int texto = 0, lista = 0, casilla = 0, fila = 0, celda = 0, ok = 0, cancelar = 0, cierre = 0;
  int celda_fila = -1, celda_columna = -1;
};

// A form with one control of each kind that has an event, a hidden field and two panels.
class FormaQt : public ::testing::Test {
 protected:
  void SetUp() override {
    AplicacionSinPantalla();
    qt::Instalar(s, persona.Opciones());
    f = s.formularios->Crear("frmPrueba");
    nombre = &f->CrearTexto("tNombre");
    nombre->Caption("&Nombre:");
    nombre->AlCambiar([this] { ++n.texto; });
    lista = &f->CrearLista("cfLista");
    lista->Agregar("Uno", 10);
    lista->Agregar("Dos", 20);
    lista->AlElegir([this] { ++n.lista; });
    casilla = &f->CrearCasilla("chCasilla");
    casilla->AlCambiar([this] { ++n.casilla; });
    grilla = &f->CrearGrilla("vsGrid");
    grilla->Columnas("|Nombre|>Importe");
    grilla->ColumnaCasilla(0, true);
    grilla->ColumnaEditable(0, true);
    for (const char* x : {"a", "b", "c"}) grilla->Celda(grilla->AgregarFila(), 1, x);
    grilla->AlCambiarFila([this] { ++n.fila; });
    grilla->AlEditarCelda([this](int r, int c) {
      ++n.celda;
      n.celda_fila = r;
      n.celda_columna = c;
    });
    oculto = &f->CrearTexto("tOculto");
    oculto->Visible(false);
    en_panel = &f->CrearTexto("tPanel2", 2);
    f->CrearTexto("tPanel1", 1);
    auto& ok = f->CrearBoton("bfOK");
    ok.Caption("&Aceptar");
    ok.PorDefecto(true);
    ok.AlPulsar([this] {
      ++n.ok;
      f->Cerrar(1);
    });
    auto& cancelar = f->CrearBoton("bfCancel");
    cancelar.Caption("Cancelar");
    cancelar.Cancela(true);
    cancelar.AlPulsar([this] {
      ++n.cancelar;
      f->Cerrar(2);
    });
    f->MostrarPanel(1);
  }
  SuiteServices s;
  Persona persona;
  std::unique_ptr<IFormulario> f;
  controles::ITexto* nombre = nullptr;
  controles::ILista* lista = nullptr;
  controles::ICasilla* casilla = nullptr;
  controles::IGrilla* grilla = nullptr;
  controles::ITexto* oculto = nullptr;
  controles::ITexto* en_panel = nullptr;
  Contadores n;
};

TEST_F(FormaQt, TheLogicsChangesFireNothingAndFocusNeedsAReachableControl) {
  EXPECT_EQ(lista->Indice(), -1) << "adding entries chooses none";
  nombre->Text("Juan");
  lista->Indice(1);
  casilla->Marcada(true);
  grilla->Tilde(2, 0, true);
  grilla->Celda(0, 2, "1.500,00");
  grilla->Fila(1);
  grilla->QuitarFila(0);
  EXPECT_EQ(n.texto + n.lista + n.casilla + n.fila + n.celda, 0);
  EXPECT_EQ(lista->Dato(lista->Indice()), 20);
  EXPECT_TRUE(grilla->Tilde(1, 0));
  EXPECT_EQ(grilla->Celda(0, 1), "b");
  EXPECT_EQ(grilla->Encabezado(2), "Importe");
  EXPECT_EQ(grilla->ColumnaAlineacion(2), controles::Alineacion::Derecha);
  EXPECT_THROW(grilla->Celda(5, 1), std::out_of_range);
  EXPECT_THROW(lista->Indice(2), std::out_of_range);

  EXPECT_THROW(oculto->SetFocus(), std::logic_error);
  EXPECT_THROW(en_panel->SetFocus(), std::logic_error) << "panel 1 is on view";
  f->MostrarPanel(2);
  en_panel->SetFocus();
  EXPECT_EQ(f->Foco(), en_panel);
  f->MostrarPanel(1);
  EXPECT_NE(f->Foco(), en_panel) << "the focused control left with its panel";
  nombre->Enabled(false);
  EXPECT_THROW(nombre->SetFocus(), std::logic_error);
  EXPECT_THROW(f->CrearTexto("tNombre"), std::logic_error);
}

TEST_F(FormaQt, APersonsActionsFireOnceAndEnterEscapeAndTheCloseBoxDoWhatTheyShould) {
  persona
      .En("frmPrueba",
          [&](QWidget& w) {
            Escribir(w, "tNombre", "ab");
            QTest::keyClick(&Hijo<QLineEdit>(w, "tNombre"), Qt::Key_Tab);
            EXPECT_EQ(w.focusWidget()->objectName(), "cfLista") << "tab order is creation order";
            Elegir(w, "cfLista", "Dos");
            auto& box = Hijo<QCheckBox>(w, "chCasilla");
            QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
            TildarPrimera(w, "vsGrid", 1, 1);
            EXPECT_TRUE(Hijo<QLineEdit>(w, "tPanel1").isVisible());
            EXPECT_FALSE(Hijo<QLineEdit>(w, "tPanel2").isVisible()) << "panel 2 is not shown";
            QTest::keyClick(&Hijo<QLineEdit>(w, "tNombre"), Qt::Key_Escape);
          })
      .En("frmPrueba",
          [&](QWidget& w) { QTest::keyClick(&Hijo<QLineEdit>(w, "tNombre"), Qt::Key_Return); })
      .En("frmPrueba", [&](QWidget& w) { w.close(); });
  EXPECT_EQ(f->MostrarModal(), 2) << "Escape pressed Cancelar";
  EXPECT_EQ(nombre->Text(), "ab");
  EXPECT_EQ(n.texto, 2) << "one event per key";
  EXPECT_EQ(lista->Indice(), 1);
  EXPECT_EQ(n.lista, 2) << "Down twice from no entry";
  EXPECT_TRUE(casilla->Marcada());
  EXPECT_EQ(n.casilla, 1);
  EXPECT_EQ(grilla->Fila(), 1);
  EXPECT_EQ(n.fila, 1);
  EXPECT_TRUE(grilla->Tilde(1, 0));
  EXPECT_EQ(n.celda, 1);
  EXPECT_EQ(n.celda_fila * 10 + n.celda_columna, 10);
  ASSERT_NE(f->Foco(), nullptr);
  EXPECT_EQ(f->Foco()->Nombre(), "vsGrid")
      << "the last control clicked (Escape went to the name field)";

  EXPECT_EQ(f->MostrarModal(), 1) << "Enter pressed the default button";
  EXPECT_EQ(f->MostrarModal(), 0) << "the close box without a handler closes with 0";
  EXPECT_EQ(n.ok * 10 + n.cancelar, 11);

  f->AlPedirCierre([this] { ++n.cierre; });
  persona.En("frmPrueba", [&](QWidget& w) {
    w.close();
    EXPECT_TRUE(w.isVisible()) << "the logic did not close it";
    Pulsar(w, "Aceptar");
  });
  EXPECT_EQ(f->MostrarModal(), 1);
  EXPECT_EQ(n.cierre, 1);
  EXPECT_TRUE(persona.Terminada());
}

TEST_F(FormaQt, AHandlersExceptionEndsTheDialogAndReachesTheCaller) {
  nombre->AlCambiar([] { throw std::runtime_error("fallo de la lógica"); });
  persona.En("frmPrueba", [&](QWidget& w) { Escribir(w, "tNombre", "x"); });
  EXPECT_THROW(f->MostrarModal(), std::runtime_error);
}

TEST_F(FormaQt, ACaptureRendersTheAskedPanelWithoutRunningTheForm) {
  const std::string png = ::testing::TempDir() + "captura_qt.png";
  std::remove(png.c_str());
  SuiteServices c;
  qt::OpcionesVentanas o;
  o.captura = png;
  o.panel_captura = 2;
  auto estado = qt::Instalar(c, o);
  auto forma = c.formularios->Crear("frmCaptura");
  forma->CrearTexto("tUno", 1).Caption("Uno");
  forma->CrearTexto("tDos", 2).Caption("Dos");
  forma->MostrarPanel(1);
  EXPECT_EQ(forma->MostrarModal(), 0);
  EXPECT_TRUE(estado->hecha) << estado->error;
  EXPECT_EQ(forma->PanelVisible(), 2);
  QImage imagen(QString::fromStdString(png));
  EXPECT_GT(imagen.width(), 50);
  EXPECT_EQ(c.messages, nullptr) << "a capture leaves messages to the services already there";

  std::remove(png.c_str());
}

// Message boxes: Spanish captions, the asked default button under Enter, Escape and the close
// box answering the last button.
TEST(MensajesQt, ButtonsCaptionsDefaultAndEscape) {
  AplicacionSinPantalla();
  struct Caso {
    MsgButtons botones;
    int defecto;
    Qt::Key tecla;
    int esperado;
    QString captions;
  } casos[] = {
      {MsgButtons::YesNo, 2, Qt::Key_Return, kMsgNo, "Sí|No"},
      {MsgButtons::YesNo, 1, Qt::Key_Return, kMsgYes, "Sí|No"},
      {MsgButtons::YesNo, 1, Qt::Key_Escape, kMsgNo, "Sí|No"},
      {MsgButtons::OKCancel, 1, Qt::Key_Escape, kMsgCancel, "Aceptar|Cancelar"},
      {MsgButtons::YesNoCancel, 3, Qt::Key_Return, kMsgCancel, "Sí|No|Cancelar"},
      {MsgButtons::OK, 1, Qt::Key_Escape, kMsgOK, "Aceptar"},
  };
  for (const Caso& c : casos) {
    Persona persona;
    SuiteServices s;
    qt::Instalar(s, persona.Opciones());
    QStringList vistos;
    QMessageBox::Icon icono = QMessageBox::NoIcon;
    persona.En("mensaje", [&](QWidget& w) {
      auto& caja = static_cast<QMessageBox&>(w);
      for (QAbstractButton* b : caja.buttons()) vistos << b->text().remove('&');
      icono = caja.icon();
      QTest::keyClick(&w, c.tecla);
    });
    const int r = s.messages->Show({"¿Guarda?", "Lista", MsgIcon::Question, c.botones, c.defecto});
    vistos.sort();
    QStringList esperados = c.captions.split('|');
    esperados.sort();
    EXPECT_EQ(r, c.esperado) << vistos.join('|').toStdString() << " tecla " << c.tecla;
    EXPECT_EQ(vistos.join('|').toStdString(), esperados.join('|').toStdString());
    EXPECT_EQ(icono, QMessageBox::Question);
  }
}

// The numeric prompt reads Spanish numbers and keeps asking, with the reason, when the text
// could be read two ways or is no number (the text prompt is typed into in
// dialogos_qt_test.cpp, from the formula editor).
TEST(EntradaQt, OnlySpanishNumbersAreTakenByTheNumericPrompt) {
  AplicacionSinPantalla();
  Persona persona;
  SuiteServices s;
  qt::Instalar(s, persona.Opciones());
  std::string propuesto, explicacion;
  bool sigue_abierto = false;
  persona.En("pedirNumero", [&](QWidget& w) {
    propuesto = Hijo<QLineEdit>(w, "tNumero").text().toStdString();
    Escribir(w, "tNumero", "1.5");
    QTest::keyClick(&Hijo<QLineEdit>(w, "tNumero"), Qt::Key_Return);
    sigue_abierto = w.isVisible();
    explicacion = Hijo<QLabel>(w, "lError").text().toStdString();
    Escribir(w, "tNumero", "-1.500,25");
    QTest::keyClick(&Hijo<QLineEdit>(w, "tNumero"), Qt::Key_Return);
  });
  EXPECT_EQ(s.input->PedirNumero("Tipo de cambio", "Cotización", 1234.5), -1500.25);
  EXPECT_EQ(propuesto, "1234,5");
  EXPECT_TRUE(sigue_abierto);
  EXPECT_FALSE(explicacion.empty());

  persona.En("pedirNumero", [&](QWidget& w) { QTest::keyClick(&w, Qt::Key_Escape); });
  EXPECT_EQ(s.input->PedirNumero("Tipo de cambio", "Cotización", 1), std::nullopt);

  EXPECT_TRUE(persona.Terminada());
}

}  // namespace
}  // namespace kivmovfrec::testing
