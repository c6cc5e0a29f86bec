// The fields of ReFS structures that both their decoders and their volume's examination need.
//
// Little-endian. Layout: as published by researchers of the file system, whose makers have not described it;
// what is called unknown here is unknown there.

#ifndef TROVISK_VOLUMES_REFS_LAYOUT_H
#define TROVISK_VOLUMES_REFS_LAYOUT_H

#include <cstddef>

#include "frame/bytes.h"

namespace trovisk {

// Boot record. The jump's three bytes are zero: the volume does not boot. The name is "ReFS" in the OEM
// name's place.
inline constexpr std::size_t kReFsIdentifier = 0x010;         // 4 bytes, "FSRS"
inline constexpr std::size_t kReFsHeaderSize = 0x014;         // u16, bytes
inline constexpr std::size_t kReFsChecksum = 0x016;           // u16
inline constexpr std::size_t kReFsSectorCount = 0x018;        // u64, of the volume
inline constexpr std::size_t kReFsSectorSize = 0x020;         // u32, bytes
inline constexpr std::size_t kReFsSectorsPerCluster = 0x024;  // u32
inline constexpr std::size_t kReFsVersionMajor = 0x028;       // u8
inline constexpr std::size_t kReFsVersionMinor = 0x029;       // u8
inline constexpr std::size_t kReFsUnknown1 = 0x02A;           // u16
inline constexpr std::size_t kReFsUnknown2 = 0x02C;           // u32
inline constexpr std::size_t kReFsUnknown3 = 0x030;           // u64
inline constexpr std::size_t kReFsSerialNumber = 0x038;       // 8 bytes
inline constexpr std::size_t kReFsContainerSize = 0x040;      // u64, bytes
inline constexpr std::size_t kReFsGuid = 0x048;               // 16 bytes

// Metadata pages. The superblock refers to the checkpoints by a list of clusters, u64 each.
inline constexpr std::size_t kReFsPageSignature = 0x00;  // 4 bytes, "SUPB", "CHKP"
inline constexpr std::size_t kReFsReferencesOffset =
    0x70;                                                 // superblock: u32, bytes from the start of the page
inline constexpr std::size_t kReFsReferenceCount = 0x74;  // superblock: u32
inline constexpr std::size_t kReFsReferenceSize = 8;
inline constexpr std::size_t kReFsCheckpointClock = 0x60;  // checkpoint: u64

// Where the superblock stands, counted from the boot record.
inline constexpr u64 kReFsSuperblockCluster = 30;
inline constexpr u8 kReFsFirstVersionWithSuperblock = 3;  // of the layout that is known here

}  // namespace trovisk

#endif
