// FILETIME, the time stamp of Windows, as a calendar date in UTC.

#ifndef TROVISK_FRAME_REPORT_FILETIME_H
#define TROVISK_FRAME_REPORT_FILETIME_H

#include "frame/bytes.h"

namespace trovisk {

struct SystemTime {
  u16 year = 0;       // four digits up to 9999, five from then on
  u16 month = 0;      // 1 to 12
  u16 dayOfWeek = 0;  // 0: Sunday
  u16 day = 0;        // 1 to 31
  u16 hour = 0;
  u16 minute = 0;
  u16 second = 0;
  u16 milliseconds = 0;
};

// Converts 100 ns units since 1601-01-01, without a time zone. False, and time unchanged, for a value with
// its top bit set.
bool FileTimeToSystemTime(u64 fileTime, SystemTime& time);

}  // namespace trovisk

#endif
