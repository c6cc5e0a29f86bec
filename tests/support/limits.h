// Runs of the program that have to end soon and in little memory.

#ifndef TROVISK_TESTS_SUPPORT_LIMITS_H
#define TROVISK_TESTS_SUPPORT_LIMITS_H

#include "tests/support/program.h"

namespace trovisk::test {

// RunOn with a limit of processor time, beyond which the program is killed. Fails the test when that happens,
// and when the run took so much memory or more.
Outcome RunOnWithinLimits(const Disk& disk, const std::vector<std::string>& arguments = {},
                          long memoryKiB = 64L * 1024);

}  // namespace trovisk::test

#endif
