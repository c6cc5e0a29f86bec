// The kinds of volumes that have a decoder, told by their boot sectors.
//
// What tells each of them stands with its examination, in its structure's folder.

#include "map/volume_kind.h"

#include <algorithm>
#include <initializer_list>

#include "frame/examine_volume.h"
#include "mbr/examine_fat.h"
#include "mbr/examine_fat_geometry.h"
#include "volumes/examinations.h"

namespace trovisk {
namespace {

struct KindRow {
  VolumeKind kind;
  bool (*tells)(SectorView boot);
  VolumeFindings (*examine)(const VolumePlace& place);
};

// The first that fits counts: what has a name of its own before what is told by its fields alone.
constexpr KindRow kKinds[] = {
    {VolumeKind::kNtfs, IsNtfsBootSector, ExamineNtfs},
    {VolumeKind::kExFat, IsExFatBootSector, ExamineExFat},
    {VolumeKind::kReFs, IsReFsBootRecord, ExamineReFs},
    {VolumeKind::kBitLocker, IsBitLockerBootSector, ExamineBitLocker},
    {VolumeKind::kBitLockerToGo, IsBitLockerToGoBootSector, ExamineBitLocker},
    {VolumeKind::kFat, IsFatBootSector, ExamineFat},
};

// Where a volume of one of the kinds keeps its backup; other kinds found there are not believed.
VolumeKind KindAt(const VolumePlace& place, u64 bytes, std::initializer_list<VolumeKind> kinds) {
  const auto boot = ReadVolumeRecord(place, bytes);
  if (!boot || AllZero(*boot)) return VolumeKind::kNone;
  const VolumeKind kind = KindOfBootSector(SectorView(*boot));
  return std::find(kinds.begin(), kinds.end(), kind) == kinds.end() ? VolumeKind::kNone : kind;
}

constexpr u64 kExFatBackupSector = 12;
constexpr u64 kFat32BackupSector = 6;

}  // namespace

VolumeKind KindOfBootSector(SectorView boot) {
  for (const KindRow& row : kKinds) {
    if (row.tells(boot)) return row.kind;
  }
  return VolumeKind::kNone;
}

VolumeKind KindByBackup(const VolumePlace& place) {
  VolumeKind kind = VolumeKind::kNone;
  const auto isAt = [&](u64 bytes, std::initializer_list<VolumeKind> kinds) {
    kind = KindAt(place, bytes, kinds);
    return kind != VolumeKind::kNone;
  };
  for (const u64 size : kVolumeSectorSizes) {
    if (isAt(kFat32BackupSector * size, {VolumeKind::kFat})) return kind;
    if (isAt(kExFatBackupSector * size, {VolumeKind::kExFat})) return kind;
  }
  for (const u64 last : PlacesOfLastSector(place)) {
    if (isAt(last, {VolumeKind::kNtfs, VolumeKind::kReFs})) return kind;
  }
  return VolumeKind::kNone;
}

bool IsBackedUp(const VolumePlace& place) {
  const VolumeKind kind = KindByBackup(place);
  if (kind == VolumeKind::kNone) return false;
  const u64 sectors = ExamineVolume(kind, place).sectors;
  constexpr u64 kMostSpare = 2048;  // what formatting leaves over of a disk
  return sectors != 0 && place.sectors >= sectors && place.sectors - sectors <= kMostSpare;
}

VolumeFindings ExamineVolume(VolumeKind kind, const VolumePlace& place) {
  for (const KindRow& row : kKinds) {
    if (row.kind == kind) return row.examine(place);
  }
  return {};
}

}  // namespace trovisk
