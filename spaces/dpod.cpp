// DPOD, a data record of a Storage Replica log partition.
//
// Stands in the sectors of the partition between the first and the last; its first 256 bytes. Little-endian.
// There is no published description: the layout is what is known from disks, and so in part unknown. Checked:
// signature.

#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

constexpr std::size_t kRecordSize = 256;

constexpr std::size_t kSignature = 0x00;             // "DPOD"
constexpr std::size_t kDataSize = 0x04;              // u32
constexpr std::size_t kPartitionGuid = 0x08;         // GUID
constexpr std::size_t kReplicationGroupGuid = 0x18;  // GUID
constexpr std::size_t kUnnamedWords = 0x28;          // six u32

constexpr FieldRow kSignatureAndSize[] = {
    {"Magic Number                    : [", kSignature, Chars(4), "]"},
    {"Data Size (bytes) ?             : ", kDataSize, kLe32},
};
static_assert(FieldsFit(kSignatureAndSize, kRecordSize));

void PrintGuidOrEmpty(FixedBytes<16> guid) {
  if (AllZero(guid)) {
    report << "<empty>";
  } else {
    report << "{ ";
    PrintGuid(guid);
    report << " }";
  }
}

void PrintGuidLine(std::string_view label, FixedBytes<16> guid) {
  PrintNotedLine(label, guid, [&] { PrintGuidOrEmpty(guid); });
}

void PrintReport(FixedBytes<kRecordSize> record) {
  PrintFields(record, kSignatureAndSize);
  PrintGuidLine("MSFT_WvrReplica Partition GUID  : ", Part<kPartitionGuid, 16>(record));
  PrintGuidLine("Replication Group GUID          : ", Part<kReplicationGroupGuid, 16>(record));
  PrintUnnamedWords("Unknown                         : 0x", Part<kUnnamedWords, 6 * 4>(record));
  report << LineEnd;
}

}  // namespace

u64 DecodeDpodSector(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord<kRecordSize>(description, sector, print, Below::kEmptyLine);
  if (!buffer) return kEndPass;
  const FixedBytes<kRecordSize> record(*buffer);
  if (!CheckSignature(Part<kSignature, 4>(record), "DPOD", "DPOD")) return kEndPass;
  if (print) PrintReport(record);
  return DumpAsRawSectorAndGoOn(sector, print);
}

}  // namespace trovisk
