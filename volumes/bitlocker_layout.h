// The fields of BitLocker boot sectors, for their decoder and their examination.
//
// Little-endian. Layout: as observed on disks, and as published in J. Metz, "BitLocker Drive Encryption (BDE)
// format specification", volume header. The Vista layout has the place of its first metadata block where NTFS
// has the cluster of the MFT's mirror.

#ifndef TROVISK_VOLUMES_BITLOCKER_LAYOUT_H
#define TROVISK_VOLUMES_BITLOCKER_LAYOUT_H

#include <cstddef>
#include <string_view>

#include "frame/guid.h"

namespace trovisk {

// In the OEM name's place, and at the start of each metadata block.
inline constexpr std::string_view kBitLockerSignature = "-FVE-FS-";

// The second byte of the jump instruction EB xx 90 tells the layout.
inline constexpr u8 kBitLockerJumpVista = 0x52;
inline constexpr u8 kBitLockerJumpSeven = 0x58;

// Windows 7 and later
inline constexpr std::size_t kBitLockerGuid = 0x0A0;      // 16 bytes
inline constexpr std::size_t kBitLockerMetadata = 0x0B0;  // u64 each, bytes from the boot sector, of 3 blocks

// BitLocker To Go, whose boot sector is that of the FAT volume that other systems see
inline constexpr std::size_t kToGoGuid = 0x1A8;      // 16 bytes
inline constexpr std::size_t kToGoMetadata = 0x1B8;  // u64 each, as above

// A metadata block, of any layout
inline constexpr std::size_t kFveSignature = 0x00;     // "-FVE-FS-"
inline constexpr std::size_t kFveVersion = 0x0A;       // u16; 1: Windows Vista, 2: later
inline constexpr std::size_t kFveBlockOffsets = 0x20;  // u64 each, bytes from the boot sector, of 3 blocks
inline constexpr std::size_t kFveMetadataSize = 0x40;  // u32, bytes, from here on

// What tells a volume's layout: encrypted as a whole, or its used space alone.
inline constexpr Guid kBitLockerVolume{"4967D63B-2E29-4AD8-8399-F6A339E3D001"};
inline constexpr Guid kBitLockerUsedSpaceVolume{"92A84D3B-DD80-4D0E-9E4E-B1E3284EAED8"};

}  // namespace trovisk

#endif
