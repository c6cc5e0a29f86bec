// Where the fields of a VBLK slot stand, in front of its data. Big-endian.
// Layout: the Linux-NTFS project's LDM documentation, "VBLK".

#ifndef TROVISK_LDM_VBLK_LAYOUT_H
#define TROVISK_LDM_VBLK_LAYOUT_H

#include <cstddef>

namespace trovisk::vblk {

inline constexpr std::size_t kSlotSize = 128;
inline constexpr std::size_t kSlotCount = 4;
inline constexpr std::size_t kSignature = 0;      // "VBLK"
inline constexpr std::size_t kSequence = 4;       // u32
inline constexpr std::size_t kGroup = 8;          // u32
inline constexpr std::size_t kRecordNumber = 12;  // u16, from 0
inline constexpr std::size_t kRecordCount = 14;   // u16, slots of the record
inline constexpr std::size_t kUpdateStatus = 16;  // u16
inline constexpr std::size_t kFlags = 18;         // u8
inline constexpr std::size_t kType = 19;          // u8, zero: an empty slot
inline constexpr std::size_t kDataLength = 20;    // u32
inline constexpr std::size_t kData = 24;

}  // namespace trovisk::vblk

#endif
