#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/records.h"
#include "platform/suite/clock.h"

namespace kivmovfrec {
namespace {

// A clock stopped at `hora` (a fraction of a day) of day `dia`.
std::shared_ptr<suite::FixedClock> Reloj(double dia, double hora) {
  return std::make_shared<suite::FixedClock>(Date{dia}, hora);
}

// A new header is in process as of its clock's moment; Class_Initialize resets only the state,
// its moment and the view. Without a clock the moment is the machine's.
TEST(RegMovimientoFrecuente, EstadoFechaYVistaDelReloj) {
  auto reloj = Reloj(45500, 0.75);
  clsRegMovimientoFrecuente mf(*reloj);
  EXPECT_EQ(mf.Estado(), ToInt(enuEstadoMF::EnProceso));
  EXPECT_EQ(mf.FechaEstado(), Date{45500.75});
  mf.Estado(enuEstadoMF::Papelera);
  mf.Vista(2);
  mf.ID(77);
  mf.Nombre("Alquiler");
  mf.Class_Initialize(*Reloj(45501, 0.5));
  EXPECT_EQ(std::tuple(mf.Estado(), mf.Vista(), mf.FechaEstado(), mf.ID(), mf.Nombre()),
            std::tuple(ToInt(enuEstadoMF::EnProceso), 0, Date{45501.5}, 77, "Alquiler"));
  // A movement built with a clock stamps its header with it.
  EXPECT_EQ(clsMFTipo(reloj).MovFrecuente()->FechaEstado(), Date{45500.75});
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
