// The BIOS parameter block of an NTFS boot sector, as NTFS extends it.

#ifndef TROVISK_VOLUMES_NTFS_BPB_H
#define TROVISK_VOLUMES_NTFS_BPB_H

#include "frame/bytes.h"

namespace trovisk {

// Prints the block, one line per field.
void PrintNtfsBpb(SectorView bootSector);

}  // namespace trovisk

#endif
