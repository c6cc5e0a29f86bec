// SDBB, the storage database blocks of a Storage Spaces partition: eight records to a sector.
//
// Stand in the sectors behind the SDBC, up to the first sector with a record that has no signature. The first
// 512 bytes of a sector, whatever its size. Big-endian. There is no published description: the layout is what
// is known from disks.
// Checked: each record's signature. Not checked: part numbers; a record's data is not examined.

#include <algorithm>
#include <array>

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "spaces/sdbb_layout.h"
#include "spaces/verbs.h"

namespace trovisk {
namespace {

using namespace sdbb;

constexpr FieldRow kHeading[] = {
    {"SDBB : 0x", kIdentifier, HexBytes(4)},
};
constexpr FieldRow kParentRow[] = {
    {"\tParent : 0x", kParent, HexBytes(4)},
};
static_assert(FieldsFit(kHeading, kRecordSize) && FieldsFit(kParentRow, kRecordSize));

using Record = FixedBytes<kRecordSize>;

Record RecordAt(SectorView block, std::size_t index) {
  return block.subspan(index * kRecordSize).first<kRecordSize>();
}

void PrintPart(Record record) {
  if (!std::ranges::equal(Part<kIdentifier, 4>(record), Part<kParent, 4>(record))) {
    PrintFields(record, kParentRow);
  }
  const int partIndex = Be16<kPartIndex>(record);
  static_assert(kPartCount == kPartIndex + 2);
  PrintNotedLine("\tPart   : ", Part<kPartIndex, 4>(record),
                 [&] { report << partIndex + 1 << " of " << Be16<kPartCount>(record); });
  if (partIndex == 0) {
    report << "\tType   : 0x";
    const NotedField noted(Part<kEntryType, 2>(record));
    PrintHexBytes(Part<kEntryType, 2>(record));
  }
}

void PrintRecord(Record record) {
  PrintFields(record, kHeading);
  report << LineEnd;
  if (Be16<kPartCount>(record) == 0) {
    report << "\tEmpty";
  } else {
    PrintPart(record);
  }
  report << LineEnd << LineEnd;
}

}  // namespace

u64 DecodeSdbb(WideText description, u64 sector, bool print) {
  PrintOpening(description, sector, print, Below::kEmptyLine);
  RecordBuffer<kRecords * kRecordSize> records{};
  if (!disk.Read(records.data(), records.size())) {
    errors << "Error reading sector " << sector << '\n';
    return kEndPass;
  }
  for (std::size_t i = 0; i < kRecords; ++i) {
    const Record record = RecordAt(SectorView(records), i);
    if (!EqualsText(Part<kSignature, 4>(record), "SDBB")) {
      // The end of the blocks, not of the pass.
      errors << "No SDBB magic found in sector " << sector << '\n';
      return sector + 1;
    }
    if (print) PrintRecord(record);
  }
  if (!ShowAsRawSector(sector, print)) return kEndPass;
  AddTocEntry(disk, sector + 1, DecodeSdbb, L"SDBB Sector");
  return sector + 1;
}

}  // namespace trovisk
