// Clocks: the real one and one whose "today" is fixed (the CLI's --hoy, tests).
#pragma once

#include <optional>

#include "kivmovfrec/services.h"

namespace kivmovfrec::suite {

// Serial date (days since 1899-12-30) of a calendar day; the caller passes a valid day.
Date SerialOf(int year, unsigned month, unsigned day);
// The local date and time of the machine, as a serial date (whole seconds).
Date LocalNow();

// The machine's local clock.
class SystemClock final : public IClock {
 public:
  Date Now() override;
  Date Today() override;
};

// A clock whose today is `hoy` (its time of day is dropped). Now() is that day plus
// `hora` (a fraction of a day) when one is given, otherwise plus the real local time of day, so
// that timestamps written during one run still move forward.
class FixedClock final : public IClock {
 public:
  explicit FixedClock(Date hoy, std::optional<double> hora = std::nullopt);
  Date Now() override;
  Date Today() override { return hoy_; }

 private:
  Date hoy_;
  std::optional<double> hora_;
};

}  // namespace kivmovfrec::suite
