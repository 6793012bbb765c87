#include "core/clock.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <mutex>

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

Date SystemNow() {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t t = system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&t, &local);
  const year_month_day ymd{year{local.tm_year + 1900},
                           month{static_cast<unsigned>(local.tm_mon + 1)},
                           day{static_cast<unsigned>(local.tm_mday)}};
  const auto days = (sys_days{ymd} - sys_days{year{1899} / December / 30}).count();
  const double seconds = local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec;
  return Date{static_cast<double>(days) + seconds / 86400.0};
}

Date Now() {
  if (auto clock = CurrentClock()) return clock->Now();
  return SystemNow();
}

Date Today() {
  if (auto clock = CurrentClock()) return clock->Today();
  return Date{std::floor(SystemNow().serial)};
}

}  // namespace kivmovfrec::core
