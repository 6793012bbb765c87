#include "platform/db/sqlite/sqlite_like.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kivmovfrec::sqlite {

namespace {

// Code points of UTF-8 text; a byte that does not start a valid sequence stands for itself.
std::u32string Decode(std::string_view s) {
  std::u32string out;
  out.reserve(s.size());
  size_t i = 0;
  while (i < s.size()) {
    auto c = static_cast<unsigned char>(s[i]);
    int extra = c >= 0xF0 && c < 0xF8 ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : 0;
    if (c >= 0xF8 || (c >= 0x80 && c < 0xC0)) extra = 0;
    char32_t cp = extra == 0 ? c : c & (0x3F >> extra);
    bool ok = i + static_cast<size_t>(extra) < s.size();
    for (int k = 1; ok && k <= extra; ++k) {
      auto cc = static_cast<unsigned char>(s[i + static_cast<size_t>(k)]);
      if ((cc & 0xC0) != 0x80) ok = false;
      cp = (cp << 6) | (cc & 0x3F);
    }
    if (extra > 0 && !ok) {
      cp = c;
      extra = 0;
    }
    out.push_back(cp);
    i += static_cast<size_t>(extra) + 1;
  }
  return out;
}

char32_t Fold(char32_t c) {
  if (c >= U'A' && c <= U'Z') return c + 32;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;  // À..Þ except ×
  return c;
}

struct Piece {
  enum Kind { Any, One, Char } kind;
  char32_t ch = 0;
};

std::vector<Piece> Compile(const std::u32string& pattern, std::optional<char32_t> escape) {
  std::vector<Piece> out;
  for (size_t i = 0; i < pattern.size(); ++i) {
    char32_t c = pattern[i];
    if (escape && c == *escape && i + 1 < pattern.size()) {
      out.push_back({Piece::Char, Fold(pattern[++i])});
    } else if (c == U'%') {
      if (out.empty() || out.back().kind != Piece::Any) out.push_back({Piece::Any});
    } else if (c == U'_') {
      out.push_back({Piece::One});
    } else {
      out.push_back({Piece::Char, Fold(c)});
    }
  }
  return out;
}

void LikeFunction(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
  for (int i = 0; i < argc; ++i) {
    if (sqlite3_value_type(argv[i]) == SQLITE_NULL) return;  // result NULL
  }
  auto text_of = [&](int i) {
    const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(argv[i]));
    return std::string_view(p ? p : "", static_cast<size_t>(sqlite3_value_bytes(argv[i])));
  };
  std::optional<char32_t> escape;
  if (argc == 3) {
    std::u32string e = Decode(text_of(2));
    if (e.size() != 1) {
      sqlite3_result_error(ctx, "ESCAPE expression must be a single character", -1);
      return;
    }
    escape = e[0];
  }
  sqlite3_result_int(ctx, LikeMatch(text_of(0), text_of(1), escape) ? 1 : 0);
}

}  // namespace

bool LikeMatch(std::string_view pattern, std::string_view text, std::optional<char32_t> escape) {
  const std::vector<Piece> p = Compile(Decode(pattern), escape);
  std::u32string t = Decode(text);
  for (auto& c : t) c = Fold(c);
  // Greedy walk that returns to the last % on a mismatch.
  size_t pi = 0, ti = 0;
  size_t star = SIZE_MAX, star_t = 0;
  while (ti < t.size()) {
    if (pi < p.size() && p[pi].kind == Piece::Any) {
      star = pi++;
      star_t = ti;
    } else if (pi < p.size() &&
               (p[pi].kind == Piece::One || (p[pi].kind == Piece::Char && p[pi].ch == t[ti]))) {
      ++pi;
      ++ti;
    } else if (star != SIZE_MAX) {
      pi = star + 1;
      ti = ++star_t;
    } else {
      return false;
    }
  }
  while (pi < p.size() && p[pi].kind == Piece::Any) ++pi;
  return pi == p.size();
}

bool RegisterLike(sqlite3* db) {
  const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  return sqlite3_create_function(db, "like", 2, flags, nullptr, LikeFunction, nullptr, nullptr) ==
             SQLITE_OK &&
         sqlite3_create_function(db, "like", 3, flags, nullptr, LikeFunction, nullptr, nullptr) ==
             SQLITE_OK;
}

}  // namespace kivmovfrec::sqlite
