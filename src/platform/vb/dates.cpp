#include "platform/vb/dates.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>

#include "platform/vb/text.h"

namespace kivmovfrec::vb {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kEpoch{std::chrono::year{1899} / 12 / 30};
constexpr int64_t kSecondsPerDay = 86400;
// Day numbers of 0100-01-01 and 9999-12-31, the range VB accepts.
constexpr int64_t kMinDay = (sys_days{std::chrono::year{100} / 1 / 1} - kEpoch).count();
constexpr int64_t kMaxDay = (sys_days{std::chrono::year{9999} / 12 / 31} - kEpoch).count();

int64_t FloorDiv(int64_t a, int64_t b) {
  int64_t q = a / b;
  if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
  return q;
}

// A date as a whole day number (days since 1899-12-30) and the seconds into that day.
//
// A serial before the epoch keeps VB's layout: the whole part counts days backwards and the
// fraction is the time of that day counted forwards, so -1.25 is 29/12/1899 06:00 (not 18:00).
// The whole part is therefore the serial truncated toward zero, and the time its absolute
// fractional part.
struct DayTime {
  int64_t day = 0;
  int64_t seconds = 0;  // 0 .. 86399
};

DayTime ToDayTime(Date d) {
  const double s = d.serial;
  if (!std::isfinite(s) || s <= static_cast<double>(kMinDay) - 1 ||
      s >= static_cast<double>(kMaxDay) + 1) {
    throw VbError(6);
  }
  const double whole = std::trunc(s);
  DayTime dt{static_cast<int64_t>(whole), std::llround(std::fabs(s - whole) * kSecondsPerDay)};
  if (dt.seconds >= kSecondsPerDay) {
    // Rounded up to midnight: the next calendar day, unless that would leave the range.
    if (dt.day < kMaxDay) {
      ++dt.day;
      dt.seconds = 0;
    } else {
      dt.seconds = kSecondsPerDay - 1;
    }
  }
  return dt;
}

Date FromDayTime(int64_t day, int64_t seconds) {
  if (day < kMinDay || day > kMaxDay) throw VbError(5);
  const double time = static_cast<double>(seconds) / kSecondsPerDay;
  const double whole = static_cast<double>(day);
  return Date{day >= 0 ? whole + time : whole - time};
}

// Linear count of seconds since the epoch (negative before it).
int64_t LinearSeconds(const DayTime& dt) {
  return dt.day * kSecondsPerDay + dt.seconds;
}

Date FromLinearSeconds(int64_t total) {
  const int64_t day = FloorDiv(total, kSecondsPerDay);
  return FromDayTime(day, total - day * kSecondsPerDay);
}

year_month_day Civil(int64_t day) {
  return year_month_day{kEpoch + days{day}};
}

int64_t DayNumber(int64_t year, int64_t month, int64_t day) {
  const year_month_day ymd{std::chrono::year{static_cast<int>(year)},
                           std::chrono::month{static_cast<unsigned>(month)}, std::chrono::day{1}};
  return (sys_days{ymd} - kEpoch).count() + (day - 1);
}

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

Interval ParseInterval(std::string_view text) {
  struct Entry {
    const char* code;
    Interval interval;
  };
  static constexpr Entry kIntervals[] = {
      {"yyyy", Interval::Year},   {"q", Interval::Quarter}, {"m", Interval::Month},
      {"y", Interval::DayOfYear}, {"d", Interval::Day},     {"w", Interval::Weekday},
      {"ww", Interval::Week},     {"h", Interval::Hour},    {"n", Interval::Minute},
      {"s", Interval::Second},
  };
  for (const auto& e : kIntervals) {
    if (EqualsIgnoreCase(text, e.code)) return e.interval;
  }
  throw VbError(5);
}

// Moves a date by whole months, keeping the time of day and clamping the day to the end of a
// shorter month.
Date AddMonths(Date d, int64_t months) {
  const DayTime dt = ToDayTime(d);
  const year_month_day ymd = Civil(dt.day);
  const int64_t total = static_cast<int64_t>(static_cast<int>(ymd.year())) * 12 +
                        static_cast<unsigned>(ymd.month()) - 1 + months;
  const int64_t year = FloorDiv(total, 12);
  const int64_t month = total - year * 12 + 1;
  if (year < 100 || year > 9999) throw VbError(5);
  const int64_t day =
      std::min<int64_t>(static_cast<unsigned>(ymd.day()),
                        DaysInMonth(static_cast<int>(year), static_cast<int>(month)));
  return FromDayTime(DayNumber(year, month, day), dt.seconds);
}

}  // namespace

DateParts Split(Date d) {
  const DayTime dt = ToDayTime(d);
  const year_month_day ymd = Civil(dt.day);
  DateParts p;
  p.year = static_cast<int>(ymd.year());
  p.month = static_cast<int>(static_cast<unsigned>(ymd.month()));
  p.day = static_cast<int>(static_cast<unsigned>(ymd.day()));
  p.hour = static_cast<int>(dt.seconds / 3600);
  p.minute = static_cast<int>(dt.seconds / 60 % 60);
  p.second = static_cast<int>(dt.seconds % 60);
  return p;
}

Date MakeDate(const DateParts& p) {
  if (p.year < 100 || p.year > 9999 || p.month < 1 || p.month > 12 || p.day < 1 ||
      p.day > DaysInMonth(p.year, p.month) || p.hour < 0 || p.hour > 23 || p.minute < 0 ||
      p.minute > 59 || p.second < 0 || p.second > 59) {
    throw VbError(5);
  }
  return FromDayTime(DayNumber(p.year, p.month, p.day),
                     int64_t{p.hour} * 3600 + int64_t{p.minute} * 60 + p.second);
}

std::string FormatIsoDateTime(Date d) {
  const DateParts p = Split(d);
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", p.year, p.month, p.day, p.hour,
                     p.minute, p.second);
}

Date DateSerial(int year, int month, int day) {
  int64_t y = year;
  if (y >= 0 && y <= 29) {
    y += 2000;
  } else if (y >= 30 && y <= 99) {
    y += 1900;
  }
  const int64_t total = y * 12 + (int64_t{month} - 1);
  const int64_t norm_year = FloorDiv(total, 12);
  const int64_t norm_month = total - norm_year * 12 + 1;
  // Far outside the calendar: refuse before the civil conversion could overflow.
  if (norm_year < -20000 || norm_year > 20000) throw VbError(5);
  return FromDayTime(DayNumber(norm_year, norm_month, day), 0);
}

double TimeFraction(int hour, int minute, int second) {
  return (hour * 3600.0 + minute * 60.0 + second) / static_cast<double>(kSecondsPerDay);
}

int Year(Date d) {
  return Split(d).year;
}
int Month(Date d) {
  return Split(d).month;
}
int Day(Date d) {
  return Split(d).day;
}
int Hour(Date d) {
  return Split(d).hour;
}
int Minute(Date d) {
  return Split(d).minute;
}
int Second(Date d) {
  return Split(d).second;
}

int Weekday(Date d) {
  const std::chrono::weekday wd{kEpoch + days{ToDayTime(d).day}};
  return static_cast<int>(wd.c_encoding()) + 1;
}

Date DateOnly(Date d) {
  return FromDayTime(ToDayTime(d).day, 0);
}

int DaysInMonth(int year, int month) {
  if (month < 1 || month > 12) throw VbError(5);
  const std::chrono::year_month_day_last last{
      std::chrono::year{year},
      std::chrono::month_day_last{std::chrono::month{static_cast<unsigned>(month)}}};
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

Date DateAdd(std::string_view interval, double number, Date d) {
  const Interval iv = ParseInterval(interval);
  // Fractional steps are truncated toward zero; anything beyond the calendar is refused.
  if (!std::isfinite(number) || std::fabs(number) > 1e13) throw VbError(5);
  const auto n = static_cast<int64_t>(std::trunc(number));
  switch (iv) {
    case Interval::Year:
      if (std::abs(n) > 100000) throw VbError(5);
      return AddMonths(d, n * 12);
    case Interval::Quarter:
      if (std::abs(n) > 400000) throw VbError(5);
      return AddMonths(d, n * 3);
    case Interval::Month:
      if (std::abs(n) > 1200000) throw VbError(5);
      return AddMonths(d, n);
    case Interval::DayOfYear:
    case Interval::Day:
    case Interval::Weekday: {
      const DayTime dt = ToDayTime(d);
      return FromDayTime(dt.day + n, dt.seconds);
    }
    case Interval::Week: {
      const DayTime dt = ToDayTime(d);
      return FromDayTime(dt.day + n * 7, dt.seconds);
    }
    case Interval::Hour:
      return FromLinearSeconds(LinearSeconds(ToDayTime(d)) + n * 3600);
    case Interval::Minute:
      return FromLinearSeconds(LinearSeconds(ToDayTime(d)) + n * 60);
    case Interval::Second:
      return FromLinearSeconds(LinearSeconds(ToDayTime(d)) + n);
  }
  throw VbError(5);
}

int64_t DateDiff(std::string_view interval, Date d1, Date d2) {
  const Interval iv = ParseInterval(interval);
  const DayTime a = ToDayTime(d1);
  const DayTime b = ToDayTime(d2);
  const year_month_day ya = Civil(a.day);
  const year_month_day yb = Civil(b.day);
  const int64_t year_a = static_cast<int>(ya.year());
  const int64_t year_b = static_cast<int>(yb.year());
  const int64_t month_a = static_cast<unsigned>(ya.month());
  const int64_t month_b = static_cast<unsigned>(yb.month());
  switch (iv) {
    case Interval::Year:
      return year_b - year_a;
    case Interval::Quarter:
      return (year_b * 4 + (month_b - 1) / 3) - (year_a * 4 + (month_a - 1) / 3);
    case Interval::Month:
      return (year_b * 12 + month_b) - (year_a * 12 + month_a);
    case Interval::DayOfYear:
    case Interval::Day:
      return b.day - a.day;
    case Interval::Weekday:
      // Whole weeks between the two days.
      return (b.day - a.day) / 7;
    case Interval::Week: {
      // Sundays crossed: compare the Sundays that start each date's week.
      const auto week_start = [](int64_t day) {
        const std::chrono::weekday wd{kEpoch + days{day}};
        return day - static_cast<int64_t>(wd.c_encoding());
      };
      return (week_start(b.day) - week_start(a.day)) / 7;
    }
    case Interval::Hour:
      return FloorDiv(LinearSeconds(b), 3600) - FloorDiv(LinearSeconds(a), 3600);
    case Interval::Minute:
      return FloorDiv(LinearSeconds(b), 60) - FloorDiv(LinearSeconds(a), 60);
    case Interval::Second:
      return LinearSeconds(b) - LinearSeconds(a);
  }
  throw VbError(5);
}

}  // namespace kivmovfrec::vb
