// Runs of the program that have to end soon and in little memory.

#ifndef TROVISK_TESTS_SUPPORT_LIMITS_H
#define TROVISK_TESTS_SUPPORT_LIMITS_H

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

// RunOn with a limit of processor time, beyond which the program is killed. Fails the test when that happens,
// and when the run took so much memory or more.
Outcome RunOnWithinLimits(const Disk& disk, const std::vector<std::string>& arguments = {},
                          long memoryKiB = 64L * 1024);

}  // namespace trovisk::test

#endif
