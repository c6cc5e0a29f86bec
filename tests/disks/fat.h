// Builders of FAT boot sectors and FSInfo sectors.

#ifndef TROVISK_TESTS_DISKS_FAT_H
#define TROVISK_TESTS_DISKS_FAT_H

#include <optional>
#include <string_view>

#include "refimages/catalogue.h"
#include "tests/disks/disk.h"

namespace trovisk::test {

// A FAT16 volume of 10000 clusters of 4 sectors. FAT at 1, second FAT at 41, root directory at 81, first data
// sector 113, relative to the boot sector.
struct FatBootSector {
  std::string_view oemName = "TESTFAT ";
  u16 bytesPerSector = 512;
  u8 sectorsPerCluster = 4;
  u16 reservedSectors = 1;
  u8 fats = 2;
  u16 rootEntries = 512;
  u16 totalSectors16 = 40113;
  u8 media = 0xF8;
  u16 fatSize16 = 40;
  u16 sectorsPerTrack = 63;
  u16 heads = 255;
  u32 hiddenSectors = 63;
  u32 totalSectors32 = 0;
  u8 drive = 0x80;
  u8 extendedSignature = 0x29;
  u32 serial = 0xCDAB3412;
  std::string_view label = "NO NAME    ";
  std::string_view type = "FAT16   ";
  std::optional<BootCode> code = {};  // invented code in the place of the named one
  u16 endMark = 0xAA55;
};

// The total that makes a FAT12 volume of 1000 clusters of it.
inline constexpr u16 kFat12TotalSectors = 4113;

// A FAT32 volume of 70000 clusters of one sector. FAT at 32, second FAT at 632, first data sector 1232,
// relative to the boot sector.
struct Fat32BootSector {
  std::string_view oemName = "TESTFAT ";
  u16 bytesPerSector = 512;
  u8 sectorsPerCluster = 1;
  u16 reservedSectors = 32;
  u8 fats = 2;
  u16 rootEntries = 0;
  u16 totalSectors16 = 0;
  u8 media = 0xF8;
  u16 fatSize16 = 0;
  u16 sectorsPerTrack = 63;
  u16 heads = 255;
  u32 hiddenSectors = 63;
  u32 totalSectors32 = 71232;
  u32 fatSize32 = 600;
  u8 versionMinor = 0;
  u8 versionMajor = 0;
  u32 rootCluster = 2;
  u16 fsInfoSector = 1;  // relative to the boot sector, like the next
  u16 backupSector = 6;
  u8 drive = 0x80;
  u8 extendedSignature = 0x29;
  u32 serial = 0xCDAB3412;
  std::string_view label = "NO NAME    ";
  std::string_view type = "FAT32   ";
  std::optional<BootCode> code = {};
  u16 endMark = 0xAA55;
};

struct FsInfo {
  u32 leadSignature = 0x41615252;
  u32 structureSignature = 0x61417272;
  u32 freeClusters = 69999;
  u32 nextCluster = 3;
  u16 endMark = 0xAA55;
};

// Where the tests' FAT volumes begin.
inline constexpr u64 kFatVolume = 63;

// A disk whose one partition, of that type, begins there; the volume itself is the test's.
Disk FatDisk(u8 partitionType);

Sector& PutFatBootSector(Disk& disk, u64 sector, const FatBootSector& boot);
Sector& PutFat32BootSector(Disk& disk, u64 sector, const Fat32BootSector& boot);
Sector& PutFsInfo(Disk& disk, u64 sector, const FsInfo& fsInfo);

}  // namespace trovisk::test

#endif
