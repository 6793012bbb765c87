#include "platform/suite/clock.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace kivmovfrec::suite {
namespace {

constexpr std::chrono::sys_days kEpoch{std::chrono::year{1899} / std::chrono::December / 30};

double WholeDays(Date d) {
  return std::floor(d.serial);
}

}  // namespace

Date SerialOf(int year, unsigned month, unsigned day) {
  const std::chrono::sys_days days{std::chrono::year{year} / std::chrono::month{month} /
                                   std::chrono::day{day}};
  return Date{static_cast<double>((days - kEpoch).count())};
}

Date LocalNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const Date day = SerialOf(local.tm_year + 1900, static_cast<unsigned>(local.tm_mon + 1),
                            static_cast<unsigned>(local.tm_mday));
  const int seconds = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
  return Date{day.serial + seconds / 86400.0};
}

Date SystemClock::Now() {
  return LocalNow();
}

Date SystemClock::Today() {
  return Date{WholeDays(LocalNow())};
}

FixedClock::FixedClock(Date hoy, std::optional<double> hora) : hoy_{WholeDays(hoy)}, hora_(hora) {}

Date FixedClock::Now() {
  const Date real = LocalNow();
  const double time_of_day = hora_ ? *hora_ : real.serial - WholeDays(real);
  return Date{hoy_.serial + time_of_day};
}

}  // namespace kivmovfrec::suite
