#include <gtest/gtest.h>

#include <memory>

#include "core/clock.h"
#include "kivmovfrec/records.h"
#include "platform/suite/clock.h"

namespace kivmovfrec {
namespace {

// A clock stopped at `hora` (a fraction of a day) of day `dia`.
std::shared_ptr<suite::FixedClock> Reloj(double dia, double hora) {
  return std::make_shared<suite::FixedClock>(Date{dia}, hora);
}

// A new header is in process as of the installed clock's moment; Class_Initialize resets only
// the state, its moment and the view.
TEST(RegMovimientoFrecuente, EstadoFechaYVistaDelRelojInstalado) {
  core::ScopedClock reloj(Reloj(45500, 0.75));
  clsRegMovimientoFrecuente mf;
  EXPECT_EQ(mf.Estado(), ToInt(enuEstadoMF::EnProceso));
  EXPECT_EQ(mf.FechaEstado(), Date{45500.75});
  mf.Estado(enuEstadoMF::Papelera);
  mf.Vista(2);
  mf.ID(77);
  mf.Nombre("Alquiler");
  {
    core::ScopedClock despues(Reloj(45501, 0.5));
    mf.Class_Initialize();
  }
  EXPECT_EQ(mf.Estado(), ToInt(enuEstadoMF::EnProceso));
  EXPECT_EQ(mf.Vista(), 0);
  EXPECT_EQ(mf.FechaEstado(), Date{45501.5});
  EXPECT_EQ(mf.ID(), 77);
  EXPECT_EQ(mf.Nombre(), "Alquiler");
}

TEST(RelojDelProceso, SinRelojInstaladoUsaElDelSistemaYSeRestaura) {
  const Date antes = core::Now();
  {
    core::ScopedClock fijo(Reloj(100, 0.25));
    EXPECT_EQ(core::Now(), Date{100.25});
    EXPECT_EQ(core::Today(), Date{100.0});
  }
  const Date despues = core::Now();
  // The system clock again: not before `antes`, and today is its date.
  EXPECT_GE(despues.serial, antes.serial);
  EXPECT_GT(despues.serial, 40000.0);
  EXPECT_EQ(core::Today().serial, static_cast<double>(static_cast<long long>(despues.serial)));
}

TEST(RegRecurrencia, PosponerEsPostergadoRedondeadoALaPar) {
  clsRegRecurrencia rec;
  rec.Posponer(3);
  EXPECT_EQ(rec.Postergado(), 3.0f);
  // Rounded, not truncated; halves to even, as VB converts.
  for (const auto& [postergado, dias] :
       {std::pair{2.6f, 3}, {2.4f, 2}, {2.5f, 2}, {3.5f, 4}, {-1.6f, -2}}) {
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
