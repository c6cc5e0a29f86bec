// Where the fields of a TOCBLOCK stand. Big-endian.
// Layout: the Linux-NTFS project's LDM documentation, "TOCBLOCK".

#ifndef TROVISK_LDM_TOCBLOCK_LAYOUT_H
#define TROVISK_LDM_TOCBLOCK_LAYOUT_H

#include <cstddef>

namespace trovisk::tocblock {

inline constexpr std::size_t kSignature = 0;  // "TOCBLOCK"
inline constexpr std::size_t kSequence1 = 8;  // u32
inline constexpr std::size_t kSequence2 = 16;
inline constexpr std::size_t kConfigName = 36;   // 8 bytes of text
inline constexpr std::size_t kConfigFlags = 44;  // 2 bytes
inline constexpr std::size_t kConfigStart = 46;  // u64
inline constexpr std::size_t kConfigSize = 54;   // u64, sectors
inline constexpr std::size_t kConfigNumber = 62;
inline constexpr std::size_t kLogName = 70;  // the same fields for the log region
inline constexpr std::size_t kLogFlags = 78;
inline constexpr std::size_t kLogStart = 80;
inline constexpr std::size_t kLogSize = 88;
inline constexpr std::size_t kLogNumber = 96;

}  // namespace trovisk::tocblock

#endif
