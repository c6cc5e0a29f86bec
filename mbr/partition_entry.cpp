// Partition table entry: status, type and extent of one partition.
//
// Four stand in a master boot record at 0x1BE, two are used in an extended one. Little-endian.
// Layout: UEFI, "Legacy Master Boot Record", partition record.
// Not checked: extents and CHS values, which are shown and registered as found.

#include "mbr/partition_entry.h"

#include <algorithm>

#include "frame/decoders.h"
#include "frame/global.h"
#include "frame/report/names.h"
#include "frame/report/noted_field.h"
#include "frame/report/report.h"

namespace trovisk {
namespace {

constexpr std::size_t kStartChs = 0x1;  // head; sector and two cylinder bits; cylinder
constexpr std::size_t kEndChs = 0x5;

constexpr u32 kCountLarge = 0xFFFFFFFF;  // more sectors than the field can say

// A kind of partition whose first sector has a decoder.
struct KnownPartition {
  u8 type;
  SectorDecoder decoder;
  WideText description;
  bool onlyMarked = false;  // where the boot indicator is not zero
};

constexpr KnownPartition kKnownPartitions[] = {
    {0x01, DecodeFatBootSector, L"FAT Boot Sector"},
    {0x04, DecodeFatBootSector, L"FAT Boot Sector"},
    {0x05, DecodeExtendedBootRecord, L"Supplementary Boot Record"},
    {0x06, DecodeFatBootSector, L"FAT Boot Sector"},
    {0x07, IdentifyBootSector, L"NTFS Boot Sector"},
    {0x0B, DecodeFatBootSector, L"FAT32 Boot Sector"},
    {0x0C, DecodeFatBootSector, L"FAT32 Boot Sector"},
    {0x0E, DecodeFatBootSector, L"FAT Boot Sector"},
    {0x0F, DecodeExtendedBootRecord, L"Supplementary Boot Record"},
    {0x42, IdentifyBootSector, L"Dynamic Boot Sector", true},
    {0xDE, DecodeFatBootSector, L"Dell Utility Partition"},
};

void PrintChs(std::string_view label, FixedBytes<3> chs) {
  const NotedField noted(label, chs);
  const unsigned cylinder = (chs[1] & 0xC0U) * 4 + chs[2];
  report << cylinder << "/" << chs[0] << "/" << (chs[1] & 0x3FU);
}

void PrintReport(FixedBytes<kPartitionEntrySize> entry) {
  const u8 type = U8<kEntryType>(entry);
  if (type == kTypeEmpty) {
    report << "\tEmpty" << LineEnd << LineEnd;
    return;
  }
  report << "\t";
  {
    const NotedField noted("Boot Indicator", Part<kBootIndicator, 1>(entry));
    report << (U8<kBootIndicator>(entry) == kActive ? "Active   " : "Inactive ");
  }
  report << "[ ";
  {
    const NotedField noted("Partition Type", Part<kEntryType, 1>(entry));
    report << PartitionTypeName(type);
  }
  report << " ]" << LineEnd;
  report << "\tC/H/S ";
  PrintChs("First C/H/S", Part<kStartChs, 3>(entry));
  report << " - ";
  PrintChs("Last C/H/S", Part<kEndChs, 3>(entry));
  report << LineEnd;

  const u32 first = Le32<kFirstSector>(entry);
  const u32 count = Le32<kSectorCount>(entry);
  report << "\tPartition Sectors [ ";
  {
    const NotedField noted("First Sector", Part<kFirstSector, 4>(entry));
    report << first;
  }
  report << " - ";
  {
    const NotedField noted("Last Sector", Part<kSectorCount, 4>(entry));  // by the number of them
    if (count == kCountLarge) {
      report << "LARGE";
    } else {
      report << first + count - 1;
    }
  }
  report << " ]" << LineEnd << LineEnd;
}

void Register(FixedBytes<kPartitionEntrySize> entry, u64 tableSector) {
  const u8 type = U8<kEntryType>(entry);
  const auto* const known = std::find_if(std::begin(kKnownPartitions), std::end(kKnownPartitions),
                                         [&](const KnownPartition& row) { return row.type == type; });
  if (known == std::end(kKnownPartitions)) return;
  if (known->onlyMarked && U8<kBootIndicator>(entry) == 0) return;
  AddTocEntry(disk, tableSector + Le32<kFirstSector>(entry), known->decoder, known->description);
}

}  // namespace

void PrintPartitionTableHeading() {
  report << LineEnd;
  report << "Partition table entries" << LineEnd;
  report << LineEnd;
}

void PrintPartitionEntry(FixedBytes<kPartitionEntrySize> entry, u64 tableSector, bool print) {
  if (print) PrintReport(entry);
  Register(entry, tableSector);
}

}  // namespace trovisk
