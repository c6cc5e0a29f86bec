#include "frame/examine_volume.h"
#include "refimages/boot_sector.h"
#include "volumes/bitlocker_layout.h"
#include "volumes/examinations.h"

namespace trovisk {

bool IsBitLockerBootSector(SectorView boot) {
  return EqualsText(Part<kOemName, 8>(boot), "-FVE-FS-");
}

bool IsBitLockerToGoBootSector(SectorView boot) {
  const auto guid = Part<kToGoGuid, 16>(boot);
  return !IsBitLockerBootSector(boot) && (kBitLockerVolume == guid || kBitLockerUsedSpaceVolume == guid);
}

VolumeFindings ExamineBitLocker(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
