// Disks whose tables count in sectors of another size than the disk's.

#include <gtest/gtest.h>

#include "tests/disks/exfat.h"
#include "tests/disks/fat.h"
#include "tests/disks/gpt.h"
#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/survey/surveyed.h"

namespace trovisk::test {
namespace {

// The bytes of a disk, in sectors of another size.
Disk InSectorsOf(u32 size, const Disk& disk) {
  Disk other(disk.Sectors() * disk.SectorSize() / size, size);
  for (const auto& [number, sector] : disk.Touched()) {
    for (u64 i = 0; i < disk.SectorSize(); i += 512) {
      const u64 position = number * disk.SectorSize() + i;
      other.At(position / size).Bytes(position % size, SliceAt(sector.View(), i, 512));
    }
  }
  return other;
}

constexpr u32 kFirst = 64;

Disk WithPartition(u32 sectorSize, u8 type) {
  Disk disk(8192, sectorSize);
  PutBootRecord(disk, 0, {.entries = {{.type = type, .first = kFirst, .count = 1000}}});
  return disk;
}

std::string Expected(const Disk& disk) {
  const DiskMap map = SurveyOf(disk);
  const Check* const check = CheckOf(map, "sector size", 0);
  if (check == nullptr) return "no check";
  EXPECT_EQ(check->verdict, Verdict::kBad);
  EXPECT_EQ(check->found, std::to_string(disk.SectorSize()));
  EXPECT_EQ(map.ExitStatus(), 2);
  return check->expected;
}

TEST(SectorSize, AGptHeaderOfOtherSectors) {
  Disk large(8192, 4096);
  PutGpt(large, {{.first = 100, .last = 199}});
  EXPECT_EQ(Expected(InSectorsOf(512, large)),
            "4096: a GPT header at byte 4096; PATH@4096 opens an image so");
  Disk small(8192, 512);
  PutGpt(small, {{.first = 100, .last = 199}});
  EXPECT_EQ(Expected(InSectorsOf(4096, small)), "512: a GPT header at byte 512; PATH@512 opens an image so");
}

TEST(SectorSize, AVolumeOfOtherSectorsWhereItsPartitionWouldBegin) {
  Disk ntfs = WithPartition(4096, 0x07);
  PutNtfsBootSector(ntfs, kFirst, {.bytesPerSector = 4096, .totalSectors = 999});
  EXPECT_EQ(Expected(InSectorsOf(512, ntfs)),
            "4096: a boot sector at byte 262144; PATH@4096 opens an image so");
  Disk exFat = WithPartition(4096, 0x07);
  PutExFatBootSector(exFat, kFirst, {.sectorShift = 12});
  EXPECT_EQ(Expected(InSectorsOf(512, exFat)),
            "4096: a boot sector at byte 262144; PATH@4096 opens an image so");
  Disk fat = WithPartition(512, 0x06);
  PutFatBootSector(fat, kFirst, {});
  EXPECT_EQ(Expected(InSectorsOf(4096, fat)), "512: a boot sector at byte 32768; PATH@512 opens an image so");
}

TEST(SectorSize, IsNotDoubtedWhereTheTablesFitTheDisk) {
  Disk gpt(8192, 4096);
  PutGpt(gpt, {{.first = 100, .last = 199}});
  EXPECT_EQ(Expected(gpt), "no check");
  Disk ntfs = WithPartition(512, 0x07);
  PutNtfsBootSector(ntfs, kFirst, {.totalSectors = 999});
  EXPECT_EQ(Expected(ntfs), "no check");
  EXPECT_EQ(Expected(WithPartition(512, 0x07)), "no check");
}

// What stands where another size would have it, but says that its sectors have the disk's.
TEST(SectorSize, AnotherVolumeInThatPlaceSaysNothing) {
  Disk disk = WithPartition(512, 0x07);
  PutNtfsBootSector(disk, 8 * kFirst, {.totalSectors = 999});
  EXPECT_EQ(Expected(disk), "no check");
}

// One partition that holds a volume of the disk's own sectors settles it.
TEST(SectorSize, OneVolumeInItsPlaceSettlesIt) {
  Disk disk(8192);
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x07, .first = 64, .count = 1000},
                             {.type = 0x06, .first = 2048, .count = 4113}}});
  PutNtfsBootSector(disk, 8 * 64, {.bytesPerSector = 4096, .totalSectors = 999});
  EXPECT_EQ(Expected(disk), "4096: a boot sector at byte 262144; PATH@4096 opens an image so");
  PutFatBootSector(disk, 2048, {});
  EXPECT_EQ(Expected(disk), "no check");
}

}  // namespace
}  // namespace trovisk::test
