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

// Every readable code is described; the refused ones ("" here) cannot be stepped either.
TEST(DescribirFrecuencia, SpanishSentencesAndRefusedCodes) {
  DateCalculator calc;
  const std::pair<const char*, const char*> cases[] = {
      {"000000", "Una sola vez"},
      {"000014", "Cada 2 semanas"},
      {"000015", "Cada 15 días"},
      {"100001", "Todas las semanas"},
      {"200002", "Cada 2 meses"},
      {"421001", "El segundo lunes de cada mes"},
      {"495002", "El último viernes de cada 2 meses"},
      {"437012", "El tercer domingo de cada 12 meses"},
      {"500003", "El último día hábil de cada 3 meses"},
      {"620001", "Todos los meses, o el día hábil siguiente si cae en sábado o domingo"},
      {"700015", "Cada 15 días, o el día hábil anterior si cae en sábado o domingo"},
  };
  for (const auto& [code, text] : cases) EXPECT_EQ(calc.DescribirFrecuencia(code), text) << code;
  // No fifth Monday in most months; a weekday 0 or 8; no step; a moved rule; unit 8.
  for (const char* code : {"451001", "402001", "418001", "410001", "412000", "500000", "600000",
                           "640001", "800001", "xyz"}) {
    EXPECT_EQ(calc.DescribirFrecuencia(code), "") << code;
    EXPECT_THROW(calc.ProximaFecha(code, *D("01/01/2024")), VbError) << code;
  }
  // The record's TipoRecurrencia of a rule counts months; a moved unit keeps its own.
  EXPECT_EQ(ParseFrequency("495002")->recordUnit(), 2);
  EXPECT_EQ(ParseFrequency("730001")->recordUnit(), 3);
  EXPECT_EQ(ParseFrequency("495002")->code(), 495002);
  EXPECT_EQ(ParseFrequency("610002")->code(), 610002);
}

// Due dates from a start, through the calculator a schedule steps with: the first date on or
// after the start, then ProximaFechaAnclada. The start's time of day stays on every date.
TEST(ProximaFechaAnclada, RulesAndWeekendMovesFromTheirStart) {
  const struct {
    const char *code, *start;
    std::vector<const char*> due;
  } cases[] = {
      {"421001", "01/01/2024 18:30", {"08/01/2024", "12/02/2024", "11/03/2024"}},
      {"500001", "01/08/2026 18:30", {"31/08/2026", "30/09/2026", "30/10/2026"}},
      {"500001", "01/05/2026 18:30", {"29/05/2026", "30/06/2026"}},
      // Monthly on the 31st: moved dates do not pull the series off the 31st.
      {"620001", "31/08/2025 18:30", {"01/09/2025", "30/09/2025", "31/10/2025", "01/12/2025"}},
      {"720001", "31/05/2026 18:30", {"29/05/2026", "30/06/2026", "31/07/2026"}},
      // Daily moved: Saturday and Sunday fall due with Monday, or with Friday, once.
      {"600001", "09/01/2026 18:30", {"09/01/2026", "12/01/2026", "13/01/2026"}},
      {"700001", "08/01/2026 18:30", {"08/01/2026", "09/01/2026", "12/01/2026"}},
  };
  DateCalculator calc;
  for (const auto& c : cases) {
    const Date start = *D(c.start);
    Date d = FirstDueDate(*ParseFrequency(c.code), start);
    for (const char* due : c.due) {
      EXPECT_EQ(Text(d), std::string(due) + " 18:30") << c.code << " from " << c.start;
      d = calc.ProximaFechaAnclada(c.code, vb::DateOnly(start), d);
    }
  }
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

// All due dates up to `fin`, from chrono's calendar: the plain units by Oracle above; a rule's
// date in each month from the start's, the first on or after the start, then every k months; a
// moved code moves each date of its plain code off the weekend and drops repeats.
std::vector<year_month_day> Oracle(int32_t code, year_month_day start, year_month_day fin) {
  const int unit = code / 100000;
  std::vector<year_month_day> out;
  if (unit <= 3 || unit >= 6) {
    const int32_t plain = unit <= 3 ? code : code % 100000 / 10000 * 100000 + code % 10000;
    for (int n = 0; sys_days{Oracle(plain, start, n)} <= sys_days{fin} + days{2}; ++n) {
      sys_days d{Oracle(plain, start, n)};
      if (unit >= 6 && weekday{d} == Saturday) d += days{unit == 6 ? 2 : -1};
      if (unit >= 6 && weekday{d} == Sunday) d += days{unit == 6 ? 1 : -2};
      if (d <= sys_days{fin} && (out.empty() || sys_days{out.back()} != d)) out.push_back(d);
    }
    return out;
  }
  auto rule = [&](year_month ym) {
    if (unit == 5) {
      sys_days d{ym / last};
      while (weekday{d} == Saturday || weekday{d} == Sunday) d -= days{1};
      return year_month_day{d};
    }
    const weekday wd{unsigned(code / 1000 % 10)};
    const unsigned ordinal = code / 10000 % 10;
    return ordinal == 9 ? year_month_day{ym / wd[last]} : year_month_day{ym / wd[ordinal]};
  };
  year_month ym = start.year() / start.month();
  if (rule(ym) < start) ym += months{1};
  for (const months k{unit == 4 ? code % 1000 : code % 100000}; rule(ym) <= fin; ym += k) {
    out.push_back(rule(ym));
  }
  return out;
}

// A schedule walked occurrence by occurrence to its last date gives the calendar's dates over
// month ends, leap years and weekends, and CalcularFinal agrees with the walk both ways.
TEST(NextOccurrence, WalksAsTheDirectCalendar) {
  std::vector<int32_t> codes = {10,     100002, 200005, 300002, 421001, 495002, 417003,
                                443001, 500001, 500002, 620001, 720001, 600001, 700001,
                                600007, 610002, 630001, 730001, 600010, 720003};
  for (const FrequencyEntry& e : FrequencyCatalogue()) {
    if (e.code > 0) codes.push_back(e.code);
  }
  const year_month_day starts[] = {2023y / 1 / 28,  2023y / 1 / 31, 2024y / 1 / 29, 2024y / 1 / 30,
                                   2024y / 1 / 31,  2024y / 2 / 29, 2023y / 8 / 31, 2023y / 11 / 30,
                                   2025y / 5 / 15,  2024y / 1 / 1,  2025y / 8 / 31, 2026y / 5 / 31,
                                   2023y / 12 / 30, 2026y / 1 / 16};
  const year_month_day fin = 2028y / 12 / 31;
  DateCalculator calc;
  for (int32_t code : codes) {
    for (const year_month_day start : starts) {
      const std::string codigo = FormatFrequencyCode(code);
      SCOPED_TRACE(fmt::format("{} from {}", code, Text(At(start))));
      const std::vector<year_month_day> expected = Oracle(code, start, fin);
      const Date first = FirstDueDate(*ParseFrequency(codigo), At(start, 9, 30));
      Schedule s{codigo, At(start, 9, 30), first, 1, 0, At(fin)};
      for (size_t n = 0;; ++n) {
        ASSERT_LT(n, expected.size());
        ASSERT_EQ(Text(s.due), Text(At(expected[n], 9, 30))) << "occurrence " << n + 1;
        const AfterOccurrence r = NextOccurrence(s, calc);
        if (r.ended) {
          EXPECT_EQ(n + 1, expected.size());
          break;
        }
        s.due = r.due;
        s.occurrence = r.occurrence;
        s.count = r.count;
      }
      EXPECT_EQ(UltimaDe(codigo, Text(At(start)).c_str(), int32_t(expected.size())),
                Text(At(expected.back())));
      EXPECT_EQ(OcurrenciasHasta(codigo, Text(At(start)).c_str(), Text(At(fin)).c_str()),
                int32_t(expected.size()));
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
