// ParseDate: day-first dates as people type them and ISO dates as databases return them;
// ParseIsoDateTime: the exact ISO form a database stores.
#include <optional>
#include <string_view>

#include "platform/vb/convert.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::vb {

namespace {

// A cursor over the text being read.
class Reader {
 public:
  explicit Reader(std::string_view s) : s_(s) {}

  bool AtEnd() const { return pos_ == s_.size(); }
  char Peek() const { return AtEnd() ? '\0' : s_[pos_]; }

  // Reads between min and max digits; nothing when fewer than min are there.
  std::optional<int> Digits(size_t min, size_t max) {
    size_t n = 0;
    int value = 0;
    while (n < max && pos_ < s_.size() && s_[pos_] >= '0' && s_[pos_] <= '9') {
      value = value * 10 + (s_[pos_] - '0');
      ++pos_;
      ++n;
    }
    if (n < min) return std::nullopt;
    return value;
  }

  bool Take(char c) {
    if (Peek() != c) return false;
    ++pos_;
    return true;
  }

  size_t Blanks() {
    size_t n = 0;
    while (Peek() == ' ' || Peek() == '\t') {
      ++pos_;
      ++n;
    }
    return n;
  }

 private:
  std::string_view s_;
  size_t pos_ = 0;
};

bool ValidDay(const DateParts& p) {
  return p.year >= 100 && p.year <= 9999 && p.month >= 1 && p.month <= 12 && p.day >= 1 &&
         p.day <= DaysInMonth(p.year, p.month);
}

// One or more digits after a decimal point, added to `fraction` as tenths, hundredths...
bool ReadFraction(Reader& r, double& fraction) {
  double scale = 0.1;
  bool any = false;
  for (char c = r.Peek(); c >= '0' && c <= '9'; c = r.Peek()) {
    fraction += (c - '0') * scale;
    scale /= 10;
    r.Take(c);
    any = true;
  }
  return any;
}

// "h:nn" or "h:nn:ss" (hours with `hour_digits` to 2 digits), optionally with a fraction of a
// second: added to `*fraction` when given, else dropped (at most nine digits then).
bool ReadTime(Reader& r, DateParts& p, size_t hour_digits = 1, double* fraction = nullptr) {
  const auto h = r.Digits(hour_digits, 2);
  if (!h || !r.Take(':')) return false;
  const auto n = r.Digits(2, 2);
  if (!n) return false;
  int s = 0;
  if (r.Take(':')) {
    const auto sec = r.Digits(2, 2);
    if (!sec) return false;
    s = *sec;
    if (r.Take('.') && !(fraction ? ReadFraction(r, *fraction) : r.Digits(1, 9).has_value())) {
      return false;
    }
  }
  if (*h > 23 || *n > 59 || s > 59) return false;
  p.hour = *h;
  p.minute = *n;
  p.second = s;
  return true;
}

// After the date: the end, or blanks (or 'T' in ISO form) and a time, then the end.
bool ReadOptionalTime(Reader& r, DateParts& p, bool iso) {
  const size_t blanks = r.Blanks();
  if (r.AtEnd()) return true;
  if (blanks == 0 && !(iso && r.Take('T'))) return false;
  if (!ReadTime(r, p)) return false;
  r.Blanks();
  return r.AtEnd();
}

std::optional<Date> Finish(const DateParts& p) {
  if (!ValidDay(p)) return std::nullopt;
  return MakeDate(p);
}

}  // namespace

std::optional<Date> ParseDate(std::string_view text) {
  Reader start(text);
  start.Blanks();

  // dd/mm/yyyy, d/m/yyyy
  {
    Reader r = start;
    DateParts p;
    const auto d = r.Digits(1, 2);
    if (d && r.Take('/')) {
      const auto m = r.Digits(1, 2);
      if (!m || !r.Take('/')) return std::nullopt;
      const auto y = r.Digits(4, 4);
      if (!y) return std::nullopt;
      p.day = *d;
      p.month = *m;
      p.year = *y;
      if (!ReadOptionalTime(r, p, false)) return std::nullopt;
      return Finish(p);
    }
  }
  // yyyy-mm-dd, with " hh:nn[:ss]" or "Thh:nn:ss"
  {
    Reader r = start;
    DateParts p;
    const auto y = r.Digits(4, 4);
    if (y && r.Take('-')) {
      const auto m = r.Digits(1, 2);
      if (!m || !r.Take('-')) return std::nullopt;
      const auto d = r.Digits(1, 2);
      if (!d) return std::nullopt;
      p.year = *y;
      p.month = *m;
      p.day = *d;
      if (!ReadOptionalTime(r, p, true)) return std::nullopt;
      return Finish(p);
    }
  }
  // A time alone is that time on day zero (30/12/1899), as VB reads it.
  {
    Reader r = start;
    DateParts p;
    if (ReadTime(r, p)) {
      r.Blanks();
      if (r.AtEnd()) return MakeDate(p);
    }
  }
  return std::nullopt;
}

std::optional<Date> ParseIsoDateTime(std::string_view text) {
  Reader r(text);
  DateParts p;
  const auto y = r.Digits(4, 4);
  if (!y || !r.Take('-')) return std::nullopt;
  const auto m = r.Digits(2, 2);
  if (!m || !r.Take('-')) return std::nullopt;
  const auto d = r.Digits(2, 2);
  if (!d) return std::nullopt;
  p.year = *y;
  p.month = *m;
  p.day = *d;
  double fraction = 0;
  if (!r.AtEnd() &&
      (!(r.Take(' ') || r.Take('T')) || !ReadTime(r, p, 2, &fraction) || !r.AtEnd())) {
    return std::nullopt;
  }
  if (!ValidDay(p)) return std::nullopt;
  // The day, then the time counted forward from its midnight (also before 1899-12-30).
  const double day = MakeDate({p.year, p.month, p.day, 0, 0, 0}).serial;
  const double time = (p.hour * 3600 + p.minute * 60 + (p.second + fraction)) / 86400;
  return Date{day >= 0 ? day + time : day - time};
}

}  // namespace kivmovfrec::vb
