// The BIOS parameter block of an NTFS boot sector, as NTFS extends it.

#ifndef TROVISK_VOLUMES_NTFS_BPB_H
#define TROVISK_VOLUMES_NTFS_BPB_H

#include "frame/bytes.h"

namespace trovisk {

// Where the block stands in the boot sector, and how long it is.
inline constexpr std::size_t kNtfsBpb = 0x00B;
inline constexpr std::size_t kNtfsBpbSize = 0x045;
using NtfsBpb = FixedBytes<kNtfsBpbSize>;

// The fields that say where the volume's metadata lies; offsets in the block.
inline constexpr std::size_t kNtfsSectorsPerCluster = 0x00D - kNtfsBpb;  // u8, encoded
inline constexpr std::size_t kNtfsTotalSectors = 0x028 - kNtfsBpb;       // u64
inline constexpr std::size_t kNtfsMft = 0x030 - kNtfsBpb;                // u64, cluster
inline constexpr std::size_t kNtfsMftMirror = 0x038 - kNtfsBpb;          // u64, cluster

// Prints the block, one line per field.
void PrintNtfsBpb(NtfsBpb bpb);

}  // namespace trovisk

#endif
