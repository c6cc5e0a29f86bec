// Where the fields of an SDBB record stand. Big-endian.
// There is no published description: the layout is what is known from disks, and so in part unknown.

#ifndef TROVISK_SPACES_SDBB_LAYOUT_H
#define TROVISK_SPACES_SDBB_LAYOUT_H

#include <cstddef>

namespace trovisk::sdbb {

inline constexpr std::size_t kRecordSize = 64;
inline constexpr std::size_t kRecords = 8;
inline constexpr std::size_t kSignature = 0x00;   // "SDBB"
inline constexpr std::size_t kIdentifier = 0x04;  // 4 bytes
inline constexpr std::size_t kParent = 0x08;      // 4 bytes, the identifier itself: no parent
inline constexpr std::size_t kPartIndex = 0x0C;   // u16, from 0
inline constexpr std::size_t kPartCount = 0x0E;   // u16, 0: an empty record
inline constexpr std::size_t kEntryType = 0x10;   // 2 bytes, of the entry's first part

}  // namespace trovisk::sdbb

#endif
