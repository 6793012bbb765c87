#include "schedule/date_calculator.h"

#include <fmt/format.h>
#include <algorithm>

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

}  // namespace

Date NextDate(const Frequency& f, Date inicio, Date fecha) {
  if (f.once()) return fecha;
  switch (f.unit) {
    case FrequencyUnit::Days:
      return Date{fecha.serial + f.step};
    case FrequencyUnit::Weeks:
      return Date{fecha.serial + 7.0 * f.step};
    case FrequencyUnit::Months:
      return AddMonths(fecha, f.step, inicio);
    case FrequencyUnit::Years:
      return AddMonths(fecha, 12 * f.step, inicio);
  }
  return fecha;
}

std::string Describe(const Frequency& f) {
  if (f.once()) return "Una sola vez";
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
  }
  return "";
}

std::string DateCalculator::EditarFrecuencia() {
  if (!editor_) return "";
  std::optional<Frequency> chosen = editor_->Edit(initial_);
  if (!chosen || chosen->step < 0 || chosen->step > kMaxStep) return "";
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
  if (cantidad > 0) {
    if (cantidad > kMaxOccurrences) throw VbError(6);
    Date d = start;
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
  for (Date d = NextDate(f, start, start); d <= last; d = NextDate(f, start, d)) {
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
