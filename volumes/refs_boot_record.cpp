// ReFS volume boot record and its backup.
//
// The boot record stands in the first sector of the volume, its backup in the last one; 512 bytes whatever
// the sector size. Little-endian.
// Layout: as published by researchers of the file system, whose makers have not described it; what is called
// unknown here is unknown there.
// Not checked: anything. What was read is shown, and what it points to registered.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"
#include "frame/global.h"

namespace trovisk {
namespace {

constexpr std::size_t kJump = 0x000;               // 3 bytes, zero: the volume does not boot
constexpr std::size_t kName = 0x003;               // 8 bytes, "ReFS"
constexpr std::size_t kIdentifier = 0x010;         // 4 bytes, "FSRS"
constexpr std::size_t kHeaderSize = 0x014;         // u16, bytes
constexpr std::size_t kChecksum = 0x016;           // u16
constexpr std::size_t kSectorCount = 0x018;        // u64, of the volume
constexpr std::size_t kSectorSize = 0x020;         // u32, bytes
constexpr std::size_t kSectorsPerCluster = 0x024;  // u32
constexpr std::size_t kVersionMajor = 0x028;       // u8
constexpr std::size_t kVersionMinor = 0x029;       // u8
constexpr std::size_t kUnknown1 = 0x02A;           // u16
constexpr std::size_t kUnknown2 = 0x02C;           // u32
constexpr std::size_t kUnknown3 = 0x030;           // u64
constexpr std::size_t kSerialNumber = 0x038;       // 8 bytes
constexpr std::size_t kContainerSize = 0x040;      // u64, bytes
constexpr std::size_t kGuid = 0x048;               // 16 bytes
constexpr std::size_t kEndMark = 0x1FE;            // u16

constexpr u64 kSuperblockCluster = 30;
constexpr u8 kFirstVersionWithSuperblock = 3;  // that the superblock decoder understands

constexpr FieldRow kVolumeFields[] = {
    {"Jmp                   : ", kJump, Format::kHexBytes, 3, " (Zeroes until ReFS boot is supported)"},
    {"FS Name               : [ ", kName, Format::kChars, 8, " ]"},
    {"Identifier            : '", kIdentifier, Format::kChars, 4, "'"},
    {"Partition Header Size : ", kHeaderSize, Format::kLe16, 0, " bytes"},
    {"Checksum              : 0x", kChecksum, Format::kReversedHexBytes, 2},
    {"Sector Count          : ", kSectorCount, Format::kLe64},
    {"Sector Size           : ", kSectorSize, Format::kLe32, 0, " bytes"},
    {"Sectors / Cluster     : ", kSectorsPerCluster, Format::kLe32},
};
static_assert(FieldsFit(kVolumeFields, 512));

// Shown for the backup only.
constexpr FieldRow kUnknownFields[] = {
    {"Unknown #1            : 0x", kUnknown1, Format::kReversedHexBytes, 2},
    {"Unknown #2            : 0x", kUnknown2, Format::kReversedHexBytes, 4},
    {"Unknown #3            : 0x", kUnknown3, Format::kReversedHexBytes, 8},
};
static_assert(FieldsFit(kUnknownFields, 512));

constexpr FieldRow kIdentityFields[] = {
    {"Volume Serial Number  : 0x", kSerialNumber, Format::kVolumeSerial},
    {"Bytes / Container     : ", kContainerSize, Format::kLe64},
};
static_assert(FieldsFit(kIdentityFields, 512));

enum class Copy { kPrimary, kBackup };

void PrintReport(SectorView boot, Copy copy) {
  std::cout << LineEnd;
  PrintHeading(copy == Copy::kPrimary ? "ReFS Volume Boot Record" : "ReFS Backup Volume Boot Record");
  PrintFields(boot, kVolumeFields);
  std::cout << "ReFS Version          : " << unsigned{U8<kVersionMajor>(boot)} << "."
            << unsigned{U8<kVersionMinor>(boot)} << LineEnd;
  if (copy == Copy::kBackup) PrintFields(boot, kUnknownFields);
  PrintFields(boot, kIdentityFields);

  const auto guid = Part<kGuid, 16>(boot);
  std::cout << "FS GUID               : ";
  PrintHexBytes(guid);
  std::cout << " {";
  PrintGuid(guid);
  std::cout << "}" << LineEnd << "End Sector Mark       : 0x";
  PrintHex(Le16<kEndMark>(boot), 4);
  std::cout << LineEnd << LineEnd;
}

void Register(SectorView boot, WideText description, u64 sector) {
  // The sector itself, where whoever handed it over has not registered it.
  AddTocEntry(disk, sector, DecodeReFsBackupBootRecord, description);
  AddTocEntry(disk, sector + Le64<kSectorCount>(boot) - 1, DecodeReFsBackupBootRecord,
              L"Backup ReFS Volume Boot Record");
  if (U8<kVersionMajor>(boot) < kFirstVersionWithSuperblock) return;
  AddTocEntry(disk, sector + kSuperblockCluster * Le32<kSectorsPerCluster>(boot), DecodeReFsSuperblock,
              L"ReFS SUPB Sector");
}

}  // namespace

u64 DecodeReFsBootRecord(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  std::array<u8, 512> record{};
  if (!ReadRecord(record)) return kEndPass;
  const SectorView boot(record);
  if (print) PrintReport(boot, Copy::kPrimary);
  disk.refsVolume = {.volumeSector = sector, .sectorsPerCluster = Le32<kSectorsPerCluster>(boot)};
  if (!SeekToSector(sector)) return kEndPass;
  Register(boot, description, sector);
  return DumpRawSector(L"as a raw sector", sector, print);
}

u64 DecodeReFsBackupBootRecord(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  std::array<u8, 512> record{};
  if (!ReadRecord(record)) return kEndPass;
  if (print) PrintReport(SectorView(record), Copy::kBackup);
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
