// FAT BIOS parameter block: the geometry of a volume, the same 25 bytes for every FAT type.
//
// Stands at 0x00B of a FAT boot sector. Little-endian.
// Layout: Microsoft, "FAT: General Overview of On-Disk Format", boot sector and BPB structure.
// Nothing is checked; both total sector counts are shown, whichever of them is in use.

#include "mbr/fat_bpb.h"

#include <iostream>

#include "frame/field_table.h"
#include "frame/fields.h"

namespace trovisk {
namespace {

constexpr FieldRow kFields[] = {
    {"\tBytes/Sector              : ", 0x00, Format::kLe16},
    {"\tSectors/Cluster           : ", 0x02, Format::kU8},
    {"\tReserved Sector Count     : ", 0x03, Format::kLe16},
    {"\tNumber of FATs            : ", 0x05, Format::kU8},
    {"\tRoot Entry Count          : ", 0x06, Format::kLe16},
    {"\tTotal Sectors On Volume   : ", 0x08, Format::kLe16, 2, " (16-bit count)"},
    {"\tMedia Type                : ", 0x0A, Format::kMediaType},
    {"\tNumber of Sectors in FAT  : ", 0x0B, Format::kLe16, 2, " (16-bit count)"},
    {"\tSectors/Track             : ", 0x0D, Format::kLe16},
    {"\tNumber Of Heads           : ", 0x0F, Format::kLe16},
    {"\tHidden Sectors            : ", 0x11, Format::kLe32},
    {"\tTotal Sectors On Volume   : ", 0x15, Format::kLe32, 4, " (32-bit count)"},
};
static_assert(FieldsFit(kFields, kFatBpbSize));

}  // namespace

void PrintFatBpb(FixedBytes<kFatBpbSize> bpb) {
  std::cout << LineEnd;
  PrintHeading("BIOS Parameter Block", "\t");
  PrintFields(bpb, kFields);
}

}  // namespace trovisk
