#include "platform/db/error_text.h"

namespace kivmovfrec::sql {

std::string_view CausaErrorDb(DbErrorKind kind) {
  switch (kind) {
    case DbErrorKind::Busy:
      return "la base de datos está bloqueada por otro proceso";
    case DbErrorKind::Timeout:
      return "la base de datos tardó demasiado en responder";
    case DbErrorKind::Constraint:
      return "la base de datos rechazó los datos";
    case DbErrorKind::MissingTable:
      return "falta una tabla o una columna en la base de datos";
    case DbErrorKind::ReadOnly:
      return "la base de datos es de solo lectura";
    case DbErrorKind::ConnectionLost:
      return "se perdió la conexión con la base de datos";
    case DbErrorKind::Other:
      break;
  }
  return "";
}

std::string DescribirErrorDb(const DbError& e) {
  const std::string_view causa = CausaErrorDb(e.kind());
  if (causa.empty()) return e.what();
  if (e.engine_text().empty()) return std::string(causa) + " (" + e.what() + ")";
  return std::string(causa) + ": " + e.engine_text() + " (sentencia: " + e.statement() + ")";
}

}  // namespace kivmovfrec::sql

namespace kivmovfrec {

std::string DescribirErrorDb(const DbError& e) {
  return sql::DescribirErrorDb(e);
}

}  // namespace kivmovfrec
