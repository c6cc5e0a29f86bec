// ReFS superblock: the page from which a volume of version 3 or later is entered.
//
// Stands in cluster 30 of the volume and names the checkpoints. Only the page's first 512 bytes are read.
// Little-endian.
// Layout: as published by researchers of the file system, whose makers have not described it.
// Not checked: the signature; offsets and counts, which end where the bytes read end.

#include "frame/global.h"
#include "frame/report/field_table.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "volumes/refs_layout.h"
#include "volumes/refs_page.h"
#include "volumes/volumes_state.h"

namespace trovisk {
namespace {

constexpr std::size_t kGuid = 0x50;                  // 16 bytes
constexpr std::size_t kVersion = 0x68;               // u64
constexpr std::size_t kSelfDescriptorOffset = 0x78;  // u32, bytes from the start of the page
constexpr std::size_t kSelfDescriptorLength = 0x7C;  // u32, bytes

constexpr FieldRow kFields[] = {
    {"Unknown GUID                : {", kGuid, kGuidText, "}"},
    {"Superblock Version          : ", kVersion, kLe64},
    {"Offset to Checkpoint Refs   : 0x", kReFsReferencesOffset, ReversedHexBytes(4)},
    {"Number Of Checkpoint Refs   : ", kReFsReferenceCount, kLe32},
};
constexpr FieldRow kSelfDescriptorFields[] = {
    {"Offset To Self-Descriptor   : 0x", kSelfDescriptorOffset, ReversedHexBytes(4)},
    {"Length Of Self-Descriptor   : ", kSelfDescriptorLength, kLe32},
};
static_assert(FieldsFit(kFields, 512) && FieldsFit(kSelfDescriptorFields, 512));

// The list ends at the first reference that was not read as a whole.
std::size_t ReferenceCount(Bytes references) {
  return references.size() / kReFsReferenceSize;
}

u64 Reference(Bytes references, std::size_t index) {
  return Le64At(references, index * kReFsReferenceSize);
}

Bytes References(SectorView page) {
  const u64 count = Le32<kReFsReferenceCount>(page);
  return SliceAt(page, Le32<kReFsReferencesOffset>(page), count * kReFsReferenceSize);
}

void PrintReport(SectorView page) {
  report << LineEnd;
  PrintHeading("ReFS SUPB");
  PrintReFsPageHeader(Part<0, kReFsPageHeaderSize>(page), "0x");
  PrintFields(page, kFields);
  const Bytes references = References(page);
  for (std::size_t i = 0; i < ReferenceCount(references); ++i) {
    report << "Checkpoint Reference #" << i + 1;
    PrintNotedLine("     : 0x", SliceAt(references, i * kReFsReferenceSize, kReFsReferenceSize),
                   [&] { PrintHex(Reference(references, i), 16); });
  }
  PrintFields(page, kSelfDescriptorFields);
  PrintSelfDescriptor(page, Le32<kSelfDescriptorOffset>(page), Le32<kSelfDescriptorLength>(page));
  report << LineEnd << LineEnd;
}

void RegisterCheckpoints(SectorView page) {
  const ReFsVolumeContext& volume = refsVolume;
  if (volume.volumeSector == 0 || volume.sectorsPerCluster == 0) return;
  const Bytes references = References(page);
  for (std::size_t i = 0; i < ReferenceCount(references); ++i) {
    AddTocEntry(disk, volume.volumeSector + Reference(references, i) * volume.sectorsPerCluster,
                DecodeReFsCheckpoint, L"ReFS CHKP Sector");
  }
}

}  // namespace

u64 DecodeReFsSuperblock(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  if (print) {
    const SectorView page(*record);
    PrintReport(page);
    // With the report alone: the pass that prints comes to the checkpoints by itself.
    RegisterCheckpoints(page);
  }
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
