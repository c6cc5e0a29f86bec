// ReFS volume boot record and its backup.
//
// The boot record stands in the first sector of the volume, its backup in the last one; 512 bytes whatever
// the sector size. Little-endian.
// Layout: as published by researchers of the file system, whose makers have not described it; what is called
// unknown here is unknown there.
// Not checked: anything. What was read is shown, and what it points to registered.

#include "frame/global.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "refimages/boot_sector.h"
#include "volumes/volumes_state.h"

namespace trovisk {
namespace {

// The jump's three bytes are zero: the volume does not boot. The name is "ReFS" in the OEM name's place.
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

constexpr u64 kSuperblockCluster = 30;
constexpr u8 kFirstVersionWithSuperblock = 3;  // that the superblock decoder understands

constexpr FieldRow kVolumeFields[] = {
    {"Jmp                   : ", kJump, HexBytes(3), " (Zeroes until ReFS boot is supported)"},
    {"FS Name               : [ ", kOemName, Chars(8), " ]"},
    {"Identifier            : '", kIdentifier, Chars(4), "'"},
    {"Partition Header Size : ", kHeaderSize, kLe16, " bytes"},
    {"Checksum              : 0x", kChecksum, ReversedHexBytes(2)},
    {"Sector Count          : ", kSectorCount, kLe64},
    {"Sector Size           : ", kSectorSize, kLe32, " bytes"},
    {"Sectors / Cluster     : ", kSectorsPerCluster, kLe32},
};
// Shown for the backup only.
constexpr FieldRow kUnknownFields[] = {
    {"Unknown #1            : 0x", kUnknown1, ReversedHexBytes(2)},
    {"Unknown #2            : 0x", kUnknown2, ReversedHexBytes(4)},
    {"Unknown #3            : 0x", kUnknown3, ReversedHexBytes(8)},
};
constexpr FieldRow kIdentityFields[] = {
    {"Volume Serial Number  : 0x", kSerialNumber, VolumeSerial(8)},
    {"Bytes / Container     : ", kContainerSize, kLe64},
};
constexpr FieldRow kEnd[] = {
    {"End Sector Mark       : 0x", kEndMark, ReversedHexBytes(2)},
};
static_assert(FieldsFit(kVolumeFields, 512) && FieldsFit(kUnknownFields, 512) &&
              FieldsFit(kIdentityFields, 512) && FieldsFit(kEnd, 512));

enum class Copy { kPrimary, kBackup };

void PrintReport(SectorView boot, Copy copy) {
  report << LineEnd;
  PrintHeading(copy == Copy::kPrimary ? "ReFS Volume Boot Record" : "ReFS Backup Volume Boot Record");
  PrintFields(boot, kVolumeFields);
  report << "ReFS Version          : " << U8<kVersionMajor>(boot) << "." << U8<kVersionMinor>(boot)
         << LineEnd;
  if (copy == Copy::kBackup) PrintFields(boot, kUnknownFields);
  PrintFields(boot, kIdentityFields);

  const auto guid = Part<kGuid, 16>(boot);
  report << "FS GUID               : ";
  PrintHexBytes(guid);
  report << " {";
  PrintGuid(guid);
  report << "}" << LineEnd;
  PrintFields(boot, kEnd);
  report << LineEnd;
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
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView boot(*record);
  if (print) PrintReport(boot, Copy::kPrimary);
  refsVolume = {.volumeSector = sector, .sectorsPerCluster = Le32<kSectorsPerCluster>(boot)};
  if (!SeekToSector(sector)) return kEndPass;
  Register(boot, description, sector);
  return DumpRawSector(kAsRawSector, sector, print);
}

u64 DecodeReFsBackupBootRecord(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  if (print) PrintReport(SectorView(*record), Copy::kBackup);
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
