// FAT BIOS parameter block: the geometry of a volume, the same 25 bytes for every FAT type.
//
// Stands at 0x00B of a FAT boot sector. Little-endian.
// Layout: Microsoft, "FAT: General Overview of On-Disk Format", boot sector and BPB structure.
// Nothing is checked; both total sector counts are shown, whichever of them is in use.

#include "mbr/fat_bpb.h"

#include "frame/report/verbs.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr FieldRow kFields[] = {
    {"\tBytes/Sector              : ", kBpbBytesPerSector, kLe16},
    {"\tSectors/Cluster           : ", kBpbSectorsPerCluster, kU8},
    {"\tReserved Sector Count     : ", kBpbReservedSectors, kLe16},
    {"\tNumber of FATs            : ", kBpbFatCount, kU8},
    {"\tRoot Entry Count          : ", kBpbRootEntries, kLe16},
    {"\tTotal Sectors On Volume   : ", kBpbTotalSectors16, kLe16, " (16-bit count)"},
    {"\tMedia Type                : ", kBpbMedia, kMediaType},
    {"\tNumber of Sectors in FAT  : ", kBpbFatSize16, kLe16, " (16-bit count)"},
    {"\tSectors/Track             : ", kBpbSectorsPerTrack, kLe16},
    {"\tNumber Of Heads           : ", kBpbHeads, kLe16},
    {"\tHidden Sectors            : ", kBpbHiddenSectors, kLe32},
    {"\tTotal Sectors On Volume   : ", kBpbTotalSectors32, kLe32, " (32-bit count)"},
};
static_assert(FieldsFit(kFields, 512));

}  // namespace

void PrintFatBpb(SectorView bootSector) {
  report << LineEnd;
  PrintHeading("BIOS Parameter Block", "\t");
  PrintFields(bootSector, kFields);
}

}  // namespace trovisk
