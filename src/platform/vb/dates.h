// Calendar arithmetic on VB dates (days since 1899-12-30, fraction = time of day).
// Valid years are 100..9999, as in VB; anything outside throws VbError(5) or (6).
#pragma once

#include <cstdint>
#include <string_view>

#include "kivmovfrec/variant.h"

namespace kivmovfrec::vb {

struct DateParts {
  int year = 1899, month = 12, day = 30;
  int hour = 0, minute = 0, second = 0;
};

// Splits a date into calendar fields (seconds rounded to the nearest whole second).
DateParts Split(Date d);
// Builds a date from fields that must already be valid (month 1-12, day within the month).
Date MakeDate(const DateParts& p);

// DateSerial: normalises overflowing months and days ((2000, 14, 2) -> 2001-02-02); years
// 0-29 mean 2000-2029 and 30-99 mean 1930-1999.
Date DateSerial(int year, int month, int day);
// TimeSerial-like helper: the fraction of a day for h:n:s.
double TimeFraction(int hour, int minute, int second);

int Year(Date d);
int Month(Date d);
int Day(Date d);
int Hour(Date d);
int Minute(Date d);
int Second(Date d);
// 1 = Sunday ... 7 = Saturday.
int Weekday(Date d);

// Date part only (time of day dropped).
Date DateOnly(Date d);
// Last day (28-31) of the given month.
int DaysInMonth(int year, int month);

// DateAdd with the VB interval codes "yyyy" "q" "m" "y" "d" "w" "ww" "h" "n" "s" (case
// ignored). Month and year steps clamp to the end of a shorter month (31/03 - 1 month =
// 28 or 29/02). Throws VbError(5) for an unknown interval.
Date DateAdd(std::string_view interval, double number, Date d);
// DateDiff: number of interval boundaries crossed from d1 to d2.
int64_t DateDiff(std::string_view interval, Date d1, Date d2);

}  // namespace kivmovfrec::vb
