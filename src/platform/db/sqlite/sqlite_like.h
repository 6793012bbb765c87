// LIKE for SQLite that ignores the case of accented letters too.
//
// SQLite's own LIKE folds only ASCII letters, so "ÁREA" Like '%área%' would fail where the
// suite's other engine matches. This replacement folds ASCII and the Latin-1 letters (Á É Í Ó
// Ú Ñ Ü À Ç ...) and keeps SQLite's pattern rules: % any run, _ one character, optional ESCAPE
// character. Internal to the SQLite adapter.
#pragma once

#include <sqlite3.h>

#include <optional>
#include <string_view>

namespace kivmovfrec::sqlite {

// True when `text` matches `pattern`; `escape` makes the next pattern character literal.
bool LikeMatch(std::string_view pattern, std::string_view text,
               std::optional<char32_t> escape = std::nullopt);

// Installs like(pattern, text) and like(pattern, text, escape) on the connection; false when
// the engine refused.
bool RegisterLike(sqlite3* db);

}  // namespace kivmovfrec::sqlite
