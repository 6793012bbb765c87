#include "schedule/next_occurrence.h"

#include <algorithm>

#include "platform/vb/dates.h"
#include "schedule/frequency.h"

namespace kivmovfrec::schedule {

namespace {

bool OnceOnly(std::string_view code) {
  if (code.find_first_not_of(' ') == std::string_view::npos) return true;
  const std::optional<Frequency> f = ParseFrequency(code);
  return f && f->once();
}

// The day of `dia` with the time of day of `hora`.
Date WithTimeOf(Date dia, Date hora) {
  vb::DateParts p = vb::Split(dia);
  const vb::DateParts t = vb::Split(hora);
  p.hour = t.hour;
  p.minute = t.minute;
  p.second = t.second;
  return vb::MakeDate(p);
}

// The count that bounds the schedule (see the header); 0 when there is none.
int32_t Count(const Schedule& s, IDateCalculator& calendario) {
  if (s.count > 0) return s.count;
  if (!s.start || !s.last) return 0;
  int32_t cantidad = 0;
  Date final_ = *s.last;
  calendario.CalcularFinal(s.code, vb::DateOnly(*s.start), cantidad, final_);
  return std::max(cantidad, 0);
}

}  // namespace

AfterOccurrence NextOccurrence(const Schedule& s, IDateCalculator& calendario) {
  const int32_t actual = std::max(s.occurrence, 1);
  const AfterOccurrence ended{true, s.due, actual, std::max(s.count, 0)};
  if (OnceOnly(s.code)) return ended;

  const Date inicio = vb::DateOnly(s.start.value_or(s.due));
  const Date paso = calendario.ProximaFechaAnclada(s.code, inicio, s.due);
  if (vb::DateOnly(paso) <= vb::DateOnly(s.due)) return ended;
  const Date proxima = WithTimeOf(paso, s.due);
  if (s.no_end) return {false, proxima, actual + 1, 0};
  if (s.last && vb::DateOnly(proxima) > vb::DateOnly(*s.last)) return ended;
  const int32_t cantidad = Count(s, calendario);
  if (cantidad > 0 && actual + 1 > cantidad) return ended;
  return {false, proxima, actual + 1, cantidad};
}

}  // namespace kivmovfrec::schedule
