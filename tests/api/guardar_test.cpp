// Connect, the two saves, load and delete through the façade, and the members before Connect.
#include <memory>
#include <stdexcept>
#include <string>

#include "fachada_fixture.h"

namespace kivmovfrec::testing {
namespace {

class Guardar : public Fachada {};

std::shared_ptr<clsRegRenglonMF> Linea(int32_t cuenta) {
  auto r = std::make_shared<clsRegRenglonMF>();
  r->Cuenta(cuenta);
  return r;
}

void Asiento(clsMovFrecuente& mf, const std::string& nombre) {
  mf.CleanEstructura();
  auto m = mf.EstructuraMovFrec()->MovFrecuente();
  m->Empresa(1);
  m->Tipo(enuTipoMovFrec::Asiento);
  m->Nombre(nombre);
}

class FachadaSinConectar : public DemoEngineTest {};

TEST_P(FachadaSinConectar, CadaMiembroNoHaceNada) {
  auto sv = suite::ScriptedServices::Make(cn, kHoy);
  sv.rights->Set(1, "Papelera", "e");
  sv.rights->Set(1, "PasajeAsientos", "AMEe");
  sv.messages->DefaultAnswer(kMsgYes);
  clsMovFrecuente mf;
  mf.Servicios(sv.Bundle());
  mf.Empresa(1);
  const auto antes = TakeSnapshot(*cn, MovementTables());
  const auto estructura = mf.EstructuraMovFrec();
  estructura->MovFrecuente()->Nombre("sin conexión");

  EXPECT_FALSE(mf.Conectado());
  mf.CleanEstructura();
  EXPECT_EQ(mf.EstructuraMovFrec(), estructura);
  EXPECT_EQ(mf.SaveMovimientoFrecuente(), 0);
  EXPECT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), 0);
  EXPECT_FALSE(mf.LoadMF(1));
  mf.DeleteMF(1);
  EXPECT_FALSE(mf.CambiarEstadoMF(1, enuEstadoMF::Papelera));
  EXPECT_FALSE(mf.DeleteRegistroMFConfirmar(20));
  bool ultima = true;
  EXPECT_FALSE(mf.DarRealizadaFechaAgenda(1, ultima));
  EXPECT_FALSE(ultima);
  EXPECT_TRUE(sv.messages->shown().empty());
  EXPECT_EQ(TakeSnapshot(*cn, MovementTables()), antes);

  // Disconnecting brings the same state back.
  mf.Connect(cn);
  EXPECT_TRUE(mf.Conectado());
  mf.Connect(nullptr);
  EXPECT_FALSE(mf.LoadMF(1));
  storage::Parametros() = storage::ParametrosBD{};
  core::SetClock(nullptr);
}

TEST_P(Guardar, ConnectLeeParametrosIdiomaEInstalaElReloj) {
  cn->Execute(
      "Update genParametros Set ParTexto = 'yyyy-mm-dd' Where ParNombre = "
      "'defBDDateFormat'");
  cn->Execute("Update genParametros Set ParTexto = '#' Where ParNombre = 'defBDDateCharSQLs'");
  storage::Parametros() = storage::ParametrosBD{};
  core::SetClock(nullptr);
  mf.Connect(cn);
  EXPECT_EQ(storage::Parametros().formato_fecha, "yyyy-mm-dd");
  EXPECT_EQ(storage::Parametros().caracter_fecha, "#");
  EXPECT_TRUE(storage::Parametros().multiusuario);
  EXPECT_EQ(storage::Parametros().idioma, 1);
  EXPECT_EQ(core::Today(), kHoy);
}

TEST_P(Guardar, ElDiarioPorDefectoEsElDeLaEmpresa) {
  Asiento(mf, "Asiento de la empresa 2");
  mf.Empresa(2);
  const int32_t id = mf.SaveMovimientoFrecuente();
  EXPECT_EQ(vb::CLng(Mov(id, "MFrModalidad")), 2);  // EmpPrms 'LIB:2|...'
  Asiento(mf, "Asiento de la empresa 1");
  mf.Empresa(1);
  EXPECT_EQ(vb::CLng(Mov(mf.SaveMovimientoFrecuenteConBloqueo(), "MFrModalidad")), 1);
}

TEST_P(Guardar, SoloElGuardadoConBloqueoReiniciaLaOcurrenciaDeUnaAgendaUnica) {
  for (bool bloqueo : {false, true}) {
    Asiento(mf, bloqueo ? "Con bloqueo" : "Sin bloqueo");
    auto rec = mf.EstructuraMovFrec()->Recurrencia();
    rec->Frecuencia("000000");
    rec->FechaProxima("20/12/2026");
    rec->CadaCuanto(0);
    rec->CantidadVeces(1);
    rec->NumOcurrencia(5);
    const int32_t id =
        bloqueo ? mf.SaveMovimientoFrecuenteConBloqueo() : mf.SaveMovimientoFrecuente();
    ASSERT_GT(id, 0);
    EXPECT_EQ(Agenda(id).NumOcurrencia(), bloqueo ? 1 : 5) << bloqueo;
    EXPECT_EQ(Agenda(id).FechaInicio(), "20/12/2026");  // completed from the next due date
  }
}

TEST_P(Guardar, VinculadoNuevoLineasQuitadasYAgendaQuitada) {
  // A new entry linked to group 16 takes the next position.
  Asiento(mf, "Tercero del grupo");
  mf.EstructuraMovFrec()->MovFrecuente()->MovVinculado(16);
  mf.EstructuraMovFrec()->Renglones()->AddRenglon(Linea(141));
  const int32_t id = mf.SaveMovimientoFrecuenteConBloqueo();
  EXPECT_EQ(vb::CLng(Mov(id, "MFrMVOrden")), 3);

  // All lines removed in memory: none stays stored.
  ASSERT_TRUE(mf.LoadMF(2));
  while (mf.EstructuraMovFrec()->Renglones()->QRenglones() > 0) {
    mf.EstructuraMovFrec()->Renglones()->RemoveRenglon(1);
  }
  EXPECT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), 2);
  EXPECT_EQ(CountRows(*cn, "Select * From genRenglonMovFrecuentes Where RMFMovimiento = 2"), 0);

  // Schedule dropped: the old row goes on the next save.
  ASSERT_TRUE(mf.LoadMF(4));
  mf.EstructuraMovFrec()->MovFrecuente()->Recurrencia(0);
  EXPECT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), 4);
  EXPECT_EQ(CountRows(*cn, "Select * From genRecurrencias Where RecID = 3"), 0);
  EXPECT_TRUE(Mov(4, "MFrRecurrencia").IsNull());
}

TEST_P(Guardar, ComillaEnElNombreDevuelveCeroConBloqueoYExcepcionSin) {
  Asiento(mf, "Alquiler D'Angelo");
  const auto antes = Tablas();
  EXPECT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), 0);
  EXPECT_TRUE(Mensajes().empty());  // the caller reports
  EXPECT_THROW(mf.SaveMovimientoFrecuente(), std::invalid_argument);
  EXPECT_EQ(Tablas(), antes);
  EXPECT_FALSE(cn->InTransaction());
}

TEST_P(Guardar, LoadYDeleteMF) {
  ASSERT_TRUE(mf.LoadMF(6));
  const auto cargado = mf.EstructuraMovFrec()->MovFrecuente();
  EXPECT_EQ(cargado->Nombre(), "Honorarios del estudio contable");
  EXPECT_FALSE(mf.LoadMF(4242));
  EXPECT_EQ(mf.EstructuraMovFrec()->MovFrecuente(), cargado);

  mf.DeleteMF(6);
  EXPECT_EQ(CountRows(*cn, "Select * From genMovimientosFrecuentes Where MFrID = 6"), 0);
  EXPECT_EQ(CountRows(*cn, "Select * From genRecurrencias Where RecID = 4"), 0);
  EXPECT_EQ(mf.EstructuraMovFrec()->MovFrecuente()->ID(), 6);  // memory untouched
}

KMF_INSTANTIATE_ENGINES(FachadaSinConectar);
KMF_INSTANTIATE_ENGINES(Guardar);

}  // namespace
}  // namespace kivmovfrec::testing
