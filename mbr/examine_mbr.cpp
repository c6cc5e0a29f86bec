// Partition tables of MBR disks, read as other systems read them.
//
// The master boot record stands in sector 0, an extended boot record at the start of an extended partition
// and wherever a link leads. Little-endian. Layout: UEFI, "Legacy Master Boot Record"; of extended records
// the conventions of the systems that write them: a logical partition counts from its own record, a link from
// the start of the outermost extended partition, and of the entries the first of either kind counts.
// Checked: end marks, boot indicators, circles. Not checked: CHS values.

#include "mbr/examine_mbr.h"

#include <algorithm>

#include "frame/toc.h"
#include "mbr/partition_entry.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr std::size_t kDiskSignature = 0x1B8;  // u32
constexpr unsigned kEntries = 4;
constexpr std::size_t kRecordSize = 512;

std::optional<std::vector<u8>> ReadTable(u64 sector) {
  auto record = ReadSectors(sector, 1);
  if (record && record->size() < kRecordSize) record.reset();
  return record;
}

bool EndMarkStands(Bytes record) {
  return U8At(record, kEndMark) == 0x55 && U8At(record, kEndMark + 1) == 0xAA;
}

Bytes EntryOf(Bytes record, unsigned entry) {
  return SliceAt(record, kPartitionTable + u64{entry - 1} * kPartitionEntrySize, kPartitionEntrySize);
}

bool IndicatorsArePlausible(Bytes record) {
  for (unsigned entry = 1; entry <= kEntries; ++entry) {
    const Bytes bytes = EntryOf(record, entry);
    const u8 indicator = U8At(bytes, kBootIndicator);
    if (U8At(bytes, kEntryType) != kTypeEmpty && indicator != 0 && indicator != kActive) return false;
  }
  return true;
}

// first: relative to the sector given.
MbrPartition PartitionOf(Bytes record, unsigned entry, u64 base) {
  const Bytes bytes = EntryOf(record, entry);
  return {.entry = entry,
          .indicator = U8At(bytes, kBootIndicator),
          .type = U8At(bytes, kEntryType),
          .first = base + Le32At(bytes, kFirstSector),
          .count = Le32At(bytes, kSectorCount)};
}

}  // namespace

const MbrPartition* MasterBootRecord::OfType(u8 type) const {
  const auto found = std::find_if(partitions.begin(), partitions.end(),
                                  [&](const MbrPartition& partition) { return partition.type == type; });
  return found == partitions.end() ? nullptr : &*found;
}

bool IsExtendedType(u8 type) {
  return type == 0x05 || type == 0x0F || type == 0x85;
}

MasterBootRecord ReadMasterBootRecord() {
  MasterBootRecord mbr;
  const auto record = ReadTable(0);
  if (!record) return mbr;
  mbr.readable = true;
  mbr.blank = AllZero(*record);
  mbr.endMark = EndMarkStands(*record);
  mbr.plausible = IndicatorsArePlausible(*record);
  mbr.signature = Le32At(*record, kDiskSignature);
  for (unsigned entry = 1; entry <= kEntries; ++entry) {
    const MbrPartition partition = PartitionOf(*record, entry, 0);
    if (partition.type != kTypeEmpty)
      mbr.partitions.push_back(partition);
    else if (partition.first != 0 && partition.count != 0)
      mbr.untyped.push_back(partition);
  }
  return mbr;
}

Check CheckProtectiveEntry(const MasterBootRecord& mbr, const MbrPartition& entry, u64 lastOnDisk) {
  constexpr u64 kMost = 0xFFFFFFFF;
  const u64 wanted = std::min(lastOnDisk, kMost);
  const auto text = [](u64 first, u64 count) {
    return "first " + std::to_string(first) + ", " + std::to_string(count) + " sectors";
  };
  Check check{0, "protective entry covers the disk", Verdict::kGood, text(entry.first, entry.count),
              text(1, wanted)};
  const bool hybrid = std::any_of(mbr.partitions.begin(), mbr.partitions.end(),
                                  [](const MbrPartition& each) { return each.type != kTypeProtective; });
  if (hybrid) {
    check.verdict = Verdict::kNotChecked;
    check.expected = "the MBR has partitions of its own";
    return check;
  }
  // All ones stand for "the whole disk" on disks of any size.
  if (entry.first != 1 || (entry.count != wanted && entry.count != kMost)) check.verdict = Verdict::kBad;
  return check;
}

bool LooksLikeExtendedRecord(Bytes record) {
  return EndMarkStands(record) && IndicatorsArePlausible(record);
}

ExtendedRecord ReadExtendedRecord(u64 sector) {
  ExtendedRecord record;
  record.sector = sector;
  const auto bytes = ReadTable(sector);
  record.readable = bytes.has_value();
  record.endMark = bytes && EndMarkStands(*bytes);
  record.plausible = bytes && LooksLikeExtendedRecord(*bytes);
  for (unsigned entry = 1; record.endMark && entry <= kEntries; ++entry) {
    const MbrPartition partition = PartitionOf(*bytes, entry, sector);
    if (partition.count == 0) continue;  // whatever its type
    if (IsExtendedType(partition.type)) {
      if (!record.link) record.link = partition.first - sector;
    } else if (!record.logical) {
      record.logical = partition;
    } else {
      record.others.push_back(partition);
    }
  }
  return record;
}

ChainEnd WalkExtended(const MbrPartition& outermost, u64 mostRecords,
                      const std::function<bool(u64 sector)>& isKnown,
                      const std::function<void(const ExtendedRecord&)>& visit) {
  SectorToc seen;
  u64 sector = outermost.first;
  for (u64 records = 0; records < mostRecords; ++records) {
    if (seen.At(sector)) return ChainEnd::kCircle;
    if (isKnown(sector)) return ChainEnd::kStopped;
    seen.Add(sector, sector, nullptr, L"");
    const ExtendedRecord record = ReadExtendedRecord(sector);
    visit(record);
    if (!record.endMark) return ChainEnd::kBroken;
    if (!record.link) return ChainEnd::kRegular;
    sector = outermost.first + *record.link;
  }
  return ChainEnd::kTooLong;
}

}  // namespace trovisk
