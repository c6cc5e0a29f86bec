// FAT boot sector: the layout of a FAT12, FAT16 or FAT32 volume and the code that starts a system from it.
//
// Stands in the first sector of the volume; FAT32 keeps a backup, which is decoded in the same way.
// Little-endian. Layout: Microsoft, "FAT: General Overview of On-Disk Format", boot sector and BPB structure.
// Checked: end mark, and that neither bytes per sector nor sectors per cluster is zero. Not checked: counts
// and sizes, which are followed as found.

#include <array>
#include <iostream>
#include <optional>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/fields.h"
#include "frame/global.h"
#include "mbr/fat_bootstrap.h"

namespace trovisk {
namespace {

constexpr std::size_t kJump = 0x000;               // 3 bytes
constexpr std::size_t kOemName = 0x003;            // 8 bytes
constexpr std::size_t kBytesPerSector = 0x00B;     // u16
constexpr std::size_t kSectorsPerCluster = 0x00D;  // u8
constexpr std::size_t kReservedSectors = 0x00E;    // u16: from the boot sector to the first FAT
constexpr std::size_t kFatCount = 0x010;           // u8
constexpr std::size_t kRootEntries = 0x011;        // u16, zero: FAT32
constexpr std::size_t kTotalSectors16 = 0x013;     // u16, zero: the 32-bit count is in use
constexpr std::size_t kFatSize16 = 0x016;          // u16, sectors, zero: FAT32
constexpr std::size_t kHiddenSectors = 0x01C;      // u32: sectors before the volume
constexpr std::size_t kTotalSectors32 = 0x020;     // u32
constexpr std::size_t kFatSize32 = 0x024;          // u32, sectors
constexpr std::size_t kFsInfoSector = 0x030;       // u16, from the boot sector; FAT32 alone
constexpr std::size_t kBackupSector = 0x032;       // u16, likewise
constexpr std::size_t kEndMark = 0x1FE;            // 0x55 0xAA

constexpr u16 kValidEndMark = 0xAA55;
constexpr i32 kRootEntrySize = 32;
constexpr u32 kFewestFat16Clusters = 4085;
constexpr u32 kFewestFat32Clusters = 65525;

enum class FatType { kFat12, kFat16, kFat32 };

// What the fields amount to. Sectors relative to the boot sector, in 32 bits: sums of hostile fields wrap.
struct Layout {
  FatType type;
  u32 fatSize;
  u32 rootDirectory;
  u32 firstData;
};

// The cluster count alone decides the type, whatever the partition type or the type text says.
FatType TypeOf(u32 clusters) {
  if (clusters < kFewestFat16Clusters) return FatType::kFat12;
  if (clusters < kFewestFat32Clusters) return FatType::kFat16;
  return FatType::kFat32;
}

// None for fields that would divide by zero.
std::optional<Layout> LayoutOf(SectorView boot) {
  const i32 bytesPerSector = Le16<kBytesPerSector>(boot);
  const u32 sectorsPerCluster = U8<kSectorsPerCluster>(boot);
  if (bytesPerSector == 0 || sectorsPerCluster == 0) return std::nullopt;

  const i32 rootSectors = (Le16<kRootEntries>(boot) * kRootEntrySize - 1 + bytesPerSector) / bytesPerSector;
  const u32 fatSize = Le16<kFatSize16>(boot) != 0 ? u32{Le16<kFatSize16>(boot)} : Le32<kFatSize32>(boot);
  const u32 rootDirectory = U8<kFatCount>(boot) * fatSize + Le16<kReservedSectors>(boot);
  const u32 firstData = rootDirectory + static_cast<u32>(rootSectors);
  const u32 totalSectors =
      Le16<kTotalSectors16>(boot) != 0 ? u32{Le16<kTotalSectors16>(boot)} : Le32<kTotalSectors32>(boot);
  const u32 clusters = (totalSectors - firstData) / sectorsPerCluster;
  return Layout{TypeOf(clusters), fatSize, rootDirectory, firstData};
}

void PrintTitle(FatType type) {
  switch (type) {
    case FatType::kFat12:
      PrintHeading("FAT12 Boot Sector");
      break;
    case FatType::kFat16:
      PrintHeading("FAT16 Boot Sector");
      break;
    case FatType::kFat32:
      PrintHeading("FAT32 Boot Sector");
      break;
  }
}

void PrintBootstrap(FatType type, SectorView boot) {
  switch (type) {
    case FatType::kFat12:
      PrintFat12Bootstrap(boot);
      break;
    case FatType::kFat16:
      PrintFat16Bootstrap(boot);
      break;
    case FatType::kFat32:
      PrintFat32Bootstrap(boot);
      break;
  }
}

// Sector numbers are absolute: the boot sector's own is the base, whatever the hidden sectors field says.
void PrintReport(SectorView boot, const Layout& layout, u64 sector) {
  std::cout << LineEnd;
  PrintTitle(layout.type);
  std::cout << "Jump Instruction To Boot Code : ";
  PrintBracketedHexBytes(Part<kJump, 3>(boot));
  std::cout << LineEnd << "OEM Name                      : [ ";
  PrintChars(Part<kOemName, 8>(boot));
  std::cout << " ]" << LineEnd << LineEnd;
  for (unsigned fat = 1; fat <= U8<kFatCount>(boot); ++fat) {
    const u64 first = Le16<kReservedSectors>(boot) + u64{fat - 1} * layout.fatSize + sector;
    std::cout << "First sector of FAT#" << fat << "         : " << first << LineEnd;
  }
  if (layout.type != FatType::kFat32) {
    std::cout << "First root dir sector number  : " << layout.rootDirectory + sector << LineEnd;
  }
  std::cout << "First data sector number      : " << layout.firstData + sector << LineEnd << LineEnd;
  PrintBootstrap(layout.type, boot);
  std::cout << LineEnd;
}

void Register(SectorView boot, u64 sector) {
  // Only where the hidden sectors lead to this very sector: a backup leads on to no further backup.
  if (sector == Le32<kHiddenSectors>(boot)) {
    AddTocEntry(disk, Le16<kBackupSector>(boot) + sector, DecodeFatBootSector, L"Backup FAT boot sector");
    AddTocEntry(disk, Le16<kReservedSectors>(boot) + sector, DumpRawSector, L"FAT directory sector");
  }
  // "Fileystem" is how the table of contents has always spelled it.
  AddTocEntry(disk, Le16<kFsInfoSector>(boot) + sector, DecodeFat32FsInfo,
              L"FAT32 Fileystem Information sector");
}

}  // namespace

u64 DecodeFatBootSector(WideText description, u64 sector, bool print) {
  if (print) {
    std::cout << "Reading FAT sector # " << sector << " [" << ToNarrow(description) << "]" << LineEnd;
  }
  std::array<u8, 512> buffer{};
  if (!ReadRecord(buffer)) return kEndPass;
  const SectorView boot(buffer);
  const std::optional<Layout> layout = LayoutOf(boot);
  if (Le16<kEndMark>(boot) != kValidEndMark || !layout) {
    std::cout << "Not a valid FAT boot sector end marker" << LineEnd;
    return kEndPass;
  }

  if (print) PrintReport(boot, *layout, sector);
  if (layout->type == FatType::kFat32) Register(boot, sector);
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
