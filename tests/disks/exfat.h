// Builders of exFAT boot sectors and boot regions.

#ifndef TROVISK_TESTS_DISKS_EXFAT_H
#define TROVISK_TESTS_DISKS_EXFAT_H

#include "tests/disks/disk.h"

namespace trovisk::test {

struct ExFatBootSector {
  u64 partitionOffset = 2048;
  u64 volumeLength = 12288;
  u32 fatOffset = 128;
  u32 fatLength = 12;
  u32 clusterHeapOffset = 256;
  u32 clusterCount = 1504;
  u32 rootCluster = 5;
  u32 serialNumber = 0x89ABCDEF;
  u8 revisionMinor = 0;
  u8 revisionMajor = 1;
  u16 flags = 0;
  u8 sectorShift = 9;
  u8 clusterShift = 3;
  u8 fatCount = 1;
  u8 driveSelect = 0x80;
  u8 percentInUse = 7;
  u8 messageOffsets[3] = {0x00, 0x10, 0x20};
  u16 endMark = 0xAA55;
};

// Writes the fields, the invented boot code by which the sector is recognised and three messages of 15
// characters and a NUL each, at the start of the message area.
Sector& PutExFatBootSector(Disk& disk, u64 sector, const ExFatBootSector& boot = {});

// The checksum of a boot region's first eleven sectors.
u32 ExFatBootChecksum(Disk& disk, u64 first);

// The boot sector, eight extended boot sectors, the OEM parameters and a reserved sector (zeros but for what
// the disk holds there), and the sector of checksums.
void PutExFatBootRegion(Disk& disk, u64 first, const ExFatBootSector& boot = {});

}  // namespace trovisk::test

#endif
