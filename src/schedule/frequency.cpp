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

std::optional<Frequency> FrequencyFromCode(int32_t code) {
  if (code < 0 || code > 3 * 100000 + kMaxStep) return std::nullopt;
  return Frequency{static_cast<FrequencyUnit>(code / 100000), code % 100000};
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
