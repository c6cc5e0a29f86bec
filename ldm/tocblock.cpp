// TOCBLOCK, the table of contents of a dynamic disk's configuration area: where its two regions lie.
//
// Copies stand behind the start and near the end of the configuration area. Big-endian; region starts are
// relative to the configuration start. Layout: the Linux-NTFS project's LDM documentation, "TOCBLOCK".
// Checked: the signature. Not checked: the regions' extents, which are registered as found.

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "ldm/ldm_state.h"
#include "ldm/tocblock_layout.h"

namespace trovisk {
namespace {

using namespace tocblock;

constexpr FieldRow kSequenceRows[] = {
    {"Magic Number               : [", kSignature, Chars(8), "]"},
    {"Sequence#1                 : ", kSequence1, kBe32, " (purpose unknown)"},
    {"Sequence#2                 : ", kSequence2, kBe32, " (purpose unknown)"},
};
constexpr FieldRow kConfigRows[] = {
    {"Config. Name               : [)", kConfigName, Chars(8), "]"},
    {"Config. Flags              : 0x", kConfigFlags, HexBytes(2)},
    {"Config. Start Sector (rel) : ", kConfigStart, kBe64},
    {"Config. Size               : ", kConfigSize, kBe64, " (sectors)"},
};
constexpr FieldRow kLogRows[] = {
    {"Log Name                   : [", kLogName, Chars(8), "]"},
    {"Log Flags                  : 0x", kLogFlags, HexBytes(2)},
    {"Log Start Sector (rel)     : ", kLogStart, kBe64},
    {"Log Size                   : ", kLogSize, kBe64, " (sectors)"},
};
static_assert(FieldsFit(kSequenceRows, 512) && FieldsFit(kConfigRows, 512) && FieldsFit(kLogRows, 512));

void PrintNumberOrTime(std::string_view label, FixedBytes<8> field) {
  PrintNotedLine(label, field, [&] {
    report << Be64<0>(field) << " / ";
    PrintFileTime(Be64<0>(field));
  });
}

// Only the printing pass says what is missing.
bool HasSignature(SectorView toc, bool print) {
  const auto stored = Part<kSignature, 8>(toc);
  return print ? CheckSignature(stored, "TOCBLOCK", "TOC") : EqualsText(stored, "TOCBLOCK");
}

void PrintReport(SectorView toc) {
  PrintFields(toc, kSequenceRows);
  report << LineEnd;
  PrintFields(toc, kConfigRows);
  PrintNumberOrTime("Config. Number/Timestamp?  : ", Part<kConfigNumber, 8>(toc));
  report << LineEnd;
  PrintFields(toc, kLogRows);
  PrintNumberOrTime("Log Number/Timestamp?      : ", Part<kLogNumber, 8>(toc));
}

}  // namespace

u64 DecodeTocBlock(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord(description, sector, print, Below::kEmptyLine);
  if (!buffer) return kEndPass;
  const SectorView toc(*buffer);
  // A place where a copy may stand; not every disk has one there.
  if (!HasSignature(toc, print)) return sector + 1;

  if (print) PrintReport(toc);
  const u64 vmdb = LdmConfigStartSector + Be64<kConfigStart>(toc);
  LdmVblkEndSector = vmdb - 1 + Be64<kConfigSize>(toc);
  LdmKlogStartSector = LdmConfigStartSector + Be64<kLogStart>(toc);
  if (print) {
    report << LineEnd;
    PrintNotedLine("VMDB starts @ sector       : ", {}, [&] { report << vmdb; });
    PrintNotedLine("VBLKs start @ sector       : ", {}, [&] { report << vmdb + 1; });
    PrintNotedLine("VBLKs end @ sector         : ", {}, [] { report << LdmVblkEndSector; });
    PrintNotedLine("KLOGs start @ sector       : ", {}, [] { report << LdmKlogStartSector; });
    report << LineEnd;
  }
  AddTocEntry(disk, vmdb, DecodeVmdb, L"VMDB Sector");
  AddTocEntry(disk, vmdb + 1, DecodeVblk, L"VBLK Sector");
  AddTocEntry(disk, LdmKlogStartSector, DecodeKlog, L"KLOG Sector");
  return sector + 1;
}

}  // namespace trovisk
