// What belongs together on a dynamic disk: each type of volume, and records that take several slots.

#include "tests/map/ldm_words.h"

namespace trovisk::test {
namespace {

// The configuration area of a disk of 32768 sectors; the VMDB; the sector of the first four slots.
constexpr u64 kConfig = 30720;
constexpr u64 kVmdb = kConfig + kGroupVmdb;
constexpr u64 kFirstSlots = kVmdb + 1;

Disk FiveVolumesDisk() {
  return MakeGroupDisk({.records = FiveVolumes(), .counts = kFiveVolumesCounts});
}

TEST(DynamicDisk, NothingIsWrongWithADatabaseThatAgreesWithItself) {
  const Examined examined = ExamineLdm(FiveVolumesDisk());
  EXPECT_EQ(Failed(examined.checks), Texts{});
  ASSERT_TRUE(examined.dynamic);
  EXPECT_EQ(examined.dynamic->remarks, Texts{});
  EXPECT_TRUE(examined.dynamic->orphans.empty());
}

TEST(DynamicDisk, DiskAndGroupAreThoseOfThePrivhead) {
  const Examined examined = ExamineLdm(FiveVolumesDisk());
  ASSERT_TRUE(examined.dynamic);
  const trovisk::DynamicDisk& dynamic = *examined.dynamic;
  EXPECT_EQ(dynamic.groupName, "TEST-Dg0");
  EXPECT_EQ(dynamic.groupGuid, "6a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34");
  EXPECT_EQ(dynamic.diskGuid, "1f8d1a34-7b60-4c5e-9a11-0c3f5e6d7a80");
  EXPECT_EQ(dynamic.logicalStart, 63U);
  EXPECT_EQ(dynamic.logicalSize, 30657U);
  EXPECT_EQ(dynamic.databaseStart, kConfig);
  EXPECT_EQ(dynamic.databaseSize, 2048U);
  ASSERT_EQ(dynamic.disks.size(), 3U);
  EXPECT_EQ(dynamic.disks[0].name, "Disk1");
  EXPECT_EQ(dynamic.disks[0].device, "Harddisk1");
  EXPECT_TRUE(dynamic.disks[0].thisDisk);
  EXPECT_EQ(dynamic.disks[2].guid, "3f8d1a34-7b60-4c5e-9a11-0c3f5e6d7a80");
  EXPECT_FALSE(dynamic.disks[2].thisDisk);
}

TEST(DynamicDisk, AreasAreTheStructuresInTheirPlaces) {
  const Examined examined = ExamineLdm(FiveVolumesDisk());
  ASSERT_TRUE(examined.dynamic);
  Texts words;
  for (const Area& area : examined.dynamic->areas)
    words.push_back(area.name + " " + std::to_string(area.first) + "-" + std::to_string(area.last));
  EXPECT_EQ(words, (Texts{"PRIVHEAD 6-6", "PRIVHEAD alternate 1 32767-32767",
                          "PRIVHEAD alternate 2 32576-32576", "TOCBLOCK 30722-30722", "TOCBLOCK 32765-32765",
                          "VMDB 30737-30737", "VBLK 30738-32217", "KLOG 32218-32441"}));
}

TEST(DynamicDisk, SimpleVolumeHasOnePartition) {
  EXPECT_EQ(VolumeNamed(ExamineLdm(FiveVolumesDisk()), "Simple"),
            (Texts{"Simple: simple, ACTIVE, 1000, hint [E:]",
                   "Simple-01: concatenated, ACTIVE, stripe 0, columns 0",
                   "Disk1-01 on Disk1, 1000 at 0 = 63, offset 0, column 0"}));
}

TEST(DynamicDisk, SpannedVolumeHasItsPartitionsInTheOrderOfTheirOffsets) {
  EXPECT_EQ(
      VolumeNamed(ExamineLdm(FiveVolumesDisk()), "Span"),
      (Texts{"Span: spanned, ACTIVE, 2500, hint []", "Span-01: concatenated, ACTIVE, stripe 0, columns 0",
             "Disk1-02 on Disk1, 2000 at 1000 = 1063, offset 0, column 0",
             "Disk1-03 on Disk1, 500 at 3000 = 3063, offset 2000, column 0"}));
}

TEST(DynamicDisk, StripedVolumeHasItsPartitionsInTheOrderOfTheirColumns) {
  EXPECT_EQ(
      VolumeNamed(ExamineLdm(FiveVolumesDisk()), "Stripe"),
      (Texts{"Stripe: striped, ACTIVE, 8192, hint []", "Stripe-01: striped, ACTIVE, stripe 128, columns 2",
             "Disk1-04 on Disk1, 4096 at 4096 = 4159, offset 0, column 0",
             "Disk2-01 on Disk2, 4096 at 4096, offset 0, column 1"}));
}

TEST(DynamicDisk, MirroredVolumeHasTwoComponents) {
  EXPECT_EQ(VolumeNamed(ExamineLdm(FiveVolumesDisk()), "Mirror"),
            (Texts{"Mirror: mirrored, ACTIVE, 3000, hint []",
                   "Mirror-01: concatenated, ACTIVE, stripe 0, columns 0",
                   "Disk1-05 on Disk1, 3000 at 8192 = 8255, offset 0, column 0",
                   "Mirror-02: concatenated, ACTIVE, stripe 0, columns 0",
                   "Disk2-02 on Disk2, 3000 at 8192, offset 0, column 0"}));
}

TEST(DynamicDisk, Raid5VolumeHasAColumnOnEachDisk) {
  EXPECT_EQ(VolumeNamed(ExamineLdm(FiveVolumesDisk()), "Raid"),
            (Texts{"Raid: RAID-5, ACTIVE, 4096, hint [R:]", "Raid-01: RAID-5, ACTIVE, stripe 64, columns 3",
                   "Disk1-06 on Disk1, 2048 at 12288 = 12351, offset 0, column 0",
                   "Disk2-03 on Disk2, 2048 at 12288, offset 0, column 1",
                   "Disk3-01 on Disk3, 2048 at 0, offset 0, column 2"}));
}

TEST(DynamicDisk, ComponentOfAnUnknownTypeIsNamedByItsNumber) {
  std::vector<VblkRecord> records = FiveVolumes();
  records[5] = ComponentRecord({.id = 11, .name = "Simple-01", .type = 0xAB, .volume = 10});
  const Examined examined = ExamineLdm(MakeGroupDisk({.records = records, .counts = kFiveVolumesCounts}));
  EXPECT_EQ(VolumeNamed(examined, "Simple")[0], "Simple: unknown 0xAB, ACTIVE, 1000, hint [E:]");
}

// On the second disk of the group the same volumes lie elsewhere.
TEST(DynamicDisk, PartitionsAreOnThisDiskWhereItsOwnPrivheadSaysSo) {
  const Examined examined =
      ExamineLdm(MakeGroupDisk({.number = 2, .records = FiveVolumes(), .counts = kFiveVolumesCounts}));
  EXPECT_EQ(VolumeNamed(examined, "Mirror"),
            (Texts{"Mirror: mirrored, ACTIVE, 3000, hint []",
                   "Mirror-01: concatenated, ACTIVE, stripe 0, columns 0",
                   "Disk1-05 on Disk1, 3000 at 8192, offset 0, column 0",
                   "Mirror-02: concatenated, ACTIVE, stripe 0, columns 0",
                   "Disk2-02 on Disk2, 3000 at 8192 = 8255, offset 0, column 0"}));
}

// The other form of a disk's record has its GUID as sixteen bytes.
TEST(DynamicDisk, DiskOfTheSecondFormIsKnownByItsGuid) {
  const std::array<u8, 16> guid = {0x1f, 0x8d, 0x1a, 0x34, 0x7b, 0x60, 0x4c, 0x5e,
                                   0x9a, 0x11, 0x0c, 0x3f, 0x5e, 0x6d, 0x7a, 0x80};
  std::vector<VblkRecord> records = FiveVolumes();
  records[1] = DiskRecord4(2, "Disk1", guid);
  const Examined examined = ExamineLdm(MakeGroupDisk({.records = records, .counts = kFiveVolumesCounts}));
  EXPECT_EQ(VolumeNamed(examined, "Simple")[2], "Disk1-01 on Disk1, 1000 at 0 = 63, offset 0, column 0");
}

// Names that fill two slots, their pieces apart and in the wrong order.
TEST(DynamicDisk, RecordOfSeveralSlotsIsPutTogether) {
  const std::string name(120, 'L');
  std::vector<VblkRecord> records = FiveVolumes();
  const VblkRecord longName = VolumeRecord({.id = 10, .name = name, .size = 1000, .hint = "E:"});
  records[4] = {.count = 0};
  Disk disk = MakeGroupDisk({.records = records, .counts = kFiveVolumesCounts});
  PutFragments(disk, kConfig, {41, 4}, longName);
  const Examined examined = ExamineLdm(disk);
  EXPECT_EQ(Failed(examined.checks), Texts{});
  EXPECT_EQ(VolumeNamed(examined, name)[0], name + ": simple, ACTIVE, 1000, hint [E:]");
}

TEST(DynamicDisk, RecordThatLacksASlotIsMissing) {
  Disk disk = MakeGroupDisk({.records = FiveVolumes(), .counts = kFiveVolumesCounts});
  PutFragments(disk, kConfig, {40, 41}, VolumeRecord({.id = 99, .name = std::string(120, 'L')}));
  disk.At(kFirstSlots + 10).Be16(128 + 14, 0);
  const Examined examined = ExamineLdm(disk);
  EXPECT_EQ(Failed(examined.checks), Texts{"VBLK fragments"});
  EXPECT_EQ(ChecksNamed(examined.checks, "VBLK fragments"),
            Texts{"sector 30748: missing: group 44: 1 of 2 slots instead of all its slots"});
}

TEST(DynamicDisk, SlotsThatContradictEachOtherAreBad) {
  Disk disk = FiveVolumesDisk();
  const VblkRecord record = VolumeRecord({.id = 99, .name = std::string(120, 'L')});
  PutFragments(disk, kConfig, {40, 41, 42}, record);
  disk.At(kFirstSlots + 10).Be16(2 * 128 + 12, 1);  // the third says that it is the second
  PutFragments(disk, kConfig, {44, 45}, record);
  disk.At(kFirstSlots + 11).Be16(128 + 12, 2);  // the third of two
  EXPECT_EQ(
      ChecksNamed(ExamineLdm(disk).checks, "VBLK fragments"),
      (Texts{"sector 30748: bad: group 44: slot 2 of 3 beside others of 3 instead of each of its slots once",
             "sector 30749: bad: group 48: slot 3 of 2 instead of each of its slots once",
             "sector 30748: missing: group 44: 2 of 3 slots instead of all its slots",
             "sector 30749: missing: group 48: 1 of 2 slots instead of all its slots"}));
}

// Until the transaction ends the volume has its old size.
TEST(DynamicDisk, RecordsThatAreNotYetActiveAreLeftOut) {
  std::vector<VblkRecord> records = FiveVolumes();
  records[4].updateStatus = 1;
  VblkRecord larger = VolumeRecord({.id = 10, .name = "Simple", .size = 5000});
  larger.updateStatus = 2;
  records.push_back(larger);
  const Examined examined = ExamineLdm(MakeGroupDisk({.records = records, .counts = kFiveVolumesCounts}));
  EXPECT_EQ(Failed(examined.checks), Texts{});
  EXPECT_EQ(VolumeNamed(examined, "Simple")[0], "Simple: simple, ACTIVE, 1000, hint [E:]");
  EXPECT_EQ(examined.dynamic->remarks, (Texts{"Records created but not yet active, and left out: 1.",
                                              "Records about to be deleted: 1."}));
}

TEST(DynamicDisk, PartitionsWithoutComponentOrVolumeAreOrphans) {
  std::vector<VblkRecord> records = FiveVolumes();
  records[4] = {.count = 0};  // the volume of Disk1-01
  records[8] = {.count = 0};  // the component of Disk1-02 and Disk1-03
  const Examined examined = ExamineLdm(MakeGroupDisk({.records = records, .counts = kFiveVolumesCounts}));
  ASSERT_TRUE(examined.dynamic);
  Texts names;
  for (const DynamicPartition& partition : examined.dynamic->orphans)
    names.push_back(Words(partition));
  EXPECT_EQ(names, (Texts{"Disk1-01 on Disk1, 1000 at 0 = 63, offset 0, column 0",
                          "Disk1-02 on Disk1, 2000 at 1000 = 1063, offset 0, column 0",
                          "Disk1-03 on Disk1, 500 at 3000 = 3063, offset 2000, column 0"}));
  EXPECT_EQ(ChecksNamed(examined.checks, "VBLK named objects"),
            (Texts{"sector 30740: missing: no component 21 instead of the component of Disk1-02",
                   "sector 30740: missing: no component 21 instead of the component of Disk1-03",
                   "sector 30739: missing: no volume 10 instead of the volume of Simple-01"}));
}

TEST(DynamicDisk, NamesAreShownSafely) {
  std::vector<VblkRecord> records = FiveVolumes();
  records[4] = VolumeRecord({.id = 10, .name = "\x1B[2J\xE2\x80\xAE", .size = 1000});
  const Examined examined = ExamineLdm(MakeGroupDisk({.records = records, .counts = kFiveVolumesCounts}));
  ASSERT_TRUE(examined.dynamic);
  EXPECT_EQ(examined.dynamic->volumes[0].name, "?[2J???");
}

}  // namespace
}  // namespace trovisk::test
