// VMDB, the header of a dynamic disk's object database: its version, its disk group and how many objects of
// each kind it holds, committed and pending.
//
// Opens the configuration region; the VBLK records follow it. Big-endian.
// Layout: the Linux-NTFS project's LDM documentation, "VMDB".
// Checked: the signature. Not checked: the size and offset of the records, which no decoder uses.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"

namespace trovisk {
namespace {

constexpr std::size_t kSignature = 0;  // "VMDB"
constexpr std::size_t kSequence = 4;   // u32
constexpr std::size_t kVblkSize = 8;   // u32, bytes, although the report calls them sectors
constexpr std::size_t kVblkOffset = 12;
constexpr std::size_t kUpdateStatus = 16;  // u16
constexpr std::size_t kMajorVersion = 18;
constexpr std::size_t kMinorVersion = 20;
constexpr std::size_t kGroupName = 22;  // 31 bytes of text
constexpr std::size_t kGroupId = 53;    // 64 bytes of text
constexpr std::size_t kCommittedSequence = 117;
constexpr std::size_t kPendingSequence = 125;
constexpr std::size_t kCommittedVolumes = 133;  // u32 each
constexpr std::size_t kCommittedComponents = 137;
constexpr std::size_t kCommittedPartitions = 141;
constexpr std::size_t kCommittedDisks = 145;
constexpr std::size_t kPendingVolumes = 161;
constexpr std::size_t kPendingComponents = 165;
constexpr std::size_t kPendingPartitions = 169;
constexpr std::size_t kPendingDisks = 173;
constexpr std::size_t kLastAccess = 189;  // FILETIME

constexpr FieldRow kSizeRows[] = {
    {"Sequence?                        : ", kSequence, Format::kBe32, 0, " (purpose unknown)"},
    {"Size of VBLK                     : ", kVblkSize, Format::kBe32, 0, " (sectors)"},
    {"VBLK Offset                      : ", kVblkOffset, Format::kBe32},
};
constexpr FieldRow kGroupRows[] = {
    {"Major Number                     : 0x", kMajorVersion, Format::kHexBytes, 2},
    {"Minor Number                     : 0x", kMinorVersion, Format::kHexBytes, 2},
    {"Disk Group Name                  : [", kGroupName, Format::kChars, 31, "]"},
    {"Disk Group ID GUID               : {", kGroupId, Format::kChars, 64, "}"},
};
constexpr FieldRow kCountRows[] = {
    {"Committed Sequence               : ", kCommittedSequence, Format::kBe64},
    {"Pending Sequence                 : ", kPendingSequence, Format::kBe64},
    {"# of Committed Volume VBLKs      : ", kCommittedVolumes, Format::kBe32},
    {"# of Pending Volume VBLKs        : ", kPendingVolumes, Format::kBe32},
    {"# of Committed Component VBLKs   : ", kCommittedComponents, Format::kBe32},
    {"# of Pending Component VBLKs     : ", kPendingComponents, Format::kBe32},
    {"# of Committed Partition VBLKs   : ", kCommittedPartitions, Format::kBe32},
    {"# of Pending Partition VBLKs     : ", kPendingPartitions, Format::kBe32},
    {"# of Committed Disk VBLKs        : ", kCommittedDisks, Format::kBe32},
    {"# of Pending Disk VBLKs          : ", kPendingDisks, Format::kBe32},
};
static_assert(FieldsFit(kSizeRows, 512) && FieldsFit(kGroupRows, 512) && FieldsFit(kCountRows, 512));

void PrintUpdateStatus(FixedBytes<2> status) {
  switch (Be16<0>(status)) {
    case 1:
      std::cout << "[Consistent]";
      break;
    case 2:
      std::cout << "[Creation Phase]";
      break;
    case 3:
      std::cout << "[Deletion Phase]";
      break;
    default:  // shown last byte first, although the field is big-endian
      std::cout << "0x";
      PrintReversedHexBytes(status);
      break;
  }
}

void PrintReport(SectorView vmdb) {
  std::cout << "Magic Number                     : [VMDB]" << LineEnd;
  PrintFields(vmdb, kSizeRows);
  std::cout << "Update Status                    : ";
  PrintUpdateStatus(Part<kUpdateStatus, 2>(vmdb));
  std::cout << LineEnd;
  PrintFields(vmdb, kGroupRows);
  std::cout << LineEnd;
  PrintFields(vmdb, kCountRows);
  std::cout << "Last Access Time                 : ";
  PrintFileTime(Be64<kLastAccess>(vmdb));
  std::cout << LineEnd << LineEnd;
}

}  // namespace

u64 DecodeVmdb(WideText description, u64 sector, bool print) {
  if (print) {
    PrintSectorHeader(description, sector);
    std::cout << LineEnd;
  }
  std::array<u8, 512> buffer{};
  if (!ReadRecord(buffer)) return kEndPass;
  const SectorView vmdb(buffer);
  if (!EqualsText(Part<kSignature, 4>(vmdb), "VMDB")) {
    ErrorLine() << "**** No VMDB magic found ****\n";
    return kEndPass;
  }
  if (print) PrintReport(vmdb);
  return sector + 1;
}

}  // namespace trovisk
