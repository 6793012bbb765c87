#include <gtest/gtest.h>

#include <tuple>

#include <vector>

#include "platform/vb/dates.h"
#include "vb_test_util.h"

namespace kivmovfrec::vb {
namespace {

using testing::D;
using testing::ErrorNumber;

void ExpectParts(Date d, int y, int m, int day, int h = 0, int n = 0, int s = 0) {
  const DateParts p = Split(d);
  EXPECT_EQ(std::vector<int>({p.year, p.month, p.day, p.hour, p.minute, p.second}),
            std::vector<int>({y, m, day, h, n, s}))
      << d.serial;
}

TEST(Dates, SerialsCountDaysFrom30December1899) {
  EXPECT_EQ(D(1899, 12, 30).serial, 0);
  EXPECT_EQ(D(1900, 1, 1).serial, 2);
  EXPECT_EQ(D(2005, 8, 2, 18).serial, 38566.75);
  ExpectParts(Date{2958465}, 9999, 12, 31);
  ExpectParts(Date{-657434}, 100, 1, 1);
  // Before the epoch the time counts forward from the day: -1.25 is 29/12/1899 at 06:00.
  ExpectParts(Date{-1.25}, 1899, 12, 29, 6);
  EXPECT_EQ(D(1899, 12, 29, 6).serial, -1.25);
  ExpectParts(Date{-0.5}, 1899, 12, 30, 12);
  for (const Date d : {D(1800, 3, 1, 13, 45, 10), D(1899, 12, 29, 23, 59, 59), D(100, 1, 1, 1)}) {
    EXPECT_EQ(MakeDate(Split(d)), d);
  }
  // Seconds round to the nearest and carry into the next day.
  ExpectParts(Date{38566 + 10.0 / 24 + 57.0 / 1440 + 58.4 / 86400}, 2005, 8, 2, 10, 57, 58);
  ExpectParts(Date{38566 + 10.0 / 24 + 57.0 / 1440 + 58.6 / 86400}, 2005, 8, 2, 10, 57, 59);
  ExpectParts(Date{38566.9999999}, 2005, 8, 3);
}

TEST(Dates, OutOfRangeAndInvalidFields) {
  EXPECT_EQ(ErrorNumber([] { Split(Date{3e6}); }), 6);
  EXPECT_EQ(ErrorNumber([] { Split(Date{-700000}); }), 6);
  for (const DateParts p : {DateParts{2023, 2, 29}, DateParts{2024, 13, 1},
                            DateParts{2024, 1, 1, 24}, DateParts{99, 1, 1}}) {
    EXPECT_EQ(ErrorNumber([&] { MakeDate(p); }), 5) << p.year << "-" << p.month;
  }
  EXPECT_EQ(ErrorNumber([] { MakeDate(DateParts{2024, 2, 29}); }), 0);
}

// Months and days out of range roll over; years 0-29 are 20xx and 30-99 are 19xx.
TEST(DateSerial, NormalisesOverflowAndMapsTwoDigitYears) {
  const std::pair<Date, Date> casos[] = {
      {DateSerial(2000, 14, 2), D(2001, 2, 2)},   {DateSerial(2005, 3, 0), D(2005, 2, 28)},
      {DateSerial(2008, 3, 0), D(2008, 2, 29)},   {DateSerial(2005, 0, 1), D(2004, 12, 1)},
      {DateSerial(2005, -13, 1), D(2003, 11, 1)}, {DateSerial(2005, 1, 365), D(2005, 12, 31)},
      {DateSerial(2005, 1, -1), D(2004, 12, 30)}, {DateSerial(5, 8, 2), D(2005, 8, 2)},
      {DateSerial(29, 1, 1), D(2029, 1, 1)},      {DateSerial(30, 1, 1), D(1930, 1, 1)},
      {DateSerial(99, 12, 31), D(1999, 12, 31)},  {DateSerial(1850, 6, 15), D(1850, 6, 15)}};
  for (const auto& [calculada, esperada] : casos) EXPECT_EQ(calculada, esperada);
  EXPECT_EQ(ErrorNumber([] { DateSerial(10000, 1, 1); }), 5);
  EXPECT_EQ(ErrorNumber([] { DateSerial(2000, 2147483647, 1); }), 5);
}

TEST(Dates, FieldsWeekdayAndMonthLength) {
  const Date d = D(2005, 8, 2, 10, 57, 58);
  EXPECT_EQ(Year(d) * 10000 + Month(d) * 100 + Day(d), 20050802);
  EXPECT_EQ(Hour(d) * 10000 + Minute(d) * 100 + Second(d), 105758);
  // Tuesday, Sunday, Saturday, and a Friday before the epoch.
  EXPECT_EQ(std::vector<int>({Weekday(d), Weekday(D(2005, 8, 7)), Weekday(D(2005, 8, 6)),
                              Weekday(D(1899, 12, 29, 6))}),
            std::vector<int>({3, 1, 7, 6}));
  EXPECT_EQ(DateOnly(d), D(2005, 8, 2));
  EXPECT_EQ(DateOnly(Date{-1.25}), D(1899, 12, 29));
  EXPECT_EQ(std::vector<int>({DaysInMonth(2008, 2), DaysInMonth(1900, 2), DaysInMonth(2000, 2),
                              DaysInMonth(2005, 4)}),
            std::vector<int>({29, 28, 29, 30}));
  EXPECT_EQ(ErrorNumber([] { DaysInMonth(2005, 13); }), 5);
  EXPECT_DOUBLE_EQ(TimeFraction(18, 0, 0), 0.75);
}

// Month and year steps clamp to the month's end; steps are truncated; the time of day is kept,
// also across the epoch, where the layout of the fraction changes.
TEST(DateAdd, EveryIntervalClampsToMonthEnd) {
  const std::pair<Date, Date> casos[] = {
      {DateAdd("m", -1, D(2005, 3, 31)), D(2005, 2, 28)},
      {DateAdd("m", 1, D(2008, 1, 31)), D(2008, 2, 29)},
      {DateAdd("yyyy", 1, D(2008, 2, 29)), D(2009, 2, 28)},
      {DateAdd("YYYY", -1, D(2005, 8, 2)), D(2004, 8, 2)},
      {DateAdd("q", 1, D(2005, 11, 30)), D(2006, 2, 28)},
      {DateAdd("m", -13, D(2005, 1, 15, 10, 30)), D(2003, 12, 15, 10, 30)},
      {DateAdd("m", 1.9, D(2005, 1, 15)), D(2005, 2, 15)},
      {DateAdd("d", 1, D(2005, 12, 31)), D(2006, 1, 1)},
      {DateAdd("y", -1, D(2005, 3, 1)), D(2005, 2, 28)},
      {DateAdd("w", 3, D(2005, 8, 2)), D(2005, 8, 5)},
      {DateAdd("ww", 2, D(2005, 8, 2, 9)), D(2005, 8, 16, 9)},
      {DateAdd("h", 20, D(2005, 8, 2, 10)), D(2005, 8, 3, 6)},
      {DateAdd("n", -61, D(2005, 8, 2)), D(2005, 8, 1, 22, 59)},
      {DateAdd("s", 86401, D(2005, 8, 2)), D(2005, 8, 3, 0, 0, 1)},
      {DateAdd("h", -6, D(1899, 12, 30, 0)), D(1899, 12, 29, 18)},
      {DateAdd("h", 30, D(1899, 12, 29, 0)), D(1899, 12, 30, 6)}};
  for (const auto& [calculada, esperada] : casos) EXPECT_EQ(calculada, esperada);
  // Unknown intervals and leaving the calendar.
  for (const auto& caso : {std::tuple{"x", 1, D(2005, 1, 1)},
                           {"", 1, D(2005, 1, 1)},
                           {"yyyy", 8000, D(2005, 1, 1)},
                           {"d", 1, D(9999, 12, 31)}}) {
    EXPECT_EQ(ErrorNumber([&] { std::apply(DateAdd, caso); }), 5) << std::get<0>(caso);
  }
}

// Counts the boundaries crossed, not whole intervals elapsed.
TEST(DateDiff, CountsBoundariesCrossed) {
  const std::pair<int64_t, int64_t> casos[] = {
      {DateDiff("yyyy", D(2005, 12, 31), D(2006, 1, 1)), 1},
      {DateDiff("m", D(2005, 1, 31), D(2005, 2, 1)), 1},
      {DateDiff("m", D(2005, 3, 1), D(2004, 12, 31)), -3},
      {DateDiff("q", D(2005, 3, 31), D(2005, 4, 1)), 1},
      {DateDiff("d", D(2005, 8, 2, 23), D(2005, 8, 3, 1)), 1},
      {DateDiff("w", D(2005, 8, 1), D(2005, 8, 14)), 1},
      {DateDiff("ww", D(2005, 8, 6), D(2005, 8, 7)), 1},  // Saturday to Sunday
      {DateDiff("ww", D(2005, 8, 7), D(2005, 8, 13)), 0},
      {DateDiff("h", D(2005, 8, 2, 10, 59), D(2005, 8, 2, 11)), 1},
      {DateDiff("n", D(2005, 8, 2), D(2005, 8, 1, 23, 59, 59)), -1},
      {DateDiff("s", D(1899, 12, 29, 23), D(1899, 12, 30, 1)), 7200}};
  for (size_t i = 0; i < std::size(casos); ++i) EXPECT_EQ(casos[i].first, casos[i].second) << i;
}

// Every day from 1850 to 2150: fields round-trip, consecutive serials are consecutive days and
// weekdays cycle.
TEST(Dates, ConsecutiveSerialsAreConsecutiveCalendarDays) {
  const int64_t first = static_cast<int64_t>(D(1850, 1, 1).serial);
  const int64_t last = static_cast<int64_t>(D(2150, 12, 31).serial);
  DateParts prev = Split(Date{static_cast<double>(first)});
  int prev_weekday = Weekday(Date{static_cast<double>(first)});
  for (int64_t s = first + 1; s <= last; ++s) {
    const Date d{static_cast<double>(s) + (s < 0 ? -0.5 : 0.5)};
    const DateParts p = Split(d);
    ASSERT_EQ(MakeDate(p), d) << s;
    ASSERT_EQ(p.hour, 12) << s;
    const bool next_in_month =
        p.year == prev.year && p.month == prev.month && p.day == prev.day + 1;
    const bool next_month = p.day == 1 && prev.day == DaysInMonth(prev.year, prev.month) &&
                            (p.month == prev.month + 1 ||
                             (p.month == 1 && prev.month == 12 && p.year == prev.year + 1));
    ASSERT_TRUE(next_in_month || next_month) << s;
    ASSERT_EQ(Weekday(d), prev_weekday % 7 + 1) << s;
    prev = p;
    prev_weekday = Weekday(d);
  }
}

}  // namespace
}  // namespace kivmovfrec::vb
