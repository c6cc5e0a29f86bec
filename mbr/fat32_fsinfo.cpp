// FSInfo, the FAT32 file system information sector: hints on free clusters.
//
// Stands where a FAT32 boot sector's FSInfo field points, one beside the primary and one beside the backup.
// Little-endian. Layout: Microsoft, "FAT: General Overview of On-Disk Format", FSInfo structure.
// Checked: end mark, lead signature. Not checked: structure and trail signatures.

#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "mbr/fat32_fsinfo_layout.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr u32 kUnknown = 0xFFFFFFFF;

constexpr FieldRow kSignatures[] = {
    {"Leading Signature                 : [ ", kFsInfoLeadSignature, Chars(4), " ]"},
    {"FSI Structure Signatue            : [ ", kFsInfoStructSignature, Chars(4), " ]"},  // sic
};
constexpr FieldRow kEnd[] = {
    {"Sector End Mark                   : 0x", kEndMark, ReversedHexBytes(2)},
};
static_assert(FieldsFit(kSignatures, 512) && FieldsFit(kEnd, 512));

void PrintHint(std::string_view label, FixedBytes<4> field) {
  PrintNotedLine(label, field, [&] {
    if (const u32 value = Le32<0>(field); value != kUnknown) {
      report << value;
    } else {
      report << "Unknown";
    }
  });
}

void PrintReport(SectorView fsInfo) {
  report << LineEnd;
  PrintHeading("FAT32 Filesystem Information Sector");
  report << LineEnd;
  PrintFields(fsInfo, kSignatures);
  PrintHint("Last known count of free clusters : ", Part<kFsInfoFreeClusters, 4>(fsInfo));
  PrintHint("Cluster number to begin search    : ", Part<kFsInfoNextCluster, 4>(fsInfo));
  PrintFields(fsInfo, kEnd);
}

}  // namespace

u64 DecodeFat32FsInfo(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView fsInfo(*record);
  if (!HasEndMark(fsInfo)) {
    report << "Not a valid FAT32 FSI sector end marker" << LineEnd;
    return kEndPass;
  }
  if (!EqualsText(Part<kFsInfoLeadSignature, 4>(fsInfo), "RRaA")) {
    report << "Not a valid FAT32 FSI signature" << LineEnd;
    return kEndPass;
  }
  if (print) PrintReport(fsInfo);
  return sector + 1;
}

}  // namespace trovisk
