// A database failure at every statement (commit included) of every writing member of the
// façade, on every engine:
//  - members that run their own transaction (the locked save, delete from the bin, occurrence
//    done) return 0 / false and leave every table as it was;
//  - the state change writes one row outside a transaction: it reports the error, returns false
//    and leaves every table as it was;
//  - the plain save and DeleteMF run outside a transaction: the error reaches the caller.
// Each member prints one summary line (statements failed, states compared).
#include <iostream>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "fachada_fixture.h"
#include "support/faulty_connection.h"

namespace kivmovfrec::testing {
namespace {

// A façade whose connection (and the counter service behind it) fails at one statement.
struct Intento {
  std::shared_ptr<FaultyConnection> cn;
  suite::ScriptedServices sv;
  std::unique_ptr<clsMovFrecuente> mf;
};

using Preparar = void (*)(clsMovFrecuente&);

// Figures of one member over all its scenarios: injected failures that fired, table states that
// differed from the state before, failures shown to the user, failures that reached the caller.
struct Cifras {
  int escenarios = 0, fallidas = 0, distintos = 0, reportados = 0, al_llamador = 0;
};

class Fallos : public Fachada {
 protected:
  // `preparar` loads or builds the movement to work on (through the faulty connection).
  Intento Nuevo(int fail_at, Preparar preparar) {
    Intento i;
    i.cn = std::make_shared<FaultyConnection>(cn, fail_at);
    i.sv = suite::ScriptedServices::Make(i.cn, kHoy);
    i.sv.rights->Set(1, "Papelera", "e");
    i.sv.rights->Set(1, "PasajeAsientos", "AMEe");
    i.sv.messages->DefaultAnswer(kMsgYes);
    i.mf = std::make_unique<clsMovFrecuente>();
    i.mf->Servicios(i.sv.Bundle());
    i.mf->Connect(i.cn);
    i.mf->Empresa(1);
    preparar(*i.mf);
    return i;
  }

  // Statements spent by Connect and the preparation, before the member runs.
  int Base(Preparar preparar) { return Nuevo(0, preparar).cn->statements(); }

  // A member that runs in a transaction (or writes a single row): fails at each statement in
  // turn until it completes. Every failed attempt must return the zero value, leave no
  // transaction open and the tables as they were; when `restaura_memoria`, the records in
  // memory also keep their keys. `reporta`: the member shows the error it trapped (critical
  // icon, after its own question if any); otherwise it shows nothing.
  template <typename Miembro>
  void Atomico(Cifras& cifras, const std::string& escenario, Preparar preparar, Miembro miembro,
               bool reporta, bool restaura_memoria = false) {
    ++cifras.escenarios;
    const int base = Base(preparar);
    const Snapshot antes = Tablas();
    for (int k = 1; k < 300; ++k) {
      const std::string donde = escenario + ", fallo en la sentencia " + std::to_string(k);
      Intento i = Nuevo(base + k, preparar);
      const auto claves = [&] {
        const auto& e = *i.mf->EstructuraMovFrec();
        return std::tuple(e.MovFrecuente()->ID(), e.MovFrecuente()->Recurrencia(),
                          e.Recurrencia()->ID());
      };
      const auto claves_antes = claves();
      const auto resultado = miembro(*i.mf);
      EXPECT_FALSE(cn->InTransaction()) << donde;
      if (!i.cn->failed()) {
        EXPECT_TRUE(resultado) << escenario << ": sin fallo debe completarse";
        EXPECT_NE(Tablas(), antes) << escenario << ": sin fallo debe escribir";
        EXPECT_GT(k, 1) << escenario << ": ninguna sentencia falló";
        return;
      }
      ++cifras.fallidas;
      EXPECT_FALSE(resultado) << donde;
      const bool igual = Tablas() == antes;
      EXPECT_TRUE(igual) << donde;
      cifras.distintos += !igual;
      const auto& shown = i.sv.messages->shown();
      const bool mostrado = !shown.empty() && shown.back().request.icon == MsgIcon::Critical;
      EXPECT_TRUE(reporta ? mostrado : shown.empty()) << donde;
      cifras.reportados += reporta && mostrado;
      EXPECT_TRUE(!restaura_memoria || claves() == claves_antes) << donde;
    }
    ADD_FAILURE() << escenario << " nunca se completó";
  }

  // A member the façade runs outside a transaction: at each statement in turn the failure must
  // reach the caller as an exception (DbError, or the counter's ComponentError 8000 when the key
  // draw is the statement that failed). Each attempt runs inside a transaction opened here on
  // the real connection and rolled back afterwards, so every attempt starts from the same
  // tables (the member itself never begins one).
  template <typename Miembro>
  void Directo(Cifras& cifras, const std::string& escenario, Preparar preparar, Miembro miembro) {
    ++cifras.escenarios;
    const int base = Base(preparar);
    const Snapshot antes = Tablas();
    for (int k = 1; k < 300; ++k) {
      const std::string donde = escenario + ", sentencia " + std::to_string(k);
      Intento i = Nuevo(base + k, preparar);
      cn->BeginTrans();
      bool lanzado = false;
      try {
        miembro(*i.mf);
      } catch (const DbError& e) {
        lanzado = true;
        EXPECT_NE(std::string(e.what()).find("fallo inyectado"), std::string::npos) << e.what();
      } catch (const ComponentError& e) {
        lanzado = true;
        EXPECT_EQ(e.number(), 8000) << e.what();
      }
      cn->RollbackTrans();
      EXPECT_EQ(Tablas(), antes) << donde;
      EXPECT_TRUE(i.sv.messages->shown().empty()) << donde;
      if (!i.cn->failed()) {
        EXPECT_FALSE(lanzado) << escenario << ": sin fallo no debe haber error";
        EXPECT_GT(k, 1) << escenario << ": ninguna sentencia falló";
        return;
      }
      ++cifras.fallidas;
      EXPECT_TRUE(lanzado) << donde << ": el fallo no llegó al llamador";
      cifras.al_llamador += lanzado;
    }
    ADD_FAILURE() << escenario << " nunca se completó";
  }

  // One line per member with its figures.
  void Resumen(const std::string& miembro, const Cifras& c) {
    std::cout << "[ falla inyectada ] " << miembro << " (" << EngineName(engine())
              << "): " << c.escenarios << " escenarios, " << c.fallidas
              << " sentencias fallidas una a una; " << c.distintos << " estados distintos del "
              << "anterior, " << c.reportados << " errores mostrados, " << c.al_llamador
              << " llegaron al llamador\n";
    EXPECT_GT(c.fallidas, 0);
  }
};

void Nada(clsMovFrecuente&) {}

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

TEST_P(Fallos, SaveMovimientoFrecuenteConBloqueo) {
  Cifras c;
  const auto guardar = [](clsMovFrecuente& mf) { return mf.SaveMovimientoFrecuenteConBloqueo(); };
  Atomico(c, "nuevo vinculado con agenda y líneas", NuevoVinculadoConAgendaYLineas, guardar,
          /*reporta=*/false, /*restaura_memoria=*/true);
  Atomico(c, "existente modificado", ExistenteModificado, guardar, false, true);
  Atomico(c, "existente sin su agenda", ExistentePierdeSuAgenda, guardar, false, true);
  Resumen("SaveMovimientoFrecuenteConBloqueo", c);
}

TEST_P(Fallos, DeleteRegistroMFConfirmar) {
  Cifras c;
  Atomico(
      c, "borrado de la papelera", Nada,
      [](clsMovFrecuente& mf) { return mf.DeleteRegistroMFConfirmar(1); }, /*reporta=*/true);
  Resumen("DeleteRegistroMFConfirmar", c);
}

TEST_P(Fallos, DarRealizadaFechaAgenda) {
  Cifras c;
  for (int32_t id : {1, 9, 25}) {  // monthly entry, notice of its modality, head of a chain
    Atomico(
        c, "ocurrencia realizada de " + std::to_string(id), Nada,
        [id](clsMovFrecuente& mf) { return mf.DarRealizadaFechaAgenda(id); }, /*reporta=*/true);
  }
  Resumen("DarRealizadaFechaAgenda", c);
}

TEST_P(Fallos, CambiarEstadoMF) {
  Cifras c;
  Atomico(
      c, "a la papelera", Nada,
      [](clsMovFrecuente& mf) { return mf.CambiarEstadoMF(1, enuEstadoMF::Papelera, false); },
      /*reporta=*/true);
  Atomico(
      c, "aviso realizado", Nada,
      [](clsMovFrecuente& mf) { return mf.CambiarEstadoMF(9, enuEstadoMF::Realizado, false); },
      /*reporta=*/true);
  Resumen("CambiarEstadoMF", c);
}

TEST_P(Fallos, SaveMovimientoFrecuente) {
  Cifras c;
  const auto guardar = [](clsMovFrecuente& mf) { EXPECT_GT(mf.SaveMovimientoFrecuente(), 0); };
  Directo(c, "nuevo vinculado con agenda y líneas", NuevoVinculadoConAgendaYLineas, guardar);
  Directo(c, "existente modificado", ExistenteModificado, guardar);
  EXPECT_GE(c.al_llamador, 8);  // schedule, link order, header and lines, twice
  Resumen("SaveMovimientoFrecuente", c);
}

TEST_P(Fallos, DeleteMFYLoadMF) {
  Cifras c;
  Directo(c, "borrado sin confirmación", Nada, [](clsMovFrecuente& mf) { mf.DeleteMF(1); });
  EXPECT_GE(c.al_llamador, 3);  // lines, schedule, header
  Resumen("DeleteMF", c);

  // Loading writes nothing, and its failure reaches the caller too.
  const int base = Base(Nada);
  Intento i = Nuevo(base + 1, Nada);
  EXPECT_THROW(i.mf->LoadMF(1), DbError);
}

KMF_INSTANTIATE_ENGINES(Fallos);

}  // namespace
}  // namespace kivmovfrec::testing
