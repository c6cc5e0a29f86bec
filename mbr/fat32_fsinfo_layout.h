// The fields of FSInfo, for its decoder and for the examination of its volume.
//
// Little-endian. Layout: Microsoft, "FAT: General Overview of On-Disk Format", FSInfo structure.

#ifndef TROVISK_MBR_FAT32_FSINFO_LAYOUT_H
#define TROVISK_MBR_FAT32_FSINFO_LAYOUT_H

#include <cstddef>

namespace trovisk {

inline constexpr std::size_t kFsInfoLeadSignature = 0x000;    // "RRaA"
inline constexpr std::size_t kFsInfoStructSignature = 0x1E4;  // "rrAa"
inline constexpr std::size_t kFsInfoFreeClusters = 0x1E8;     // u32
inline constexpr std::size_t kFsInfoNextCluster = 0x1EC;      // u32: where to begin the search for a free one
inline constexpr std::size_t kFsInfoTrailSignature = 0x1FC;   // 00 00 55 AA

}  // namespace trovisk

#endif
