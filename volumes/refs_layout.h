// The fields of a ReFS boot record, for its decoder and its examination.
//
// Little-endian. Layout: as published by researchers of the file system, whose makers have not described it;
// what is called unknown here is unknown there.

#ifndef TROVISK_VOLUMES_REFS_LAYOUT_H
#define TROVISK_VOLUMES_REFS_LAYOUT_H

#include <cstddef>

#include "frame/bytes.h"

namespace trovisk {

// The jump's three bytes are zero: the volume does not boot. The name is "ReFS" in the OEM name's place.
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

// Where the superblock stands, counted from the boot record.
inline constexpr u64 kReFsSuperblockCluster = 30;

}  // namespace trovisk

#endif
