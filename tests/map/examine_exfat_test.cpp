// The examination of exFAT volumes.

#include "tests/disks/exfat.h"
#include "tests/map/examined.h"
#include "volumes/examinations.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 2048;
constexpr u64 kPartition = 12288;

Disk ExFatDisk(const ExFatBootSector& boot = {}) {
  Disk disk(20000);
  PutExFatBootRegion(disk, kVolume, boot);
  PutExFatBootRegion(disk, kVolume + 12, boot);
  return disk;
}

VolumeFindings ExaminedExFat(const Disk& disk, u64 sectors = kPartition) {
  return Examined(ExamineExFat, disk, kVolume, sectors);
}

TEST(ExamineExFat, AreasThatTheBootSectorStates) {
  const VolumeFindings findings = ExaminedExFat(ExFatDisk());
  EXPECT_EQ(findings.type, "exFAT");
  EXPECT_EQ(findings.sectors, kPartition);
  EXPECT_EQ(AreasOf(findings),
            "2048-2059 boot region\n"
            "2060-2071 backup boot region\n"
            "2176-2187 FAT\n"
            "2304-14335 cluster heap\n");
  EXPECT_EQ(NotGood(findings), "");
}

TEST(ExamineExFat, SecondFatFollowsTheFirst) {
  EXPECT_EQ(AreasOf(ExaminedExFat(ExFatDisk({.fatCount = 2}))),
            "2048-2059 boot region\n"
            "2060-2071 backup boot region\n"
            "2176-2187 FAT 1\n"
            "2188-2199 FAT 2\n"
            "2304-14335 cluster heap\n");
}

// The volume's sectors of 4096 bytes are eight of the disk's.
TEST(ExamineExFat, LargerSectorsOfTheVolumeAreConverted) {
  Disk disk(20000);
  PutExFatBootSector(disk, kVolume,
                     {.volumeLength = 1536,
                      .fatOffset = 32,
                      .fatLength = 2,
                      .clusterHeapOffset = 64,
                      .clusterCount = 1472,
                      .sectorShift = 12,
                      .clusterShift = 0});
  const VolumeFindings findings = ExaminedExFat(disk);
  EXPECT_EQ(findings.sectors, kPartition);
  EXPECT_EQ(AreasOf(findings),
            "2048-2143 boot region\n"
            "2144-2239 backup boot region\n"
            "2304-2319 FAT\n"
            "2560-14335 cluster heap\n");
  EXPECT_EQ(Judged(findings, "exFAT geometry"),
            "sector 2048 good: FAT, then cluster heap, FAT, then cluster heap");
}

TEST(ExamineExFat, ChecksumOf4096ByteSectors) {
  Disk disk(2000, 4096);
  const ExFatBootSector boot = {.volumeLength = 1500,
                                .clusterHeapOffset = 256,
                                .clusterCount = 1244,
                                .sectorShift = 12,
                                .clusterShift = 0};
  PutExFatBootRegion(disk, 100, boot);
  PutExFatBootRegion(disk, 112, boot);
  EXPECT_EQ(NotGood(Examined(ExamineExFat, disk, 100, 1500)), "");
}

TEST(ExamineExFat, EndMarkIsMissed) {
  EXPECT_EQ(Judged(ExaminedExFat(ExFatDisk({.endMark = 0xAA00})), "exFAT end mark"),
            "sector 2048 bad: 0x00AA, 0x55AA");
}

TEST(ExamineExFat, AreasThatDoNotFit) {
  const auto geometry = [](const ExFatBootSector& boot) {
    return Judged(ExaminedExFat(ExFatDisk(boot)), "exFAT geometry");
  };
  const std::string wanted = ", FAT, then cluster heap";
  EXPECT_EQ(geometry({.fatOffset = 23}), "sector 2048 bad: FAT in the boot regions" + wanted);
  EXPECT_EQ(geometry({.fatLength = 11}), "sector 2048 bad: FAT too small for the clusters" + wanted);
  EXPECT_EQ(geometry({.fatLength = 129}), "sector 2048 bad: cluster heap in the FAT" + wanted);
  EXPECT_EQ(geometry({.clusterCount = 0}), "sector 2048 bad: no clusters" + wanted);
  EXPECT_EQ(geometry({.clusterCount = 1505}),
            "sector 2048 bad: cluster heap beyond the end of the volume" + wanted);
}

TEST(ExamineExFat, LengthIsHeldAgainstThePartition) {
  EXPECT_EQ(Judged(ExaminedExFat(ExFatDisk(), kPartition - 1), "exFAT volume length"),
            "sector 2048 bad: 12288, at most 12287");
}

// Flags and the percentage in use change while the volume is in use.
TEST(ExamineExFat, VolatileFieldsTurnNoCheck) {
  Disk disk = ExFatDisk();
  disk.At(kVolume).Le16(106, 0x0002).U8(112, 99);
  EXPECT_EQ(NotGood(ExaminedExFat(disk)), "");
}

TEST(ExamineExFat, EveryByteOfTheRegionCounts) {
  for (const u64 sector : {0U, 1U, 10U}) {
    Disk disk = ExFatDisk();
    disk.At(kVolume + sector).U8(0x105, 0x5A);
    EXPECT_EQ(NotGood(ExaminedExFat(disk)), "exFAT boot checksum\nexFAT backup boot region\n") << sector;
  }
}

TEST(ExamineExFat, ChecksumRepeatsToTheEndOfItsSector) {
  Disk disk = ExFatDisk();
  disk.At(kVolume + 12 + 11).Le32(508, 0x12345678);
  const std::string judged = Judged(ExaminedExFat(disk), "exFAT backup boot checksum");
  EXPECT_TRUE(judged.starts_with("sector 2060 bad: 0x12345678, 0x")) << judged;
}

TEST(ExamineExFat, BackupRegionDiffers) {
  Disk disk = ExFatDisk();
  PutExFatBootRegion(disk, kVolume + 12, {.serialNumber = 1});
  EXPECT_EQ(Judged(ExaminedExFat(disk), "exFAT backup boot region"),
            "sector 2060 bad: other bytes from 0x064 on, the bytes of the boot region");
}

TEST(ExamineExFat, BackupRegionIsMissing) {
  Disk disk = ExFatDisk();
  for (u64 sector = 0; sector < 12; ++sector)
    disk.At(kVolume + 12 + sector).Fill(0, 512, 0);
  EXPECT_EQ(Judged(ExaminedExFat(disk), "exFAT backup boot region"),
            "sector 2060 missing: zeros, the bytes of the boot region");
  disk.Resize(kVolume + 20);
  EXPECT_EQ(Judged(ExaminedExFat(disk), "exFAT backup boot checksum"),
            "sector 2060 missing: unreadable, the checksum of 11 sectors");
}

TEST(ExamineExFat, DamagedBootSectorIsReplacedByItsBackup) {
  Disk disk = ExFatDisk();
  disk.At(kVolume).Fill(0, 512, 0);
  const VolumeFindings findings = ExaminedExFat(disk);
  EXPECT_EQ(findings.sectors, kPartition);
  EXPECT_EQ(findings.areas.size(), 4);
  EXPECT_EQ(Judged(findings, "exFAT boot sector"), "sector 2048 missing: zeros, whole");
  EXPECT_EQ(Judged(findings, "exFAT backup boot sector"), "sector 2060 good: whole, whole");
  EXPECT_EQ(NotGood(findings), "exFAT boot sector\nexFAT boot checksum\n");
}

TEST(ExamineExFat, InsaneBootSectorWithoutBackupLeavesNothing) {
  for (const ExFatBootSector& boot : {ExFatBootSector{.sectorShift = 8}, ExFatBootSector{.sectorShift = 255},
                                      ExFatBootSector{.clusterShift = 17}, ExFatBootSector{.fatCount = 3},
                                      ExFatBootSector{.volumeLength = ~u64{0}}}) {
    const VolumeFindings findings = ExaminedExFat(ExFatDisk(boot));
    EXPECT_EQ(findings.sectors, 0);
    EXPECT_EQ(AreasOf(findings), "");
    EXPECT_EQ(NotGood(findings), "exFAT boot sector\n");
  }
}

TEST(ExamineExFat, ParametersOfFatInTheirPlaceAreNoExFat) {
  Disk disk = ExFatDisk();
  disk.At(kVolume).U8(0x03F, 1);
  disk.At(kVolume + 12).U8(0x03F, 1);
  EXPECT_EQ(Judged(ExaminedExFat(disk), "exFAT boot sector"),
            "sector 2048 bad: FAT parameters where zeros must be, whole");
}

}  // namespace
}  // namespace trovisk::test
