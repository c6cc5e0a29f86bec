// Reports of exFAT boot sectors.

#include "tests/disks/exfat.h"

#include <gtest/gtest.h>

#include "tests/disks/mbr.h"
#include "tests/disks/refs.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kBoot = 2048;

// A disk with one volume.
Disk DiskWith(const ExFatBootSector& boot) {
  Disk disk(16384);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kBoot, .count = 12288}}});
  PutExFatBootSector(disk, kBoot, boot);
  return disk;
}

std::string FlagLines(u16 flags) {
  return Section(ReportOf(DiskWith({.flags = flags}), kBoot), "Volume Flags\n", "\nBytes / Sector");
}

std::string ShiftLines(u8 sectorShift, u8 clusterShift) {
  const ExFatBootSector boot = {.sectorShift = sectorShift, .clusterShift = clusterShift};
  return Section(ReportOf(DiskWith(boot), kBoot), "Bytes / Sector", "Number of FATs");
}

std::string MessageLines(const Disk& disk) {
  return Section(ReportOf(disk, kBoot), "Error Message#1", "\nSector End Mark");
}

// The message area holds the letters a to z over and over without a NUL, up to the offsets.
std::string MessagesInText(u8 first, u8 second, u8 third) {
  Disk disk = DiskWith({.messageOffsets = {first, second, third}});
  for (std::size_t i = 0x16C; i < 0x1FB; ++i)
    disk.At(kBoot).U8(i, 'a' + (i - 0x16C) % 26);
  return MessageLines(disk);
}

TEST(ExFat, WholeReport) {
  const Disk disk = DiskWith({});
  EXPECT_TRUE(SameText(ReportOf(disk, kBoot), Expected("exfat_boot_sector.txt", disk)));
}

// Only 512 bytes are the boot sector, the raw dump is the whole sector.
TEST(ExFat, WholeReportOnSectorsOf4096Bytes) {
  Disk disk(16384, 4096);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kBoot, .count = 12288}}});
  PutExFatBootSector(disk, kBoot);
  disk.At(kBoot).Text(4080, "the sector's end");
  EXPECT_TRUE(SameText(ReportOf(disk, kBoot), Expected("exfat_boot_sector.txt", disk)));
}

// Fields at their largest, each in a number as wide as itself.
TEST(ExFat, LargestFieldValues) {
  const ExFatBootSector boot = {.partitionOffset = ~u64{0},
                                .volumeLength = ~u64{0},
                                .fatOffset = ~u32{0},
                                .fatLength = ~u32{0},
                                .clusterHeapOffset = ~u32{0},
                                .clusterCount = ~u32{0},
                                .rootCluster = ~u32{0},
                                .serialNumber = ~u32{0},
                                .revisionMinor = 255,
                                .revisionMajor = 255,
                                .fatCount = 255,
                                .driveSelect = 255,
                                .percentInUse = 255};
  const std::string report = ReportOf(DiskWith(boot), kBoot);
  EXPECT_TRUE(SameText(Section(report, "Partition Offset", "\nVolume Flags"),
                       "Partition Offset          : 18446744073709551615 (sectors)\n"
                       "Volume Length             : 18446744073709551615 (sectors)\n"
                       "FAT Offset                : 4294967295 (sectors)\n"
                       "FAT Length                : 4294967295 (sectors)\n"
                       "Cluster Heap Offset       : 4294967295 (sectors)\n"
                       "Cluster Count             : 4294967295\n"
                       "Root Directory Cluster    : 4294967295\n"
                       "Volume Serial Number      : FFFFFFFF\n"
                       "File System Revision      : 255.255\n"));
  EXPECT_TRUE(SameText(Section(report, "Number of FATs", "\n\tWindows"),
                       "Number of FATs            : 255\n"
                       "Drive Select              : 0xFF (Extended INT 13H drive number)\n"
                       "Percent In Use            : 255\n"));
}

TEST(ExFat, OemNameEndsAtItsNul) {
  Disk disk = DiskWith({});
  disk.At(kBoot).U8(0x06, 0x00);
  EXPECT_EQ(Section(ReportOf(disk, kBoot), "OEM Name", "\n\nPartition"),
            "OEM Name                      : [ EXF ]");
}

TEST(ExFat, DirtyVolume) {
  EXPECT_EQ(FlagLines(0x0002), "Volume Flags\n\tActive FAT 0\n\tVolume Dirty\n\tNo Media Failure\n");
}

TEST(ExFat, EveryFlagSet) {
  EXPECT_EQ(FlagLines(0x000F),
            "Volume Flags\n\tActive FAT 1\n\tVolume Dirty\n\tMedia Failure\n\tClear To Zero\n");
}

// Only the low four bits of the 16 have a meaning.
TEST(ExFat, FlagsWithoutAMeaningAreNotShown) {
  EXPECT_EQ(FlagLines(0xFFF0), "Volume Flags\n\tActive FAT 0\n\tVolume Clean\n\tNo Media Failure\n");
}

TEST(ExFat, UsualShifts) {
  EXPECT_EQ(ShiftLines(9, 3), "Bytes / Sector            : 512\nSectors / Cluster         : 8\n");
}

TEST(ExFat, ShiftsAreTakenModulo32) {
  EXPECT_EQ(ShiftLines(40, 32), "Bytes / Sector            : 256\nSectors / Cluster         : 1\n");
}

TEST(ExFat, LargestShiftIsAPositiveNumber) {
  EXPECT_EQ(ShiftLines(31, 255),
            "Bytes / Sector            : 2147483648\nSectors / Cluster         : 2147483648\n");
}

TEST(ExFat, RevisionInTwoDigitsEach) {
  EXPECT_EQ(Section(ReportOf(DiskWith({.revisionMinor = 7, .revisionMajor = 12}), kBoot),
                    "File System Revision", "\n\nVolume Flags"),
            "File System Revision      : 12.07");
}

// 30 characters from 0x16C, 14 from 0x18B, 26 from 0x19A.
TEST(ExFat, MessagesEndAtTheirBounds) {
  EXPECT_TRUE(SameText(MessagesInText(0x00, 0x1F, 0x2E),
                       "Error Message#1 [ abcdefghijklmnopqrstuvwxyzabcd ]\n"
                       "Error Message#2 [ fghijklmnopqrs ]\n"
                       "Error Message#3 [ uvwxyzabcdefghijklmnopqrst ]\n"));
}

// The first message stands at the start of the area whatever its own offset is.
TEST(ExFat, OffsetsCountFromTheFirstOne) {
  EXPECT_TRUE(SameText(MessagesInText(0x6C, 0x8B, 0x9A),
                       "Error Message#1 [ abcdefghijklmnopqrstuvwxyzabcd ]\n"
                       "Error Message#2 [ fghijklmnopqrs ]\n"
                       "Error Message#3 [ uvwxyzabcdefghijklmnopqrst ]\n"));
}

// A bound of 0: neighbouring offsets, and a third one 72 behind the first.
TEST(ExFat, BoundOfZeroShowsNothing) {
  EXPECT_TRUE(
      SameText(MessagesInText(0x10, 0x11, 0x58),
               "Error Message#1 [  ]\n"
               "Error Message#2 [ bcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrs ]\n"
               "Error Message#3 [  ]\n"));
}

// Equal offsets leave a bound of -1: the text runs to its NUL.
TEST(ExFat, EqualOffsetsAreUnbounded) {
  EXPECT_TRUE(SameText(MessageLines(DiskWith({.messageOffsets = {0x10, 0x10, 0x10}})),
                       "Error Message#1 [ No media found. ]\n"
                       "Error Message#2 [ No media found. ]\n"
                       "Error Message#3 [ No media found. ]\n"));
}

// The third message's bound is negative from a distance of 73 on; without a NUL it runs to the sector's end.
TEST(ExFat, UnboundedTextEndsWithTheSector) {
  Disk disk = DiskWith({.messageOffsets = {0x01, 0x61, 0x8A}});
  disk.At(kBoot).Fill(0x16C, 0x8F, 'x').Text(0x1F5, "finish");
  EXPECT_TRUE(SameText(MessageLines(disk), "Error Message#1 [ " + std::string(95, 'x') +
                                               " ]\n"
                                               "Error Message#2 [ " +
                                               std::string(40, 'x') +
                                               " ]\n"
                                               "Error Message#3 [ finish<0x01>a<0x8A>U<0xAA> ]\n"));
}

// Offsets of 0 behind one of 255 place the text 255 bytes before the area, in the code at 0x6D.
TEST(ExFat, OffsetsBelowTheFirstReachBeforeTheArea) {
  Disk disk = DiskWith({.percentInUse = 1, .messageOffsets = {0xFF, 0x00, 0x00}});
  disk.At(kBoot).U8(0x16C, 0);
  EXPECT_TRUE(SameText(MessageLines(disk),
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [ <0x03><0x01><0x80><0x01> ]\n"
                       "Error Message#3 [ <0x03><0x01><0x80><0x01> ]\n"));
}

// 0x93 is the last offset with a byte inside the sector, 0x94 the first without.
TEST(ExFat, MessagesAtAndBeyondTheSectorsEnd) {
  EXPECT_TRUE(SameText(MessageLines(DiskWith({.messageOffsets = {0x00, 0x93, 0x94}})),
                       "Error Message#1 [ No media found. ]\n"
                       "Error Message#2 [  ]\n"
                       "Error Message#3 [  ]\n"));
  EXPECT_TRUE(SameText(MessageLines(DiskWith({.messageOffsets = {0x00, 0xFF, 0x93}})),
                       "Error Message#1 [ No media found. ]\n"
                       "Error Message#2 [  ]\n"
                       "Error Message#3 [ <0xAA> ]\n"));
}

// Nothing but the volume's first sector is registered, and the pass goes on behind it: the next volume, in
// the very next sector, registers its backup.
TEST(ExFat, RegistersNothingAndGoesOn) {
  Disk disk(16384);
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x07, .first = kBoot, .count = 1},
                             {.type = 0x07, .first = kBoot + 1, .count = 4096}}});
  PutExFatBootSector(disk, kBoot);
  PutReFsBootRecord(disk, kBoot + 1, {.sectorCount = 4096, .versionMajor = 1});
  EXPECT_EQ(TocOf(disk),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "      2049\tNTFS Boot Sector\n"
            "      6144\tBackup ReFS Volume Boot Record\n");
}

// Said in both passes, with neither report nor dump; each of them ends there.
TEST(ExFat, BadEndMark) {
  constexpr char kMessage[] = "Not a valid exFAT boot sector end marker @ sector # 2048\n";
  for (const u16 endMark : {u16{0xAA00}, u16{0x0055}, u16{0x55AA}}) {
    Disk disk = DiskWith({.endMark = endMark});
    EXPECT_TRUE(SameText(ReportOf(disk, kBoot, kMessage),
                         std::string("Reading sector # 2048 [exFAT boot sector]\n") + kMessage));
  }
}

}  // namespace
}  // namespace trovisk::test
