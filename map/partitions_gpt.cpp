#include <algorithm>

#include "map/partitions.h"
#include "map/type_names.h"

namespace trovisk {
namespace {

constexpr u64 kPrimaryHeader = 1;

Extent ExtentOf(const GptPartition& partition, std::string_view table) {
  Extent extent{.first = partition.first, .last = partition.last, .kind = ExtentKind::kPartition};
  if (partition.last < partition.first) extent.flags |= kFlagReversed;
  if ((partition.attributes & 4) != 0) extent.flags |= kFlagActive;  // legacy BIOS bootable
  extent.type = GuidText(partition.type);
  extent.typeName = NameOfGptType(extent.type);
  extent.name = partition.name;
  extent.nameReplaced = partition.nameReplaced;
  extent.source = std::string(table) + " entry " + std::to_string(partition.number);
  extent.number = partition.number;
  extent.id = GuidText(partition.unique);
  extent.attributes = partition.attributes;
  return extent;
}

void AddCopysStructures(PartitionTables& tables, const GptCopy& copy) {
  const std::string source = "GPT " + copy.which;
  tables.structures.push_back({.first = copy.sector,
                               .last = copy.sector,
                               .kind = ExtentKind::kStructure,
                               .flags = copy.headerSound ? 0U : u32{kFlagDamaged},
                               .typeName = "GPT " + copy.which + " header",
                               .source = source});
  if (copy.arraySectors == 0) return;
  tables.structures.push_back({.first = copy.entriesLba,
                               .last = copy.entriesLba + copy.arraySectors - 1,
                               .kind = ExtentKind::kStructure,
                               .flags = copy.arraySound ? 0U : u32{kFlagDamaged},
                               .typeName = "GPT " + copy.which + " entries",
                               .source = source});
}

// The map follows the primary copy, unless the backup alone is sound.
bool FollowsPrimary(const GptCopy& primary, const GptCopy& backup) {
  return primary.arraySectors != 0 && (primary.Sound() || !backup.Sound());
}

// Both copies entry by entry: one extent where they agree, else one of each.
void AddBoth(PartitionTables& tables, const GptCopy& primary, const GptCopy& backup) {
  auto a = primary.partitions.begin();
  auto b = backup.partitions.begin();
  const bool followsPrimary = FollowsPrimary(primary, backup);
  const auto add = [&](const GptPartition& partition, const GptCopy& copy, const GptCopy& other) {
    Extent extent = ExtentOf(partition, "GPT " + copy.which);
    extent.flags |= kFlagCopyDiffers;
    if (followsPrimary != (&copy == &primary)) extent.flags |= kFlagOtherCopy;
    if (!copy.Sound() && other.Sound()) extent.flags |= kFlagUnsound;
    tables.partitions.push_back(std::move(extent));
  };
  while (a != primary.partitions.end() || b != backup.partitions.end()) {
    const bool takeA =
        a != primary.partitions.end() && (b == backup.partitions.end() || a->number <= b->number);
    const bool takeB =
        b != backup.partitions.end() && (a == primary.partitions.end() || b->number <= a->number);
    if (takeA && takeB && *a == *b) {
      tables.partitions.push_back(ExtentOf(*a, "GPT"));
    } else {
      if (takeA) add(*a, primary, backup);
      if (takeB) add(*b, backup, primary);
    }
    if (takeA) ++a;
    if (takeB) ++b;
  }
}

void AddOne(PartitionTables& tables, const GptCopy& copy) {
  for (const GptPartition& partition : copy.partitions)
    tables.partitions.push_back(ExtentOf(partition, "GPT " + copy.which));
}

// The header that the other copy names, where none stands.
void AddLostHeader(PartitionTables& tables, const GptCopy& lost, const GptCopy& other) {
  if (lost.present || !other.headerSound || other.otherLba != lost.sector) return;
  tables.structures.push_back({.first = lost.sector,
                               .last = lost.sector,
                               .kind = ExtentKind::kStructure,
                               .flags = kFlagDamaged,
                               .typeName = "GPT " + lost.which + " header",
                               .source = "GPT " + other.which});
}

// The array of a copy whose header is lost, if it stands in its regular place: it is told by the checksum
// that both copies' arrays have.
void AddLostArray(PartitionTables& tables, const GptCopy& lost, const GptCopy& other) {
  if (lost.present || !other.Sound() || other.arraySectors == 0) return;
  const bool primary = lost.sector == kPrimaryHeader;
  if (!primary && lost.sector < other.arraySectors) return;
  const u64 first = primary ? kPrimaryHeader + 1 : lost.sector - other.arraySectors;
  if (!IsGptArray(other, first)) return;
  tables.structures.push_back({.first = first,
                               .last = first + other.arraySectors - 1,
                               .kind = ExtentKind::kStructure,
                               .typeName = "GPT " + lost.which + " entries",
                               .source = "GPT " + other.which});
}

// Where a sound primary header says that the backup stands, else in the last sector.
u64 BackupSector(const GptCopy& primary, u64 lastOnDisk) {
  const bool possible = primary.otherLba > kPrimaryHeader && primary.otherLba <= lastOnDisk;
  return primary.headerSound && possible ? primary.otherLba : lastOnDisk;
}

void CheckLastSector(const GptCopy& backup, u64 lastOnDisk, std::vector<Check>& checks) {
  Check check =
      CheckEqual(backup.sector, "GPT backup header stands in the last sector", backup.sector, lastOnDisk);
  checks.push_back(std::move(check));
}

void JudgeProtection(PartitionTables& tables, u64 lastOnDisk) {
  if (const MbrPartition* protective = tables.mbr.OfType(kTypeProtective); protective != nullptr) {
    tables.checks.push_back(CheckProtectiveEntry(tables.mbr, *protective, lastOnDisk));
    return;
  }
  tables.checks.push_back({0, "protective entry covers the disk", Verdict::kMissing, "none",
                           "an entry of type 0xEE, without which systems do not see the GPT"});
}

}  // namespace

void ReadGptTables(PartitionTables& tables, u64 lastOnDisk) {
  const bool known = lastOnDisk != ~u64{0};
  if (known && lastOnDisk < 2) return;
  std::vector<Check> checks;
  GptCopy primary = ExamineGptCopy("primary", kPrimaryHeader, lastOnDisk, checks);
  const u64 place = BackupSector(primary, lastOnDisk);
  GptCopy backup;
  if (known || place != lastOnDisk) {
    backup = ExamineGptCopy("backup", place, lastOnDisk, checks);
    // A header that points astray does not hide the copy in its regular place.
    if (!backup.present && known && place != lastOnDisk)
      backup = ExamineGptCopy("backup", lastOnDisk, lastOnDisk, checks);
  }
  // Of a disk that has grown the protective entry still says where it ended.
  const MbrPartition* protective = tables.mbr.OfType(kTypeProtective);
  if (!backup.present && protective != nullptr && protective->count != 0) {
    const u64 former = protective->first + protective->count - 1;
    if (former > kPrimaryHeader && former < lastOnDisk && former != place && BeginsWith(former, "EFI PART"))
      backup = ExamineGptCopy("backup", former, lastOnDisk, checks);
  }
  // Where the MBR has no partitions at all, nothing speaks against the GPT.
  const bool present = primary.present || backup.present;
  tables.gptInUse = protective != nullptr || (present && tables.mbr.partitions.empty() && !tables.bareVolume);
  if (!primary.present && !backup.present && !tables.gptInUse) return;

  std::move(checks.begin(), checks.end(), std::back_inserter(tables.checks));
  JudgeProtection(tables, lastOnDisk);
  if (known && backup.present) CheckLastSector(backup, lastOnDisk, tables.checks);
  CheckGptAgreement(primary, backup, tables.checks);
  for (const GptCopy* copy : {&primary, &backup}) {
    if (!copy->present) continue;
    CheckGptPartitions(*copy, tables.checks);
    AddCopysStructures(tables, *copy);
    if (copy->usedEntries > kMostGptPartitions) {
      tables.cut.push_back("Of " + std::to_string(copy->usedEntries) + " partitions of the " + copy->which +
                           " GPT the first " + std::to_string(kMostGptPartitions) + " are shown.");
    }
  }
  AddLostHeader(tables, primary, backup);
  AddLostHeader(tables, backup, primary);
  AddLostArray(tables, primary, backup);
  AddLostArray(tables, backup, primary);
  const std::size_t before = tables.partitions.size();
  if (primary.arraySectors != 0 && backup.arraySectors != 0) {
    AddBoth(tables, primary, backup);
  } else if (primary.present || backup.present) {
    AddOne(tables, primary.arraySectors != 0 ? primary : backup);
  }
  if (!tables.gptInUse || (!primary.Sound() && !backup.Sound())) {
    for (std::size_t i = before; i < tables.partitions.size(); ++i)
      tables.partitions[i].flags |= kFlagUnsound;
  }
  tables.followsPrimary = FollowsPrimary(primary, backup) || !backup.present;
  // They are extents by now.
  primary.partitions = {};
  backup.partitions = {};
  tables.primary = std::move(primary);
  tables.backup = std::move(backup);
}

}  // namespace trovisk
