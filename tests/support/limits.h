// Runs of the program that have to end soon and in little memory.

#ifndef TROVISK_TESTS_SUPPORT_LIMITS_H
#define TROVISK_TESTS_SUPPORT_LIMITS_H

#include <functional>

#include "tests/support/program.h"

namespace trovisk::test {

// Whether a process's memory can be held to a limit: the sanitizers' own is far beyond any.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kMemoryCounts = false;
#elif defined(__has_feature)
inline constexpr bool kMemoryCounts = !__has_feature(address_sanitizer);
#else
inline constexpr bool kMemoryCounts = true;
#endif

// The memory that no run takes, whatever is on the disk.
inline constexpr long kMemoryKiB = 32L * 1024;

// A run in a child process with a limit of processor time, beyond which it is killed. Fails the test when
// that happens, and when the run took so much memory or more.
Outcome WithinLimits(const std::function<Outcome()>& run);

// The same for RunOn.
Outcome RunOnWithinLimits(const Disk& disk, const std::vector<std::string>& arguments = {});

}  // namespace trovisk::test

#endif
