// The lines collection and the movement aggregate (load, save, delete) against the demo data,
// on every engine.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>

#include "fakes.h"
#include "install/demo_db.h"
#include "kivmovfrec/mf_tipo.h"
#include "platform/vb/convert.h"
#include "storage/parametros.h"
#include "storage/sql_texto.h"
#include "support/db_snapshot.h"
#include "support/demo_engine.h"
#include "support/recording_connection.h"

namespace kivmovfrec {
namespace {

using testing::CountRows;
using testing::FakeDBFncs;
using testing::Scalar;

std::shared_ptr<clsRegRenglonMF> Linea(int32_t cuenta, bool debe, const std::string& formula = {}) {
  auto r = std::make_shared<clsRegRenglonMF>();
  r->Cuenta(cuenta);
  r->AlDebe(debe);
  r->Formula(formula);
  return r;
}

TEST(RenglonesMF, PosicionesDesdeUnoYReferencias) {
  clsRenglonesMF col;
  auto a = Linea(101, true), b = Linea(104, true);
  for (const auto& r : {a, Linea(102, false), Linea(103, false)}) col.AddRenglon(r);
  ASSERT_EQ(col.QRenglones(), 3);
  EXPECT_EQ(col.Renglon(1), a);  // the record itself, not a copy

  col.RemoveRenglon(2);
  ASSERT_EQ(col.QRenglones(), 2);
  EXPECT_EQ(col.Renglon(2)->Cuenta(), 103);
  col.SetRenglon(2, b);
  EXPECT_EQ(col.Renglon(2), b);

  for (int16_t fuera : {0, 3, -1}) {
    EXPECT_THROW(col.Renglon(fuera), VbError) << fuera;
    EXPECT_THROW(col.RemoveRenglon(fuera), VbError) << fuera;
  }
  EXPECT_THROW(col.AddRenglon(nullptr), std::invalid_argument);
  EXPECT_THROW(col.SetRenglon(1, nullptr), std::invalid_argument);
  EXPECT_EQ(col.QRenglones(), 2);
}

class Agregado : public testing::DemoEngineTest {
 protected:
  void SetUpDatabase() override {
    DemoEngineTest::SetUpDatabase();
    real = DemoEngineTest::cn;
    cn = std::make_shared<testing::RecordingConnection>(real);
    dbf.siguiente = 900;
  }
  int Lineas(int32_t id) {
    return CountRows(
        *real, "Select * From genRenglonMovFrecuentes Where RMFMovimiento = " + std::to_string(id));
  }
  std::shared_ptr<Connection> real;
  std::shared_ptr<testing::RecordingConnection> cn;
  FakeDBFncs dbf;
};

TEST_P(Agregado, CargaEncabezadoLineasEnOrdenYAgenda) {
  clsMFTipo mf;
  ASSERT_TRUE(mf.Load(*cn, 18));
  EXPECT_EQ(mf.MovFrecuente()->Nombre(), "Distribución de servicios por sucursal");
  ASSERT_EQ(mf.Renglones()->QRenglones(), 3);
  const auto r2 = mf.Renglones()->Renglon(2);
  EXPECT_EQ(r2->Orden(), 2);
  EXPECT_EQ(r2->Formula(), "[1:145;1;1]*0.5");
  EXPECT_EQ(r2->ProyectoAbreviacion(), "COR");
  EXPECT_EQ(r2->DepartamentoAbreviacion(), "VTA");
  EXPECT_EQ(r2->CuentaNombre(), "Servicios y honorarios");
  EXPECT_EQ(mf.Recurrencia()->ID(), 0);    // frequent: no schedule
  EXPECT_EQ(cn->statements().size(), 1u);  // one joined query reads everything

  ASSERT_TRUE(mf.Load(*cn, 1));
  EXPECT_EQ(mf.Recurrencia()->ID(), 1);
  EXPECT_EQ(mf.Recurrencia()->FechaProxima(), "10/11/2026");
  EXPECT_EQ(mf.Renglones()->QRenglones(), 2);
}

TEST_P(Agregado, MovimientoSinLineasDaCeroLineasYUnoInexistenteNoCambiaNada) {
  clsMFTipo mf;
  ASSERT_TRUE(mf.Load(*cn, 9));  // notice without lines
  EXPECT_EQ(mf.Renglones()->QRenglones(), 0);
  EXPECT_EQ(mf.Recurrencia()->FechaProxima(), "15/12/2026 15:30:00");
  const auto encabezado = mf.MovFrecuente();
  EXPECT_FALSE(mf.Load(*cn, 4242));
  EXPECT_EQ(mf.MovFrecuente(), encabezado);
}

TEST_P(Agregado, GuardarNuevoEnOrdenDeLosPasos) {
  clsMFTipo mf;
  auto& mov = *mf.MovFrecuente();
  mov.Empresa(1);
  mov.Tipo(enuTipoMovFrec::Asiento);
  mov.Nombre("Nuevo agendado");
  mov.MovVinculado(16);
  mf.Recurrencia()->Frecuencia("200001");
  mf.Recurrencia()->FechaProxima("05/01/2027");
  mf.Renglones()->AddRenglon(Linea(141, true, "1000"));
  auto fija = Linea(113, false, "[10:]");
  fija->Orden(7);  // an explicit position is kept
  mf.Renglones()->AddRenglon(fija);

  const int32_t id = mf.Save(*cn, dbf, /*libro=*/3, {});
  EXPECT_EQ(id, 901);  // the schedule drew 900 first
  EXPECT_EQ(dbf.tablas, (std::vector<std::string>{"genRecurrencias", "genMovimientosFrecuentes"}));
  EXPECT_EQ(mov.Recurrencia(), 900);
  EXPECT_EQ(mov.OrdenMovVinculado(), 3);  // 16 and 17 hold 1 and 2
  EXPECT_EQ(mov.Modalidad(), 3);          // entry without journal takes the company's
  clsMFTipo leido;                        // lines come back in position order
  ASSERT_TRUE(leido.Load(*real, 901));
  const auto primera = leido.Renglones()->Renglon(1), segunda = leido.Renglones()->Renglon(2);
  EXPECT_EQ(std::tuple(primera->Cuenta(), int{primera->Orden()}, segunda->Cuenta(),
                       int{segunda->Orden()}),
            std::tuple(141, 1, 113, 7));

  // A second save updates in place.
  EXPECT_EQ(mf.Save(*cn, dbf, 3, {}), 901);
  EXPECT_EQ(Lineas(901), 2);
  EXPECT_EQ(CountRows(*real, "Select * From genRecurrencias Where RecID = 900"), 1);

  // Only an entry takes the journal.
  clsMFTipo lista;
  lista.MovFrecuente()->Tipo(enuTipoMovFrec::CheckList);
  lista.MovFrecuente()->Nombre("Lista");
  lista.Save(*cn, dbf, 1, {});
  EXPECT_EQ(lista.MovFrecuente()->Modalidad(), 0);
}

TEST_P(Agregado, LineasQuitadasEnMemoriaDesaparecenDeLaTabla) {
  clsMFTipo mf;
  ASSERT_TRUE(mf.Load(*cn, 2));
  ASSERT_EQ(Lineas(2), 4);
  mf.Renglones()->RemoveRenglon(2);
  mf.Save(*cn, dbf, 1, {});
  EXPECT_EQ(Lineas(2), 3);
  while (mf.Renglones()->QRenglones() > 0) mf.Renglones()->RemoveRenglon(1);
  mf.Save(*cn, dbf, 1, {});
  EXPECT_EQ(Lineas(2), 0);
}

TEST_P(Agregado, RecurrenciaCeroBorraLaAgendaAnteriorAlGuardar) {
  clsMFTipo mf;
  ASSERT_TRUE(mf.Load(*cn, 3));
  mf.MovFrecuente()->Recurrencia(0);
  mf.Save(*cn, dbf, 1, {});
  EXPECT_EQ(CountRows(*real, "Select * From genRecurrencias Where RecID = 2"), 0);
  EXPECT_TRUE(Scalar(*real, "Select MFrRecurrencia From genMovimientosFrecuentes Where MFrID = 3")
                  .IsNull());
  EXPECT_TRUE(dbf.tablas.empty());
}

TEST_P(Agregado, ComillaEnUnaLineaSeRechazaAntesDeCualquierSentencia) {
  clsMFTipo mf;
  ASSERT_TRUE(mf.Load(*real, 2));
  mf.Renglones()->Renglon(4)->Detalle("D'Angelo");
  const auto antes = testing::TakeSnapshot(*real, testing::MovementTables());
  EXPECT_THROW(mf.Save(*cn, dbf, 1, {}), storage::TextoRechazado);
  EXPECT_TRUE(cn->statements().empty());
  EXPECT_EQ(testing::TakeSnapshot(*real, testing::MovementTables()), antes);
}

TEST_P(Agregado, BorrarQuitaLineasAgendaYEncabezado) {
  clsMFTipo::Delete(*cn, 1);
  EXPECT_EQ(Lineas(1), 0);
  EXPECT_EQ(Lineas(2), 4);  // other movements keep theirs
  EXPECT_EQ(CountRows(*real, "Select * From genRecurrencias Where RecID = 1"), 0);
  EXPECT_EQ(CountRows(*real, "Select * From genMovimientosFrecuentes Where MFrID = 1"), 0);
  const auto antes = testing::TakeSnapshot(*real, testing::MovementTables());
  EXPECT_NO_THROW(clsMFTipo::Delete(*cn, 1));
  EXPECT_EQ(testing::TakeSnapshot(*real, testing::MovementTables()), antes);
}

KMF_INSTANTIATE_ENGINES(Agregado);

}  // namespace
}  // namespace kivmovfrec
