// Which volume a boot sector belongs to, whatever its boot code; and what no boot sector is.

#include "map/volume_kind.h"

#include "tests/disks/bitlocker.h"
#include "tests/disks/exfat.h"
#include "tests/disks/fat.h"
#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/disks/refs.h"
#include "tests/map/examined.h"

namespace trovisk::test {
namespace {

VolumeKind KindOf(Sector& sector) {
  return KindOfBootSector(SectorView(sector.View().first<512>()));
}

VolumeKind KindOf(const FatBootSector& boot) {
  Disk disk;
  return KindOf(PutFatBootSector(disk, 0, boot));
}

VolumeKind KindOf(const Fat32BootSector& boot) {
  Disk disk;
  return KindOf(PutFat32BootSector(disk, 0, boot));
}

VolumeKind KindOf(const NtfsBootSector& boot) {
  Disk disk;
  return KindOf(PutNtfsBootSector(disk, 0, boot));
}

VolumeKind KindOf(const ExFatBootSector& boot) {
  Disk disk;
  return KindOf(PutExFatBootSector(disk, 0, boot));
}

TEST(VolumeKind, EachByItsOwnSignature) {
  Disk disk;
  EXPECT_EQ(KindOf(FatBootSector{}), VolumeKind::kFat);
  EXPECT_EQ(KindOf(Fat32BootSector{}), VolumeKind::kFat);
  EXPECT_EQ(KindOf(NtfsBootSector{.code = {}}), VolumeKind::kNtfs);
  EXPECT_EQ(KindOf(ExFatBootSector{}), VolumeKind::kExFat);
  EXPECT_EQ(KindOf(PutReFsBootRecord(disk, 1)), VolumeKind::kReFs);
  EXPECT_EQ(KindOf(PutBitLocker(disk, 2, BitLockerSeven{})), VolumeKind::kBitLocker);
  EXPECT_EQ(KindOf(PutBitLocker(disk, 3, BitLockerVista{})), VolumeKind::kBitLocker);
}

// What other systems see of it is a FAT volume.
TEST(VolumeKind, BitLockerToGoIsToldByItsIdentifier) {
  for (const Guid& guid :
       {Guid{"4967D63B-2E29-4AD8-8399-F6A339E3D001"}, Guid{"92A84D3B-DD80-4D0E-9E4E-B1E3284EAED8"}}) {
    Disk disk;
    EXPECT_EQ(KindOf(PutFat32BootSector(disk, 0, {}).GuidAt(0x1A8, guid)), VolumeKind::kBitLockerToGo);
  }
}

TEST(VolumeKind, NothingIsNoVolume) {
  Disk disk;
  EXPECT_EQ(KindOf(disk.At(0)), VolumeKind::kNone);
  EXPECT_EQ(KindOf(disk.At(1).Fill(0, 512, 0xFF)), VolumeKind::kNone);
  EXPECT_EQ(KindOf(disk.At(2).Le16(0x1FE, 0xAA55)), VolumeKind::kNone);
}

TEST(VolumeKind, PartitionTableIsNoVolume) {
  Disk disk;
  EXPECT_EQ(KindOf(PutBootRecord(disk, 0, {.entries = {{.type = 0x0C, .first = 63, .count = 100}}})),
            VolumeKind::kNone);
}

// A loader that is put in front of a partition table keeps the block of the FAT volume that was there.
TEST(VolumeKind, PartitionTableBehindTheBlockOfAFormerFatIsNoFat) {
  Disk disk;
  Sector& sector = PutFatBootSector(disk, 0, {});
  EXPECT_EQ(KindOf(sector), VolumeKind::kFat);
  sector.U8(0x1BE, 0x80).U8(0x1C2, 0x0C).Le32(0x1C6, 2048).Le32(0x1CA, 100000);
  EXPECT_EQ(KindOf(sector), VolumeKind::kNone);
  // Text of a boot loader is no table.
  sector.U8(0x1CE, 'a');
  EXPECT_EQ(KindOf(sector), VolumeKind::kFat);
}

TEST(VolumeKind, FatWithoutEndMarkIsToldByTheNameOfItsType) {
  EXPECT_EQ(KindOf(FatBootSector{.endMark = 0}), VolumeKind::kFat);
  EXPECT_EQ(KindOf(Fat32BootSector{.endMark = 0}), VolumeKind::kFat);
  EXPECT_EQ(KindOf(FatBootSector{.extendedSignature = 0, .endMark = 0}), VolumeKind::kNone);
}

TEST(VolumeKind, NamedVolumesNeedNoEndMark) {
  EXPECT_EQ(KindOf(NtfsBootSector{.endMark = 0}), VolumeKind::kNtfs);
  EXPECT_EQ(KindOf(ExFatBootSector{.endMark = 0}), VolumeKind::kExFat);
}

TEST(VolumeKind, InsaneFatBlocks) {
  for (const FatBootSector& boot :
       {FatBootSector{.bytesPerSector = 0}, FatBootSector{.bytesPerSector = 256},
        FatBootSector{.bytesPerSector = 8192}, FatBootSector{.sectorsPerCluster = 0},
        FatBootSector{.sectorsPerCluster = 6}, FatBootSector{.reservedSectors = 0}, FatBootSector{.fats = 0},
        FatBootSector{.rootEntries = 0}, FatBootSector{.totalSectors16 = 0},
        FatBootSector{.totalSectors16 = 113}, FatBootSector{.media = 0xF1}, FatBootSector{.fatSize16 = 0}}) {
    EXPECT_EQ(KindOf(boot), VolumeKind::kNone);
  }
  for (const Fat32BootSector& boot :
       {Fat32BootSector{.rootEntries = 512}, Fat32BootSector{.totalSectors32 = 0},
        Fat32BootSector{.fatSize32 = 0}, Fat32BootSector{.fatSize32 = 0xFFFFFFFF}}) {
    EXPECT_EQ(KindOf(boot), VolumeKind::kNone);
  }
}

TEST(VolumeKind, FatBeginsWithAJump) {
  Disk disk;
  Sector& sector = PutFatBootSector(disk, 0, {});
  EXPECT_EQ(KindOf(sector.Bytes(0, {0xE9, 0x00, 0x01})), VolumeKind::kFat);
  EXPECT_EQ(KindOf(sector.Bytes(0, {0xEB, 0x3C, 0x00})), VolumeKind::kNone);
  EXPECT_EQ(KindOf(sector.Bytes(0, {0xFA, 0x33, 0xC0})), VolumeKind::kNone);
}

// An NTFS boot sector whose name is damaged has no FATs.
TEST(VolumeKind, NtfsIsNeverFat) {
  EXPECT_EQ(KindOf(NtfsBootSector{.oemName = "MSDOS5.0"}), VolumeKind::kNone);
}

VolumeKind BackupKind(const Disk& image, u64 sector, u64 sectors) {
  const OpenedDisk opened(image);
  return KindByBackup({.sector = sector, .sectors = sectors, .lastOnDisk = image.Sectors() - 1});
}

TEST(VolumeKind, BackupTellsWhereTheBootSectorIsGone) {
  Disk fat;
  PutFat32BootSector(fat, 106, {});
  EXPECT_EQ(BackupKind(fat, 100, 1000), VolumeKind::kFat);
  Disk exFat;
  PutExFatBootSector(exFat, 112);
  EXPECT_EQ(BackupKind(exFat, 100, 1000), VolumeKind::kExFat);
  Disk ntfs;
  PutNtfsBootSector(ntfs, 1099, {});
  EXPECT_EQ(BackupKind(ntfs, 100, 1000), VolumeKind::kNtfs);
  Disk reFs;
  PutReFsBootRecord(reFs, 1099);
  EXPECT_EQ(BackupKind(reFs, 100, 1000), VolumeKind::kReFs);
}

TEST(VolumeKind, BackupOfLargerSectors) {
  Disk fat;
  PutFat32BootSector(fat, 100 + 6 * 8, {.bytesPerSector = 4096});
  EXPECT_EQ(BackupKind(fat, 100, 1000), VolumeKind::kFat);
  Disk ntfs;
  PutNtfsBootSector(ntfs, 1100 - 8, {.bytesPerSector = 4096});
  EXPECT_EQ(BackupKind(ntfs, 100, 1000), VolumeKind::kNtfs);
}

// Each is believed at its own place alone.
TEST(VolumeKind, BackupAtAnothersPlaceTellsNothing) {
  Disk disk;
  PutNtfsBootSector(disk, 106, {});
  PutNtfsBootSector(disk, 112, {});
  PutFat32BootSector(disk, 1099, {});
  EXPECT_EQ(BackupKind(disk, 100, 1000), VolumeKind::kNone);
}

TEST(VolumeKind, ExaminationFollowsTheKind) {
  Disk disk;
  PutReFsBootRecord(disk, 100);
  const OpenedDisk opened(disk);
  const VolumePlace place{.sector = 100, .sectors = 1000, .lastOnDisk = 4095};
  EXPECT_EQ(ExamineVolume(VolumeKind::kReFs, place).type, "ReFS 3.4");
  EXPECT_EQ(ExamineVolume(VolumeKind::kNone, place).type, "");
}

}  // namespace
}  // namespace trovisk::test
