// Reports of extended boot records, and the chains that they form.

#include <gtest/gtest.h>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

// A master boot record with one extended partition from sector 100 on.
Disk DiskWithExtendedPartition(u32 sectorSize = 512) {
  Disk disk(4096, sectorSize);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 100, .count = 3000}}});
  return disk;
}

constexpr char kTwoRows[] = "         0\tMaster Boot Record\n       100\tSupplementary Boot Record\n";

// Entries 3 and 4, the boot code area and the disk signature are no part of the record, and of the end mark
// one byte is shown.
TEST(ExtendedBootRecord, ShowsTwoEntriesAndOneByteOfTheEndMark) {
  for (const u32 sectorSize : {512U, 4096U}) {
    Disk disk = DiskWithExtendedPartition(sectorSize);
    PutBootRecord(disk, 100,
                  {.diskSignature = 0x12345678,
                   .entries = {{.bootIndicator = 0x80,
                                .startHead = 1,
                                .startSector = 0x41,
                                .startCylinder = 2,
                                .type = 0x07,
                                .endHead = 254,
                                .endSector = 0xBF,
                                .endCylinder = 0xFE,
                                .first = 63,
                                .count = 937},
                               {.type = 0x05, .first = 1000, .count = 0xFFFFFFFF},
                               {.type = 0x0C, .first = 5, .count = 1},
                               {.type = 0xEE, .first = 6, .count = 1}},
                   .endMark = 0xCB77})
        .U8(0x000, 0xFA);
    EXPECT_TRUE(SameText(ReportOf(disk, 100), Expected("extended_boot_record.txt", disk)));
    EXPECT_EQ(TocOf(disk), std::string(kTwoRows) +
                               "       163\tNTFS Boot Sector\n"
                               "      1100\tSupplementary Boot Record\n");
  }
}

TEST(ExtendedBootRecord, OfZerosHasTwoEmptyEntries) {
  const Disk disk = DiskWithExtendedPartition();
  EXPECT_TRUE(SameText(ReportOf(disk, 100),
                       "Reading sector # 100 [Supplementary Boot Record]\n\nSupplementary Boot Record\n"
                       "-------------------------\n\nPartition table entries\n\n\tEmpty\n\n\tEmpty\n\n\n\n"
                       "Sector End Mark : 0x00\n\nReading sector # 100 [as a raw sector]\n... empty ...\n"));
}

TEST(ExtendedBootRecord, EmptySecondEntryEndsTheChain) {
  Disk disk = DiskWithExtendedPartition();
  PutBootRecord(disk, 100, {.entries = {{.type = 0x07, .first = 63, .count = 937}}});
  EXPECT_EQ(TocOf(disk), std::string(kTwoRows) + "       163\tNTFS Boot Sector\n");
}

// Every link counts from its own record: 100, 100 + 1000, 1100 + 500. By the convention that counts from the
// outermost record the third one would stand in sector 600.
TEST(ExtendedBootRecord, LinksCountFromTheirOwnRecord) {
  Disk disk = DiskWithExtendedPartition();
  PutBootRecord(disk, 100, {.entries = {{.type = 0x07, .first = 1}, {.type = 0x05, .first = 1000}}});
  PutBootRecord(disk, 1100, {.entries = {{.type = 0x07, .first = 2}, {.type = 0x0F, .first = 500}}});
  PutBootRecord(disk, 1600, {.entries = {{.type = 0x07, .first = 3}}});
  PutBootRecord(disk, 600, {.entries = {{.type = 0x07, .first = 4}}});
  EXPECT_EQ(TocOf(disk), std::string(kTwoRows) +
                             "       101\tNTFS Boot Sector\n"
                             "      1100\tSupplementary Boot Record\n"
                             "      1102\tNTFS Boot Sector\n"
                             "      1600\tSupplementary Boot Record\n"
                             "      1603\tNTFS Boot Sector\n");
}

// A link may stand in either entry, and a record in one of the master boot record's other slots.
TEST(ExtendedBootRecord, LinkInTheFirstEntryIsFollowedToo) {
  Disk disk = DiskWithExtendedPartition();
  PutBootRecord(disk, 100, {.entries = {{.type = 0x0F, .first = 10}, {.type = 0x05, .first = 20}}});
  PutBootRecord(disk, 110, {.entries = {{}, {.type = 0x07, .first = 1}}});
  EXPECT_EQ(TocOf(disk), std::string(kTwoRows) +
                             "       110\tSupplementary Boot Record\n"
                             "       111\tNTFS Boot Sector\n"
                             "       120\tSupplementary Boot Record\n");
}

// A record that links to itself, and two that link to the same sector: each sector is one row and loaded
// once.
TEST(ExtendedBootRecord, LoopEndsAtTheFirstRegistration) {
  Disk disk = DiskWithExtendedPartition();
  PutBootRecord(disk, 100, {.entries = {{.type = 0x05, .first = 50}, {.type = 0x05, .first = 100}}});
  PutBootRecord(disk, 150, {.entries = {{.type = 0x05, .first = 0}, {.type = 0x05, .first = 50}}});
  PutBootRecord(disk, 200, {.entries = {{.type = 0x05, .first = 0}, {.type = 0x0F, .first = 0}}});
  EXPECT_EQ(TocOf(disk), std::string(kTwoRows) +
                             "       150\tSupplementary Boot Record\n"
                             "       200\tSupplementary Boot Record\n");
}

// The sector is the other partition's by its first registration, and so no record.
TEST(ExtendedBootRecord, LinkToARegisteredSectorIsNotFollowed) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 100}, {.type = 0x07, .first = 300}}});
  PutBootRecord(disk, 100, {.entries = {{}, {.type = 0x05, .first = 200}}});
  PutBootRecord(disk, 300, {.entries = {{.type = 0x07, .first = 1}}});
  EXPECT_EQ(TocOf(disk), std::string(kTwoRows) + "       300\tNTFS Boot Sector\n");
}

// Only the last sector's number wraps in 32 bits; where the partition stands does not.
TEST(ExtendedBootRecord, SectorIsA64BitSum) {
  Disk disk = DiskWithExtendedPartition();
  PutBootRecord(disk, 100, {.entries = {{.type = 0x07, .first = 0xFFFFFFFF, .count = 2}}});
  EXPECT_NE(ReportOf(disk, 100).find("\tPartition Sectors [ 4294967295 - 0 ]\n"), std::string::npos);
  EXPECT_EQ(TocOf(disk), std::string(kTwoRows) + "4294967395\tNTFS Boot Sector\n");
}

// The record beyond the end of the disk ends the loading pass, so the partition behind it is not loaded; what
// was registered stays. The printing pass ends with the disk.
TEST(ExtendedBootRecord, ChainCutByAnUnreadableRecord) {
  Disk disk = DiskWithExtendedPartition();
  PutBootRecord(disk, 100, {.entries = {{.type = 0x07, .first = 1}, {.type = 0x05, .first = 3996}}});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(SameText(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n"));
  EXPECT_TRUE(
      outcome.out.ends_with("         0\tMaster Boot Record\n"
                            "       100\tSupplementary Boot Record\n"
                            "       101\tNTFS Boot Sector\n"
                            "      4096\tSupplementary Boot Record\n"));
}

// A dynamic or protective type in an extended record registers neither a private nor a GPT header.
TEST(ExtendedBootRecord, DiskWideTypesMeanNothingHere) {
  Disk disk = DiskWithExtendedPartition();
  PutBootRecord(disk, 100,
                {.entries = {{.bootIndicator = 1, .type = 0x42, .first = 7}, {.type = 0xEE, .first = 1}}});
  EXPECT_EQ(TocOf(disk), std::string(kTwoRows) + "       107\tDynamic Boot Sector\n");
}

}  // namespace
}  // namespace trovisk::test
