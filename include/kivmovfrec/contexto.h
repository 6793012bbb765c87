// ContextoMF: what one façade works with — its connection, its suite services (the clock among
// them) and the settings of its database. Nothing in the component keeps these process-wide:
// the façade owns its context and hands it (or the part a piece of work needs) down to the
// evaluator, the storage layer and the main job. Two façades on two databases in one process
// therefore never see each other's date literal, language, currency or "today".
//
// A host obtains the context of a connected façade with clsMovFrecuente::Contexto(); it is
// filled at Connect and stays valid until the next Connect.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kivmovfrec/db.h"
#include "kivmovfrec/export.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec {

// The settings of one database. The façade fills them when it is connected: the language number
// from the suite setting "Idioma" and the date settings and multi-user flag from
// genParametros. The formula members copy the company's accounting currency in before they
// compute. A default-constructed value holds the suite's standard settings.
struct KMF_API ParametrosBD {
  // defBDDateCharSQLs: the delimiter of a date literal in this database's SQL. The
  // component's own statements bind dates as values; this is what "[prmBDDateCharSQLs]"
  // becomes in the queries a formula holds.
  std::string caracter_fecha = "'";
  // defBDDateFormat: the VB Format pattern of a date in this database; a schedule's dates are
  // saved to the precision it shows (no time of day, or no seconds, when it has none).
  std::string formato_fecha = "yyyy-mm-dd hh:nn:ss";
  // sis_Multiusuario: the installation is used by several users at once.
  bool multiusuario = false;
  // Suite setting "Idioma": offset of the message catalogue (0 counts as 1, Spanish).
  int16_t idioma = 0;
  // Accounting currency of the current company, for the formula evaluator.
  int16_t moneda_contabilidad = 0;
};

struct KMF_API ContextoMF {
  // The database the façade works on; null while it is not connected.
  std::shared_ptr<Connection> cn;
  // The services in use: after Connect none is null except the date calculator, which may be
  // (the suite's own is then used).
  SuiteServices servicios;
  ParametrosBD parametros;

  // The services' clock, or the machine's clock when none is set.
  IClock& Reloj() const;
};

}  // namespace kivmovfrec
