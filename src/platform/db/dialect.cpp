#include "platform/db/dialect.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "kivmovfrec/db.h"
#include "platform/db/sql_tokens.h"

namespace kivmovfrec::sql {

namespace {

// What the translation does to one token: text put in front of it (after its blanks) and after
// it, a replacement, or its removal together with its blanks. Rewrites are applied from the
// innermost construct outwards, so `before` grows at the front and `after` at the back.
struct TokenEdit {
  std::string before;
  std::string after;
  std::optional<std::string> replacement;
  bool removed = false;
};

// One element of a nesting level: a single token, or a parenthesised group (first = "(",
// last = ")").
struct Item {
  size_t first;
  size_t last;
  bool group;
};

// Words that end an operand of an arithmetic chain: clause keywords, logical and comparison
// operators, and the keywords around expressions.
constexpr std::string_view kBoundaryWords[] = {
    "SELECT", "DISTINCT", "ALL",    "TOP",     "FROM",   "WHERE",   "AND",    "OR",     "NOT",
    "ON",     "AS",       "ORDER",  "GROUP",   "BY",     "HAVING",  "UNION",  "EXCEPT", "INTERSECT",
    "JOIN",   "LEFT",     "RIGHT",  "INNER",   "OUTER",  "CROSS",   "FULL",   "IN",     "IS",
    "LIKE",   "ILIKE",    "GLOB",   "BETWEEN", "CASE",   "WHEN",    "THEN",   "ELSE",   "END",
    "SET",    "VALUES",   "INTO",   "INSERT",  "UPDATE", "DELETE",  "ASC",    "DESC",   "EXISTS",
    "ESCAPE", "LIMIT",    "OFFSET", "WITH",    "USING",  "COLLATE", "PERCENT"};

constexpr std::string_view kBoundarySymbols[] = {",",  ";", "=", "==", "<>",
                                                 "!=", "<", ">", "<=", ">="};

constexpr std::string_view kOperatorSymbols[] = {"+", "-", "*", "/", "%", "||", "&", "|", "~"};

bool IsCompoundWord(const Token& t) {
  return IsKeyword(t, "UNION") || IsKeyword(t, "EXCEPT") || IsKeyword(t, "INTERSECT");
}

class Translator {
 public:
  Translator(std::string_view sql, Target target)
      : sql_(sql), target_(target), list_(Tokenize(sql)), edits_(list_.tokens.size()) {
    match_ = MatchParentheses(list_.tokens, sql_);
  }

  std::string Run() {
    const auto& toks = list_.tokens;
    Level(0, toks.size());
    if (target_ == Target::PostgreSQL) {
      for (size_t i = 0; i < toks.size(); ++i) {
        if (IsKeyword(toks[i], "LIKE")) edits_[i].replacement = "ILIKE";
      }
    }
    return Write();
  }

 private:
  const Token& Tok(size_t i) const { return list_.tokens[i]; }

  // Translates the tokens [begin, end) of one nesting level, inner levels first.
  void Level(size_t begin, size_t end) {
    std::vector<Item> items;
    for (size_t i = begin; i < end; ++i) {
      if (IsSymbol(Tok(i), "(")) {
        size_t close = match_[i];
        Level(i + 1, close);
        items.push_back(Item{i, close, true});
        i = close;
      } else {
        items.push_back(Item{i, i, false});
      }
    }
    Concatenations(items);
    TopClauses(items);
  }

  // ---- `+` next to a string literal ------------------------------------------------------

  bool IsBoundary(const Item& it) const {
    if (it.group) return false;
    const Token& t = Tok(it.first);
    if (t.kind == TokenKind::Symbol) {
      return std::any_of(std::begin(kBoundarySymbols), std::end(kBoundarySymbols),
                         [&](std::string_view s) { return t.text == s; });
    }
    if (t.kind == TokenKind::Word) {
      return std::any_of(std::begin(kBoundaryWords), std::end(kBoundaryWords),
                         [&](std::string_view w) { return EqualsNoCase(t.text, w); });
    }
    return false;
  }

  bool IsOperator(const Item& it) const {
    if (it.group) return false;
    const Token& t = Tok(it.first);
    return t.kind == TokenKind::Symbol &&
           std::any_of(std::begin(kOperatorSymbols), std::end(kOperatorSymbols),
                       [&](std::string_view s) { return t.text == s; });
  }

  // A term that needs no parentheses next to ||: one token or group, a function call
  // (name followed by its argument list) or a dotted name.
  bool IsSingleTerm(const std::vector<Item>& operand) const {
    if (operand.size() == 1) return true;
    bool call = true;
    for (size_t k = 0; k < operand.size(); ++k) {
      const Item& it = operand[k];
      bool last = k + 1 == operand.size();
      if (last && it.group) break;  // the argument list of a call
      bool expect_name = k % 2 == 0;
      if (it.group) return false;
      const Token& t = Tok(it.first);
      if (expect_name && t.kind != TokenKind::Word && t.kind != TokenKind::QuotedName) call = false;
      if (!expect_name && !IsSymbol(t, ".")) call = false;
      if (!call) return false;
    }
    return true;
  }

  // Rewrites one arithmetic chain: operands separated by binary `+` tokens.
  void FinishChain(std::vector<std::vector<Item>>& operands, std::vector<size_t>& pluses) {
    bool has_text = std::any_of(operands.begin(), operands.end(), [&](const auto& op) {
      return op.size() == 1 && !op[0].group && Tok(op[0].first).kind == TokenKind::String;
    });
    if (!pluses.empty() && has_text) {
      for (size_t p : pluses) edits_[p].replacement = "||";
      for (const auto& op : operands) {
        if (op.empty() || IsSingleTerm(op)) continue;
        edits_[op.front().first].before.insert(0, "(");
        edits_[op.back().last].after += ")";
      }
    }
    operands.assign(1, {});
    pluses.clear();
  }

  void Concatenations(const std::vector<Item>& items) {
    std::vector<std::vector<Item>> operands(1);
    std::vector<size_t> pluses;
    bool expect_operand = true;
    for (size_t k = 0; k < items.size(); ++k) {
      const Item& it = items[k];
      if (IsBoundary(it)) {
        FinishChain(operands, pluses);
        expect_operand = true;
        continue;
      }
      if (!it.group && IsSymbol(Tok(it.first), "+") && !expect_operand) {
        pluses.push_back(it.first);
        operands.emplace_back();
        expect_operand = true;
        continue;
      }
      if (IsOperator(it) || (!it.group && IsSymbol(Tok(it.first), "."))) {
        operands.back().push_back(it);
        expect_operand = true;
        continue;
      }
      // A term. Right after a complete operand it starts a new expression (an alias written
      // without AS), unless it is the argument list of a function call.
      bool call = it.group && k > 0 && !items[k - 1].group &&
                  Tok(items[k - 1].first).kind == TokenKind::Word;
      if (!expect_operand && !call) FinishChain(operands, pluses);
      operands.back().push_back(it);
      expect_operand = false;
    }
    FinishChain(operands, pluses);
  }

  // ---- Top n -------------------------------------------------------------------------------

  // Removes `Top n` from a branch that starts with SELECT; returns n as written, or nothing.
  std::optional<std::string> TakeTop(const std::vector<Item>& items, size_t begin, size_t end) {
    size_t k = begin;
    if (k >= end || items[k].group || !IsKeyword(Tok(items[k].first), "SELECT")) return {};
    ++k;
    if (k < end && !items[k].group &&
        (IsKeyword(Tok(items[k].first), "DISTINCT") || IsKeyword(Tok(items[k].first), "ALL")))
      ++k;
    if (k + 1 >= end || items[k].group || !IsKeyword(Tok(items[k].first), "TOP")) return {};
    const Item& count = items[k + 1];
    std::optional<std::string> n;
    if (!count.group && Tok(count.first).kind == TokenKind::Number) {
      n = std::string(Tok(count.first).text);
    } else if (count.group && count.last == count.first + 2 &&
               Tok(count.first + 1).kind == TokenKind::Number) {
      n = std::string(Tok(count.first + 1).text);
    }
    if (!n) {
      throw DbError(
          fmt::format("Se esperaba un número después de TOP en la sentencia SQL: {}", sql_));
    }
    if (k + 2 < end && !items[k + 2].group && IsKeyword(Tok(items[k + 2].first), "PERCENT")) {
      throw DbError(fmt::format("TOP ... PERCENT no está admitido en la sentencia SQL: {}", sql_));
    }
    for (size_t i = items[k].first; i <= count.last; ++i) edits_[i].removed = true;
    return n;
  }

  void TopClauses(const std::vector<Item>& items) {
    // Branches of a compound select: [begin, end) ranges of items.
    std::vector<std::pair<size_t, size_t>> branches;
    size_t start = 0;
    for (size_t k = 0; k < items.size(); ++k) {
      if (!items[k].group && IsCompoundWord(Tok(items[k].first))) {
        branches.emplace_back(start, k);
        start = k + 1;
        if (start < items.size() && !items[start].group &&
            (IsKeyword(Tok(items[start].first), "ALL") ||
             IsKeyword(Tok(items[start].first), "DISTINCT")))
          ++start;
      }
    }
    size_t stop = items.size();
    while (stop > start && !items[stop - 1].group && IsSymbol(Tok(items[stop - 1].first), ";"))
      --stop;
    const bool compound = !branches.empty();
    // An ORDER BY after the last branch of a compound orders the whole compound.
    if (compound) {
      for (size_t k = start; k + 1 < stop; ++k) {
        if (!items[k].group && IsKeyword(Tok(items[k].first), "ORDER") && !items[k + 1].group &&
            IsKeyword(Tok(items[k + 1].first), "BY")) {
          stop = k;
          break;
        }
      }
    }
    branches.emplace_back(start, stop);

    for (auto [b, e] : branches) {
      if (b >= e) continue;
      auto n = TakeTop(items, b, e);
      if (!n) continue;
      TokenEdit& last = edits_[items[e - 1].last];
      last.after += " LIMIT " + *n;
      if (compound) {
        const char* open = target_ == Target::SQLite ? "SELECT * FROM (" : "(";
        edits_[items[b].first].before.insert(0, open);
        last.after += ")";
      }
    }
  }

  // ---- output ------------------------------------------------------------------------------

  std::string Write() const {
    std::string out;
    out.reserve(sql_.size() + 32);
    bool after_removed = false;
    for (size_t i = 0; i < list_.tokens.size(); ++i) {
      const Token& t = list_.tokens[i];
      const TokenEdit& e = edits_[i];
      if (e.removed) {
        after_removed = true;
        continue;
      }
      if (after_removed && t.space.empty() && !out.empty()) out += ' ';
      after_removed = false;
      out += t.space;
      out += e.before;
      out += e.replacement ? std::string_view(*e.replacement) : t.text;
      out += e.after;
    }
    out += list_.trailing;
    return out;
  }

  std::string_view sql_;
  Target target_;
  TokenList list_;
  std::vector<TokenEdit> edits_;
  std::vector<size_t> match_;
};

}  // namespace

std::string TranslateSql(std::string_view sql, Target target) {
  return Translator(sql, target).Run();
}

std::optional<SingleTableSelect> MatchSingleTableSelect(std::string_view sql) {
  const auto list = Tokenize(sql);
  const auto& t = list.tokens;
  if (t.size() < 4 || !IsKeyword(t[0], "SELECT") || !IsSymbol(t[1], "*") ||
      !IsKeyword(t[2], "FROM")) {
    return std::nullopt;
  }
  if (t[3].kind != TokenKind::Word && t[3].kind != TokenKind::QuotedName) return std::nullopt;
  if (t.size() > 4) {
    const Token& next = t[4];
    if (!IsKeyword(next, "WHERE") && !IsKeyword(next, "ORDER") && !IsKeyword(next, "LIMIT") &&
        !IsSymbol(next, ";")) {
      return std::nullopt;  // a join, a second table, an alias, a GROUP BY...
    }
    int depth = 0;
    for (size_t i = 4; i < t.size(); ++i) {
      if (IsSymbol(t[i], "(")) ++depth;
      if (IsSymbol(t[i], ")")) --depth;
      if (depth == 0 && (IsCompoundWord(t[i]) || IsKeyword(t[i], "GROUP"))) return std::nullopt;
    }
  }
  SingleTableSelect out;
  out.table = std::string(t[3].text);
  if (t[3].kind == TokenKind::QuotedName) {
    out.table = out.table.substr(1, out.table.size() - 2);
  }
  out.star_offset = t[1].offset;
  return out;
}

std::string LeadingKeyword(std::string_view sql) {
  const auto list = Tokenize(sql);
  if (list.tokens.empty() || list.tokens[0].kind != TokenKind::Word) return "";
  std::string word(list.tokens[0].text);
  for (char& c : word) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return word;
}

bool IsBlankSql(std::string_view sql) {
  const auto list = Tokenize(sql);
  return std::all_of(list.tokens.begin(), list.tokens.end(),
                     [](const Token& t) { return IsSymbol(t, ";"); });
}

std::vector<std::string> SplitStatements(std::string_view script) {
  const auto list = Tokenize(script);
  const auto& t = list.tokens;
  std::vector<std::string> out;
  size_t first = SIZE_MAX;
  size_t last = 0;
  // A trigger's body (BEGIN ... END) holds semicolons of its own; CASE ... END inside it does
  // not close it.
  bool trigger = false;
  bool in_body = false;
  int case_depth = 0;
  auto flush = [&] {
    if (first != SIZE_MAX) {
      out.emplace_back(
          script.substr(t[first].offset, t[last].offset + t[last].text.size() - t[first].offset));
    }
    first = SIZE_MAX;
    trigger = in_body = false;
    case_depth = 0;
  };
  for (size_t i = 0; i < t.size(); ++i) {
    if (IsSymbol(t[i], ";") && !in_body) {
      flush();
      continue;
    }
    if (first == SIZE_MAX) first = i;
    last = i;
    if (i - first <= 2 && IsKeyword(t[first], "CREATE") && IsKeyword(t[i], "TRIGGER")) {
      trigger = true;
    } else if (trigger && !in_body && IsKeyword(t[i], "BEGIN")) {
      in_body = true;
    } else if (in_body && IsKeyword(t[i], "CASE")) {
      ++case_depth;
    } else if (in_body && IsKeyword(t[i], "END")) {
      if (case_depth > 0) {
        --case_depth;
      } else {
        in_body = false;
      }
    }
  }
  flush();
  return out;
}

}  // namespace kivmovfrec::sql

namespace kivmovfrec::sql {

size_t CountPlaceholders(std::string_view sql) {
  size_t n = 0;
  for (const Token& t : Tokenize(sql).tokens) n += IsSymbol(t, "?") ? 1 : 0;
  return n;
}

std::string NumberPlaceholders(std::string_view sql) {
  std::string out;
  out.reserve(sql.size() + 8);
  size_t copied = 0, n = 0;
  for (const Token& t : Tokenize(sql).tokens) {
    if (!IsSymbol(t, "?")) continue;
    out.append(sql.substr(copied, t.offset - copied));
    out += "$" + std::to_string(++n);
    copied = t.offset + 1;
  }
  out.append(sql.substr(copied));
  return out;
}

void CheckPlaceholders(std::string_view sql, size_t values) {
  const size_t marks = CountPlaceholders(sql);
  if (marks != values) {
    throw DbError(fmt::format("La sentencia tiene {} marcador{} '?' y se dieron {} valor{}: {}",
                              marks, marks == 1 ? "" : "es", values, values == 1 ? "" : "es", sql));
  }
}

}  // namespace kivmovfrec::sql
