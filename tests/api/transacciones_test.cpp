// A database failure at every statement (commit included) of every writing member of the
// façade, on every engine:
//  - members that run their own transaction (the locked saves, delete from the bin, occurrence
//    done) return 0 / false and leave every table as it was;
//  - the state change writes one row outside a transaction: it reports the error, returns false
//    and leaves every table as it was;
//  - the plain save and DeleteMF run outside a transaction: the error reaches the caller.
#include <memory>
#include <string>
#include <tuple>

#include "fachada_fixture.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "support/faulty_connection.h"
#include "ui/checklist/consultas_lista.h"
#include "ui/checklist/guardar_lista.h"

namespace kivmovfrec::testing {
namespace {

// A façade whose connection (and the counter service behind it) fails at one statement.
struct Intento {
  std::shared_ptr<FaultyConnection> cn;
  std::unique_ptr<FachadaPropia> f;
};

using Preparar = void (*)(clsMovFrecuente&);

class Fallos : public Fachada {
 protected:
  // `preparar` loads or builds the movement to work on (through the faulty connection).
  Intento Nuevo(int fail_at, Preparar preparar) {
    Intento i{std::make_shared<FaultyConnection>(cn, fail_at), nullptr};
    i.f = std::make_unique<FachadaPropia>(i.cn);
    i.f->sv.rights->Set(1, "Papelera", "e");
    i.f->sv.rights->Set(1, "PasajeAsientos", "AMEe");
    i.f->sv.rights->Set(1, "CheckList", "ME");
    preparar(i.f->mf);
    return i;
  }

  // Statements spent by Connect and the preparation, before the member runs.
  int Base(Preparar preparar) { return Nuevo(0, preparar).cn->statements(); }

  // A member that runs in a transaction (or writes a single row): fails at each statement in
  // turn until it completes. Every failed attempt must return the zero value, leave no
  // transaction open and the tables as they were; when `restaura_memoria`, the records in
  // memory also keep their keys. `reporta` (a catalogue number, or 0 for none): the member shows
  // the error it trapped as that action's text with the reason below (critical icon, after its
  // own question if any); with 0 it shows nothing.
  template <typename Miembro>
  void Atomico(const std::string& escenario, Preparar preparar, Miembro miembro, int reporta,
               bool restaura_memoria = false) {
    const int base = Base(preparar);
    const Snapshot antes = Tablas();
    for (int k = 1; k < 300; ++k) {
      const std::string donde = escenario + ", fallo en la sentencia " + std::to_string(k);
      Intento i = Nuevo(base + k, preparar);
      const auto claves = [&] {
        const auto& e = *i.f->mf.EstructuraMovFrec();
        return std::tuple(e.MovFrecuente()->ID(), e.MovFrecuente()->Recurrencia(),
                          e.Recurrencia()->ID());
      };
      const auto claves_antes = claves();
      const auto resultado = miembro(i.f->mf);
      EXPECT_FALSE(cn->InTransaction()) << donde;
      if (!i.cn->failed()) {
        EXPECT_TRUE(resultado) << escenario << ": sin fallo debe completarse";
        EXPECT_NE(Tablas(), antes) << escenario << ": sin fallo debe escribir";
        EXPECT_GT(k, 1) << escenario << ": ninguna sentencia falló";
        return;
      }
      EXPECT_FALSE(resultado) << donde;
      EXPECT_EQ(Tablas(), antes) << donde;
      const auto& shown = i.f->sv.messages->shown();
      const bool mostrado = !shown.empty() && shown.back().request.icon == MsgIcon::Critical;
      EXPECT_TRUE(reporta ? mostrado : shown.empty()) << donde;
      if (reporta && mostrado) {
        EXPECT_EQ(shown.back().request.text,
                  std::string(resources::Texto(reporta)) + "\n" + i.f->mf.UltimoError())
            << donde;
      }
      EXPECT_TRUE(!restaura_memoria || claves() == claves_antes) << donde;
    }
    ADD_FAILURE() << escenario << " nunca se completó";
  }

  // A member the façade runs outside a transaction: at each statement in turn the failure must
  // reach the caller as an exception (DbError, or the counter's ComponentError 8000 when the key
  // draw is the statement that failed). Each attempt runs inside a transaction opened here on
  // the real connection and rolled back afterwards, so every attempt starts from the same
  // tables (the member itself never begins one). Gives the number of statements that failed.
  template <typename Miembro>
  int Directo(const std::string& escenario, Preparar preparar, Miembro miembro) {
    const int base = Base(preparar);
    const Snapshot antes = Tablas();
    for (int k = 1; k < 300; ++k) {
      const std::string donde = escenario + ", sentencia " + std::to_string(k);
      Intento i = Nuevo(base + k, preparar);
      cn->BeginTrans();
      bool lanzado = false;
      try {
        miembro(i.f->mf);
      } catch (const DbError& e) {
        lanzado = true;
        EXPECT_NE(std::string(e.what()).find("fallo inyectado"), std::string::npos) << e.what();
      } catch (const ComponentError& e) {
        lanzado = true;
        EXPECT_EQ(e.number(), 8000) << e.what();
      }
      cn->RollbackTrans();
      EXPECT_EQ(Tablas(), antes) << donde;
      EXPECT_TRUE(i.f->sv.messages->shown().empty()) << donde;
      if (!i.cn->failed()) {
        EXPECT_FALSE(lanzado) << escenario << ": sin fallo no debe haber error";
        return k - 1;
      }
      EXPECT_TRUE(lanzado) << donde << ": el fallo no llegó al llamador";
    }
    ADD_FAILURE() << escenario << " nunca se completó";
    return 0;
  }
};

void Nada(clsMovFrecuente&) {}

void NuevoVinculadoConAgendaYLineas(clsMovFrecuente& mf) {
  AsientoNuevo(mf, "Nuevo con todo", {141, 113});
  mf.EstructuraMovFrec()->MovFrecuente()->MovVinculado(16);
  mf.EstructuraMovFrec()->Recurrencia()->Frecuencia("200001");
  mf.EstructuraMovFrec()->Recurrencia()->FechaProxima("01/12/2026");
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
  const auto guardar = [](clsMovFrecuente& mf) { return mf.SaveMovimientoFrecuenteConBloqueo(); };
  Atomico("nuevo vinculado con agenda y líneas", NuevoVinculadoConAgendaYLineas, guardar,
          /*reporta=*/0, /*restaura_memoria=*/true);
  Atomico("existente modificado", ExistenteModificado, guardar, 0, true);
  Atomico("existente sin su agenda", ExistentePierdeSuAgenda, guardar, 0, true);
}

// The run of saves (keys drawn in blocks beforehand) of the same movements.
TEST_P(Fallos, SaveMovimientosFrecuentesConBloqueo) {
  const auto guardar = [](clsMovFrecuente& mf) {
    size_t fallido = 9;
    const auto ids = mf.SaveMovimientosFrecuentesConBloqueo({mf.EstructuraMovFrec()}, &fallido);
    EXPECT_LE(fallido, 1u);  // the movement, or past it: the commit
    EXPECT_EQ(ids.empty(), !mf.UltimoError().empty());
    return ids.empty() ? 0 : ids.front();
  };
  Atomico("nuevo vinculado con agenda y líneas", NuevoVinculadoConAgendaYLineas, guardar,
          /*reporta=*/false, /*restaura_memoria=*/true);
}

TEST_P(Fallos, DeleteRegistroMFConfirmar) {
  Atomico(
      "borrado de la papelera", Nada,
      [](clsMovFrecuente& mf) { return mf.DeleteRegistroMFConfirmar(1); },
      msg::kErrorEliminarMovimiento);
}

TEST_P(Fallos, DarRealizadaFechaAgenda) {
  for (int32_t id : {1, 9, 25}) {  // monthly entry, notice of its modality, head of a chain
    Atomico(
        "ocurrencia realizada de " + std::to_string(id), Nada,
        [id](clsMovFrecuente& mf) { return mf.DarRealizadaFechaAgenda(id); },
        msg::kErrorDarRealizada);
  }
}

TEST_P(Fallos, CambiarEstadoMF) {
  Atomico(
      "a la papelera", Nada,
      [](clsMovFrecuente& mf) { return mf.CambiarEstadoMF(1, enuEstadoMF::Papelera, false); },
      msg::kErrorCambiarEstado);
  Atomico(
      "aviso realizado", Nada,
      [](clsMovFrecuente& mf) { return mf.CambiarEstadoMF(9, enuEstadoMF::Realizado, false); },
      msg::kErrorCambiarEstado);
}

// Task lists: both state operations (list 28 advancing, and on its last occurrence), and the
// editor's save of list 10 with an item renamed, one deleted and one new.
TEST_P(Fallos, ListasDeTareas) {
  Atomico(
      "lista a la papelera", Nada, [](clsMovFrecuente& mf) { return mf.CheckListAPapelera(10); },
      msg::kErrorCambiarEstado);
  const auto realizar = [](clsMovFrecuente& mf) { return mf.CheckListDarPorRealizado(28); };
  Atomico("lista cumplida que avanza", Nada, realizar, msg::kErrorDarRealizada);
  cn->Execute(
      "Update genRecurrencias Set RecNumOcurrencia = 6, RecFechaProxima = ? Where RecID = 12",
      {Variant(vb::MakeDate({2027, 1, 15, 9, 0, 0}))});
  Atomico("última ocurrencia de la lista", Nada, realizar, msg::kErrorDarRealizada);
  Atomico(
      "lista guardada desde el editor", Nada,
      [](clsMovFrecuente& mf) {
        try {
          auto l = checklist::CargarListaTareas(*mf.Contexto().cn, 10);
          if (!l) return 0;
          l->items[1].nombre = "Conciliar bancos";
          l->items[2].eliminado = true;
          l->items.push_back({0, "Enviar al estudio", "", 2, 15, "", false, false, false});
          return checklist::GuardarListaTareas(mf.Contexto(), *l, 1).id;
        } catch (const std::exception&) {
          return 0;
        }
      },
      /*reporta=*/0);
}

TEST_P(Fallos, SaveMovimientoFrecuenteDeleteMFYLoadMF) {
  const auto guardar = [](clsMovFrecuente& mf) { EXPECT_GT(mf.SaveMovimientoFrecuente(), 0); };
  // Schedule, link order, header and lines.
  EXPECT_GE(Directo("nuevo vinculado con agenda y líneas", NuevoVinculadoConAgendaYLineas, guardar),
            4);
  EXPECT_GE(Directo("existente modificado", ExistenteModificado, guardar), 4);
  EXPECT_GE(Directo("borrado sin confirmación", Nada, [](clsMovFrecuente& mf) { mf.DeleteMF(1); }),
            3);  // lines, schedule, header

  // Loading writes nothing, and its failure reaches the caller too.
  Intento i = Nuevo(Base(Nada) + 1, Nada);
  EXPECT_THROW(i.f->mf.LoadMF(1), DbError);
}

KMF_INSTANTIATE_ENGINES(Fallos);

}  // namespace
}  // namespace kivmovfrec::testing
