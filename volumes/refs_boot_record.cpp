// ReFS volume boot record and its backup.
//
// The boot record stands in the first sector of the volume, its backup in the last one; 512 bytes whatever
// the sector size. Little-endian.
// Layout: as published by researchers of the file system, whose makers have not described it; what is called
// unknown here is unknown there.
// Not checked: anything. What was read is shown, and what it points to registered.

#include "frame/global.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "refimages/boot_sector.h"
#include "volumes/refs_layout.h"
#include "volumes/volumes_state.h"

namespace trovisk {
namespace {

constexpr FieldRow kVolumeFields[] = {
    {"Jmp                   : ", kJump, HexBytes(3), " (Zeroes until ReFS boot is supported)"},
    {"FS Name               : [ ", kOemName, Chars(8), " ]"},
    {"Identifier            : '", kReFsIdentifier, Chars(4), "'"},
    {"Partition Header Size : ", kReFsHeaderSize, kLe16, " bytes"},
    {"Checksum              : 0x", kReFsChecksum, ReversedHexBytes(2)},
    {"Sector Count          : ", kReFsSectorCount, kLe64},
    {"Sector Size           : ", kReFsSectorSize, kLe32, " bytes"},
    {"Sectors / Cluster     : ", kReFsSectorsPerCluster, kLe32},
};
// Shown for the backup only.
constexpr FieldRow kUnknownFields[] = {
    {"Unknown #1            : 0x", kReFsUnknown1, ReversedHexBytes(2)},
    {"Unknown #2            : 0x", kReFsUnknown2, ReversedHexBytes(4)},
    {"Unknown #3            : 0x", kReFsUnknown3, ReversedHexBytes(8)},
};
constexpr FieldRow kIdentityFields[] = {
    {"Volume Serial Number  : 0x", kReFsSerialNumber, VolumeSerial(8)},
    {"Bytes / Container     : ", kReFsContainerSize, kLe64},
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
  const auto version = Part<kReFsVersionMajor, 2>(boot);
  PrintNotedLine("ReFS Version          : ", version, [&] { report << version[0] << "." << version[1]; });
  if (copy == Copy::kBackup) PrintFields(boot, kUnknownFields);
  PrintFields(boot, kIdentityFields);

  const auto guid = Part<kReFsGuid, 16>(boot);
  PrintNotedLine("FS GUID               : ", guid, [&] {
    PrintHexBytes(guid);
    report << " {";
    PrintGuid(guid);
    report << "}";
  });
  PrintFields(boot, kEnd);
  report << LineEnd;
}

void Register(SectorView boot, WideText description, u64 sector) {
  // The sector itself, where whoever handed it over has not registered it.
  AddTocEntry(disk, sector, DecodeReFsBackupBootRecord, description);
  AddTocEntry(disk, sector + Le64<kReFsSectorCount>(boot) - 1, DecodeReFsBackupBootRecord,
              L"Backup ReFS Volume Boot Record");
  if (U8<kReFsVersionMajor>(boot) < kReFsFirstVersionWithSuperblock) return;
  AddTocEntry(disk, sector + kReFsSuperblockCluster * Le32<kReFsSectorsPerCluster>(boot),
              DecodeReFsSuperblock, L"ReFS SUPB Sector");
}

}  // namespace

u64 DecodeReFsBootRecord(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView boot(*record);
  if (print) PrintReport(boot, Copy::kPrimary);
  refsVolume = {.volumeSector = sector, .sectorsPerCluster = Le32<kReFsSectorsPerCluster>(boot)};
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
