// What the boot sectors of all volumes share: jump, OEM name, BIOS parameter block and end mark.
//
// A boot sector stands in the first sector of a volume. Little-endian. Layout: Microsoft, "FAT: General
// Overview of On-Disk Format", boot sector and BPB structure; for NTFS as its boot sectors show.

#ifndef TROVISK_REFIMAGES_BOOT_SECTOR_H
#define TROVISK_REFIMAGES_BOOT_SECTOR_H

#include <string_view>

#include "frame/bytes.h"
#include "frame/report/field_table.h"

namespace trovisk {

inline constexpr std::size_t kJump = 0x000;     // 3 bytes
inline constexpr std::size_t kOemName = 0x003;  // 8 bytes
inline constexpr std::size_t kEndMark = 0x1FE;  // 0x55 0xAA

// The BIOS parameter block of FAT volumes. NTFS has the same fields, those that it does not use zero;
// BitLocker takes the block over.
inline constexpr std::size_t kBpbBytesPerSector = 0x00B;     // u16
inline constexpr std::size_t kBpbSectorsPerCluster = 0x00D;  // u8
inline constexpr std::size_t kBpbReservedSectors = 0x00E;    // u16: from the boot sector to the first FAT
inline constexpr std::size_t kBpbFatCount = 0x010;           // u8
inline constexpr std::size_t kBpbRootEntries = 0x011;        // u16, zero: FAT32
inline constexpr std::size_t kBpbTotalSectors16 = 0x013;     // u16, zero: the 32-bit count is in use
inline constexpr std::size_t kBpbMedia = 0x015;              // u8
inline constexpr std::size_t kBpbFatSize16 = 0x016;          // u16, sectors, zero: FAT32
inline constexpr std::size_t kBpbSectorsPerTrack = 0x018;    // u16
inline constexpr std::size_t kBpbHeads = 0x01A;              // u16
inline constexpr std::size_t kBpbHiddenSectors = 0x01C;      // u32: sectors before the volume
inline constexpr std::size_t kBpbTotalSectors32 = 0x020;     // u32

// What follows it in FAT12 and FAT16.
inline constexpr std::size_t kFat16Drive = 0x024;         // u8
inline constexpr std::size_t kFat16Signature = 0x026;     // u8, 0x29: the next three fields are present
inline constexpr std::size_t kFat16VolumeSerial = 0x027;  // u32
inline constexpr std::size_t kFat16VolumeLabel = 0x02B;   // 11 characters
inline constexpr std::size_t kFat16FsType = 0x036;        // 8 characters

// What follows it in FAT32.
inline constexpr std::size_t kFat32FatSize = 0x024;       // u32, sectors
inline constexpr std::size_t kFat32Flags = 0x028;         // u16
inline constexpr std::size_t kFat32Version = 0x02A;       // 2 bytes, the minor one first
inline constexpr std::size_t kFat32RootCluster = 0x02C;   // u32
inline constexpr std::size_t kFat32FsInfo = 0x030;        // u16, from the boot sector
inline constexpr std::size_t kFat32BackupBoot = 0x032;    // u16, likewise
inline constexpr std::size_t kFat32Drive = 0x040;         // u8
inline constexpr std::size_t kFat32Signature = 0x042;     // u8, 0x29: the next three fields are present
inline constexpr std::size_t kFat32VolumeSerial = 0x043;  // u32
inline constexpr std::size_t kFat32VolumeLabel = 0x047;   // 11 characters
inline constexpr std::size_t kFat32FsType = 0x052;        // 8 characters

// What follows it in NTFS.
inline constexpr std::size_t kNtfsTotalSectors = 0x028;       // u64
inline constexpr std::size_t kNtfsMft = 0x030;                // u64, cluster
inline constexpr std::size_t kNtfsMftMirror = 0x038;          // u64, cluster
inline constexpr std::size_t kNtfsFileRecordSegment = 0x040;  // i32, clusters, encoded
inline constexpr std::size_t kNtfsIndexBlock = 0x044;         // u32, clusters
inline constexpr std::size_t kNtfsVolumeSerial = 0x048;       // 8 bytes
inline constexpr std::size_t kNtfsChecksum = 0x050;           // u32

// The lines that the reports of boot sectors begin and end with.
inline constexpr FieldRow kBootSectorStart[] = {
    {"Jump Instruction To Boot Code : ", kJump, BracketedHexBytes(3)},
    {"OEM Name                      : [ ", kOemName, Chars(8), " ]"},
};
inline constexpr FieldRow kBootSectorEnd[] = {
    {"Sector End Mark               : 0x", kEndMark, ReversedHexBytes(2)},
};

static_assert(FieldsFit(kBootSectorStart, 512) && FieldsFit(kBootSectorEnd, 512));

// Whether the sector ends in 0x55 0xAA.
bool HasEndMark(SectorView boot);

// Whether it does; where it does not, the report says so. structure: what it calls the boot sector.
bool CheckEndMark(SectorView boot, std::string_view structure, u64 sector);

}  // namespace trovisk

#endif
