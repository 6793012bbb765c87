// The formula rules of a movement: which rule fails, on which line, and with which message.
#include <gtest/gtest.h>

#include <string>
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

ResultadoRegla Referencias(std::span<const LineaRegla> v) {
  return ReglaReferenciasValidas(v);
}

TEST(ReglasFx, AValidMovementPassesEveryRule) {
  auto v = Sueldos();
  EXPECT_FALSE(ValidarFormulas(v));
  EXPECT_FALSE(ReglaSumasIguales(v));
  EXPECT_FALSE(ReglaImportesCero(v));
}

// One formula of the payroll changed; ValidarFormulas must stop at the same rule.
TEST(ReglasFx, EachFormulaRuleNamesItsMessageAndLine) {
  struct Caso {
    size_t cambiada;
    const char* formula;
    ResultadoRegla (*regla)(std::span<const LineaRegla>);
    int mensaje;
    int linea;
  };
  const Caso casos[] = {
      {1, "[1:142;0;1]*2", ReglaMismaCuenta, msg::kFxMismaCuenta, 1},
      {2, "[1:141;0;0]", Referencias, msg::kFxValorNoValido, 2},  // 141 is on department 1
      {2, "[77:1]", Referencias, msg::kFxValorNoValido, 2},
      {2, "[1:abc]", Referencias, msg::kFxValorNoValido, 2},
      {3, "[10:]*2", ReglaDiferenciaSola, msg::kFxDiferenciaConOtros, 3},
      {2, "[10:]", ReglaUnaDiferencia, msg::kFxRestoEnVariasCuentas, 3},
      {0, "[1:113;0;0]/0.83", ReglaReferenciaCruzada, msg::kFxReferenciaCruzada, 0},
      {0, "[14:]", ReglaDiferenciaEImporteMismaColumna, msg::kFxDiferenciaEImporteEnColumnas, 3},
  };
  for (const Caso& c : casos) {
    auto v = Sueldos();
    v[c.cambiada].formula = c.formula;
    auto f = c.regla(v);
    ASSERT_TRUE(f) << c.formula;
    EXPECT_EQ(std::pair(f->mensaje, f->linea), std::pair(c.mensaje, c.linea)) << c.formula;
    ASSERT_TRUE(ValidarFormulas(v)) << c.formula;
    EXPECT_EQ(ValidarFormulas(v)->mensaje, c.mensaje) << c.formula;
  }
}

TEST(ReglasFx, CasesThatHold) {
  auto v = Sueldos();
  v[3].formula = "  [10:] ";  // blanks around the difference
  EXPECT_FALSE(ReglaDiferenciaSola(v));
  v = Sueldos();
  v[0] = L({141, 0, 1}, false, "[14:]", 1000);  // total and difference on the same side
  EXPECT_FALSE(ReglaDiferenciaEImporteMismaColumna(v));
  // Amounts are compared at four decimals, not as doubles.
  EXPECT_FALSE(ReglaSumasIguales(std::vector<LineaRegla>{
      L({1, 0, 0}, true, "", 0.1), L({2, 0, 0}, true, "", 0.2), L({3, 0, 0}, false, "", 0.3)}));
}

TEST(ReglasFx, TotalsAndZeroAmounts) {
  auto v = Sueldos();
  v[3].importe = 409.99;
  auto f = ReglaSumasIguales(v);
  ASSERT_TRUE(f);
  EXPECT_EQ(std::pair(f->mensaje, f->linea), std::pair(msg::kSumatoriaNoCoincide, -1));
  v = Sueldos();
  v[1].importe = 0;
  auto h = ReglaImportesCero(v);
  ASSERT_TRUE(h);
  EXPECT_EQ(std::pair(h->mensaje, h->linea), std::pair(msg::kCuentasImporteCero, 1));
}

class ReglasBD : public testing::DemoEngineTest {};

TEST_P(ReglasBD, ReferencesToLookupRowsThatDoNotExist) {
  auto fx = testing::FormulaDemo(cn, 2);
  auto v = Sueldos();
  EXPECT_FALSE(ReglaReferenciasValidas(v, &fx));
  v[0].formula = "[5:999]";
  EXPECT_EQ(ReglaReferenciasValidas(v, &fx)->linea, 0);
}

KMF_INSTANTIATE_ENGINES(ReglasBD);

}  // namespace
}  // namespace kivmovfrec::formula
