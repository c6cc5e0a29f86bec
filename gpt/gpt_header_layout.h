// Where the fields of a GPT header stand. Little-endian.
// Layout: UEFI, "GUID Partition Table (GPT) Disk Layout", GPT header.

#ifndef TROVISK_GPT_GPT_HEADER_LAYOUT_H
#define TROVISK_GPT_GPT_HEADER_LAYOUT_H

#include <cstddef>

namespace trovisk::gpt_header {

inline constexpr std::size_t kSignature = 0x00;   // "EFI PART"
inline constexpr std::size_t kRevision = 0x08;    // four bytes
inline constexpr std::size_t kHeaderSize = 0x0C;  // u32, bytes
inline constexpr std::size_t kHeaderCrc = 0x10;   // u32
inline constexpr std::size_t kOwnLba = 0x18;      // u64
inline constexpr std::size_t kOtherLba = 0x20;    // u64: of the backup in the primary header, and the reverse
inline constexpr std::size_t kFirstUsable = 0x28;  // u64
inline constexpr std::size_t kLastUsable = 0x30;   // u64
inline constexpr std::size_t kDiskGuid = 0x38;     // 16 bytes
inline constexpr std::size_t kEntriesLba = 0x48;   // u64, first sector of the partition entry array
inline constexpr std::size_t kEntryCount = 0x50;   // u32
inline constexpr std::size_t kEntrySize = 0x54;    // u32, bytes
inline constexpr std::size_t kEntriesCrc = 0x58;   // u32
inline constexpr std::size_t kInterpreted = 0x5C;  // bytes; the rest is reserved

}  // namespace trovisk::gpt_header

#endif
