#include "map/survey.h"

#include <algorithm>

#include "frame/decoders.h"
#include "frame/disk_path.h"
#include "frame/global.h"
#include "frame/help.h"
#include "frame/progress.h"
#include "frame/report/report.h"
#include "map/arrange.h"
#include "map/catcher.h"
#include "map/contents.h"
#include "map/partitions.h"
#include "map/sector_size.h"
#include "map/structures.h"
#include "map/walk.h"

namespace trovisk {
namespace {

constexpr u64 kUnknown = ~u64{0};

// What the survey has visited, for who shows it.
SectorToc visited;
u64 lastOnDisk = kUnknown;

// Partitions are taken from a table that has lost its end mark.
bool HasMbrTable(const PartitionTables& tables) {
  return !tables.bareVolume && (tables.mbr.endMark || !tables.mbr.partitions.empty());
}

std::string SchemeOf(const PartitionTables& tables) {
  if (tables.bareVolume) return "none";
  const auto isLive = [](const MbrPartition& partition) { return partition.type != kTypeProtective; };
  const bool live = std::any_of(tables.mbr.partitions.begin(), tables.mbr.partitions.end(), isLive);
  const bool gpt = (tables.primary && tables.primary->present) || (tables.backup && tables.backup->present);
  if (gpt && (tables.gptInUse || !live)) return live ? "GPT, hybrid MBR" : "GPT";
  return HasMbrTable(tables) ? "MBR" : "none";
}

std::string IdOf(const PartitionTables& tables) {
  if (tables.gptInUse) {
    const auto& copy = tables.followsPrimary ? tables.primary : tables.backup;
    if (copy && copy->present) return GuidText(copy->diskGuid);
  }
  return HasMbrTable(tables) ? Hex32(tables.mbr.signature) : std::string();
}

// The structures that the tables lead to; the decoders find the rest.
void RegisterTables(const PartitionTables& tables) {
  if (!tables.bareVolume) AddTocEntry(disk, 0, DecodeMasterBootRecord, L"Master Boot Record");
  for (const auto* copy : {&tables.primary, &tables.backup}) {
    if (!*copy || !(*copy)->present) continue;
    const bool primary = (*copy)->which == "primary";
    AddTocEntry(disk, (*copy)->sector, DecodeGptHeader,
                primary ? L"Primary GPT Header" : L"Backup GPT Header");
  }
  for (u64 position = 0;;) {
    const auto record = tables.extendedRecords.FirstAtOrAfter(position);
    if (!record) break;
    AddTocRun(disk, record->first, record->last + 1, DecodeExtendedBootRecord, L"Supplementary Boot Record");
    position = record->last + 1;
    if (position == 0) break;
  }
}

// Partitions that the report's reading of an extended chain finds and the usual one does not.
void AddOtherReading(DiskMap& map, const PartitionTables& tables) {
  u64 found = 0;
  for (u64 position = 0; position <= lastOnDisk;) {
    const auto run = visited.FirstAtOrAfter(position);
    if (!run || run->first > lastOnDisk) break;
    const bool extended = run->entry.decoder == DecodeExtendedBootRecord;
    position = (extended ? run->first : run->last) + 1;
    if (position == 0) break;
    if (!extended || tables.extendedRecords.At(run->first)) continue;
    const auto record = ReadExtendedRecord(run->first);
    if (!record.endMark || !record.plausible || !record.logical || ++found > kMostLogical) continue;
    const MbrPartition& logical = *record.logical;
    map.extents.push_back({.first = logical.first,
                           .last = logical.first + std::max<u64>(logical.count, 1) - 1,
                           .kind = ExtentKind::kLogical,
                           .flags = kFlagOtherReading,
                           .source = "EBR at sector " + std::to_string(run->first)});
  }
  if (found > kMostLogical) {
    map.cut.push_back("Of " + std::to_string(found) + " logical partitions of another reading the first " +
                      std::to_string(kMostLogical) + " are shown.");
  }
}

DiskMap Survey(const char* argument, Catcher& catcher) {
  DiskMap map;
  map.disk.path = SafeUtf8(argument);
  map.disk.sectorSize = disk.bytesPerSector;
  lastOnDisk = disk.GetLastSector();
  if (disk.length) map.disk.bytes = *disk.length;
  map.disk.sectors = lastOnDisk + 1;
  PartitionTables tables = ReadPartitionTables(lastOnDisk);
  map.disk.scheme = SchemeOf(tables);
  map.disk.id = IdOf(tables);
  if (const auto& copy = tables.followsPrimary ? tables.primary : tables.backup; copy && copy->present) {
    map.disk.firstUsable = copy->firstUsable;
    map.disk.lastUsable = copy->lastUsable;
    map.disk.tableLength = copy->entryCount;
  }
  RegisterTables(tables);
  CheckSectorSize(tables, lastOnDisk);
  ReadContents(map, tables, lastOnDisk);
  std::move(tables.checks.begin(), tables.checks.end(), std::back_inserter(map.checks));
  std::move(tables.cut.begin(), tables.cut.end(), std::back_inserter(map.cut));

  WalkResult walk = WalkDisk(tables.extendedRecords, lastOnDisk, catcher, map.checks);
  visited = std::move(walk.structures);
  map.structures = walk.count;
  map.invalidStructures = walk.invalid;
  std::move(walk.cut.begin(), walk.cut.end(), std::back_inserter(map.cut));
  AddOtherReading(map, tables);
  ArrangeExtents(map.extents, map.disk.sectors);
  std::stable_sort(map.checks.begin(), map.checks.end(),
                   [](const Check& a, const Check& b) { return a.sector < b.sector; });
  return map;
}

void StartAfresh() {
  StartProgress();
  report.Start();
  errors.Start();
  disk.Reset();
  visited.Clear();
  ResetVolumesState();
  ResetGptState();
  ResetLdmState();
}

}  // namespace

std::optional<DiskMap> SurveyDisk(const char* argument) {
  StartAfresh();
  if (!disk.Open(DiskPath(argument), argument)) {
    if (disk.openError != 0) HintAtDisks(disk.openError);
    disk.Close();
    return std::nullopt;
  }
  Catcher catcher;
  return Survey(argument, catcher);
}

std::optional<u64> VisitStructures(const std::function<void(const Structure&)>& visit) {
  return ShowStructures(visited, lastOnDisk, visit);
}

void CloseSurvey() {
  disk.Close();
  EndProgress();
}

}  // namespace trovisk
