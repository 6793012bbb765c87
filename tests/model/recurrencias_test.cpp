// The schedule row (genRecurrencias) against the demo data on every engine, and the summary
// texts shown beside a schedule.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>

#include "core/resumen_recurrencia.h"
#include "fakes.h"
#include "install/demo_db.h"
#include "kivmovfrec/errors.h"
#include "kivmovfrec/records.h"
#include "platform/vb/convert.h"
#include "storage/parametros.h"
#include "storage/tabla_recurrencias.h"
#include "support/demo_engine.h"

namespace kivmovfrec {
namespace {

using namespace storage;
using testing::CountRows;
using testing::FakeDBFncs;
using testing::Scalar;

Date D(const char* texto) {
  return *vb::ParseDate(texto);
}

class Recurrencias : public testing::DemoEngineTest {
 protected:
  Variant Col(int32_t id, const std::string& columna) {
    return Scalar(
        *cn, "Select " + columna + " From genRecurrencias Where RecID = " + std::to_string(id));
  }
};

TEST_P(Recurrencias, NuevaGuardaNulosYCompletaInicioYOcurrencia) {
  FakeDBFncs dbf;
  dbf.siguiente = 700;
  clsRegRecurrencia rec;
  rec.Frecuencia("200001");
  rec.FechaProxima("10/01/2027 18:30");
  rec.NumOcurrencia(0);  // stored as 1

  EXPECT_EQ(GuardarRecurrencia(*cn, dbf, rec, {}), 700);
  EXPECT_EQ(rec.ID(), 700);
  EXPECT_EQ(dbf.tablas, std::vector<std::string>{"genRecurrencias"});
  EXPECT_EQ(rec.FechaInicio(), "10/01/2027 18:30");  // copied from FechaProxima
  EXPECT_EQ(vb::CLng(Col(700, "RecNumOcurrencia")), 1);
  EXPECT_EQ(vb::CDate(Col(700, "RecFechaInicio")), D("10/01/2027 18:30"));
  EXPECT_EQ(vb::CDate(Col(700, "RecFechaProxima")), D("10/01/2027 18:30"));
  for (const char* nula :
       {"RecFechaFinal", "RecPostergado", "RecNotificar", "RecEraNotificacion"}) {
    EXPECT_TRUE(Col(700, nula).IsNull()) << nula;
  }
}

TEST_P(Recurrencias, ValoresPositivosSeGuardanYSeLeenIgual) {
  FakeDBFncs dbf;
  clsRegRecurrencia rec;
  rec.Frecuencia("000007");
  rec.FechaInicio("02/10/2026 09:00");
  rec.FechaProxima("13/11/2026 09:00");
  rec.FechaFinal("31/12/2026");
  rec.NumOcurrencia(7);
  rec.Postergado(2.0f);
  rec.NotificarDias(3.0f);
  rec.EraNotificacion("10/11/2026 09:00");
  const int32_t id = GuardarRecurrencia(*cn, dbf, rec, {});

  clsRegRecurrencia leida;
  leida.ID(id);
  ASSERT_TRUE(CargarRecurrencia(*cn, leida));
  EXPECT_EQ(std::tuple(leida.Frecuencia(), leida.FechaInicio(), leida.FechaProxima(),
                       leida.FechaFinal(), leida.NumOcurrencia(), leida.Postergado(),
                       leida.NotificarDias(), leida.EraNotificacion()),
            std::tuple("000007", "02/10/2026 09:00:00", "13/11/2026 09:00:00", "31/12/2026", 7,
                       2.0f, 3.0f, "10/11/2026 09:00:00"));
}

TEST_P(Recurrencias, FormatoSinHoraCortaLasFechasDeAgendaPeroNoLaNotificacionAnterior) {
  ParametrosBD sin_hora;
  sin_hora.formato_fecha = "yyyy-mm-dd";
  FakeDBFncs dbf;
  clsRegRecurrencia rec;
  rec.Frecuencia("200001");
  rec.FechaProxima("20/11/2026 10:00");
  rec.FechaFinal("20/12/2026 10:00");
  rec.EraNotificacion("17/11/2026 10:00");
  const int32_t id = GuardarRecurrencia(*cn, dbf, rec, sin_hora);
  EXPECT_EQ(vb::CDate(Col(id, "RecFechaProxima")), D("20/11/2026"));
  EXPECT_EQ(vb::CDate(Col(id, "RecFechaInicio")), D("20/11/2026"));
  EXPECT_EQ(vb::CDate(Col(id, "RecFechaFinal")), D("20/12/2026"));
  EXPECT_EQ(vb::CDate(Col(id, "RecEraNotificacion")), D("17/11/2026 10:00"));
}

// A counter that fails, or a next due date that is not a date, stops the save before it writes.
TEST_P(Recurrencias, GuardarFallidoNoEscribeNada) {
  FakeDBFncs falla(/*falla=*/true), dbf;
  clsRegRecurrencia sin_clave, sin_fecha;
  sin_clave.FechaProxima("01/12/2026");
  sin_fecha.FechaProxima("pronto");
  const int antes = CountRows(*cn, "Select * From genRecurrencias");
  EXPECT_THROW(GuardarRecurrencia(*cn, falla, sin_clave, {}), ComponentError);  // 8000, see NuevoID
  EXPECT_EQ(sin_clave.ID(), 0);
  EXPECT_THROW(GuardarRecurrencia(*cn, dbf, sin_fecha, {}), VbError);
  EXPECT_EQ(CountRows(*cn, "Select * From genRecurrencias"), antes);
}

TEST_P(Recurrencias, BorrarQuitaLaFilaYSinFilaNoEsError) {
  BorrarRecurrencia(*cn, 3);
  EXPECT_NO_THROW(BorrarRecurrencia(*cn, 3));
  EXPECT_EQ(CountRows(*cn, "Select * From genRecurrencias Where RecID In (2, 3, 4)"), 2);
  // Reading a row that is not there leaves the record as it was.
  clsRegRecurrencia ninguna;
  ninguna.ID(3);
  ninguna.Frecuencia("x");
  EXPECT_FALSE(CargarRecurrencia(*cn, ninguna));
  EXPECT_EQ(ninguna.Frecuencia(), "x");
}

KMF_INSTANTIATE_ENGINES(Recurrencias);

clsRegRecurrencia Agenda(const char* codigo, const char* inicio, const char* proxima, int n) {
  clsRegRecurrencia rec;
  rec.Frecuencia(codigo);
  rec.FechaInicio(inicio);
  rec.FechaProxima(proxima);
  rec.NumOcurrencia(n);
  return rec;
}

TEST(ResumenRecurrencia, TextosYCuandoSeMuestraYaOcurrio) {
  const auto tercera = Agenda("200001", "10/01/2026", "10/03/2026", 3);
  EXPECT_EQ(core::TextoSeInicio(tercera), "Se inició el Sábado, 10 de Enero de 2026");
  EXPECT_EQ(core::TextoYaOcurrio(tercera), "Ya ocurrió 2 veces.");
  EXPECT_TRUE(core::MostrarYaOcurrio(tercera));
  EXPECT_EQ(core::TextoSeInicio(Agenda("200001", "", "10/02/2026", 1)), "");

  // First occurrence of a repeating schedule still on its start date: nothing to tell.
  EXPECT_FALSE(core::MostrarYaOcurrio(Agenda("200001", "10/01/2026", "2026-01-10", 1)));
  EXPECT_TRUE(core::MostrarYaOcurrio(Agenda("200001", "10/01/2026", "10/02/2026", 1)));
  // Once only: only the occurrence number counts.
  EXPECT_FALSE(core::MostrarYaOcurrio(Agenda("000000", "10/01/2026", "10/02/2026", 1)));
  EXPECT_TRUE(core::MostrarYaOcurrio(Agenda("000000", "10/01/2026", "10/01/2026", 2)));
}

}  // namespace
}  // namespace kivmovfrec
