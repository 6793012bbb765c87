// Date functions: Date Now Time Year Month Day Weekday Hour Minute Second DateSerial
// TimeSerial DateAdd DateDiff.
#include <cmath>
#include <string>

#include "platform/script/builtins.h"
#include "platform/script/coerce.h"
#include "platform/vb/convert.h"
#include "platform/vb/dates.h"

namespace kivmovfrec::script {

namespace {

// Weekday numbering used when a function is told to follow the system (0): the week starts on
// Monday on a Spanish system.
constexpr int kSystemFirstDay = 2;

Variant DateF(std::span<Variant>, const CallContext& cx) {
  return Variant(Date{std::floor(cx.Now().serial)});
}
Variant NowF(std::span<Variant>, const CallContext& cx) {
  return Variant(cx.Now());
}
Variant TimeF(std::span<Variant>, const CallContext& cx) {
  const double s = cx.Now().serial;
  return Variant(Date{s - std::floor(s)});
}

template <int (*Part)(Date)>
Variant DatePart(std::span<Variant> a, const CallContext&) {
  if (a[0].IsNull()) return Variant::Null();
  return Variant(static_cast<int16_t>(Part(vb::CDate(a[0]))));
}

int FirstDay(const Variant& v, const CallContext& cx) {
  const int32_t first = ToLongRounded(v, cx.loc);
  if (first < 0 || first > 7) throw VbError(5);
  return first == 0 ? kSystemFirstDay : first;
}

Variant Weekday(std::span<Variant> a, const CallContext& cx) {
  const int first = a.size() > 1 ? FirstDay(a[1], cx) : 1;
  if (a[0].IsNull()) return Variant::Null();
  const int sunday_based = vb::Weekday(vb::CDate(a[0]));  // 1 = Sunday
  return Variant(static_cast<int16_t>((sunday_based - first + 7) % 7 + 1));
}

int IntegerArgument(const Variant& v, const CallContext& cx) {
  const int32_t n = ToLongRounded(v, cx.loc);
  if (n < -32768 || n > 32767) throw VbError(6);
  return n;
}

Variant DateSerial(std::span<Variant> a, const CallContext& cx) {
  return Variant(vb::DateSerial(IntegerArgument(a[0], cx), IntegerArgument(a[1], cx),
                                IntegerArgument(a[2], cx)));
}

Variant TimeSerial(std::span<Variant> a, const CallContext& cx) {
  const double seconds = IntegerArgument(a[0], cx) * 3600.0 + IntegerArgument(a[1], cx) * 60.0 +
                         IntegerArgument(a[2], cx);
  return Variant(Date{seconds / 86400.0});
}

Variant DateAdd(std::span<Variant> a, const CallContext& cx) {
  const std::string interval = ToText(a[0], cx.loc);
  const double number = ToDouble(a[1], cx.loc);
  if (a[2].IsNull()) return Variant::Null();
  return Variant(vb::DateAdd(interval, number, vb::CDate(a[2])));
}

// The optional first-day-of-week and first-week-of-year arguments are checked; weeks ("ww")
// are counted from Sunday whatever they say.
Variant DateDiff(std::span<Variant> a, const CallContext& cx) {
  const std::string interval = ToText(a[0], cx.loc);
  if (a.size() > 3) FirstDay(a[3], cx);
  if (a.size() > 4) {
    const int32_t week = ToLongRounded(a[4], cx.loc);
    if (week < 0 || week > 3) throw VbError(5);
  }
  if (a[1].IsNull() || a[2].IsNull()) return Variant::Null();
  const int64_t r = vb::DateDiff(interval, vb::CDate(a[1]), vb::CDate(a[2]));
  if (r < INT32_MIN || r > INT32_MAX) throw VbError(6);
  return Variant(static_cast<int32_t>(r));
}

const Builtin kDates[] = {
    {"Date", 0, 0, 0, DateF},
    {"Now", 0, 0, 0, NowF},
    {"Time", 0, 0, 0, TimeF},
    {"Year", 1, 1, 0, DatePart<vb::Year>},
    {"Month", 1, 1, 0, DatePart<vb::Month>},
    {"Day", 1, 1, 0, DatePart<vb::Day>},
    {"Hour", 1, 1, 0, DatePart<vb::Hour>},
    {"Minute", 1, 1, 0, DatePart<vb::Minute>},
    {"Second", 1, 1, 0, DatePart<vb::Second>},
    {"Weekday", 1, 2, 0, Weekday},
    {"DateSerial", 3, 3, 0, DateSerial},
    {"TimeSerial", 3, 3, 0, TimeSerial},
    {"DateAdd", 3, 3, 0, DateAdd},
    {"DateDiff", 3, 5, 0, DateDiff},
};

}  // namespace

std::span<const Builtin> DateBuiltins() {
  return kDates;
}

}  // namespace kivmovfrec::script
