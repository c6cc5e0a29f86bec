// VBLK, one sector of a dynamic disk's object database: volumes, components, partitions, disks and groups.
//
// Four slots of 128 bytes, behind the VMDB up to the end of the configuration region. A record takes one
// slot, or several, of which only the first has fields that can be told apart. Big-endian. Layout: the
// Linux-NTFS project's LDM documentation, "VBLK". Checked: the signature of every slot, unless all four are
// empty. Not checked: the length of the data, which may lead beyond the slot and is followed to the sector's
// end.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/fields.h"
#include "frame/global.h"
#include "ldm/ldm_state.h"
#include "ldm/vblk_fields.h"
#include "ldm/vblk_records.h"

namespace trovisk {
namespace {

constexpr std::size_t kSlotSize = 128;
constexpr std::size_t kSlotCount = 4;

constexpr std::size_t kSignature = 0;      // "VBLK"
constexpr std::size_t kSequence = 4;       // u32
constexpr std::size_t kGroup = 8;          // u32
constexpr std::size_t kRecordNumber = 12;  // u16, from 0
constexpr std::size_t kRecordCount = 14;   // u16, slots of the record
constexpr std::size_t kUpdateStatus = 16;  // u16
constexpr std::size_t kFlags = 18;         // u8
constexpr std::size_t kType = 19;          // u8, zero: an empty slot
constexpr std::size_t kDataLength = 20;    // u32
constexpr std::size_t kData = 24;

using SlotView = FixedBytes<kSlotSize>;

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

void PrintUpdateStatus(FixedBytes<2> status) {
  std::cout << "Update Status : ";
  switch (Be16<0>(status)) {
    case 0:
      std::cout << "[Consistent]";
      break;
    case 1:
      std::cout << "[Active, about to be deleted]";
      break;
    case 2:
      std::cout << "[Created, but not yet active]";
      break;
    default:  // shown last byte first, although the field is big-endian
      std::cout << "[Unknown ";
      PrintReversedHexBytes(status);
      break;
  }
  std::cout << LineEnd;
}

void PrintTypeBlock(u8 code, Bytes data, u8 flags) {
  std::cout << "Record Type   : ";
  for (const RecordType& type : kRecordTypes) {
    if (type.code != code) continue;
    std::cout << type.name << LineEnd;
    type.print(data, flags);
    return;
  }
  std::cout << "[Unknown type 0x";
  PrintHexByte(code);
  std::cout << "]" << LineEnd;
}

void PrintData(Bytes data) {
  std::cout << "Data          : ";
  for (std::size_t i = 0; i < data.size(); ++i) {
    if (i != 0 && i % 16 == 0) std::cout << LineEnd << "                ";
    PrintHexByte(data[i]);
    std::cout << " ";
  }
  std::cout << LineEnd << LineEnd;
}

// data: from the slot's first data byte to the sector's end.
void PrintRecord(SlotView slot, Bytes data) {
  std::cout << "Magic Number  : [VBLK]" << LineEnd;
  PrintNumberLine("Sequence      : ", Be32<kSequence>(slot));
  PrintNumberLine("Group Number  : ", Be32<kGroup>(slot));
  const u16 count = Be16<kRecordCount>(slot);
  const u16 number = static_cast<u16>(Be16<kRecordNumber>(slot) + (count != 0 ? 1 : 0));
  std::cout << "Record        : " << number << " of " << count;
  if (count != 0 && number != 1) {
    std::cout << " [Extended VBLK]" << LineEnd << LineEnd;
    return;
  }
  std::cout << LineEnd;
  PrintUpdateStatus(Part<kUpdateStatus, 2>(slot));
  PrintTypeBlock(U8<kType>(slot), data, U8<kFlags>(slot));
  std::cout << "Flags         : 0x";
  PrintHexByte(U8<kFlags>(slot));
  std::cout << LineEnd;
  PrintNumberLine("Data Length   : ", Be32<kDataLength>(slot));
  PrintData(SliceAt(data, 0, Be32<kDataLength>(slot)));
}

}  // namespace

u64 DecodeVblk(WideText description, u64 sector, bool print) {
  if (print) {
    PrintSectorHeader(description, sector);
    std::cout << LineEnd;
  }
  std::array<u8, 512> buffer{};
  if (!ReadRecord(buffer)) return kEndPass;
  const SectorView slots(buffer);

  const std::size_t used = IsEmpty(slots) ? 0 : kSlotCount;
  for (std::size_t i = 0; i < used; ++i) {
    const SlotView slot = Slot(slots, i);
    if (!EqualsText(Part<kSignature, 4>(slot), "VBLK")) {
      ErrorLine() << "**** Entry #" << i + 1 << " No VBLK magic found ****\n";
      return kEndPass;
    }
    if (print && U8<kType>(slot) != 0) PrintRecord(slot, FromAt(slots, i * kSlotSize + kData));
  }
  if (sector < LdmVblkEndSector) AddTocEntry(disk, sector + 1, DecodeVblk, L"VBLK Sector");
  return sector + 1;
}

}  // namespace trovisk
