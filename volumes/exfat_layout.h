// The fields of an exFAT boot sector, for its decoder and its examination.
//
// Little-endian. Layout: Microsoft, "exFAT file system", main boot sector. Sectors are the volume's own.

#ifndef TROVISK_VOLUMES_EXFAT_LAYOUT_H
#define TROVISK_VOLUMES_EXFAT_LAYOUT_H

#include <cstddef>

namespace trovisk {

inline constexpr std::size_t kExFatPartitionOffset = 0x040;    // u64, sectors
inline constexpr std::size_t kExFatVolumeLength = 0x048;       // u64, sectors
inline constexpr std::size_t kExFatFatOffset = 0x050;          // u32, sectors
inline constexpr std::size_t kExFatFatLength = 0x054;          // u32, sectors
inline constexpr std::size_t kExFatClusterHeapOffset = 0x058;  // u32, sectors
inline constexpr std::size_t kExFatClusterCount = 0x05C;       // u32
inline constexpr std::size_t kExFatRootCluster = 0x060;        // u32
inline constexpr std::size_t kExFatSerialNumber = 0x064;       // 4 bytes
inline constexpr std::size_t kExFatRevisionMinor = 0x068;      // u8
inline constexpr std::size_t kExFatRevisionMajor = 0x069;      // u8
inline constexpr std::size_t kExFatVolumeFlags = 0x06A;   // u16, of which the low four bits have a meaning
inline constexpr std::size_t kExFatSectorShift = 0x06C;   // u8, bytes per sector as a power of 2
inline constexpr std::size_t kExFatClusterShift = 0x06D;  // u8, sectors per cluster as a power of 2
inline constexpr std::size_t kExFatFatCount = 0x06E;      // u8
inline constexpr std::size_t kExFatDriveSelect = 0x06F;   // u8
inline constexpr std::size_t kExFatPercentInUse = 0x070;  // u8, 0xFF: unknown

}  // namespace trovisk

#endif
