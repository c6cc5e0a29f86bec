// The dumps of sectors that are named, not decoded: those that an NTFS volume points to.

#include <gtest/gtest.h>

#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 63;
constexpr u64 kBootCode2 = kVolume + 2;  // "2 of 8"
constexpr u64 kMftMirror = kVolume + u64{2} * 8;
constexpr u64 kMft = kVolume + u64{4} * 8;
constexpr char kColumns[] = "\n       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n\n";

Disk NtfsDisk(u64 sectors = 4096, u32 sectorSize = 512) {
  Disk disk(sectors, sectorSize);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kVolume, .count = 2000}}});
  PutNtfsBootSector(disk, kVolume, {});
  PutNtfsBootCode(disk, kVolume + 1, {});
  return disk;
}

TEST(LabelledRawDump, HasTwoHeaderLines) {
  Disk disk = NtfsDisk();
  disk.At(kMft).Text(0, "FILE0");
  EXPECT_TRUE(SameText(ReportOf(disk, kMft), ExpandExpected(R"(Reading sector # 95 [MFT]
Reading sector # 95 [as a raw sector]
{{dump 95}}
)",
                                                            disk)));
}

TEST(LabelledRawDump, OfZeros) {
  EXPECT_EQ(ReportOf(NtfsDisk(), kMftMirror),
            "Reading sector # 79 [MFTMirr]\nReading sector # 79 [as a raw sector]\n... empty ...\n");
}

// All of a larger sector.
TEST(LabelledRawDump, SectorOf4096Bytes) {
  Disk disk = NtfsDisk(4096, 4096);
  disk.At(kMft).U8(4095, 0x2E);
  EXPECT_TRUE(SameText(ReportOf(disk, kMft), ExpandExpected(R"(Reading sector # 95 [MFT]
Reading sector # 95 [as a raw sector]
{{dump 95}}
)",
                                                            disk)));
}

// In the loading pass nothing is read: a sector beyond the end of the disk stops nothing.
TEST(LabelledRawDump, BeyondTheEndOfTheDiskIsNotRead) {
  const Outcome outcome = RunOn(NtfsDisk(90), {"89"});
  EXPECT_EQ(outcome.err, "");
  EXPECT_TRUE(outcome.out.ends_with("Reading sector # 89 [Raw Sector]\n... empty ...\n"));
}

TEST(Sector512Dump, ListsZerosLikeAnyOtherBytes) {
  const Disk disk = NtfsDisk();
  std::string expected = std::string("Reading sector # 65 [NTFS boot sector boot code 2 of 8]\n") + kColumns;
  for (unsigned offset = 0; offset < 512; offset += 16) {
    char row[96];
    std::snprintf(row, sizeof row,
                  "0x%03X  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00     ................\n", offset);
    expected += row;
  }
  EXPECT_TRUE(SameText(ReportOf(disk, kBootCode2), expected + "\n"));
}

TEST(Sector512Dump, ListsBytes) {
  Disk disk = NtfsDisk();
  for (std::size_t i = 0; i < 512; ++i)
    disk.At(kBootCode2 + 6).U8(i, i % 251);
  EXPECT_TRUE(SameText(
      ReportOf(disk, kBootCode2 + 6),
      ExpandExpected("Reading sector # 71 [NTFS boot sector boot code 8 of 8]\n{{dump 71}}\n", disk)));
}

// 512 bytes of a larger sector, whatever stands behind them.
TEST(Sector512Dump, SectorOf1024Bytes) {
  Disk disk = NtfsDisk(4096, 1024);
  disk.At(kBootCode2).Text(0, "shown").Text(512, "not shown");
  EXPECT_TRUE(SameText(ReportOf(disk, kBootCode2),
                       std::string("Reading sector # 65 [NTFS boot sector boot code 2 of 8]\n") + kColumns +
                           ExpandExpected("{{rows 65 0 512}}\n\n", disk)));
}

// Sectors of it that are not asked for are read and say nothing.
TEST(Sector512Dump, PassedOverSilently) {
  Disk disk = NtfsDisk();
  EXPECT_EQ(ReportOf(disk, kBootCode2 + 7), "Reading sector # 72 [Raw Sector]\n... empty ...\n");
}

}  // namespace
}  // namespace trovisk::test
