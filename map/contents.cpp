#include "map/contents.h"

#include <algorithm>
#include <set>

#include "frame/decoders.h"
#include "frame/examine_volume.h"
#include "frame/global.h"
#include "frame/report/names.h"
#include "map/signatures.h"
#include "map/volume_kind.h"

namespace trovisk {
namespace {

constexpr u64 kPrivheadOfMbr = 6;
constexpr std::string_view kLdmMetadata = "5808c8aa-7e8f-42e0-85d2-e1e90434cfb3";
constexpr std::string_view kLdmData = "af9b60a0-1431-4f62-bc68-3311714a69ad";
constexpr std::string_view kSpaces = "e75caf8f-f680-4cee-afa3-b001e56efc2d";
constexpr std::string_view kReplica = "558d43c5-a1ac-43c0-aac8-d1472b2923d1";
constexpr std::string_view kMicrosoftReserved = "e3c9e316-0b5c-4db8-817d-f92df00215ae";
constexpr std::string_view kBiosBoot = "21686148-6449-6e6f-744e-656564454649";
constexpr std::string_view kMbrDynamic = "0x42";
constexpr std::string_view kMbrUntyped = "0x00";

// Contents of further partitions are not looked at: each costs a handful of reads and some memory.
constexpr std::size_t kMostVolumes = 4096;

// Volumes, and their areas with them.
constexpr std::size_t kMostContents = 8192;

void AddAreas(DiskMap& map, const std::vector<Area>& areas, const std::string& source) {
  for (const Area& area : areas) {
    if (map.extents.size() >= kMostContents) {
      const std::string cut =
          "Of volumes and their areas the first " + std::to_string(kMostContents) + " are shown.";
      if (map.cut.empty() || map.cut.back() != cut) map.cut.push_back(cut);
      return;
    }
    map.extents.push_back({.first = area.first,
                           .last = std::max(area.first, area.last),
                           .kind = ExtentKind::kArea,
                           .typeName = area.name,
                           .source = source});
  }
}

// A stated size that leads beyond the largest sector number is no size.
u64 LastOf(const VolumePlace& place, u64 sectors) {
  const u64 count = sectors != 0 ? sectors : std::max<u64>(place.sectors, 1);
  return count - 1 <= ~u64{0} - place.sector ? place.sector + count - 1 : place.sector;
}

void AddVolume(DiskMap& map, const VolumePlace& place, VolumeFindings findings, bool fromBackup) {
  const std::string source = findings.type.substr(0, findings.type.find(" (")) +
                             (fromBackup ? " backup boot sector" : " boot sector");
  map.extents.push_back({.first = place.sector,
                         .last = LastOf(place, findings.sectors),
                         .kind = ExtentKind::kVolume,
                         .typeName = findings.type,
                         .name = std::move(findings.label),
                         .source = source});
  AddAreas(map, findings.areas, source);
  std::move(findings.checks.begin(), findings.checks.end(), std::back_inserter(map.checks));
}

void AddForeign(DiskMap& map, const VolumePlace& place, ForeignContent content) {
  if (content.sectors != 0)
    map.checks.push_back(
        CheckVolumeSize(content.sector, content.type + " total sectors", content.sectors, SectorsAt(place)));
  map.extents.push_back({.first = place.sector,
                         .last = LastOf(place, content.sectors),
                         .kind = ExtentKind::kVolume,
                         .typeName = std::move(content.type),
                         .name = std::move(content.label),
                         .source = "signature at sector " + std::to_string(content.sector)});
}

// False: nothing is recognised. What a backup alone still tells stands last: it outlives the volume that it
// belonged to.
bool ReadVolume(DiskMap& map, const VolumePlace& place) {
  const auto boot = ReadSectors(place.sector, 1);
  VolumeKind kind = VolumeKind::kNone;
  if (boot && boot->size() >= 512) kind = KindOfBootSector(SectorView(Bytes(*boot).first<512>()));
  const bool fromBackup = kind == VolumeKind::kNone;
  if (!fromBackup) {
    AddTocEntry(disk, place.sector, IdentifyBootSector, L"Boot Sector");
    if (auto raid = NameRaidMember(place)) AddForeign(map, place, std::move(*raid));
  } else if (auto foreign = NameContent(place)) {
    AddForeign(map, place, std::move(*foreign));
    return true;
  } else {
    kind = KindByBackup(place);
  }
  if (kind == VolumeKind::kNone) return false;
  AddVolume(map, place, ExamineVolume(kind, place), fromBackup);
  return true;
}

// Whether the type says that a volume begins there.
bool PromisesVolume(const Extent& partition) {
  return partition.typeName != "unknown" && partition.type != kMbrUntyped &&
         partition.type != kMicrosoftReserved && partition.type != kBiosBoot;
}

// It may be a former volume, one that nobody has formatted yet, or one of a kind that the map does not know.
void SayUnrecognised(DiskMap& map, const Extent& partition) {
  const auto bytes = ReadSectors(partition.first, 1);
  const std::string found = !bytes ? "unreadable" : AllZero(*bytes) ? "zeros" : "nothing that is known";
  map.checks.push_back({partition.first, std::string(kVolumeRecognised), Verdict::kNotChecked, found,
                        "a volume of the type " + partition.typeName});
}

bool IsPrivhead(u64 sector) {
  return BeginsWith(sector, "PRIVHEAD");
}

void ReadDynamicDisk(DiskMap& map, u64 privhead, u64 lastOnDisk) {
  if (map.dynamicDisk) return;
  AddTocEntry(disk, privhead, DecodePrivhead, L"PRIVHEAD Sector");
  map.dynamicDisk = ExamineDynamicDisk(privhead, lastOnDisk, map.checks);
  if (!map.dynamicDisk) return;
  const DynamicDisk& dynamic = *map.dynamicDisk;
  // Where the first copy is lost, another one leads its decoder to the rest.
  for (const Area& area : dynamic.areas) {
    if (area.first != privhead && area.name.starts_with("PRIVHEAD"))
      AddTocEntry(disk, area.first, DecodePrivhead, L"Alternate PRIVHEAD Sector");
  }
  AddAreas(map, dynamic.areas, "LDM database");
  if (dynamic.databaseSize != 0 && dynamic.databaseSize - 1 <= ~u64{0} - dynamic.databaseStart) {
    map.extents.push_back({.first = dynamic.databaseStart,
                           .last = dynamic.databaseStart + dynamic.databaseSize - 1,
                           .kind = ExtentKind::kStructure,
                           .typeName = "LDM database",
                           .source = "PRIVHEAD"});
  }
  // Unsigned: a header in front of the database counts as beyond it.
  if (privhead - dynamic.databaseStart >= dynamic.databaseSize) {
    map.extents.push_back({.first = privhead,
                           .last = privhead,
                           .kind = ExtentKind::kStructure,
                           .typeName = "LDM private header",
                           .source = "LDM"});
  }
}

// Whether a volume's sectors follow each other on this disk, so that its boot sector's numbers hold here.
bool IsContiguous(const DynamicVolume& volume) {
  return volume.type == "simple" || volume.type == "mirrored";
}

void AddDynamicPartitions(DiskMap& map, u64 lastOnDisk, std::size_t& volumes) {
  if (!map.dynamicDisk) return;
  for (const DynamicVolume& volume : map.dynamicDisk->volumes) {
    for (const DynamicComponent& component : volume.components) {
      for (const DynamicPartition& partition : component.partitions) {
        if (!partition.onThisDisk || partition.size == 0) continue;
        Extent extent{.first = partition.absoluteStart,
                      .last = partition.absoluteStart,
                      .kind = ExtentKind::kPartition,
                      .typeName = "dynamic, " + volume.type,
                      .name = volume.hint.empty() ? volume.name : volume.name + " (" + volume.hint + ")",
                      .source = "LDM " + partition.name};
        if (partition.size - 1 > ~u64{0} - partition.absoluteStart) {
          extent.flags |= kFlagReversed;
        } else {
          extent.last = partition.absoluteStart + partition.size - 1;
        }
        const bool holdsStart = partition.volumeOffset == 0 && partition.column == 0;
        if (holdsStart && extent.flags == 0 && ++volumes <= kMostVolumes) {
          const VolumePlace place{.sector = extent.first,
                                  .sectors = IsContiguous(volume) ? partition.size : 0,
                                  .lastOnDisk = lastOnDisk};
          if (IsContiguous(volume)) {
            ReadVolume(map, place);
          } else {
            AddTocEntry(disk, place.sector, IdentifyBootSector, L"Boot Sector");
          }
        }
        map.extents.push_back(std::move(extent));
      }
    }
  }
}

// What a dynamic disk's own partitions are cut from.
void MarkContainers(std::vector<Extent>& extents) {
  for (Extent& extent : extents) {
    if (extent.type == kMbrDynamic || extent.type == kLdmData || extent.type == kLdmMetadata) {
      extent.flags |= kFlagContainer;
    }
  }
}

bool HoldsSomething(const Extent& extent, u64 lastOnDisk) {
  return (extent.flags & (kFlagContainer | kFlagReversed | kFlagEmpty)) == 0 && extent.first <= lastOnDisk;
}

}  // namespace

void ReadContents(DiskMap& map, PartitionTables& tables, u64 lastOnDisk) {
  std::size_t volumes = 0;
  std::set<std::pair<u64, u64>> looked;  // two tables may have the same partition
  if (tables.bareVolume) {
    ReadVolume(map, {.sector = 0, .sectors = map.disk.sectors, .lastOnDisk = lastOnDisk});
  } else if (tables.mbr.OfType(kTypeDynamicDisk) != nullptr) {
    ReadDynamicDisk(map, kPrivheadOfMbr, lastOnDisk);
  } else if (tables.mbr.blank && !tables.gptInUse && (IsPrivhead(kPrivheadOfMbr) || IsPrivhead(lastOnDisk))) {
    tables.checks.push_back({0, "entry of type 0x42", Verdict::kMissing, "zeros: no partition table",
                             "a dynamic disk, whose header stands in sector 6"});
    ReadDynamicDisk(map, kPrivheadOfMbr, lastOnDisk);
  }
  for (const Extent& partition : tables.partitions) {
    if (!HoldsSomething(partition, lastOnDisk)) continue;
    if (!looked.emplace(partition.first, partition.last).second) continue;
    if (partition.type == kLdmMetadata) {
      ReadDynamicDisk(map, partition.last, lastOnDisk);
      continue;
    }
    if (partition.type == kLdmData || partition.type == kMbrDynamic) continue;
    if (++volumes > kMostVolumes) continue;
    const VolumePlace place{
        .sector = partition.first, .sectors = partition.last - partition.first + 1, .lastOnDisk = lastOnDisk};
    if (partition.type == kSpaces && !map.storageSpaces) {
      map.storageSpaces = ExamineStorageSpaces(place, map.checks);
      if (map.storageSpaces) AddAreas(map, map.storageSpaces->areas, "Storage Spaces");
    } else if (partition.type == kReplica) {
      VolumeFindings findings = ExamineStorageReplica(place);
      AddAreas(map, findings.areas, "Storage Replica");
      std::move(findings.checks.begin(), findings.checks.end(), std::back_inserter(map.checks));
    } else if (!ReadVolume(map, place) && PromisesVolume(partition)) {
      SayUnrecognised(map, partition);
    }
  }
  AddDynamicPartitions(map, lastOnDisk, volumes);
  for (auto* extents : {&tables.structures, &tables.partitions}) {
    std::move(extents->begin(), extents->end(), std::back_inserter(map.extents));
    *extents = {};
  }
  if (map.dynamicDisk) MarkContainers(map.extents);
  if (volumes > kMostVolumes) {
    map.cut.push_back("The contents of " + std::to_string(volumes - kMostVolumes) +
                      " partitions were not looked at.");
  }
}

}  // namespace trovisk
