#include "platform/script/lexer.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "platform/script/names.h"

namespace kivmovfrec::script {

namespace {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool IsAlpha(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool IsWordChar(char c) {
  return IsAlpha(c) || IsDigit(c) || c == '_';
}
constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\f' || c == '\v';
}
constexpr bool IsLineBreak(char c) {
  return c == '\n' || c == '\r';
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Days since 1899-12-30 of a proleptic Gregorian date (Howard Hinnant's days_from_civil, shifted
// from the Unix epoch).
double SerialOf(int y, int m, int d) {
  y -= m <= 2;
  const int era = (y >= 0 ? y : y - 399) / 400;
  const int yoe = y - era * 400;
  const int doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  const long days_from_unix = static_cast<long>(era) * 146097 + doe - 719468;
  return static_cast<double>(days_from_unix + 25569);
}

bool LeapYear(int y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

int DaysIn(int y, int m) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && LeapYear(y) ? 29 : kDays[m - 1];
}

// Reads the text of a #...# literal: a date (m/d/yyyy, as VBScript reads literals whatever the
// locale, or ISO yyyy-mm-dd), a time (h:nn[:ss] [AM|PM]) or both. Returns false when invalid.
bool ParseDateLiteral(std::string_view s, double* serial) {
  size_t i = 0;
  auto skip = [&] {
    while (i < s.size() && IsBlank(s[i])) ++i;
  };
  auto number = [&](int* value, int* digits) {
    *value = 0;
    *digits = 0;
    while (i < s.size() && IsDigit(s[i]) && *digits < 5) {
      *value = *value * 10 + (s[i] - '0');
      ++*digits;
      ++i;
    }
    return *digits > 0;
  };
  skip();
  int a = 0, da = 0;
  if (!number(&a, &da)) return false;
  double result = 0;
  int first = a, first_digits = da;
  if (i < s.size() && (s[i] == '/' || s[i] == '-')) {
    const char sep = s[i++];
    int b = 0, db = 0, c = 0, dc = 0;
    if (!number(&b, &db) || i >= s.size() || s[i] != sep) return false;
    ++i;
    if (!number(&c, &dc)) return false;
    int y, m, d;
    if (da == 4) {
      y = a, m = b, d = c;
    } else {
      m = a, d = b, y = c;
      if (m > 12 && d <= 12) std::swap(m, d);
      if (dc <= 2) y += y < 30 ? 2000 : 1900;
    }
    if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1 || d > DaysIn(y, m)) return false;
    result = SerialOf(y, m, d);
    skip();
    if (i == s.size()) {
      *serial = result;
      return true;
    }
    if (!number(&first, &first_digits)) return false;
  }
  // Time of day: first is the hour.
  if (i >= s.size() || s[i] != ':') return false;
  ++i;
  int minute = 0, dm = 0, second = 0, ds = 0;
  if (!number(&minute, &dm)) return false;
  if (i < s.size() && s[i] == ':') {
    ++i;
    if (!number(&second, &ds)) return false;
  }
  skip();
  int hour = first;
  if (i + 2 <= s.size()) {
    const char p = static_cast<char>(s[i] | 0x20);
    const char q = static_cast<char>(s[i + 1] | 0x20);
    if ((p == 'a' || p == 'p') && q == 'm') {
      if (hour < 1 || hour > 12) return false;
      hour = hour % 12 + (p == 'p' ? 12 : 0);
      i += 2;
      skip();
    }
  }
  if (i != s.size()) return false;
  if (hour > 23 || minute > 59 || second > 59) return false;
  const double fraction = (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
  *serial = result + fraction;
  return true;
}

}  // namespace

Token Lexer::Fail(int number, uint32_t pos) {
  Token t;
  t.kind = Tok::Error;
  t.pos = pos;
  t.ival = number;
  return t;
}

void Lexer::SkipBlanks() {
  for (;;) {
    while (i_ < src_.size() && IsBlank(src_[i_])) ++i_;
    // Line continuation: '_' then blanks and a line break.
    if (i_ < src_.size() && src_[i_] == '_') {
      uint32_t j = i_ + 1;
      while (j < src_.size() && IsBlank(src_[j])) ++j;
      if (j < src_.size() && IsLineBreak(src_[j])) {
        if (src_[j] == '\r' && j + 1 < src_.size() && src_[j + 1] == '\n') ++j;
        i_ = j + 1;
        continue;
      }
    }
    return;
  }
}

Token Lexer::Next() {
  SkipBlanks();
  const uint32_t start = i_;
  Token t;
  t.pos = start;
  if (i_ >= src_.size()) {
    t.kind = Tok::End;
    return t;
  }
  const char c = src_[i_];
  if (IsDigit(c) || (c == '.' && i_ + 1 < src_.size() && IsDigit(src_[i_ + 1]))) {
    return Number(start);
  }
  if (IsAlpha(c)) return Word(start);
  auto single = [&](Tok k) {
    ++i_;
    t.kind = k;
    return t;
  };
  switch (c) {
    case '\n':
    case '\r':
    case ':':
    case '\'':
      t.kind = Tok::End;  // not consumed: the compiler checks what follows
      return t;
    case '"':
      return StringLiteral(start);
    case '#':
      return DateLiteral(start);
    case '[': {
      uint32_t j = i_ + 1;
      while (j < src_.size() && src_[j] != ']' && !IsLineBreak(src_[j])) ++j;
      if (j >= src_.size() || src_[j] != ']') return Fail(1032, start);
      t.kind = Tok::Name;
      t.start = start + 1;
      t.len = j - start - 1;
      i_ = j + 1;
      return t;
    }
    case '&':
      // &H / &O literal when a digit of the base follows; otherwise the concatenation operator.
      if (i_ + 2 < src_.size()) {
        const char r = static_cast<char>(src_[i_ + 1] | 0x20);
        if (r == 'h' && HexValue(src_[i_ + 2]) >= 0) return Radix(start, 16);
        if (r == 'o' && src_[i_ + 2] >= '0' && src_[i_ + 2] <= '7') return Radix(start, 8);
      }
      return single(Tok::Amp);
    case '(':
      return single(Tok::LParen);
    case ')':
      return single(Tok::RParen);
    case ',':
      return single(Tok::Comma);
    case '.':
      return single(Tok::Dot);
    case '+':
      return single(Tok::Plus);
    case '-':
      return single(Tok::Minus);
    case '*':
      return single(Tok::Star);
    case '/':
      return single(Tok::Slash);
    case '\\':
      return single(Tok::Backslash);
    case '^':
      return single(Tok::Caret);
    case '=':
      // "=<" and "=>" are accepted spellings of "<=" and ">=".
      if (i_ + 1 < src_.size() && src_[i_ + 1] == '<') return ++i_, single(Tok::Le);
      if (i_ + 1 < src_.size() && src_[i_ + 1] == '>') return ++i_, single(Tok::Ge);
      return single(Tok::Eq);
    case '<':
      if (i_ + 1 < src_.size() && src_[i_ + 1] == '>') return ++i_, single(Tok::Ne);
      if (i_ + 1 < src_.size() && src_[i_ + 1] == '=') return ++i_, single(Tok::Le);
      return single(Tok::Lt);
    case '>':
      if (i_ + 1 < src_.size() && src_[i_ + 1] == '<') return ++i_, single(Tok::Ne);
      if (i_ + 1 < src_.size() && src_[i_ + 1] == '=') return ++i_, single(Tok::Ge);
      return single(Tok::Gt);
    default:
      return Fail(1032, start);
  }
}

Token Lexer::NextMemberName() {
  const uint32_t start = i_;
  if (i_ < src_.size() && IsAlpha(src_[i_])) {
    while (i_ < src_.size() && IsWordChar(src_[i_])) ++i_;
    Token t;
    t.kind = Tok::Name;
    t.pos = t.start = start;
    t.len = i_ - start;
    return t;
  }
  if (i_ < src_.size() && src_[i_] == '[') return Next();
  return Fail(1002, start);
}

void Lexer::SkipLeadingBreaks() {
  uint32_t where = 0;
  if (OnlyBlanksFrom(i_, &where)) {
    i_ = static_cast<uint32_t>(src_.size());
  } else {
    i_ = where;
  }
}

bool Lexer::OnlyBlanksFrom(uint32_t pos, uint32_t* where) const {
  uint32_t j = pos;
  while (j < src_.size()) {
    const char c = src_[j];
    if (IsBlank(c) || IsLineBreak(c) || c == ':') {
      ++j;
    } else if (c == '\'') {
      while (j < src_.size() && !IsLineBreak(src_[j])) ++j;
    } else {
      *where = j;
      return false;
    }
  }
  return true;
}

Token Lexer::Number(uint32_t start) {
  uint32_t j = start;
  bool is_float = false;
  while (j < src_.size() && IsDigit(src_[j])) ++j;
  if (j < src_.size() && src_[j] == '.') {
    is_float = true;
    ++j;
    while (j < src_.size() && IsDigit(src_[j])) ++j;
  }
  bool negative_exponent = false;
  if (j < src_.size() && (src_[j] == 'e' || src_[j] == 'E')) {
    is_float = true;
    ++j;
    if (j < src_.size() && (src_[j] == '+' || src_[j] == '-')) negative_exponent = src_[j++] == '-';
    if (j >= src_.size() || !IsDigit(src_[j])) return Fail(1031, start);
    while (j < src_.size() && IsDigit(src_[j])) ++j;
  }
  i_ = j;
  Token t;
  t.pos = start;
  const char* first = src_.data() + start;
  const char* last = src_.data() + j;
  if (!is_float) {
    uint64_t v = 0;
    bool big = false;
    for (const char* p = first; p != last; ++p) {
      v = v * 10 + static_cast<uint64_t>(*p - '0');
      if (v > 0xFFFFFFFFull) {
        big = true;
        break;
      }
    }
    if (!big && v <= 32767) {
      t.kind = Tok::Int16;
      t.ival = static_cast<int32_t>(v);
      return t;
    }
    if (!big && v <= 2147483647ull) {
      t.kind = Tok::Long;
      t.ival = static_cast<int32_t>(v);
      return t;
    }
  }
  double d = 0;
  auto [ptr, ec] = std::from_chars(first, last, d);
  if (ec == std::errc::result_out_of_range) {
    if (!negative_exponent) return Fail(1031, start);
    d = 0;  // underflow: a vanishing exponent reads as zero
  } else if (ec != std::errc() || ptr != last || !std::isfinite(d)) {
    return Fail(1031, start);
  }
  t.kind = Tok::Double;
  t.num = d;
  return t;
}

Token Lexer::Radix(uint32_t start, int base) {
  uint32_t j = start + 2;
  uint64_t v = 0;
  int digits = 0;
  for (; j < src_.size(); ++j) {
    const int dv =
        base == 16 ? HexValue(src_[j]) : (src_[j] >= '0' && src_[j] <= '7' ? src_[j] - '0' : -1);
    if (dv < 0) break;
    v = v * static_cast<uint64_t>(base) + static_cast<uint64_t>(dv);
    if (++digits > 11) break;
  }
  if (v > 0xFFFFFFFFull) return Fail(1031, start);
  bool force_long = false;
  if (j < src_.size() && src_[j] == '&') {
    force_long = true;
    ++j;
  }
  i_ = j;
  Token t;
  t.pos = start;
  if (!force_long && v <= 0xFFFF) {
    t.kind = Tok::Int16;
    t.ival = static_cast<int16_t>(static_cast<uint16_t>(v));
  } else {
    t.kind = Tok::Long;
    t.ival = static_cast<int32_t>(static_cast<uint32_t>(v));
  }
  return t;
}

Token Lexer::StringLiteral(uint32_t start) {
  uint32_t j = start + 1;
  bool escaped = false;
  for (;;) {
    if (j >= src_.size() || IsLineBreak(src_[j])) return Fail(1033, start);
    if (src_[j] == '"') {
      if (j + 1 < src_.size() && src_[j + 1] == '"') {
        escaped = true;
        j += 2;
        continue;
      }
      break;
    }
    ++j;
  }
  Token t;
  t.kind = Tok::String;
  t.pos = start;
  t.start = start + 1;
  t.len = j - start - 1;
  t.escaped = escaped;
  i_ = j + 1;
  return t;
}

Token Lexer::DateLiteral(uint32_t start) {
  uint32_t j = start + 1;
  while (j < src_.size() && src_[j] != '#' && !IsLineBreak(src_[j])) ++j;
  if (j >= src_.size() || src_[j] != '#') return Fail(1002, start);
  double serial = 0;
  if (!ParseDateLiteral(src_.substr(start + 1, j - start - 1), &serial)) {
    return Fail(1002, start);
  }
  Token t;
  t.kind = Tok::Date;
  t.pos = start;
  t.num = serial;
  i_ = j + 1;
  return t;
}

Token Lexer::Word(uint32_t start) {
  uint32_t j = start;
  while (j < src_.size() && IsWordChar(src_[j])) ++j;
  i_ = j;
  Token t;
  t.pos = t.start = start;
  t.len = j - start;
  t.kind = KeywordToken(src_.substr(start, j - start));
  return t;
}

}  // namespace kivmovfrec::script
