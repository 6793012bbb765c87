// Step scripts: a small dialog built on the services the script installs, played from JSON.
#include "kivmovfrec/guion.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kivmovfrec {
namespace {

using controles::IBoton;
using controles::ILista;
using controles::ITexto;

// A dialog as the real ones are written: on "Aceptar" it asks for confirmation, refuses an
// empty name (focus on it, text selected) and closes with 99; "Elegir" opens a pick list whose
// choice is typed into the name.
int32_t Dialogo(SuiteServices& s) {
  auto f = s.formularios->Crear("frmPrueba");
  f->MostrarPanel(1);
  ITexto& nombre = f->CrearTexto("tNombre", 1);
  IBoton& aceptar = f->CrearBoton("bfFinish");
  aceptar.Caption("&Aceptar");
  aceptar.AlPulsar([&] {
    if (s.messages->Show({"¿Confirma?", "Prueba", MsgIcon::Question, MsgButtons::YesNo, 1, 7}) !=
        kMsgYes)
      return;
    if (nombre.Text().find_first_not_of(' ') == std::string::npos) {
      s.messages->Show(
          {"Campo obligatorio", "Prueba", MsgIcon::Exclamation, MsgButtons::OK, 1, 642});
      nombre.SetFocus();
      nombre.SeleccionarTodo();
      return;
    }
    f->Cerrar(99);
  });
  IBoton& elegir = f->CrearBoton("bfElegir");
  elegir.AlPulsar([&] {
    auto pick = s.formularios->Crear("frmElegir");
    ILista& l = pick->CrearLista("cfOpcion");
    l.Agregar("Caja", 1);
    l.Agregar("Banco", 2);
    IBoton& ok = pick->CrearBoton("bfOK");
    ok.AlPulsar([&] { pick->Cerrar(l.Indice() + 1); });
    if (const int r = pick->MostrarModal(); r > 0) nombre.Text(l.Item(r - 1));
  });
  return f->MostrarModal();
}

InformeGuion Correr(std::string_view json) {
  auto g = GuionDialogos::Leer(json);
  SuiteServices s;
  g->Instalar(s);
  const int32_t r = Dialogo(s);
  InformeGuion i = g->Informe();
  EXPECT_EQ(i.resultado, r) << "the report gives what the dialog returned";
  return i;
}

TEST(Guion, PlaysStepsRecordsMessagesAndReportsTheFocus) {
  // A refusal, then a nested pick list, then the save.
  const InformeGuion i = Correr(R"([
    {"escribir": "tNombre", "texto": "   "},
    {"pulsar": "Aceptar"}, {"responder": "si"}, {"responder": "aceptar"},
    {"pulsar": "bfElegir"},
    {"elegir": "cfOpcion", "opcion": "Banco", "en": "frmElegir"}, {"pulsar": "bfOK"},
    {"pulsar": "bfFinish"}, {"responder": "si"}
  ])");
  EXPECT_EQ(i.error, "");
  EXPECT_EQ(i.resultado, 99);
  EXPECT_EQ(i.pasos, 9);
  EXPECT_EQ(i.pasos_ejecutados, 9);
  ASSERT_EQ(i.mensajes.size(), 3u);
  EXPECT_EQ(i.mensajes[0].numero, 7);
  EXPECT_EQ(i.mensajes[0].icono, "pregunta");
  EXPECT_EQ(i.mensajes[0].respuesta, "si");
  EXPECT_EQ(i.mensajes[1].numero, 642);
  EXPECT_EQ(i.mensajes[1].icono, "exclamacion");
  EXPECT_EQ(i.formulario, "frmPrueba");
  EXPECT_EQ(i.foco, "bfFinish");

  // Stopped at the refusal: the focus is on the name with its blanks selected.
  const InformeGuion r = Correr(R"([{"escribir": "tNombre", "texto": "  "},
                                    {"pulsar": "bfFinish"}, {"responder": "si"}])");
  EXPECT_EQ(r.error, "");
  EXPECT_EQ(r.resultado, 0);
  EXPECT_EQ(r.foco, "tNombre");
  EXPECT_EQ(r.seleccion, "  ");
  EXPECT_EQ(r.panel, 1);
  EXPECT_EQ(r.mensajes.back().respuesta, "aceptar") << "an OK-only message needs no step";
}

TEST(Guion, AStepThatCannotBeDoneStopsTheRunAndSaysWhich) {
  struct Caso {
    const char* guion;
    const char* error;  // the start of the report's error
  } casos[] = {
      {R"([{"pulsar": "bfFinish"}])",
       "paso 1 (pulsar «bfFinish»): el mensaje «¿Confirma?» espera una respuesta"},
      {R"([{"pulsar": "bfFinish"}, {"responder": "aceptar"}])",
       "paso 1 (pulsar «bfFinish»): la respuesta «aceptar» no es un botón"},
      {R"([{"escribir": "tApellido", "texto": "x"}, {"pulsar": "bfFinish"}])",
       "paso 1 (escribir «tApellido»): frmPrueba no tiene un control «tApellido»"},
      {R"([{"responder": "si"}])", "paso 1 (responder «si»): no hay un mensaje"},
      {R"([{"elegir": "cfOpcion", "opcion": "Caja"}])",
       "paso 1 (elegir «cfOpcion»): frmPrueba no tiene"},
      {R"([{"pulsar": "bfElegir"}, {"pulsar": "bfFinish", "en": "frmPrueba"}])",
       "paso 2 (pulsar «bfFinish»): el paso es para frmPrueba y está abierto frmElegir"},
      {R"([{"escribir": "tNombre", "texto": "Caja"}, {"pulsar": "bfFinish"},
           {"responder": "si"}, {"pulsar": "bfFinish"}])",
       "sobran 1 pasos desde el paso 4 (pulsar «bfFinish»)"},
  };
  for (const auto& c : casos) {
    const InformeGuion i = Correr(c.guion);
    EXPECT_EQ(i.error.rfind(c.error, 0), 0u) << c.guion << "\n -> " << i.error;
  }
  // A stopped run cancels the dialog: nothing is saved behind the script's back.
  EXPECT_EQ(
      Correr(R"([{"escribir": "tNombre", "texto": "Caja"}, {"pulsar": "bfFinish"}])").resultado, 0);
}

TEST(Guion, MalformedScriptsAreRefusedNamingTheStep) {
  struct Caso {
    const char* guion;
    const char* error;
  } casos[] = {
      {"[", "el guion no es JSON válido"},
      {R"({"otro": []})", "el guion es una lista de pasos o un objeto"},
      {R"([{"pulsar": "a", "escribir": "b"}])", "paso 1: un paso tiene una sola acción"},
      {R"([{"pulsar": "a"}, {"texto": "x"}])", "paso 2: falta la acción"},
      {R"([{"pulsar": "a", "Texto": "x"}])", "paso 1: clave desconocida «Texto»"},
      {R"([{"tildar": "vsItems", "fila": 1}])", "paso 1: «tildar» en una grilla lleva"},
      {R"([{"seleccionar": "vsItems", "fila": 0}])", "paso 1: «fila» es un número desde 1"},
      {R"([{"marcar": "ch", "valor": "si"}])", "paso 1: «valor» es true o false"},
  };
  for (const auto& c : casos) {
    try {
      GuionDialogos::Leer(c.guion);
      ADD_FAILURE() << c.guion << " was accepted";
    } catch (const std::invalid_argument& e) {
      EXPECT_EQ(std::string(e.what()).rfind(c.error, 0), 0u) << c.guion << "\n -> " << e.what();
    }
  }
  EXPECT_EQ(GuionDialogos::Leer(R"({"pasos": [{"cerrar": true}]})")->Informe().pasos, 1);
}

TEST(Guion, NumericPromptsTakeTheSpanishFormat) {
  auto g = GuionDialogos::Leer(R"([{"responder": "1.500,25"}, {"responder": "cancelar"},
                                   {"responder": "1,500.25"}])");
  SuiteServices s;
  g->Instalar(s);
  EXPECT_EQ(s.input->PedirNumero("Importe", "Dato", 0), 1500.25);
  EXPECT_EQ(s.input->PedirNumero("Importe", "Dato", 0), std::nullopt);
  EXPECT_EQ(s.input->PedirNumero("Importe", "Dato", 0), std::nullopt);
  const InformeGuion i = g->Informe();
  EXPECT_NE(i.error.find("«1,500.25» no es un número"), std::string::npos) << i.error;
  ASSERT_EQ(i.mensajes.size(), 3u);
  EXPECT_EQ(i.mensajes[0].respuesta, "1.500,25");
  EXPECT_EQ(i.mensajes[1].respuesta, "cancelar");
}

}  // namespace
}  // namespace kivmovfrec
