// DPOM, the record that opens a Storage Replica log partition.
//
// Stands in the partition's first sector; its first 224 bytes. Little-endian. There is no published
// description: the layout is what is known from disks, and so in part unknown.
// Checked: signature.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

constexpr std::size_t kRecordSize = 224;

constexpr std::size_t kSignature = 0x00;      // "DPOM"
constexpr std::size_t kDataSize = 0x04;       // u32
constexpr std::size_t kUnnamedWords = 0x08;   // nine u32
constexpr std::size_t kDiskGuid = 0x2C;       // GUID
constexpr std::size_t kPartitionGuid = 0x3C;  // GUID

constexpr FieldRow kGuids[] = {
    {.label = "Replication Disk GUID             : { ",
     .offset = kDiskGuid,
     .format = Format::kGuid,
     .suffix = " }"},
    {.label = "Replication Partition Unique GUID : { ",
     .offset = kPartitionGuid,
     .format = Format::kGuid,
     .suffix = " }"},
};
static_assert(FieldsFit(kGuids, kRecordSize));

void PrintReport(FixedBytes<kRecordSize> record) {
  std::cout << "Magic Number                      : [DPOM]" << LineEnd
            << "Data Size (bytes) ?               : " << Le32<kDataSize>(record) << LineEnd;
  PrintUnnamedWords("Unknown                           : 0x", Part<kUnnamedWords, 9 * 4>(record));
  std::cout << LineEnd;
  PrintFields(record, kGuids);
  std::cout << LineEnd;
}

}  // namespace

u64 DecodeDpomSector(WideText description, u64 sector, bool print) {
  if (print) {
    PrintSectorHeader(description, sector);
    std::cout << LineEnd;
  }
  std::array<u8, kRecordSize> bytes{};
  if (!ReadRecord(bytes)) return kEndPass;
  const FixedBytes<kRecordSize> record(bytes);
  if (!EqualsText(Part<kSignature, 4>(record), "DPOM")) {
    ErrorLine() << "**** No DPOM magic found ****\n";
    return kEndPass;
  }
  if (print) PrintReport(record);
  if (!SeekToSector(sector)) return kEndPass;
  DumpRawSector(L"as a raw sector", sector, print);
  return sector + 1;
}

}  // namespace trovisk
