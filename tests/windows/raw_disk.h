// Runs the Windows executable, unchanged, on a disk that behaves as a raw one (raw_disk_rules.cpp).

#ifndef TROVISK_TESTS_WINDOWS_RAW_DISK_H
#define TROVISK_TESTS_WINDOWS_RAW_DISK_H

#include <string>
#include <vector>

#include "tests/support/program.h"

namespace trovisk::test {

struct RawDiskRun {
  Outcome outcome;    // the build date reads "<date>"
  std::string calls;  // what was asked of the system, one line per call
};

// Runs a program of the Windows build. rules: the words of RAW_DISK besides the log.
RawDiskRun RunUnderRawDiskRules(const std::string& program, const std::vector<std::string>& arguments,
                                const std::string& rules);

// Runs it on a disk; the disk's number reads "<disk>". arguments: first and last sector, as needed; rules:
// the words of RAW_DISK besides the log and the sector size.
RawDiskRun RunOnRawDisk(const Disk& disk, const std::vector<std::string>& arguments = {},
                        const std::string& rules = "", Build build = Build::kShipped);

}  // namespace trovisk::test

#endif
