// The copies and counts of a dynamic disk's configuration: what is good, bad and missing.

#include "tests/map/ldm_words.h"

namespace trovisk::test {
namespace {

constexpr u64 kConfig = 30720;
constexpr u64 kVmdb = kConfig + kGroupVmdb;
constexpr u64 kAlternate1 = 32767;
constexpr u64 kAlternate2 = 32576;

const GroupDisk kGroup = {.records = FiveVolumes(), .counts = kFiveVolumesCounts};

Texts ChecksOf(const Disk& disk, std::string_view name) {
  return ChecksNamed(ExamineLdm(disk).checks, name);
}

// The same volumes are found, and one thing is wrong.
void ExpectFiveVolumesAnd(const Examined& examined, const Texts& failed) {
  EXPECT_EQ(Failed(examined.checks), failed);
  ASSERT_TRUE(examined.dynamic);
  EXPECT_EQ(examined.dynamic->volumes.size(), 5U);
}

TEST(LdmChecks, PrivheadsAgree) {
  const Examined examined = ExamineLdm(MakeGroupDisk(kGroup));
  EXPECT_EQ(ChecksNamed(examined.checks, "PRIVHEAD"), Texts{"sector 6: good: as the other copies"});
  EXPECT_EQ(ChecksNamed(examined.checks, "PRIVHEAD alternate 1"),
            Texts{"sector 32767: good: as the other copies"});
  EXPECT_EQ(ChecksNamed(examined.checks, "PRIVHEAD alternate 2"),
            Texts{"sector 32576: good: as the other copies"});
  EXPECT_EQ(ChecksNamed(examined.checks, "PRIVHEAD version"), Texts{"sector 6: good: 2.12"});
}

TEST(LdmChecks, FirstPrivheadIsMissing) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(6).Fill(0, 512, 0);
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(examined, {"PRIVHEAD"});
  EXPECT_EQ(ChecksNamed(examined.checks, "PRIVHEAD"),
            Texts{"sector 6: missing: no PRIVHEAD instead of a copy of the PRIVHEAD"});
}

// The last sector alone is left.
TEST(LdmChecks, TwoPrivheadsAreMissing) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(6).Fill(0, 512, 0);
  disk.At(kAlternate2).Fill(0, 512, 0);
  ExpectFiveVolumesAnd(ExamineLdm(disk), {"PRIVHEAD", "PRIVHEAD alternate 2"});
}

TEST(LdmChecks, AllPrivheadsAreMissing) {
  Disk disk = MakeGroupDisk(kGroup);
  for (const u64 sector : {u64{6}, kAlternate1, kAlternate2})
    disk.At(sector).Fill(0, 512, 0);
  const Examined examined = ExamineLdm(disk);
  EXPECT_FALSE(examined.dynamic);
  EXPECT_TRUE(examined.checks.empty());
}

TEST(LdmChecks, PrivheadThatDiffersFromTwoOthersIsBad) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kAlternate1).Be64(0x133, 1024).Text(0x0F0, "EVIL");
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(examined, {"PRIVHEAD alternate 1"});
  EXPECT_EQ(
      ChecksNamed(examined.checks, "PRIVHEAD alternate 1"),
      Texts{"sector 32767: bad: disk group name EVIL-Dg0, configuration size 1024 instead of disk group "
            "name TEST-Dg0, configuration size 2048"});
}

// Its configuration start leads nowhere, so the others are looked for at the end of the disk.
TEST(LdmChecks, FirstPrivheadWithAWrongConfigurationStartIsBad) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(6).Be64(0x12B, 4);
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(examined, {"PRIVHEAD"});
  EXPECT_EQ(ChecksNamed(examined.checks, "PRIVHEAD"),
            Texts{"sector 6: bad: configuration start 4 instead of configuration start 30720"});
}

TEST(LdmChecks, PrivheadOfAnUnknownVersionIsBad) {
  GroupDisk group = kGroup;
  group.minorVersion = 13;
  EXPECT_EQ(ChecksOf(MakeGroupDisk(group), "PRIVHEAD version"),
            Texts{"sector 6: bad: 2.13 instead of 2.11 or 2.12"});
}

TEST(LdmChecks, ConfigurationAreaThatEndsBehindTheDiskIsBad) {
  Disk disk = MakeGroupDisk(kGroup);
  for (const u64 sector : {u64{6}, kAlternate1, kAlternate2})
    disk.At(sector).Be64(0x133, 2049);
  ExpectFiveVolumesAnd(ExamineLdm(disk), {"LDM configuration area"});
}

TEST(LdmChecks, LogicalDiskThatReachesIntoTheConfigurationAreaIsBad) {
  Disk disk = MakeGroupDisk(kGroup);
  for (const u64 sector : {u64{6}, kAlternate1, kAlternate2})
    disk.At(sector).Be64(0x123, 30658);
  EXPECT_EQ(ChecksOf(disk, "LDM logical disk"),
            Texts{"sector 6: bad: 30658 sectors from 63 instead of sectors of the disk outside the "
                  "configuration area"});
}

// On a GPT disk the first PRIVHEAD stands in the last sector of the metadata partition, which can be the
// place of an alternate.
TEST(LdmChecks, PrivheadThatIsItsOwnAlternateIsJudgedOnce) {
  const Examined examined = ExamineLdm(MakeGroupDisk(kGroup), kAlternate1);
  ExpectFiveVolumesAnd(examined, {});
  EXPECT_EQ(ChecksNamed(examined.checks, "PRIVHEAD"), Texts{"sector 32767: good: as the other copies"});
  EXPECT_EQ(ChecksNamed(examined.checks, "PRIVHEAD alternate 1"), Texts{});
}

TEST(LdmChecks, OlderVersionHasFourTocBlocks) {
  GroupDisk group = kGroup;
  group.minorVersion = 11;
  const Examined examined = ExamineLdm(MakeGroupDisk(group));
  ExpectFiveVolumesAnd(examined, {});
  EXPECT_EQ(ChecksNamed(examined.checks, "TOCBLOCK copies"), Texts{"sector 30721: good: 4"});
  EXPECT_EQ(ChecksNamed(examined.checks, "TOCBLOCK").size(), 4U);
}

TEST(LdmChecks, TocBlockIsMissing) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kConfig + 2).Fill(0, 512, 0);
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(examined, {"TOCBLOCK copies"});
  EXPECT_EQ(ChecksNamed(examined.checks, "TOCBLOCK copies"), Texts{"sector 30722: missing: 1 instead of 2"});
}

// The database stands at its usual place.
TEST(LdmChecks, AllTocBlocksAreMissing) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kConfig + 2).Fill(0, 512, 0);
  disk.At(kConfig + 2045).Fill(0, 512, 0);
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(examined, {"TOCBLOCK copies"});
  EXPECT_EQ(examined.dynamic->remarks,
            Texts{"No TOCBLOCK was found: the database was looked for at its usual place."});
}

// Of two that contradict each other the one with regions inside the area counts.
TEST(LdmChecks, TocBlocksThatDisagreeAreBad) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kConfig + 2).Be64(46, 5000);
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(examined, {"TOCBLOCK"});
  EXPECT_EQ(
      ChecksNamed(examined.checks, "TOCBLOCK"),
      (Texts{"sector 30722: bad: config 1481 sectors from 5000, log 224 sectors from 1498 instead of config "
             "1481 sectors from 17, log 224 sectors from 1498",
             "sector 32765: good: config 1481 sectors from 17, log 224 sectors from 1498"}));
}

TEST(LdmChecks, RegionsThatOverlapAreBad) {
  Disk disk = MakeGroupDisk(kGroup);
  for (const u64 place : {u64{2}, u64{2045}})
    disk.At(kConfig + place).Be64(80, 1497);
  EXPECT_EQ(
      ChecksOf(disk, "TOCBLOCK regions"),
      Texts{
          "sector 30722: bad: config 1481 sectors from 17, log 224 sectors from 1497 instead of two regions "
          "apart among 2048 sectors"});
}

TEST(LdmChecks, VmdbIsMissing) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kVmdb).Fill(0, 512, 0);
  ExpectFiveVolumesAnd(ExamineLdm(disk), {"VMDB"});
}

TEST(LdmChecks, FieldsOfTheVmdbAreBad) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kVmdb).Be16(20, 11).Be32(8, 256).Be32(12, 1024).Text(53, "7");
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(
      examined, {"VMDB version", "VMDB size of a record", "VMDB offset of the records", "VMDB disk group"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB version"), Texts{"sector 30737: bad: 4.11 instead of 4.10"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB disk group"),
            Texts{"sector 30737: bad: 7a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34 instead of "
                  "6a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34"});
}

TEST(LdmChecks, CountsAreThoseOfTheRecords) {
  const Examined examined = ExamineLdm(MakeGroupDisk(kGroup));
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB committed volumes"), Texts{"sector 30737: good: 5"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB committed components"), Texts{"sector 30737: good: 6"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB committed partitions"), Texts{"sector 30737: good: 10"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB committed disks"), Texts{"sector 30737: good: 3"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB pending volumes"), Texts{"sector 30737: good: 0"});
}

TEST(LdmChecks, CountsThatTheRecordsDoNotHaveAreBad) {
  GroupDisk group = kGroup;
  group.counts = {.volumes = 6, .components = 5, .partitions = 0xFFFFFFFF, .disks = 2};
  Disk disk = MakeGroupDisk(group);
  disk.At(kVmdb).Be32(161, 4);
  const Examined examined = ExamineLdm(disk);
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB committed volumes"),
            Texts{"sector 30737: bad: 6 instead of 5"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB committed components"),
            Texts{"sector 30737: bad: 5 instead of 6"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB committed partitions"),
            Texts{"sector 30737: bad: 4294967295 instead of 10"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB committed disks"), Texts{"sector 30737: bad: 2 instead of 3"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VMDB pending volumes"),
            Texts{"sector 30737: bad: 4 instead of 0 or 5"});
}

TEST(LdmChecks, PendingCountsOfATransactionUnderWayAreNotChecked) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kVmdb).Be16(16, 2).Be32(161, 4);
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(examined, {});
  EXPECT_EQ(
      ChecksNamed(examined.checks, "VMDB pending volumes"),
      Texts{"sector 30737: not checked: 4 instead of no rule is published for a transaction under way"});
  EXPECT_EQ(examined.dynamic->remarks,
            Texts{"The database says that a transaction is under way: update status 2."});
}

// The last of 25 records has the sequence number 28.
TEST(LdmChecks, RecordBehindTheLastSequenceNumberIsBad) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kVmdb).Be32(4, 28);
  EXPECT_EQ(ChecksOf(disk, "VMDB last sequence number"), Texts{"sector 30737: good: 28"});
  disk.At(kVmdb).Be32(4, 27);
  EXPECT_EQ(ChecksOf(disk, "VMDB last sequence number"),
            Texts{"sector 30737: bad: 27 instead of at least 28"});
}

TEST(LdmChecks, SlotWithoutSignatureIsBad) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kVmdb + 2).Text(128, "VBLX");
  EXPECT_EQ(ChecksOf(disk, "VBLK signatures"), Texts{"sector 30739: bad: slot 2: none instead of VBLK"});
}

TEST(LdmChecks, RecordWhoseFieldsRunBeyondItsDataIsBad) {
  GroupDisk group = kGroup;
  group.records[4].dataLength = 20;
  EXPECT_EQ(ChecksOf(MakeGroupDisk(group), "VBLK records"),
            Texts{"sector 30739: bad: object 10: fields beyond its data instead of fields in 20 bytes"});
}

TEST(LdmChecks, RecordWithMoreDataThanItsSlotIsBad) {
  GroupDisk group = kGroup;
  group.records[4].dataLength = 0xFFFFFFFF;
  EXPECT_EQ(
      ChecksOf(MakeGroupDisk(group), "VBLK records"),
      Texts{"sector 30739: bad: object 10: fields beyond its data instead of fields in 4294967295 bytes"});
}

TEST(LdmChecks, GroupOfAnotherGuidIsBad) {
  GroupDisk group = kGroup;
  group.records[0] = GroupRecord(1, kGroupName, GroupDiskGuid(9));
  EXPECT_EQ(ChecksOf(MakeGroupDisk(group), "VBLK disk group"),
            Texts{"sector 30738: bad: 9f8d1a34-7b60-4c5e-9a11-0c3f5e6d7a80 instead of "
                  "6a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34"});
}

TEST(LdmChecks, IdentifierOfTwoObjectsIsBad) {
  GroupDisk group = kGroup;
  group.records[9] = PartitionRecord(
      {.id = 12, .name = "Disk1-02", .start = 1000, .size = 2000, .component = 21, .disk = 2});
  const Examined examined = ExamineLdm(MakeGroupDisk(group));
  ExpectFiveVolumesAnd(examined, {"VBLK object identifiers"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VBLK object identifiers"),
            Texts{"sector 30740: bad: 12 of Disk1-02 instead of an identifier that no other object has"});
}

TEST(LdmChecks, NumbersOfPartsThatAreNotThereAreBad) {
  GroupDisk group = kGroup;
  group.records[4] = VolumeRecord({.id = 10, .name = "Simple", .children = 3, .size = 1000});
  group.records[8] = ComponentRecord({.id = 21, .name = "Span-01", .children = 1, .volume = 20});
  EXPECT_EQ(ChecksOf(MakeGroupDisk(group), "VBLK numbers of parts"),
            (Texts{"sector 30740: bad: Span-01: 2 partitions instead of Span-01: 1 partitions",
                   "sector 30739: bad: Simple: 1 components instead of Simple: 3 components"}));
}

// A RAID-5 of three columns of 2048 sectors holds 4096.
TEST(LdmChecks, VolumeThatIsLargerThanItsPartitionsIsBad) {
  GroupDisk group = kGroup;
  group.records[20] = VolumeRecord({.id = 50, .name = "Raid", .type = "raid5", .typeByte = 4, .size = 4097});
  EXPECT_EQ(ChecksOf(MakeGroupDisk(group), "VBLK volume sizes"),
            Texts{"sector 30743: bad: Raid: 4097 sectors instead of at most 4096, as Raid-01 has"});
}

TEST(LdmChecks, PartitionBehindTheLogicalDiskIsBad) {
  GroupDisk group = kGroup;
  group.records[6] = PartitionRecord(
      {.id = 12, .name = "Disk1-01", .start = 30000, .size = 658, .component = 11, .disk = 2});
  EXPECT_EQ(ChecksOf(MakeGroupDisk(group), "VBLK partitions in the logical disk"),
            Texts{"sector 30739: bad: Disk1-01: 658 sectors from 30000 instead of among 30657 sectors"});
}

TEST(LdmChecks, PartitionsThatOverlapAreBad) {
  GroupDisk group = kGroup;
  group.records[6] =
      PartitionRecord({.id = 12, .name = "Disk1-01", .start = 0, .size = 1001, .component = 11, .disk = 2});
  EXPECT_EQ(
      ChecksOf(MakeGroupDisk(group), "VBLK partitions overlap"),
      Texts{"sector 30740: bad: Disk1-02: 2000 sectors from 1000 instead of behind Disk1-01: 1001 sectors "
            "from 0"});
}

TEST(LdmChecks, LogIsMissing) {
  Disk disk = MakeGroupDisk(kGroup);
  disk.At(kConfig + kGroupLog).Fill(0, 512, 0);
  const Examined examined = ExamineLdm(disk);
  ExpectFiveVolumesAnd(examined, {"KLOG"});
  EXPECT_EQ(ChecksNamed(examined.checks, "KLOG"),
            Texts{"sector 32218: missing: no KLOG instead of the start of the log"});
}

}  // namespace
}  // namespace trovisk::test
