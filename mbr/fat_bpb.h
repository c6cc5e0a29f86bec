// The BIOS parameter block that FAT12, FAT16 and FAT32 boot sectors share.

#ifndef TROVISK_MBR_FAT_BPB_H
#define TROVISK_MBR_FAT_BPB_H

#include "frame/bytes.h"

namespace trovisk {

// Prints the block, one line per field.
void PrintFatBpb(SectorView bootSector);

}  // namespace trovisk

#endif
