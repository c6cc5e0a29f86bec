// The examination of a FAT volume: its areas, its geometry against the partition, its copies.

#ifndef TROVISK_MBR_EXAMINE_FAT_H
#define TROVISK_MBR_EXAMINE_FAT_H

#include "frame/examination.h"

namespace trovisk {

VolumeFindings ExamineFat(const VolumePlace& place);

}  // namespace trovisk

#endif
