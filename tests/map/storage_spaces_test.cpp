// What the structures of Storage Spaces and Storage Replica say together.

#include "spaces/storage_spaces.h"

#include "tests/disks/ldm.h"
#include "tests/disks/spaces.h"
#include "tests/map/opened_disk.h"

namespace trovisk::test {
namespace {

constexpr u64 kFirst = 100;
constexpr u64 kSdbc = 108;
constexpr u64 kSdbb = 109;
constexpr u64 kMost = ~u64{0};

// A partition of 200 sectors. Entry 4 takes two records, 6 takes one, the others are empty.
Disk SpacesDisk(u32 sectorSize = 512) {
  Disk disk(1000, sectorSize);
  PutSpaceDb(disk, kFirst,
             {.crc32 = 0x8C1D5E2F, .storageGuid = CountingBytes(0x10), .spaceDbGuid = CountingBytes(0x20)});
  PutSdbc(disk, kSdbc, {.crc32 = 0x1B2C3D4E, .spaceportGuid = CountingBytes(0x30), .poolType = 0x23});
  PutSdbb(disk, kSdbb,
          {{.identifier = 4, .parent = 4, .partCount = 2, .type = 1},
           {.identifier = 5, .parent = 4, .partIndex = 1, .partCount = 2},
           {.identifier = 6, .parent = 6, .type = 0xABCD},
           {.identifier = 7, .parent = 7, .partCount = 0},
           {.partCount = 0},
           {.partCount = 0},
           {.partCount = 0},
           {.partCount = 0}});
  return disk;
}

struct Examined {
  std::optional<StorageSpaces> spaces;
  std::vector<Check> checks;
};

Examined Examine(const Disk& built, const VolumePlace& place = {kFirst, 200, 999}) {
  const OpenedDisk opened(built);
  Examined examined;
  examined.spaces = ExamineStorageSpaces(place, examined.checks);
  return examined;
}

Texts ObjectsOf(const Examined& examined) {
  Texts words;
  if (!examined.spaces) return {"no Storage Spaces"};
  for (const SpacesObject& object : examined.spaces->objects)
    words.push_back(std::to_string(object.id) + ": " + object.kind + ", " + std::to_string(object.parts));
  return words;
}

Texts AreasOf(const std::vector<Area>& areas) {
  Texts words;
  for (const Area& area : areas)
    words.push_back(area.name + " " + std::to_string(area.first) + "-" + std::to_string(area.last));
  return words;
}

TEST(StorageSpaces, HeadersSayWhichPoolAndDiskItIs) {
  const Examined examined = Examine(SpacesDisk());
  ASSERT_TRUE(examined.spaces);
  EXPECT_EQ(Failed(examined.checks), Texts{});
  EXPECT_EQ(examined.spaces->sector, kFirst);
  EXPECT_EQ(examined.spaces->partitionLast, 299U);
  EXPECT_EQ(examined.spaces->poolGuid, "10111213-1415-1617-1819-1a1b1c1d1e1f");
  EXPECT_EQ(examined.spaces->diskGuid, "20212223-2425-2627-2829-2a2b2c2d2e2f");
  EXPECT_EQ(examined.spaces->spaceportGuid, "30313233-3435-3637-3839-3a3b3c3d3e3f");
  EXPECT_EQ(examined.spaces->poolType, "Two-Way Mirror");
  EXPECT_EQ(AreasOf(examined.spaces->areas), (Texts{"SPACEDB 100-100", "SDBC 108-108", "SDBB 109-109"}));
}

TEST(StorageSpaces, EntriesArePutTogetherFromTheirParts) {
  EXPECT_EQ(ObjectsOf(Examine(SpacesDisk())), (Texts{"4: type 0x0001, 2", "6: type 0xABCD, 1"}));
}

TEST(StorageSpaces, LargerSectorsHoldAsManyRecords) {
  EXPECT_EQ(ObjectsOf(Examine(SpacesDisk(4096))), (Texts{"4: type 0x0001, 2", "6: type 0xABCD, 1"}));
}

TEST(StorageSpaces, ChecksumsAreNotCheckedForWantOfADescription) {
  const Examined examined = Examine(SpacesDisk());
  EXPECT_EQ(
      ChecksNamed(examined.checks, "SPACEDB CRC-32"),
      Texts{"sector 100: not checked: 0x8C1D5E2F instead of it is not published what the checksum covers"});
  EXPECT_EQ(
      ChecksNamed(examined.checks, "SDBC CRC-32"),
      Texts{"sector 108: not checked: 0x1B2C3D4E instead of it is not published what the checksum covers"});
}

TEST(StorageSpaces, PartitionWithoutSpaceDbHasNone) {
  const Examined examined = Examine(SpacesDisk(), {kSdbc, 100, 999});
  EXPECT_FALSE(examined.spaces);
  EXPECT_EQ(Failed(examined.checks), Texts{"SPACEDB"});
}

TEST(StorageSpaces, SdbcIsMissing) {
  Disk disk = SpacesDisk();
  disk.At(kSdbc).Text(0, "SDBX");
  const Examined examined = Examine(disk);
  ASSERT_TRUE(examined.spaces);
  EXPECT_EQ(Failed(examined.checks), Texts{"SDBC"});
  EXPECT_EQ(ObjectsOf(examined), Texts{});
}

TEST(StorageSpaces, RecordsAreMissing) {
  Disk disk = SpacesDisk();
  disk.At(kSdbb).Text(7 * 64, "SDBX");
  EXPECT_EQ(ChecksNamed(Examine(disk).checks, "SDBB"),
            Texts{"sector 109: missing: 0 sectors instead of records behind the SDBC"});
}

TEST(StorageSpaces, RecordsEndWithThePartition) {
  Disk disk = SpacesDisk();
  PutSdbb(disk, kSdbb + 1, {{.identifier = 9, .parent = 9}});
  const Examined examined = Examine(disk, {kFirst, 10, 999});
  EXPECT_EQ(ChecksNamed(examined.checks, "SDBB"), Texts{"sector 109: good: 1 sectors"});
}

TEST(StorageSpaces, EntryThatLacksAPartIsMissing) {
  Disk disk = SpacesDisk();
  disk.At(kSdbb).Be16(14, 3).Be16(64 + 14, 3);
  EXPECT_EQ(ChecksNamed(Examine(disk).checks, "SDBB parts"),
            Texts{"sector 109: missing: entry 4: 2 of 3 parts instead of each part once"});
}

TEST(StorageSpaces, PartWithoutItsEntryIsMissing) {
  Disk disk = SpacesDisk();
  disk.At(kSdbb).Be16(14, 0);
  const Examined examined = Examine(disk);
  EXPECT_EQ(ObjectsOf(examined), (Texts{"4: unknown, 1", "6: type 0xABCD, 1"}));
  EXPECT_EQ(ChecksNamed(examined.checks, "SDBB parts"),
            Texts{"sector 109: missing: entry 4: 1 of 2 parts instead of each part once"});
}

TEST(StorageSpaces, PartThatIsThereTwiceIsBad) {
  Disk disk = SpacesDisk();
  disk.At(kSdbb).Be16(64 + 12, 0);
  EXPECT_EQ(ChecksNamed(Examine(disk).checks, "SDBB parts"),
            Texts{"sector 109: bad: entry 4: 2 of 2 parts that contradict instead of each part once"});
}

TEST(StorageSpaces, PartsThatStateDifferentNumbersAreBad) {
  Disk disk = SpacesDisk();
  disk.At(kSdbb).Be16(64 + 14, 0xFFFF);
  EXPECT_EQ(ChecksNamed(Examine(disk).checks, "SDBB parts"),
            Texts{"sector 109: bad: entry 4: 2 of 2 parts that contradict instead of each part once"});
}

// 40,000 sectors of records, each with a part of an entry of its own.
TEST(StorageSpaces, RecordsWithoutEndAreCut) {
  Disk disk(41'000);
  PutSpaceDb(disk, 0, {});
  PutSdbc(disk, 8, {});
  for (u32 i = 0; i < 40'000; ++i)
    PutSdbb(disk, 9 + i, {{.identifier = i, .parent = i, .partIndex = 0xFFFF, .partCount = 0xFFFF}});
  const Examined examined = Examine(disk, {0, 41'000, 40'999});
  ASSERT_TRUE(examined.spaces);
  EXPECT_EQ(examined.spaces->objects.size(), 16384U);
  EXPECT_EQ(ChecksNamed(examined.checks, "SDBB parts").size(), 16U);
  EXPECT_EQ(examined.spaces->remarks,
            (Texts{"Only the first 32768 sectors of records were read.",
                   "16384 entries lack parts or contradict themselves; the first 16 are shown.",
                   "Only the first 16384 entries were read; 16384 records of others were left out."}));
}

TEST(StorageSpaces, PartitionAtTheLastSectorThereCanBeEnds) {
  EXPECT_FALSE(Examine(SpacesDisk(), {kMost, kMost, kMost}).spaces);
  const Examined examined = Examine(SpacesDisk(), {kFirst, kMost, kMost});
  ASSERT_TRUE(examined.spaces);
  EXPECT_EQ(examined.spaces->partitionLast, kMost);
}

VolumeFindings ExamineReplica(const Disk& built, const VolumePlace& place) {
  const OpenedDisk opened(built);
  return ExamineStorageReplica(place);
}

TEST(StorageReplica, LogIsOneAreaWithoutThePartitionsLastSector) {
  Disk disk(1000);
  PutDpom(disk, 100, {});
  PutDpod(disk, 101, {});
  const VolumeFindings findings = ExamineReplica(disk, {100, 200, 999});
  EXPECT_EQ(findings.type, "Storage Replica log");
  EXPECT_EQ(AreasOf(findings.areas), (Texts{"DPOM 100-100", "log 101-298"}));
  EXPECT_EQ(Failed(findings.checks), Texts{});
}

TEST(StorageReplica, LogOfVeryManySectorsIsOneArea) {
  Disk disk(1000);
  const VolumeFindings findings = ExamineReplica(disk, {100, u64{1} << 31, 999});
  EXPECT_EQ(AreasOf(findings.areas), (Texts{"DPOM 100-100", "log 101-2147483746"}));
  EXPECT_EQ(Failed(findings.checks), (Texts{"DPOM", "DPOD"}));
}

TEST(StorageReplica, PartitionOfTwoSectorsHasNoLog) {
  Disk disk(1000);
  PutDpom(disk, 100, {});
  EXPECT_EQ(AreasOf(ExamineReplica(disk, {100, 2, 999}).areas), Texts{"DPOM 100-100"});
  EXPECT_EQ(AreasOf(ExamineReplica(disk, {100, 3, 999}).areas), (Texts{"DPOM 100-100", "log 101-101"}));
}

}  // namespace
}  // namespace trovisk::test
