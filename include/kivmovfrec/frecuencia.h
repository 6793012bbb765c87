// Frequency codes of schedules: six-digit texts ("000000" format) whose first digit is the unit.
//
// Units 0-3 (the ones the frequency list offers, numbered as enuTipoRecurrencia): the other five
// digits are the step, code = unit * 100000 + step. 000007 is every 7 days, 200003 every three
// months, 300001 every year; step 0 (000000) means once only, whatever the unit.
//
// Units 4-7 are calendar rules a user composes; each must repeat (a step of 0 is refused):
//   4 O W KKK  the O-th weekday W of every KKK months. O is 1-4 (first to fourth) or 9 (last);
//              W is 1 Monday ... 7 Sunday; KKK is 001-999. 421001 = the second Monday of every
//              month, 495002 = the last Friday of every two months. A fifth weekday is not in
//              every month, so O = 5 (and 0, 6-8) is refused.
//   5 KKKKK    the last business day of every KKKKK months (00001-99999). 500001 = monthly.
//   6 U SSSS   unit U (0-3) every SSSS (0001-9999), a due date falling on a Saturday or Sunday
//              moved to the following Monday. 620001 = monthly, 600007 = weekly.
//   7 U SSSS   the same, moved back to the Friday before. 730001 = yearly.
// Units 8 and 9 mean nothing yet and are refused.
//
// Business days are Monday to Friday: there is no holiday calendar, so a bank holiday counts as
// a business day.
//
// Rule units 4 and 5: the first due date of a schedule is the first date on or after its start
// that satisfies the rule (from 01/01/2024 the second Monday of every month falls on 08/01,
// 12/02, 11/03). Units 6 and 7: the series is the one of the plain unit, computed from the
// unmoved dates, so a moved due date never shifts the dates after it (monthly on the 31st moved
// to Monday: 31/08/2025 is a Sunday and falls due on 01/09, the next on 30/09).
// Every step keeps the time of day of the date it steps from.
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
// to shorter months), the rules above, the end of a schedule by count or last date, and a
// frequency in words (DescribirFrecuencia: "Todos los meses", "Cada 15 días", "El segundo lunes
// de cada mes"). It has no frequency editor: EditarFrecuencia returns "" as a cancelled dialog
// does. An unreadable code makes its steps throw VbError(5).
KMF_API std::unique_ptr<IDateCalculator> CalculadoraFechasSuite();

}  // namespace kivmovfrec

namespace kivmovfrec::schedule {

// The code's first digit.
enum class FrequencyUnit : int {
  Days = 0,
  Weeks = 1,
  Months = 2,
  Years = 3,
  WeekdayOfMonth = 4,   // the n-th weekday of every k months
  LastBusinessDay = 5,  // the last business day of every k months
};

// Where a due date that falls on a weekend goes (units 6 and 7 of the code).
enum class WeekendShift : int { None = 0, NextBusinessDay = 6, PreviousBusinessDay = 7 };

inline constexpr int kLastWeekday = 9;  // ordinal of "the last" weekday of a month

struct KMF_API Frequency {
  FrequencyUnit unit = FrequencyUnit::Days;
  int32_t step = 0;  // every `step` units (months for units 4 and 5); 0 = once only
  int ordinal = 0;   // WeekdayOfMonth: 1-4 or kLastWeekday
  int weekday = 0;   // WeekdayOfMonth: 1 Monday ... 7 Sunday
  WeekendShift shift = WeekendShift::None;  // units 0-3 only

  bool once() const { return step == 0; }
  int32_t code() const;
  // The unit as the record's TipoRecurrencia (0-3) keeps it: the calendar rules count months.
  int recordUnit() const;
  friend bool operator==(const Frequency&, const Frequency&) = default;
};

inline constexpr int32_t kMaxStep = 99999;
inline constexpr int32_t kCodeUserDefined = -1;

// Reads a code given as text: its first six characters (blanks around are ignored) must be
// digits of a valid code (above). "7" and "000007" are the same code. Nothing for anything
// else, including "-1" and "451001" (no fifth Monday in most months).
KMF_API std::optional<Frequency> ParseFrequency(std::string_view text);
// Same for a numeric code.
KMF_API std::optional<Frequency> FrequencyFromCode(int32_t code);
// The code written with six digits: 7 -> "000007".
KMF_API std::string FormatFrequencyCode(int32_t code);

// The first due date on or after `fecha` of a schedule that starts on it: `fecha` itself for
// units 0-3, the first date satisfying the rule for units 4 and 5, `fecha` moved off the
// weekend for units 6 and 7. A once-only code gives `fecha`. The time of day is kept.
KMF_API Date FirstDueDate(const Frequency& f, Date fecha);

}  // namespace kivmovfrec::schedule
