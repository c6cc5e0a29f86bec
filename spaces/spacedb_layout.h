// Where the fields of a SPACEDB stand. Big-endian, but for one number.
// There is no published description: the layout is what is known from disks, and so in part unknown.

#ifndef TROVISK_SPACES_SPACEDB_LAYOUT_H
#define TROVISK_SPACES_SPACEDB_LAYOUT_H

#include "frame/bytes.h"

namespace trovisk::spacedb {

inline constexpr std::size_t kSignature = 0x00;    // "SPACEDB "
inline constexpr std::size_t kRevision = 0x08;     // 4 bytes
inline constexpr std::size_t kCrc32 = 0x0C;        // 4 bytes
inline constexpr std::size_t kUnknown10 = 0x10;    // 8 bytes
inline constexpr std::size_t kFileTime = 0x18;     // u64, FILETIME
inline constexpr std::size_t kStorageGuid = 0x20;  // 16 bytes, in the order in which they are printed
inline constexpr std::size_t kSpaceDbGuid = 0x30;  // 16 bytes, likewise
inline constexpr std::size_t kNumber = 0x40;       // u64, little-endian
inline constexpr std::size_t kZeroes = 0x48;       // 8 bytes
inline constexpr std::size_t kUnknown50 = 0x50;    // 8 bytes
inline constexpr std::size_t kTimeStamp = 0x58;    // u64, FILETIME; 0: none

// From this sector to the SDBC, whatever the sector size.
inline constexpr u64 kSectorsToSdbc = 8;

}  // namespace trovisk::spacedb

#endif
