// Partition table entry: status, type and extent of one partition.
//
// Four stand in a master boot record at 0x1BE, two are used in an extended one. Little-endian.
// Layout: UEFI, "Legacy Master Boot Record", partition record.
// Not checked: extents and CHS values, which are shown and registered as found.

#include "mbr/partition_entry.h"

#include <iostream>

#include "frame/decoders.h"
#include "frame/fields.h"
#include "frame/global.h"
#include "frame/names.h"

namespace trovisk {
namespace {

constexpr std::size_t kBootIndicator = 0x0;  // u8, 0x80: active
constexpr std::size_t kStartChs = 0x1;       // head; sector and two cylinder bits; cylinder
constexpr std::size_t kEndChs = 0x5;
constexpr std::size_t kFirstSector = 0x8;  // u32, relative to the sector that holds the table
constexpr std::size_t kSectorCount = 0xC;  // u32

constexpr u8 kActive = 0x80;
constexpr u8 kTypeEmpty = 0x00;
constexpr u8 kTypeDynamic = 0x42;
constexpr u32 kCountLarge = 0xFFFFFFFF;  // more sectors than the field can say

void PrintChs(FixedBytes<3> chs) {
  const unsigned cylinder = (chs[1] & 0xC0U) * 4 + chs[2];
  std::cout << cylinder << "/" << unsigned{chs[0]} << "/" << (chs[1] & 0x3FU);
}

void PrintReport(FixedBytes<kPartitionEntrySize> entry) {
  const u8 type = U8<kEntryType>(entry);
  if (type == kTypeEmpty) {
    std::cout << "\tEmpty" << LineEnd << LineEnd;
    return;
  }
  std::cout << (U8<kBootIndicator>(entry) == kActive ? "\tActive   " : "\tInactive ") << "[ "
            << ToNarrow(PartitionTypeName(type)) << " ]" << LineEnd;
  std::cout << "\tC/H/S ";
  PrintChs(Part<kStartChs, 3>(entry));
  std::cout << " - ";
  PrintChs(Part<kEndChs, 3>(entry));
  std::cout << LineEnd;

  const u32 first = Le32<kFirstSector>(entry);
  const u32 count = Le32<kSectorCount>(entry);
  std::cout << "\tPartition Sectors [ " << first << " - ";
  if (count == kCountLarge) {
    std::cout << "LARGE ]";
  } else {
    std::cout << first + count - 1 << " ]";
  }
  std::cout << LineEnd << LineEnd;
}

void Register(FixedBytes<kPartitionEntrySize> entry, u64 tableSector) {
  const u64 sector = tableSector + Le32<kFirstSector>(entry);
  switch (U8<kEntryType>(entry)) {
    case 0x01:
    case 0x04:
    case 0x06:
    case 0x0E:
      AddTocEntry(disk, sector, DecodeFatBootSector, L"FAT Boot Sector");
      break;
    case 0x0B:
    case 0x0C:
      AddTocEntry(disk, sector, DecodeFatBootSector, L"FAT32 Boot Sector");
      break;
    case 0x05:
    case 0x0F:
      AddTocEntry(disk, sector, DecodeExtendedBootRecord, L"Supplementary Boot Record");
      break;
    case 0x07:
      AddTocEntry(disk, sector, IdentifyBootSector, L"NTFS Boot Sector");
      break;
    case kTypeDynamic:
      if (U8<kBootIndicator>(entry) != 0)
        AddTocEntry(disk, sector, IdentifyBootSector, L"Dynamic Boot Sector");
      break;
    case 0xDE:
      AddTocEntry(disk, sector, DecodeFatBootSector, L"Dell Utility Partition");
      break;
    default:
      break;
  }
}

}  // namespace

void PrintPartitionEntry(FixedBytes<kPartitionEntrySize> entry, u64 tableSector, bool print) {
  if (print) PrintReport(entry);
  Register(entry, tableSector);
}

}  // namespace trovisk
