// DbError::kind() tells what went wrong on both engines, so that callers (the main job stopping
// at a locked database, a save explaining why it failed) never read the engine's text.

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
    cn->Execute("Insert Into t (id, nombre) Values (1, 'uno')");
  }

  // A second connection that gives up waiting for a lock after 50 ms.
  std::shared_ptr<Connection> Impaciente() const {
    if (postgres()) {
      return postgres::OpenPostgres(database().uri(), postgres::Options{.lock_timeout_ms = 50});
    }
    return sqlite::OpenSqlite(database().uri().substr(std::string("sqlite:").size()),
                              sqlite::Options{.busy_timeout_ms = 50});
  }

  static DbErrorKind KindOf(const std::function<void()>& f) {
    try {
      f();
    } catch (const DbError& e) {
      return e.kind();
    }
    ADD_FAILURE() << "no DbError";
    return DbErrorKind::Other;
  }
};

TEST_P(ErrorKind, EachFailureCarriesItsKind) {
  EXPECT_EQ(KindOf([&] { cn->Execute("Insert Into t (id, nombre) Values (1, 'otro')"); }),
            DbErrorKind::Constraint);
  EXPECT_EQ(KindOf([&] { cn->Execute("Insert Into t (id) Values (2)"); }), DbErrorKind::Constraint);
  EXPECT_EQ(KindOf([&] { cn->Execute("Selec 1"); }), DbErrorKind::Other);
  if (postgres()) {
    EXPECT_EQ(KindOf([&] { cn->OpenResultset("Select * From no_existe"); }),
              DbErrorKind::MissingTable);
  }
}

TEST_P(ErrorKind, ALockHeldElsewhereIsBusy) {
  cn->BeginTrans();
  cn->Execute("Update t Set nombre = 'bloqueado' Where id = 1");
  auto otra = Impaciente();
  // SQLite refuses the second writer when it begins; PostgreSQL when it reaches the locked row.
  EXPECT_EQ(KindOf([&] {
              otra->BeginTrans();
              otra->Execute("Update t Set nombre = 'espera' Where id = 1");
            }),
            DbErrorKind::Busy);
  otra->RollbackTrans();
  cn->RollbackTrans();
}

TEST(ErrorKindOpen, AnUnreachableServerIsConnectionLost) {
  try {
    OpenConnection("postgresql://nadie@127.0.0.1:1/nada?connect_timeout=2");
    FAIL() << "opened";
  } catch (const DbError& e) {
    EXPECT_EQ(e.kind(), DbErrorKind::ConnectionLost) << e.what();
  }
}

KMF_INSTANTIATE_ENGINES(ErrorKind);

}  // namespace
}  // namespace kivmovfrec::testing
