// The FILETIME conversion against a calendar that is counted day by day.

#include "frame/report/filetime.h"

#include <gtest/gtest.h>

namespace trovisk {
namespace {

constexpr u64 kSecond = 10'000'000;
constexpr u64 kDay = 86'400 * kSecond;
constexpr u64 kLargest = ~u64{0} >> 1;

bool IsLeapYear(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

bool IsDate(const SystemTime& time, int year, int month, int day, int dayOfWeek) {
  return time.year == year && time.month == month && time.day == day && time.dayOfWeek == dayOfWeek;
}

bool IsTimeOfDay(const SystemTime& time, int hour, int minute, int second, int milliseconds) {
  return time.hour == hour && time.minute == minute && time.second == second &&
         time.milliseconds == milliseconds;
}

// The first and the last unit of every day, up to the last day of the range.
TEST(FileTime, EveryDayOfTheRange) {
  int year = 1601;
  int month = 1;
  int day = 1;
  int dayOfWeek = 1;  // a Monday
  u64 days = 0;
  for (u64 start = 0; start <= kLargest; start += kDay, ++days) {
    SystemTime first;
    SystemTime last;
    const u64 end = start <= kLargest - kDay ? start + kDay - 1 : kLargest;
    const bool right = FileTimeToSystemTime(start, first) && FileTimeToSystemTime(end, last) &&
                       IsDate(first, year, month, day, dayOfWeek) && IsTimeOfDay(first, 0, 0, 0, 0) &&
                       IsDate(last, year, month, day, dayOfWeek) &&
                       (end == kLargest || IsTimeOfDay(last, 23, 59, 59, 999));
    ASSERT_TRUE(right) << day << "/" << month << "/" << year;
    dayOfWeek = (dayOfWeek + 1) % 7;
    if (++day > DaysInMonth(year, month)) {
      day = 1;
      if (++month > 12) {
        month = 1;
        ++year;
      }
    }
  }
  EXPECT_EQ(days, 10'675'200U);
  EXPECT_EQ(year, 30828);
  EXPECT_EQ(month, 9);
  EXPECT_EQ(day, 15);
}

TEST(FileTime, EverySecondOfADay) {
  constexpr u64 kMidnight = 0x01BF8247EBCC8000;  // 2000-02-29
  int second = 0;
  for (int hour = 0; hour < 24; ++hour) {
    for (int minute = 0; minute < 60; ++minute) {
      for (int inMinute = 0; inMinute < 60; ++inMinute, ++second) {
        SystemTime time;
        ASSERT_TRUE(FileTimeToSystemTime(kMidnight + static_cast<u64>(second) * kSecond, time));
        ASSERT_TRUE(IsDate(time, 2000, 2, 29, 2) && IsTimeOfDay(time, hour, minute, inMinute, 0)) << second;
      }
    }
  }
}

TEST(FileTime, MillisecondsAreCutNotRounded) {
  SystemTime time;
  ASSERT_TRUE(FileTimeToSystemTime(9'999, time));
  EXPECT_EQ(time.milliseconds, 0);
  ASSERT_TRUE(FileTimeToSystemTime(10'000, time));
  EXPECT_EQ(time.milliseconds, 1);
  ASSERT_TRUE(FileTimeToSystemTime(kSecond - 1, time));
  EXPECT_EQ(time.milliseconds, 999);
  EXPECT_EQ(time.second, 0);
}

TEST(FileTime, LargestValue) {
  SystemTime time;
  ASSERT_TRUE(FileTimeToSystemTime(kLargest, time));
  EXPECT_TRUE(IsDate(time, 30828, 9, 14, 4));
  EXPECT_TRUE(IsTimeOfDay(time, 2, 48, 5, 477));
}

// With the top bit set the conversion fails and leaves what was there.
TEST(FileTime, TopBitSetFails) {
  for (const u64 value : {kLargest + 1, kLargest + 2, ~u64{0}}) {
    SystemTime time;
    time.year = 4711;
    EXPECT_FALSE(FileTimeToSystemTime(value, time)) << value;
    EXPECT_EQ(time.year, 4711);
  }
}

}  // namespace
}  // namespace trovisk
