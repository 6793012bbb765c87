// Every statement the component sends runs against the installed tables and the demo data, on
// every engine.

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

#include "install/demo_db.h"
#include "kivmovfrec/install.h"
#include "install/sql_corpus.h"
#include "support/db_engines.h"
#include "support/db_snapshot.h"

namespace kivmovfrec::testing {
namespace {

class SqlCorpusTest : public ::testing::TestWithParam<std::tuple<Engine, CorpusEntry>> {
 protected:
  void SetUp() override {
    const Engine engine = std::get<0>(GetParam());
    if (engine == Engine::PostgreSQL && !PostgresUri()) GTEST_SKIP() << kPostgresSkipMessage;
    db_.emplace(engine);
    cn = db_->Open();
    InstallSchema(*cn, {.demo = true});
  }

  std::optional<TestDatabase> db_;
  std::shared_ptr<Connection> cn;
};

TEST_P(SqlCorpusTest, RunsAgainstTheDemoData) {
  const CorpusEntry& entry = std::get<1>(GetParam());
  SCOPED_TRACE(entry.sql);
  SCOPED_TRACE(cn->Translate(entry.sql));

  if (entry.kind == CorpusKind::kWrite) {
    const auto before = TakeSnapshot(*cn, MovementTables());
    cn->BeginTrans();
    int64_t changed = 0;
    ASSERT_NO_THROW(changed = cn->Execute(entry.sql));
    cn->RollbackTrans();
    if (entry.rows >= 0) {
      EXPECT_EQ(changed, entry.rows);
    } else {
      EXPECT_GT(changed, 0) << "the demo data should give the statement something to change";
    }
    EXPECT_EQ(TakeSnapshot(*cn, MovementTables()), before);
    return;
  }

  std::unique_ptr<Resultset> rs;
  if (entry.kind == CorpusKind::kReadOnly) {
    ASSERT_NO_THROW(rs = cn->OpenReadOnly(entry.sql));
  } else {
    ASSERT_NO_THROW(rs = cn->OpenResultset(entry.sql));
  }
  int rows = 0;
  ASSERT_NO_THROW({
    for (; !rs->Eof(); rs->MoveNext()) {
      for (int i = 0; i < rs->ColumnCount(); ++i) rs->Get(i);
      ++rows;
    }
  });
  if (entry.rows >= 0) {
    EXPECT_EQ(rows, entry.rows);
  }
}

INSTANTIATE_TEST_SUITE_P(AllStatements, SqlCorpusTest,
                         ::testing::Combine(::testing::ValuesIn(AllEngines()),
                                            ::testing::ValuesIn(SqlCorpus())),
                         [](const ::testing::TestParamInfo<std::tuple<Engine, CorpusEntry>>& info) {
                           return EngineName(std::get<0>(info.param)) + "_" +
                                  std::get<1>(info.param).name;
                         });

// Rows of the three movement tables are written through result sets, column by column: every
// column the records map must exist and keep what is written (codes with leading zeros stay
// text, dates come back as dates, NULLs stay NULL).
class SqlCorpusWrites : public EngineTest {
 protected:
  void SetUpDatabase() override { InstallSchema(*cn, {.demo = true}); }
};

TEST_P(SqlCorpusWrites, MovementRowsWriteThroughResultSets) {
  const auto before = TakeSnapshot(*cn, MovementTables());
  cn->BeginTrans();

  auto rec = cn->OpenResultset("Select * From genRecurrencias Where RecID = 500");
  ASSERT_TRUE(rec->Eof());
  rec->AddNew();
  rec->Set("RecID", int32_t{500});
  rec->Set("RecNumOcurrencia", int32_t{1});
  rec->Set("RecFrecuencia", "000007");
  rec->Set("RecFechaInicio", "2026-11-02 00:00:00");
  rec->Set("RecFechaProxima", "2026-11-09 00:00:00");
  rec->Set("RecFechaFinal", Variant::Null());
  rec->Set("RecPostergado", Variant::Null());
  rec->Set("RecSinVencimiento", uint8_t{1});
  rec->Set("RecNotificar", 2.0);
  rec->Set("RecEraNotificacion", Date{46328.0});
  rec->Update();
  rec->Close();

  auto hdr = cn->OpenResultset("Select * from genMovimientosFrecuentes Where MFrID = 500");
  ASSERT_TRUE(hdr->Eof());
  hdr->AddNew();
  const std::pair<const char*, Variant> header[] = {{"MFrID", int32_t{500}},
                                                    {"MFrEmpresa", int16_t{1}},
                                                    {"MFrTipo", int16_t{6}},
                                                    {"MFrDelSistema", int16_t{0}},
                                                    {"MFrNombre", "Ítem nuevo"},
                                                    {"MFrMemo", "Comentario"},
                                                    {"MFrEnte", int16_t{10}},
                                                    {"MFrModalidad", int16_t{3}},
                                                    {"MFrTipoImporte", int16_t{0}},
                                                    {"MFrMoneda", int16_t{0}},
                                                    {"MFrRecurrencia", int32_t{500}},
                                                    {"MFrMovVinculado", int32_t{0}},
                                                    {"MFrMVOrden", uint8_t{0}},
                                                    {"MFrUsuarioAlta", int16_t{1}},
                                                    {"MFrUsuarioAutoriza", int16_t{0}},
                                                    {"MFrEstado", uint8_t{0}},
                                                    {"MFrFechaEstado", Date{46328.5}},
                                                    {"MFrVista", uint8_t{0}},
                                                    {"MFrIcono", int16_t{0}}};
  for (const auto& [column, value] : header) hdr->Set(column, value);
  hdr->Update();
  hdr->Close();

  auto lines = cn->OpenResultset("Select * From genRenglonMovFrecuentes Where RMFMovimiento = 500");
  ASSERT_TRUE(lines->Eof());
  lines->AddNew();
  const std::pair<const char*, Variant> line[] = {
      {"RMFMovimiento", int32_t{500}}, {"RMFCuenta", int32_t{101}},
      {"RMFIDProyecto", int16_t{0}},   {"RMFIDDepartamento", int16_t{0}},
      {"RMFOrden", uint8_t{1}},        {"RMFAlDebe", int16_t{1}},
      {"RMFFormula", Variant::Null()}, {"RMFValor", 1234.5},
      {"RMFValorMonMov", 1234.5},      {"RMFFTipoCambio", Variant::Null()},
      {"RMFValorTC", Variant::Null()}, {"RMFDetalle", Variant::Null()}};
  for (const auto& [column, value] : line) lines->Set(column, value);
  lines->Update();
  lines->Close();

  auto back = cn->OpenResultset(
      "Select * From genRecurrencias, genMovimientosFrecuentes, genRenglonMovFrecuentes "
      "Where MFrID = 500 And MFrRecurrencia = RecID And RMFMovimiento = MFrID");
  ASSERT_FALSE(back->Eof());
  EXPECT_EQ(back->Get("RecFrecuencia"), Variant("000007"));
  EXPECT_EQ(back->Get("RecEraNotificacion"), Variant(Date{46328.0}));
  EXPECT_EQ(back->Get("MFrFechaEstado"), Variant(Date{46328.5}));
  EXPECT_TRUE(back->Get("RMFFormula").IsNull());
  EXPECT_TRUE(back->Get("RecFechaFinal").IsNull());
  EXPECT_EQ(back->Get("MFrNombre"), Variant("Ítem nuevo"));
  back->Close();

  // A private contact made public.
  auto ente = cn->OpenResultset("Select * from genEntes Where EntID = 2");
  ASSERT_FALSE(ente->Eof());
  ente->Edit();
  ente->Set("EntOwner", Variant::Null());
  ente->Update();
  ente->Close();
  EXPECT_TRUE(Scalar(*cn, "Select EntOwner From genEntes Where EntID = 2").IsNull());

  cn->RollbackTrans();
  EXPECT_EQ(TakeSnapshot(*cn, MovementTables()), before);
  EXPECT_FALSE(Scalar(*cn, "Select EntOwner From genEntes Where EntID = 2").IsNull());
}

KMF_INSTANTIATE_ENGINES(SqlCorpusWrites);

}  // namespace
}  // namespace kivmovfrec::testing
