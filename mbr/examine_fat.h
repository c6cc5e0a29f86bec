// The examination of a FAT volume: its areas, its geometry against the partition, its copies.

#ifndef TROVISK_MBR_EXAMINE_FAT_H
#define TROVISK_MBR_EXAMINE_FAT_H

#include "frame/examination.h"

namespace trovisk {

// Whether a sector is the boot sector of a FAT volume, whatever its boot code. A master boot record is none,
// nor is the boot sector of another file system.
bool IsFatBootSector(SectorView boot);

VolumeFindings ExamineFat(const VolumePlace& place);

}  // namespace trovisk

#endif
