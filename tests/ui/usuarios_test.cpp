// The user picker's data: which users are offered, how a choice ticks them, what is handed back.
#include <gtest/gtest.h>

#include "kivmovfrec/guion.h"
#include "support/demo_engine.h"
#include "ui/user_picker/eleccion_usuarios.h"
#include "ui/user_picker/frm_find_user.h"

namespace kivmovfrec::ui {
namespace {

using testing::DemoEngineTest;

TEST(CodigosUsuario, BlanksAreIgnoredAndNonCodesDropped) {
  EXPECT_EQ(LeerCodigosUsuario(" 4 ,1,\t2"), (std::vector<int32_t>{4, 1, 2}));
  EXPECT_EQ(LeerCodigosUsuario("1,,x,0,-2,3.5,99999999999,7"), (std::vector<int32_t>{1, 7}));
  EXPECT_TRUE(LeerCodigosUsuario("").empty());
  EXPECT_TRUE(LeerCodigosUsuario(" , ").empty());
}

class SelectorUsuarios : public DemoEngineTest {};

// The demo users: 0 'sistema' (never offered), 1 admin, 2 jperez, 3 lrodriguez (disabled),
// 4 cfernandez.
TEST_P(SelectorUsuarios, OffersEnabledUsersByIdentificationTickingTheGivenCodes) {
  const auto filas = CargarUsuarios(*cn, " 4, 2 ,3,0,77");
  ASSERT_EQ(filas.size(), 3u);
  EXPECT_EQ(filas[0].identificacion, "admin");
  EXPECT_EQ(filas[0].nombre, "María García");
  EXPECT_FALSE(filas[0].para);
  EXPECT_EQ(filas[1].identificacion, "cfernandez");
  EXPECT_TRUE(filas[1].para);
  EXPECT_EQ(filas[2].codigo, 2);
  EXPECT_TRUE(filas[2].para);

  // Disabled (3), system (0) and unknown (77) codes are gone from what comes back.
  const auto eleccion = Elegidos(filas);
  EXPECT_EQ(eleccion.codigos, "4, 2");
  EXPECT_EQ(eleccion.identificaciones, "cfernandez; jperez");

  const auto nadie = Elegidos(CargarUsuarios(*cn, ""));
  EXPECT_EQ(nadie.codigos + nadie.identificaciones, "");
}

TEST_P(SelectorUsuarios, NamesAreTrimmedAndNullsReadAsEmpty) {
  cn->Execute(
      "Insert Into admUsuarios (UsuCodigo, UsuIdentificacion, UsuNombres, UsuApellidos, "
      "UsuHabilitado) Values (9, '  aaa ', ' Ana ', Null, 1)");
  const auto filas = CargarUsuarios(*cn, "9");
  ASSERT_FALSE(filas.empty());
  EXPECT_EQ(filas[0].identificacion, "aaa");
  EXPECT_EQ(filas[0].nombre, "Ana ");
  EXPECT_EQ(Elegidos(filas).identificaciones, "aaa");
}

// The dialog, played by a step script: rows are admin, cfernandez, jperez.
TEST_P(SelectorUsuarios, TheDialogHandsBackWhatIsTickedOnlyOnAccept) {
  const auto correr = [&](const char* guion, std::string_view codigos) {
    auto g = GuionDialogos::Leer(guion);
    SuiteServices s;
    g->Instalar(s);
    auto r = frmFindUser(*cn, s, 1).Mostrar(codigos);
    EXPECT_EQ(g->Informe().error, "") << guion;
    return std::pair{r, g->Informe()};
  };
  auto [elegidos, informe] = correr(R"([
      {"tildar": "vsGrid", "fila": 1, "columna": "Para"},
      {"tildar": "vsGrid", "fila": 3, "columna": "Para", "valor": false},
      {"pulsar": "Ayuda"}, {"pulsar": "&Aceptar"}])",
                                    "2, 77");
  ASSERT_TRUE(elegidos);
  EXPECT_EQ(elegidos->codigos, "1");
  EXPECT_EQ(elegidos->identificaciones, "admin");
  EXPECT_EQ(informe.ayuda, std::vector<int>{330});

  EXPECT_FALSE(correr(R"([{"tildar": "vsGrid", "fila": 1, "columna": "Para"},
                          {"pulsar": "bfCancel"}])",
                      "2")
                   .first)
      << "Cancelar hands nothing back";
  EXPECT_FALSE(correr(R"([{"cerrar": true}])", "2").first);

  // Only the tick can be edited.
  auto g = GuionDialogos::Leer(R"([{"escribir": "vsGrid", "fila": 1, "columna": "Nombre",
                                    "texto": "x"}])");
  SuiteServices s;
  g->Instalar(s);
  EXPECT_FALSE(frmFindUser(*cn, s, 1).Mostrar("2"));
  EXPECT_NE(g->Informe().error.find("no se escribe en la columna"), std::string::npos);
}

KMF_INSTANTIATE_ENGINES(SelectorUsuarios);

}  // namespace
}  // namespace kivmovfrec::ui
