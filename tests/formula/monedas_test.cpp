// Currencies and exchange rates over the demo company.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "formula/monedas.h"
#include "formula_db.h"
#include "platform/suite/clock.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::formula {
namespace {

Date D(int y, int m, int d) {
  return vb::DateSerial(y, m, d);
}

Currency C(int64_t diezmilesimos) {
  return Currency::FromUnits(diezmilesimos);
}

class Monedas : public testing::DemoEngineTest {
 protected:
  void SetUpDatabase() override {
    DemoEngineTest::SetUpDatabase();
    m_.Connect(cn);
    m_.MonedaContabilidad(1);
    ASSERT_TRUE(m_.Load());
  }
  std::shared_ptr<suite::FixedClock> reloj_ = std::make_shared<suite::FixedClock>(D(2026, 11, 18));
  clsMonedas m_{reloj_, ParametrosBD{}};
};

// NULL formats give the defaults; 0 is the company's accounting currency.
TEST_P(Monedas, CurrencyDataWithDefaultFormats) {
  EXPECT_EQ(m_.DatosMoneda(2, 5), Variant("#,##0.0000"));
  EXPECT_EQ(m_.DatosMoneda(4, 4), Variant("#,##0.00"));
  EXPECT_EQ(m_.DatosMoneda(4, 5), Variant("#,##0.000"));
  clsEmpresa empresa;
  ASSERT_TRUE(empresa.Load(1, *cn));
  m_.Empresa(empresa);
  EXPECT_EQ(m_.DatosMoneda(0, 2), Variant("$"));
  EXPECT_EQ(m_.DatosMoneda(1, 3), Variant(int16_t{0}));  // quoted in nothing
  EXPECT_TRUE(m_.DatosMoneda(77, 2).IsEmpty());
  EXPECT_TRUE(m_.DatosMoneda(2, 9).IsEmpty());
}

TEST_P(Monedas, DirectInverseAndLaterDateRules) {
  // Direct, on and between quotation dates.
  auto u = m_.Cotizacion(2, 1, 1, D(2026, 11, 20));
  EXPECT_EQ(std::tuple(u.tasa, u.fecha, u.directa), std::tuple(C(14257500), D(2026, 11, 16), true));
  // Only the opposite quotation exists: its reciprocal (1 / 0.0040 and 1 / 0.0032).
  u = m_.Cotizacion(4, 1, 1, D(2026, 10, 1));
  EXPECT_EQ(u.tasa, C(2500000));
  EXPECT_EQ(m_.Cotizacion(4, 1, 1, D(2026, 11, 2)).tasa, C(3125000));
  // Both directions: the later one wins (inverse of 11-20 over direct of 10-30) ...
  u = m_.Cotizacion(2, 1, 2, D(2026, 11, 25));
  EXPECT_EQ(std::pair(u.tasa, u.fecha), std::pair(C(14285714), D(2026, 11, 20)));
  // ... and on equal dates the direct one stays (1446, not 1 / 0.0008 = 1250).
  u = m_.Cotizacion(2, 1, 2, D(2026, 11, 30));
  EXPECT_EQ(u.tasa, C(14460000));
  // The reverse question reads the same two rows the other way round.
  EXPECT_EQ(m_.Cotizacion(1, 2, 2, D(2026, 11, 25)).tasa, C(7));
}

TEST_P(Monedas, NothingFoundGivesOneDatedAsAskedAndTheEmptyDateIsToday) {
  auto u = m_.Cotizacion(2, 1, 1, D(2026, 8, 30));
  EXPECT_EQ(std::tuple(u.por_defecto, u.tasa, u.fecha), std::tuple(true, C(10000), D(2026, 8, 30)));
  // The plain form leaves date and rate in its arguments.
  Date f = D(2026, 1, 1);
  Currency t{};
  EXPECT_EQ(m_.Cotizacion(4, 2, 1, f, t), C(10000));
  EXPECT_EQ(t, C(10000));
  EXPECT_EQ(f, D(2026, 1, 1));
  f = FechaVaciaCotizacion();  // the clock's day: the quotation of 11-16
  EXPECT_EQ(m_.Cotizacion(2, 1, 1, f, t), C(14257500));
  EXPECT_EQ(f, D(2026, 11, 16));
}

TEST_P(Monedas, OneHopThroughTheQuotedInCurrency) {
  // Euro in pesos: euro in dollars times dollars in pesos, at three decimals.
  auto u = m_.Cotizacion(3, 1, 1, D(2026, 11, 30));
  EXPECT_EQ(std::tuple(u.por_escala, u.intermedia, u.tasa, u.fecha),
            std::tuple(true, 2, C(16884000), D(2026, 11, 30)));
  // The older leg dates the result (euro 10-30, dollar 11-16).
  u = m_.Cotizacion(3, 1, 1, D(2026, 11, 20));
  EXPECT_EQ(u.fecha, D(2026, 10, 30));
  // No chain beyond one hop: the euro has no quotation in reais, nor the dollar.
  EXPECT_TRUE(m_.Cotizacion(3, 4, 1, D(2026, 11, 30)).por_defecto);
}

TEST_P(Monedas, ThreeDecimalsOnlyOnTheFallBackPath) {
  cn->Execute(
      "INSERT INTO genMonedas (MonID, MonSimbolo, MonNombre, MonTipo, MonCotizaEn) VALUES "
      "(8, 'AAA', 'Moneda A', 1, 9), (9, 'CCC', 'Moneda C', 1, 1), (10, 'BBB', 'Moneda B', 1, 9)");
  cn->Execute(
      "INSERT INTO genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha, "
      "CMoCompra, CMoVenta) VALUES (8, 9, 1, '2026-11-01 00:00:00', 3.1416, 3.2), "
      "(9, 1, 1, '2026-11-05 00:00:00', 1, 1), (10, 9, 1, '2026-11-01 00:00:00', 0.1234, 0.2)");
  auto directa = m_.Cotizacion(8, 9, 1, D(2026, 11, 15));
  EXPECT_EQ(directa.tasa, C(31416));
  auto escala = m_.Cotizacion(8, 1, 1, D(2026, 11, 15));
  EXPECT_EQ(std::tuple(escala.por_escala, escala.tasa, escala.fecha),
            std::tuple(true, C(31420), D(2026, 11, 1)));
  // Below one the Spanish "#.000" text has no leading digit (",123") and still reads back.
  EXPECT_EQ(m_.Cotizacion(10, 1, 1, D(2026, 11, 15)).tasa, C(1230));
}

TEST_P(Monedas, DatabaseErrorsFallBackToOne) {
  cn->Execute("DROP TABLE genCotizacionesMoneda");
  auto u = m_.Cotizacion(2, 1, 1, D(2026, 11, 30));
  EXPECT_EQ(std::pair(u.por_defecto, u.tasa), std::pair(true, C(10000)));
  EXPECT_FALSE(m_.BuscarCotizacionDirecta(2, 1, 1, D(2026, 11, 30)).encontrada);
  clsMonedas sin_conexion(nullptr, ParametrosBD{});
  EXPECT_FALSE(sin_conexion.Load());
  EXPECT_EQ(sin_conexion.Cotizacion(2, 1, 1, D(2026, 11, 30)).tasa, C(10000));
}

KMF_INSTANTIATE_ENGINES(Monedas);

}  // namespace
}  // namespace kivmovfrec::formula
