// PRIVHEAD, the private header of a dynamic disk: which disk it is, and where its configuration area lies.
//
// Stands in sector 6 of an MBR disk and in the last sector of a GPT disk's LDM metadata partition; two
// alternates stand in the configuration area. Big-endian; most numbers lie at odd offsets.
// Layout: the Linux-NTFS project's LDM documentation, "PRIVHEAD".
// Checked: the signature. Not checked: every extent, which is registered as found.

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/report.h"
#include "frame/sector.h"
#include "ldm/ldm_state.h"
#include "ldm/privhead_layout.h"

namespace trovisk {
namespace {

using namespace privhead;

constexpr FieldRow kFields[] = {
    {"Magic Number               : [", kSignature, Chars(8), "]"},
    {"Sequence                   : ", kSequence, kBe32},
    {"Major Number               : 0x", kMajorVersion, HexBytes(2)},
    {"Minor Number               : 0x", kMinorVersion, HexBytes(2)},
    {"Timestamp                  : ", kTimestamp, kBeFileTime},
    {"Disk ID GUID               : {", kDiskId, Chars(64), "}"},
    {"Host ID GUID               : {", kHostId, Chars(64), "}"},
    {"Disk Group ID GUID         : {", kGroupId, Chars(64), "}"},
    {"Disk Group Name            : [", kGroupName, Chars(32), "]"},
    {"Logical Disk Start Sector  : ", kLogicalStart, kBe64},
    {"Logical Disk End Sector    : ", kLogicalEnd, kBe64},
    {"Configuration Start Sector : ", kConfigStart, kBe64},
    {"Configuration Size         : ", kConfigSize, kBe64, " (sectors)"},
    {"Number of TOCs             : ", kTocCount, kBe64},
    {"Size of TOC                : ", kTocSize, kBe64, " (sectors)"},
    {"Number of Configs.         : ", kConfigCount, kBe32},
    {"Size of Config.            : ", kConfigRegionSize, kBe64, " (sectors)"},
    {"Number of Logs             : ", kLogCount, kBe32},
    {"Size of Log                : ", kLogRegionSize, kBe64, " (sectors)"},
    {"Disk Signature             : 0x", kDiskSignature, HexBytes(4)},
    {"Disk Set GUID              : {", kDiskSetId, kStoredGuidText, "}"},
    {"Disk Set GUID (copy?)      : {", kDiskSetIdCopy, kStoredGuidText, "}"},
};
static_assert(FieldsFit(kFields, 512));

void PrintReport(SectorView header) {
  PrintFields(header, kFields);
  report << LineEnd;
}

bool IsVersion2Point12(SectorView header) {
  return Be16<kMajorVersion>(header) == 2 && Be16<kMinorVersion>(header) == 12;
}

// Four places where a copy of the table of contents may stand; version 2.12 uses the inner two only.
void RegisterTocBlocks(SectorView header, bool print) {
  const u64 configStart = Be64<kConfigStart>(header);
  const u64 tocSize = Be64<kTocSize>(header);
  const u64 candidates[] = {configStart + 1, configStart + 2, configStart + tocSize,
                            configStart + tocSize + 1};
  const bool innerOnly = IsVersion2Point12(header);
  const std::size_t first = innerOnly ? 1 : 0;
  const std::size_t end = innerOnly ? 3 : 4;
  for (std::size_t i = first; i < end; ++i) {
    if (print) {
      report << "TOC #" << i + 1;
      PrintNotedLine(" starts @ sector     : ", {}, [&] { report << candidates[i]; });
    }
    AddTocEntry(disk, candidates[i], DecodeTocBlock, L"TOC Sector");
  }
}

}  // namespace

u64 DecodePrivhead(WideText description, u64 sector, bool print) {
  const auto buffer = OpenRecord(description, sector, print, Below::kEmptyLine);
  if (!buffer) return kEndPass;
  const SectorView header(*buffer);
  if (!CheckSignature(Part<kSignature, 8>(header), "PRIVHEAD", "PRIVHEAD")) return kEndPass;

  if (print) PrintReport(header);
  LdmConfigStartSector = Be64<kConfigStart>(header);
  const u64 alternate1 = LdmConfigStartSector + Be64<kAlternate1>(header);
  const u64 alternate2 = LdmConfigStartSector + Be64<kAlternate2>(header);
  if (print) {
    PrintNotedLine("Alt. PRIVHEAD #1 @ sector  : ", {}, [&] { report << alternate1; });
    PrintNotedLine("Alt. PRIVHEAD #2 @ sector  : ", {}, [&] { report << alternate2; });
    report << LineEnd;
  }
  RegisterTocBlocks(header, print);
  report << LineEnd;  // in the loading pass too
  AddTocEntry(disk, alternate1, DecodePrivhead, L"Alternate PRIVHEAD Sector");
  AddTocEntry(disk, alternate2, DecodePrivhead, L"Alternate PRIVHEAD Sector");
  return DumpAsRawSectorAndGoOn(sector, print);
}

}  // namespace trovisk
