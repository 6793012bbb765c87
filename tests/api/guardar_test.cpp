// Connect and the two saves through the façade, why a member failed, and the members before
// Connect (every one a no-op).
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "fachada_fixture.h"

namespace kivmovfrec::testing {
namespace {

class Guardar : public Fachada {};

// Before Connect, or after Connect(nullptr), every member is a no-op: it writes nothing, shows
// nothing, and leaves its output arguments alone.
TEST_P(Guardar, SinConexionCadaMiembroNoHaceNada) {
  EXPECT_FALSE(clsMovFrecuente().LoadMF(1));
  sv.rights->Set(1, "Papelera", "e");
  sv.rights->Set(1, "PasajeAsientos", "AMEe");
  sv.messages->DefaultAnswer(kMsgYes);
  mf.Connect(nullptr);
  EXPECT_FALSE(mf.Conectado());
  const auto antes = Tablas();
  const auto estructura = mf.EstructuraMovFrec();
  mf.CleanEstructura();
  EXPECT_EQ(mf.EstructuraMovFrec(), estructura);
  EXPECT_EQ(mf.SaveMovimientoFrecuente() + mf.SaveMovimientoFrecuenteConBloqueo(), 0);
  mf.DeleteMF(1);
  bool ultima = true, editable = true;
  double importe = 3;
  clsRenglonesMF lineas;
  for (bool hecho :
       {mf.LoadMF(1), mf.CambiarEstadoMF(1, enuEstadoMF::Papelera),
        mf.DeleteRegistroMFConfirmar(20), mf.DarRealizadaFechaAgenda(1, ultima),
        mf.SetCalculoFormulasMF(1, true), mf.GetValueUnaPata(lineas, 1, 1, editable, importe),
        mf.RecalcularFormulasMF(lineas, 1, true)}) {
    EXPECT_FALSE(hecho);
  }
  EXPECT_EQ(mf.InterpretarFormulaLeyenda("&[FechaC]", kHoy), "");
  EXPECT_FALSE(ultima);
  EXPECT_TRUE(editable);
  EXPECT_DOUBLE_EQ(importe, 3);
  EXPECT_TRUE(Mensajes().empty());
  EXPECT_EQ(Tablas(), antes);
}

TEST_P(Guardar, ElDiarioPorDefectoEsElDeLaEmpresa) {
  AsientoNuevo(mf, "Asiento de la empresa 2");
  mf.Empresa(2);
  const int32_t id = mf.SaveMovimientoFrecuente();
  EXPECT_EQ(vb::CLng(Mov(id, "MFrModalidad")), 2);  // EmpPrms 'LIB:2|...'
  AsientoNuevo(mf, "Asiento de la empresa 1");
  mf.Empresa(1);
  EXPECT_EQ(vb::CLng(Mov(mf.SaveMovimientoFrecuenteConBloqueo(), "MFrModalidad")), 1);
}

TEST_P(Guardar, SoloElGuardadoConBloqueoReiniciaLaOcurrenciaDeUnaAgendaUnica) {
  for (bool bloqueo : {false, true}) {
    AsientoNuevo(mf, bloqueo ? "Con bloqueo" : "Sin bloqueo");
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

// The engine refuses every write from here on (or writes again).
void SoloLectura(Connection& cn, bool si) {
  if (cn.engine() == Engine::PostgreSQL) {
    cn.Execute(std::string("Set default_transaction_read_only = ") + (si ? "on" : "off"));
  } else {
    cn.Execute(std::string("PRAGMA query_only = ") + (si ? "ON" : "OFF"));
  }
}

// A locked save that fails writes nothing and shows nothing: UltimoError says why. The refusals
// come before anything is written, and the plain save throws them.
TEST_P(Guardar, ElGuardadoConBloqueoDicePorQueFallo) {
  struct Caso {
    std::string nombre;
    std::string motivo;  // the start of UltimoError
    bool rechazo;        // refused before writing: the plain save throws it too
  };
  for (const Caso& c : std::vector<Caso>{
           {"dos diferencias", "No se puede incluir la fórmula resto en más de una cuenta.", true},
           {"sin contador", "error 8000 (DBFncs): Resultado de la función get_TableCounter", false},
           // A new movement: the engine's refusal comes from drawing its key.
           {"solo lectura, nuevo", "la base de datos es de solo lectura: ", false},
           {"solo lectura", "la base de datos es de solo lectura: ", false},
       }) {
    SCOPED_TRACE(c.nombre);
    const bool solo_lectura = c.nombre.starts_with("solo lectura");
    AsientoNuevo(mf, c.nombre);
    if (c.nombre == "solo lectura") {
      ASSERT_TRUE(mf.LoadMF(18));  // an update: no key to draw
    }
    for (const char* formula : {"[10:]", " [10:] "}) {
      if (c.nombre != "dos diferencias") break;
      auto l = std::make_shared<clsRegRenglonMF>();
      l->Cuenta(102);
      l->Formula(formula);
      mf.EstructuraMovFrec()->Renglones()->AddRenglon(l);
    }
    sv.db->CountersFail(c.nombre == "sin contador");
    const auto antes = Tablas();
    if (solo_lectura) SoloLectura(*cn, true);
    EXPECT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), 0);
    if (solo_lectura) SoloLectura(*cn, false);
    EXPECT_EQ(mf.UltimoError().rfind(c.motivo, 0), 0u) << mf.UltimoError();
    EXPECT_TRUE(Mensajes().empty());  // the caller reports
    if (c.rechazo) {
      EXPECT_THROW(mf.SaveMovimientoFrecuente(), std::invalid_argument);
    }
    EXPECT_EQ(Tablas(), antes);
    EXPECT_FALSE(cn->InTransaction());
  }
  EXPECT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), 18);  // writable again: saved, no reason
  EXPECT_EQ(mf.UltimoError(), "");
}

KMF_INSTANTIATE_ENGINES(Guardar);

}  // namespace
}  // namespace kivmovfrec::testing
