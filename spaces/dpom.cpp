// DPOM, the record that opens a Storage Replica log partition.
//
// Stands in the partition's first sector; its first 224 bytes. Little-endian. There is no published
// description: the layout is what is known from disks, and so in part unknown.
// Checked: signature.

#include "frame/report/field_table.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "spaces/dpom_layout.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

using namespace dpom;

constexpr FieldRow kSignatureAndSize[] = {
    {"Magic Number                      : [", kSignature, Chars(4), "]"},
    {"Data Size (bytes) ?               : ", kDataSize, kLe32},
};
constexpr FieldRow kGuids[] = {
    {"Replication Disk GUID             : { ", kDiskGuid, kGuidText, " }"},
    {"Replication Partition Unique GUID : { ", kPartitionGuid, kGuidText, " }"},
};
static_assert(FieldsFit(kSignatureAndSize, kRecordSize) && FieldsFit(kGuids, kRecordSize));

void PrintReport(FixedBytes<kRecordSize> record) {
  PrintFields(record, kSignatureAndSize);
  PrintUnnamedWords("Unknown                           : 0x", Part<kUnnamedWords, 9 * 4>(record));
  report << LineEnd;
  PrintFields(record, kGuids);
  report << LineEnd;
}

}  // namespace

u64 DecodeDpomSector(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord<kRecordSize>(description, sector, print, Below::kEmptyLine);
  if (!buffer) return kEndPass;
  const FixedBytes<kRecordSize> record(*buffer);
  if (!CheckSignature(Part<kSignature, 4>(record), "DPOM", "DPOM")) return kEndPass;
  if (print) PrintReport(record);
  return DumpAsRawSectorAndGoOn(sector, print);
}

}  // namespace trovisk
