// ShowWizard: the rights of each kind before the wizard opens, and a save that fails at any of
// its statements leaving the database as it was.
#include <memory>
#include <string>
#include <vector>

#include "fachada_fixture.h"
#include "kivmovfrec/guion.h"
#include "resources/msg.h"
#include "support/faulty_connection.h"

namespace kivmovfrec::testing {
namespace {

// A voucher on the private contact 2 made public, two lines, saved.
const char* const kComprobante = R"js([
  {"escribir": "tNombre", "texto": "Flete mensual"},
  {"escribir": "tEnte", "texto": "2"}, {"responder": "si"},
  {"elegir": "cfTipoComprobante", "opcion": "Factura de proveedor"},
  {"elegir": "cfMoneda", "opcion": "Peso argentino ($)"},
  {"pulsar": "bfSiguiente"},
  {"escribir": "tEditCta", "texto": "1.1.01"}, {"escribir": "ocEditD", "texto": "100"},
  {"pulsar": "bfEditOK"},
  {"escribir": "tEditCta", "texto": "4.1.01"}, {"escribir": "ocEditH", "texto": "100"},
  {"pulsar": "bfEditOK"},
  {"pulsar": "bfFinalizar"}, {"responder": "si"}])js";

class Asistente : public Fachada {
 protected:
  InformeGuion Correr(clsMovFrecuente& f, const suite::ScriptedServices& s,
                      const std::string& pasos) {
    auto guion = GuionDialogos::Leer(pasos);
    SuiteServices servicios = s.Bundle();
    guion->Instalar(servicios);
    f.Servicios(servicios);
    const int32_t r = f.ShowWizard(1);
    InformeGuion i = guion->Informe();
    EXPECT_EQ(i.resultado, r) << "the report gives what ShowWizard returned";
    return i;
  }
  void Nuevo(clsMovFrecuente& f, enuTipoMovFrec tipo) {
    f.CleanEstructura();
    f.EstructuraMovFrec()->MovFrecuente()->Tipo(tipo);
  }
  Snapshot Todo() {
    std::vector<std::string> tablas = MovementTables();
    tablas.push_back("genEntes");
    return TakeSnapshot(*cn, tablas);
  }
};

TEST_P(Asistente, ANewMovementNeedsAAndAStoredOneMAndANoticeNeither) {
  struct Caso {
    enuTipoMovFrec tipo;
    int32_t id;  // a demo movement to load, 0 for a new one
    const char* opcion;
    const char* letras;
    bool abre;
  };
  const std::vector<Caso> casos = {
      {enuTipoMovFrec::Asiento, 0, "PasajeAsientos", "M", false},
      {enuTipoMovFrec::Asiento, 0, "PasajeAsientos", "a", true},
      {enuTipoMovFrec::Asiento, 2, "PasajeAsientos", "A", false},
      {enuTipoMovFrec::Asiento, 2, "PasajeAsientos", "m", true},
      {enuTipoMovFrec::Comprobante, 0, "PasajeAsientos", "AM", false},
      {enuTipoMovFrec::Comprobante, 0, "Comprobantes", "A", true},
      {enuTipoMovFrec::Calendario, 0, "Comprobantes", "", true},
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(std::string(c.opcion) + " " + c.letras + " id " + std::to_string(c.id));
    FachadaPropia f(cn);
    f.sv.rights->Set(1, c.opcion, c.letras);
    if (c.id > 0) {
      ASSERT_TRUE(f.mf.LoadMF(c.id));
    } else {
      Nuevo(f.mf, c.tipo);
    }
    const InformeGuion i = Correr(f.mf, f.sv, R"([{"pulsar": "bfCancelar"}])");
    EXPECT_EQ(i.resultado, 0);
    EXPECT_EQ(i.formulario, c.abre ? "frmWMovFrec" : "");
    if (!c.abre) {
      ASSERT_EQ(i.mensajes.size(), 1u);
      EXPECT_EQ(i.mensajes[0].numero, msg::kSinDerechos);
      EXPECT_EQ(i.mensajes[0].titulo, "Movimientos Frecuentes");
    }
  }
}

// Counts the statements of a run that only cancels and of one that saves, then fails at each
// statement in between: whatever fails, nothing is written and the wizard reports and stays.
TEST_P(Asistente, AFaultAtAnyStatementOfTheSaveLeavesTheDatabaseAsItWas) {
  std::string cancelar = kComprobante;
  cancelar.replace(cancelar.rfind(R"({"pulsar": "bfFinalizar"})"), std::string::npos,
                   R"({"pulsar": "bfCancelar"}])");
  auto contar = [&](const std::string& pasos) {
    auto contador = std::make_shared<FaultyConnection>(cn, 0);
    FachadaPropia f(contador);
    f.sv.rights->Set(1, "Comprobantes", "A");
    Nuevo(f.mf, enuTipoMovFrec::Comprobante);
    const int32_t id = Correr(f.mf, f.sv, pasos).resultado;
    EXPECT_EQ(f.mf.EstructuraMovFrec()->MovFrecuente()->ID(), id)
        << "the saved movement stays the current one";
    return contador->statements();
  };
  const Snapshot antes = Todo();
  const int desde = contar(cancelar);
  const int hasta = contar(kComprobante);
  EXPECT_TRUE(Scalar(*cn, "Select EntOwner From genEntes Where EntID = 2").IsNull())
      << "the saved voucher made its contact public";
  ASSERT_GT(hasta, desde + 5) << "the save runs several statements";
  // The counted save wrote a voucher: start again from the database as it was.
  cn->Execute("Delete From genRenglonMovFrecuentes Where RMFMovimiento > 100");
  cn->Execute("Delete From genMovimientosFrecuentes Where MFrID > 100");
  cn->Execute("Update genEntes Set EntOwner = 1 Where EntID = 2");
  cn->Execute(
      "Update genContadores Set CntValor = 100 Where CntTabla = 'genMovimientosFrecuentes'");
  ASSERT_EQ(Todo(), antes);

  std::string falla_y_cancela = kComprobante;
  falla_y_cancela.insert(falla_y_cancela.size() - 1, R"(, {"pulsar": "bfCancelar"})");
  for (int k = desde + 1; k <= hasta; ++k) {
    SCOPED_TRACE("sentencia " + std::to_string(k) + " de " + std::to_string(hasta));
    auto falla = std::make_shared<FaultyConnection>(cn, k);
    FachadaPropia f(falla);
    f.sv.rights->Set(1, "Comprobantes", "A");
    Nuevo(f.mf, enuTipoMovFrec::Comprobante);
    const InformeGuion i = Correr(f.mf, f.sv, falla_y_cancela);
    EXPECT_TRUE(falla->failed());
    EXPECT_EQ(i.resultado, 0);
    EXPECT_EQ(Todo(), antes);
    EXPECT_NE(f.mf.UltimoError(), "");
  }
}

KMF_INSTANTIATE_ENGINES(Asistente);

}  // namespace
}  // namespace kivmovfrec::testing
