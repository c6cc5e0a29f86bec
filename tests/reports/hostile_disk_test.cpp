// Disks of a kind that is known to make programs hang, fail for want of memory, or say nothing.

#include <gtest/gtest.h>

#include "tests/disks/bitlocker.h"
#include "tests/disks/gpt.h"
#include "tests/disks/mbr.h"
#include "tests/support/expected.h"
#include "tests/support/limits.h"

namespace trovisk::test {
namespace {

constexpr u64 kSectors = 2048;

bool Has(const Outcome& outcome, const std::string& text) {
  return outcome.out.find(text) != std::string::npos;
}

std::string RowsOf(const Outcome& outcome) {
  return outcome.out.substr(outcome.out.find("   -------\t--------\n") + 20);
}

// Whether links count from their own record or from the first one, these two come round: read the one way,
// the second points to itself; read the other way, to the first.
TEST(HostileDisk, ExtendedRecordsThatPointAtEachOther) {
  Disk disk(kSectors);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 63, .count = 900}}});
  PutBootRecord(disk, 63, {.entries = {{}, {.type = 0x05, .first = 10, .count = 9}}});
  PutBootRecord(disk, 73, {.entries = {{}, {.type = 0x05, .first = 0, .count = 9}}});
  const Outcome outcome = RunOnWithinLimits(disk);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(RowsOf(outcome),
            "         0\tMaster Boot Record\n        63\tSupplementary Boot Record\n"
            "        73\tSupplementary Boot Record\n");
}

// The header's own checksum is right; that of the array is whatever the header says.
Outcome RunOnHeader(const GptHeader& header) {
  Disk disk(kSectors);
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, header);
  PutGptEntries(disk, 2, {{.first = 1000, .last = 1100}});
  Outcome outcome = RunOnWithinLimits(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(Has(outcome, "\tStarting LBA          : 1000\n")) << "the entries of the first sector";
  return outcome;
}

std::string Report(u32 count, u32 size, u64 last) {
  return "Number Of Partition Entries : " + std::to_string(count) +
         "\nSize Of A Partition Entry   : " + std::to_string(size) +
         " (bytes)\nFirst Partition Entry LBA   : 2\nLast Partitition Entry LBA  : " + std::to_string(last) +
         "\n";
}

// The array is read as far as there is a disk.
TEST(HostileDisk, GptHeaderWith2To32EntriesLessOne) {
  const Outcome outcome = RunOnHeader({.otherLba = 1, .entryCount = 0xFFFFFFFF, .entriesCrc = 0});
  EXPECT_TRUE(Has(outcome, Report(0xFFFFFFFF, 128, 1073741824)));
  EXPECT_TRUE(Has(outcome, "\n      2047\tGUID Partition Table\n"));
}

TEST(HostileDisk, GptHeaderWithEntriesOfNoBytes) {
  const Outcome outcome = RunOnHeader({.otherLba = 1, .entrySize = 0, .entriesCrc = 0});
  EXPECT_TRUE(Has(outcome, Report(128, 0, 1)));
  EXPECT_EQ(outcome.err, "");
}

TEST(HostileDisk, GptHeaderWithEntriesOf2GiB) {
  const Outcome outcome = RunOnHeader({.otherLba = 1, .entrySize = 0x80000000, .entriesCrc = 0});
  EXPECT_TRUE(Has(outcome, Report(128, 0x80000000, 536870913)));
}

TEST(HostileDisk, GptHeaderWith65536Entries) {
  const Outcome outcome = RunOnHeader({.otherLba = 1, .entryCount = 65536, .entriesCrc = 0});
  EXPECT_TRUE(Has(outcome, Report(65536, 128, 16385)));
}

// Neither checksum keeps the header from being shown as it was found.
TEST(HostileDisk, GptHeaderWithBrokenChecksums) {
  const Outcome outcome = RunOnHeader({.headerCrc = 0xDEADBEEF, .otherLba = 1, .entriesCrc = 0x0BADF00D});
  EXPECT_TRUE(Has(outcome, "CRC32 Checksum              : 0xDEADBEEF\n"));
  EXPECT_TRUE(Has(outcome, "Partition Entry CRC32       : 0x0BADF00D\n"));
  EXPECT_EQ(outcome.err, "");
}

// Its layout is that of FAT32, its content is not.
TEST(HostileDisk, BitLockerIsNotFat) {
  Disk disk(kSectors);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = 63, .count = 900}}});
  PutBitLocker(disk, 63, BitLockerSeven{});
  const Outcome outcome = RunOnWithinLimits(disk);
  EXPECT_TRUE(Has(outcome, "\nReading sector # 63 [Bitlocker Boot sector]\n"));
  EXPECT_TRUE(Has(outcome, "\nWindows 7 Bitlocker Boot Sector\n"));
  EXPECT_FALSE(Has(outcome, "FAT32 Boot Sector\n"));
  EXPECT_EQ(RowsOf(outcome), "         0\tMaster Boot Record\n        63\tNTFS Boot Sector\n");
}

// Nobody says that its sectors have 4096 bytes: the header in the second of them does.
TEST(HostileDisk, ImageWithSectorsOf4096Bytes) {
  Disk disk(kSectors, 4096);
  PutGpt(disk, {{.first = 40, .last = 50}});
  const std::string path = ScratchPath("large-sectors.img");
  disk.Write(path);
  const Outcome outcome = RunProgram(Build::kShipped, {path});
  EXPECT_TRUE(Has(outcome, "\nLast sector on disk is 2047\n"));
  EXPECT_TRUE(Has(outcome, "\nLast Partitition Entry LBA  : 5\n"));
  EXPECT_TRUE(Has(outcome, "\n         1\tPrimary GPT Header\n"));
  EXPECT_EQ(outcome.status, 0);
}

}  // namespace
}  // namespace trovisk::test
