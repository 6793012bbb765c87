// What follows the current occurrence of a schedule: its next due date, or that it has ended.
// Marking an occurrence done, the main job and the agenda listing all go through
// NextOccurrence, so they agree on every date and on when a schedule stops.
//
// Rules:
// - A once-only code (step 0, or no code at all) ends after its one occurrence, whatever
//   SinVencimiento says.
// - Otherwise the next due date is the calculator's ProximaFechaAnclada(code, start, due) -
//   anchored on the start's day of the month, see date_calculator.h - on the day it returns,
//   with the time of day of the current due date. Without a start date the current due date
//   stands in for it. A calculator that gives no later day has no next date: the schedule ends.
// - no_end (SinVencimiento 1) never ends otherwise.
// - Without no_end the schedule ends when the next date falls after the last date (by day), or
//   when the next occurrence number exceeds the count: `count` when it is above 0, else the
//   number of occurrences that CalcularFinal finds from the start (without its time) to the
//   last date; with neither a count nor both dates there is no count.
// Errors of the calculator (VbError(5) for an unreadable code) go through to the caller.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kivmovfrec/services.h"

namespace kivmovfrec::schedule {

// A schedule on its current occurrence.
struct Schedule {
  std::string code{};           // frequency code ("200001")
  std::optional<Date> start{};  // first due date (RecFechaInicio); nothing when not a date
  Date due{};                   // current due date (FechaProxima), with its time of day
  int32_t occurrence = 1;       // number of the current occurrence; below 1 counts as 1
  int32_t count = 0;            // CantidadVeces; 0 or less when not set
  std::optional<Date> last{};   // last date (RecFechaFinal); nothing when there is none
  bool no_end = false;          // SinVencimiento
};

struct AfterOccurrence {
  bool ended = false;  // no occurrence follows the current one
  // The next due date and its number; when ended, the current ones.
  Date due{};
  int32_t occurrence = 1;
  // The count the end test used (0 = none). A caller stepping on copies due, occurrence and
  // count back into its Schedule; the count then need not be derived again.
  int32_t count = 0;
};

AfterOccurrence NextOccurrence(const Schedule& s, IDateCalculator& calendario);

}  // namespace kivmovfrec::schedule
