// Which volume a boot sector belongs to, as far as its boot code or OEM name says.

#ifndef TROVISK_MBR_BOOT_SECTOR_IDENTIFICATION_H
#define TROVISK_MBR_BOOT_SECTOR_IDENTIFICATION_H

#include "frame/decoders.h"

namespace trovisk {

struct VolumeClass {
  WideText name;
  SectorDecoder decoder;  // DumpRawSector where neither code nor name is known
};

VolumeClass ClassifyBootSector(SectorView bootSector);

}  // namespace trovisk

#endif
