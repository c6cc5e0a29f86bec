// Where the fields of a VMDB stand. Big-endian.
// Layout: the Linux-NTFS project's LDM documentation, "VMDB".

#ifndef TROVISK_LDM_VMDB_LAYOUT_H
#define TROVISK_LDM_VMDB_LAYOUT_H

#include <cstddef>

namespace trovisk::vmdb {

inline constexpr std::size_t kSignature = 0;  // "VMDB"
inline constexpr std::size_t kSequence = 4;   // u32
inline constexpr std::size_t kVblkSize = 8;   // u32, bytes; the report's label says sectors
inline constexpr std::size_t kVblkOffset = 12;
inline constexpr std::size_t kUpdateStatus = 16;  // u16
inline constexpr std::size_t kMajorVersion = 18;
inline constexpr std::size_t kMinorVersion = 20;
inline constexpr std::size_t kGroupName = 22;  // 31 bytes of text
inline constexpr std::size_t kGroupId = 53;    // 64 bytes of text
inline constexpr std::size_t kCommittedSequence = 117;
inline constexpr std::size_t kPendingSequence = 125;
inline constexpr std::size_t kCommittedVolumes = 133;  // u32 each
inline constexpr std::size_t kCommittedComponents = 137;
inline constexpr std::size_t kCommittedPartitions = 141;
inline constexpr std::size_t kCommittedDisks = 145;
inline constexpr std::size_t kPendingVolumes = 161;
inline constexpr std::size_t kPendingComponents = 165;
inline constexpr std::size_t kPendingPartitions = 169;
inline constexpr std::size_t kPendingDisks = 173;
inline constexpr std::size_t kLastAccess = 189;  // FILETIME

}  // namespace trovisk::vmdb

#endif
