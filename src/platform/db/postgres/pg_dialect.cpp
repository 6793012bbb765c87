#include "platform/db/postgres/pg_dialect.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "platform/db/dialect.h"
#include "platform/db/sql_tokens.h"

namespace kivmovfrec::postgres {

namespace {

using sql::IsKeyword;
using sql::IsSymbol;
using sql::Token;
using sql::TokenKind;

// Replaces sql[offset, offset + length) by text.
struct Edit {
  size_t offset;
  size_t length;
  std::string text;
};

enum class ItemKind { Number, Null, Other };

struct SelectItem {
  ItemKind kind = ItemKind::Other;
  size_t first = 0;  // for a number: its tokens (sign included), alias excluded
  size_t last = 0;
};

bool IsCompoundWord(const Token& t) {
  return IsKeyword(t, "UNION") || IsKeyword(t, "EXCEPT") || IsKeyword(t, "INTERSECT");
}

// Words that end a select list.
bool EndsSelectList(const Token& t) {
  for (std::string_view w :
       {"FROM", "WHERE", "GROUP", "HAVING", "ORDER", "LIMIT", "OFFSET", "INTO", "WINDOW"}) {
    if (IsKeyword(t, w)) return true;
  }
  return IsSymbol(t, ";") || IsCompoundWord(t);
}

class Rewriter {
 public:
  explicit Rewriter(std::string_view sql) : sql_(sql), list_(sql::Tokenize(sql)) {
    match_ = sql::MatchParentheses(list_.tokens, sql_);
  }

  std::string Run() {
    Level(0, list_.tokens.size());
    std::sort(edits_.begin(), edits_.end(),
              [](const Edit& a, const Edit& b) { return a.offset > b.offset; });
    std::string out(sql_);
    for (const Edit& e : edits_) out.replace(e.offset, e.length, e.text);
    return out;
  }

 private:
  const Token& Tok(size_t i) const { return list_.tokens[i]; }

  // One nesting level [begin, end): inner levels first, then this level's compound, if any.
  void Level(size_t begin, size_t end) {
    std::vector<std::pair<size_t, size_t>> branches;
    size_t start = begin;
    for (size_t i = begin; i < end; ++i) {
      if (IsSymbol(Tok(i), "(")) {
        Level(i + 1, match_[i]);
        i = match_[i];
        continue;
      }
      if (IsCompoundWord(Tok(i))) {
        branches.emplace_back(start, i);
        start = i + 1;
        if (start < end && (IsKeyword(Tok(start), "ALL") || IsKeyword(Tok(start), "DISTINCT")))
          ++start;
      }
    }
    if (branches.empty()) return;
    branches.emplace_back(start, end);

    std::vector<std::vector<SelectItem>> lists;
    for (auto [b, e] : branches) {
      auto items = SelectList(b, e);
      if (!items) return;  // a branch that is not a plain select: leave the compound alone
      lists.push_back(std::move(*items));
    }
    size_t width = lists.front().size();
    for (const auto& l : lists) width = std::min(width, l.size());
    for (size_t p = 0; p < width; ++p) {
      bool numbers = false, typed = false;
      for (const auto& l : lists) {
        numbers = numbers || l[p].kind == ItemKind::Number;
        typed = typed || l[p].kind == ItemKind::Other;
      }
      if (!numbers || !typed) continue;
      for (const auto& l : lists) {
        if (l[p].kind == ItemKind::Number) Quote(l[p]);
      }
    }
  }

  // The items of the select list of a branch [b, e): `SELECT ...` or `( SELECT ... )`.
  std::optional<std::vector<SelectItem>> SelectList(size_t b, size_t e) const {
    while (e > b && IsSymbol(Tok(e - 1), ";")) --e;
    if (b < e && IsSymbol(Tok(b), "(") && match_[b] == e - 1) {
      ++b;
      --e;
    }
    if (b >= e || !IsKeyword(Tok(b), "SELECT")) return std::nullopt;
    size_t k = b + 1;
    if (k < e && (IsKeyword(Tok(k), "DISTINCT") || IsKeyword(Tok(k), "ALL"))) ++k;
    if (k < e && IsKeyword(Tok(k), "TOP")) {
      ++k;
      if (k < e && IsSymbol(Tok(k), "(")) {
        k = match_[k] + 1;
      } else if (k < e) {
        ++k;
      }
      if (k < e && IsKeyword(Tok(k), "PERCENT")) ++k;
    }
    std::vector<SelectItem> items;
    size_t start = k;
    for (; k < e; ++k) {
      if (IsSymbol(Tok(k), "(")) {
        k = match_[k];
        continue;
      }
      if (IsSymbol(Tok(k), ",")) {
        if (k == start) return std::nullopt;
        items.push_back(Classify(start, k - 1));
        start = k + 1;
        continue;
      }
      if (EndsSelectList(Tok(k))) break;
    }
    if (k == start) return std::nullopt;
    items.push_back(Classify(start, k - 1));
    return items;
  }

  SelectItem Classify(size_t first, size_t last) const {
    // Without its alias: `0 AS Codigo`, `0 Codigo`.
    auto is_name = [&](size_t i) {
      return Tok(i).kind == TokenKind::Word || Tok(i).kind == TokenKind::QuotedName;
    };
    if (last > first && is_name(last)) {
      if (IsKeyword(Tok(last - 1), "AS") && last - 1 > first) {
        last -= 2;
      } else if (Tok(last - 1).kind == TokenKind::Number) {
        last -= 1;
      }
    }
    SelectItem item{ItemKind::Other, first, last};
    if (Tok(last).kind == TokenKind::Number &&
        (first == last ||
         (first + 1 == last && (IsSymbol(Tok(first), "-") || IsSymbol(Tok(first), "+"))))) {
      item.kind = ItemKind::Number;
    } else if (first == last && IsKeyword(Tok(first), "NULL")) {
      item.kind = ItemKind::Null;
    }
    return item;
  }

  void Quote(const SelectItem& item) {
    const Token& number = Tok(item.last);
    std::string text = "'";
    if (item.first != item.last && IsSymbol(Tok(item.first), "-")) text += '-';
    text += std::string(number.text) + "'";
    const size_t from = Tok(item.first).offset;
    edits_.push_back(Edit{from, number.offset + number.text.size() - from, std::move(text)});
  }

  std::string_view sql_;
  sql::TokenList list_;
  std::vector<size_t> match_;
  std::vector<Edit> edits_;
};

}  // namespace

std::string RewriteLooseTyping(std::string_view sql) {
  return Rewriter(sql).Run();
}

std::string TranslateForPostgres(std::string_view sql) {
  return sql::TranslateSql(RewriteLooseTyping(sql), sql::Target::PostgreSQL);
}

}  // namespace kivmovfrec::postgres
