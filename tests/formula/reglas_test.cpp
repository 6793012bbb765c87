// The formula rules of a movement and their messages.
#include <gtest/gtest.h>

#include <vector>

#include "formula/reglas_fx.h"
#include "formula_db.h"
#include "resources/msg.h"

namespace kivmovfrec::formula {
namespace {

LineaRegla L(ClaveLinea c, bool debe, std::string f, double imp = 0) {
  return {c, debe, std::move(f), imp};
}

// The payroll of the demo company (movement 2) as the wizard holds it.
std::vector<LineaRegla> Sueldos() {
  return {L({141, 0, 1}, true, "[11:Sueldos brutos del mes]", 1000),
          L({142, 0, 1}, true, "[1:141;0;1]*0.24", 240),
          L({113, 0, 0}, false, "[1:141;0;1]*0.83", 830), L({114, 0, 0}, false, "[10:]", 410)};
}

TEST(ReglasFx, AValidMovementPassesEveryRule) {
  auto v = Sueldos();
  EXPECT_FALSE(ValidarFormulas(v));
  EXPECT_FALSE(ReglaSumasIguales(v));
  EXPECT_FALSE(ReglaImportesCero(v));
}

TEST(ReglasFx, AFormulaReferringToItsOwnLine) {
  auto v = Sueldos();
  v[1].formula = "[1:142;0;1]*2";
  auto f = ReglaMismaCuenta(v);
  ASSERT_TRUE(f);
  EXPECT_EQ(f->linea, 1);
  EXPECT_EQ(f->Texto(), "No se puede incluir en la fórmula la misma cuenta.");
  EXPECT_EQ(ValidarFormulas(v)->mensaje, msg::kFxMismaCuenta);
}

TEST(ReglasFx, ReferencesToLinesOrEntriesThatDoNotExist) {
  auto v = Sueldos();
  v[2].formula = "[1:141;0;0]";  // 141 is on department 1
  auto f = ReglaReferenciasValidas(v);
  ASSERT_TRUE(f);
  EXPECT_EQ(f->linea, 2);
  EXPECT_EQ(f->Texto(),
            "La fórmula contiene un valor que no es válido o el registro al cual hacía referencia "
            "no existe más.");
  v[2].formula = "[77:1]";
  EXPECT_TRUE(ReglaReferenciasValidas(v));
  v[2].formula = "[1:abc]";
  EXPECT_TRUE(ReglaReferenciasValidas(v));
}

class ReglasBD : public testing::DemoEngineTest {};

TEST_P(ReglasBD, ReferencesToLookupRowsThatDoNotExist) {
  auto fx = testing::FormulaDemo(cn, 2);
  auto v = Sueldos();
  EXPECT_FALSE(ReglaReferenciasValidas(v, &fx));
  v[0].formula = "[5:999]";
  EXPECT_EQ(ReglaReferenciasValidas(v, &fx)->linea, 0);
}

TEST(ReglasFx, DifferenceAloneAndOnlyOnce) {
  auto v = Sueldos();
  v[3].formula = "[10:]*2";
  auto f = ReglaDiferenciaSola(v);
  ASSERT_TRUE(f);
  EXPECT_EQ(f->Texto(),
            "La fórmula diferencia no puede incluir otros valores, edite y quite los otros datos.");
  v[3].formula = "  [10:] ";
  EXPECT_FALSE(ReglaDiferenciaSola(v));

  v = Sueldos();
  v[2].formula = "[10:]";
  auto g = ReglaUnaDiferencia(v);
  ASSERT_TRUE(g);
  EXPECT_EQ(g->linea, 3);
  EXPECT_EQ(g->Texto(), "No se puede incluir la fórmula resto en más de una cuenta.");
}

TEST(ReglasFx, LinesReferringToEachOther) {
  auto v = Sueldos();
  v[0].formula = "[1:113;0;0]/0.83";
  v[2].formula = "[1:141;0;1]*0.83";
  auto f = ReglaReferenciaCruzada(v);
  ASSERT_TRUE(f);
  EXPECT_EQ(f->linea, 0);
  EXPECT_EQ(f->Texto(),
            "La fórmula de esta cuenta apunta a otra que la apunta a ella, esto no esta admitido.");
  // A chain without a cycle is fine.
  EXPECT_FALSE(ReglaReferenciaCruzada(Sueldos()));
}

TEST(ReglasFx, TotalsSidesAndZeroAmounts) {
  auto v = Sueldos();
  v[3].importe = 409.99;
  auto f = ReglaSumasIguales(v);
  ASSERT_TRUE(f);
  EXPECT_EQ(f->linea, -1);
  EXPECT_EQ(f->Texto(), "La sumatoria de cada columna no coincide con la otra.");
  // Amounts are compared at four decimals, not as doubles.
  std::vector<LineaRegla> w = {L({1, 0, 0}, true, "", 0.1), L({2, 0, 0}, true, "", 0.2),
                               L({3, 0, 0}, false, "", 0.3)};
  EXPECT_FALSE(ReglaSumasIguales(w));

  v = Sueldos();
  v[0].formula = "[14:]";
  auto g = ReglaDiferenciaEImporteMismaColumna(v);
  ASSERT_TRUE(g);
  EXPECT_EQ(g->Texto(),
            "No se pueden incluir las fórmulas por diferencia e importe del movimiento en "
            "distintas columnas.");
  v[0].al_debe = false;
  EXPECT_FALSE(ReglaDiferenciaEImporteMismaColumna(v));

  v = Sueldos();
  v[1].importe = 0;
  auto h = ReglaImportesCero(v);
  ASSERT_TRUE(h);
  EXPECT_EQ(h->linea, 1);
  EXPECT_EQ(h->mensaje, msg::kCuentasImporteCero);
}

KMF_INSTANTIATE_ENGINES(ReglasBD);

}  // namespace
}  // namespace kivmovfrec::formula
