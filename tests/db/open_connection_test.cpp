#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "kivmovfrec/db.h"
#include "support/db_engines.h"

namespace kivmovfrec {
namespace {

using testing::TestDatabase;

std::string ErrorOf(const std::string& uri) {
  try {
    OpenConnection(uri);
  } catch (const DbError& e) {
    return e.what();
  }
  return "";
}

// An absent file is created; a missing folder is named and not created; a file that is not a
// database, and a folder, are refused and left alone.
TEST(OpenConnection, SqliteFiles) {
  TestDatabase dir(Engine::SQLite);
  const std::string path = (dir.folder() / "nueva.db").string();
  auto cn = OpenConnection("sqlite:" + path);
  EXPECT_EQ(cn->engine(), Engine::SQLite);
  cn->Execute("Create Table t (a INTEGER)");
  EXPECT_TRUE(std::filesystem::exists(path));
  EXPECT_TRUE(OpenConnection("SQLite:" + path)->OpenResultset("Select * From t")->Eof());

  const auto missing = dir.folder() / "no_existe";
  std::string error = ErrorOf("sqlite:" + (missing / "suite.db").string());
  EXPECT_NE(error.find("No existe la carpeta de la base de datos"), std::string::npos) << error;
  EXPECT_NE(error.find(missing.string()), std::string::npos) << error;
  EXPECT_FALSE(std::filesystem::exists(missing));

  const std::string notes = (dir.folder() / "notas.txt").string();
  const std::string text = "Estas son notas, no una base de datos.\n";
  std::ofstream(notes) << text;
  EXPECT_THROW(OpenConnection("sqlite:" + notes), DbError);
  std::stringstream back;
  back << std::ifstream(notes).rdbuf();
  EXPECT_EQ(back.str(), text);
  EXPECT_THROW(OpenConnection("sqlite:" + dir.folder().string()), DbError);
}

TEST(OpenConnection, MemoryDatabasesArePrivate) {
  auto a = OpenConnection("sqlite::memory:");
  auto b = OpenConnection("sqlite::memory:");
  a->Execute("Create Table t (a INTEGER)");
  EXPECT_THROW(b->Execute("Insert Into t Values (1)"), DbError);
}

TEST(OpenConnection, MalformedUrisAreRefusedWithTheAcceptedForms) {
  for (const char* uri : {"", "sqlite", "mysql://localhost/db", "suite.db", "sqlite:"}) {
    std::string error = ErrorOf(uri);
    EXPECT_NE(error.find("sqlite:"), std::string::npos) << uri << ": " << error;
  }
}

TEST(OpenConnection, AnUnreachablePostgresServerIsNamedAndIsConnectionLost) {
  // Port 1 on the loopback: nothing listens there.
  try {
    OpenConnection("postgresql://kmf@127.0.0.1:1/suite?connect_timeout=5");
    FAIL() << "opened";
  } catch (const DbError& e) {
    const std::string pg = e.what();
    EXPECT_NE(pg.find("No se pudo conectar con el servidor PostgreSQL"), std::string::npos) << pg;
    EXPECT_NE(pg.find("127.0.0.1"), std::string::npos) << pg;
    EXPECT_EQ(e.kind(), DbErrorKind::ConnectionLost) << pg;
  }
  EXPECT_NE(ErrorOf("postgresql://kmf@127.0.0.1:1/suite?no_such_option=1"), "");
}

TEST(PgOpenConnection, PostgresUrisOpenThePostgresAdapter) {
  const auto uri = testing::PostgresUri();
  if (!uri) GTEST_SKIP() << testing::kPostgresSkipMessage;
  auto cn = OpenConnection(*uri);
  EXPECT_EQ(cn->engine(), Engine::PostgreSQL);
  EXPECT_EQ(cn->OpenResultset("Select 1 + 1 As dos")->Get("DOS"), Variant(int32_t{2}));
  // The other spelling of the scheme, in capitals.
  std::string other = "POSTGRES" + uri->substr(uri->find("://"));
  EXPECT_EQ(OpenConnection(other)->engine(), Engine::PostgreSQL);
}

}  // namespace
}  // namespace kivmovfrec
