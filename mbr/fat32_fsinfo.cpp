// FSInfo, the FAT32 file system information sector: hints on free clusters.
//
// Stands where a FAT32 boot sector's FSInfo field points, one beside the primary and one beside the backup.
// Little-endian. Layout: Microsoft, "FAT: General Overview of On-Disk Format", FSInfo structure.
// Checked: end mark, lead signature. Not checked: structure and trail signatures.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"

namespace trovisk {
namespace {

constexpr std::size_t kLeadSignature = 0x000;  // u32
constexpr std::size_t kFreeClusters = 0x1E8;   // u32
constexpr std::size_t kNextCluster = 0x1EC;    // u32: where to begin the search for a free one
constexpr std::size_t kEndMark = 0x1FE;        // 0x55 0xAA

constexpr u16 kValidEndMark = 0xAA55;
constexpr u32 kValidLeadSignature = 0x41615252;  // "RRaA"
constexpr u32 kUnknown = 0xFFFFFFFF;

// "Signatue" is how the report has always spelled it.
constexpr FieldRow kSignatures[] = {
    {"Leading Signature                 : [ ", kLeadSignature, Format::kChars, 4, " ]"},
    {"FSI Structure Signatue            : [ ", 0x1E4, Format::kChars, 4, " ]"},
};
static_assert(FieldsFit(kSignatures, 512));

void PrintHint(std::string_view label, u32 value) {
  std::cout << label;
  if (value == kUnknown) {
    std::cout << "Unknown";
  } else {
    std::cout << value;
  }
  std::cout << LineEnd;
}

void PrintReport(SectorView fsInfo) {
  std::cout << LineEnd;
  PrintHeading("FAT32 Filesystem Information Sector");
  std::cout << LineEnd;
  PrintFields(fsInfo, kSignatures);
  PrintHint("Last known count of free clusters : ", Le32<kFreeClusters>(fsInfo));
  PrintHint("Cluster number to begin search    : ", Le32<kNextCluster>(fsInfo));
  std::cout << "Sector End Mark                   : 0x";
  PrintReversedHexBytes(Part<kEndMark, 2>(fsInfo));
  std::cout << LineEnd;
}

}  // namespace

u64 DecodeFat32FsInfo(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  std::array<u8, 512> buffer{};
  if (!ReadRecord(buffer)) return kEndPass;
  const SectorView fsInfo(buffer);
  if (Le16<kEndMark>(fsInfo) != kValidEndMark) {
    std::cout << "Not a valid FAT32 FSI sector end marker" << LineEnd;
    return kEndPass;
  }
  if (Le32<kLeadSignature>(fsInfo) != kValidLeadSignature) {
    std::cout << "Not a valid FAT32 FSI signature" << LineEnd;
    return kEndPass;
  }
  if (print) PrintReport(fsInfo);
  return sector + 1;
}

}  // namespace trovisk
