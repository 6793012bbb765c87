// State changes and deletion from the bin: questions, rights by kind of movement, linked
// movements.
#include <string>

#include "fachada_fixture.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::testing {
namespace {

const char* const kSinDerechos =
    "Su usuario no está habilitado para acceder a ésta opción.\n"
    "Consulte con el administrador del sistema.";

class Estados : public Fachada {};

TEST_P(Estados, SinLaLetraSeRechazaConElTituloDelTipo) {
  sv.rights->Set(1, "PasajeAsientos", "AM");  // no E
  EXPECT_FALSE(mf.CambiarEstadoMF(1, enuEstadoMF::Papelera, false));
  EXPECT_FALSE(mf.CambiarEstadoMF(6, enuEstadoMF::Realizado, false));  // voucher: no rights
  ASSERT_EQ(Mensajes().size(), 2u);
  EXPECT_EQ(Mensajes()[0].request.text, kSinDerechos);
  EXPECT_EQ(Mensajes()[0].request.numero, 870) << "a step script reports the catalogue number";
  EXPECT_EQ(Mensajes()[0].request.caption, "Asistente de Asientos");
  EXPECT_EQ(Mensajes()[0].request.icon, MsgIcon::Exclamation);
  EXPECT_EQ(Mensajes()[0].request.buttons, MsgButtons::OK);
  EXPECT_EQ(Mensajes()[1].request.caption, "Asistente de Comprobantes");
  EXPECT_EQ(Estado(1), 0);
  EXPECT_EQ(Estado(6), 0);

  // A linked movement is refused even with every letter.
  sv.rights->Set(1, "PasajeAsientos", "AMEeTQ");
  EXPECT_FALSE(mf.CambiarEstadoMF(16, enuEstadoMF::Papelera, false));
  EXPECT_EQ(Mensajes().back().request.text,
            "No puede eliminar un movimiento vinculado, para eliminarlo primero debe quitar los "
            "vínculos.");
  EXPECT_EQ(Mensajes().back().request.caption, "Asistente de Asientos");
  EXPECT_EQ(Estado(16), 0);

  // The letters are compared without regard to case.
  sv.rights->Set(1, "PasajeAsientos", "am");
  EXPECT_TRUE(mf.CambiarEstadoMF(1, enuEstadoMF::Realizado, false));
  EXPECT_EQ(Estado(1), 1);
  EXPECT_EQ(vb::DateOnly(vb::CDate(Mov(1, "MFrFechaEstado"))), kHoy);
}

TEST_P(Estados, AvisoNoNecesitaDerechosNiSiEstaVinculado) {
  cn->Execute("Update genMovimientosFrecuentes Set MFrMovVinculado = 9 Where MFrID = 8");
  const auto lineas_antes = Scalar(*cn, "Select Count(*) From genRenglonMovFrecuentes");
  EXPECT_TRUE(mf.CambiarEstadoMF(8, enuEstadoMF::Papelera, false));
  EXPECT_EQ(Estado(8), 9);
  EXPECT_TRUE(Mensajes().empty());
  // Header only: the schedule row and the lines stay.
  EXPECT_EQ(vb::CLng(Mov(8, "MFrRecurrencia")), 5);
  EXPECT_EQ(Scalar(*cn, "Select Count(*) From genRenglonMovFrecuentes"), lineas_antes);
}

TEST_P(Estados, PreguntaSegunElEstadoYRespuestaNo) {
  sv.rights->Set(1, "PasajeAsientos", "ME");
  sv.messages->Answer(kMsgNo);
  EXPECT_FALSE(mf.CambiarEstadoMF(1, enuEstadoMF::Papelera));
  sv.messages->Answer(kMsgYes);
  EXPECT_TRUE(mf.CambiarEstadoMF(2, enuEstadoMF::Realizado));
  ASSERT_EQ(Mensajes().size(), 2u);
  EXPECT_EQ(Mensajes()[0].request.text, "¿Confirma enviar a la papelera?");
  EXPECT_EQ(Mensajes()[1].request.text, "¿Confirma cambiar el estado del registro?");
  EXPECT_EQ(Mensajes()[1].request.caption, "Movimientos Frecuentes");
  EXPECT_EQ(Mensajes()[1].request.icon, MsgIcon::Question);
  EXPECT_EQ(Mensajes()[1].request.buttons, MsgButtons::YesNo);
  EXPECT_EQ(Estado(1), 0);
  EXPECT_EQ(Estado(2), 1);
  EXPECT_FALSE(mf.CambiarEstadoMF(4242, enuEstadoMF::Realizado, false));
}

class Papelera : public Fachada {};

// Deleting from the bin takes the letter E of the bin option (in either case) and a Yes.
TEST_P(Papelera, SoloConLaLetraEYUnSiSeBorra) {
  const auto antes = Tablas();
  sv.rights->Set(1, "Papelera", "AMT");
  EXPECT_FALSE(mf.DeleteRegistroMFConfirmar(20));
  ASSERT_EQ(Mensajes().size(), 1u);
  EXPECT_EQ(Mensajes()[0].request.text, kSinDerechos);
  EXPECT_EQ(Mensajes()[0].request.caption, "Asistente de Asientos");
  sv.rights->Set(1, "Papelera", "e");
  sv.messages->Answer(kMsgNo);
  EXPECT_FALSE(mf.DeleteRegistroMFConfirmar(20));
  EXPECT_FALSE(mf.DeleteRegistroMFConfirmar(4242));
  EXPECT_EQ(Tablas(), antes);

  sv.messages->Clear();
  sv.rights->Set(1, "Papelera", "E");
  sv.messages->Answer(kMsgYes);
  EXPECT_TRUE(mf.DeleteRegistroMFConfirmar(20));
  EXPECT_EQ(CountRows(*cn, "Select * From genMovimientosFrecuentes Where MFrID = 20"), 0);
  ASSERT_EQ(Mensajes().size(), 1u);
  EXPECT_EQ(Mensajes()[0].request.text, "¿Confirma eliminar el registro?");
  EXPECT_EQ(Mensajes()[0].request.default_button, 2);  // No is the default
  EXPECT_FALSE(cn->InTransaction());
}

KMF_INSTANTIATE_ENGINES(Estados);
KMF_INSTANTIATE_ENGINES(Papelera);

}  // namespace
}  // namespace kivmovfrec::testing
