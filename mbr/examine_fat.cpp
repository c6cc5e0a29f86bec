// The examination of a FAT volume.
//
// Starts from the boot sector in the volume's first sector, or from its backup in the volume's sector 6 where
// the first one is not whole. Little-endian. Layout: Microsoft, "FAT: General Overview of On-Disk Format".
// Checked: the boot sector's end mark and geometry, the total of sectors against the partition, that a FAT
// holds all clusters, the media byte in the first FAT, the first sector of the other FATs against it; for
// FAT32 the backup of the boot sector and the signatures of FSInfo. Not checked: what the FATs hold behind
// their first sector, the directories, FSInfo's hints, the backup of FSInfo.

#include "mbr/examine_fat.h"

#include "frame/examine_volume.h"
#include "mbr/examine_fat_geometry.h"
#include "mbr/fat32_fsinfo_layout.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr std::string_view kBackupName = "FAT32 backup boot sector";
constexpr u64 kUsualBackupSector = 6;
constexpr u16 kFatsNotMirrored = 0x80;  // in the flags of FAT32: one FAT alone is in use
constexpr u64 kMostFatsAlone = 4;       // areas of their own, which are compared; up to 255 can be stated

struct Volume {
  const VolumePlace& place;
  SectorView boot;
  FatGeometry geometry;

  bool IsFat32() const { return geometry.bits == 32; }
  u64 Offset(u64 sector) const { return sector * geometry.bytesPerSector; }
  u64 DiskSector(u64 sector) const { return DiskSectorAt(place, Offset(sector)); }
  u64 Fat(u64 index) const { return geometry.reserved + index * geometry.fatSize; }
};

std::string LabelOf(const Volume& volume) {
  const bool fat32 = volume.IsFat32();
  const u8 signature = fat32 ? U8<kFat32Signature>(volume.boot) : U8<kFat16Signature>(volume.boot);
  if (signature != 0x29) return {};
  const std::string label =
      SafeAscii(fat32 ? Part<kFat32VolumeLabel, 11>(volume.boot) : Part<kFat16VolumeLabel, 11>(volume.boot));
  return label == "NO NAME" ? "" : label;
}

// A sector of the reserved ones that a FAT32 boot sector names; 0 and all ones: it names none.
std::optional<u64> NamedSector(const Volume& volume, u16 sector) {
  if (!volume.IsFat32() || sector == 0 || sector == 0xFFFF) return std::nullopt;
  return sector;
}

void AddAreas(VolumeFindings& findings, const Volume& volume) {
  const FatGeometry& geometry = volume.geometry;
  const auto add = [&](std::string_view name, u64 first, u64 count) {
    AddArea(findings, volume.place, name, volume.Offset(first), volume.Offset(count));
  };
  add("reserved", 0, geometry.reserved);
  if (const auto sector = NamedSector(volume, Le16<kFat32FsInfo>(volume.boot))) add("FSInfo", *sector, 1);
  if (const auto sector = NamedSector(volume, Le16<kFat32BackupBoot>(volume.boot))) {
    add("backup boot sector", *sector, 1);
  }
  const u64 alone = std::min(geometry.fats, kMostFatsAlone);
  for (u64 i = 0; i < alone; ++i)
    add("FAT " + std::to_string(i + 1), volume.Fat(i), geometry.fatSize);
  if (geometry.fats > alone) {
    add("FATs " + std::to_string(alone + 1) + " to " + std::to_string(geometry.fats), volume.Fat(alone),
        (geometry.fats - alone) * geometry.fatSize);
  }
  add("root directory", geometry.rootDirectory, geometry.rootSectors);
  add("data", geometry.firstData, geometry.clusters * geometry.sectorsPerCluster);
}

Check CheckFatSize(const Volume& volume) {
  constexpr u64 kReservedEntries = 2;
  const FatGeometry& geometry = volume.geometry;
  const u64 entries = volume.Offset(geometry.fatSize) * 8 / geometry.bits;
  const u64 needed = geometry.clusters + kReservedEntries;
  return {volume.place.sector, "FAT size", entries >= needed ? Verdict::kGood : Verdict::kBad,
          std::to_string(entries) + " entries", "at least " + std::to_string(needed)};
}

// The first sectors of the FATs: the media byte that the first one begins with, and the others' likeness.
void CheckFats(VolumeFindings& findings, const Volume& volume) {
  const FatGeometry& geometry = volume.geometry;
  const std::string media = Hex8(U8<kBpbMedia>(volume.boot));
  const auto first = ReadVolumeBytes(volume.place, volume.Offset(volume.Fat(0)), geometry.bytesPerSector);
  const u64 sector = volume.DiskSector(volume.Fat(0));
  findings.checks.push_back(first ? CheckEqual(sector, "FAT media byte", Hex8(U8At(*first, 0)), media)
                                  : Unreadable(sector, "FAT media byte", media));
  const bool mirrored = !volume.IsFat32() || (Le16<kFat32Flags>(volume.boot) & kFatsNotMirrored) == 0;
  for (u64 i = 1; i < geometry.fats && i < kMostFatsAlone; ++i) {
    constexpr std::string_view kName = "FAT copy, first sector";
    constexpr std::string_view kExpected = "the bytes of FAT 1";
    const u64 other = volume.DiskSector(volume.Fat(i));
    if (!mirrored || !first) {
      findings.checks.push_back(
          NotChecked(other, kName, mirrored ? "FAT 1 is unreadable" : "the FATs are not mirrored"));
      continue;
    }
    const auto copy = ReadVolumeBytes(volume.place, volume.Offset(volume.Fat(i)), geometry.bytesPerSector);
    findings.checks.push_back(copy ? CheckCopy(other, kName, *first, *copy, kExpected)
                                   : Unreadable(other, kName, kExpected));
  }
}

// A check of a sector that a FAT32 boot sector may name.
template <typename Examine>
void CheckNamedSector(VolumeFindings& findings, const Volume& volume, std::string_view name, u16 stored,
                      std::string_view expected, Examine examine) {
  const auto named = NamedSector(volume, stored);
  if (!named || *named >= volume.geometry.reserved) {
    const std::string_view why = named ? "its place lies behind the reserved sectors" : "none is named";
    findings.checks.push_back(NotChecked(volume.place.sector, name, why));
    return;
  }
  const auto record = ReadVolumeRecord(volume.place, volume.Offset(*named));
  const u64 sector = volume.DiskSector(*named);
  findings.checks.push_back(record ? examine(sector, SectorView(*record))
                                   : Unreadable(sector, name, expected));
}

void CheckBackup(VolumeFindings& findings, const Volume& volume) {
  constexpr std::string_view kExpected = "the bytes of the boot sector";
  CheckNamedSector(findings, volume, kBackupName, Le16<kFat32BackupBoot>(volume.boot), kExpected,
                   [&](u64 sector, SectorView backup) {
                     return CheckCopy(sector, kBackupName, volume.boot, backup, kExpected);
                   });
}

void CheckFsInfo(VolumeFindings& findings, const Volume& volume) {
  constexpr std::string_view kName = "FSInfo signatures";
  constexpr std::string_view kExpected = "0x41615252, 0x61417272, 0xAA550000";
  CheckNamedSector(findings, volume, kName, Le16<kFat32FsInfo>(volume.boot), kExpected,
                   [&](u64 sector, SectorView record) {
                     const std::string found = Hex32(Le32<kFsInfoLeadSignature>(record)) + ", " +
                                               Hex32(Le32<kFsInfoStructSignature>(record)) + ", " +
                                               Hex32(Le32<kFsInfoTrailSignature>(record));
                     return CheckEqual(sector, kName, found, std::string(kExpected));
                   });
}

// Only FAT32 has one.
bool IsFat32BootSector(SectorView boot) {
  const auto geometry = FatGeometryOf(boot);
  return IsFatBootSector(boot) && geometry && geometry->bits == 32;
}

}  // namespace

VolumeFindings ExamineFat(const VolumePlace& place) {
  VolumeFindings findings;
  findings.type = "FAT";
  const auto found = FindBootSector(findings, place,
                                    {.name = "FAT boot sector",
                                     .backupName = kBackupName,
                                     .complaint = FatComplaint,
                                     .isBackup = IsFat32BootSector,
                                     .backups = PlacesOfSector(kUsualBackupSector)});
  if (!found) return findings;
  const SectorView boot(found->bytes);
  const Volume volume{place, boot, FatGeometryOf(boot).value_or(FatGeometry{})};
  const FatGeometry& geometry = volume.geometry;

  findings.type += std::to_string(geometry.bits);
  findings.label = LabelOf(volume);
  findings.sectors = DiskSectors(volume.Offset(geometry.totalSectors));
  AddAreas(findings, volume);
  const u64 sector = DiskSectorAt(place, found->offset);
  findings.checks.push_back(CheckBootEndMark(sector, "FAT end mark", boot));
  findings.checks.push_back(CheckVolumeSize(sector, "FAT total sectors", findings.sectors, SectorsAt(place)));
  findings.checks.push_back(CheckFatSize(volume));
  CheckFats(findings, volume);
  if (volume.IsFat32()) {
    if (found->offset == 0) CheckBackup(findings, volume);
    CheckFsInfo(findings, volume);
  }
  return findings;
}

}  // namespace trovisk
