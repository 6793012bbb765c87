#include "schedule/date_calculator.h"

#include <fmt/format.h>
#include <algorithm>
#include <vector>

#include "platform/vb/dates.h"

namespace kivmovfrec::schedule {

namespace {

// More occurrences than any schedule can hold (a daily one over the whole VB calendar).
constexpr int32_t kMaxOccurrences = 4'000'000;

Frequency ParseOrThrow(std::string_view code) {
  auto f = ParseFrequency(code);
  if (!f) throw VbError(5);
  return *f;
}

std::string Plural(int32_t n, const char* one, const char* many_unit) {
  if (n == 1) return one;
  return fmt::format("Cada {} {}", n, many_unit);
}

// `fecha` moved by `months` calendar months onto the anchor day (see the header).
Date AddMonths(Date fecha, int months, Date inicio) {
  vb::DateParts p = vb::Split(fecha);
  const int start_day = vb::Day(inicio);
  const bool on_start_day = p.day == std::min(start_day, vb::DaysInMonth(p.year, p.month));
  const int anchor = on_start_day ? start_day : p.day;
  const int index = p.year * 12 + (p.month - 1) + months;
  p.year = index / 12;
  p.month = index % 12 + 1;
  p.day = std::min(anchor, vb::DaysInMonth(p.year, p.month));
  return vb::MakeDate(p);
}

// 1 Monday ... 7 Sunday.
int IsoWeekday(Date d) {
  return (vb::Weekday(d) + 5) % 7 + 1;
}

Date AddDays(Date d, int n) {
  return vb::DateAdd("d", n, d);
}

// `d` moved off the weekend as `shift` says; a business day stays.
Date MoveOffWeekend(Date d, WeekendShift shift) {
  const int wd = IsoWeekday(d);
  if (shift == WeekendShift::None || wd < 6) return d;
  if (shift == WeekendShift::NextBusinessDay) return AddDays(d, 8 - wd);
  return AddDays(d, 5 - wd);
}

// The day of the month on which a rule of unit 4 or 5 falls in the given month.
int RuleDay(const Frequency& f, int year, int month) {
  const int last_day = vb::DaysInMonth(year, month);
  const int last_wd = IsoWeekday(vb::DateSerial(year, month, last_day));
  if (f.unit == FrequencyUnit::LastBusinessDay) return last_day - std::max(last_wd - 5, 0);
  if (f.ordinal == kLastWeekday) return last_day - (last_wd - f.weekday + 7) % 7;
  const int first_wd = IsoWeekday(vb::DateSerial(year, month, 1));
  return 1 + (f.weekday - first_wd + 7) % 7 + 7 * (f.ordinal - 1);
}

// The rule's date `months` months after the month of `fecha`, with the time of `fecha`.
Date RuleDate(const Frequency& f, Date fecha, int months) {
  vb::DateParts p = vb::Split(fecha);
  const int index = p.year * 12 + (p.month - 1) + months;
  p.year = index / 12;
  p.month = index % 12 + 1;
  p.day = RuleDay(f, p.year, p.month);
  return vb::MakeDate(p);
}

bool OnRule(const Frequency& f, Date fecha) {
  return vb::Day(fecha) == RuleDay(f, vb::Year(fecha), vb::Month(fecha));
}

// Unit 4 or 5: from a date on the rule, the rule's date `step` months on; from any other (a
// start, a date moved by hand) the first date of the rule after it.
Date NextRuleDate(const Frequency& f, Date fecha) {
  if (OnRule(f, fecha)) return RuleDate(f, fecha, f.step);
  const Date here = RuleDate(f, fecha, 0);
  return vb::DateOnly(here) > vb::DateOnly(fecha) ? here : RuleDate(f, fecha, 1);
}

// Whether the unmoved date `u` belongs to the series of `base` started on `inicio`: for days
// and weeks a whole number of steps from the start, for months and years a whole number of
// steps in months and the start's day of the month (the last day of a shorter month).
bool InSeries(const Frequency& base, Date inicio, Date u) {
  const int64_t days = vb::DateDiff("d", inicio, u);
  switch (base.unit) {
    case FrequencyUnit::Days:
      return days >= 0 && days % base.step == 0;
    case FrequencyUnit::Weeks:
      return days >= 0 && days % (7 * int64_t{base.step}) == 0;
    default: {
      const int64_t months = vb::DateDiff("m", inicio, u);
      const int64_t every = base.unit == FrequencyUnit::Years ? 12 * int64_t{base.step} : base.step;
      return days >= 0 && months % every == 0 &&
             vb::Day(u) == std::min(vb::Day(inicio), vb::DaysInMonth(vb::Year(u), vb::Month(u)));
    }
  }
}

// Units 6 and 7: the unmoved date behind the due date `fecha` is found among `fecha` and the
// weekend days that move onto it (the earliest one in the series; `fecha` itself when none is,
// as for a due date moved by hand). The series steps on from there until its moved date falls
// after `fecha`, so two unmoved dates moved onto the same day make one due date.
Date NextMovedDate(const Frequency& f, Date inicio, Date fecha) {
  Frequency base = f;
  base.shift = WeekendShift::None;
  const int wd = IsoWeekday(fecha);
  std::vector<Date> candidates;
  if (f.shift == WeekendShift::NextBusinessDay && wd == 1) {
    candidates = {AddDays(fecha, -2), AddDays(fecha, -1)};
  } else if (f.shift == WeekendShift::PreviousBusinessDay && wd == 5) {
    candidates = {AddDays(fecha, 1), AddDays(fecha, 2)};
  }
  candidates.push_back(fecha);
  std::sort(candidates.begin(), candidates.end());
  Date u = fecha;
  for (Date c : candidates) {
    if (InSeries(base, inicio, c)) {
      u = c;
      break;
    }
  }
  // Each step moves at least one day, and at most two unmoved dates share a due date.
  for (int i = 0; i < 4; ++i) {
    u = NextDate(base, inicio, u);
    const Date due = MoveOffWeekend(u, f.shift);
    if (vb::DateOnly(due) > vb::DateOnly(fecha)) return due;
  }
  return fecha;
}

}  // namespace

Date NextDate(const Frequency& f, Date inicio, Date fecha) {
  if (f.once()) return fecha;
  if (f.shift != WeekendShift::None) return NextMovedDate(f, inicio, fecha);
  switch (f.unit) {
    case FrequencyUnit::Days:
      return Date{fecha.serial + f.step};
    case FrequencyUnit::Weeks:
      return Date{fecha.serial + 7.0 * f.step};
    case FrequencyUnit::Months:
      return AddMonths(fecha, f.step, inicio);
    case FrequencyUnit::Years:
      return AddMonths(fecha, 12 * f.step, inicio);
    case FrequencyUnit::WeekdayOfMonth:
    case FrequencyUnit::LastBusinessDay:
      return NextRuleDate(f, fecha);
  }
  return fecha;
}

Date FirstDueDate(const Frequency& f, Date fecha) {
  if (f.once()) return fecha;
  if (f.shift != WeekendShift::None) return MoveOffWeekend(fecha, f.shift);
  if (f.unit == FrequencyUnit::WeekdayOfMonth || f.unit == FrequencyUnit::LastBusinessDay) {
    return OnRule(f, fecha) ? fecha : NextRuleDate(f, fecha);
  }
  return fecha;
}

namespace {

const char* const kOrdinals[] = {"", "primer", "segundo", "tercer", "cuarto"};
const char* const kWeekdays[] = {"",       "lunes",   "martes", "miércoles",
                                 "jueves", "viernes", "sábado", "domingo"};

std::string EveryMonths(int32_t k) {
  return k == 1 ? "de cada mes" : fmt::format("de cada {} meses", k);
}

}  // namespace

std::string Describe(const Frequency& f) {
  if (f.once()) return "Una sola vez";
  if (f.shift != WeekendShift::None) {
    Frequency base = f;
    base.shift = WeekendShift::None;
    return Describe(base) + (f.shift == WeekendShift::NextBusinessDay
                                 ? ", o el día hábil siguiente si cae en sábado o domingo"
                                 : ", o el día hábil anterior si cae en sábado o domingo");
  }
  switch (f.unit) {
    case FrequencyUnit::Days:
      if (f.step == 1) return "Todos los días";
      if (f.step % 7 == 0) return Plural(f.step / 7, "Todas las semanas", "semanas");
      return Plural(f.step, "Todos los días", "días");
    case FrequencyUnit::Weeks:
      return Plural(f.step, "Todas las semanas", "semanas");
    case FrequencyUnit::Months:
      return Plural(f.step, "Todos los meses", "meses");
    case FrequencyUnit::Years:
      return Plural(f.step, "Todos los años", "años");
    case FrequencyUnit::WeekdayOfMonth:
      return fmt::format("El {} {} {}", f.ordinal == kLastWeekday ? "último" : kOrdinals[f.ordinal],
                         kWeekdays[f.weekday], EveryMonths(f.step));
    case FrequencyUnit::LastBusinessDay:
      return "El último día hábil " + EveryMonths(f.step);
  }
  return "";
}

std::string DateCalculator::EditarFrecuencia() {
  if (!editor_) return "";
  std::optional<Frequency> chosen = editor_->Edit(initial_);
  if (!chosen || chosen->step < 0 || FrequencyFromCode(chosen->code()) != chosen) return "";
  initial_ = *chosen;
  return FormatFrequencyCode(chosen->code()) + " " + Describe(*chosen);
}

void DateCalculator::CalcularFinal(std::string_view code, Date inicio, int32_t& cantidad,
                                   Date& final_) {
  const Frequency f = ParseOrThrow(code);
  const Date start = vb::DateOnly(inicio);
  if (f.once()) {
    cantidad = 1;
    final_ = start;
    return;
  }
  const Date first = FirstDueDate(f, start);
  if (cantidad > 0) {
    if (cantidad > kMaxOccurrences) throw VbError(6);
    Date d = first;
    for (int32_t i = 1; i < cantidad; ++i) d = NextDate(f, start, d);
    final_ = d;
    return;
  }
  const Date last = vb::DateOnly(final_);
  if (last < start) {
    cantidad = 0;
    return;
  }
  int32_t n = 1;
  if (first > last) {
    cantidad = 0;
    return;
  }
  for (Date d = NextDate(f, start, first); d <= last; d = NextDate(f, start, d)) {
    if (++n > kMaxOccurrences) throw VbError(6);
  }
  cantidad = n;
}

Date DateCalculator::ProximaFecha(std::string_view code, Date fecha) {
  return NextDate(ParseOrThrow(code), fecha, fecha);
}

Date DateCalculator::ProximaFechaAnclada(std::string_view code, Date inicio, Date fecha) {
  return NextDate(ParseOrThrow(code), inicio, fecha);
}

std::string DateCalculator::DescribirFrecuencia(std::string_view code) {
  auto f = ParseFrequency(code);
  return f ? Describe(*f) : "";
}

}  // namespace kivmovfrec::schedule

namespace kivmovfrec {

std::unique_ptr<IDateCalculator> CalculadoraFechasSuite() {
  return std::make_unique<schedule::DateCalculator>();
}

}  // namespace kivmovfrec
