// The frequency editor: composing every kind of code, its preview, its refusals.
#include <gtest/gtest.h>

#include "kivmovfrec/guion.h"
#include "kivmovfrec/vb.h"
#include "platform/controls/memoria.h"
#include "platform/vb/dates.h"
#include "resources/msg.h"
#include "ui/frequency/frm_frecuencia.h"

namespace kivmovfrec::ui {
namespace {

using schedule::Frequency;
using schedule::FrequencyUnit;

class FijoHoy final : public IClock {
 public:
  Date Now() override { return vb::DateSerial(2026, 8, 1); }
  Date Today() override { return Now(); }
};

struct Editor {
  ContextoMF ctx;
  std::shared_ptr<GuionDialogos> guion;
  std::optional<Frequency> Editar(const char* pasos,
                                  Frequency inicial = {FrequencyUnit::Months, 1}) {
    guion = GuionDialogos::Leer(pasos);
    ctx.servicios.clock = std::make_shared<FijoHoy>();
    guion->Instalar(ctx.servicios);
    return frmFrecuencia(ctx).Edit(inicial);
  }
};

TEST(EditorFrecuencia, ComposesEveryKindOfCode) {
  struct Caso {
    const char* pasos;
    int32_t codigo;
  } casos[] = {
      {R"([{"elegir": "cfUnidad", "opcion": "Cada tantos días"},
           {"escribir": "tCada", "texto": "10"}, {"pulsar": "Aceptar"}])",
       10},
      {R"([{"elegir": "cfUnidad", "opcion": "Cada tantas semanas"},
           {"escribir": "tCada", "texto": "2"},
           {"elegir": "cfFinDeSemana", "opcion": "Pasarlo al día hábil anterior"},
           {"pulsar": "Aceptar"}])",
       710002},
      {R"([{"escribir": "tCada", "texto": "3"},
           {"elegir": "cfFinDeSemana", "opcion": "Pasarlo al día hábil siguiente"},
           {"pulsar": "Aceptar"}])",
       620003},
      {R"([{"elegir": "cfUnidad", "opcion": "Un día de la semana del mes"},
           {"elegir": "cfOrdinal", "opcion": "último"}, {"elegir": "cfDiaSemana", "opcion": "viernes"},
           {"escribir": "tCada", "texto": "2"}, {"pulsar": "Aceptar"}])",
       495002},
      {R"([{"elegir": "cfUnidad", "opcion": "El último día hábil del mes"}, {"pulsar": "Aceptar"}])",
       500001},
  };
  for (const auto& c : casos) {
    Editor e;
    const auto f = e.Editar(c.pasos);
    EXPECT_EQ(e.guion->Informe().error, "") << c.pasos;
    ASSERT_TRUE(f) << c.pasos;
    EXPECT_EQ(f->code(), c.codigo) << c.pasos;
  }
  // The editor opens on the frequency it is given.
  Editor e;
  EXPECT_EQ(e.Editar(R"([{"pulsar": "Aceptar"}])", *schedule::FrequencyFromCode(421001))->code(),
            421001);
}

TEST(EditorFrecuencia, RefusesAStepOutOfRangeAndKeepsWhatDoesNotApplyDisabled) {
  Editor e;
  const auto f = e.Editar(R"([
      {"elegir": "cfUnidad", "opcion": "Un día de la semana del mes"},
      {"escribir": "tCada", "texto": "1000"}, {"pulsar": "Aceptar"},
      {"escribir": "tCada", "texto": "0"}, {"pulsar": "Aceptar"},
      {"elegir": "cfFinDeSemana", "opcion": "Dejarlo ese día"}])");
  const InformeGuion i = e.guion->Informe();
  EXPECT_FALSE(f) << "the run stopped: nothing is handed back";
  ASSERT_EQ(i.mensajes.size(), 2u) << "a weekday rule counts at most 999 months; 0 never repeats";
  EXPECT_EQ(i.mensajes[0].numero, msg::kCampoNoValido);
  EXPECT_NE(i.error.find("«cfFinDeSemana» está deshabilitado"), std::string::npos) << i.error;
  EXPECT_EQ(i.foco, "tCada");
  EXPECT_EQ(i.seleccion, "0");

  EXPECT_FALSE(e.Editar(R"([{"escribir": "tCada", "texto": "4"}, {"pulsar": "Cancelar"}])"));
}

TEST(EditorFrecuencia, PreviewsTheFirstFiveDueDatesFromTheStart) {
  EXPECT_EQ(ProximosVencimientos(*schedule::FrequencyFromCode(421001), vb::DateSerial(2024, 1, 1)),
            "08/01/2024, 12/02/2024, 11/03/2024, 08/04/2024, 13/05/2024");
  EXPECT_EQ(ProximosVencimientos(*schedule::FrequencyFromCode(200001), vb::DateSerial(2024, 1, 31)),
            "31/01/2024, 29/02/2024, 31/03/2024, 30/04/2024, 31/05/2024");
  EXPECT_EQ(ProximosVencimientos(Frequency{}, vb::DateSerial(2024, 1, 31)), "31/01/2024");

  // The label follows the controls: today first, then the start typed.
  std::vector<std::string> vistos;
  ContextoMF ctx;
  ctx.servicios.clock = std::make_shared<FijoHoy>();
  ctx.servicios.formularios =
      std::make_shared<controles::memoria::Fabrica>([&](controles::memoria::Formulario& f) {
        vistos.push_back(f.Buscar("lProximos")->Caption());
        f.Elegir("cfUnidad", "El último día hábil del mes");
        vistos.push_back(f.Buscar("lProximos")->Caption());
        f.Escribir("dtDesde", "01/05/2026");
        vistos.push_back(f.Buscar("lProximos")->Caption());
        vistos.push_back(f.Buscar("lDescripcion")->Caption());
        f.Escribir("dtDesde", "31/02/2026");
        vistos.push_back(f.Buscar("lProximos")->Caption());
      });
  frmFrecuencia(ctx).Edit({FrequencyUnit::Months, 1});
  EXPECT_EQ(vistos,
            (std::vector<std::string>{"Próximos vencimientos: 01/08/2026, 01/09/2026, 01/10/2026, "
                                      "01/11/2026, 01/12/2026",
                                      "Próximos vencimientos: 31/08/2026, 30/09/2026, 30/10/2026, "
                                      "30/11/2026, 31/12/2026",
                                      "Próximos vencimientos: 29/05/2026, 30/06/2026, 31/07/2026, "
                                      "31/08/2026, 30/09/2026",
                                      "El último día hábil de cada mes", ""}));
}

}  // namespace
}  // namespace kivmovfrec::ui
