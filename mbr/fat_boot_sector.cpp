// FAT boot sector: the layout of a FAT12, FAT16 or FAT32 volume and the code that starts a system from it.
//
// Stands in the first sector of the volume; FAT32 keeps a backup, which is decoded in the same way.
// Little-endian. Layout: Microsoft, "FAT: General Overview of On-Disk Format", boot sector and BPB structure.
// Checked: end mark, and that neither bytes per sector nor sectors per cluster is zero. Not checked: counts
// and sizes, which are followed as found.

#include <algorithm>
#include <optional>

#include "frame/global.h"
#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "mbr/fat_bootstrap.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr i32 kRootEntrySize = 32;

// What the fields amount to. Sectors relative to the boot sector, in 32 bits: sums of hostile fields wrap.
struct Layout {
  const FatType* type;
  u32 fatSize;
  u32 rootDirectory;
  u32 firstData;
};

// The cluster count alone decides the type, whatever the partition type or the type text says.
const FatType& TypeOf(u32 clusters) {
  return *std::find_if(kFatTypes.begin(), kFatTypes.end(),
                       [&](const FatType& type) { return clusters <= type.mostClusters; });
}

// None for fields that would divide by zero.
std::optional<Layout> LayoutOf(SectorView boot) {
  const i32 bytesPerSector = Le16<kBpbBytesPerSector>(boot);
  const u32 sectorsPerCluster = U8<kBpbSectorsPerCluster>(boot);
  if (bytesPerSector == 0 || sectorsPerCluster == 0) return std::nullopt;

  const i32 rootSectors =
      (Le16<kBpbRootEntries>(boot) * kRootEntrySize - 1 + bytesPerSector) / bytesPerSector;
  const u32 fatSize =
      Le16<kBpbFatSize16>(boot) != 0 ? u32{Le16<kBpbFatSize16>(boot)} : Le32<kFat32FatSize>(boot);
  const u32 rootDirectory = U8<kBpbFatCount>(boot) * fatSize + Le16<kBpbReservedSectors>(boot);
  const u32 firstData = rootDirectory + static_cast<u32>(rootSectors);
  const u32 totalSectors = Le16<kBpbTotalSectors16>(boot) != 0 ? u32{Le16<kBpbTotalSectors16>(boot)}
                                                               : Le32<kBpbTotalSectors32>(boot);
  const u32 clusters = (totalSectors - firstData) / sectorsPerCluster;
  return Layout{&TypeOf(clusters), fatSize, rootDirectory, firstData};
}

// Sector numbers are absolute: the boot sector's own is the base, whatever the hidden sectors field says.
void PrintReport(SectorView boot, const Layout& layout, u64 sector) {
  report << LineEnd;
  PrintHeading(layout.type->heading);
  PrintFields(boot, kBootSectorStart);
  report << LineEnd;
  for (unsigned fat = 1; fat <= U8<kBpbFatCount>(boot); ++fat) {
    const u64 first = Le16<kBpbReservedSectors>(boot) + u64{fat - 1} * layout.fatSize + sector;
    report << "First sector of FAT#" << fat;
    PrintNotedLine("         : ", {}, [&] { report << first; });
  }
  if (!layout.type->rootInClusters) {
    PrintNotedLine("First root dir sector number  : ", {}, [&] { report << layout.rootDirectory + sector; });
  }
  PrintNotedLine("First data sector number      : ", {}, [&] { report << layout.firstData + sector; });
  report << LineEnd;
  PrintFatBootstrap(*layout.type, boot);
  report << LineEnd;
}

void Register(SectorView boot, u64 sector) {
  // Only where the hidden sectors lead to this very sector: a backup leads on to no further backup.
  if (sector == Le32<kBpbHiddenSectors>(boot)) {
    AddTocEntry(disk, Le16<kFat32BackupBoot>(boot) + sector, DecodeFatBootSector, L"Backup FAT boot sector");
    AddTocEntry(disk, Le16<kBpbReservedSectors>(boot) + sector, DumpRawSector, L"FAT directory sector");
  }
  AddTocEntry(disk, Le16<kFat32FsInfo>(boot) + sector, DecodeFat32FsInfo,
              L"FAT32 Fileystem Information sector");  // sic
}

}  // namespace

u64 DecodeFatBootSector(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector, "Reading FAT sector # ");
  const auto record = ReadRecord<512>();
  if (!record) return kEndPass;
  const SectorView boot(*record);
  const std::optional<Layout> layout = LayoutOf(boot);
  if (!HasEndMark(boot) || !layout) {
    report << "Not a valid FAT boot sector end marker" << LineEnd;
    return kEndPass;
  }

  if (print) PrintReport(boot, *layout, sector);
  if (layout->type->rootInClusters) Register(boot, sector);
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
