// Boot sectors and extended boot records that cannot be read, or not be returned to, in either pass.

#include <gtest/gtest.h>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

// A disk with one partition from sector 63 on, whose first sector holds no known volume. A whole-disk run
// reads and seeks back in the sectors 0 and 63; in the printing pass it reads each once more, for the dump.
Disk DiskWithPartition(u8 type) {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = type, .first = 63, .count = 10}}});
  PutBootRecord(disk, 63, {});
  return disk;
}

constexpr char kBootSectorRow[] = "        63\tNTFS Boot Sector\n";

// What the run printed between the dump of sector 0 and the table of contents.
std::string ReportBehindTheMasterBootRecord(const MemoryOutcome& outcome) {
  const std::string lastRow = "\n0x1F0  ";
  const std::size_t row = outcome.out.find(lastRow);
  const std::size_t table = outcome.out.find("\n\tTable Of Contents\n");
  if (row == std::string::npos || table == std::string::npos) return "no such report:\n" + outcome.out;
  const std::size_t first = outcome.out.find("\n\n", row) + 2;
  return outcome.out.substr(first, table - first);
}

TEST(BootSectorFaults, UnreadableInTheLoadingPassIsStillPrinted) {
  const Disk disk = DiskWithPartition(0x07);
  const auto outcome = RunOnMemory({disk, {{.call = Call::kRead, .nth = 2, .error = 5}}});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "Global::Read failed, error 5\nError reading sector #63\n");
  EXPECT_TRUE(SameText(ReportBehindTheMasterBootRecord(outcome),
                       ExpandExpected("Reading sector # 63 [Unknown boot sector]\n{{dump 63}}", disk)));
}

// No header line stands before the failure: the sector has no name before it is read.
TEST(BootSectorFaults, UnreadableInThePrintingPassPrintsNothing) {
  const auto outcome = RunOnMemory({DiskWithPartition(0x07), {{.call = Call::kRead, .nth = 5, .error = 5}}});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "Global::Read failed, error 5\nError reading sector #63\n");
  EXPECT_EQ(ReportBehindTheMasterBootRecord(outcome), "");
  EXPECT_TRUE(outcome.out.ends_with(kBootSectorRow));
}

TEST(BootSectorFaults, SeekBackRefusedCallsNoDecoder) {
  const auto outcome = RunOnMemory({DiskWithPartition(0x07), {{.call = Call::kSeek, .nth = 8, .error = 22}}});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err,
            "Global::Seek failed to seek to sector 63, error 22\nError seeking back to start of sector\n");
  EXPECT_EQ(ReportBehindTheMasterBootRecord(outcome), "");
  EXPECT_TRUE(outcome.out.ends_with(kBootSectorRow));
}

// The header line stands before the failure.
TEST(ExtendedBootRecordFaults, UnreadableInThePrintingPass) {
  const auto outcome = RunOnMemory({DiskWithPartition(0x05), {{.call = Call::kRead, .nth = 5, .error = 5}}});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "Global::Read failed, error 5\nError reading sector\n");
  EXPECT_EQ(ReportBehindTheMasterBootRecord(outcome), "Reading sector # 63 [Supplementary Boot Record]\n");
}

// The report is out by then; its dump is not.
TEST(ExtendedBootRecordFaults, SeekBackRefused) {
  const auto outcome = RunOnMemory({DiskWithPartition(0x05), {{.call = Call::kSeek, .nth = 8, .error = 22}}});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "Global::Seek failed to seek to sector 63, error 22\n");
  EXPECT_TRUE(SameText(ReportBehindTheMasterBootRecord(outcome),
                       "Reading sector # 63 [Supplementary Boot Record]\n\nSupplementary Boot Record\n"
                       "-------------------------\n\nPartition table entries\n\n\tEmpty\n\n\tEmpty\n\n\n\n"
                       "Sector End Mark : 0xAA\n\n"));
}

}  // namespace
}  // namespace trovisk::test
