#include "platform/db/iso_date.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>

#include "kivmovfrec/db.h"

namespace kivmovfrec::db {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kEpoch = std::chrono::year{1899} / 12 / 30;
constexpr int64_t kSecondsPerDay = 86400;

// Reads exactly `width` digits at `pos`.
std::optional<int> Digits(std::string_view s, size_t pos, size_t width) {
  if (pos + width > s.size()) return std::nullopt;
  int v = 0;
  for (size_t i = pos; i < pos + width; ++i) {
    if (s[i] < '0' || s[i] > '9') return std::nullopt;
    v = v * 10 + (s[i] - '0');
  }
  return v;
}

}  // namespace

std::string FormatIsoDateTime(Date d) {
  // A VB date keeps the day in the whole part and the time as the size of the fraction, also
  // before 1899-12-30 (-1.25 is 1899-12-29 06:00).
  if (!std::isfinite(d.serial) || std::fabs(d.serial) > 3e6) {
    throw DbError(fmt::format("Fecha fuera del intervalo admitido: {}", d.serial));
  }
  double whole = std::trunc(d.serial);
  int64_t secs = std::llround(std::fabs(d.serial - whole) * kSecondsPerDay);
  sys_days day = kEpoch + days(static_cast<int64_t>(whole));
  if (secs >= kSecondsPerDay) {
    day += days(1);
    secs -= kSecondsPerDay;
  }
  year_month_day ymd(day);
  int y = static_cast<int>(ymd.year());
  if (y < 100 || y > 9999) {
    throw DbError(fmt::format("Fecha fuera del intervalo admitido (años 100 a 9999): {}", y));
  }
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", y, static_cast<unsigned>(ymd.month()),
                     static_cast<unsigned>(ymd.day()), secs / 3600, secs / 60 % 60, secs % 60);
}

std::optional<Date> ParseIsoDateTime(std::string_view s) {
  auto y = Digits(s, 0, 4);
  auto m = Digits(s, 5, 2);
  auto dd = Digits(s, 8, 2);
  if (!y || !m || !dd || s[4] != '-' || s[7] != '-') return std::nullopt;
  year_month_day ymd{std::chrono::year{*y}, std::chrono::month{static_cast<unsigned>(*m)},
                     std::chrono::day{static_cast<unsigned>(*dd)}};
  if (!ymd.ok() || *y < 100) return std::nullopt;
  int h = 0, n = 0;
  double sec = 0;
  if (s.size() > 10) {
    if (s[10] != ' ' && s[10] != 'T') return std::nullopt;
    auto hh = Digits(s, 11, 2);
    auto nn = Digits(s, 14, 2);
    if (!hh || !nn || s.size() < 16 || s[13] != ':') return std::nullopt;
    h = *hh;
    n = *nn;
    size_t pos = 16;
    if (s.size() > pos) {
      auto ss = Digits(s, pos + 1, 2);
      if (s[pos] != ':' || !ss) return std::nullopt;
      sec = *ss;
      pos += 3;
      if (s.size() > pos) {
        if (s[pos] != '.' || s.size() == pos + 1) return std::nullopt;
        double scale = 0.1;
        for (size_t i = pos + 1; i < s.size(); ++i) {
          if (s[i] < '0' || s[i] > '9') return std::nullopt;
          sec += (s[i] - '0') * scale;
          scale /= 10;
        }
      }
    }
    if (h > 23 || n > 59 || sec >= 60) return std::nullopt;
  }
  int64_t day = (sys_days(ymd) - kEpoch).count();
  double fraction = (h * 3600 + n * 60 + sec) / kSecondsPerDay;
  return Date{day >= 0 ? static_cast<double>(day) + fraction : static_cast<double>(day) - fraction};
}

}  // namespace kivmovfrec::db
