#include "frame/report/filetime.h"

#include <chrono>

namespace trovisk {

bool FileTimeToSystemTime(u64 fileTime, SystemTime& time) {
  using std::chrono::days;
  using std::chrono::January;
  using std::chrono::sys_days;
  using std::chrono::weekday;
  using std::chrono::year;
  using std::chrono::year_month_day;

  constexpr u64 kTopBit = u64{1} << 63;
  constexpr u64 kUnitsPerMillisecond = 10'000;
  constexpr u64 kMillisecondsPerDay = 86'400'000;
  constexpr sys_days kFirstDay = year(1601) / January / 1;
  if (fileTime >= kTopBit) return false;

  const u64 milliseconds = fileTime / kUnitsPerMillisecond;
  const auto inDay = static_cast<u32>(milliseconds % kMillisecondsPerDay);
  const sys_days day = kFirstDay + days(static_cast<int>(milliseconds / kMillisecondsPerDay));
  const year_month_day date(day);

  time.year = static_cast<u16>(static_cast<int>(date.year()));
  time.month = static_cast<u16>(static_cast<unsigned>(date.month()));
  time.dayOfWeek = static_cast<u16>(weekday(day).c_encoding());
  time.day = static_cast<u16>(static_cast<unsigned>(date.day()));
  time.hour = static_cast<u16>(inDay / 3'600'000);
  time.minute = static_cast<u16>(inDay / 60'000 % 60);
  time.second = static_cast<u16>(inDay / 1'000 % 60);
  time.milliseconds = static_cast<u16>(inDay % 1'000);
  return true;
}

}  // namespace trovisk
