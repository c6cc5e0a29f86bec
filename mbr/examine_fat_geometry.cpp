// FAT geometry: whether a BIOS parameter block can be that of a FAT volume, and what it amounts to.
//
// Stands in a FAT boot sector. Little-endian. Layout, limits and the computation of the cluster count:
// Microsoft, "FAT: General Overview of On-Disk Format", boot sector and BPB structure, FAT type
// determination. Checked: bytes per sector, sectors per cluster, media, that there are reserved sectors,
// FATs, and room for data. Not checked: heads, tracks, hidden sectors, the text that names the type.

#include "mbr/examine_fat_geometry.h"

#include <bit>

#include "mbr/fat_bootstrap.h"
#include "mbr/partition_entry.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr u64 kRootEntrySize = 32;

bool IsPowerOfTwoWithin(u64 value, u64 least, u64 most) {
  return std::has_single_bit(value) && value >= least && value <= most;
}

std::string WhatIsWrong(SectorView boot) {
  const u64 bytesPerSector = Le16<kBpbBytesPerSector>(boot);
  const u64 sectorsPerCluster = U8<kBpbSectorsPerCluster>(boot);
  const u8 media = U8<kBpbMedia>(boot);
  if (!IsPowerOfTwoWithin(bytesPerSector, 512, 4096)) {
    return std::to_string(bytesPerSector) + " bytes per sector";
  }
  if (!IsPowerOfTwoWithin(sectorsPerCluster, 1, 128)) {
    return std::to_string(sectorsPerCluster) + " sectors per cluster";
  }
  if (Le16<kBpbReservedSectors>(boot) == 0) return "no reserved sectors";
  if (U8<kBpbFatCount>(boot) == 0) return "no FATs";
  if (media != 0xF0 && media < 0xF8) return "media byte " + std::to_string(media);
  const bool fat32 = Le16<kBpbFatSize16>(boot) == 0;
  if (fat32 && Le32<kFat32FatSize>(boot) == 0) return "no FAT size";
  if (fat32 != (Le16<kBpbRootEntries>(boot) == 0)) {
    return fat32 ? "root directory entries of FAT16 with the FAT size of FAT32" : "no root directory entries";
  }
  if (Le16<kBpbTotalSectors16>(boot) == 0 && Le32<kBpbTotalSectors32>(boot) == 0) return "no total sectors";
  return {};
}

u64 BitsOf(u64 clusters, bool fat32) {
  if (fat32) return 32;
  return clusters <= kFatTypes[0].mostClusters ? 12 : 16;
}

FatGeometry Compute(SectorView boot) {
  FatGeometry geometry;
  const bool fat32 = Le16<kBpbFatSize16>(boot) == 0;
  geometry.bytesPerSector = Le16<kBpbBytesPerSector>(boot);
  geometry.sectorsPerCluster = U8<kBpbSectorsPerCluster>(boot);
  geometry.reserved = Le16<kBpbReservedSectors>(boot);
  geometry.fats = U8<kBpbFatCount>(boot);
  geometry.fatSize = fat32 ? u64{Le32<kFat32FatSize>(boot)} : u64{Le16<kBpbFatSize16>(boot)};
  geometry.rootDirectory = geometry.reserved + geometry.fats * geometry.fatSize;
  const u64 rootBytes = Le16<kBpbRootEntries>(boot) * kRootEntrySize;
  geometry.rootSectors = (rootBytes + geometry.bytesPerSector - 1) / geometry.bytesPerSector;
  geometry.firstData = geometry.rootDirectory + geometry.rootSectors;
  geometry.totalSectors = Le16<kBpbTotalSectors16>(boot) != 0 ? u64{Le16<kBpbTotalSectors16>(boot)}
                                                              : u64{Le32<kBpbTotalSectors32>(boot)};
  if (geometry.totalSectors > geometry.firstData) {
    geometry.clusters = (geometry.totalSectors - geometry.firstData) / geometry.sectorsPerCluster;
  }
  geometry.bits = BitsOf(geometry.clusters, fat32);
  return geometry;
}

// A master boot record may keep the block of a FAT volume that once was there: its table is in use then.
bool HoldsPartitionTable(SectorView boot) {
  bool used = false;
  for (std::size_t i = 0; i < 4; ++i) {
    const Bytes entry = SliceAt(boot, kPartitionTable + i * kPartitionEntrySize, kPartitionEntrySize);
    if ((U8At(entry, 0) & 0x7F) != 0) return false;
    used = used || (U8At(entry, kEntryType) != 0 && Le32At(entry, 8) != 0 && Le32At(entry, 12) != 0);
  }
  return used && HasEndMark(boot);
}

// Ends in the end mark, or names a FAT type.
bool SaysThatItIsFat(SectorView boot) {
  return HasEndMark(boot) ||
         (U8<kFat16Signature>(boot) == 0x29 && EqualsText(Part<kFat16FsType, 3>(boot), "FAT")) ||
         (U8<kFat32Signature>(boot) == 0x29 && EqualsText(Part<kFat32FsType, 3>(boot), "FAT"));
}

}  // namespace

std::optional<FatGeometry> FatGeometryOf(SectorView boot) {
  if (!WhatIsWrong(boot).empty()) return std::nullopt;
  const FatGeometry geometry = Compute(boot);
  if (geometry.clusters == 0) return std::nullopt;
  return geometry;
}

std::string FatComplaint(SectorView boot) {
  const std::string wrong = WhatIsWrong(boot);
  return wrong.empty() && !FatGeometryOf(boot) ? "no room for data" : wrong;
}

bool IsFatBootSector(SectorView boot) {
  const auto jump = Part<kJump, 3>(boot);
  const bool jumps = (jump[0] == 0xEB && jump[2] == 0x90) || jump[0] == 0xE9;
  return jumps && SaysThatItIsFat(boot) && !HoldsPartitionTable(boot) && FatGeometryOf(boot).has_value();
}

}  // namespace trovisk
