// Reading the settings of one database (kivmovfrec/contexto.h, ParametrosBD) from the database
// itself and from the suite's settings service. The façade calls both at Connect and keeps the
// result in its own context; nothing here keeps a copy.
#pragma once

#include <cstdint>

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::storage {

// The statement that reads the parameters, exactly as the suite writes it.
extern const char* const kSqlParametros;

// Reads genParametros with kSqlParametros into `p`: the date delimiter (ParTexto of
// defBDDateCharSQLs), the date format (ParTexto of defBDDateFormat) and the multi-user flag
// (ParValor of sis_Multiusuario, true when numeric and not 0). Names are compared trimmed and
// without regard to case. A missing row or a NULL value gives the standard value of that
// setting (a default ParametrosBD's). The other settings (language, currency) are not touched.
// On a database error (DbError) `p` is left exactly as it was.
void CargarParametros(Connection& cn, ParametrosBD& p);

// The language number from the suite setting "Idioma": its numeric value, or 0 when the setting
// is absent, empty or not a number.
int16_t LeerIdioma(IDBFncs& dbf);

}  // namespace kivmovfrec::storage
