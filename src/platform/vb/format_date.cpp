// FormatDate: named date styles and custom date patterns.
#include <fmt/format.h>

#include <cmath>
#include <optional>
#include <vector>

#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "platform/vb/format_detail.h"
#include "platform/vb/text.h"
#include "platform/vb/utf8.h"

namespace kivmovfrec::vb {

namespace {

struct Token {
  char kind = 0;  // d m y h n s w q, or 0 for literal text
  int count = 0;
  std::string text;  // literal text
};

bool IsDateLetter(char c) {
  switch (c | 0x20) {
    case 'd':
    case 'm':
    case 'y':
    case 'h':
    case 'n':
    case 's':
    case 'w':
    case 'q':
      return true;
    default:
      return false;
  }
}

std::vector<Token> Tokenize(std::string_view pattern) {
  std::vector<Token> tokens;
  auto literal = [&tokens](std::string_view text) {
    if (tokens.empty() || tokens.back().kind != 0) tokens.push_back(Token{});
    tokens.back().text.append(text);
  };
  for (size_t i = 0; i < pattern.size();) {
    const char c = pattern[i];
    if (c == '"') {
      const size_t close = pattern.find('"', i + 1);
      const size_t end = close == std::string_view::npos ? pattern.size() : close;
      literal(pattern.substr(i + 1, end - i - 1));
      i = end + 1;
    } else if (c == '\\' && i + 1 < pattern.size()) {
      literal(pattern.substr(i + 1, 1));
      i += 2;
    } else if (IsDateLetter(c)) {
      const char kind = static_cast<char>(c | 0x20);
      size_t j = i;
      while (j < pattern.size() && (pattern[j] | 0x20) == kind) ++j;
      tokens.push_back(Token{kind, static_cast<int>(j - i), {}});
      i = j;
    } else {
      literal(pattern.substr(i, 1));
      ++i;
    }
  }
  // "m"/"mm" right after an hour or right before seconds means minutes.
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind != 'm' || tokens[i].count > 2) continue;
    std::optional<char> prev, next;
    for (size_t j = i; j-- > 0;) {
      if (tokens[j].kind != 0) {
        prev = tokens[j].kind;
        break;
      }
    }
    for (size_t j = i + 1; j < tokens.size(); ++j) {
      if (tokens[j].kind != 0) {
        next = tokens[j].kind;
        break;
      }
    }
    if (prev == 'h' || next == 's') tokens[i].kind = 'n';
  }
  return tokens;
}

std::string Abbreviation(const std::string& name) {
  return utf8::Encode(utf8::Decode(name).substr(0, 3));
}

// Day of the year, 1-366.
int DayOfYear(Date d, const DateParts& p) {
  const Date first = DateSerial(p.year, 1, 1);
  return static_cast<int>(std::trunc(DateOnly(d).serial) - std::trunc(first.serial)) + 1;
}

// Week of the year counting from the week (Sunday first) that holds 1 January.
int WeekOfYear(Date d, const DateParts& p) {
  const Date first = DateSerial(p.year, 1, 1);
  const int offset = Weekday(first) - 1;
  return (DayOfYear(d, p) - 1 + offset) / 7 + 1;
}

void Emit(std::string& out, const Token& t, Date d, const DateParts& p, const Locale& loc) {
  const int n = t.count;
  switch (t.kind) {
    case 0:
      out += t.text;
      return;
    case 'd':
      if (n == 1) {
        out += std::to_string(p.day);
      } else if (n == 2) {
        out += fmt::format("{:02d}", p.day);
      } else if (n == 3) {
        out += Abbreviation(loc.day_names[static_cast<size_t>(Weekday(d) - 1)]);
      } else if (n == 4) {
        out += loc.day_names[static_cast<size_t>(Weekday(d) - 1)];
      } else if (n == 5) {
        out += FormatDate(d, "Short Date", loc);
      } else {
        out += FormatDate(d, "Long Date", loc);
      }
      return;
    case 'm':
      if (n == 1) {
        out += std::to_string(p.month);
      } else if (n == 2) {
        out += fmt::format("{:02d}", p.month);
      } else if (n == 3) {
        out += Abbreviation(loc.month_names[static_cast<size_t>(p.month - 1)]);
      } else {
        out += loc.month_names[static_cast<size_t>(p.month - 1)];
      }
      return;
    case 'y':
      if (n == 1) {
        out += std::to_string(DayOfYear(d, p));
      } else if (n == 2) {
        out += fmt::format("{:02d}", p.year % 100);
      } else {
        out += fmt::format("{:04d}", p.year);
      }
      return;
    case 'h':
      out += n == 1 ? std::to_string(p.hour) : fmt::format("{:02d}", p.hour);
      return;
    case 'n':
      out += n == 1 ? std::to_string(p.minute) : fmt::format("{:02d}", p.minute);
      return;
    case 's':
      out += n == 1 ? std::to_string(p.second) : fmt::format("{:02d}", p.second);
      return;
    case 'w':
      out += std::to_string(n == 1 ? Weekday(d) : WeekOfYear(d, p));
      return;
    case 'q':
      out += std::to_string((p.month - 1) / 3 + 1);
      return;
    default:
      return;
  }
}

// Named date styles of the Spanish locale.
std::optional<std::string_view> NamedDatePattern(std::string_view name) {
  struct Named {
    const char* name;
    const char* pattern;
  };
  static constexpr Named kNamed[] = {
      {"Long Date", "dddd, dd \"de\" mmmm \"de\" yyyy"},
      {"Medium Date", "dd-mmm-yy"},
      {"Short Date", "dd/mm/yyyy"},
      {"Long Time", "hh:nn:ss"},
      {"Medium Time", "hh:nn"},
      {"Short Time", "hh:nn"},
  };
  for (const auto& n : kNamed) {
    if (EqualsIgnoreCase(name, n.name)) return std::string_view(n.pattern);
  }
  return std::nullopt;
}

}  // namespace

bool IsDatePattern(std::string_view pattern) {
  if (EqualsIgnoreCase(pattern, "General Date") || NamedDatePattern(pattern)) return true;
  if (IsNamedNumberFormat(pattern)) return false;
  for (const Token& t : Tokenize(pattern)) {
    if (t.kind != 0) return true;
  }
  return false;
}

std::string FormatDate(Date d, std::string_view pattern, const Locale& loc) {
  if (pattern.empty() || EqualsIgnoreCase(pattern, "General Date")) {
    // Short date, with the time when it is not midnight; the time alone on day zero.
    const DateParts p = Split(d);
    if (std::trunc(d.serial) == 0) return FormatDate(d, "hh:nn:ss", loc);
    const bool has_time = p.hour != 0 || p.minute != 0 || p.second != 0;
    return FormatDate(d, has_time ? "dd/mm/yyyy hh:nn:ss" : "dd/mm/yyyy", loc);
  }
  if (const auto named = NamedDatePattern(pattern)) pattern = *named;
  const DateParts p = Split(d);
  std::string out;
  for (const Token& t : Tokenize(pattern)) Emit(out, t, d, p, loc);
  return out;
}

}  // namespace kivmovfrec::vb
