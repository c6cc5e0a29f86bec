// The bootstrap areas of FAT boot sectors, one printer per FAT type.

#ifndef TROVISK_MBR_FAT_BOOTSTRAP_H
#define TROVISK_MBR_FAT_BOOTSTRAP_H

#include "frame/bytes.h"

namespace trovisk {

// Each names and lists known bootstrap code, prints the BIOS parameter block and its extension and, for known
// code, the system files that it loads and its messages.
void PrintFat12Bootstrap(SectorView bootSector);
void PrintFat16Bootstrap(SectorView bootSector);
void PrintFat32Bootstrap(SectorView bootSector);

}  // namespace trovisk

#endif
