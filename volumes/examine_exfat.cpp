#include "frame/examine_volume.h"
#include "refimages/boot_sector.h"
#include "volumes/examinations.h"
#include "volumes/exfat_layout.h"

namespace trovisk {
namespace {

constexpr std::size_t kZeros = 0x00B;  // where FAT has its parameters
constexpr std::size_t kZerosEnd = 0x040;

}  // namespace

bool IsExFatBootSector(SectorView boot) {
  const u64 sectorShift = U8<kExFatSectorShift>(boot);
  const u64 fats = U8<kExFatFatCount>(boot);
  return EqualsText(Part<kOemName, 8>(boot), "EXFAT   ") && AllZero(Part<kZeros, kZerosEnd - kZeros>(boot)) &&
         sectorShift >= 9 && sectorShift <= 12 && U8<kExFatClusterShift>(boot) <= 25 - sectorShift &&
         (fats == 1 || fats == 2);
}

VolumeFindings ExamineExFat(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
