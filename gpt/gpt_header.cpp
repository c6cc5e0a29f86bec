// GPT header: the extent of the partition entry array, and where the other copy of the header stands.
//
// Stands in sector 1, its backup as a rule in the last sector of the disk; this decoder reads both. The first
// 92 bytes of a 512-byte record, whatever the sector size. Little-endian.
// Layout: UEFI, "GUID Partition Table (GPT) Disk Layout", GPT header.
// Checked: the signature. Not checked: either CRC, revision, sizes, and whether the sectors that it names
// lie on the disk.

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "gpt/gpt_header_layout.h"
#include "gpt/gpt_state.h"

namespace trovisk {
namespace {

using namespace gpt_header;

constexpr FieldRow kMagicNumber[] = {
    {"Magic Number                : [", kSignature, Chars(8), "]"},
};
constexpr FieldRow kFields[] = {
    {"Header Size                 : ", kHeaderSize, kLe32, " (bytes)"},
    {"CRC32 Checksum              : 0x", kHeaderCrc, ReversedHexBytes(4)},
    {"Primary Header LBA          : ", kOwnLba, kLe64},
    {"Backup Header LBA           : ", kOtherLba, kLe64},
    {"First Usable LBA            : ", kFirstUsable, kLe64},
    {"Last Usable LBA             : ", kLastUsable, kLe64},
    {"Disk GUID                   : { ", kDiskGuid, kGuidText, " }"},
    {"Number Of Partition Entries : ", kEntryCount, kLe32},
    {"Size Of A Partition Entry   : ", kEntrySize, kLe32, " (bytes)"},
    {"First Partition Entry LBA   : ", kEntriesLba, kLe64},
};
constexpr FieldRow kEntriesCrcRow[] = {
    {"Partition Entry CRC32       : 0x", kEntriesCrc, ReversedHexBytes(4)},
};
static_assert(FieldsFit(kMagicNumber, kInterpreted) && FieldsFit(kFields, kInterpreted) &&
              FieldsFit(kEntriesCrcRow, kInterpreted));

// The revision as one number. The weights make revision 1.0, bytes 00 00 01 00, the number 10.
double RevisionNumber(FixedBytes<4> revision) {
  return revision[0] * 1000.0 + revision[1] * 100.0 + revision[2] * 10.0 + revision[3] / 10.0;
}

// An array that ends inside a sector is taken to end with the sector before; the sum may wrap. A device that
// says that its sectors have no bytes has no array.
u64 LastEntrySector(SectorView header) {
  if (disk.bytesPerSector == 0) return 0;
  const u64 bytes = u64{Le32<kEntryCount>(header)} * Le32<kEntrySize>(header);
  return bytes / disk.bytesPerSector + Le64<kEntriesLba>(header) - 1;
}

void PrintReport(SectorView header) {
  PrintFields(header, kMagicNumber);
  const auto revision = Part<kRevision, 4>(header);
  PrintNotedLine("Revision                    : ", revision,
                 [&] { PrintFraction(RevisionNumber(revision)); });
  PrintFields(header, kFields);
  PrintNotedLine("Last Partitition Entry LBA  : ", {}, [] { report << LastGptEntrySector; });
  PrintFields(header, kEntriesCrcRow);
  report << LineEnd;
}

}  // namespace

u64 DecodeGptHeader(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print, Below::kEmptyLine);
  if (!record) return kEndPass;
  const SectorView header(*record);
  if (!CheckSignature(Part<kSignature, 8>(header), "EFI PART", "EFI")) return kEndPass;

  LastGptEntrySector = LastEntrySector(header);
  if (print) PrintReport(header);

  // The sectors between the two are registered by the entry decoder, each by the one before.
  AddTocEntry(disk, Le64<kEntriesLba>(header), DecodeGptEntries, L"GUID Partition Table Start");
  AddTocEntry(disk, LastGptEntrySector, DecodeGptEntries, L"GUID Partition Table End");
  AddTocEntry(disk, Le64<kOtherLba>(header), DecodeGptHeader, L"Backup GPT Header");
  return sector + 1;
}

}  // namespace trovisk
