// movfrec formula editar --guion: the formula editor played by a script file; what it accepts is
// saved as formula guardar saves it.
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli_db.h"

namespace {

using kmf_cli::Has;
using kmf_cli::Result;

class MovfrecFormulaEditar : public kmf_cli::DemoMotorTest {
 protected:
  void TearDown() override { std::remove(Guion().c_str()); }
  std::string Guion() const { return base_ + ".guion.json"; }
  Result Correr(const std::string& pasos, std::vector<std::string> args) {
    std::ofstream(Guion(), std::ios::binary) << pasos;
    args.push_back("--guion");
    args.push_back(Guion());
    return Run(args);
  }
};

// Movement 6: line 1 has no formula, line 2 holds [1:145;0;0]*0.21 and line 3 the difference.
// In the editor "Pedir valor" is the second row and "Diferencia" the fifth.
TEST_P(MovfrecFormulaEditar, SavesWhatTheEditorAcceptsAndNothingWhenCancelled) {
  const std::string agregar = R"([
    {"seleccionar": "vsGrid", "fila": 2}, {"pulsar": "bfAgregar"}, {"responder": "Recargo"},
    {"pulsar": "bfFinish"}])";
  const Result guardada = Correr(agregar, {"--json", "formula", "editar", "6", "1"});
  ASSERT_EQ(guardada.status, 0) << guardada.err << guardada.out;
  const auto j = nlohmann::json::parse(guardada.out);
  EXPECT_EQ(j["Formula"], "[11:Recargo]");
  EXPECT_EQ(j["FormulaVisible"], "Pedir valor(\"Recargo\")");
  EXPECT_EQ(j["Mensajes"][0]["Respuesta"], "Recargo");
  EXPECT_TRUE(j["Error"].is_null());
  EXPECT_EQ(RunJson({"formula", "ver", "6", "1"})["Formula"], "[11:Recargo]");

  // Cancelled: exit 1, the report as text, the stored formula untouched.
  const Result cancelada = Correr(R"([{"pulsar": "bfCancel"}])", {"formula", "editar", "6", "2"});
  EXPECT_EQ(cancelada.status, 1);
  EXPECT_TRUE(Has(cancelada.out, "Formulario: frmDefFormula")) << cancelada.out;
  EXPECT_FALSE(Has(cancelada.out, "Fórmula:")) << cancelada.out;
  EXPECT_EQ(RunJson({"formula", "ver", "6", "2"})["Formula"], "[1:145;0;0]*0.21");

  // A formula the movement's rules refuse (a second difference line) is not saved.
  const Result regla =
      Correr(R"([{"escribir": "tFormula", "texto": ""}, {"seleccionar": "vsGrid", "fila": 5},
                 {"pulsar": "bfAgregar"}, {"pulsar": "bfFinish"}])",
             {"formula", "editar", "6", "2"});
  EXPECT_EQ(regla.status, 1);
  EXPECT_TRUE(Has(regla.err, "No se puede incluir la fórmula resto en más de una cuenta"))
      << regla.err;
  EXPECT_EQ(RunJson({"formula", "ver", "6", "2"})["Formula"], "[1:145;0;0]*0.21");

  ExpectFails({"formula", "editar", "6", "9", "--guion", Guion()}, 1, "no tiene el renglón");
}

KMF_INSTANTIATE_ENGINES(MovfrecFormulaEditar);

}  // namespace
