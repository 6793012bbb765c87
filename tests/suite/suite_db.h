// Test helpers: a fresh SQLite database file with the suite tables.
#pragma once

#include <memory>
#include <string>

#include "kivmovfrec/db.h"

namespace kivmovfrec::testing {

// Runs every statement of an SQL script file (comments starting "--" dropped, statements split
// at ";" outside quotes).
void RunSqlFile(Connection& cn, const std::string& path);

// A new, empty database file in the test temp directory; removed with its WAL files when the
// object goes away. `Open` gives additional connections to the same file.
class TempDatabase {
 public:
  TempDatabase();
  ~TempDatabase();
  TempDatabase(const TempDatabase&) = delete;
  TempDatabase& operator=(const TempDatabase&) = delete;

  const std::string& path() const { return path_; }
  std::string uri() const { return "sqlite:" + path_; }
  std::shared_ptr<Connection> Open() const { return OpenConnection(uri()); }
  // Creates the suite tables from schema/sqlite/schema.sql.
  void InstallSchema() const;
  // The tables and the demo company (schema/sqlite/demo.sql).
  void InstallDemo() const;

 private:
  std::string path_;
};

}  // namespace kivmovfrec::testing
