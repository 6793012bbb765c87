// Process-wide settings of the database the component works on.
//
// The façade fills them when it is connected: the language number from the suite setting
// "Idioma" (LeerIdioma) and the SQL date literal, the multi-user flag from genParametros
// (CargarParametros). The formula members copy the company's accounting currency in before
// they compute. Everything else reads them through Parametros().
//
// They belong to the process, as the suite's global settings do: one database per process.
// They are read and written on the host's thread only.
#pragma once

#include <cstdint>
#include <string>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::storage {

struct ParametrosBD {
  // defBDDateCharSQLs: written before and after a date literal in SQL.
  std::string caracter_fecha = "'";
  // defBDDateFormat: the VB Format pattern of a date literal in SQL.
  std::string formato_fecha = "yyyy-mm-dd hh:nn:ss";
  // sis_Multiusuario: the installation is used by several users at once.
  bool multiusuario = false;
  // Suite setting "Idioma": offset of the message catalogue (0 counts as 1, Spanish).
  int16_t idioma = 0;
  // Accounting currency of the current company, for the formula evaluator.
  int16_t moneda_contabilidad = 0;
};

// The settings of this process. Until CargarParametros has run they hold the defaults above,
// which are the suite's standard values.
ParametrosBD& Parametros();

// The statement that reads the parameters, exactly as the suite writes it.
extern const char* const kSqlParametros;

// Reads genParametros with kSqlParametros and sets the date delimiter (ParTexto of
// defBDDateCharSQLs), the date format (ParTexto of defBDDateFormat) and the multi-user flag
// (ParValor of sis_Multiusuario, true when numeric and not 0). Names are compared trimmed and
// without regard to case. A missing row or a NULL value leaves the default of that setting.
// The other settings (language, currency) are not touched. On a database error (DbError) the
// settings are left exactly as they were.
void CargarParametros(Connection& cn);

// Sets the language number from the suite setting "Idioma": its numeric value, or 0 when the
// setting is absent, empty or not a number.
void LeerIdioma(IDBFncs& dbf);

}  // namespace kivmovfrec::storage
