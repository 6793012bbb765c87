#include "schedule/next_occurrence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include <fmt/format.h>

#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "schedule/date_calculator.h"

namespace kivmovfrec::schedule {
namespace {

using namespace std::chrono;

std::string Text(Date d) {
  return vb::FormatDate(d, "dd/mm/yyyy hh:nn");
}
std::string Text(year_month_day d) {
  return fmt::format("{:02}/{:02}/{} 09:30", unsigned(d.day()), unsigned(d.month()), int(d.year()));
}
Date At(year_month_day d, int hh = 0, int nn = 0) {
  return vb::MakeDate({int(d.year()), int(unsigned(d.month())), int(unsigned(d.day())), hh, nn, 0});
}
std::optional<Date> D(const char* text) {
  return *text ? vb::ParseDate(text) : std::nullopt;
}

// The n-th due date after `start`, worked out directly: days and weeks add days; months and
// years add months and take the start's day, or the month's last day when it is shorter.
year_month_day Oracle(int32_t code, year_month_day start, int n) {
  const int unit = code / 100000, step = code % 100000;
  if (unit <= 1) return year_month_day{sys_days{start} + days{(unit == 1 ? 7 : 1) * step * n}};
  const year_month ym = start.year() / start.month() + months{(unit == 3 ? 12 : 1) * step * n};
  return ym / std::min(start.day(), (ym / last).day());
}

TEST(NextOccurrence, WalksMonthEndsAndLeapYearsAsTheDirectCalendarDoes) {
  std::vector<int32_t> codes = {10, 100002, 200005, 300002};  // composed by a user
  for (const FrequencyEntry& e : FrequencyCatalogue()) {
    if (e.code > 0) codes.push_back(e.code);
  }
  const year_month_day starts[] = {2023y / 1 / 28, 2023y / 1 / 31,  2024y / 1 / 29,
                                   2024y / 1 / 30, 2024y / 1 / 31,  2024y / 2 / 29,
                                   2023y / 8 / 31, 2023y / 11 / 30, 2025y / 5 / 15};
  const year_month_day fin = 2030y / 12 / 31;
  DateCalculator calc;
  for (int32_t code : codes) {
    for (const year_month_day start : starts) {
      SCOPED_TRACE(fmt::format("{} from {}", code, Text(start)));
      Schedule s{FormatFrequencyCode(code), At(start, 9, 30), At(start, 9, 30), 1, 0, At(fin)};
      int n = 0;
      for (;; ++n) {
        ASSERT_EQ(Text(s.due), Text(Oracle(code, start, n))) << "occurrence " << n + 1;
        const AfterOccurrence r = NextOccurrence(s, calc);
        if (r.ended) break;
        ASSERT_EQ(r.occurrence, n + 2);
        s.due = r.due;
        s.occurrence = r.occurrence;
        s.count = r.count;
      }
      // The last occurrence is the last one on or before the last date.
      EXPECT_LE(Oracle(code, start, n), fin);
      EXPECT_GT(Oracle(code, start, n + 1), fin);
    }
  }
}

TEST(NextOccurrence, MonthlyAndYearlyKeepTheStartDay) {
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"200001", {"31/01/2024", "29/02/2024", "31/03/2024", "30/04/2024"}},
      {"200001", {"30/01/2024", "29/02/2024", "30/03/2024", "30/04/2024"}},
      {"200001", {"28/01/2023", "28/02/2023", "28/03/2023", "28/04/2023"}},
      {"300001", {"29/02/2024", "28/02/2025", "28/02/2026", "28/02/2027", "29/02/2028"}},
  };
  DateCalculator calc;
  for (const auto& [code, dates] : cases) {
    Schedule s{.code = code, .start = D(dates[0]), .due = *D(dates[0]), .no_end = true};
    for (size_t i = 1; i < dates.size(); ++i) {
      s.due = NextOccurrence(s, calc).due;
      EXPECT_EQ(Text(s.due), Text(*D(dates[i]))) << code << " from " << dates[0];
    }
  }
}

// A due date off the start's day (moved by hand) steps on its own day; so does one without a
// start. The start's time of day does not matter, the due date's is kept.
TEST(NextOccurrence, DueDateOffTheStartDayKeepsItsOwnDay) {
  const char* const cases[][3] = {
      {"31/01/2024", "15/03/2024", "15/04/2024"},
      {"31/01/2024", "29/02/2024", "31/03/2024"},
      {"15/01/2023", "28/02/2023", "28/03/2023"},
      {"", "31/01/2024", "29/02/2024"},
      {"", "29/02/2024", "29/03/2024"},
      {"31/01/2024 18:30", "30/04/2024 09:15", "31/05/2024 09:15"},
  };
  DateCalculator calc;
  for (const auto& [start, due, next] : cases) {
    const Schedule s{.code = "200001", .start = D(start), .due = *D(due), .no_end = true};
    EXPECT_EQ(Text(NextOccurrence(s, calc).due), Text(*D(next))) << start << " " << due;
  }
}

TEST(NextOccurrence, EndRules) {
  struct Case {
    const char* code;
    const char* start;
    const char* due;
    int32_t occurrence, count;
    const char* last;
    bool no_end, ended;
  } const cases[] = {
      {"000000", "10/01/2027", "10/01/2027", 1, 0, "", true, true},  // once only, whatever
      {"", "10/01/2027", "10/01/2027", 1, 0, "", false, true},       // no code: once only
      {"200001", "10/01/2027", "10/03/2027", 3, 2, "01/01/2027", true, false},
      // The last date counts by day.
      {"200001", "10/01/2027", "10/03/2027 18:30", 3, 0, "10/04/2027", false, false},
      {"200001", "10/01/2027", "10/03/2027 18:30", 3, 0, "09/04/2027 23:59", false, true},
      {"000007", "", "10/03/2027", 2, 3, "", false, false},
      {"000007", "", "10/03/2027", 3, 3, "", false, true},
      // Without a count, the occurrences from the start to the last date (six here) bound a
      // schedule whose due date was moved back.
      {"200001", "10/01/2027", "10/05/2027", 5, 0, "10/06/2027", false, false},
      {"200001", "10/01/2027", "10/05/2027", 6, 0, "10/06/2027", false, true},
  };
  DateCalculator calc;
  for (const Case& c : cases) {
    const Schedule s{c.code, D(c.start), *D(c.due), c.occurrence, c.count, D(c.last), c.no_end};
    const AfterOccurrence r = NextOccurrence(s, calc);
    EXPECT_EQ(r.ended, c.ended) << c.code << " " << c.due << " n" << c.occurrence;
    if (r.ended) {
      EXPECT_EQ(Text(r.due), Text(s.due));
      EXPECT_EQ(r.occurrence, c.occurrence);
    } else {
      EXPECT_EQ(r.occurrence, c.occurrence + 1);
    }
  }
  EXPECT_THROW(NextOccurrence({.code = "12x", .due = *D("10/01/2027")}, calc), VbError);
}

}  // namespace
}  // namespace kivmovfrec::schedule
