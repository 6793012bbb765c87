// User rights: the permission letters of the current user for an option of a company.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "kivmovfrec/db.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec::suite {

// Rights read from admDerechos (DerUsuario, DerEmpresa, DerOpcion, DerLetras) for one user.
// The option is compared trimmed and without regard to case; the letters come back trimmed.
// Several rows for the same option: the first one read counts. A database failure throws its
// DbError: the caller reports it instead of telling the user he has no rights.
class DbUserRights final : public IUserRights {
 public:
  DbUserRights(std::shared_ptr<Connection> cn, int32_t usuario);
  std::string Letras(int32_t empresa, std::string_view opcion) override;
  int32_t Usuario() const override { return usuario_; }

 private:
  std::shared_ptr<Connection> cn_;
  int32_t usuario_;
};

// Rights held in memory, for tests and hosts without a rights table. Same comparisons as the
// database version.
class MemoryUserRights final : public IUserRights {
 public:
  explicit MemoryUserRights(int32_t usuario = 1) : usuario_(usuario) {}
  // Grants `letras` on `opcion` in `empresa` (replacing what was there).
  void Set(int32_t empresa, std::string_view opcion, std::string letras);
  std::string Letras(int32_t empresa, std::string_view opcion) override;
  int32_t Usuario() const override { return usuario_; }

 private:
  int32_t usuario_;
  std::map<std::pair<int32_t, std::string>, std::string> letras_;  // key: (company, folded)
};

}  // namespace kivmovfrec::suite
