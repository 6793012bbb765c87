// Dialogs played by a script file (--guion), as a script or a person at a terminal would run
// them: the task-list editor, the movement wizard, and the frequency, user and link dialogs.
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_db.h"

namespace {

using kmf_cli::Has;
using kmf_cli::Result;

class MovfrecGuion : public kmf_cli::DemoMotorTest {
 protected:
  void TearDown() override { std::remove(Guion().c_str()); }
  std::string Guion() const { return base_ + ".guion.json"; }
  Result Correr(const std::string& pasos, const std::vector<std::string>& antes) {
    std::ofstream(Guion(), std::ios::binary) << pasos;
    std::vector<std::string> args = antes;
    args.push_back("--guion");
    args.push_back(Guion());
    return Run(args);
  }
};

TEST_P(MovfrecGuion, SavesRefusesAndReportsWhatTheEditorShowed) {
  const std::string nueva = R"([
    {"escribir": "tNombreC", "texto": "Compras del mes"},
    {"escribir": "dtVence", "texto": "20/12/2026"},
    {"pulsar": "bfNew"}, {"escribir": "tNombreI", "texto": "Pedir presupuestos"},
    {"pulsar": "bfEdit"}, {"pulsar": "bfFinish"}, {"responder": "si"}])";
  const Result guardada = Correr(nueva, {"--json", "lista-tareas"});
  ASSERT_EQ(guardada.status, 0) << guardada.err << guardada.out;
  const auto j = nlohmann::json::parse(guardada.out);
  const int id = j["Resultado"];
  EXPECT_GT(id, 0);
  EXPECT_EQ(j["Mensajes"][0]["Numero"], 646);
  EXPECT_EQ(j["Mensajes"][0]["Respuesta"], "si");
  EXPECT_TRUE(j["Error"].is_null());

  // A step the editor cannot take stops the run and says which.
  const Result parada = Correr(R"([{"pulsar": "bfNada"}])", {"lista-tareas", "10"});
  EXPECT_EQ(parada.status, 1);
  EXPECT_TRUE(Has(parada.out, "Error del guion: paso 1 (pulsar «bfNada»)")) << parada.out;

  // A script that cannot be read, or is not a script, is a usage error.
  ExpectFails({"lista-tareas", "--guion", base_ + ".no-existe"}, 2, "no se puede leer el guion");
  const Result malo = Correr(R"([{"pulsar": "bfFinish", "texto": 3}])", {"lista-tareas"});
  EXPECT_EQ(malo.status, 2);
  EXPECT_TRUE(Has(malo.err, "paso 1: «texto» debe ser un texto")) << malo.err;
}

TEST_P(MovfrecGuion, TheWizardsDialogsHandBackWhatWasChosen) {
  const Result frecuencia = Correr(
      R"([{"elegir": "cfUnidad", "opcion": "El último día hábil del mes"},
          {"escribir": "tCada", "texto": "3"}, {"pulsar": "Aceptar"}])",
      {"frecuencia"});
  EXPECT_EQ(frecuencia.status, 0) << frecuencia.err;
  EXPECT_TRUE(Has(frecuencia.out, "Valor: 500003 El último día hábil de cada 3 meses"))
      << frecuencia.out;

  // Demo users by identification: admin (1), cfernandez (4), jperez (2).
  const Result usuarios = Correr(R"([{"tildar": "vsGrid", "fila": 2, "columna": "Para"},
                                     {"pulsar": "bfFinish"}])",
                                 {"--json", "usuarios", "2, 3"});
  ASSERT_EQ(usuarios.status, 0) << usuarios.err;
  EXPECT_EQ(nlohmann::json::parse(usuarios.out)["Valor"], "4, 2 (cfernandez; jperez)");

  // Movement 17 is second in the group headed by 16: the dialog opens on that group.
  const Result vinculos = Correr(R"([{"pulsar": "bfContinuar"},
      {"escribir": "vsGrid", "fila": 1, "columna": "Orden", "texto": "3"},
      {"pulsar": "bfContinuar"}])",
                                 {"vincular", "17"});
  EXPECT_EQ(vinculos.status, 0) << vinculos.err << vinculos.out;
  EXPECT_TRUE(Has(vinculos.out, "Valor: 16:3|17:2")) << vinculos.out;
  const Result cancelado = Correr(R"([{"pulsar": "bfCancel"}])", {"vincular", "17"});
  EXPECT_EQ(cancelado.status, 1);
  ExpectFails({"vincular", "9", "--guion", Guion()}, 1, "solo se vinculan asientos");
}

#ifdef KMF_CON_QT
// Without a script the dialog opens in a window; --captura renders it to a PNG instead, on the
// offscreen platform, and exits.
TEST_P(MovfrecGuion, ACaptureWritesThePanelAskedForAndNothingElse) {
  const std::string png = base_ + ".png";
  const auto es_png = [&] { return kmf_cli::Slurp(png, false).substr(0, 4) == "\x89PNG"; };
  const Result lista = Run({"lista-tareas", "--captura", png});
  EXPECT_EQ(lista.status, 0) << lista.err;
  EXPECT_TRUE(Has(lista.out, "Captura: " + png)) << lista.out;
  EXPECT_TRUE(es_png());
  std::remove(png.c_str());

  EXPECT_EQ(Run({"vincular", "17", "--captura", png, "--panel", "2"}).status, 0);
  EXPECT_TRUE(es_png());
  std::remove(png.c_str());
  ExpectFails({"vincular", "17", "--captura", png, "--panel", "3"}, 1,
              "frmVincular no tiene el panel 3");
  EXPECT_FALSE(es_png());
  EXPECT_EQ(Run({"lista-tareas", "--captura", png, "--guion", Guion()}).status, 2);
  EXPECT_EQ(Run({"usuarios", "--panel", "2"}).status, 2) << "--panel goes with --captura";
}
#endif

TEST_P(MovfrecGuion, SavesANewEntryAndRefusesAMovementThatDoesNotExist) {
  const Result asiento = Correr(R"([
    {"escribir": "tNombre", "texto": "Cobro de alquiler"}, {"pulsar": "bfSiguiente"},
    {"escribir": "tEditCta", "texto": "1.1.01"}, {"escribir": "ocEditD", "texto": "500"},
    {"pulsar": "bfEditOK"},
    {"escribir": "tEditCta", "texto": "4.1.02"}, {"escribir": "ocEditH", "texto": "500"},
    {"pulsar": "bfEditOK"}, {"pulsar": "bfFinalizar"}, {"responder": "si"}])",
                                {"--json", "asistente"});
  ASSERT_EQ(asiento.status, 0) << asiento.err << asiento.out;
  const auto j = nlohmann::json::parse(asiento.out);
  EXPECT_GT(j["Resultado"].get<int>(), 100);
  EXPECT_EQ(j["Formulario"], "frmWMovFrec");
  EXPECT_EQ(j["Mensajes"][0]["Numero"], 801);
  const auto ver =
      nlohmann::json::parse(Run({"--json", "ver", std::to_string(j["Resultado"].get<int>())}).out);
  EXPECT_TRUE(Has(ver.dump(), "Cobro de alquiler")) << ver.dump();

  const Result ninguno = Correr("[]", {"asistente", "999"});
  EXPECT_EQ(ninguno.status, 1);
  EXPECT_TRUE(Has(ninguno.err, "no existe el movimiento frecuente 999")) << ninguno.err;
}

KMF_INSTANTIATE_ENGINES(MovfrecGuion);

}  // namespace
