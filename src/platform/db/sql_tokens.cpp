#include "platform/db/sql_tokens.h"

#include <fmt/format.h>

#include <cstdint>

#include "kivmovfrec/db.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::sql {

namespace {

bool IsWordStart(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x80;
}

bool IsDigit(unsigned char c) {
  return c >= '0' && c <= '9';
}

bool IsWordChar(unsigned char c) {
  return IsWordStart(c) || IsDigit(c) || c == '$';
}

bool IsBlank(unsigned char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

char Lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// Length of the blanks and comments starting at `pos`.
size_t SkipSpace(std::string_view s, size_t pos) {
  size_t i = pos;
  while (i < s.size()) {
    if (IsBlank(static_cast<unsigned char>(s[i]))) {
      ++i;
    } else if (s.compare(i, 2, "--") == 0) {
      while (i < s.size() && s[i] != '\n') ++i;
    } else if (s.compare(i, 2, "/*") == 0) {
      size_t end = s.find("*/", i + 2);
      i = (end == std::string_view::npos) ? s.size() : end + 2;
    } else {
      break;
    }
  }
  return i - pos;
}

// Length of a quoted token opened at `pos` with `open` and closed by `close`; a doubled closing
// quote is part of the text. Throws when the quote is never closed.
size_t QuotedLength(std::string_view s, size_t pos, char close, std::string_view what) {
  size_t i = pos + 1;
  while (i < s.size()) {
    if (s[i] == close) {
      if (close != ']' && i + 1 < s.size() && s[i + 1] == close) {
        i += 2;
        continue;
      }
      return i + 1 - pos;
    }
    ++i;
  }
  throw DbError(fmt::format("{} sin cerrar en la sentencia SQL: {}", what, s));
}

size_t NumberLength(std::string_view s, size_t pos) {
  size_t i = pos;
  while (i < s.size() && IsDigit(static_cast<unsigned char>(s[i]))) ++i;
  if (i < s.size() && s[i] == '.') {
    ++i;
    while (i < s.size() && IsDigit(static_cast<unsigned char>(s[i]))) ++i;
  }
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
    if (j < s.size() && IsDigit(static_cast<unsigned char>(s[j]))) {
      i = j;
      while (i < s.size() && IsDigit(static_cast<unsigned char>(s[i]))) ++i;
    }
  }
  return i - pos;
}

}  // namespace

TokenList Tokenize(std::string_view sql) {
  TokenList out;
  size_t pos = 0;
  while (true) {
    size_t space_len = SkipSpace(sql, pos);
    std::string_view space = sql.substr(pos, space_len);
    pos += space_len;
    if (pos >= sql.size()) {
      out.trailing = space;
      break;
    }
    auto c = static_cast<unsigned char>(sql[pos]);
    TokenKind kind = TokenKind::Symbol;
    size_t len = 1;
    if (c == '\'') {
      kind = TokenKind::String;
      len = QuotedLength(sql, pos, '\'', "Texto entre comillas");
    } else if (c == '"') {
      kind = TokenKind::QuotedName;
      len = QuotedLength(sql, pos, '"', "Nombre entre comillas");
    } else if (c == '`') {
      kind = TokenKind::QuotedName;
      len = QuotedLength(sql, pos, '`', "Nombre entre comillas");
    } else if (c == '[') {
      kind = TokenKind::QuotedName;
      len = QuotedLength(sql, pos, ']', "Nombre entre corchetes");
    } else if (IsDigit(c) || (c == '.' && pos + 1 < sql.size() &&
                              IsDigit(static_cast<unsigned char>(sql[pos + 1])))) {
      kind = TokenKind::Number;
      len = NumberLength(sql, pos);
    } else if (IsWordStart(c)) {
      kind = TokenKind::Word;
      while (pos + len < sql.size() && IsWordChar(static_cast<unsigned char>(sql[pos + len])))
        ++len;
    } else {
      static constexpr std::string_view kPairs[] = {"<>", "<=", ">=", "!=", "==", "||"};
      for (auto p : kPairs) {
        if (sql.compare(pos, 2, p) == 0) len = 2;
      }
    }
    out.tokens.push_back(Token{kind, sql.substr(pos, len), space, pos});
    pos += len;
  }
  return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (Lower(a[i]) != Lower(b[i])) return false;
  }
  return true;
}

bool IsKeyword(const Token& t, std::string_view keyword) {
  return t.kind == TokenKind::Word && EqualsNoCase(t.text, keyword);
}

bool IsSymbol(const Token& t, std::string_view symbol) {
  return t.kind == TokenKind::Symbol && t.text == symbol;
}

std::vector<size_t> MatchParentheses(const std::vector<Token>& tokens, std::string_view sql) {
  std::vector<size_t> match(tokens.size(), SIZE_MAX);
  std::vector<size_t> open;
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (IsSymbol(tokens[i], "(")) {
      open.push_back(i);
    } else if (IsSymbol(tokens[i], ")")) {
      if (open.empty()) {
        throw DbError(fmt::format("Paréntesis de cierre sin abrir en la sentencia SQL: {}", sql));
      }
      match[i] = open.back();
      match[open.back()] = i;
      open.pop_back();
    }
  }
  if (!open.empty()) {
    throw DbError(fmt::format("Paréntesis sin cerrar en la sentencia SQL: {}", sql));
  }
  return match;
}

std::string QuoteName(std::string_view name) {
  std::string out = "\"";
  for (char c : name) {
    out += c;
    if (c == '"') out += '"';
  }
  out += '"';
  return out;
}

std::string StoredDateText(Date d) {
  try {
    return vb::FormatIsoDateTime(d);
  } catch (const VbError&) {
    throw DbError(
        fmt::format("Fecha fuera del intervalo admitido (años 100 a 9999): {}", d.serial));
  }
}

}  // namespace kivmovfrec::sql
