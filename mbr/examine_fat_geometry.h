// What the BIOS parameter block of a FAT boot sector amounts to.

#ifndef TROVISK_MBR_EXAMINE_FAT_GEOMETRY_H
#define TROVISK_MBR_EXAMINE_FAT_GEOMETRY_H

#include <optional>
#include <string>

#include "frame/bytes.h"

namespace trovisk {

// All in the volume's own sectors, places counted from the boot sector. Behind a sane block nothing here
// overflows: the largest number is below 2^42.
struct FatGeometry {
  u64 bytesPerSector = 0;
  u64 sectorsPerCluster = 0;
  u64 reserved = 0;  // the first FAT's place
  u64 fats = 0;
  u64 fatSize = 0;  // of one of them
  u64 rootDirectory = 0;
  u64 rootSectors = 0;  // 0: FAT32
  u64 firstData = 0;
  u64 totalSectors = 0;
  u64 clusters = 0;
  u64 bits = 0;  // 12, 16 or 32: of a FAT entry
};

// Whether a sector is the boot sector of a FAT volume, whatever its boot code. A master boot record is none,
// nor is the boot sector of another file system.
bool IsFatBootSector(SectorView boot);

// None where the block says what no FAT volume can be.
std::optional<FatGeometry> FatGeometryOf(SectorView boot);

// Why it says that; empty where there is a geometry.
std::string FatComplaint(SectorView boot);

}  // namespace trovisk

#endif
