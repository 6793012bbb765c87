// The date calculator and the rule built on it for the next due date of a schedule.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include <fmt/format.h>

#include "platform/vb/convert.h"
#include "platform/vb/dates.h"
#include "platform/vb/format.h"
#include "schedule/date_calculator.h"
#include "schedule/next_occurrence.h"

namespace kivmovfrec::schedule {
namespace {

using namespace std::chrono;

std::string Text(Date d) {
  return vb::FormatDate(d, "dd/mm/yyyy hh:nn");
}
Date At(year_month_day d, int hh = 0, int nn = 0) {
  return vb::MakeDate({int(d.year()), int(unsigned(d.month())), int(unsigned(d.day())), hh, nn, 0});
}
std::optional<Date> D(const char* text) {
  return *text ? vb::ParseDate(text) : std::nullopt;
}

// Without a start date a month step anchors on the date it is given; the time of day stays.
TEST(ProximaFecha, AnchorsOnTheDateGivenAndKeepsTheTime) {
  DateCalculator calc;
  EXPECT_EQ(Text(calc.ProximaFecha("200001", *D("31/01/2024 10:30"))), "29/02/2024 10:30");
  EXPECT_EQ(Text(calc.ProximaFecha("200001", *D("29/02/2024"))), "29/03/2024 00:00");
  EXPECT_EQ(Text(calc.ProximaFecha("000000", *D("05/05/2024"))), "05/05/2024 00:00");  // once
  for (const char* code : {"", "-1", "abc", "400001", "12x"}) {
    EXPECT_THROW(calc.ProximaFecha(code, *D("01/01/2024")), VbError) << code;
  }
}

// CalcularFinal both ways: the last date of `n` occurrences, and the occurrences on or before a
// last date.
std::string UltimaDe(std::string_view code, const char* start, int32_t n) {
  Date last{};
  int32_t count = n;
  DateCalculator().CalcularFinal(code, *D(start), count, last);
  EXPECT_EQ(count, n);  // the count asked is kept
  return Text(last);
}
int32_t OcurrenciasHasta(std::string_view code, const char* start, const char* last) {
  int32_t n = 0;
  Date final_ = *D(last);
  DateCalculator().CalcularFinal(code, *D(start), n, final_);
  return n;
}

TEST(CalcularFinal, CountGivesLastDateAndBack) {
  EXPECT_EQ(UltimaDe("200001", "30/01/2024", 3), "30/03/2024 00:00");  // anchored on the 30th
  // The last date need not be an occurrence.
  EXPECT_EQ(OcurrenciasHasta("200001", "31/01/2024", "29/04/2024"), 3);
  EXPECT_EQ(OcurrenciasHasta("200001", "31/01/2024", "30/04/2024"), 4);
  // A start date at 18:30 counts as that day at midnight.
  EXPECT_EQ(UltimaDe("000001", "01/03/2024 18:30", 2), "02/03/2024 00:00");
  // A last date before the start holds no occurrence; one on the start date itself holds one.
  EXPECT_EQ(OcurrenciasHasta("000007", "01/03/2024", "01/02/2024"), 0);
  EXPECT_EQ(OcurrenciasHasta("000007", "01/03/2024", "01/03/2024 09:00"), 1);
  // Once only: one occurrence, on the start date, whatever the count asked.
  int32_t n = 5;
  Date last{};
  DateCalculator().CalcularFinal("000000", *D("01/03/2024 18:30"), n, last);
  EXPECT_EQ(std::pair(n, Text(last)), std::pair(1, std::string("01/03/2024 00:00")));
}

TEST(DescribirFrecuencia, SpanishSentences) {
  DateCalculator calc;
  const std::pair<const char*, const char*> cases[] = {
      {"000000", "Una sola vez"},      {"000014", "Cada 2 semanas"}, {"000015", "Cada 15 días"},
      {"100001", "Todas las semanas"}, {"200002", "Cada 2 meses"},   {"xyz", ""}};
  for (const auto& [code, text] : cases) EXPECT_EQ(calc.DescribirFrecuencia(code), text) << code;
}

struct ScriptedEditor : IFrequencyEditor {
  std::optional<Frequency> answer;
  Frequency seen{};
  std::optional<Frequency> Edit(const Frequency& f) override {
    seen = f;
    return answer;
  }
};

TEST(EditarFrecuencia, ReturnsCodeThenDescriptionOrEmptyOnCancel) {
  auto editor = std::make_shared<ScriptedEditor>();
  DateCalculator calc(editor);
  editor->answer = Frequency{FrequencyUnit::Months, 2};
  const std::string texto = calc.EditarFrecuencia();
  EXPECT_EQ(texto, "200002 Cada 2 meses");
  EXPECT_EQ(ParseFrequency(texto), editor->answer);  // the code is read back from the text
  // The next edit starts from the last choice.
  editor->answer.reset();
  EXPECT_EQ(calc.EditarFrecuencia(), "");
  EXPECT_EQ(editor->seen, (Frequency{FrequencyUnit::Months, 2}));
  EXPECT_EQ(DateCalculator().EditarFrecuencia(), "");
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
      SCOPED_TRACE(fmt::format("{} from {}", code, Text(At(start))));
      Schedule s{FormatFrequencyCode(code), At(start, 9, 30), At(start, 9, 30), 1, 0, At(fin)};
      int n = 0;
      for (;; ++n) {
        ASSERT_EQ(Text(s.due), Text(At(Oracle(code, start, n), 9, 30))) << "occurrence " << n + 1;
        const AfterOccurrence r = NextOccurrence(s, calc);
        if (r.ended) break;
        s.due = r.due;
        s.occurrence = r.occurrence;
        s.count = r.count;
      }
      // The last occurrence is the last one on or before the last date.
      EXPECT_TRUE(Oracle(code, start, n) <= fin && Oracle(code, start, n + 1) > fin);
    }
  }
}

// Month steps keep the start's day while the due date is on it (the walk above); a due date moved
// off it, or one without a start, steps on its own day. The due date's time of day is kept, the
// start's is not.
TEST(NextOccurrence, KeepsTheStartDayWhileTheDueDateIsOnIt) {
  const char* const cases[][4] = {
      {"200001", "31/01/2024", "15/03/2024", "15/04/2024"},
      {"200001", "15/01/2023", "28/02/2023", "28/03/2023"},
      {"200001", "", "31/01/2024", "29/02/2024"},
      {"200001", "", "29/02/2024", "29/03/2024"},
      {"200001", "31/01/2024 18:30", "30/04/2024 09:15", "31/05/2024 09:15"},
  };
  DateCalculator calc;
  for (const auto& [code, start, due, next] : cases) {
    const Schedule s{.code = code, .start = D(start), .due = *D(due), .no_end = true};
    EXPECT_EQ(Text(NextOccurrence(s, calc).due), Text(*D(next)))
        << code << " " << start << " " << due;
  }
}

TEST(NextOccurrence, EndRules) {
  struct Case {
    const char *code, *start, *due;
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
    SCOPED_TRACE(fmt::format("{} {} n{}", c.code, c.due, c.occurrence));
    EXPECT_EQ(r.ended, c.ended);
    EXPECT_EQ(r.occurrence, c.occurrence + (c.ended ? 0 : 1));
    EXPECT_TRUE(!c.ended || r.due == s.due);  // when ended, left on the current occurrence
  }
}

}  // namespace
}  // namespace kivmovfrec::schedule
