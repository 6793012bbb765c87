// A small SQL tokenizer shared by the dialect translation and the adapters, and the spelling of
// names and dates that both adapters write.
//
// It knows just enough of SQL to find statement structure without being fooled by text: string
// literals ('...' with '' as an escaped quote), quoted names ("...", [...], `...`), numbers,
// words (identifiers and keywords alike; keywords are compared without regard to case) and
// punctuation. Blanks and comments (-- to end of line, /* ... */) are kept as the `space` in
// front of the token that follows them, so a token list can be written back byte for byte.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::sql {

enum class TokenKind {
  Word,        // identifier or keyword: letters, digits, '_', '$', bytes >= 0x80
  QuotedName,  // "name", [name] or `name`, quotes included in text
  String,      // 'text', quotes included in text ('' inside stays doubled)
  Number,      // 12, 1.5, .5, 1e-3
  Symbol,      // punctuation; multi-character: <> <= >= != == ||
};

struct Token {
  TokenKind kind;
  std::string_view text;   // the token as written
  std::string_view space;  // blanks and comments before it
  size_t offset = 0;       // position of text in the statement
};

struct TokenList {
  std::vector<Token> tokens;
  std::string_view trailing;  // blanks and comments after the last token
};

// Splits `sql` into tokens (views into `sql`, which must outlive the result). Throws DbError
// for a string literal or quoted name that is never closed.
TokenList Tokenize(std::string_view sql);

// ASCII case-insensitive comparison, as the engines resolve names.
bool EqualsNoCase(std::string_view a, std::string_view b);

// `name` as a quoted identifier ("name", inner quotes doubled), as both engines read it.
std::string QuoteName(std::string_view name);

// A date as both adapters store it in text (vb::FormatIsoDateTime). Throws DbError for a date
// outside years 100-9999.
std::string StoredDateText(Date d);

// True when the token is the word `keyword` (compared without regard to case).
bool IsKeyword(const Token& t, std::string_view keyword);
// True when the token is the symbol `symbol`.
bool IsSymbol(const Token& t, std::string_view symbol);

// For every "(" and ")" token, the index of its partner; SIZE_MAX for other tokens. Throws
// DbError when the parentheses are not balanced.
std::vector<size_t> MatchParentheses(const std::vector<Token>& tokens, std::string_view sql);

}  // namespace kivmovfrec::sql
