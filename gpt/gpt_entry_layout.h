// Where the fields of a GPT partition entry stand. Little-endian.
// Layout: UEFI, "GUID Partition Table (GPT) Disk Layout", GPT partition entry array.

#ifndef TROVISK_GPT_GPT_ENTRY_LAYOUT_H
#define TROVISK_GPT_GPT_ENTRY_LAYOUT_H

#include <cstddef>

namespace trovisk::gpt_entry {

inline constexpr std::size_t kTypeGuid = 0x00;     // 16 bytes, all zero: unused entry
inline constexpr std::size_t kUniqueGuid = 0x10;   // 16 bytes
inline constexpr std::size_t kStartingLba = 0x20;  // u64
inline constexpr std::size_t kEndingLba = 0x28;    // u64, inclusive
inline constexpr std::size_t kAttributes = 0x30;   // u64
inline constexpr std::size_t kName = 0x38;         // 36 UTF-16 code units, NUL-padded
inline constexpr std::size_t kNameSize = 72;
inline constexpr std::size_t kEntrySize = 128;  // the smallest; larger ones begin with the same fields

}  // namespace trovisk::gpt_entry

#endif
