// The FILETIME conversion against Windows' own, over its whole range: the first and the last unit of every
// day and one between them, and values that have no date. A program of its own, which runs on Windows only;
// status 0 when all agree.

#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <iostream>
#include <random>

#include "frame/report/filetime.h"

namespace {

using trovisk::u64;

bool Agree(u64 value) {
  const FILETIME fileTime = {static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)};
  SYSTEMTIME theirs = {};
  trovisk::SystemTime ours;
  const bool theyConvert = ::FileTimeToSystemTime(&fileTime, &theirs) != 0;
  if (trovisk::FileTimeToSystemTime(value, ours) != theyConvert) return false;
  return !theyConvert ||
         (ours.year == theirs.wYear && ours.month == theirs.wMonth && ours.dayOfWeek == theirs.wDayOfWeek &&
          ours.day == theirs.wDay && ours.hour == theirs.wHour && ours.minute == theirs.wMinute &&
          ours.second == theirs.wSecond && ours.milliseconds == theirs.wMilliseconds);
}

}  // namespace

int main() {
  constexpr u64 kDay = u64{86'400} * 10'000'000;
  constexpr u64 kLargest = ~u64{0} >> 1;
  std::mt19937_64 random(1601);
  u64 different = 0;
  const auto check = [&](u64 value) {
    if (Agree(value)) return;
    if (different++ < 10) std::cout << "differs from the system's: " << value << '\n';
  };
  for (u64 start = 0; start <= kLargest - kDay; start += kDay) {
    check(start);
    check(start + random() % kDay);
    check(start + kDay - 1);
  }
  for (const u64 value : {u64{1}, kLargest - 1, kLargest, kLargest + 1, ~u64{0}})
    check(value);
  std::cout << different << " values differ\n";
  return different == 0 ? 0 : 1;
}
