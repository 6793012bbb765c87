// Calendar arithmetic on VB dates (days since 1899-12-30, fraction = time of day).
// Valid years are 100..9999, as in VB. Reading a serial outside that range (or NaN) throws
// VbError(6); building a date outside it, or from invalid fields, throws VbError(5).
//
// Serials before the epoch keep VB's layout: the whole part, truncated toward zero, counts the
// days back and the fraction is the time of that day counted forward. So -1.25 is 29/12/1899
// 06:00 and -0.5 is 30/12/1899 12:00. Split, MakeDate, DateAdd and DateDiff all follow it, and
// are exact to the second for every valid year.
// DateParts, Split, MakeDate and DateOnly are public (kivmovfrec/vb.h).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kivmovfrec/vb.h"

namespace kivmovfrec::vb {

// DateSerial: normalises overflowing months and days ((2000, 14, 2) -> 2001-02-02; day 0 is the
// last day of the previous month); years 0-29 mean 2000-2029 and 30-99 mean 1930-1999. The
// result is midnight of that day.
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

// Last day (28-31) of the given month; month outside 1-12 -> VbError(5).
int DaysInMonth(int year, int month);

// DateAdd with the VB interval codes "yyyy" "q" "m" "y" "d" "w" "ww" "h" "n" "s" (case
// ignored; "y" and "w" add days). A fractional `number` is truncated toward zero. Month and year
// steps clamp to the end of a shorter month (31/03 - 1 month = 28 or 29/02) and keep the time.
// Throws VbError(5) for an unknown interval or a result outside the calendar.
Date DateAdd(std::string_view interval, double number, Date d);
// DateDiff: number of interval boundaries crossed from d1 to d2 (negative when d2 is earlier);
// "w" counts whole weeks of days, "ww" the Sundays crossed.
int64_t DateDiff(std::string_view interval, Date d1, Date d2);

// Dates as databases store them in text. FormatIsoDateTime writes "yyyy-mm-dd hh:nn:ss", the
// time rounded to the nearest second as Split does; VbError(6) outside years 100-9999.
std::string FormatIsoDateTime(Date d);
// Reads a stored date exactly, the strict counterpart of ParseDate's ISO form (a stored value
// is not text typed by a person): "yyyy-mm-dd", optionally followed by " " or "T" and
// "hh:nn", ":ss" and a fraction of a second, which is kept. Every field has its full width, no
// blanks around. Nothing for any other text or an impossible date (2005-02-30, 24:00).
std::optional<Date> ParseIsoDateTime(std::string_view text);

}  // namespace kivmovfrec::vb
