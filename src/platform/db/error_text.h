// A database failure told to people: what its kind means in plain Spanish, then the engine's
// own text. One wording for every message that reports a DbError (hosts reach it through
// kivmovfrec::DescribirErrorDb in kivmovfrec/db.h).
#pragma once

#include <string>
#include <string_view>

#include "kivmovfrec/db.h"

namespace kivmovfrec::sql {

// "la base de datos está bloqueada por otro proceso", ...; "" for DbErrorKind::Other, whose
// engine message is all there is to say.
std::string_view CausaErrorDb(DbErrorKind kind);

// "<cause>: <engine text> (sentencia: <statement>)" for an error the engine reported; the cause
// followed by what() in parentheses for one the component raised; what() alone for Other.
std::string DescribirErrorDb(const DbError& e);

}  // namespace kivmovfrec::sql
