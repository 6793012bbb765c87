// The database-functions service (DBFncs) over a suite database.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::suite {

// Parses a user list as the notice dialogs write it ("3, 7,12"): decimal codes separated by
// ",", blanks around each ignored, an empty text meaning nobody. Nothing when an entry is empty
// or not a whole number.
std::optional<std::set<int32_t>> ParseUserList(std::string_view usuarios);

// DBFncs over `cn`:
//  - GetTableCounter, ReserveTableCounter: DrawTableCounter, ReserveTableCounter (counter.h).
//  - GetSetting: the genParametros row named `name` (trimmed, case ignored; the name is a bound
//    value); ParValor when not Null, else ParTexto. So "Idioma", stored in ParValor, yields its
//    number. A database failure throws its DbError.
//  - ShowHelp: forwarded to `help`'s ShowHelp.
//  - VincularAvisos: what the suite's stored routine does, written as plain statements (SQLite
//    has no stored routines): the notice's recipients in genAvisosUsuarios become exactly the
//    listed users. Users already linked keep their row (and whether they have seen the notice),
//    users no longer listed lose it, new ones are added unseen. The notice number must be
//    positive and every code must name an enabled user of admUsuarios (UsuCodigo > 0,
//    UsuHabilitado <> 0); otherwise nothing changes and the result is false. Runs inside the
//    caller's transaction when one is open (as a savepoint, so a failure leaves the caller's
//    transaction usable), else in its own; a database failure gives false.
class DbFncs final : public IDBFncs {
 public:
  // Both are required (std::invalid_argument otherwise).
  DbFncs(std::shared_ptr<Connection> cn, std::shared_ptr<IMessages> help);

  int32_t GetTableCounter(std::string_view table) override;
  int32_t ReserveTableCounter(std::string_view table, int32_t count) override;
  Variant GetSetting(std::string_view name) override;
  void ShowHelp(int context_id) override;
  bool VincularAvisos(int32_t aviso, const std::string& usuarios) override;

 private:
  std::shared_ptr<Connection> cn_;
  std::shared_ptr<IMessages> help_;
};

// The setting lookup of DbFncs, for services that keep their own overrides.
Variant ReadSetting(Connection& cn, std::string_view name);

// The user check of DbFncs::VincularAvisos: the parsed codes when all of them are valid.
std::optional<std::set<int32_t>> CheckNoticeUsers(Connection& cn, int32_t aviso,
                                                  const std::string& usuarios);

// DbFncs::VincularAvisos.
bool LinkNoticeUsers(Connection& cn, int32_t aviso, const std::string& usuarios);

}  // namespace kivmovfrec::suite
