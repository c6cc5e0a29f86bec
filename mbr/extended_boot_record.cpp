// Extended boot record: the partition table of one logical partition, and the link to the next record.
//
// Stands in the first sector of every partition of type 0x05 or 0x0F. Layout of a master boot record, of
// which two entries and one byte of the end mark are used. Little-endian. Both entries count from this
// record's own sector, the link too: a chain whose links count from the start of the outermost extended
// partition is followed to the sector that this rule gives.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/fields.h"
#include "mbr/partition_entry.h"

namespace trovisk {
namespace {

constexpr std::size_t kLogicalPartition = 0x1BE;
constexpr std::size_t kNextRecord = 0x1CE;
constexpr std::size_t kEndMarkHigh = 0x1FF;  // 0xAA

}  // namespace

u64 DecodeExtendedBootRecord(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  std::array<u8, 512> buffer{};
  if (!ReadRecord(buffer)) return kEndPass;
  const SectorView record(buffer);

  if (print) {
    std::cout << LineEnd;
    PrintHeading("Supplementary Boot Record");
    std::cout << LineEnd << "Partition table entries" << LineEnd << LineEnd;
  }
  PrintPartitionEntry(Part<kLogicalPartition, kPartitionEntrySize>(record), sector, print);
  PrintPartitionEntry(Part<kNextRecord, kPartitionEntrySize>(record), sector, print);
  if (print) {
    std::cout << LineEnd << LineEnd << "Sector End Mark : 0x";
    PrintHexByte(U8<kEndMarkHigh>(record));
    std::cout << LineEnd << LineEnd;
  }
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
