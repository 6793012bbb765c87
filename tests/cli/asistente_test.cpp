// movfrec asistente --guion: the movement wizard played by a script file, with the report printed
// as lista-tareas prints it.
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_db.h"

namespace {

using kmf_cli::Has;
using kmf_cli::Result;

class MovfrecAsistente : public kmf_cli::DemoMotorTest {
 protected:
  void TearDown() override { std::remove(Guion().c_str()); }
  std::string Guion() const { return base_ + ".asistente.json"; }
  Result Correr(const std::string& pasos, const std::vector<std::string>& antes) {
    std::ofstream(Guion(), std::ios::binary) << pasos;
    std::vector<std::string> args = antes;
    args.push_back("--guion");
    args.push_back(Guion());
    return Run(args);
  }
};

TEST_P(MovfrecAsistente, SavesANewEntryAndRefusesAMovementThatDoesNotExist) {
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

KMF_INSTANTIATE_ENGINES(MovfrecAsistente);

}  // namespace
