// The header, line, parameter and company tables against the suite schema and demo data, on
// every engine.
#include <gtest/gtest.h>

#include <memory>

#include "core/clock.h"
#include "fakes.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/errors.h"
#include "kivmovfrec/install.h"
#include "kivmovfrec/records.h"
#include "storage/columnas.h"
#include "storage/parametros.h"
#include "storage/sql_texto.h"
#include "storage/tabla_cuentas.h"
#include "storage/tabla_movimientos.h"
#include "storage/tabla_renglones.h"
#include "support/db_snapshot.h"
#include "support/demo_engine.h"

namespace kivmovfrec {
namespace {

using namespace storage;
using testing::FakeDBFncs;
using testing::FixedTestClock;
using testing::SpyConnection;

class Tablas : public testing::DemoEngineTest {
 protected:
  void SetUpDatabase() override {
    DemoEngineTest::SetUpDatabase();
    Parametros() = ParametrosBD{};
  }
  void TearDown() override { Parametros() = ParametrosBD{}; }

  int64_t Contar(const std::string& sql) {
    auto rs = cn->OpenResultset(sql);
    return rs->Eof() ? 0 : ALong(rs->Get(0));
  }
  Variant Columna(const std::string& sql) {
    auto rs = cn->OpenResultset(sql);
    EXPECT_FALSE(rs->Eof()) << sql;
    return rs->Eof() ? Variant() : rs->Get(0);
  }

  // 2026-11-02 09:15:30, whole seconds so it survives the text form of the column.
  const Date kMomento{46328.0 + (9 * 3600 + 15 * 60 + 30) / 86400.0};
};

clsRegMovimientoFrecuente Encabezado(const std::string& nombre) {
  clsRegMovimientoFrecuente mf;
  mf.Empresa(1);
  mf.Tipo(enuTipoMovFrec::Asiento);
  mf.Nombre(nombre);
  mf.Memo("Comentario");
  mf.Modalidad(1);
  mf.Moneda(1);
  mf.UsuarioAlta(1);
  mf.Imagen(2);
  return mf;
}

TEST_P(Tablas, EncabezadoNuevoTomaClaveDelContadorYLuegoSeEditaEnSuLugar) {
  core::ScopedClock reloj(std::make_shared<FixedTestClock>(kMomento));
  FakeDBFncs dbf;
  dbf.siguiente = 500;
  auto mf = Encabezado("Honorarios contador");
  mf.TipoImporte(2);
  mf.DelSistema(enuClasificacionMF::Sistema);
  mf.Estado(enuEstadoMF::Realizado);
  mf.Vista(2);
  mf.UsuarioAutoriza(3);

  EXPECT_EQ(GuardarMovimiento(*cn, dbf, mf), 500);
  EXPECT_EQ(mf.ID(), 500);
  EXPECT_EQ(dbf.tablas, std::vector<std::string>{"genMovimientosFrecuentes"});
  // No schedule and no link are stored as NULL: the suite tells frequent movements from
  // scheduled ones with "MFrRecurrencia Is Null".
  EXPECT_EQ(Contar("Select Count(*) From genMovimientosFrecuentes Where MFrID = 500 And "
                   "MFrRecurrencia Is Null And MFrMovVinculado Is Null"),
            1);

  clsRegMovimientoFrecuente leido;
  ASSERT_TRUE(CargarMovimiento(*cn, 500, leido));
  EXPECT_EQ(leido.Nombre(), "Honorarios contador");
  EXPECT_EQ(leido.Memo(), "Comentario");
  EXPECT_EQ(leido.Empresa(), 1);
  EXPECT_EQ(leido.Tipo(), enuTipoMovFrec::Asiento);
  EXPECT_EQ(leido.DelSistema(), enuClasificacionMF::Sistema);
  EXPECT_EQ(leido.Modalidad(), 1);
  EXPECT_EQ(leido.TipoImporte(), 2);
  EXPECT_EQ(leido.Estado(), ToInt(enuEstadoMF::Realizado));
  EXPECT_EQ(leido.Vista(), 2);
  EXPECT_EQ(leido.Imagen(), 2);
  EXPECT_EQ(leido.UsuarioAlta(), 1);
  EXPECT_EQ(leido.UsuarioAutoriza(), 3);
  EXPECT_EQ(leido.Recurrencia(), 0);
  EXPECT_NEAR(leido.FechaEstado().serial, kMomento.serial, 0.5 / 86400);

  const int64_t filas = Contar("Select Count(*) From genMovimientosFrecuentes");
  leido.Nombre("Honorarios del contador");
  leido.Recurrencia(42);
  EXPECT_EQ(GuardarMovimiento(*cn, dbf, leido), 500);
  EXPECT_EQ(dbf.tablas.size(), 1u);  // no second key drawn
  EXPECT_EQ(Contar("Select Count(*) From genMovimientosFrecuentes"), filas);
  EXPECT_EQ(ATexto(Columna("Select MFrNombre From genMovimientosFrecuentes Where MFrID = 500")),
            "Honorarios del contador");
  EXPECT_EQ(ALong(Columna("Select MFrRecurrencia From genMovimientosFrecuentes Where MFrID = 500")),
            42);
}

TEST_P(Tablas, ContadorFallidoNoEscribeNada) {
  FakeDBFncs falla(/*falla=*/true);
  auto mf = Encabezado("Nunca grabado");
  const auto antes = testing::TakeSnapshot(*cn, testing::MovementTables());
  EXPECT_THROW(GuardarMovimiento(*cn, falla, mf), ComponentError);  // 8000, see NuevoID
  EXPECT_EQ(mf.ID(), 0);
  EXPECT_EQ(testing::TakeSnapshot(*cn, testing::MovementTables()), antes);
}

TEST_P(Tablas, NombreOMemoConComillaSeRechazanAntesDeArmarSql) {
  auto spy = std::make_shared<SpyConnection>(cn);
  FakeDBFncs dbf;
  auto mf = Encabezado("Pago a D'Angelo");
  EXPECT_THROW(GuardarMovimiento(*spy, dbf, mf), TextoRechazado);
  mf.Nombre("Pago a proveedor");
  mf.Memo("según la factura 'A'");
  EXPECT_THROW(GuardarMovimiento(*spy, dbf, mf), TextoRechazado);
  EXPECT_TRUE(spy->sentencias.empty());
  EXPECT_TRUE(dbf.tablas.empty());
  EXPECT_EQ(mf.ID(), 0);
}

TEST_P(Tablas, CargaNoTocaElRegistroSiNoExiste) {
  auto mf = Encabezado("Sin cambios");
  EXPECT_FALSE(CargarMovimiento(*cn, 987654, mf));
  EXPECT_EQ(mf.Nombre(), "Sin cambios");
}

TEST_P(Tablas, ColumnasNulasDejanLosValoresPorDefecto) {
  core::ScopedClock reloj(std::make_shared<FixedTestClock>(kMomento));
  cn->Execute(
      "Insert Into genMovimientosFrecuentes (MFrID, MFrTipo, MFrEstado) Values (900, 3, 0)");
  clsRegMovimientoFrecuente mf;
  ASSERT_TRUE(CargarMovimiento(*cn, 900, mf));
  EXPECT_EQ(mf.ID(), 900);
  EXPECT_EQ(mf.Tipo(), enuTipoMovFrec::Calendario);
  EXPECT_EQ(mf.Nombre(), "");
  EXPECT_EQ(mf.Memo(), "");
  EXPECT_EQ(mf.Empresa(), 0);
  EXPECT_EQ(mf.Recurrencia(), 0);
  EXPECT_EQ(mf.MovVinculado(), 0);
  EXPECT_EQ(mf.OrdenMovVinculado(), 0);
  EXPECT_EQ(mf.Vista(), 0);
  EXPECT_EQ(mf.FechaEstado(), kMomento);  // NULL keeps the moment of construction
}

clsRegRenglonMF Renglon(int32_t cuenta, bool debe, double importe) {
  clsRegRenglonMF r;
  r.Cuenta(cuenta);
  r.AlDebe(debe);
  r.ImporteCta(importe);
  r.ImporteMF(importe);
  return r;
}

TEST_P(Tablas, RenglonesOpcionalesSeGrabanNulosYSeLeenComoVacios) {
  auto rs = cn->OpenResultset(SqlRenglonesDe(700));
  auto vacio = Renglon(101, true, 150.5);
  auto lleno = Renglon(143, false, 150.5);
  lleno.Formula("[5:101]*2");
  lleno.Detalle("Alquiler noviembre");
  lleno.TipoCambio(2);
  lleno.ValorTC(1.25);
  lleno.Proyecto(1);
  lleno.Departamento(2);
  lleno.Orden(7);
  AgregarRenglon(*rs, vacio, 700, 1);
  AgregarRenglon(*rs, lleno, 700, 2);
  rs->Close();
  EXPECT_EQ(vacio.Orden(), 1);  // numbered by position
  EXPECT_EQ(lleno.Orden(), 7);  // an explicit position is kept
  EXPECT_EQ(vacio.idMF(), 700);

  EXPECT_EQ(Contar("Select Count(*) From genRenglonMovFrecuentes Where RMFMovimiento = 700 And "
                   "RMFOrden = 1 And RMFAlDebe = 1 And RMFFormula Is Null And RMFDetalle Is Null "
                   "And RMFFTipoCambio Is Null And RMFValorTC Is Null"),
            1);
  EXPECT_EQ(Contar("Select Count(*) From genRenglonMovFrecuentes Where RMFMovimiento = 700 And "
                   "RMFOrden = 7 And RMFAlDebe = 0 And RMFFormula = '[5:101]*2' And RMFDetalle = "
                   "'Alquiler noviembre' And RMFFTipoCambio = 2 And RMFValorTC = 1.25 And "
                   "RMFIDProyecto = 1 And RMFIDDepartamento = 2"),
            1);

  auto lee = cn->OpenResultset(
      "Select genRenglonMovFrecuentes.*, CueCodigo, CueNombre, CueMoneda, ProAbreviacion, "
      "DepAbreviacion From ((genRenglonMovFrecuentes LEFT JOIN cceCuentas ON RMFCuenta = CueID) "
      "LEFT JOIN cceProyectos ON RMFIDProyecto = ProCodigo) LEFT JOIN cceDepartamentos ON "
      "RMFIDDepartamento = DepCodigo Where RMFMovimiento = 700 Order By RMFOrden");
  ASSERT_FALSE(lee->Eof());
  clsRegRenglonMF r1;
  LeerRenglon(*lee, r1);
  EXPECT_EQ(r1.Cuenta(), 101);
  EXPECT_TRUE(r1.AlDebe());
  EXPECT_EQ(r1.ImporteCta(), 150.5);
  EXPECT_EQ(r1.Formula(), "");
  EXPECT_EQ(r1.Detalle(), "");
  EXPECT_EQ(r1.TipoCambio(), 0);
  EXPECT_EQ(r1.ValorTC(), 0.0);
  EXPECT_EQ(r1.ProyectoAbreviacion(), "");
  EXPECT_EQ(r1.CuentaNombre(), "Caja");
}

TEST_P(Tablas, BorrarRenglonesSoloLosDelMovimiento) {
  auto rs = cn->OpenResultset(SqlRenglonesDe(701));
  for (uint8_t i = 1; i <= 3; ++i) {
    auto r = Renglon(101, i % 2 == 1, 10.0 * i);
    AgregarRenglon(*rs, r, 701, i);
  }
  rs->Close();
  auto otro = cn->OpenResultset(SqlRenglonesDe(702));
  auto r = Renglon(102, true, 1.0);
  AgregarRenglon(*otro, r, 702, 1);
  otro->Close();

  EXPECT_EQ(BorrarRenglones(*cn, 701), 3);
  EXPECT_EQ(Contar("Select Count(*) From genRenglonMovFrecuentes Where RMFMovimiento = 701"), 0);
  EXPECT_EQ(Contar("Select Count(*) From genRenglonMovFrecuentes Where RMFMovimiento = 702"), 1);
  EXPECT_EQ(BorrarRenglones(*cn, 701), 0);
}

TEST_P(Tablas, OrdenDeVinculoEsElMayorMasUno) {
  FakeDBFncs dbf;
  dbf.siguiente = 800;
  EXPECT_EQ(SiguienteOrdenVinculo(*cn, 4242), 1);  // nobody linked yet

  for (uint8_t orden : {uint8_t{1}, uint8_t{4}}) {
    auto mf = Encabezado("Miembro");
    mf.MovVinculado(4242);
    mf.OrdenMovVinculado(orden);
    GuardarMovimiento(*cn, dbf, mf);
  }
  EXPECT_EQ(SiguienteOrdenVinculo(*cn, 4242), 5);

  auto nuevo = Encabezado("Nuevo vinculado");
  nuevo.MovVinculado(4242);
  AsignarOrdenVinculo(*cn, nuevo);
  EXPECT_EQ(nuevo.OrdenMovVinculado(), 5);

  auto ubicado = Encabezado("Ya ubicado");
  ubicado.MovVinculado(4242);
  ubicado.OrdenMovVinculado(2);
  AsignarOrdenVinculo(*cn, ubicado);
  EXPECT_EQ(ubicado.OrdenMovVinculado(), 2);

  for (int16_t tipo : {int16_t{5}, kTipoItemCheckList}) {
    auto lista = Encabezado("Lista");
    lista.Tipo(static_cast<enuTipoMovFrec>(tipo));
    lista.MovVinculado(4242);
    AsignarOrdenVinculo(*cn, lista);
    EXPECT_EQ(lista.OrdenMovVinculado(), 0) << tipo;
  }

  auto suelto = Encabezado("Sin vínculo");
  AsignarOrdenVinculo(*cn, suelto);
  EXPECT_EQ(suelto.OrdenMovVinculado(), 0);
}

TEST_P(Tablas, OrdenDeVinculoLlenoEsDesbordamiento) {
  cn->Execute(
      "Insert Into genMovimientosFrecuentes (MFrID, MFrTipo, MFrEstado, MFrMovVinculado, "
      "MFrMVOrden) Values (950, 1, 0, 4300, 255)");
  EXPECT_THROW(SiguienteOrdenVinculo(*cn, 4300), VbError);
}

TEST_P(Tablas, SoloUnaCuentaDeLaEmpresaQueNoEsCarpetaTomaUnRenglon) {
  struct Caso {
    int32_t empresa, cuenta;
    const char* problema;  // "" when the account can take the line
  };
  for (const Caso& c : {Caso{1, 101, ""}, Caso{2, 202, ""}, Caso{1, 999, "la cuenta 999 no existe"},
                        Caso{1, 100, "la cuenta 100 es una carpeta"},
                        Caso{1, 201, "la cuenta 201 es de otra empresa (la 2)"},
                        Caso{2, 100, "la cuenta 100 es de otra empresa (la 1)"}}) {
    EXPECT_EQ(ProblemaCuentaRenglon(*cn, c.empresa, c.cuenta).value_or(""), c.problema);
  }
}

TEST_P(Tablas, ParametrosDeGenParametrosDanElLiteralDeFecha) {
  CargarParametros(*cn);
  EXPECT_TRUE(Parametros().multiusuario);
  EXPECT_EQ(FechaSQL(kMomento), "'2026-11-02 09:15:30'");

  cn->Execute("Update genParametros Set ParTexto = '#' Where ParNombre = 'defBDDateCharSQLs'");
  cn->Execute(
      "Update genParametros Set ParTexto = 'dd/mm/yyyy' Where ParNombre = 'defBDDateFormat'");
  cn->Execute("Update genParametros Set ParValor = 0 Where ParNombre = 'sis_Multiusuario'");
  CargarParametros(*cn);
  EXPECT_EQ(FechaSQL(kMomento), "#02/11/2026#");
  EXPECT_FALSE(Parametros().multiusuario);

  // A setting that is NULL or missing falls back to the standard value.
  cn->Execute("Update genParametros Set ParTexto = NULL Where ParNombre = 'defBDDateCharSQLs'");
  cn->Execute("Delete From genParametros Where ParNombre = 'defBDDateFormat'");
  CargarParametros(*cn);
  EXPECT_EQ(FechaSQL(kMomento), "'2026-11-02 09:15:30'");
}

// A server whose text comparison ignores case and trailing blanks returns rows whose names are
// written differently; they must still be recognised.
class ServidorSinMayusculas : public SpyConnection {
 public:
  using SpyConnection::SpyConnection;
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql) override {
    return SpyConnection::OpenResultset(sql == kSqlParametros ? "Select * from genParametros"
                                                              : sql);
  }
};

TEST_P(Tablas, NombresDeParametroSeComparanSinEspaciosNiMayusculas) {
  cn->Execute("Delete From genParametros");
  cn->Execute(
      "Insert Into genParametros (ParNombre, ParTexto, ParValor) Values ('  DEFBDDATECHARSQLS ', "
      "'\"', Null), ('defbddateformat', 'yyyymmdd', Null), ('Sis_MultiUsuario', Null, 1), "
      "('defBDDateFormatX', 'dd', Null)");
  ServidorSinMayusculas servidor(cn);
  CargarParametros(servidor);
  EXPECT_EQ(FechaSQL(kMomento), "\"20261102\"");
  EXPECT_TRUE(Parametros().multiusuario);
}

TEST_P(Tablas, EmpresaDesconocidaNoCambiaNada) {
  clsEmpresa emp;
  ASSERT_TRUE(emp.Load(2, *cn));
  EXPECT_FALSE(emp.Load(999, *cn));
  EXPECT_EQ(emp.ID(), 2);
  EXPECT_EQ(emp.Nombre(), "Consultora Andina S.R.L.");
  EXPECT_EQ(emp.TipoComprobante(), 12);
}

TEST_P(Tablas, EmpresaConNulosYValoresNoNumericosConservaLoAnterior) {
  cn->Execute(
      "Insert Into cceEmpresas (EmpID, EmpNombre, EmpMonedaContabilidad, EmpPrms) Values (7, "
      "'  Nueva S.A.  ', Null, 'lib:x3|tcom:5')");
  clsEmpresa emp;
  emp.MonedaContabilidad(4);
  emp.Libro(9);
  emp.ValoresUsuarioYAutoriza("S");
  ASSERT_TRUE(emp.Load(7, *cn));
  EXPECT_EQ(emp.ID(), 7);
  EXPECT_EQ(emp.Nombre(), "Nueva S.A.");
  EXPECT_EQ(emp.MonedaContabilidad(), 4);
  EXPECT_EQ(emp.ValoresUsuarioYAutoriza(), "S");
  EXPECT_EQ(emp.Libro(), 9);
  EXPECT_EQ(emp.TipoComprobante(), 5);
}

KMF_INSTANTIATE_ENGINES(Tablas);

}  // namespace
}  // namespace kivmovfrec
