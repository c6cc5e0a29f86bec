// Disks whose table is gone, is contradicted, or was never there.

#include <gtest/gtest.h>

#include <algorithm>

#include "map/text_map.h"
#include "tests/disks/bitlocker.h"
#include "tests/disks/gpt.h"
#include "tests/disks/ldm_group.h"
#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/survey/surveyed.h"

namespace trovisk::test {
namespace {

using Lines = std::vector<std::string>;

void Zero(Disk& disk, u64 sector) {
  disk.At(sector).Fill(0, disk.SectorSize(), 0);
}

Disk OnePartition(const Guid& type) {
  Disk disk;
  PutGpt(disk, {{.type = type, .first = 100, .last = 199}});
  return disk;
}

bool HasFlag(const DiskMap& map, u64 first, ExtentFlag flag) {
  return std::any_of(map.extents.begin(), map.extents.end(), [&](const Extent& extent) {
    return extent.first == first && (extent.flags & flag) != 0;
  });
}

TEST(LostTable, AGptBehindAnEmptyMbrIsTheDisksTable) {
  Disk disk = OnePartition(kBasicDataType);
  Zero(disk, 0);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(map.disk.scheme, "GPT");
  EXPECT_EQ(map.disk.id, "9abcdef0-1234-5678-9abc-def012345678");
  EXPECT_EQ(PartitionsOf(map), Lines{"100-199 GPT entry 1"});
  EXPECT_EQ(VerdictOf(map, "protective entry covers the disk"), "missing");
}

TEST(LostTable, AGptBesideMbrPartitionsIsWhatAnEarlierUseLeft) {
  Disk disk = OnePartition(kBasicDataType);
  Zero(disk, 0);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x83, .first = 63, .count = 1000}}});
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(map.disk.scheme, "MBR");
  EXPECT_TRUE(HasFlag(map, 100, kFlagUnsound));
}

// One byte of the entry's first sector, in both copies alike.
TEST(LostTable, PartitionsOfTwoWrongArraysAreUnsound) {
  Disk disk = OnePartition(kBasicDataType);
  disk.At(2).U8(32, 101);
  disk.At(4095 - 32).U8(32, 101);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "GPT primary partition entry array CRC-32"), "bad");
  EXPECT_EQ(VerdictOf(map, "GPT backup partition entry array CRC-32"), "bad");
  EXPECT_TRUE(HasFlag(map, 101, kFlagUnsound));
  EXPECT_FALSE(HasFlag(SurveyOf(OnePartition(kBasicDataType)), 100, kFlagUnsound));
}

TEST(LostTable, TheHeaderThatTheOtherNamesIsDamagedWhereNoneStands) {
  for (const u64 sector : {u64{1}, u64{4095}}) {
    Disk disk = OnePartition(kBasicDataType);
    Zero(disk, sector);
    EXPECT_TRUE(HasFlag(SurveyOf(disk), sector, kFlagDamaged)) << sector;
  }
}

// What stands there is known by the checksum that the other header has of its own array.
TEST(LostTable, TheArrayBehindALostHeaderIsNoGap) {
  for (const bool primary : {true, false}) {
    Disk disk = OnePartition(kBasicDataType);
    Zero(disk, primary ? 1 : 4095);
    const std::string array = primary ? "2-33 GPT backup" : "4063-4094 GPT primary";
    const Lines found = ExtentsOf(SurveyOf(disk), ExtentKind::kStructure);
    EXPECT_EQ(std::count(found.begin(), found.end(), array), 1) << array;
    disk.At(primary ? 2 : 4063).U8(60, 1);
    const Lines wrong = ExtentsOf(SurveyOf(disk), ExtentKind::kStructure);
    EXPECT_EQ(std::count(wrong.begin(), wrong.end(), array), 0) << array;
  }
}

TEST(LostTable, ADynamicDiskIsFoundByItsHeader) {
  Disk disk = MakeGroupDisk({.records = FiveVolumes(), .counts = kFiveVolumesCounts});
  Zero(disk, 0);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "entry of type 0x42"), "missing");
  ASSERT_TRUE(map.dynamicDisk.has_value());
  EXPECT_EQ(map.dynamicDisk->volumes.size(), 5u);
}

TEST(LostTable, AVolumeWithoutATableIsNamedByItsSignature) {
  Disk disk;
  disk.At(0).Text(0, "LUKS\xBA\xBE").Be16(6, 2);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(ExtentsOf(map, ExtentKind::kVolume).size(), 1u);
  EXPECT_EQ(WrongChecks(map), Lines{});
  EXPECT_EQ(VerdictInWords(map), "Nothing wrong was found.");
}

// What a volume's backup alone says is said to be from there.
TEST(LostTable, AVolumeThatOnlyItsBackupTellsSaysSo) {
  Disk disk = OnePartition(kBasicDataType);
  PutNtfsBootSector(disk, 199, {.totalSectors = 99});
  EXPECT_EQ(ExtentsOf(SurveyOf(disk), ExtentKind::kVolume), Lines{"100-199 NTFS backup boot sector"});
}

// What boot code has in the place of a table. An unused entry has no indicator.
TEST(LostTable, AWrongBootIndicatorIsSaid) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x83, .first = 63, .count = 1000}, {.bootIndicator = 1}}});
  DiskMap map = SurveyOf(disk);
  EXPECT_EQ(PartitionsOf(map), Lines{"63-1062 MBR entry 1"});
  EXPECT_EQ(VerdictOf(map, "boot indicators of the partition table"), "none");
  disk.At(0).U8(0x1BE, 1);
  map = SurveyOf(disk);
  EXPECT_EQ(PartitionsOf(map), Lines{"63-1062 MBR entry 1"});
  ASSERT_EQ(VerdictOf(map, "boot indicators of the partition table"), "bad");
  EXPECT_EQ(CheckOf(map, "boot indicators of the partition table")->found,
            "neither 0x00 nor 0x80, though the entries fit the disk");
  // What boot code has there are no places on the disk.
  for (const PartitionEntry& other : {PartitionEntry{.type = 0x83, .first = 1000, .count = 100},
                                      PartitionEntry{.type = 0x83, .first = 2000, .count = 5000}}) {
    PutBootRecord(disk, 0,
                  {.entries = {{.bootIndicator = 1, .type = 0x83, .first = 63, .count = 1000}, other}});
    map = SurveyOf(disk);
    EXPECT_EQ(PartitionsOf(map), Lines{});
    EXPECT_EQ(CheckOf(map, "boot indicators of the partition table")->found,
              "neither 0x00 nor 0x80: no partition is taken from it");
  }
}

TEST(LostTable, AProtectiveEntryWithAWrongIndicatorIsThere) {
  Disk disk = OnePartition(kBasicDataType);
  disk.At(0).U8(0x1BE, 0x81);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "protective entry covers the disk"), "good");
  EXPECT_EQ(WrongChecks(map), Lines{"boot indicators of the partition table: bad"});
}

TEST(LostTable, ATableWithoutItsEndMarkIsATable) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x83, .first = 63, .count = 1000}}});
  disk.At(0).Le32(0x1B8, 0x12345678).Le16(510, 0);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(map.disk.scheme, "MBR");
  EXPECT_EQ(map.disk.id, "0x12345678");
  EXPECT_EQ(PartitionsOf(map), Lines{"63-1062 MBR entry 1"});
  EXPECT_TRUE(HasFlag(map, 0, kFlagDamaged));
}

// Other systems go by the sectors alone; behind a protective entry nobody does.
TEST(LostTable, AnEntryOfTypeZeroWithSectorsIsShown) {
  Disk disk;
  const PartitionEntry untyped = {.first = 63, .count = 1000};
  PutBootRecord(disk, 0, {.entries = {{.type = 0x83, .first = 2000, .count = 10}, untyped}});
  EXPECT_EQ(PartitionsOf(SurveyOf(disk)), (Lines{"63-1062 MBR entry 2", "2000-2009 MBR entry 1"}));
  PutBootRecord(disk, 0, {.entries = {{.type = 0xEE, .first = 1, .count = 4095}, untyped}});
  EXPECT_EQ(PartitionsOf(SurveyOf(disk)), Lines{"1-4095 MBR entry 1 container"});
}

// Of a disk without a table, whose first sector is lost.
TEST(LostTable, AVolumeOfAWholeDiskIsFoundByItsBackup) {
  Disk disk;
  PutNtfsBootSector(disk, 4095, {.totalSectors = 4095});
  DiskMap map = SurveyOf(disk);
  EXPECT_EQ(map.disk.scheme, "none");
  EXPECT_EQ(ExtentsOf(map, ExtentKind::kVolume), Lines{"0-4095 NTFS backup boot sector"});
  EXPECT_EQ(map.ExitStatus(), 2);
  // That of a partition which ended with the disk.
  PutNtfsBootSector(disk, 4095, {.totalSectors = 1999});
  map = SurveyOf(disk);
  EXPECT_EQ(ExtentsOf(map, ExtentKind::kVolume), Lines{});
}

// The backup stands where the disk ended once, which the protective entry says.
TEST(LostTable, AGrownDiskWithoutItsPrimaryGpt) {
  Disk disk = OnePartition(kBasicDataType);
  Zero(disk, 1);
  disk.Resize(5000);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(map.disk.scheme, "GPT");
  EXPECT_EQ(PartitionsOf(map), (Lines{"1-4095 MBR entry 1 container", "100-199 GPT backup entry 1"}));
  EXPECT_EQ(VerdictOf(map, "GPT backup header", 4999), "missing");
  EXPECT_EQ(VerdictOf(map, "GPT backup header", 4095), "good");
  EXPECT_EQ(VerdictOf(map, "GPT backup header stands in the last sector"), "bad");
}

// A mirrored volume begins where its RAID does, whose superblock stands at the end.
TEST(LostTable, AVolumeInsideOfARaidIsNamedWithIt) {
  Disk disk = OnePartition(kBasicDataType);
  PutNtfsBootSector(disk, 100, {.totalSectors = 83});
  const u64 superblock = 100 + 80;  // 8 KiB or more before the end, on 4 KiB of the partition
  disk.At(superblock).Le32(0, 0xA92B4EFC).Le32(4, 1).Text(0x20, "host:0").Le64(0x90, 80);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(ExtentsOf(map, ExtentKind::kVolume),
            (Lines{"100-199 signature at sector 180", "100-183 NTFS boot sector"}));
}

// What stands in sector 0 was written behind the GPT whose backup is still there.
TEST(LostTable, AVolumeOverAGptIsTheDisksContent) {
  Disk disk = OnePartition(kBasicDataType);
  Zero(disk, 0);
  Zero(disk, 1);
  disk.At(0).Text(0, "LUKS\xBA\xBE").Be16(6, 2);
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(map.disk.scheme, "none");
  EXPECT_EQ(ExtentsOf(map, ExtentKind::kVolume), Lines{"0-4095 signature at sector 0"});
  EXPECT_EQ(map.ExitStatus(), 2);
}

TEST(LostTable, AVolumeLargerThanItsPartitionIsBad) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x83, .first = 100, .count = 100}}});
  disk.At(102).Le32(0x04, 100).Le32(0x18, 0).Le16(0x38, 0xEF53);  // 100 blocks of 1024 bytes
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(WrongChecks(map), Lines{"ext2 total sectors: bad"});
  EXPECT_EQ(CheckOf(map, "ext2 total sectors")->found, "200");
}

// The first PRIVHEAD is lost too: the last sector has a copy.
TEST(LostTable, ADynamicDiskIsFoundByItsLastSector) {
  Disk disk = MakeGroupDisk({.records = FiveVolumes(), .counts = kFiveVolumesCounts});
  Zero(disk, 0);
  Zero(disk, 6);
  const DiskMap map = SurveyOf(disk);
  ASSERT_TRUE(map.dynamicDisk.has_value());
  EXPECT_EQ(map.dynamicDisk->volumes.size(), 5u);
}

// A primary header whose checksum is right and that says that it stands in sector 99.
TEST(LostTable, AHeaderThatSaysThatItStandsElsewhereIsNotFollowed) {
  Disk disk = OnePartition(kBasicDataType);
  disk.At(2).U8(32, 101);
  PutGptHeader(disk, 1, {.ownLba = 99});
  const DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "GPT primary header's own sector"), "bad");
  EXPECT_TRUE(HasFlag(map, 101, kFlagOtherCopy));
}

TEST(LostTable, OfADiskOfZerosNothingIsSaid) {
  const DiskMap map = SurveyOf(Disk());
  EXPECT_EQ(map.ExitStatus(), 0);
  EXPECT_EQ(VerdictInWords(map), "Nothing can be said: no partition table and no volume was found.");
}

TEST(UnrecognisedVolume, IsSaidOfAPartitionWhoseTypePromisesOne) {
  Disk disk = OnePartition(kBasicDataType);
  DiskMap map = SurveyOf(disk);
  EXPECT_EQ(VerdictOf(map, "volume is recognised", 100), "not checked");
  EXPECT_EQ(CheckOf(map, "volume is recognised")->found, "zeros");
  EXPECT_EQ(map.ExitStatus(), 0);
  EXPECT_EQ(VerdictInWords(map), "Nothing wrong was found, but in 1 partition no volume was recognised.");
  disk.At(100).Text(0, "something else");
  EXPECT_EQ(CheckOf(SurveyOf(disk), "volume is recognised")->found, "nothing that is known");
  PutNtfsBootSector(disk, 100, {.totalSectors = 99});
  EXPECT_EQ(VerdictOf(SurveyOf(disk), "volume is recognised"), "none");
}

TEST(UnrecognisedVolume, IsNotSaidOfWhatHoldsNone) {
  EXPECT_EQ(
      VerdictOf(SurveyOf(OnePartition(Guid("E3C9E316-0B5C-4DB8-817D-F92DF00215AE"))), "volume is recognised"),
      "none");
  EXPECT_EQ(VerdictOf(SurveyOf(OnePartition(kUnlistedType)), "volume is recognised"), "not checked");
}

}  // namespace
}  // namespace trovisk::test
