// OpenConnection: picks the adapter from the URI's scheme.
#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "kivmovfrec/db.h"
#include "platform/db/postgres/pg_connection.h"
#include "platform/db/sql_tokens.h"
#include "platform/db/sqlite/sqlite_connection.h"

namespace kivmovfrec {

namespace {

constexpr std::string_view kAcceptedForms =
    "sqlite:<ruta del archivo>, sqlite::memory: o postgresql://usuario@servidor:puerto/base";

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && sql::EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

std::shared_ptr<Connection> OpenSqliteUri(std::string_view rest) {
  if (rest == ":memory:") return sqlite::OpenSqlite(":memory:");
  if (rest.empty()) {
    throw DbError(fmt::format("Falta la ruta del archivo de la base de datos. Formas aceptadas: {}",
                              kAcceptedForms));
  }
  namespace fs = std::filesystem;
  const fs::path path{std::string(rest)};
  const fs::path dir = path.parent_path();
  std::error_code ec;
  if (!dir.empty() && !fs::is_directory(dir, ec)) {
    throw DbError(fmt::format("No existe la carpeta de la base de datos: {}", dir.string()));
  }
  if (fs::is_directory(path, ec)) {
    throw DbError(fmt::format("La ruta de la base de datos es una carpeta: {}", path.string()));
  }
  return sqlite::OpenSqlite(path.string());
}

}  // namespace

std::shared_ptr<Connection> OpenConnection(std::string_view uri) {
  if (StartsWithNoCase(uri, "sqlite:")) return OpenSqliteUri(uri.substr(7));
  for (std::string_view scheme : {"postgresql://", "postgres://"}) {
    // libpq knows the scheme in lower case only.
    if (StartsWithNoCase(uri, scheme)) {
      return postgres::OpenPostgres(std::string(scheme) + std::string(uri.substr(scheme.size())));
    }
  }
  throw DbError(fmt::format("Dirección de base de datos no reconocida: '{}'. Formas aceptadas: {}",
                            uri, kAcceptedForms));
}

}  // namespace kivmovfrec
