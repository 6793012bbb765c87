// The clock the records read "now" from.
//
// A new header record stamps FechaEstado with the current moment, and records are created all
// over the component (the façade, the wizard, the loaders) with no services at hand. They all
// read the one process-wide clock kept here. It defaults to the suite's system clock (the machine's
// local time); the façade installs the suite's clock service when it is given its services, so a
// fixed "today" (the CLI's --hoy, tests) reaches every record. Setting and reading are safe from
// any thread.
#pragma once

#include <memory>

#include "kivmovfrec/services.h"
#include "kivmovfrec/variant.h"

namespace kivmovfrec::core {

// Installs `clock` as the process-wide clock; nullptr restores the system clock. Returns the
// clock that was installed before (nullptr when it was the system clock), so a caller can put
// it back.
std::shared_ptr<IClock> SetClock(std::shared_ptr<IClock> clock);

// The current moment and today's date (midnight) from the installed clock.
Date Now();
Date Today();

// Installs a clock for the lifetime of the guard and restores the previous one after.
class ScopedClock {
 public:
  explicit ScopedClock(std::shared_ptr<IClock> clock) : previous_(SetClock(std::move(clock))) {}
  ~ScopedClock() { SetClock(std::move(previous_)); }
  ScopedClock(const ScopedClock&) = delete;
  ScopedClock& operator=(const ScopedClock&) = delete;

 private:
  std::shared_ptr<IClock> previous_;
};

}  // namespace kivmovfrec::core
