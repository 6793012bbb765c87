#include "schedule/frequency.h"

#include <fmt/format.h>
#include <array>
#include <charconv>

#include "resources/catalogue.h"

namespace kivmovfrec::schedule {

namespace {

constexpr std::array<FrequencyEntry, 11> kCatalogue{{
    {400, 0},       // Sólo esta vez
    {401, 1},       // Diaria
    {402, 7},       // Semanal: seven days
    {403, 15},      // Quincenal: fifteen days, never half a month
    {404, 200001},  // Mensual
    {405, 200002},  // Bimensual: every two months
    {406, 200003},  // Trimestral
    {407, 200004},  // Cuatrimestral
    {408, 200006},  // Semestral
    {409, 300001},  // Anual
    {410, kCodeUserDefined},
}};

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}

}  // namespace

int32_t Frequency::code() const {
  const int32_t u = static_cast<int32_t>(unit);
  switch (unit) {
    case FrequencyUnit::WeekdayOfMonth:
      return u * 100000 + ordinal * 10000 + weekday * 1000 + step;
    case FrequencyUnit::LastBusinessDay:
      return u * 100000 + step;
    default:
      if (shift == WeekendShift::None) return u * 100000 + step;
      return static_cast<int32_t>(shift) * 100000 + u * 10000 + step;
  }
}

int Frequency::recordUnit() const {
  return unit == FrequencyUnit::WeekdayOfMonth || unit == FrequencyUnit::LastBusinessDay
             ? static_cast<int>(FrequencyUnit::Months)
             : static_cast<int>(unit);
}

std::optional<Frequency> FrequencyFromCode(int32_t code) {
  if (code < 0 || code > 999999) return std::nullopt;
  const int unit = code / 100000;
  const int32_t rest = code % 100000;
  Frequency f;
  switch (unit) {
    case 0:
    case 1:
    case 2:
    case 3:
      return Frequency{static_cast<FrequencyUnit>(unit), rest};
    case 4:
      f.unit = FrequencyUnit::WeekdayOfMonth;
      f.ordinal = rest / 10000;
      f.weekday = rest / 1000 % 10;
      f.step = rest % 1000;
      if ((f.ordinal < 1 || f.ordinal > 4) && f.ordinal != kLastWeekday) return std::nullopt;
      if (f.weekday < 1 || f.weekday > 7) return std::nullopt;
      break;
    case 5:
      f.unit = FrequencyUnit::LastBusinessDay;
      f.step = rest;
      break;
    case 6:
    case 7:
      f.shift = static_cast<WeekendShift>(unit);
      if (rest / 10000 > 3) return std::nullopt;
      f.unit = static_cast<FrequencyUnit>(rest / 10000);
      f.step = rest % 10000;
      break;
    default:
      return std::nullopt;
  }
  if (f.step == 0) return std::nullopt;  // a rule or a moved date only makes sense repeated
  return f;
}

std::optional<Frequency> ParseFrequency(std::string_view text) {
  text = TrimBlanks(text);
  if (text.size() > 6) text = TrimBlanks(text.substr(0, 6));
  if (text.empty()) return std::nullopt;
  int32_t code = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), code);
  if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return FrequencyFromCode(code);
}

std::string FormatFrequencyCode(int32_t code) {
  return fmt::format("{:06d}", code);
}

std::span<const FrequencyEntry> FrequencyCatalogue() {
  return kCatalogue;
}

std::string FrequencyCaption(const FrequencyEntry& entry, int idioma) {
  return std::string(resources::Texto(entry.texto, idioma));
}

std::optional<size_t> FindFrequencyEntry(int32_t code) {
  for (size_t i = 0; i < kCatalogue.size(); ++i) {
    if (kCatalogue[i].code == code) return i;
  }
  return std::nullopt;
}

}  // namespace kivmovfrec::schedule
