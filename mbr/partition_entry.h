// One 16-byte partition table entry of a master or extended boot record.

#ifndef TROVISK_MBR_PARTITION_ENTRY_H
#define TROVISK_MBR_PARTITION_ENTRY_H

#include "frame/bytes.h"

namespace trovisk {

// The table, in a master and in an extended boot record: four entries, of which an extended one uses two.
inline constexpr std::size_t kPartitionTable = 0x1BE;
inline constexpr std::size_t kPartitionEntrySize = 16;
inline constexpr std::size_t kEntryType = 0x4;  // the type byte's offset in an entry

// The line above the entries of a report, with its empty lines.
void PrintPartitionTableHeading();

// Prints the entry when print is set, and registers the partition's first sector with the decoder that the
// type byte calls for. tableSector: the absolute sector that holds the table; the entry's own sector numbers
// are relative to it.
void PrintPartitionEntry(FixedBytes<kPartitionEntrySize> entry, u64 tableSector, bool print);

}  // namespace trovisk

#endif
