// DPOD, a data record of a Storage Replica log partition.
//
// Stands in every sector of the partition behind the first; its first 256 bytes. Little-endian. There is no
// published description: the layout is what is known from disks, and so in part unknown.
// Checked: signature.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/fields.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

constexpr std::size_t kRecordSize = 256;

constexpr std::size_t kSignature = 0x00;             // "DPOD"
constexpr std::size_t kDataSize = 0x04;              // u32
constexpr std::size_t kPartitionGuid = 0x08;         // GUID
constexpr std::size_t kReplicationGroupGuid = 0x18;  // GUID
constexpr std::size_t kUnnamedWords = 0x28;          // six u32

void PrintGuidOrEmpty(FixedBytes<16> guid) {
  if (AllZero(guid)) {
    std::cout << "<empty>";
  } else {
    std::cout << "{ ";
    PrintGuid(guid);
    std::cout << " }";
  }
}

void PrintReport(FixedBytes<kRecordSize> record) {
  std::cout << "Magic Number                    : [DPOD]" << LineEnd
            << "Data Size (bytes) ?             : " << Le32<kDataSize>(record) << LineEnd
            << "MSFT_WvrReplica Partition GUID  : ";
  PrintGuidOrEmpty(Part<kPartitionGuid, 16>(record));
  std::cout << LineEnd << "Replication Group GUID          : ";
  PrintGuidOrEmpty(Part<kReplicationGroupGuid, 16>(record));
  std::cout << LineEnd;
  PrintUnnamedWords("Unknown                         : 0x", Part<kUnnamedWords, 6 * 4>(record));
  std::cout << LineEnd;
}

}  // namespace

u64 DecodeDpodSector(WideText description, u64 sector, bool print) {
  if (print) {
    PrintSectorHeader(description, sector);
    std::cout << LineEnd;
  }
  std::array<u8, kRecordSize> bytes{};
  if (!ReadRecord(bytes)) return kEndPass;
  const FixedBytes<kRecordSize> record(bytes);
  if (!EqualsText(Part<kSignature, 4>(record), "DPOD")) {
    ErrorLine() << "**** No DPOD magic found ****\n";
    return kEndPass;
  }
  if (print) PrintReport(record);
  if (!SeekToSector(sector)) return kEndPass;
  DumpRawSector(L"as a raw sector", sector, print);
  return sector + 1;
}

}  // namespace trovisk
