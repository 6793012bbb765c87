// Translation of the suite's SQL dialect into what a given engine runs, and a few structural
// questions about statements that the adapters need. Engine-independent: works on tokens only.
//
// The suite writes its statements in one dialect and the engines lack a closed set of its
// constructs; TranslateSql rewrites exactly those and leaves every other byte as written:
//   * `Select [Distinct] Top n ...` becomes `Select ... LIMIT n`, in sub-selects too. In a
//     compound (UNION [ALL], EXCEPT, INTERSECT) each branch with Top is limited on its own:
//     wrapped as `SELECT * FROM (... LIMIT n)` for SQLite and `(... LIMIT n)` for PostgreSQL;
//     an ORDER BY after the last branch stays with the whole compound.
//   * `+` in a chain of additions where one operand is a string literal is text concatenation:
//     every `+` of that chain becomes `||`, and operands that are not a single term are put in
//     parentheses (|| binds tighter than the other operators).
//   * `Like` compares without regard to case: PostgreSQL gets ILIKE; SQLite's LIKE already
//     ignores case (the SQLite adapter installs one that folds accented letters too).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivmovfrec::sql {

enum class Target { SQLite, PostgreSQL };

// The statement as `target` runs it. Throws DbError for text that cannot be tokenized
// (unclosed quote, unbalanced parentheses) and for `Top n Percent`.
std::string TranslateSql(std::string_view sql, Target target);

// A statement of the form `SELECT * FROM table [WHERE ...] [ORDER BY ...] [LIMIT ...]`, the
// shape whose rows can be written back.
struct SingleTableSelect {
  std::string table;       // as written, quotes removed
  size_t star_offset = 0;  // position of the `*` in the statement
};
std::optional<SingleTableSelect> MatchSingleTableSelect(std::string_view sql);

// The first word of the statement in upper case ("SELECT", "WITH", "INSERT"...), "" when the
// statement starts with something else.
std::string LeadingKeyword(std::string_view sql);

// Bound parameters: the suite's statements mark each value with `?` (outside quotes and
// comments), numbered by position. SQLite reads `?` itself; PostgreSQL wants `$1`, `$2`...
size_t CountPlaceholders(std::string_view sql);
std::string NumberPlaceholders(std::string_view sql);
// Throws DbError when the statement's placeholders are not exactly `values` many.
void CheckPlaceholders(std::string_view sql, size_t values);

// True when the text holds nothing but blanks, comments and semicolons.
bool IsBlankSql(std::string_view sql);

// Splits a script into its statements at the semicolons outside quotes, comments and trigger
// bodies (CREATE TRIGGER ... BEGIN ... END); empty statements are dropped. For running DDL files
// statement by statement.
std::vector<std::string> SplitStatements(std::string_view script);

}  // namespace kivmovfrec::sql
