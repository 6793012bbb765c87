// The suite's own statements run on SQLite after translation, with the rows they must give.
#include <gtest/gtest.h>

#include <memory>

#include "db/rate_sql.h"
#include "kivmovfrec/db.h"

namespace kivmovfrec {
namespace {

constexpr double kAug1st2005 = 38565;

class SuiteStatements : public ::testing::Test {
 protected:
  void SetUp() override {
    cn = OpenConnection("sqlite::memory:");
    cn->Execute(
        "Create Table genCotizacionesMoneda (CMoMoneda INTEGER, CMoCotizaEn INTEGER, "
        "CMoTipoCotizacion INTEGER, CMoFecha DATETIME, CMoCompra REAL, CMoVenta REAL)");
    cn->Execute(
        "Insert Into genCotizacionesMoneda Values (2, 1, 3, '2005-07-01 00:00:00', 3.0, 3.1), "
        "(2, 1, 3, '2005-08-01 00:00:00', 3.5, 3.6), (2, 1, 3, '2005-08-01 00:00:00', 3.5, 3.6), "
        "(2, 1, 3, '2005-09-01 00:00:00', 4.0, 4.1), (1, 2, 3, '2005-07-15 00:00:00', 0.25, 0.2)");
    cn->Execute(
        "Create Table genMonedas (MonID INTEGER, MonSimbolo CHAR(5), MonNombre VARCHAR(30), "
        "MonTipo INTEGER, MonCotizaEn INTEGER)");
    cn->Execute(
        "Insert Into genMonedas Values (1, '$', 'Peso', 1, Null), "
        "(2, 'U$S', 'Dólar', 1, 1), (3, 'CER', 'Coeficiente', 2, 1)");
    cn->Execute(
        "Create Table cceCuentas (CueID INTEGER, CueCodigo VARCHAR(20), CueNombre VARCHAR(50), "
        "CueIDEmpresa INTEGER, CueEsCarpeta INTEGER)");
    cn->Execute(
        "Insert Into cceCuentas Values (7, '1.1.01  ', 'Caja', 1, 0), "
        "(8, '1.1', 'Disponibilidades', 1, 1)");
  }

  std::shared_ptr<Connection> cn;
};

TEST_F(SuiteStatements, DirectRateGivesOneRowPerDirectionWithItsDate) {
  auto rs = cn->OpenResultset(testing::DirectRateSql("'2005-08-02 00:00:00'", 2, 1, 3));
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Get("CMoFecha"), Variant(Date{kAug1st2005}));
  EXPECT_EQ(rs->Get("CMoCompra"), Variant(3.5));
  rs->MoveNext();  // the duplicate quotation of 01/08 is cut by the first branch's limit
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Get("CMoFecha"), Variant(Date{kAug1st2005 - 17}));
  EXPECT_EQ(rs->Get("CMoCompra"), Variant(4.0));  // 1 / 0.25, inverted by the database
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());

  EXPECT_TRUE(cn->OpenReadOnly(testing::DirectRateSql("'2005-08-02 00:00:00'", 5, 1, 3))->Eof());
}

TEST_F(SuiteStatements, CurrencyLookUpConcatenatesNameAndSymbol) {
  auto rs = cn->OpenReadOnly(
      "Select MonID, RTrim(MonSimbolo), MonNombre + ' (' + RTrim(MonSimbolo) + ')' From "
      "genMonedas Where MonTipo = 1 And (MonID  = 'abc121ptokiv121cba' or MonSimbolo  = 'U$S') "
      "Order by MonNombre");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Get(0), Variant(int32_t{2}));
  EXPECT_EQ(rs->Get(1), Variant("U$S"));
  EXPECT_EQ(rs->Get(2), Variant("Dólar (U$S)"));
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
}

TEST_F(SuiteStatements, AccountLookUpFindsByCodeAndName) {
  auto rs = cn->OpenReadOnly(
      "Select CueID, rTrim(CueCodigo) + ' ' + CueNombre, rTrim(CueCodigo) + ' ' + CueNombre "
      "From cceCuentas Where CueIDEmpresa = 1 And (CueID  = 'abc121ptokiv121cba' or "
      "rTrim(CueCodigo) + ' ' + CueNombre  = '1.1.01 Caja') And CueEsCarpeta = 0 Order by "
      "CueNombre");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Get(0), Variant(int32_t{7}));
  EXPECT_EQ(rs->Get(2), Variant("1.1.01 Caja"));
}

TEST_F(SuiteStatements, LikeIgnoresCaseOfAsciiLetters) {
  cn->Execute("Create Table genMovimientosFrecuentes (MFrID INTEGER, MFrNombre TEXT)");
  cn->Execute("Insert Into genMovimientosFrecuentes Values (1, 'Cierre de MES'), (2, 'Otro')");
  auto rs = cn->OpenReadOnly(
      "Select MFrID, MFrNombre  From genMovimientosFrecuentes Where MFrNombre Like "
      "'%cierre%mes%' And MFrID <> 0");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Get("MFrID"), Variant(int32_t{1}));
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
}

}  // namespace
}  // namespace kivmovfrec
