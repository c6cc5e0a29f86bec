// ReFS superblock: the page from which a volume of version 3 or later is entered.
//
// Stands in cluster 30 of the volume and names the checkpoints. Only the page's first 512 bytes are read.
// Little-endian.
// Layout: as published by researchers of the file system, whose makers have not described it.
// Not checked: the signature; offsets and counts, which end where the bytes read end.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/fields.h"
#include "frame/global.h"
#include "volumes/refs_page.h"

namespace trovisk {
namespace {

constexpr std::size_t kGuid = 0x50;                  // 16 bytes
constexpr std::size_t kVersion = 0x68;               // u64
constexpr std::size_t kReferencesOffset = 0x70;      // u32, bytes from the start of the page
constexpr std::size_t kReferenceCount = 0x74;        // u32
constexpr std::size_t kSelfDescriptorOffset = 0x78;  // u32, bytes from the start of the page
constexpr std::size_t kSelfDescriptorLength = 0x7C;  // u32, bytes

// The clusters of the checkpoints, as a list of u64. It ends at the first that was not read as a whole.
constexpr std::size_t kReferenceSize = 8;

std::size_t ReferenceCount(Bytes references) {
  return references.size() / kReferenceSize;
}

u64 Reference(Bytes references, std::size_t index) {
  return Le64At(references, index * kReferenceSize);
}

Bytes References(SectorView page) {
  const u64 count = Le32<kReferenceCount>(page);
  return SliceAt(page, Le32<kReferencesOffset>(page), count * kReferenceSize);
}

void PrintReport(SectorView page) {
  std::cout << LineEnd;
  PrintHeading("ReFS SUPB");
  PrintReFsPageHeader(Part<0, kReFsPageHeaderSize>(page), "0x");
  std::cout << "Unknown GUID                : {";
  PrintGuid(Part<kGuid, 16>(page));
  std::cout << "}" << LineEnd << "Superblock Version          : " << Le64<kVersion>(page) << LineEnd
            << "Offset to Checkpoint Refs   : 0x";
  PrintHex(Le32<kReferencesOffset>(page), 8);
  std::cout << LineEnd << "Number Of Checkpoint Refs   : " << Le32<kReferenceCount>(page) << LineEnd;

  const Bytes references = References(page);
  for (std::size_t i = 0; i < ReferenceCount(references); ++i) {
    std::cout << "Checkpoint Reference #" << i + 1 << "     : 0x";
    PrintHex(Reference(references, i), 16);
    std::cout << LineEnd;
  }

  std::cout << "Offset To Self-Descriptor   : 0x";
  PrintHex(Le32<kSelfDescriptorOffset>(page), 8);
  std::cout << LineEnd << "Length Of Self-Descriptor   : " << Le32<kSelfDescriptorLength>(page) << LineEnd;
  PrintSelfDescriptor(page, Le32<kSelfDescriptorOffset>(page), Le32<kSelfDescriptorLength>(page));
  std::cout << LineEnd << LineEnd;
}

void RegisterCheckpoints(SectorView page) {
  const ReFsVolumeContext& volume = disk.refsVolume;
  if (volume.volumeSector == 0 || volume.sectorsPerCluster == 0) return;
  const Bytes references = References(page);
  for (std::size_t i = 0; i < ReferenceCount(references); ++i) {
    AddTocEntry(disk, volume.volumeSector + Reference(references, i) * volume.sectorsPerCluster,
                DecodeReFsCheckpoint, L"ReFS CHKP Sector");
  }
}

}  // namespace

u64 DecodeReFsSuperblock(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  std::array<u8, 512> record{};
  if (!ReadRecord(record)) return kEndPass;
  if (print) {
    const SectorView page(record);
    PrintReport(page);
    // With the report alone: the pass that prints comes to the checkpoints by itself.
    RegisterCheckpoints(page);
  }
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
