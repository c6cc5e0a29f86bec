// The examination of FAT volumes.

#include "mbr/examine_fat.h"

#include "tests/disks/fat.h"
#include "tests/map/examined.h"

namespace trovisk::test {
namespace {

constexpr u64 kFat16Sectors = 40113;
constexpr u64 kFat32Sectors = 71232;

// The first sector of a FAT begins with the media byte.
void PutFats(Disk& disk, u64 first, u64 second, u8 media = 0xF8) {
  disk.At(first).Bytes(0, {media, 0xFF, 0xFF});
  disk.At(second).Bytes(0, {media, 0xFF, 0xFF});
}

// FATs at 64 and 104.
Disk Fat16Disk(const FatBootSector& boot = {}) {
  Disk disk(50000);
  PutFatBootSector(disk, kFatVolume, boot);
  PutFats(disk, 64, 104);
  return disk;
}

// FSInfo at 64, backup at 69, FATs at 95 and 695.
Disk Fat32Disk(const Fat32BootSector& boot = {}) {
  Disk disk(80000);
  PutFat32BootSector(disk, kFatVolume, boot);
  PutFat32BootSector(disk, kFatVolume + 6, boot);
  PutFsInfo(disk, kFatVolume + 1, {});
  PutFats(disk, 95, 695);
  return disk;
}

VolumeFindings Examined16(const Disk& disk) {
  return Examined(ExamineFat, disk, kFatVolume, kFat16Sectors);
}

VolumeFindings Examined32(const Disk& disk) {
  return Examined(ExamineFat, disk, kFatVolume, kFat32Sectors);
}

TEST(ExamineFat, Fat16AreasFollowOneAnother) {
  const VolumeFindings findings = Examined16(Fat16Disk({.label = "ARCHIVE    "}));
  EXPECT_EQ(findings.type, "FAT16");
  EXPECT_EQ(findings.label, "ARCHIVE");
  EXPECT_EQ(findings.sectors, kFat16Sectors);
  EXPECT_EQ(AreasOf(findings),
            "63-63 reserved\n"
            "64-103 FAT 1\n"
            "104-143 FAT 2\n"
            "144-175 root directory\n"
            "176-40175 data\n");
  EXPECT_EQ(NotGood(findings), "");
}

TEST(ExamineFat, Fat32AreasHaveFsInfoAndBackup) {
  const VolumeFindings findings = Examined32(Fat32Disk());
  EXPECT_EQ(findings.type, "FAT32");
  EXPECT_EQ(findings.label, "");
  EXPECT_EQ(findings.sectors, kFat32Sectors);
  EXPECT_EQ(AreasOf(findings),
            "63-94 reserved\n"
            "64-64 FSInfo\n"
            "69-69 backup boot sector\n"
            "95-694 FAT 1\n"
            "695-1294 FAT 2\n"
            "1295-71294 data\n");
  EXPECT_EQ(NotGood(findings), "");
}

TEST(ExamineFat, FourThousandAndEightyFourClustersAreFat12) {
  EXPECT_EQ(Examined16(Fat16Disk({.totalSectors16 = 113 + 4 * 4084})).type, "FAT12");
  EXPECT_EQ(Examined16(Fat16Disk({.totalSectors16 = 113 + 4 * 4085})).type, "FAT16");
}

// A volume of sectors of 1024 bytes takes twice as many of the disk's.
TEST(ExamineFat, LargerSectorsOfTheVolumeAreConverted) {
  Disk disk(50000);
  PutFatBootSector(disk, kFatVolume, {.bytesPerSector = 1024, .totalSectors16 = 20000});
  PutFats(disk, 65, 145);
  const VolumeFindings findings = Examined(ExamineFat, disk, kFatVolume, 40000);
  EXPECT_EQ(findings.sectors, 40000);
  EXPECT_EQ(AreasOf(findings),
            "63-64 reserved\n"
            "65-144 FAT 1\n"
            "145-224 FAT 2\n"
            "225-256 root directory\n"
            "257-40056 data\n");
  EXPECT_EQ(NotGood(findings), "");
}

// On sectors of 4096 bytes, areas of a volume of 512 share sectors of the disk.
TEST(ExamineFat, SmallerSectorsOfTheVolumeAreConverted) {
  Disk disk(6000, 4096);
  PutFatBootSector(disk, 10, {.totalSectors16 = 40113}).Bytes(512, {0xF8, 0xFF, 0xFF});
  disk.At(15).Bytes(512, {0xF8, 0xFF, 0xFF});
  const VolumeFindings findings = Examined(ExamineFat, disk, 10, 5015);
  EXPECT_EQ(findings.sectors, 5015);
  EXPECT_EQ(AreasOf(findings),
            "10-10 reserved\n"
            "10-15 FAT 1\n"
            "15-20 FAT 2\n"
            "20-24 root directory\n"
            "24-5024 data\n");
  EXPECT_EQ(NotGood(findings), "");
}

TEST(ExamineFat, EndMarkIsMissed) {
  EXPECT_EQ(Judged(Examined16(Fat16Disk({.endMark = 0xAA54})), "FAT end mark"),
            "sector 63 bad: 0x54AA, 0x55AA");
}

TEST(ExamineFat, TotalIsHeldAgainstThePartition) {
  const Disk disk = Fat16Disk();
  EXPECT_EQ(Judged(Examined(ExamineFat, disk, kFatVolume, kFat16Sectors), "FAT total sectors"),
            "sector 63 good: 40113, at most 40113");
  EXPECT_EQ(Judged(Examined(ExamineFat, disk, kFatVolume, kFat16Sectors - 1), "FAT total sectors"),
            "sector 63 bad: 40113, at most 40112");
}

TEST(ExamineFat, TotalIsHeldAgainstTheDiskWhereNoPartitionIs) {
  EXPECT_EQ(Judged(Examined(ExamineFat, Fat16Disk(), kFatVolume, 0), "FAT total sectors"),
            "sector 63 good: 40113, at most 49937");
}

// 39 sectors of 512 bytes hold 9984 entries of 16 bits; 2 entries stand for no cluster.
TEST(ExamineFat, FatThatHoldsTooFewClusters) {
  Disk disk(50000);
  PutFatBootSector(disk, kFatVolume, {.totalSectors16 = 111 + 4 * 9982, .fatSize16 = 39});
  EXPECT_EQ(Judged(Examined16(disk), "FAT size"), "sector 63 good: 9984 entries, at least 9984");
  PutFatBootSector(disk, kFatVolume, {.totalSectors16 = 111 + 4 * 9983, .fatSize16 = 39});
  EXPECT_EQ(Judged(Examined16(disk), "FAT size"), "sector 63 bad: 9984 entries, at least 9985");
}

TEST(ExamineFat, MediaByteOfTheFat) {
  Disk disk = Fat16Disk();
  disk.At(64).U8(0, 0xF0);
  EXPECT_EQ(Judged(Examined16(disk), "FAT media byte"), "sector 64 bad: 0xF0, 0xF8");
}

TEST(ExamineFat, CopyOfTheFatDiffers) {
  Disk disk = Fat16Disk();
  disk.At(104).U8(0x1FF, 1);
  EXPECT_EQ(Judged(Examined16(disk), "FAT copy, first sector"),
            "sector 104 bad: other bytes from 0x1FF on, the bytes of FAT 1");
}

TEST(ExamineFat, CopyOfTheFatIsNotHeldAgainstOneThatIsNotMirrored) {
  Disk disk = Fat32Disk();
  disk.At(kFatVolume).Le16(0x028, 0x80);
  disk.At(kFatVolume + 6).Le16(0x028, 0x80);
  disk.At(695).U8(0x1FF, 1);
  EXPECT_EQ(Judged(Examined32(disk), "FAT copy, first sector"),
            "sector 695 not checked: , the FATs are not mirrored");
}

TEST(ExamineFat, FatsBeyondTheEndOfTheDiskAreMissing) {
  Disk disk = Fat16Disk();
  disk.Resize(100);
  EXPECT_EQ(Judged(Examined16(disk), "FAT copy, first sector"),
            "sector 104 missing: unreadable, the bytes of FAT 1");
  disk.Resize(64);
  EXPECT_EQ(Judged(Examined16(disk), "FAT media byte"), "sector 64 missing: unreadable, 0xF8");
}

TEST(ExamineFat, BackupDiffers) {
  Disk disk = Fat32Disk();
  disk.At(kFatVolume + 6).U8(0x041, 1);
  EXPECT_EQ(Judged(Examined32(disk), "FAT32 backup boot sector"),
            "sector 69 bad: other bytes from 0x041 on, the bytes of the boot sector");
}

TEST(ExamineFat, BackupOfZerosIsMissing) {
  Disk disk = Fat32Disk();
  disk.At(kFatVolume + 6).Fill(0, 512, 0);
  EXPECT_EQ(Judged(Examined32(disk), "FAT32 backup boot sector"),
            "sector 69 missing: zeros, the bytes of the boot sector");
}

TEST(ExamineFat, BackupThatIsNotNamed) {
  EXPECT_EQ(Judged(Examined32(Fat32Disk({.backupSector = 0})), "FAT32 backup boot sector"),
            "sector 63 not checked: , none is named");
  EXPECT_EQ(Judged(Examined32(Fat32Disk({.backupSector = 32})), "FAT32 backup boot sector"),
            "sector 63 not checked: , its place lies behind the reserved sectors");
}

TEST(ExamineFat, EachSignatureOfFsInfo) {
  Disk disk = Fat32Disk();
  PutFsInfo(disk, kFatVolume + 1, {.leadSignature = 0x41615253});
  EXPECT_EQ(Judged(Examined32(disk), "FSInfo signatures"),
            "sector 64 bad: 0x41615253, 0x61417272, 0xAA550000, 0x41615252, 0x61417272, 0xAA550000");
  PutFsInfo(disk, kFatVolume + 1, {.structureSignature = 0});
  EXPECT_EQ(Judged(Examined32(disk), "FSInfo signatures"),
            "sector 64 bad: 0x41615252, 0x00000000, 0xAA550000, 0x41615252, 0x61417272, 0xAA550000");
  PutFsInfo(disk, kFatVolume + 1, {.endMark = 0x55AA});
  EXPECT_EQ(Judged(Examined32(disk), "FSInfo signatures"),
            "sector 64 bad: 0x41615252, 0x61417272, 0x55AA0000, 0x41615252, 0x61417272, 0xAA550000");
}

TEST(ExamineFat, DamagedBootSectorIsReplacedByItsBackup) {
  Disk disk = Fat32Disk({.label = "SPARE      "});
  disk.At(kFatVolume).Fill(0, 512, 0);
  const VolumeFindings findings = Examined32(disk);
  EXPECT_EQ(findings.label, "SPARE");
  EXPECT_EQ(findings.sectors, kFat32Sectors);
  EXPECT_EQ(Judged(findings, "FAT boot sector"), "sector 63 missing: zeros, whole");
  EXPECT_EQ(Judged(findings, "FAT32 backup boot sector"), "sector 69 good: whole, whole");
  EXPECT_EQ(findings.areas.size(), 6);
  EXPECT_EQ(NotGood(findings), "FAT boot sector\n");
}

TEST(ExamineFat, DamagedBootSectorWithoutBackupLeavesNothing) {
  Disk disk = Fat16Disk({.sectorsPerCluster = 3});
  const VolumeFindings findings = Examined16(disk);
  EXPECT_EQ(findings.type, "FAT");
  EXPECT_EQ(findings.sectors, 0);
  EXPECT_EQ(AreasOf(findings), "");
  EXPECT_EQ(Judged(findings, "FAT boot sector"), "sector 63 bad: 3 sectors per cluster, whole");
}

TEST(ExamineFat, UnreadableBootSectorIsMissing) {
  Disk disk = Fat16Disk();
  disk.Resize(kFatVolume);
  EXPECT_EQ(Judged(Examined16(disk), "FAT boot sector"), "sector 63 missing: unreadable, whole");
}

TEST(ExamineFat, FurtherFatsAreOneArea) {
  const VolumeFindings findings = Examined16(Fat16Disk({.fats = 7, .totalSectors16 = 50000}));
  EXPECT_EQ(AreasOf(findings),
            "63-63 reserved\n"
            "64-103 FAT 1\n"
            "104-143 FAT 2\n"
            "144-183 FAT 3\n"
            "184-223 FAT 4\n"
            "224-343 FATs 5 to 7\n"
            "344-375 root directory\n"
            "376-50059 data\n");
}

TEST(ExamineFat, EveryFieldAtItsLargestEnds) {
  Disk disk(50000);
  PutFat32BootSector(disk, kFatVolume,
                     {.bytesPerSector = 4096,
                      .sectorsPerCluster = 128,
                      .reservedSectors = 0xFFFF,
                      .fats = 255,
                      .totalSectors32 = 0xFFFFFFFF,
                      .fatSize32 = 0xFFFFFFFF});
  EXPECT_EQ(Judged(Examined32(disk), "FAT boot sector"), "sector 63 bad: no room for data, whole");
}

}  // namespace
}  // namespace trovisk::test
