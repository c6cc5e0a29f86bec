// Builders of ReFS boot records, superblocks and checkpoints.

#ifndef TROVISK_TESTS_DISKS_REFS_H
#define TROVISK_TESTS_DISKS_REFS_H

#include <optional>
#include <vector>

#include "tests/disks/disk.h"

namespace trovisk::test {

inline constexpr Guid kReFsGuid{"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9"};

struct ReFsBootRecord {
  std::string_view name = "ReFS";
  std::string_view identifier = "FSRS";
  u16 headerSize = 512;
  u16 checksum = 0x0C5A;
  u64 sectorCount = 12288;
  u32 sectorSize = 512;
  u32 sectorsPerCluster = 8;
  u8 versionMajor = 3;
  u8 versionMinor = 4;
  u16 unknown1 = 0x00A6;
  u32 unknown2 = 0x0000B7C8;
  u64 unknown3 = 0x00000000D9E0F102;
  u64 serialNumber = 0x1234567890ABCDEF;
  u64 containerSize = 67108864;
  Guid guid = kReFsGuid;
  u16 endMark = 0xAA55;
};

// The boot record; its backup at the end of the volume has the same bytes.
Sector& PutReFsBootRecord(Disk& disk, u64 sector, const ReFsBootRecord& boot = {});

// The checksum of a boot record, and a boot record that has it.
u16 ReFsBootChecksum(Bytes boot);
Sector& PutSummedReFsBootRecord(Disk& disk, u64 sector, const ReFsBootRecord& boot = {});

struct ReFsPageHeader {
  std::string_view signature;
  u32 unknown = 2;
  u32 volumeSignature = 0x5CA1AB1E;
  u64 allocatorClock = 17;
  u64 treeClock = 4711;
  u64 lcns[4] = {0x1E, 0, 0, 0};
  u64 tableIdHigh = 0;
  u64 tableIdLow = 0;
};

struct ReFsPageReference {
  u64 lcns[4] = {0x1E, 0, 0, 0};
  u8 checksumType = 2;
  u8 checksumOffset = 8;  // from byte 0x20 of the reference
  u16 checksumLength = 8;
  u64 checksum = 0x0123456789ABCDEF;  // at byte 0x28, whatever the offset says
};

// The 48 bytes of a page reference at that offset of the sector.
void PutReFsPageReference(Sector& sector, std::size_t offset, const ReFsPageReference& reference);

struct ReFsSuperblock {
  ReFsPageHeader header = {.signature = "SUPB"};
  Guid guid = kReFsGuid;
  u64 version = 1;
  u32 referencesOffset = 0xC0;
  std::vector<u64> references = {0x1E0, 0x1E8};  // written at 0xC0, whatever the offset says
  std::optional<u32> referenceCount = {};        // none: as many as there are
  u32 descriptorOffset = 0xD0;
  u32 descriptorLength = 48;
  ReFsPageReference descriptor = {};  // written at 0xD0, whatever the offset says
};

Sector& PutReFsSuperblock(Disk& disk, u64 sector, const ReFsSuperblock& superblock = {});

struct ReFsCheckpoint {
  ReFsPageHeader header = {.signature = "CHKP", .lcns = {0x1E0, 0, 0, 0}};
  u16 flag1 = 1;
  u16 flag2 = 0xBEEF;
  u16 versionMajor = 3;
  u16 versionMinor = 4;
  u32 descriptorOffset = 0xD0;
  u32 descriptorLength = 48;
  ReFsPageReference descriptor = {.lcns = {0x1E0, 0, 0, 0}};  // written at 0xD0, whatever the offset says
  u64 checkpointClock = 1000;
  u64 allocatorClock = 2000;
  u64 oldestLogRecord = 0x00000000000ABCDE;
  u64 unknown = 0x0000000000000012;
  u32 bufferOffset = 0x000000F0;
  u32 bufferLength = 300;
  u32 pointerCount = 13;
  u32 firstPointer = 1200;  // each of the others is 100 more than the one before
};

Sector& PutReFsCheckpoint(Disk& disk, u64 sector, const ReFsCheckpoint& checkpoint = {});

}  // namespace trovisk::test

#endif
