// One 16-byte partition table entry of a master or extended boot record.

#ifndef TROVISK_MBR_PARTITION_ENTRY_H
#define TROVISK_MBR_PARTITION_ENTRY_H

#include "frame/bytes.h"

namespace trovisk {

// The table, in a master and in an extended boot record: four entries, of which an extended one uses two.
inline constexpr std::size_t kPartitionTable = 0x1BE;
inline constexpr std::size_t kPartitionEntrySize = 16;

// In an entry.
inline constexpr std::size_t kBootIndicator = 0x0;  // u8
inline constexpr std::size_t kEntryType = 0x4;      // u8
inline constexpr std::size_t kFirstSector = 0x8;    // u32, relative to the sector that holds the table
inline constexpr std::size_t kSectorCount = 0xC;    // u32

inline constexpr u8 kActive = 0x80;
inline constexpr u8 kTypeEmpty = 0x00;

// The line above the entries of a report, with its empty lines.
void PrintPartitionTableHeading();

// Prints the entry when print is set, and registers the partition's first sector with the decoder that the
// type byte calls for. tableSector: the absolute sector that holds the table; the entry's own sector numbers
// are relative to it.
void PrintPartitionEntry(FixedBytes<kPartitionEntrySize> entry, u64 tableSector, bool print);

}  // namespace trovisk

#endif
