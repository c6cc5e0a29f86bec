// Builders of GUID partition tables.

#ifndef TROVISK_TESTS_DISKS_GPT_H
#define TROVISK_TESTS_DISKS_GPT_H

#include <array>
#include <optional>

#include "tests/disks/disk.h"
#include "tests/disks/mbr.h"

namespace trovisk::test {

inline constexpr Guid kUnusedType("00000000-0000-0000-0000-000000000000");
inline constexpr Guid kLdmMetadataType("5808C8AA-7E8F-42E0-85D2-E1E90434CFB3");
inline constexpr Guid kEfiSystemType("C12A7328-F81F-11D2-BA4B-00A0C93EC93B");
inline constexpr Guid kStorageSpacesType("E75CAF8F-F680-4CEE-AFA3-B001E56EFC2D");
inline constexpr Guid kStorageReplicaType("558D43C5-A1AC-43C0-AAC8-D1472B2923D1");
inline constexpr Guid kBasicDataType("EBD0A0A2-B9E5-4433-87C0-68B6B72699C7");
inline constexpr Guid kRecoveryType("DE94BBA4-06D1-4D40-A16A-BFD50179D6AC");
inline constexpr Guid kLinuxSwapType("0657FD6D-A4AB-43C4-84E5-0933C84B4F4F");  // named, and nothing more
inline constexpr Guid kUnlistedType("0FC63DAF-8483-4772-8E79-3D69D8477DE4");

struct GptEntry {
  Guid type = kLinuxSwapType;
  Guid unique = Guid("0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0");
  u64 first = 0;
  u64 last = 0;
  u64 attributes = 0;
  std::u16string name = {};  // at most 36 units; NULs behind it
};

// What is not given follows from the disk and from where the header is put: in sector 1 it is the primary
// header with its array behind it, elsewhere the backup with its array in front of it.
struct GptHeader {
  std::array<u8, 4> revision = {0, 0, 1, 0};
  u32 headerSize = 92;
  std::optional<u32> headerCrc = {};  // else the correct one
  std::optional<u64> ownLba = {};
  std::optional<u64> otherLba = {};
  std::optional<u64> firstUsable = {};
  std::optional<u64> lastUsable = {};
  Guid diskGuid = Guid("9ABCDEF0-1234-5678-9ABC-DEF012345678");
  std::optional<u64> entriesLba = {};
  u32 entryCount = 128;
  u32 entrySize = 128;
  std::optional<u32> entriesCrc = {};  // else that of the array as it stands on the disk
};

// A master boot record whose one entry, of type 0xEE, covers the disk. Any sector size.
void PutProtectiveMbr(Disk& disk);

// The same with other entries.
void PutBootRecordBytes(Disk& disk, const BootRecord& record);

// The entries one behind the other from the start of the sector, stride bytes from one to the next.
void PutGptEntries(Disk& disk, u64 sector, const std::vector<GptEntry>& entries, u32 stride = 128);

void PutGptHeader(Disk& disk, u64 sector, const GptHeader& header = {});

// Protective MBR, both headers and both arrays, as a partitioning tool leaves them.
void PutGpt(Disk& disk, const std::vector<GptEntry>& entries = {});

// The CRC-32 of IEEE 802.3, which a header has of itself and of the array.
u32 Crc32(trovisk::Bytes bytes);

}  // namespace trovisk::test

#endif
