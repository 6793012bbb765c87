#include "platform/script/builtins.h"

#include <chrono>
#include <ctime>
#include <vector>

namespace kivmovfrec::script {

Date CallContext::Now() const {
  if (clock) return clock();
  const auto now = std::chrono::system_clock::now();
  const std::time_t t = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&t, &local);
  // Days since 1899-12-30 of the local calendar date, plus the time of day.
  const std::chrono::year_month_day ymd{std::chrono::year{local.tm_year + 1900},
                                        std::chrono::month{static_cast<unsigned>(local.tm_mon + 1)},
                                        std::chrono::day{static_cast<unsigned>(local.tm_mday)}};
  const auto days = std::chrono::sys_days{ymd}.time_since_epoch().count() + 25569;
  const double fraction = (local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec) / 86400.0;
  return Date{static_cast<double>(days) + fraction};
}

std::span<const Builtin> BuiltinTable() {
  static const std::vector<Builtin> table = [] {
    std::vector<Builtin> t;
    for (auto group : {MathBuiltins(), ConvertBuiltins(), TextBuiltins(), DateBuiltins()}) {
      t.insert(t.end(), group.begin(), group.end());
    }
    return t;
  }();
  return table;
}

}  // namespace kivmovfrec::script
