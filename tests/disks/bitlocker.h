// Builders of BitLocker boot sectors, one per layout.

#ifndef TROVISK_TESTS_DISKS_BITLOCKER_H
#define TROVISK_TESTS_DISKS_BITLOCKER_H

#include <array>

#include "tests/disks/disk.h"

namespace trovisk::test {

// What every layout has.
struct BitLockerCommon {
  std::array<u8, 3> jump;
  std::string oemName = "-FVE-FS-";
  u16 bytesPerSector = 512;
  u8 sectorsPerCluster = 8;
  u16 reservedSectors = 0;
  u8 fats = 0;
  u16 rootEntries = 0;
  u16 totalSectors16 = 0;
  u8 mediaDescriptor = 0xF8;
  u16 sectorsPerFat16 = 0;
  u16 sectorsPerTrack = 63;
  u16 heads = 255;
  u32 hiddenSectors = 63;
  u32 totalSectors32 = 0;
  u16 endMark = 0xAA55;
};

struct BitLockerVista {
  BitLockerCommon common = {.jump = {0xEB, 0x52, 0x90}};
  u8 diskUnit = 0x80;
  u8 flags = 0;
  u8 bpbVersion = 0x80;
  u8 reserved = 0;
  u64 totalSectors = 1000;
  u64 mftCluster = 4;
  u64 metadataCluster = 100;
  u8 mftEntrySize = 0xF6;
  u8 indexEntrySize = 1;
  u64 volumeSerial = 0x1234567890ABCDEF;
  u32 checksum = 0;
};

struct BitLockerSeven {
  BitLockerCommon common = {.jump = {0xEB, 0x58, 0x90}};
  u32 sectorsPerFat = 8160;
  u16 fatFlags = 0;
  u32 rootCluster = 0;
  u16 infoSector = 1;
  u16 copySector = 6;
  u8 drive = 0x80;
  u8 extendedSignature = 0x29;
  u32 volumeSerial = 0;
  std::string volumeLabel = "NO NAME    ";
  std::string fileSystem = "FAT32   ";
  trovisk::Guid guid{"4967D63B-2E29-4AD8-8399-F6A339E3D001"};
  std::array<u64, 3> metadata = {0x02100000, 0x08A10000, 0x11CD9000};
  std::array<u8, 3> messageOffsets = {0x00, 0x20, 0x40};
};

Sector& PutBitLockerCommon(Disk& disk, u64 sector, const BitLockerCommon& common);
Sector& PutBitLocker(Disk& disk, u64 sector, const BitLockerVista& boot);
Sector& PutBitLocker(Disk& disk, u64 sector, const BitLockerSeven& boot);

// The head of a metadata block, which every layout has three of.
struct FveMetadataBlock {
  std::string signature = "-FVE-FS-";
  u16 version = 2;                                           // 1: Windows Vista
  std::array<u64, 3> offsets = {0x10000, 0x50000, 0x90000};  // of the blocks, in bytes from the boot sector
  u32 size = 960;                                            // of the metadata behind the first 64 bytes
};
void PutFveMetadataBlock(Disk& disk, u64 sector, const FveMetadataBlock& block = {});

// The same block at each of its three offsets from the volume's first sector.
void PutFveMetadataBlocks(Disk& disk, u64 volume, const FveMetadataBlock& block = {});

}  // namespace trovisk::test

#endif
