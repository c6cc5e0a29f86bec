// Builders of NTFS boot sectors and of the boot code behind them.

#ifndef TROVISK_TESTS_DISKS_NTFS_H
#define TROVISK_TESTS_DISKS_NTFS_H

#include <optional>

#include "tests/disks/boot_code.h"

namespace trovisk::test {

struct NtfsBootSector {
  std::optional<BootCode> code = BootCode::kNtfsWindows8;  // invented; none: zeros
  std::string oemName = "NTFS    ";
  u16 bytesPerSector = 512;
  u8 sectorsPerCluster = 8;
  u16 reservedSectors = 0;
  u8 mediaDescriptor = 0xF8;
  u16 sectorsPerTrack = 63;
  u16 heads = 255;
  u32 hiddenSectors = 63;
  u64 totalSectors = 1000;
  u64 mftCluster = 4;
  u64 mftMirrorCluster = 2;
  u32 clustersPerRecordSegment = 0xF6;
  u32 clustersPerIndexBlock = 1;
  u64 volumeSerial = 0x1234567890ABCDEF;
  // One behind the other from the place where the code has its first one, each with a NUL, and their offsets:
  // the first three for Windows 8, four for the others.
  std::vector<std::string> messages = {"\r\nRead failed", "\r\nLoader missing", "\r\nLoader packed",
                                       "\r\nPress a key"};
  u16 endMark = 0xAA55;
};

Sector& PutNtfsBootSector(Disk& disk, u64 sector, const NtfsBootSector& boot);

struct NtfsBootCode {
  std::u16string loader = u"BOOTMGR";
  std::u16string index = u"$I30";
  std::vector<std::u16string> furtherNames = {};  // at 0x5A, one behind the other
  std::string message = {};                       // at 0x9A
  std::size_t codeOffset = 0x200;  // from here to the sector's end: the offset's low byte, times 3
};

Sector& PutNtfsBootCode(Disk& disk, u64 sector, const NtfsBootCode& code);

}  // namespace trovisk::test

#endif
