// The link text exchanged between the wizard and the link dialog, and the order step's rule.
#include <gtest/gtest.h>

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
  for (const char* texto : {"12:", ":1", "0:1", "12:0", "-12:1", "12:1:2", "1 2:1", "12:1,5",
                            "2147483648:1", "12:1;Delete From x"}) {
    mal_formado(texto, 1);
  }
  // MFrMVOrden is a byte: 256 would be stored as something else.
  EXPECT_EQ(LeerVinculos("12:1|7:256").error,
            prefijo + "orden del par 2 debe estar entre 1 y 255.");
  EXPECT_EQ(LeerVinculos("12:1|7:2|12:3").error,
            prefijo + "movimiento del par 3 figura más de una vez.");
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

}  // namespace
}  // namespace kivmovfrec::ui
