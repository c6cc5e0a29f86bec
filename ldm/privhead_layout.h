// Where the fields of a PRIVHEAD stand. Big-endian.
// Layout: the Linux-NTFS project's LDM documentation, "PRIVHEAD".

#ifndef TROVISK_LDM_PRIVHEAD_LAYOUT_H
#define TROVISK_LDM_PRIVHEAD_LAYOUT_H

#include <cstddef>

namespace trovisk::privhead {

inline constexpr std::size_t kSignature = 0x000;  // "PRIVHEAD"
inline constexpr std::size_t kSequence = 0x008;   // u32
inline constexpr std::size_t kMajorVersion = 0x00C;
inline constexpr std::size_t kMinorVersion = 0x00E;
inline constexpr std::size_t kTimestamp = 0x010;   // FILETIME
inline constexpr std::size_t kAlternate1 = 0x020;  // u64, relative to the configuration start
inline constexpr std::size_t kAlternate2 = 0x028;
inline constexpr std::size_t kDiskId = 0x030;     // 64 bytes of text
inline constexpr std::size_t kHostId = 0x070;     // 64 bytes of text
inline constexpr std::size_t kGroupId = 0x0B0;    // 64 bytes of text
inline constexpr std::size_t kGroupName = 0x0F0;  // 32 bytes of text
inline constexpr std::size_t kLogicalStart = 0x11B;
inline constexpr std::size_t kLogicalEnd = 0x123;
inline constexpr std::size_t kConfigStart = 0x12B;  // u64, absolute
inline constexpr std::size_t kConfigSize = 0x133;
inline constexpr std::size_t kTocCount = 0x13B;
inline constexpr std::size_t kTocSize = 0x143;      // u64, sectors
inline constexpr std::size_t kConfigCount = 0x14B;  // u32
inline constexpr std::size_t kLogCount = 0x14F;     // u32
inline constexpr std::size_t kConfigRegionSize = 0x153;
inline constexpr std::size_t kLogRegionSize = 0x15B;
inline constexpr std::size_t kDiskSignature = 0x163;  // 4 bytes
inline constexpr std::size_t kDiskSetId = 0x167;      // 16 bytes in the order in which they are shown
inline constexpr std::size_t kDiskSetIdCopy = 0x177;

}  // namespace trovisk::privhead

#endif
