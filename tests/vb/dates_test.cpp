#include <gtest/gtest.h>

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
  EXPECT_EQ(D(2005, 8, 2).serial, 38566);
  EXPECT_EQ(D(2005, 8, 2, 18).serial, 38566.75);
  ExpectParts(Date{38566.75}, 2005, 8, 2, 18);
  ExpectParts(Date{2958465}, 9999, 12, 31);
  ExpectParts(Date{-657434}, 100, 1, 1);
}

TEST(Dates, TimeBeforeTheEpochCountsForwardFromTheDay) {
  // -1.25 is 29/12/1899 at 06:00, not 18:00.
  ExpectParts(Date{-1.25}, 1899, 12, 29, 6);
  EXPECT_EQ(D(1899, 12, 29, 6).serial, -1.25);
  ExpectParts(Date{-0.5}, 1899, 12, 30, 12);
  for (const Date d : {D(1800, 3, 1, 13, 45, 10), D(1899, 12, 29, 23, 59, 59), D(100, 1, 1, 1)}) {
    const DateParts p = Split(d);
    EXPECT_EQ(MakeDate(p), d);
  }
}

TEST(Dates, SecondsRoundToTheNearestAndCarryIntoTheNextDay) {
  ExpectParts(Date{38566 + 10.0 / 24 + 57.0 / 1440 + 58.4 / 86400}, 2005, 8, 2, 10, 57, 58);
  ExpectParts(Date{38566 + 10.0 / 24 + 57.0 / 1440 + 58.6 / 86400}, 2005, 8, 2, 10, 57, 59);
  ExpectParts(Date{38566.9999999}, 2005, 8, 3);
}

TEST(Dates, OutOfRangeAndInvalidFields) {
  EXPECT_EQ(ErrorNumber([] { Split(Date{3e6}); }), 6);
  EXPECT_EQ(ErrorNumber([] { Split(Date{-700000}); }), 6);
  EXPECT_EQ(ErrorNumber([] { MakeDate(DateParts{2023, 2, 29}); }), 5);
  EXPECT_EQ(ErrorNumber([] { MakeDate(DateParts{2024, 13, 1}); }), 5);
  EXPECT_EQ(ErrorNumber([] { MakeDate(DateParts{2024, 1, 1, 24}); }), 5);
  EXPECT_EQ(ErrorNumber([] { MakeDate(DateParts{99, 1, 1}); }), 5);
  EXPECT_EQ(ErrorNumber([] { MakeDate(DateParts{2024, 2, 29}); }), 0);
}

TEST(DateSerial, NormalisesOverflowAndMapsTwoDigitYears) {
  EXPECT_EQ(DateSerial(2000, 14, 2), D(2001, 2, 2));
  EXPECT_EQ(DateSerial(2005, 3, 0), D(2005, 2, 28));
  EXPECT_EQ(DateSerial(2008, 3, 0), D(2008, 2, 29));
  EXPECT_EQ(DateSerial(2005, 0, 1), D(2004, 12, 1));
  EXPECT_EQ(DateSerial(2005, -13, 1), D(2003, 11, 1));
  EXPECT_EQ(DateSerial(2005, 1, 365), D(2005, 12, 31));
  EXPECT_EQ(DateSerial(2005, 1, -1), D(2004, 12, 30));
  EXPECT_EQ(DateSerial(5, 8, 2), D(2005, 8, 2));
  EXPECT_EQ(DateSerial(29, 1, 1), D(2029, 1, 1));
  EXPECT_EQ(DateSerial(30, 1, 1), D(1930, 1, 1));
  EXPECT_EQ(DateSerial(99, 12, 31), D(1999, 12, 31));
  EXPECT_EQ(DateSerial(1850, 6, 15), D(1850, 6, 15));
  EXPECT_EQ(ErrorNumber([] { DateSerial(10000, 1, 1); }), 5);
  EXPECT_EQ(ErrorNumber([] { DateSerial(2000, 2147483647, 1); }), 5);
}

TEST(Dates, FieldsWeekdayAndMonthLength) {
  const Date d = D(2005, 8, 2, 10, 57, 58);
  EXPECT_EQ(Year(d) * 10000 + Month(d) * 100 + Day(d), 20050802);
  EXPECT_EQ(Hour(d) * 10000 + Minute(d) * 100 + Second(d), 105758);
  EXPECT_EQ(Weekday(d), 3);                   // Tuesday
  EXPECT_EQ(Weekday(D(2005, 8, 7)), 1);       // Sunday
  EXPECT_EQ(Weekday(D(2005, 8, 6)), 7);       // Saturday
  EXPECT_EQ(Weekday(D(1899, 12, 29, 6)), 6);  // Friday, before the epoch
  EXPECT_EQ(DateOnly(d), D(2005, 8, 2));
  EXPECT_EQ(DateOnly(Date{-1.25}), D(1899, 12, 29));
  EXPECT_EQ(DaysInMonth(2008, 2), 29);
  EXPECT_EQ(DaysInMonth(1900, 2), 28);
  EXPECT_EQ(DaysInMonth(2000, 2), 29);
  EXPECT_EQ(DaysInMonth(2005, 4), 30);
  EXPECT_EQ(ErrorNumber([] { DaysInMonth(2005, 13); }), 5);
  EXPECT_DOUBLE_EQ(TimeFraction(18, 0, 0), 0.75);
}

TEST(DateAdd, MonthAndYearStepsClampToMonthEnd) {
  EXPECT_EQ(DateAdd("m", -1, D(2005, 3, 31)), D(2005, 2, 28));
  EXPECT_EQ(DateAdd("m", 1, D(2008, 1, 31)), D(2008, 2, 29));
  EXPECT_EQ(DateAdd("yyyy", 1, D(2008, 2, 29)), D(2009, 2, 28));
  EXPECT_EQ(DateAdd("YYYY", -1, D(2005, 8, 2)), D(2004, 8, 2));
  EXPECT_EQ(DateAdd("q", 1, D(2005, 11, 30)), D(2006, 2, 28));
  EXPECT_EQ(DateAdd("m", -13, D(2005, 1, 15, 10, 30)), D(2003, 12, 15, 10, 30));
  EXPECT_EQ(DateAdd("m", 1.9, D(2005, 1, 15)), D(2005, 2, 15));  // steps are truncated
}

TEST(DateAdd, DaysWeeksAndTime) {
  EXPECT_EQ(DateAdd("d", 1, D(2005, 12, 31)), D(2006, 1, 1));
  EXPECT_EQ(DateAdd("y", -1, D(2005, 3, 1)), D(2005, 2, 28));
  EXPECT_EQ(DateAdd("w", 3, D(2005, 8, 2)), D(2005, 8, 5));
  EXPECT_EQ(DateAdd("ww", 2, D(2005, 8, 2, 9)), D(2005, 8, 16, 9));
  EXPECT_EQ(DateAdd("h", 20, D(2005, 8, 2, 10)), D(2005, 8, 3, 6));
  EXPECT_EQ(DateAdd("n", -61, D(2005, 8, 2)), D(2005, 8, 1, 22, 59));
  EXPECT_EQ(DateAdd("s", 86401, D(2005, 8, 2)), D(2005, 8, 3, 0, 0, 1));
  // Across the epoch, where the layout of the fraction changes.
  EXPECT_EQ(DateAdd("h", -6, D(1899, 12, 30, 0)), D(1899, 12, 29, 18));
  EXPECT_EQ(DateAdd("h", 30, D(1899, 12, 29, 0)), D(1899, 12, 30, 6));
}

TEST(DateAdd, RefusesUnknownIntervalsAndLeavingTheCalendar) {
  EXPECT_EQ(ErrorNumber([] { DateAdd("x", 1, D(2005, 1, 1)); }), 5);
  EXPECT_EQ(ErrorNumber([] { DateAdd("", 1, D(2005, 1, 1)); }), 5);
  EXPECT_EQ(ErrorNumber([] { DateAdd("yyyy", 8000, D(2005, 1, 1)); }), 5);
  EXPECT_EQ(ErrorNumber([] { DateAdd("d", 1, D(9999, 12, 31)); }), 5);
}

TEST(DateDiff, CountsBoundariesCrossed) {
  EXPECT_EQ(DateDiff("yyyy", D(2005, 12, 31), D(2006, 1, 1)), 1);
  EXPECT_EQ(DateDiff("m", D(2005, 1, 31), D(2005, 2, 1)), 1);
  EXPECT_EQ(DateDiff("m", D(2005, 3, 1), D(2004, 12, 31)), -3);
  EXPECT_EQ(DateDiff("q", D(2005, 3, 31), D(2005, 4, 1)), 1);
  EXPECT_EQ(DateDiff("d", D(2005, 8, 2, 23), D(2005, 8, 3, 1)), 1);
  EXPECT_EQ(DateDiff("w", D(2005, 8, 1), D(2005, 8, 14)), 1);
  EXPECT_EQ(DateDiff("ww", D(2005, 8, 6), D(2005, 8, 7)), 1);  // Saturday to Sunday
  EXPECT_EQ(DateDiff("ww", D(2005, 8, 7), D(2005, 8, 13)), 0);
  EXPECT_EQ(DateDiff("h", D(2005, 8, 2, 10, 59), D(2005, 8, 2, 11)), 1);
  EXPECT_EQ(DateDiff("n", D(2005, 8, 2), D(2005, 8, 1, 23, 59, 59)), -1);
  EXPECT_EQ(DateDiff("s", D(1899, 12, 29, 23), D(1899, 12, 30, 1)), 7200);
}

}  // namespace
}  // namespace kivmovfrec::vb

namespace kivmovfrec::vb {
namespace {

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
