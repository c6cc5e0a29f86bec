// Databases that lie: what is read, kept and said of them is bounded.

#include <fstream>
#include <map>
#include <random>

#include "tests/map/ldm_words.h"
#include "tests/support/limits.h"

namespace trovisk::test {
namespace {

constexpr u64 kMost = ~u64{0};
constexpr u64 kConfig = 30720;
constexpr u64 kVmdb = kConfig + kGroupVmdb;

// A disk whose configuration region has room for as many slots.
Disk DiskWithSlots(u64 slots) {
  const u64 region = slots / 4 + 2;
  Disk disk(region + 4000);
  Privhead header = GroupPrivhead({});
  header.configStart = 1000;
  header.configSize = region + 100;
  header.logicalEnd = 900;
  header.tocCount = 1;
  PutPrivhead(disk, 6, header);
  PutTocBlock(disk, 1002, {.config = {.name = "config", .start = kGroupVmdb, .size = region}});
  PutVmdb(disk, 1000 + kGroupVmdb, {.sequence = 0xFFFFFFFF, .groupId = kGroupGuid});
  return disk;
}

// No name of a check stands there more often than the text says, plus one for the copies.
void ExpectFewChecks(const std::vector<Check>& checks) {
  std::map<std::string, u64> counts;
  for (const Check& check : checks)
    EXPECT_LE(++counts[check.name], 16U) << check.name;
}

TEST(HostileLdm, TenThousandPartitionsOfOneComponentAreKept) {
  Disk disk = DiskWithSlots(10'004);
  PutGroupSlot(disk, 1000, 0, DiskRecord(2, "Disk1", GroupDiskGuid(1)));
  PutGroupSlot(disk, 1000, 1, VolumeRecord({.id = 3, .name = "Volume", .size = kMost}));
  PutGroupSlot(disk, 1000, 2,
               ComponentRecord({.id = 4, .name = "Component", .children = kMost, .volume = 3}));
  const std::string name(40, 'n');
  for (u64 i = 0; i < 10'000; ++i) {
    PutGroupSlot(
        disk, 1000, 3 + i,
        PartitionRecord({.id = 5 + i, .name = name, .start = i, .size = kMost, .component = 4, .disk = 2}));
  }
  const Examined examined = ExamineLdm(disk);
  ASSERT_TRUE(examined.dynamic);
  ASSERT_EQ(examined.dynamic->volumes.size(), 1U);
  EXPECT_EQ(examined.dynamic->volumes[0].type, "spanned");
  EXPECT_EQ(examined.dynamic->volumes[0].components[0].partitions.size(), 10'000U);
  ExpectFewChecks(examined.checks);
  EXPECT_EQ(
      examined.dynamic->remarks,
      Texts{"The check \"VBLK partitions in the logical disk\" failed 10000 times; the first 16 are shown."});
}

TEST(HostileLdm, MoreRecordsThanAnyGroupHasAreCut) {
  Disk disk = DiskWithSlots(20'000);
  for (u64 i = 0; i < 20'000; ++i)
    PutGroupSlot(disk, 1000, i, DiskRecord(i, "Disk", "guid"));
  const Examined examined = ExamineLdm(disk);
  ASSERT_TRUE(examined.dynamic);
  EXPECT_EQ(examined.dynamic->disks.size(), 16384U);
  EXPECT_EQ(examined.dynamic->remarks, Texts{"Only the first 16384 records were read, 3616 were left out."});
}

// A metadata partition may end where numbers do, if nobody knows where the disk ends.
TEST(HostileLdm, ConfigurationInTheLastSectorThatCanBeNumberedEnds) {
  const Disk built(8);
  const OpenedDisk opened(built);
  std::vector<Check> checks;
  EXPECT_FALSE(ExamineDynamicDisk(kMost, kMost, checks).has_value());
}

// 65536 slots are 8 MiB; each claims to be the first of 32 of a record of its own.
TEST(HostileLdm, RegionThatIsFullOfPiecesTakesLittleTimeAndMemory) {
  const std::string path = ScratchPath("pieces.img");
  {
    Disk disk = DiskWithSlots(70'000);
    for (u64 i = 0; i < 70'000; ++i)
      PutGroupSlot(disk, 1000, i, {.count = 32, .type = 0x51, .data = VblkData().Fill(104, 0xFF)});
    disk.Write(path);
  }
  const Outcome outcome = WithinLimits([&] {
    return RunChild([&] {
      trovisk::disk.Reset();
      trovisk::disk.Open(L"opened", path.c_str());
      std::vector<Check> checks;
      const auto dynamic = ExamineDynamicDisk(6, kMost - 1, checks);
      ExpectFewChecks(checks);
      const bool said = dynamic && dynamic->remarks.size() == 2;
      std::exit(said && !::testing::Test::HasFailure() ? 0 : 1);
    });
  });
  EXPECT_EQ(outcome.status, 0) << outcome.err;
}

// A component that is its own volume, a partition that is its own component and its own disk.
TEST(HostileLdm, ObjectsThatNameThemselvesEnd) {
  Disk disk = DiskWithSlots(16);
  PutGroupSlot(disk, 1000, 0, ComponentRecord({.id = 1, .name = "Loop", .volume = 1}));
  PutGroupSlot(disk, 1000, 1, PartitionRecord({.id = 2, .name = "Own", .component = 2, .disk = 2}));
  PutGroupSlot(disk, 1000, 2, VolumeRecord({.id = 3, .name = "Volume"}));
  PutGroupSlot(disk, 1000, 3, ComponentRecord({.id = 3, .name = "Same", .volume = 3}));
  const Examined examined = ExamineLdm(disk);
  ASSERT_TRUE(examined.dynamic);
  EXPECT_EQ(examined.dynamic->orphans.size(), 1U);
  EXPECT_EQ(ChecksNamed(examined.checks, "VBLK named objects").size(), 3U);
  EXPECT_EQ(ChecksNamed(examined.checks, "VBLK object identifiers").size(), 1U);
}

TEST(HostileLdm, PartitionBeyondAnySectorHasNoPlace) {
  Disk disk = DiskWithSlots(16);
  PutGroupSlot(disk, 1000, 0, DiskRecord(2, "Disk1", GroupDiskGuid(1)));
  PutGroupSlot(disk, 1000, 1,
               PartitionRecord({.id = 3, .name = "Far", .start = kMost, .size = 1, .disk = 2}));
  const Examined examined = ExamineLdm(disk);
  ASSERT_TRUE(examined.dynamic);
  ASSERT_EQ(examined.dynamic->orphans.size(), 1U);
  EXPECT_EQ(examined.dynamic->orphans[0].absoluteStart, kMost);
}

// Each number of the header is the largest there is.
TEST(HostileLdm, PrivheadWithTheLargestNumbersIsBad) {
  Disk disk = DiskWithSlots(16);
  disk.At(6).Fill(0x20, 16, 0xFF).Fill(0x11B, 0x6C, 0xFF);
  const Examined examined = ExamineLdm(disk);
  ASSERT_TRUE(examined.dynamic);
  EXPECT_EQ(Failed(examined.checks),
            (Texts{"PRIVHEAD alternate 1", "PRIVHEAD alternate 2", "LDM configuration area",
                   "LDM logical disk", "TOCBLOCK copies", "VMDB"}));
}

TEST(HostileLdm, RegionsWithTheLargestNumbersAreBad) {
  Disk disk = MakeGroupDisk({.records = FiveVolumes(), .counts = kFiveVolumesCounts});
  for (const u64 place : {u64{2}, u64{2045}}) {
    for (const std::size_t field : {46U, 54U, 80U, 88U})
      disk.At(kConfig + place).Be64(field, kMost);
  }
  const Examined examined = ExamineLdm(disk);
  EXPECT_EQ(ChecksNamed(examined.checks, "TOCBLOCK regions").size(), 1U);
  EXPECT_EQ(Failed(examined.checks)[0], "TOCBLOCK regions");
  for (const Area& area : examined.dynamic->areas)
    EXPECT_LE(area.first, area.last) << area.name;
}

// Wrong bytes anywhere in the structures: nothing is read outside of them, and everything ends.
TEST(HostileLdm, WrongBytesAnywhereEndSoonAndSayLittle) {
  const std::string path = ScratchPath("wrong.img");
  MakeGroupDisk({.records = FiveVolumes(), .counts = kFiveVolumesCounts}).Write(path);
  const std::string whole = ReadFile(path);
  const u64 places[] = {6,         kConfig + 2, kConfig + 1856, kConfig + 2045, kVmdb,
                        kVmdb + 1, kVmdb + 2,   kVmdb + 4,      kVmdb + 6};
  std::mt19937 random(17);
  std::string complaints;
  errors.DirectTo(&complaints);
  const auto write = [&](u64 at, char value) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(at));
    file.put(value);
  };
  for (int round = 0; round < 500; ++round) {
    std::vector<u64> changed;
    for (u64 changes = random() % 12 + 1; changes > 0; --changes) {
      const u64 at = places[random() % std::size(places)] * 512 + random() % 512;
      const char values[] = {0, 1, '\x7F', '\x80', '\xFF', static_cast<char>(random())};
      write(at, values[random() % std::size(values)]);
      changed.push_back(at);
    }
    trovisk::disk.Reset();
    ASSERT_TRUE(trovisk::disk.Open(L"opened", path.c_str()));
    std::vector<Check> checks;
    const auto dynamic = ExamineDynamicDisk(6, 32767, checks);
    ExpectFewChecks(checks);
    for (const Area& area : dynamic ? dynamic->areas : std::vector<Area>{})
      ASSERT_LE(area.first, area.last) << area.name;
    for (const u64 at : changed)
      write(at, whole[at]);
  }
  trovisk::disk.Reset();
  errors.DirectTo(nullptr);
}

}  // namespace
}  // namespace trovisk::test
