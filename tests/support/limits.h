// Runs of the program that have to end soon and in little memory.

#ifndef TROVISK_TESTS_SUPPORT_LIMITS_H
#define TROVISK_TESTS_SUPPORT_LIMITS_H

#include "tests/support/program.h"

namespace trovisk::test {

// RunOn with a limit of processor time, beyond which the program is killed. Fails the test when that happens,
// and when any run so far took 64 MiB of memory or more.
Outcome RunOnWithinLimits(const Disk& disk, const std::vector<std::string>& arguments = {});

}  // namespace trovisk::test

#endif
