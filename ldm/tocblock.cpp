// TOCBLOCK, the table of contents of a dynamic disk's configuration area: where its two regions lie.
//
// Copies stand behind the start and near the end of the configuration area. Big-endian; region starts are
// relative to the configuration start. Layout: the Linux-NTFS project's LDM documentation, "TOCBLOCK".
// Checked: the signature. Not checked: the regions' extents, which are registered as found.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"
#include "frame/global.h"
#include "ldm/ldm_state.h"

namespace trovisk {
namespace {

constexpr std::size_t kSignature = 0;  // "TOCBLOCK"
constexpr std::size_t kSequence1 = 8;  // u32
constexpr std::size_t kSequence2 = 16;
constexpr std::size_t kConfigName = 36;   // 8 bytes of text
constexpr std::size_t kConfigFlags = 44;  // 2 bytes
constexpr std::size_t kConfigStart = 46;  // u64
constexpr std::size_t kConfigSize = 54;   // u64, sectors
constexpr std::size_t kConfigNumber = 62;
constexpr std::size_t kLogName = 70;  // the same fields for the log region
constexpr std::size_t kLogFlags = 78;
constexpr std::size_t kLogStart = 80;
constexpr std::size_t kLogSize = 88;
constexpr std::size_t kLogNumber = 96;

constexpr FieldRow kSequenceRows[] = {
    {"Sequence#1                 : ", kSequence1, Format::kBe32, 0, " (purpose unknown)"},
    {"Sequence#2                 : ", kSequence2, Format::kBe32, 0, " (purpose unknown)"},
};
constexpr FieldRow kConfigRows[] = {
    {"Config. Name               : [)", kConfigName, Format::kChars, 8, "]"},
    {"Config. Flags              : 0x", kConfigFlags, Format::kHexBytes, 2},
    {"Config. Start Sector (rel) : ", kConfigStart, Format::kBe64},
    {"Config. Size               : ", kConfigSize, Format::kBe64, 0, " (sectors)"},
};
constexpr FieldRow kLogRows[] = {
    {"Log Name                   : [", kLogName, Format::kChars, 8, "]"},
    {"Log Flags                  : 0x", kLogFlags, Format::kHexBytes, 2},
    {"Log Start Sector (rel)     : ", kLogStart, Format::kBe64},
    {"Log Size                   : ", kLogSize, Format::kBe64, 0, " (sectors)"},
};
static_assert(FieldsFit(kSequenceRows, 512) && FieldsFit(kConfigRows, 512) && FieldsFit(kLogRows, 512));

void PrintNumberOrTime(std::string_view label, u64 value) {
  std::cout << label << value << " / ";
  PrintFileTime(value);
  std::cout << LineEnd;
}

void PrintReport(SectorView toc) {
  std::cout << "Magic Number               : [TOCBLOCK]" << LineEnd;
  PrintFields(toc, kSequenceRows);
  std::cout << LineEnd;
  PrintFields(toc, kConfigRows);
  PrintNumberOrTime("Config. Number/Timestamp?  : ", Be64<kConfigNumber>(toc));
  std::cout << LineEnd;
  PrintFields(toc, kLogRows);
  PrintNumberOrTime("Log Number/Timestamp?      : ", Be64<kLogNumber>(toc));
}

}  // namespace

u64 DecodeTocBlock(WideText description, u64 sector, bool print) {
  if (print) {
    PrintSectorHeader(description, sector);
    std::cout << LineEnd;
  }
  std::array<u8, 512> buffer{};
  if (!ReadRecord(buffer)) return kEndPass;
  const SectorView toc(buffer);
  if (!EqualsText(Part<kSignature, 8>(toc), "TOCBLOCK")) {
    // A place where a copy may stand; not every disk has one there.
    if (print) ErrorLine() << "**** No TOC magic found ****\n";
    AddTocEntry(disk, sector, DumpRawSector, L"Raw TOC Sector");
    return sector + 1;
  }

  if (print) PrintReport(toc);
  const u64 vmdb = LdmConfigStartSector + Be64<kConfigStart>(toc);
  LdmVblkEndSector = vmdb - 1 + Be64<kConfigSize>(toc);
  LdmKlogStartSector = LdmConfigStartSector + Be64<kLogStart>(toc);
  if (print) {
    std::cout << LineEnd;
    std::cout << "VMDB starts @ sector       : " << vmdb << LineEnd;
    std::cout << "VBLKs start @ sector       : " << vmdb + 1 << LineEnd;
    std::cout << "VBLKs end @ sector         : " << LdmVblkEndSector << LineEnd;
    std::cout << "KLOGs start @ sector       : " << LdmKlogStartSector << LineEnd;
    std::cout << LineEnd;
  }
  AddTocEntry(disk, vmdb, DecodeVmdb, L"VMDB Sector");
  AddTocEntry(disk, vmdb + 1, DecodeVblk, L"VBLK Sector");
  AddTocEntry(disk, LdmKlogStartSector, DecodeKlog, L"KLOG Sector");
  return sector + 1;
}

}  // namespace trovisk
