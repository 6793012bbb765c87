#include <gtest/gtest.h>

#include <memory>

#include "core/clock.h"
#include "fakes.h"
#include "kivmovfrec/records.h"

namespace kivmovfrec {
namespace {

using testing::FixedTestClock;

TEST(RegMovimientoFrecuente, NuevoTomaElMomentoDelRelojInstalado) {
  const Date construccion{45500.75};
  core::ScopedClock reloj(std::make_shared<FixedTestClock>(construccion));
  clsRegMovimientoFrecuente mf;
  EXPECT_EQ(mf.ID(), 0);
  EXPECT_EQ(mf.Estado(), 0);
  EXPECT_EQ(mf.Vista(), 0);
  EXPECT_EQ(ToInt(mf.Tipo()), 0);
  EXPECT_EQ(mf.FechaEstado(), construccion);
  EXPECT_EQ(mf.Nombre(), "");
}

TEST(RegMovimientoFrecuente, ClassInitializeSoloReponeEstadoFechaYVista) {
  auto reloj = std::make_shared<FixedTestClock>(Date{45000.0});
  core::ScopedClock guard(reloj);
  clsRegMovimientoFrecuente mf;
  mf.Estado(enuEstadoMF::Papelera);
  mf.Vista(2);
  mf.ID(77);
  mf.Nombre("Alquiler");
  mf.FechaEstado(Date{1.0});
  {
    core::ScopedClock despues(std::make_shared<FixedTestClock>(Date{45001.5}));
    mf.Class_Initialize();
  }
  EXPECT_EQ(mf.Estado(), ToInt(enuEstadoMF::EnProceso));
  EXPECT_EQ(mf.Vista(), 0);
  EXPECT_EQ(mf.FechaEstado(), Date{45001.5});
  EXPECT_EQ(mf.ID(), 77);
  EXPECT_EQ(mf.Nombre(), "Alquiler");
}

TEST(RelojDelProceso, SinRelojInstaladoUsaElDelSistemaYSeRestaura) {
  const Date antes = core::Now();
  {
    core::ScopedClock fijo(std::make_shared<FixedTestClock>(Date{100.25}));
    EXPECT_EQ(core::Now(), Date{100.25});
    EXPECT_EQ(core::Today(), Date{100.0});
  }
  const Date despues = core::Now();
  // The system clock again: today's date, well after the fixed day and not before `antes`.
  EXPECT_GT(despues.serial, 40000.0);
  EXPECT_GE(despues.serial, antes.serial);
  EXPECT_EQ(core::Today().serial, static_cast<double>(static_cast<long long>(despues.serial)));
}

TEST(RegRecurrencia, PosponerEsPostergadoRedondeadoALaPar) {
  clsRegRecurrencia rec;
  rec.Posponer(3);
  EXPECT_EQ(rec.Postergado(), 3.0f);
  // Rounded, not truncated; halves to even, as VB converts.
  const std::pair<float, int16_t> casos[] = {
      {2.6f, 3}, {2.4f, 2}, {2.5f, 2}, {3.5f, 4}, {-1.6f, -2}};
  for (const auto& [postergado, dias] : casos) {
    rec.Postergado(postergado);
    EXPECT_EQ(rec.Posponer(), dias) << postergado;
  }
  rec.Postergado(40000.0f);  // beyond an Integer: overflow
  try {
    (void)rec.Posponer();
    ADD_FAILURE() << "se esperaba VbError";
  } catch (const VbError& e) {
    EXPECT_EQ(e.number(), 6);
  }
}

}  // namespace
}  // namespace kivmovfrec
