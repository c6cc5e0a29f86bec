// Where the fields of an SDBC stand. Big-endian.
// There is no published description: the layout is what is known from disks, and so in part unknown.

#ifndef TROVISK_SPACES_SDBC_LAYOUT_H
#define TROVISK_SPACES_SDBC_LAYOUT_H

#include <cstddef>

namespace trovisk::sdbc {

inline constexpr std::size_t kSignature = 0x00;         // "SDBC" and four blanks
inline constexpr std::size_t kRevision = 0x08;          // 4 bytes
inline constexpr std::size_t kCrc32 = 0x0C;             // 4 bytes
inline constexpr std::size_t kSpaceportGuid = 0x10;     // 16 bytes, in the order in which they are printed
inline constexpr std::size_t kUnknown20 = 0x20;         // 8 bytes
inline constexpr std::size_t kUnknown28 = 0x28;         // 3 bytes
inline constexpr std::size_t kPoolType = 0x2B;          // u8
inline constexpr std::size_t kUnknown2C = 0x2C;         // 4 bytes
inline constexpr std::size_t kUnknown30 = 0x30;         // 8 bytes
inline constexpr std::size_t kLastTransaction1 = 0x38;  // 8 bytes
inline constexpr std::size_t kLastTransaction2 = 0x40;  // 8 bytes
inline constexpr std::size_t kTimeStamp = 0x48;         // u64, FILETIME

}  // namespace trovisk::sdbc

#endif
