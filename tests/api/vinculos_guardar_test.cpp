// clsMovFrecuente::GuardarVinculos on the demo database of every engine: a link text becomes the
// group's rows, and every refusal leaves the tables as they were.
#include <string>

#include "api/fachada_fixture.h"

namespace kivmovfrec::testing {
namespace {

class GuardarVinculos : public Fachada {
 protected:
  void SetUpDatabase() override {
    Fachada::SetUpDatabase();
    sv.rights->Set(1, "PasajeAsientos", "M");
  }
  // "id:orden" of each member of `id`'s group in execution order, and the group's head.
  std::string Grupo(int32_t id) {
    const GrupoVinculado g = mf.GrupoEnOrden(id);
    std::string texto = std::to_string(g.id) + ":";
    for (const MiembroGrupo& m : g.miembros)
      texto += " " + std::to_string(m.id) + "/" + std::to_string(m.orden);
    return texto;
  }
};

TEST_P(GuardarVinculos, TheTextBecomesTheGroupAndMembersLeftOutLeaveIt) {
  ASSERT_TRUE(mf.GuardarVinculos(18, "5:2|2:1|18:3")) << mf.UltimoError();
  EXPECT_EQ(Grupo(18), "2: 2/1 5/2 18/3");  // headed by the one that runs first
  ASSERT_TRUE(mf.GuardarVinculos(18, "18:1|5:2"));
  EXPECT_EQ(Grupo(18), "18: 18/1 5/2");
  EXPECT_TRUE(Mov(2, "MFrMovVinculado").IsNull());
  ASSERT_TRUE(mf.GuardarVinculos(18, ""));
  EXPECT_EQ(Grupo(18), "18: 18/0");  // alone again
  EXPECT_TRUE(Mov(18, "MFrMovVinculado").IsNull());
  EXPECT_TRUE(Mov(5, "MFrMovVinculado").IsNull());
}

TEST_P(GuardarVinculos, RefusalsWriteNothing) {
  struct Caso {
    int32_t id;
    const char* vinculos;
    const char* derechos;
    const char* mensaje;  // the start of the refusal shown
  };
  for (const Caso& c :
       {Caso{18, "20:1|18:2", "M", "Alguno de los movimientos vinculados fue eliminado."},
        Caso{3, "3:1|1:2", "M", "No se pueden establecer vínculos con más de 1"},
        Caso{18, "18:1|5:x", "M", ""},  // unreadable: the reader's own reason
        Caso{18, "18:1|5:2", "A", "Su usuario no está habilitado"}}) {
    SCOPED_TRACE(c.vinculos);
    sv.rights->Set(1, "PasajeAsientos", c.derechos);
    sv.messages->Clear();
    const Snapshot antes = Tablas();
    EXPECT_FALSE(mf.GuardarVinculos(c.id, c.vinculos));
    EXPECT_EQ(Tablas(), antes);
    ASSERT_EQ(Mensajes().size(), 1u);
    EXPECT_FALSE(Mensajes()[0].request.text.empty());
    EXPECT_EQ(Mensajes()[0].request.text.rfind(c.mensaje, 0), 0u) << Mensajes()[0].request.text;
    EXPECT_EQ(Mensajes()[0].request.icon, MsgIcon::Exclamation);
  }
  EXPECT_FALSE(mf.GuardarVinculos(999, "999:1|5:2"));  // no such movement
}

KMF_INSTANTIATE_ENGINES(GuardarVinculos);

}  // namespace
}  // namespace kivmovfrec::testing
