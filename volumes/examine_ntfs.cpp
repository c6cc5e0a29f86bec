#include <bit>

#include "frame/examine_volume.h"
#include "refimages/boot_sector.h"
#include "volumes/examinations.h"

namespace trovisk {
namespace {

// In the volume's own sectors.
struct Geometry {
  u64 bytesPerSector = 0;
  u64 sectorsPerCluster = 0;
  u64 totalSectors = 0;
};

// From 0xF0 on the byte is the negative exponent of two.
u64 SectorsPerCluster(u8 stored) {
  if (stored >= 0xF0) return u64{1} << (0x100U - stored);
  return std::has_single_bit(stored) ? stored : 0;
}

std::optional<Geometry> GeometryOf(SectorView boot) {
  const Geometry geometry = {.bytesPerSector = Le16<kBpbBytesPerSector>(boot),
                             .sectorsPerCluster = SectorsPerCluster(U8<kBpbSectorsPerCluster>(boot)),
                             .totalSectors = Le64<kNtfsTotalSectors>(boot)};
  const bool sane = std::has_single_bit(geometry.bytesPerSector) && geometry.bytesPerSector >= 256 &&
                    geometry.bytesPerSector <= 4096 && geometry.sectorsPerCluster != 0 &&
                    geometry.totalSectors != 0 && geometry.totalSectors < u64{1} << 51;
  if (!sane) return std::nullopt;
  return geometry;
}

}  // namespace

bool IsNtfsBootSector(SectorView boot) {
  return EqualsText(Part<kOemName, 8>(boot), "NTFS    ") && U8<kBpbFatCount>(boot) == 0 &&
         Le16<kBpbFatSize16>(boot) == 0 && GeometryOf(boot).has_value();
}

VolumeFindings ExamineNtfs(const VolumePlace& /*place*/) {
  return {};
}

}  // namespace trovisk
