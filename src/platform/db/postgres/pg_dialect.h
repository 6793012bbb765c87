// What PostgreSQL needs beyond the shared dialect translation (platform/db/dialect.h). Works on
// tokens only; no server involved.
//
// One habit of the suite's statements relies on loose typing that PostgreSQL does not have:
//
//   * A compound select (UNION [ALL], EXCEPT, INTERSECT) may put a bare number in one branch
//     where another branch has a text column (`Select 1, CueCodigo ... Union All Select 2, 0
//     ...`); PostgreSQL refuses to match text with integer. At each select-list position where
//     some branch has a bare number (optionally signed, optionally with an alias) and another
//     branch has an expression other than a number or NULL, the numbers are written as quoted
//     literals ('0'), which take the type of the other branches' expression. Positions holding
//     only numbers (and NULLs) keep their numbers.
#pragma once

#include <string>
#include <string_view>

namespace kivmovfrec::postgres {

// The rewrite above, then sql::TranslateSql for the PostgreSQL target. Throws DbError for
// text that cannot be tokenized.
std::string TranslateForPostgres(std::string_view sql);

// The rewrite alone (for tests).
std::string RewriteLooseTyping(std::string_view sql);

}  // namespace kivmovfrec::postgres
