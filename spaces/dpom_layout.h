// Where the fields of a DPOM stand. Little-endian.
// There is no published description: the layout is what is known from disks, and so in part unknown.

#ifndef TROVISK_SPACES_DPOM_LAYOUT_H
#define TROVISK_SPACES_DPOM_LAYOUT_H

#include <cstddef>

namespace trovisk::dpom {

inline constexpr std::size_t kRecordSize = 224;
inline constexpr std::size_t kSignature = 0x00;      // "DPOM"
inline constexpr std::size_t kDataSize = 0x04;       // u32
inline constexpr std::size_t kUnnamedWords = 0x08;   // nine u32
inline constexpr std::size_t kDiskGuid = 0x2C;       // GUID
inline constexpr std::size_t kPartitionGuid = 0x3C;  // GUID

}  // namespace trovisk::dpom

#endif
