// The header, line, parameter and company tables against the suite schema and demo data, on
// every engine.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "fakes.h"
#include "install/demo_db.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/errors.h"
#include "kivmovfrec/records.h"
#include "platform/suite/clock.h"
#include "platform/vb/convert.h"
#include "storage/columnas.h"
#include "storage/fila.h"
#include "storage/parametros.h"
#include "storage/sql_texto.h"
#include "storage/tabla_cuentas.h"
#include "storage/tabla_movimientos.h"
#include "storage/tabla_renglones.h"
#include "support/db_snapshot.h"
#include "support/demo_engine.h"
#include "support/recording_connection.h"

namespace kivmovfrec {
namespace {

using namespace storage;
using testing::CountRows;
using testing::FakeDBFncs;
using testing::Scalar;

// 2026-11-02 09:15:30, whole seconds so it survives the text form of the column.
constexpr double kHora = (9 * 3600 + 15 * 60 + 30) / 86400.0;
suite::FixedClock RelojDetenido() {
  return suite::FixedClock(Date{46328.0}, kHora);
}

class Tablas : public testing::DemoEngineTest {
 protected:
  int Filas(const std::string& where) {
    return CountRows(*cn, "Select * From genMovimientosFrecuentes Where " + where);
  }
};

// Every stored field of a header; the moment to the second.
auto Campos(const clsRegMovimientoFrecuente& m) {
  return std::tuple(m.ID(), m.Empresa(), ToInt(m.Tipo()), ToInt(m.DelSistema()), m.Nombre(),
                    m.Memo(), m.Ente(), m.Modalidad(), m.TipoImporte(), m.Moneda(), m.Recurrencia(),
                    m.MovVinculado(), int{m.OrdenMovVinculado()}, m.UsuarioAlta(),
                    m.UsuarioAutoriza(), int{m.Estado()},
                    std::llround(m.FechaEstado().serial * 86400), int{m.Vista()}, m.Imagen());
}

auto Campos(const clsRegRenglonMF& r) {
  return std::tuple(r.idMF(), r.Cuenta(), r.Proyecto(), r.Departamento(), int{r.Orden()},
                    r.AlDebe(), r.Formula(), r.ImporteCta(), r.ImporteMF(), int{r.TipoCambio()},
                    r.ValorTC(), r.Detalle());
}

clsRegMovimientoFrecuente Encabezado(const std::string& nombre) {
  suite::FixedClock reloj = RelojDetenido();
  clsRegMovimientoFrecuente mf(reloj);
  mf.Empresa(1);
  mf.Tipo(enuTipoMovFrec::Asiento);
  mf.Nombre(nombre);
  return mf;
}

TEST_P(Tablas, EncabezadoNuevoTomaClaveDelContadorYLuegoSeEditaEnSuLugar) {
  FakeDBFncs dbf;
  dbf.siguiente = 500;
  // A distinct value in every field, so that two columns swapped show.
  auto mf = Encabezado("Honorarios contador");
  mf.Empresa(2);
  mf.Memo("Comentario");
  mf.DelSistema(enuClasificacionMF::Sistema);
  mf.Ente(7);
  mf.Modalidad(3);
  mf.TipoImporte(4);
  mf.Moneda(5);
  mf.UsuarioAlta(11);
  mf.UsuarioAutoriza(12);
  mf.Estado(enuEstadoMF::Realizado);
  mf.Vista(13);
  mf.Imagen(14);

  EXPECT_EQ(GuardarMovimiento(*cn, dbf, mf, {}), 500);
  EXPECT_EQ(mf.ID(), 500);
  EXPECT_EQ(dbf.tablas, std::vector<std::string>{"genMovimientosFrecuentes"});
  // No schedule and no link are stored as NULL: the suite tells frequent movements from
  // scheduled ones with "MFrRecurrencia Is Null".
  EXPECT_EQ(Filas("MFrID = 500 And MFrRecurrencia Is Null And MFrMovVinculado Is Null"), 1);
  clsRegMovimientoFrecuente leido;
  ASSERT_TRUE(CargarMovimiento(*cn, 500, leido));
  EXPECT_EQ(Campos(leido), Campos(mf));

  const int filas = Filas("1 = 1");
  leido.Nombre("Honorarios del contador");
  leido.Recurrencia(42);
  leido.MovVinculado(43);
  leido.OrdenMovVinculado(44);
  EXPECT_EQ(GuardarMovimiento(*cn, dbf, leido, {}), 500);
  EXPECT_EQ(dbf.tablas.size(), 1u);  // no second key drawn
  EXPECT_EQ(Filas("1 = 1"), filas);
  clsRegMovimientoFrecuente editado;
  ASSERT_TRUE(CargarMovimiento(*cn, 500, editado));
  EXPECT_EQ(Campos(editado), Campos(leido));
}

TEST_P(Tablas, GuardarRechazadoNoEscribeNada) {
  FakeDBFncs falla(/*falla=*/true);
  auto mf = Encabezado("Nunca grabado");
  const auto antes = testing::TakeSnapshot(*cn, testing::MovementTables());
  EXPECT_THROW(GuardarMovimiento(*cn, falla, mf, {}), ComponentError);  // 8000, see NuevoID
  EXPECT_EQ(mf.ID(), 0);
  EXPECT_EQ(testing::TakeSnapshot(*cn, testing::MovementTables()), antes);

  // A quote in the name or the memo is refused before any SQL is built or key drawn.
  testing::RecordingConnection spy(cn);
  FakeDBFncs dbf;
  mf.Nombre("Pago a D'Angelo");
  EXPECT_THROW(GuardarMovimiento(spy, dbf, mf, {}), TextoRechazado);
  mf.Nombre("Pago a proveedor");
  mf.Memo("según la factura 'A'");
  EXPECT_THROW(GuardarMovimiento(spy, dbf, mf, {}), TextoRechazado);
  EXPECT_TRUE(spy.statements().empty());
  EXPECT_TRUE(dbf.tablas.empty());
}

TEST_P(Tablas, ColumnasNulasDejanLosValoresPorDefectoYSinFilaNoSeTocaNada) {
  suite::FixedClock reloj = RelojDetenido();
  cn->Execute(
      "Insert Into genMovimientosFrecuentes (MFrID, MFrTipo, MFrEstado) Values (900, 3, 0)");
  clsRegMovimientoFrecuente mf(reloj), esperado(reloj);  // NULL keeps the moment of construction
  esperado.ID(900);
  esperado.Tipo(enuTipoMovFrec::Calendario);
  ASSERT_TRUE(CargarMovimiento(*cn, 900, mf));
  EXPECT_EQ(Campos(mf), Campos(esperado));

  mf.Nombre("Sin cambios");
  EXPECT_FALSE(CargarMovimiento(*cn, 987654, mf));
  EXPECT_EQ(mf.Nombre(), "Sin cambios");
}

clsRegRenglonMF Renglon(int32_t cuenta, bool debe, double importe) {
  clsRegRenglonMF r;
  r.Cuenta(cuenta);
  r.AlDebe(debe);
  r.ImporteCta(importe);
  r.ImporteMF(importe / 2);
  return r;
}

TEST_P(Tablas, RenglonesOpcionalesSeGrabanNulosYSeLeenComoVacios) {
  auto rs = cn->OpenResultset(SqlRenglonesDe(700));
  auto vacio = Renglon(101, true, 150.5);
  auto lleno = Renglon(143, false, 99.25);
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
  EXPECT_EQ(CountRows(*cn,
                      "Select * From genRenglonMovFrecuentes Where RMFMovimiento = 700 And "
                      "RMFFormula Is Null And RMFDetalle Is Null And RMFFTipoCambio Is Null And "
                      "RMFValorTC Is Null"),
            1);

  auto lee = cn->OpenResultset(SqlRenglonesDe(700) + " Order By RMFOrden");
  for (const clsRegRenglonMF* escrito : {&vacio, &lleno}) {
    ASSERT_FALSE(lee->Eof());
    clsRegRenglonMF leido;
    LeerRenglon(*lee, leido);
    EXPECT_EQ(Campos(leido), Campos(*escrito));
    lee->MoveNext();
  }
}

TEST_P(Tablas, OrdenDeVinculoEsElMayorMasUno) {
  FakeDBFncs dbf;
  dbf.siguiente = 800;
  EXPECT_EQ(SiguienteOrdenVinculo(*cn, 4242), 1);  // nobody linked yet
  for (uint8_t orden : {uint8_t{1}, uint8_t{4}}) {
    auto mf = Encabezado("Miembro");
    mf.MovVinculado(4242);
    mf.OrdenMovVinculado(orden);
    GuardarMovimiento(*cn, dbf, mf, {});
  }
  EXPECT_EQ(SiguienteOrdenVinculo(*cn, 4242), 5);

  // {type, link, position before, position after}: lists and unlinked movements take none, a
  // position already given is kept.
  const struct {
    int16_t tipo;
    int32_t vinculado;
    uint8_t antes, despues;
  } casos[] = {{1, 4242, 0, 5},
               {2, 4242, 2, 2},
               {5, 4242, 0, 0},
               {kTipoItemCheckList, 4242, 0, 0},
               {1, 0, 0, 0}};
  for (const auto& c : casos) {
    auto mf = Encabezado("Nuevo");
    mf.Tipo(static_cast<enuTipoMovFrec>(c.tipo));
    mf.MovVinculado(c.vinculado);
    mf.OrdenMovVinculado(c.antes);
    AsignarOrdenVinculo(*cn, mf);
    EXPECT_EQ(mf.OrdenMovVinculado(), c.despues) << c.tipo << " " << c.vinculado;
  }

  cn->Execute(
      "Insert Into genMovimientosFrecuentes (MFrID, MFrTipo, MFrEstado, MFrMovVinculado, "
      "MFrMVOrden) Values (950, 1, 0, 4300, 255)");
  EXPECT_THROW(SiguienteOrdenVinculo(*cn, 4300), VbError);  // no position after 255
}

TEST_P(Tablas, SoloUnaCuentaDeLaEmpresaQueNoEsCarpetaTomaUnRenglon) {
  struct Caso {
    int32_t empresa, cuenta;
    const char* problema;  // "" when the account can take the line
  };
  // Each account alone, and read together with all the others.
  const std::set<int32_t> todas = {101, 202, 999, 100, 201};
  for (const Caso& c : {Caso{1, 101, ""}, Caso{2, 202, ""}, Caso{1, 999, "la cuenta 999 no existe"},
                        Caso{1, 100, "la cuenta 100 es una carpeta"},
                        Caso{1, 201, "la cuenta 201 es de otra empresa (la 2)"},
                        Caso{2, 100, "la cuenta 100 es de otra empresa (la 1)"}}) {
    EXPECT_EQ(ProblemaCuentaRenglon(*cn, c.empresa, c.cuenta).value_or(""), c.problema);
    EXPECT_EQ(ProblemasCuentasRenglones(*cn, c.empresa, todas).at(c.cuenta).value_or(""),
              c.problema);
  }
}

// Rows inserted by bound statements: more values than one statement may bind are split across
// statements, every row lands once with its values, and rows that do not share the first one's
// columns are refused before anything is written.
TEST_P(Tablas, FilasInsertadasEnVariasSentenciasLleganTodasUnaVez) {
  std::vector<ValoresFila> filas;
  for (int32_t i = 1; i <= 200; ++i) {
    filas.push_back(
        {{"ACuIDAsiento", 9000},
         {"ACuOrden", i},
         {"ACuCuenta", 145},
         {"ACuDebe", i * 0.25},
         {"ACuHaber", 0.0},
         {"ACuDetalle", i % 2 ? Variant::Null() : Variant("par " + std::to_string(i))}});
  }
  const std::vector<DbStatement> sentencias = SentenciasInsertar("cceAsientoCuenta", filas);
  ASSERT_GT(sentencias.size(), 1u);
  for (const DbStatement& s : sentencias) EXPECT_LE(s.params.size(), 900u);
  const std::vector<int64_t> escritas = cn->ExecuteAll(sentencias);
  EXPECT_EQ(std::accumulate(escritas.begin(), escritas.end(), int64_t{0}), 200);
  const std::string de = " From cceAsientoCuenta Where ACuIDAsiento = 9000";
  EXPECT_EQ(CountRows(*cn, "Select Distinct ACuOrden" + de), 200);
  EXPECT_DOUBLE_EQ(vb::CDbl(Scalar(*cn, "Select Sum(ACuDebe)" + de)), 0.25 * 200 * 201 / 2);
  EXPECT_EQ(vb::CStr(Scalar(*cn, "Select ACuDetalle" + de + " And ACuOrden = 200")), "par 200");
  EXPECT_TRUE(Scalar(*cn, "Select ACuDetalle" + de + " And ACuOrden = 199").IsNull());

  filas.push_back({{"ACuIDAsiento", 9000}, {"ACuCuenta", 145}});
  EXPECT_THROW(SentenciasInsertar("cceAsientoCuenta", filas), std::invalid_argument);
}

// A server whose text comparison ignores case and trailing blanks returns rows whose names are
// written differently; they must still be recognised.
class ServidorSinMayusculas : public testing::ForwardingConnection {
 public:
  using ForwardingConnection::ForwardingConnection;
  std::unique_ptr<Resultset> OpenResultset(std::string_view sql,
                                           const DbParams& params = {}) override {
    return inner_->OpenResultset(sql == kSqlParametros ? "Select * from genParametros" : sql,
                                 params);
  }
};

TEST_P(Tablas, ParametrosDeGenParametrosDanElLiteralDeFecha) {
  ParametrosBD p;
  p.idioma = 3;  // not a genParametros setting: kept
  p.moneda_contabilidad = 4;
  CargarParametros(*cn, p);
  EXPECT_TRUE(p.multiusuario);
  EXPECT_EQ(std::pair(p.caracter_fecha, p.formato_fecha),
            std::pair(std::string("'"), std::string("yyyy-mm-dd hh:nn:ss")));
  EXPECT_EQ(std::pair(p.idioma, p.moneda_contabilidad), std::pair(int16_t{3}, int16_t{4}));

  // Names match without regard to case or surrounding blanks, but whole.
  cn->Execute("Delete From genParametros");
  cn->Execute(
      "Insert Into genParametros (ParNombre, ParTexto, ParValor) Values ('  DEFBDDATECHARSQLS ', "
      "'#', Null), ('defbddateformat', 'dd/mm/yyyy', Null), ('Sis_MultiUsuario', Null, 0), "
      "('defBDDateFormatX', 'yyyy', Null)");
  ServidorSinMayusculas servidor(cn);
  CargarParametros(servidor, p);
  EXPECT_EQ(std::pair(p.caracter_fecha, p.formato_fecha),
            std::pair(std::string("#"), std::string("dd/mm/yyyy")));
  EXPECT_FALSE(p.multiusuario);

  // A setting that is NULL or missing falls back to the standard value.
  cn->Execute("Update genParametros Set ParTexto = NULL Where ParValor Is Null");
  cn->Execute("Delete From genParametros Where ParNombre = 'defbddateformat'");
  CargarParametros(*cn, p);
  EXPECT_EQ(std::pair(p.caracter_fecha, p.formato_fecha),
            std::pair(std::string("'"), std::string("yyyy-mm-dd hh:nn:ss")));
}

TEST_P(Tablas, EmpresaConNulosConservaLoAnteriorYUnaDesconocidaNoCambiaNada) {
  cn->Execute(
      "Insert Into cceEmpresas (EmpID, EmpNombre, EmpMonedaContabilidad, EmpPrms) Values (7, "
      "'  Nueva S.A.  ', Null, 'lib:x3|tcom:5')");
  clsEmpresa emp;
  emp.MonedaContabilidad(4);
  emp.Libro(9);
  emp.ValoresUsuarioYAutoriza("S");
  ASSERT_TRUE(emp.Load(7, *cn));
  EXPECT_FALSE(emp.Load(999, *cn));
  EXPECT_EQ(std::tuple(emp.ID(), emp.Nombre(), emp.MonedaContabilidad(),
                       emp.ValoresUsuarioYAutoriza(), emp.Libro(), emp.TipoComprobante()),
            std::tuple(int16_t{7}, "Nueva S.A.", int16_t{4}, "S", int16_t{9}, int16_t{5}));
  ASSERT_TRUE(emp.Load(2, *cn));
  EXPECT_EQ(emp.Nombre(), "Consultora Andina S.R.L.");
  EXPECT_EQ(emp.TipoComprobante(), 12);
}

KMF_INSTANTIATE_ENGINES(Tablas);

}  // namespace
}  // namespace kivmovfrec
