#include "map/partitions.h"

#include <algorithm>

#include "map/signatures.h"
#include "map/text_layout.h"
#include "map/type_names.h"
#include "map/volume_kind.h"

namespace trovisk {
namespace {

// A chain may be as long as it likes; somebody waits.
constexpr u64 kMostRecords = u64{1} << 20;  // of all extended partitions

std::string HexByte(u8 value) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = "0x";
  text += kDigits[value >> 4U];
  text += kDigits[value & 0xFU];
  return text;
}

Extent ExtentOf(const MbrPartition& partition, ExtentKind kind) {
  Extent extent{.first = partition.first, .last = partition.first, .kind = kind};
  if (partition.count == 0) {
    extent.flags |= kFlagEmpty;
  } else {
    extent.last = partition.first + partition.count - 1;
  }
  if (partition.indicator == 0x80) extent.flags |= kFlagActive;
  extent.type = HexByte(partition.type);
  extent.typeName = NameOfMbrType(partition.type);
  return extent;
}

// What a record states behind its logical partition: nobody means it where it leads out of the extended
// partition.
void AddOthers(PartitionTables& tables, const MbrPartition& outermost, const ExtendedRecord& record) {
  for (const MbrPartition& other : record.others) {
    if (other.first + other.count > outermost.first + outermost.count) continue;
    Extent extent = ExtentOf(other, ExtentKind::kLogical);
    extent.flags |= kFlagOtherReading;
    extent.source =
        "EBR at sector " + std::to_string(record.sector) + ", entry " + std::to_string(other.entry);
    tables.partitions.push_back(std::move(extent));
  }
}

// Of all extended partitions so far.
struct Chained {
  u64 records = 0;
  u64 logical = 0;  // whose numbers go on from one to the next
};

std::string Range(u64 first, u64 last) {
  return std::to_string(first) + " to " + std::to_string(last);
}

struct Outside {
  u64 sector = 0;  // of the record that says so
  u64 first = 0;
  u64 last = 0;
};

// The record itself or its logical partition, where that does not lie in the extended partition.
std::optional<Outside> LeadsOut(const ExtendedRecord& record, const MbrPartition& outermost) {
  const u64 last = outermost.first + outermost.count - 1;
  if (record.sector > last) return Outside{record.sector, record.sector, record.sector};
  if (!record.logical) return std::nullopt;
  const MbrPartition& logical = *record.logical;
  const u64 end = logical.first + logical.count;
  if (logical.first >= outermost.first && end - 1 <= last) return std::nullopt;
  return Outside{record.sector, logical.first, end - 1};
}

void ReadExtended(PartitionTables& tables, const MbrPartition& outermost, Chained& chained) {
  const u64 before = chained.logical;
  const u64 left = kMostRecords - chained.records;
  const auto isKnown = [&](u64 sector) { return tables.extendedRecords.At(sector).has_value(); };
  std::optional<ExtendedRecord> wrong;
  std::optional<Outside> outside;
  const ChainEnd end = WalkExtended(outermost, left, isKnown, [&](const ExtendedRecord& record) {
    tables.extendedRecords.Add(record.sector, record.sector, nullptr, L"");
    if (!record.endMark) wrong = record;
    if (!outside) outside = LeadsOut(record, outermost);
    if (++chained.records <= kMostLogical) {
      tables.structures.push_back({.first = record.sector,
                                   .last = record.sector,
                                   .kind = ExtentKind::kStructure,
                                   .flags = record.endMark ? 0U : u32{kFlagDamaged},
                                   .typeName = "extended boot record",
                                   .source = "extended partition"});
    }
    if (!record.logical || ++chained.logical > kMostLogical) return;
    Extent extent = ExtentOf(*record.logical, ExtentKind::kLogical);
    extent.number = 4 + chained.logical;
    extent.source = "EBR at sector " + std::to_string(record.sector);
    tables.partitions.push_back(std::move(extent));
    AddOthers(tables, outermost, record);
  });
  Check check{outermost.first, "extended boot records lead to an end", Verdict::kGood,
              Counted(chained.logical - before, "logical partition"),
              "every record readable, with its end mark"};
  if (wrong) {
    check.sector = wrong->sector;
    check.verdict = wrong->readable ? Verdict::kBad : Verdict::kMissing;
    check.found = std::string(wrong->readable ? "no end mark" : "unreadable") +
                  ": the logical partition that it names, and all behind it, are lost";
  } else if (end == ChainEnd::kCircle) {
    check.verdict = Verdict::kBad;
    check.found = "the links form a circle";
  } else if (end == ChainEnd::kStopped) {
    check.verdict = Verdict::kBad;
    check.found = "its records are those of another extended partition";
  } else if (end == ChainEnd::kTooLong) {
    check.verdict = Verdict::kNotChecked;
    check.found = "more than " + std::to_string(kMostRecords) + " records of all extended partitions";
  }
  tables.checks.push_back(std::move(check));
  if (outside) {
    tables.checks.push_back({outside->sector, "logical partitions lie in the extended partition",
                             Verdict::kBad, Range(outside->first, outside->last),
                             "inside of " + Range(outermost.first, outermost.first + outermost.count - 1)});
  }
}

// All ones stand for "the whole disk" on disks of any size.
void EndProtective(Extent& extent, const MbrPartition& partition, u64 lastOnDisk) {
  constexpr u64 kWholeDisk = 0xFFFFFFFF;
  if (partition.count == kWholeDisk && lastOnDisk != ~u64{0})
    extent.last = std::max(extent.first, lastOnDisk);
}

// Two entries that lead into the same chain, or one over the other. A protective one is over all of them.
void MarkExtendedOverlaps(std::vector<Extent>& partitions) {
  const auto isExtended = [](const Extent& extent) {
    return (extent.flags & kFlagContainer) != 0 && extent.type != "0xee";
  };
  for (Extent& one : partitions) {
    for (Extent& other : partitions) {
      const bool apart = one.last < other.first || other.last < one.first;
      const bool empty = ((one.flags | other.flags) & kFlagEmpty) != 0;
      if (&one == &other || apart || empty || !isExtended(one) || other.type == "0xee") continue;
      one.flags |= kFlagOverlaps;
      other.flags |= kFlagOverlaps;
    }
  }
}

void ReadMbrTable(PartitionTables& tables, u64 lastOnDisk) {
  const MasterBootRecord& mbr = tables.mbr;
  if (!mbr.blank)
    tables.structures.push_back({.first = 0,
                                 .last = 0,
                                 .kind = ExtentKind::kStructure,
                                 .flags = mbr.readable && mbr.endMark ? 0U : u32{kFlagDamaged},
                                 .typeName = "master boot record",
                                 .source = "sector 0"});
  for (const MbrPartition& partition : mbr.partitions) {
    Extent extent = ExtentOf(partition, ExtentKind::kPartition);
    extent.number = partition.entry;
    extent.source = "MBR entry " + std::to_string(partition.entry);
    if (IsExtendedType(partition.type) || partition.type == kTypeProtective) extent.flags |= kFlagContainer;
    if (partition.type == kTypeProtective) EndProtective(extent, partition, lastOnDisk);
    tables.partitions.push_back(std::move(extent));
  }
  const bool protective = mbr.OfType(kTypeProtective) != nullptr;
  for (const MbrPartition& partition : mbr.untyped) {
    if (protective || partition.first + partition.count - 1 > lastOnDisk) continue;
    Extent extent = ExtentOf(partition, ExtentKind::kPartition);
    extent.number = partition.entry;
    extent.source = "MBR entry " + std::to_string(partition.entry);
    tables.partitions.push_back(std::move(extent));
  }
  MarkExtendedOverlaps(tables.partitions);
  Chained chained;
  for (const MbrPartition& partition : mbr.partitions) {
    if (IsExtendedType(partition.type) && partition.count != 0) ReadExtended(tables, partition, chained);
  }
  const auto cut = [&](u64 count, const char* what) {
    if (count <= kMostLogical) return;
    tables.cut.push_back("Of " + std::to_string(count) + what + std::to_string(kMostLogical) + " are shown.");
  };
  cut(chained.logical, " logical partitions the first ");
  cut(chained.records, " extended boot records the first ");
}

// Whether a volume begins in sector 0, where no table says otherwise. What is told by a signature further in,
// or by a backup, is not asked for where a GPT is: there it belongs to a partition.
bool IsBareVolume(const MasterBootRecord& mbr, u64 lastOnDisk) {
  if (mbr.plausible && !mbr.partitions.empty()) return false;
  const auto sector = ReadSectors(0, 1);
  if (sector && sector->size() >= 512 &&
      KindOfBootSector(SectorView(Bytes(*sector).first<512>())) != VolumeKind::kNone)
    return true;
  if (BeginsWith(1, "EFI PART")) return false;
  const bool known = lastOnDisk != ~u64{0};
  const VolumePlace place{.sector = 0, .sectors = known ? lastOnDisk + 1 : 0, .lastOnDisk = lastOnDisk};
  const auto content = NameContent(place);
  if (content && content->sector == 0) return true;
  if (known && BeginsWith(lastOnDisk, "EFI PART")) return false;
  return content || IsBackedUp(place);
}

// Whether all entries are on the disk and none over another: nobody's code looks like that.
bool EntriesFit(const MasterBootRecord& mbr, u64 lastOnDisk) {
  const auto& partitions = mbr.partitions;
  for (auto one = partitions.begin(); one != partitions.end(); ++one) {
    if (one->type == kTypeProtective) continue;  // it may cover more than there is
    const u64 end = one->first + one->count;
    if (one->first == 0 || one->count == 0 || end - 1 > lastOnDisk) return false;
    const bool over = std::any_of(one + 1, partitions.end(), [&](const MbrPartition& other) {
      return other.type != kTypeProtective && other.first < end && one->first < other.first + other.count;
    });
    if (over) return false;
  }
  return !partitions.empty();
}

}  // namespace

bool BeginsWith(u64 sector, std::string_view text) {
  const auto bytes = ReadSectors(sector, 1);
  return bytes && EqualsText(SliceAt(*bytes, 0, text.size()), text);
}

PartitionTables ReadPartitionTables(u64 lastOnDisk) {
  PartitionTables tables;
  tables.mbr = ReadMasterBootRecord();
  tables.bareVolume = IsBareVolume(tables.mbr, lastOnDisk);
  if (tables.bareVolume) {
    tables.mbr.partitions.clear();
  } else {
    Check mark{0, "master boot record's end mark", Verdict::kGood, "0xAA55", "0xAA55"};
    if (!tables.mbr.readable) {
      mark.verdict = Verdict::kMissing;
      mark.found = "unreadable";
    } else if (tables.mbr.blank) {
      mark.verdict = Verdict::kNotChecked;
      mark.found = "zeros: no partition table";
    } else if (!tables.mbr.endMark) {
      mark.verdict = Verdict::kMissing;
      mark.found = "none";
    }
    tables.checks.push_back(std::move(mark));
    const bool fit = EntriesFit(tables.mbr, lastOnDisk);
    if (tables.mbr.endMark && !tables.mbr.plausible) {
      tables.checks.push_back(
          {0, "boot indicators of the partition table", Verdict::kBad,
           std::string("neither 0x00 nor 0x80") +
               (fit ? ", though the entries fit the disk" : ": no partition is taken from it"),
           "0x00 or 0x80"});
    }
    if (!tables.mbr.plausible && !(tables.mbr.endMark && fit)) {
      tables.mbr.partitions.clear();
      tables.mbr.untyped.clear();
    }
    ReadMbrTable(tables, lastOnDisk);
  }
  ReadGptTables(tables, lastOnDisk);
  return tables;
}

}  // namespace trovisk
