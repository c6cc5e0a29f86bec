#include <bit>

#include "frame/examine_volume.h"
#include "refimages/boot_sector.h"
#include "volumes/examinations.h"
#include "volumes/refs_layout.h"

namespace trovisk {

bool IsReFsBootRecord(SectorView boot) {
  const u64 sectorSize = Le32<kReFsSectorSize>(boot);
  const u64 sectorsPerCluster = Le32<kReFsSectorsPerCluster>(boot);
  return EqualsText(Part<kOemName, 4>(boot), "ReFS") && EqualsText(Part<kReFsIdentifier, 4>(boot), "FSRS") &&
         std::has_single_bit(sectorSize) && sectorSize >= 512 && sectorSize <= 65536 &&
         std::has_single_bit(sectorsPerCluster);
}

VolumeFindings ExamineReFs(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
