// DbError::kind() tells what went wrong on both engines, so that callers (the main job stopping
// at a locked database, a save explaining why it failed) never read the engine's text; and how
// two writers meet on each engine.

#include <gtest/gtest.h>

#include <functional>

#include "platform/db/postgres/pg_connection.h"
#include "platform/db/sqlite/sqlite_connection.h"
#include "support/db_engines.h"

namespace kivmovfrec::testing {
namespace {

class ErrorKind : public EngineTest {
 protected:
  void SetUpDatabase() override {
    cn->Execute("Create Table t (id Integer Primary Key, nombre Varchar(20) Not Null)");
    cn->Execute("Insert Into t (id, nombre) Values (1, 'uno'), (2, 'dos')");
  }

  // A second connection that gives up waiting for a lock after 50 ms.
  std::shared_ptr<Connection> Impaciente() const {
    if (postgres()) {
      return postgres::OpenPostgres(database().uri(), postgres::Options{.lock_timeout_ms = 50});
    }
    return sqlite::OpenSqlite(database().uri().substr(std::string("sqlite:").size()),
                              sqlite::Options{.busy_timeout_ms = 50});
  }

  static Variant Nombre(Connection& c, int id) {
    return c.OpenResultset("Select nombre From t Where id = ?", {id})->Get(0);
  }
};

TEST_P(ErrorKind, EachFailureCarriesItsKind) {
  EXPECT_EQ(KindOfFailure([&] { cn->Execute("Insert Into t (id, nombre) Values (1, 'otro')"); }),
            DbErrorKind::Constraint);
  EXPECT_EQ(KindOfFailure([&] { cn->Execute("Insert Into t (id) Values (3)"); }),
            DbErrorKind::Constraint);
  EXPECT_EQ(KindOfFailure([&] { cn->Execute("Selec 1"); }), DbErrorKind::Other);
  EXPECT_EQ(KindOfFailure([&] { cn->OpenResultset("Select * From no_existe"); }),
            DbErrorKind::MissingTable);
}

// A second writer that gives up waiting is Busy, told once in one wording with the engine's own
// text, and readers go on seeing what was committed. SQLite takes the file's write lock when a
// transaction begins (WAL mode keeps readers free); PostgreSQL locks only the rows written, so
// the second writer's transaction goes on, once the level around the refused statement is
// rolled back, and may write other rows. Once the first commits, the second writes what it was
// refused.
TEST_P(ErrorKind, ASecondWriterThatGivesUpIsBusyAndReadersGoOn) {
  cn->BeginTrans();
  cn->Execute("Update t Set nombre = 'bloqueado' Where id = 1");
  auto otra = Impaciente();
  const char* fila1 = "Update t Set nombre = 'espera' Where id = 1";
  const char* fila2 = "Update t Set nombre = 'libre' Where id = 2";
  std::string texto;
  EXPECT_EQ(KindOfFailure(
                [&] {
                  otra->BeginTrans();
                  Transaccion intento(*otra);
                  otra->Execute(fila1);
                },
                &texto),
            DbErrorKind::Busy);
  // The engine's message, said once.
  const std::string motor =
      std::string("Error de la base de datos: ") +
      (postgres() ? "canceling statement due to lock timeout" : "database is locked");
  EXPECT_EQ(texto.rfind(motor, 0), 0u) << texto;
  EXPECT_EQ(texto.find("base de datos", motor.size()), std::string::npos) << texto;
  EXPECT_EQ(otra->InTransaction(), postgres());
  if (postgres()) {
    otra->Execute(fila2);
    otra->CommitTrans();
  } else {
    EXPECT_EQ(KindOfFailure([&] { otra->Execute(fila2); }), DbErrorKind::Busy);
    EXPECT_EQ(otra->OpenResultset("Pragma journal_mode")->Get(0), Variant("wal"));
  }
  EXPECT_EQ(Nombre(*otra, 1), Variant("uno"));
  cn->CommitTrans();
  otra->BeginTrans();
  otra->Execute(fila1);
  if (!postgres()) otra->Execute(fila2);
  otra->CommitTrans();
  EXPECT_EQ(Nombre(*cn, 1), Variant("espera"));
  EXPECT_EQ(Nombre(*cn, 2), Variant("libre"));
}

KMF_INSTANTIATE_ENGINES(ErrorKind);

}  // namespace
}  // namespace kivmovfrec::testing
