// Frequency codes: six-digit texts ("000000" format) whose first digit is the unit and whose
// other five are the step, code = unit * 100000 + step. 000007 is every 7 days, 200003 every
// three months, 300001 every year; 000000 means once only. The value -1 appears only in lists,
// for a frequency the user composes ("Definido ...").
// Frequency, its unit, kMaxStep and reading and writing codes are public
// (kivmovfrec/frecuencia.h).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "kivmovfrec/frecuencia.h"

namespace kivmovfrec::schedule {

// One entry of the frequency list that the wizard and the task-list editor offer.
struct FrequencyEntry {
  int texto;     // catalogue number of the caption ("Sólo esta vez" ... "Definido ...")
  int32_t code;  // item data; kCodeUserDefined for "Definido ..."
};

// The eleven entries in list order: once, daily, weekly, fortnightly, monthly, two-monthly,
// quarterly, four-monthly, half-yearly, yearly, user-defined.
std::span<const FrequencyEntry> FrequencyCatalogue();
// Caption of an entry in the given language.
std::string FrequencyCaption(const FrequencyEntry& entry, int idioma = 1);
// Index of the list entry holding `code`, or nothing when the code is one of the user's own.
std::optional<size_t> FindFrequencyEntry(int32_t code);

}  // namespace kivmovfrec::schedule
