// Frequency codes of schedules: six-digit texts ("000000" format) whose first digit is the unit
// and whose other five are the step, code = unit * 100000 + step. 000007 is every 7 days,
// 200003 every three months, 300001 every year; 000000 means once only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kivmovfrec/export.h"
#include "kivmovfrec/services.h"

namespace kivmovfrec {

// The suite's own date calculator, the one the façade steps schedules with when the services
// give none: calendar steps that keep a monthly or yearly schedule on its start's day (clamped
// to shorter months), the end of a schedule by count or last date, and a frequency in words
// (DescribirFrecuencia: "Todos los meses", "Cada 15 días"). It has no frequency editor:
// EditarFrecuencia returns "" as a cancelled dialog does. An unreadable code makes its steps
// throw VbError(5).
KMF_API std::unique_ptr<IDateCalculator> CalculadoraFechasSuite();

}  // namespace kivmovfrec

namespace kivmovfrec::schedule {

// Units, numbered as enuTipoRecurrencia (Diaria 0, Semanal 1, Mensual 2, Anual 3).
enum class FrequencyUnit : int { Days = 0, Weeks = 1, Months = 2, Years = 3 };

struct KMF_API Frequency {
  FrequencyUnit unit = FrequencyUnit::Days;
  int32_t step = 0;  // 0 = once only (whatever the unit)

  bool once() const { return step == 0; }
  int32_t code() const { return static_cast<int32_t>(unit) * 100000 + step; }
  friend bool operator==(const Frequency&, const Frequency&) = default;
};

inline constexpr int32_t kMaxStep = 99999;
inline constexpr int32_t kCodeUserDefined = -1;

// Reads a code given as text: its first six characters (blanks around are ignored) must be
// digits of a number whose unit is 0..3. "7" and "000007" are the same code. Nothing for
// anything else, including "-1".
KMF_API std::optional<Frequency> ParseFrequency(std::string_view text);
// Same for a numeric code.
KMF_API std::optional<Frequency> FrequencyFromCode(int32_t code);
// The code written with six digits: 7 -> "000007".
KMF_API std::string FormatFrequencyCode(int32_t code);

}  // namespace kivmovfrec::schedule
