// The statements the component really issues, recorded while its code paths work on the demo
// company, run on every engine: loading, computing, saving and deleting movements, showing and
// reading back formulas through every catalogue lookup, the main job, marking occurrences done
// and the user picker. None may fail, also where the component traps the error and goes on.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "api/ejecucion.h"
#include "core/clock.h"
#include "formula/catalogo_fx.h"
#include "formula/formula_mf.h"
#include "kivmovfrec/kivmovfrec.h"
#include "platform/suite/clock.h"
#include "platform/suite/scripted.h"
#include "platform/vb/convert.h"
#include "storage/parametros.h"
#include "support/demo_engine.h"
#include "support/recording_connection.h"
#include "ui/user_picker/eleccion_usuarios.h"

namespace kivmovfrec::testing {
namespace {

class Statements : public DemoEngineTest {
 protected:
  void SetUpDatabase() override {
    DemoEngineTest::SetUpDatabase();
    rec = std::make_shared<RecordingConnection>(cn);
    // The database-backed services (counters, rights, balances, notice recipients) go through
    // the recorder too; questions are answered Yes.
    SuiteServices services =
        SuiteServices::Defaults(rec, 1, {.respuesta = true, .hoy = suite::SerialOf(2026, 11, 20)});
    messages = std::make_shared<suite::ScriptedMessages>();
    messages->DefaultAnswer(kMsgYes);
    services.messages = messages;
    mf.Servicios(services);
    mf.Connect(rec);
    mf.Empresa(1);
  }
  void TearDown() override {
    if (rec) {
      EXPECT_FALSE(rec->statements().empty());
      for (const auto& s : rec->statements()) {
        EXPECT_EQ(s.error, "") << s.kind << ": " << s.sql << "\n  as run: " << cn->Translate(s.sql);
      }
    }
    storage::Parametros() = storage::ParametrosBD{};
    core::SetClock(nullptr);
  }

  std::vector<int32_t> Ids(const std::string& where) {
    std::vector<int32_t> ids;
    auto rs = cn->OpenResultset("Select MFrID From genMovimientosFrecuentes Where " + where +
                                " Order By MFrID");
    for (; !rs->Eof(); rs->MoveNext()) ids.push_back(vb::CLng(rs->Get(0)));
    return ids;
  }
  int Seen(const std::string& kind) {
    int n = 0;
    for (const auto& s : rec->statements()) n += s.kind == kind;
    return n;
  }
  std::string Shown() {
    std::string text;
    for (const auto& m : messages->shown()) text += m.request.text + "\n";
    return text;
  }

  std::shared_ptr<RecordingConnection> rec;
  std::shared_ptr<suite::ScriptedMessages> messages;
  clsMovFrecuente mf;
};

TEST_P(Statements, MovementsLoadComputeSaveAndDelete) {
  const auto all = Ids("1 = 1");
  ASSERT_GT(all.size(), 20u);
  for (const int32_t id : all) EXPECT_TRUE(mf.LoadMF(id)) << id;

  // Every pending entry and voucher of company 1 computes without asking anything (the later
  // members of a linked group read the documents of the earlier ones: the main job runs them).
  for (const int32_t id : Ids("MFrTipo In (1, 2, 4) And MFrEstado = 0 And MFrEmpresa = 1 And "
                              "(MFrMovVinculado Is Null Or MFrMovVinculado = MFrID)")) {
    EXPECT_TRUE(mf.SetCalculoFormulasMF(id, true)) << id << "\n" << Shown();
  }

  // A scheduled voucher saved again in place, then as a new movement that is deleted for good.
  ASSERT_TRUE(mf.LoadMF(6));
  EXPECT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), 6);
  auto movement = mf.EstructuraMovFrec();
  movement->MovFrecuente()->ID(0);
  movement->Recurrencia()->ID(0);
  const int32_t copy = mf.SaveMovimientoFrecuenteConBloqueo();
  ASSERT_GT(copy, 100) << Shown();
  EXPECT_TRUE(mf.CambiarEstadoMF(copy, enuEstadoMF::Papelera)) << Shown();
  EXPECT_TRUE(mf.DeleteRegistroMFConfirmar(copy)) << Shown();
  EXPECT_FALSE(mf.LoadMF(copy));
  // Writes through result sets and Execute went through the recorder too.
  for (const char* kind : {"update", "delete", "execute", "read-only"}) EXPECT_GT(Seen(kind), 0);
}

TEST_P(Statements, FormulasShowAndReadBackThroughEveryLookup) {
  int round_trips = 0;
  for (const int32_t id : Ids("MFrEmpresa = 1")) {
    ASSERT_TRUE(mf.LoadMF(id));
    const formula::clsFormulaMF fm(rec, {.empresa = 1, .id_mov = id, .mostrar_codigo_cta = true});
    const auto lines = mf.EstructuraMovFrec()->Renglones();
    for (int16_t i = 1; i <= lines->QRenglones(); ++i) {
      const std::string stored = lines->Renglon(i)->Formula();
      if (stored.empty()) continue;
      const std::string shown = fm.AVisible(stored);
      EXPECT_EQ(fm.AGuardada(shown), stored) << "movement " << id << ": " << shown;
      ++round_trips;
    }
  }
  EXPECT_GT(round_trips, 20);

  // Each lookup query of the catalogue, by id and by a text that names nothing.
  const formula::clsFormulaMF fm(rec, {.empresa = 1, .id_mov = 1, .mostrar_codigo_cta = true});
  int lookups = 0;
  for (const auto& e : formula::clsFxMovFrec::Entradas()) {
    for (const std::string_view query : {e.consulta1, e.consulta2}) {
      if (query.empty() || query.front() == '[') continue;  // none, or a marker word
      fm.TextoConsulta(query, 1);
      EXPECT_FALSE(fm.BuscarConsulta(query, "ninguno así", 1)) << query;
      ++lookups;
    }
  }
  EXPECT_GE(lookups, 10);
}

TEST_P(Statements, MainJobMarkingDoneAndUserPicker) {
  const auto run = api::EjecutarVencidos(mf, *rec, 1, suite::SerialOf(2026, 12, 31));
  ASSERT_TRUE(run.completa()) << run.detenida;
  ASSERT_FALSE(run.ocurrencias.empty());
  for (const auto& o : run.ocurrencias) EXPECT_TRUE(o.ok()) << o.movimiento << ": " << o.error;

  // Notices (marking the others of their modality seen), a task list and a linked group head.
  for (const int32_t id : {8, 22, 10}) EXPECT_TRUE(mf.DarRealizadaFechaAgenda(id)) << id;
  EXPECT_EQ(ui::CargarUsuarios(*rec, "1, 4").size(), 3u);
}

KMF_INSTANTIATE_ENGINES(Statements);

}  // namespace
}  // namespace kivmovfrec::testing
