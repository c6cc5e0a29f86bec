// VBLK, one sector of a dynamic disk's object database: volumes, components, partitions, disks and groups.
//
// Four slots of 128 bytes, behind the VMDB up to the end of the configuration region. A record takes one
// slot, or several, of which only the first has fields that can be told apart. Big-endian. Layout: the
// Linux-NTFS project's LDM documentation, "VBLK". Checked: the signature of every slot, unless all four are
// empty. Not checked: the length of the data, which may lead beyond the slot and is followed to the sector's
// end.

#include <algorithm>
#include <iterator>

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "ldm/ldm_state.h"
#include "ldm/vblk_fields.h"
#include "ldm/vblk_layout.h"
#include "ldm/vblk_records.h"

namespace trovisk {
namespace {

using namespace vblk;

using SlotView = FixedBytes<kSlotSize>;

// One that is not listed is shown last byte first, although the field is big-endian.
constexpr ValueName kUpdateStatuses[] = {
    {0, "[Consistent]"},
    {1, "[Active, about to be deleted]"},
    {2, "[Created, but not yet active]"},
};

constexpr FieldRow kNumberRows[] = {
    {"Magic Number  : [", kSignature, Chars(4), "]"},
    {"Sequence      : ", kSequence, kBe32},
    {"Group Number  : ", kGroup, kBe32},
};
constexpr FieldRow kStatusRow[] = {
    {"Update Status : ", kUpdateStatus, Named(2, kUpdateStatuses, "[Unknown ")},
};
constexpr FieldRow kFlagsAndLengthRows[] = {
    {"Flags         : 0x", kFlags, HexBytes(1)},
    {"Data Length   : ", kDataLength, kBe32},
};
static_assert(FieldsFit(kNumberRows, kSlotSize) && FieldsFit(kStatusRow, kSlotSize) &&
              FieldsFit(kFlagsAndLengthRows, kSlotSize));

struct RecordType {
  u8 code;
  std::string_view name;
  void (*print)(Bytes data, u8 flags);
};

constexpr RecordType kRecordTypes[] = {
    {0x32, "[Component]", PrintComponent},   {0x33, "[Partition]", PrintPartition},
    {0x34, "[Disk (0x34])", PrintDiskForm1}, {0x35, "[Disk Group (0x35])", PrintDiskGroupForm1},
    {0x44, "[Disk (0x44])", PrintDiskForm2}, {0x45, "[Disk Group (0x45])", PrintDiskGroupForm2},
    {0x51, "[Volume]", PrintVolume},
};

SlotView Slot(SectorView sector, std::size_t index) {
  return sector.subspan(index * kSlotSize).first<kSlotSize>();
}

bool IsEmpty(SectorView sector) {
  for (std::size_t i = 0; i < kSlotCount; ++i) {
    if (U8<kType>(Slot(sector, i)) != 0) return false;
  }
  return true;
}

void PrintTypeBlock(FixedBytes<1> stored, Bytes data, u8 flags) {
  const u8 code = stored[0];
  const auto type = std::ranges::find(kRecordTypes, code, &RecordType::code);
  const bool known = type != std::end(kRecordTypes);
  PrintNotedLine("Record Type   : ", stored, [&] {
    if (known) {
      report << type->name;
      return;
    }
    report << "[Unknown type 0x";
    PrintHexByte(code);
    report << "]";
  });
  if (known) type->print(data, flags);
}

void PrintData(Bytes data) {
  report << "Data          : ";
  PrintSpacedHexBytes(data, "                ");
  report << LineEnd << LineEnd;
}

// data: from the slot's first data byte to the sector's end.
void PrintRecord(SlotView slot, Bytes data) {
  PrintFields(slot, kNumberRows);
  const u16 count = Be16<kRecordCount>(slot);
  const u16 number = static_cast<u16>(Be16<kRecordNumber>(slot) + (count != 0 ? 1 : 0));
  report << "Record        : ";
  {
    const NotedField noted(Part<kRecordNumber, 4>(slot));
    report << number << " of " << count;
  }
  if (count != 0 && number != 1) {
    report << " [Extended VBLK]" << LineEnd << LineEnd;
    return;
  }
  report << LineEnd;
  PrintFields(slot, kStatusRow);
  PrintTypeBlock(Part<kType, 1>(slot), data, U8<kFlags>(slot));
  PrintFields(slot, kFlagsAndLengthRows);
  PrintData(SliceAt(data, 0, Be32<kDataLength>(slot)));
}

}  // namespace

u64 DecodeVblk(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord(description, sector, print, Below::kEmptyLine);
  if (!buffer) return kEndPass;
  const SectorView slots(*buffer);

  const std::size_t used = IsEmpty(slots) ? 0 : kSlotCount;
  for (std::size_t i = 0; i < used; ++i) {
    const SlotView slot = Slot(slots, i);
    if (!EqualsText(Part<kSignature, 4>(slot), "VBLK")) {
      errors << "**** Entry #" << i + 1 << " No VBLK magic found ****\n";
      return kEndPass;
    }
    if (print && U8<kType>(slot) != 0) PrintRecord(slot, FromAt(slots, i * kSlotSize + kData));
  }
  if (sector < LdmVblkEndSector) AddTocEntry(disk, sector + 1, DecodeVblk, L"VBLK Sector");
  return sector + 1;
}

}  // namespace trovisk
