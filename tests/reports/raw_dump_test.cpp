// The raw dump of a sector that no decoder claims.

#include <gtest/gtest.h>

#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr char kColumns[] = "\n       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n\n";
constexpr u64 kSector = 100;

std::string HeaderOf(u64 sector) {
  return "Reading sector # " + std::to_string(sector) + " [Raw Sector]\n";
}

// Sixteen bytes of zero at an offset that is written as it stands here.
std::string ZeroRow(const std::string& offset) {
  return "0x" + offset + "  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00     ................\n";
}

std::string Offset(unsigned offset) {
  char text[16];
  std::snprintf(text, sizeof text, "%03X", offset);
  return text;
}

// Each byte value twice: which are shown as characters, which as a point.
TEST(RawDump, EveryByte) {
  Disk disk;
  for (std::size_t i = 0; i < 512; ++i)
    disk.At(kSector).U8(i, i % 256);
  EXPECT_TRUE(SameText(ReportOf(disk, kSector), Expected("raw_dump_every_byte.txt", disk)));
}

TEST(RawDump, FirstRowOfABootSector) {
  Disk disk;
  disk.At(kSector).Bytes(0, {0xEB, 0x52, 0x90}).Text(3, "NTFS    ").Bytes(11, {0x00, 0x02, 0x08});
  EXPECT_TRUE(
      ReportOf(disk, kSector)
          .starts_with(HeaderOf(kSector) + kColumns +
                       "0x000  EB 52 90 4E 54 46 53 20 20 20 20 00 02 08 00 00     .R.NTFS    .....\n"));
}

TEST(RawDump, AllZeroSectorIsEmpty) {
  for (const u32 sectorSize : {8U, 24U, 512U, 640U, 4096U}) {
    EXPECT_EQ(ReportOf(Disk(4096, sectorSize), kSector), HeaderOf(kSector) + "... empty ...\n") << sectorSize;
  }
}

TEST(RawDump, LastByteAloneShowsTheWholeSector) {
  Disk disk;
  disk.At(kSector).U8(511, 0x41);
  std::string expected = HeaderOf(kSector) + kColumns;
  for (unsigned offset = 0; offset < 0x1F0; offset += 16)
    expected += ZeroRow(Offset(offset));
  expected += "0x1F0  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 41     ...............A\n\n";
  EXPECT_TRUE(SameText(ReportOf(disk, kSector), expected));
}

TEST(RawDump, SectorOf4096Bytes) {
  Disk disk(4096, 4096);
  disk.At(kSector).U8(4095, 0x7F);
  std::string expected = HeaderOf(kSector) + kColumns;
  for (unsigned offset = 0; offset < 0xFF0; offset += 16)
    expected += ZeroRow(Offset(offset));
  expected += "0xFF0  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 7F     ................\n\n";
  EXPECT_TRUE(SameText(ReportOf(disk, kSector), expected));
}

// Offsets grow beyond three digits where they have to.
TEST(RawDump, SectorOf8192Bytes) {
  Disk disk(200, 8192);
  disk.At(kSector).U8(0x1000, ' ');
  std::string expected = HeaderOf(kSector) + kColumns;
  for (unsigned offset = 0; offset < 0x2000; offset += 16) {
    expected += offset == 0x1000
                    ? "0x1000  20 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00      ...............\n"
                    : ZeroRow(Offset(offset));
  }
  EXPECT_TRUE(SameText(ReportOf(disk, kSector), expected + "\n"));
}

// Not a power of two, but whole rows.
TEST(RawDump, SectorOf640Bytes) {
  Disk disk(4096, 640);
  disk.At(kSector).U8(639, 1);
  std::string expected = HeaderOf(kSector) + kColumns;
  for (unsigned offset = 0; offset < 0x270; offset += 16)
    expected += ZeroRow(Offset(offset));
  expected += "0x270  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01     ................\n\n";
  EXPECT_TRUE(SameText(ReportOf(disk, kSector), expected));
}

// Bytes behind the last whole row are not shown, but make the sector one that is not empty.
TEST(RawDump, SectorOf24Bytes) {
  Disk disk(4096, 24);
  disk.At(kSector).U8(23, 1);
  EXPECT_TRUE(SameText(ReportOf(disk, kSector), HeaderOf(kSector) + kColumns + ZeroRow("000") + "\n"));
}

TEST(RawDump, SectorOf16BytesHasOneRow) {
  Disk disk(4096, 16);
  disk.At(kSector).Text(0, "0123456789abcdef");
  EXPECT_TRUE(
      SameText(ReportOf(disk, kSector),
               HeaderOf(kSector) + kColumns +
                   "0x000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66     0123456789abcdef\n\n"));
}

TEST(RawDump, SectorOfLessThanARowHasTheHeadingOnly) {
  for (const u32 sectorSize : {1U, 8U, 15U}) {
    Disk disk(4096, sectorSize);
    // Beyond the 512 bytes that are read as a master boot record.
    disk.At(1000).U8(sectorSize - 1, 1);
    EXPECT_TRUE(SameText(ReportOf(disk, 1000), HeaderOf(1000) + kColumns + "\n")) << sectorSize;
  }
}

// One dump behind the other, with nothing between; the first field in capitals changes none of them.
TEST(RawDump, Range) {
  Disk disk;
  disk.At(101).U8(0xA0, 0xAB);
  disk.At(103).U8(0xA0, 0xAB);
  const Outcome outcome = RunOn(disk, {"100", "103"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sectors [ 100 - 103 ]") +
                                        ExpandExpected(R"(Reading sector # 100 [Raw Sector]
... empty ...
Reading sector # 101 [Raw Sector]
{{dump 101}}
Reading sector # 102 [Raw Sector]
... empty ...
Reading sector # 103 [Raw Sector]
{{dump 103}}
)",
                                                       disk)));
}

}  // namespace
}  // namespace trovisk::test
