// A database failure at every statement of the members that run their own transaction leaves
// every table as it was; outside a transaction the failure reaches the caller.
#include <iostream>
#include <memory>
#include <string>

#include "fachada_fixture.h"
#include "support/faulty_connection.h"

namespace kivmovfrec::testing {
namespace {

// A façade over a connection that fails at statement `base + k`, where `base` statements are
// spent by Connect and the preparation.
struct Intento {
  std::shared_ptr<FaultyConnection> cn;
  suite::ScriptedServices sv;
  std::unique_ptr<clsMovFrecuente> mf;
};

class Fallos : public ::testing::Test {
 protected:
  void SetUp() override { real = OpenInstalledDb(); }
  void TearDown() override {
    storage::Parametros() = storage::ParametrosBD{};
    core::SetClock(nullptr);
  }

  // `preparar` loads or builds the movement to work on (through the faulty connection).
  template <typename Preparar>
  Intento Nuevo(int fail_at, Preparar preparar) {
    Intento i;
    i.cn = std::make_shared<FaultyConnection>(real, fail_at);
    i.sv = suite::ScriptedServices::Make(real, kHoy);
    i.sv.rights->Set(1, "Papelera", "e");
    i.sv.messages->DefaultAnswer(kMsgYes);
    i.mf = std::make_unique<clsMovFrecuente>();
    i.mf->Servicios(i.sv.Bundle());
    i.mf->Connect(i.cn);
    i.mf->Empresa(1);
    preparar(*i.mf);
    return i;
  }

  // Runs `miembro` failing at each statement in turn until it succeeds. Every failed attempt
  // must return the zero value and leave the tables as they were.
  template <typename Preparar, typename Miembro>
  void CadaSentencia(const char* nombre, Preparar preparar, Miembro miembro) {
    const int base = Nuevo(0, preparar).cn->statements();
    const Snapshot antes = TakeSnapshot(*real, MovementTables());
    int comparados = 0;
    for (int k = 1; k < 200; ++k) {
      Intento i = Nuevo(base + k, preparar);
      const auto copia_mov = *i.mf->EstructuraMovFrec()->MovFrecuente();
      const auto copia_rec = *i.mf->EstructuraMovFrec()->Recurrencia();
      const auto resultado = miembro(*i.mf);
      if (!i.cn->failed()) {
        EXPECT_TRUE(resultado) << nombre << ": sin fallo debe completarse";
        EXPECT_NE(TakeSnapshot(*real, MovementTables()), antes) << nombre;
        std::cout << "[ " << nombre << " ] " << (k - 1) << " sentencias con fallo inyectado "
                  << "(la " << k << ".a completa el trabajo, commit incluido); " << comparados
                  << " estados comparados\n";
        return;
      }
      EXPECT_FALSE(resultado) << nombre << ", fallo en la sentencia " << k;
      EXPECT_EQ(TakeSnapshot(*real, MovementTables()), antes)
          << nombre << ", fallo en la sentencia " << k;
      // The records in memory are as they were before the attempt.
      EXPECT_EQ(i.mf->EstructuraMovFrec()->MovFrecuente()->ID(), copia_mov.ID());
      EXPECT_EQ(i.mf->EstructuraMovFrec()->MovFrecuente()->Recurrencia(), copia_mov.Recurrencia());
      EXPECT_EQ(i.mf->EstructuraMovFrec()->Recurrencia()->ID(), copia_rec.ID());
      ++comparados;
    }
    ADD_FAILURE() << nombre << " nunca se completó";
  }

  std::shared_ptr<Connection> real;
};

void NuevoVinculadoConAgendaYLineas(clsMovFrecuente& mf) {
  auto e = mf.EstructuraMovFrec();
  e->MovFrecuente()->Empresa(1);
  e->MovFrecuente()->Tipo(enuTipoMovFrec::Asiento);
  e->MovFrecuente()->Nombre("Nuevo con todo");
  e->MovFrecuente()->MovVinculado(16);
  e->Recurrencia()->Frecuencia("200001");
  e->Recurrencia()->FechaProxima("01/12/2026");
  for (int32_t cuenta : {141, 113}) {
    auto r = std::make_shared<clsRegRenglonMF>();
    r->Cuenta(cuenta);
    e->Renglones()->AddRenglon(r);
  }
}

void ExistenteModificado(clsMovFrecuente& mf) {
  ASSERT_TRUE(mf.LoadMF(1));
  mf.EstructuraMovFrec()->MovFrecuente()->Nombre("Alquiler renegociado");
  mf.EstructuraMovFrec()->Recurrencia()->FechaProxima("15/11/2026");
  mf.EstructuraMovFrec()->Renglones()->RemoveRenglon(2);
}

void ExistentePierdeSuAgenda(clsMovFrecuente& mf) {
  ASSERT_TRUE(mf.LoadMF(3));
  mf.EstructuraMovFrec()->MovFrecuente()->Recurrencia(0);
}

TEST_F(Fallos, GuardadoConBloqueoNuevo) {
  CadaSentencia("guardado con bloqueo, nuevo", NuevoVinculadoConAgendaYLineas,
                [](clsMovFrecuente& mf) { return mf.SaveMovimientoFrecuenteConBloqueo(); });
}

TEST_F(Fallos, GuardadoConBloqueoExistente) {
  CadaSentencia("guardado con bloqueo, existente", ExistenteModificado,
                [](clsMovFrecuente& mf) { return mf.SaveMovimientoFrecuenteConBloqueo(); });
}

TEST_F(Fallos, GuardadoConBloqueoQueBorraLaAgenda) {
  CadaSentencia("guardado con bloqueo, sin agenda", ExistentePierdeSuAgenda,
                [](clsMovFrecuente& mf) { return mf.SaveMovimientoFrecuenteConBloqueo(); });
}

TEST_F(Fallos, BorradoDesdeLaPapelera) {
  CadaSentencia(
      "borrado desde la papelera", [](clsMovFrecuente&) {},
      [](clsMovFrecuente& mf) { return mf.DeleteRegistroMFConfirmar(1); });
}

TEST_F(Fallos, DarPorRealizadaUnAvisoYUnaCadena) {
  CadaSentencia(
      "ocurrencia realizada, aviso", [](clsMovFrecuente&) {},
      [](clsMovFrecuente& mf) { return mf.DarRealizadaFechaAgenda(9); });
  CadaSentencia(
      "ocurrencia realizada, cadena", [](clsMovFrecuente&) {},
      [](clsMovFrecuente& mf) { return mf.DarRealizadaFechaAgenda(25); });
}

TEST_F(Fallos, SinTransaccionElErrorLlegaAlLlamador) {
  int fallos = 0;
  for (int k = 1; k < 200; ++k) {
    real = OpenInstalledDb();  // the plain save leaves what it wrote before failing
    const int base = Nuevo(0, NuevoVinculadoConAgendaYLineas).cn->statements();
    Intento i = Nuevo(base + k, NuevoVinculadoConAgendaYLineas);
    try {
      EXPECT_GT(i.mf->SaveMovimientoFrecuente(), 0);
      EXPECT_FALSE(i.cn->failed());
      break;
    } catch (const DbError& e) {
      EXPECT_TRUE(i.cn->failed()) << e.what();
      ++fallos;
    }
  }
  EXPECT_GE(fallos, 4);  // schedule, link order, header, lines
  std::cout << "[ guardado sin transacción ] " << fallos << " fallos llegaron al llamador\n";

  Intento i = Nuevo(0, [](clsMovFrecuente&) {});
  const int base = i.cn->statements();
  i = Nuevo(base + 1, [](clsMovFrecuente&) {});
  EXPECT_THROW(i.mf->LoadMF(1), DbError);
  i = Nuevo(base + 1, [](clsMovFrecuente&) {});
  EXPECT_THROW(i.mf->DeleteMF(1), DbError);
}

}  // namespace
}  // namespace kivmovfrec::testing
