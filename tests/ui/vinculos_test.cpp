// The link text exchanged between the wizard and the link dialog, and the order step's rule.
#include <gtest/gtest.h>

#include <map>

#include "kivmovfrec/guion.h"
#include "platform/controls/memoria.h"
#include "resources/msg.h"
#include "support/demo_engine.h"
#include "ui/links/frm_vincular.h"
#include "ui/links/texto_vinculos.h"

namespace kivmovfrec::ui {
namespace {

TEST(TextoVinculos, ReadsPairsInTextOrderAndWritesThemBack) {
  const auto r = LeerVinculos("12:1|15:2|7:3");
  ASSERT_TRUE(r.ok()) << r.error;
  EXPECT_EQ(r.vinculos, (std::vector<Vinculo>{{12, 1}, {15, 2}, {7, 3}}));
  EXPECT_EQ(EscribirVinculos(r.vinculos), "12:1|15:2|7:3");

  // Blanks around numbers are a typing habit, not an error; orders need not be consecutive.
  const auto blancos = LeerVinculos(" 12 : 10 |\t7:3 ");
  ASSERT_TRUE(blancos.ok()) << blancos.error;
  EXPECT_EQ(blancos.vinculos, (std::vector<Vinculo>{{12, 10}, {7, 3}}));

  EXPECT_TRUE(LeerVinculos("").vinculos.empty());
  EXPECT_TRUE(LeerVinculos("   ").ok());
  EXPECT_EQ(EscribirVinculos({}), "");
}

TEST(TextoVinculos, RefusesWhatWouldStoreAWrongGroupNamingThePair) {
  const std::string prefijo = "Los vínculos no son válidos: el ";
  const auto mal_formado = [&](const char* texto, int par) {
    const auto r = LeerVinculos(texto);
    EXPECT_EQ(r.error,
              prefijo + "par " + std::to_string(par) + " no tiene la forma movimiento:orden.")
        << texto;
    EXPECT_TRUE(r.vinculos.empty()) << texto;
  };
  for (const char* texto : {"12:1|15", "12:1||7:3", "12:1|"}) mal_formado(texto, 2);
  for (const char* texto : {"12:", ":1", "00x:1", "12:0", "-12:1", "12:1:2", "1 2:1", "12:1,5",
                            "2147483648:1", "12:1;Delete From x"}) {
    mal_formado(texto, 1);
  }
  // MFrMVOrden is a byte: 256 would be stored as something else.
  EXPECT_EQ(LeerVinculos("12:1|7:256").error,
            prefijo + "orden del par 2 debe estar entre 1 y 255.");
  EXPECT_EQ(LeerVinculos("12:1|7:2|12:3").error,
            prefijo + "movimiento del par 3 figura más de una vez.");
  EXPECT_EQ(LeerVinculos(" 0 :2|7:1").vinculos, (std::vector<Vinculo>{{0, 2}, {7, 1}}))
      << "0 is the movement being edited while it is new";
  const auto limite = LeerVinculos("2147483647:255");
  ASSERT_TRUE(limite.ok()) << limite.error;
  EXPECT_EQ(limite.vinculos, (std::vector<Vinculo>{{2147483647, 255}}));
}

TEST(OrdenVinculos, EveryRowNeedsItsOwnOrder) {
  EXPECT_EQ(PrimerOrdenIncorrecto({"1", "2", "3"}), std::nullopt);
  EXPECT_EQ(PrimerOrdenIncorrecto({"5", " 1 ", "30"}), std::nullopt);  // gaps are fine
  EXPECT_EQ(PrimerOrdenIncorrecto({}), std::nullopt);
  // Two rows with order 2 and none with 1: the second 2 is the cell to select.
  EXPECT_EQ(PrimerOrdenIncorrecto({"2", "3", "2"}), 2u);
  EXPECT_EQ(PrimerOrdenIncorrecto({"1", "", "2"}), 1u);
  EXPECT_EQ(PrimerOrdenIncorrecto({"1", "x", ""}), 1u);
  EXPECT_EQ(PrimerOrdenIncorrecto({"0", "1"}), 0u);
  EXPECT_EQ(PrimerOrdenIncorrecto({"1", "256"}), 1u);
  EXPECT_EQ(PrimerOrdenIncorrecto({"1", "2.5"}), 1u);
  EXPECT_EQ(LeerOrden(" 255 "), 255);
}

// The dialog on the demo company, editing movement 18. Unscheduled, active, non-system entries
// and vouchers of company 1, by name: 5 "Actualización…", 17 "Cargas sociales…" (member of the
// group headed by 16, order 2), 24 "Flete mensual", 2 "Liquidación de sueldos", 16 "Provisión de
// aguinaldo" (head, order 1), 7 "Venta de servicios…". 26 is unscheduled but belongs to the group
// of the scheduled 25.
class DialogoVincular : public testing::DemoEngineTest {
 protected:
  InformeGuion Correr(const char* guion, std::string_view vinculos, int32_t movimiento = 18) {
    auto g = GuionDialogos::Leer(guion);
    SuiteServices s;
    g->Instalar(s);
    resultado = frmVincular(*cn, s, 1, 1, movimiento, "PasajeAsientos").Mostrar(vinculos);
    return g->Informe();
  }
  // Rights letters by company for the option "PasajeAsientos".
  struct Derechos final : IUserRights {
    std::map<int32_t, std::string> letras;
    std::string Letras(int32_t empresa, std::string_view opcion) override {
      return opcion == "PasajeAsientos" && letras.count(empresa) ? letras[empresa] : "";
    }
    int32_t Usuario() const override { return 1; }
  };
  // The ids the grid offers in step 1; with `derechos`, after ticking chTodas.
  std::vector<int32_t> Ofrecidos(int32_t movimiento, std::string_view vinculos = "",
                                 std::shared_ptr<Derechos> derechos = nullptr) {
    std::vector<int32_t> ids;
    SuiteServices s;
    s.rights = derechos;
    s.formularios = std::make_shared<controles::memoria::Fabrica>([&](auto& f) {
      if (derechos) f.Marcar("chTodas", true);
      auto& g = static_cast<controles::IGrilla&>(*f.Buscar("vsGrid"));
      for (int r = 0; r < g.Filas(); ++r) ids.push_back(std::stoi(g.Celda(r, 5)));
    });
    frmVincular(*cn, s, 1, 1, movimiento, "PasajeAsientos").Mostrar(vinculos);
    return ids;
  }
  std::optional<std::string> resultado;
};

TEST_P(DialogoVincular, TickingAGroupTicksItsMembersAndTheOrderComesBackAsPairs) {
  const InformeGuion i = Correr(R"([
    {"tildar": "vsGrid", "fila": 2, "columna": "1"}, {"responder": "aceptar"},
    {"tildar": "vsGrid", "fila": 5, "columna": "1"},
    {"tildar": "vsGrid", "fila": 4, "columna": "1"},
    {"pulsar": "C&ontinuar"},
    {"escribir": "vsGrid", "fila": 2, "columna": "Orden", "texto": "5"},
    {"pulsar": "Aceptar"}, {"responder": "aceptar"},
    {"escribir": "vsGrid", "fila": 4, "columna": "Orden", "texto": "9"},
    {"pulsar": "bfContinuar"}])",
                                "");
  EXPECT_EQ(i.error, "");
  ASSERT_EQ(i.mensajes.size(), 3u);
  EXPECT_EQ(i.mensajes[0].numero, msg::kYaVinculado) << "17 belongs to 16's group";
  EXPECT_EQ(i.mensajes[1].numero, msg::kVinculoConSusVinculados);
  EXPECT_EQ(i.mensajes[2].numero, msg::kOrdenIncorrecto) << "«Mi Movimiento» had no order";
  // Grid order of step 2: the ticked rows (17 came with its head), then «Mi Movimiento».
  EXPECT_EQ(resultado, "17:2|2:5|16:1|18:9");

  // The links come back ticked and keep their orders; "0" is a new movement.
  Correr(R"([{"pulsar": "bfContinuar"}, {"pulsar": "bfContinuar"}])", "16:3|0:1|17:4", 0);
  EXPECT_EQ(resultado, "17:4|16:3|0:1");

  // Unticking everything unlinks; cancelling keeps the links as they were.
  Correr(R"([{"tildar": "vsGrid", "fila": 5, "columna": "1", "valor": false},
             {"pulsar": "bfContinuar"}])",
         "16:1|18:2");
  EXPECT_EQ(resultado, "");
  Correr(R"([{"tildar": "vsGrid", "fila": 1, "columna": "1"}, {"pulsar": "bfCancel"}])", "");
  EXPECT_EQ(resultado, std::nullopt);
}

TEST_P(DialogoVincular, OrdersMustBePresentAndDistinctButNeedNotBeConsecutive) {
  struct Caso {
    std::vector<std::string> ordenes;  // step 2 rows: 17, 16, «Mi Movimiento»
    bool aceptado;
  } casos[] = {{{"2", "2", "3"}, false}, {{"1", "", "2"}, false}, {{"1", "5", "9"}, true}};
  for (const auto& c : casos) {
    std::string guion = R"([{"tildar": "vsGrid", "fila": 5, "columna": "1"},
                            {"responder": "aceptar"}, {"pulsar": "bfContinuar"})";
    for (size_t fila = 0; fila < c.ordenes.size(); ++fila)
      guion += R"(, {"escribir": "vsGrid", "columna": "Orden", "fila": )" +
               std::to_string(fila + 1) + R"(, "texto": ")" + c.ordenes[fila] + R"("})";
    guion += R"(, {"pulsar": "bfContinuar"}])";
    const InformeGuion i = Correr(guion.c_str(), "");
    EXPECT_EQ(resultado.has_value(), c.aceptado) << guion;
    if (c.aceptado) continue;
    EXPECT_EQ(i.mensajes.back().texto,
              "El orden establecido no es correcto.\nVerifique que todos los movimientos tengan "
              "un orden y que los mismos no se dupliquen.");
    EXPECT_EQ(i.foco, "vsGrid");
    EXPECT_EQ(i.panel, 2) << "the dialog stays on the order step";
  }
  EXPECT_EQ(resultado, "17:1|16:5|18:9");
}

TEST_P(DialogoVincular, ScheduledMovementsTheirGroupsAndTheEditedOneAreNeverOffered) {
  EXPECT_EQ(Ofrecidos(18), (std::vector<int32_t>{5, 17, 24, 2, 16, 7}));
  EXPECT_EQ(Ofrecidos(2), (std::vector<int32_t>{5, 17, 18, 24, 16, 7}));
  // 5 joins the group of the scheduled movement 1: neither is offered any more.
  cn->Execute("Update genMovimientosFrecuentes Set MFrMovVinculado = 1 Where MFrID In (1, 5)");
  EXPECT_EQ(Ofrecidos(18), (std::vector<int32_t>{17, 24, 2, 16, 7}));
  // "Todas mis empresas": the companies where the user holds T or Q; 23 is company 2's.
  auto derechos = std::make_shared<Derechos>();
  derechos->letras = {{1, "AMQ"}, {2, "T"}};
  EXPECT_EQ(Ofrecidos(18, "", derechos), (std::vector<int32_t>{17, 24, 23, 2, 16, 7}));
  derechos->letras = {{1, "AME"}, {2, "T"}};
  EXPECT_EQ(Ofrecidos(18, "", derechos), std::vector<int32_t>{23});
  derechos->letras.clear();
  EXPECT_EQ(Ofrecidos(18, "2:1", derechos), std::vector<int32_t>{2}) << "the links stay on view";
  // A linked movement is listed once even when it is also a candidate.
  EXPECT_EQ(Ofrecidos(18, "2:1|18:2"), (std::vector<int32_t>{17, 24, 2, 16, 7}));
}

KMF_INSTANTIATE_ENGINES(DialogoVincular);

}  // namespace
}  // namespace kivmovfrec::ui
