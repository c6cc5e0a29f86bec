// Extended boot record: the partition table of one logical partition, and the link to the next record.
//
// Stands in the first sector of every partition of type 0x05 or 0x0F. Layout of a master boot record, of
// which two entries and one byte of the end mark are used. Little-endian. Both entries count from this
// record's own sector, the link too: a chain whose links count from the start of the outermost extended
// partition is followed to the sector that this rule gives.

#include "frame/report/field_table.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "mbr/partition_entry.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr std::size_t kLogicalPartition = kPartitionTable;
constexpr std::size_t kNextRecord = kPartitionTable + kPartitionEntrySize;
constexpr std::size_t kEndMarkHigh = kEndMark + 1;  // 0xAA

constexpr FieldRow kEnd[] = {
    {"Sector End Mark : 0x", kEndMarkHigh, HexBytes(1)},
};
static_assert(FieldsFit(kEnd, 512));

}  // namespace

u64 DecodeExtendedBootRecord(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord(description, sector, print);
  if (!buffer) return kEndPass;
  const SectorView record(*buffer);

  if (print) {
    report << LineEnd;
    PrintHeading("Supplementary Boot Record");
    PrintPartitionTableHeading();
  }
  PrintPartitionEntry(Part<kLogicalPartition, kPartitionEntrySize>(record), sector, print);
  PrintPartitionEntry(Part<kNextRecord, kPartitionEntrySize>(record), sector, print);
  if (print) {
    report << LineEnd << LineEnd;
    PrintFields(record, kEnd);
    report << LineEnd;
  }
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
