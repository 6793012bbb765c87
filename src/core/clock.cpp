#include "core/clock.h"

#include <mutex>

#include "platform/suite/clock.h"

namespace kivmovfrec::core {
namespace {

std::mutex& ClockMutex() {
  static std::mutex m;
  return m;
}

std::shared_ptr<IClock>& InstalledClock() {
  static std::shared_ptr<IClock> clock;
  return clock;
}

std::shared_ptr<IClock> CurrentClock() {
  std::lock_guard lock(ClockMutex());
  return InstalledClock();
}

}  // namespace

std::shared_ptr<IClock> SetClock(std::shared_ptr<IClock> clock) {
  std::lock_guard lock(ClockMutex());
  std::swap(InstalledClock(), clock);
  return clock;
}

Date Now() {
  if (auto clock = CurrentClock()) return clock->Now();
  return suite::SystemClock().Now();
}

Date Today() {
  if (auto clock = CurrentClock()) return clock->Today();
  return suite::SystemClock().Today();
}

}  // namespace kivmovfrec::core
