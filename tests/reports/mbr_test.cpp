// Reports of master boot records.

#include "tests/disks/mbr.h"

#include <gtest/gtest.h>

#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

// 440 zero bytes are no boot code: neither a loader section nor the "Unknown" line.
TEST(Mbr, WithoutBootCode) {
  Disk disk;
  PutBootRecord(disk, 0,
                {.diskSignature = 0x1234ABCD, .entries = {{.type = 0x83, .first = 63, .count = 100}}});
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_without_boot_code.txt", disk)));
}

}  // namespace
}  // namespace trovisk::test
