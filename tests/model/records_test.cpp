#include <gtest/gtest.h>

#include <memory>

#include "core/clock.h"
#include "fakes.h"
#include "kivmovfrec/records.h"

namespace kivmovfrec {
namespace {

using testing::FixedTestClock;

TEST(Enumeraciones, ValoresAlmacenados) {
  EXPECT_EQ(ToInt(enuTipoMovFrec::Asiento), 1);
  EXPECT_EQ(ToInt(enuTipoMovFrec::CheckList), 5);
  EXPECT_EQ(ToInt(enuEstadoMF::Realizado), 1);
  EXPECT_EQ(ToInt(enuEstadoMF::Papelera), 9);
  EXPECT_EQ(ToInt(enuClasificacionMF::Sistema), 1);
  EXPECT_EQ(ToInt(enuTipoRecurrencia::Anual), 3);
  EXPECT_EQ(kTipoItemCheckList, 6);
}

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

TEST(RegMovimientoFrecuente, TipoSinMiembroSeConserva) {
  clsRegMovimientoFrecuente mf;
  mf.Tipo(static_cast<enuTipoMovFrec>(kTipoItemCheckList));
  EXPECT_EQ(ToInt(mf.Tipo()), 6);
}

TEST(RegRenglonMF, TodoEmpiezaEnCero) {
  clsRegRenglonMF r;
  EXPECT_EQ(r.idMF(), 0);
  EXPECT_EQ(r.Orden(), 0);
  EXPECT_FALSE(r.AlDebe());
  EXPECT_EQ(r.Formula(), "");
  EXPECT_EQ(r.ValorTC(), 0.0);
  EXPECT_EQ(r.TipoCambio(), 0);
}

TEST(RegRecurrencia, PosponerYPostergadoSonLaMismaCantidad) {
  clsRegRecurrencia rec;
  rec.Posponer(3);
  EXPECT_EQ(rec.Postergado(), 3.0f);
  rec.Postergado(2.6f);
  EXPECT_EQ(rec.Posponer(), 3);  // rounded, not truncated
  rec.Postergado(2.4f);
  EXPECT_EQ(rec.Posponer(), 2);
  rec.Postergado(2.5f);
  EXPECT_EQ(rec.Posponer(), 2);  // halves to even, as VB converts
  rec.Postergado(3.5f);
  EXPECT_EQ(rec.Posponer(), 4);
  rec.Postergado(-1.6f);
  EXPECT_EQ(rec.Posponer(), -2);
}

TEST(RegRecurrencia, PostergadoFueraDeRangoEsDesbordamiento) {
  clsRegRecurrencia rec;
  rec.Postergado(40000.0f);
  try {
    (void)rec.Posponer();
    FAIL() << "se esperaba VbError";
  } catch (const VbError& e) {
    EXPECT_EQ(e.number(), 6);
  }
}

}  // namespace
}  // namespace kivmovfrec
