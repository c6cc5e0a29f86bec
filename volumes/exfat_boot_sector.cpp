// exFAT boot sector: the main boot sector of an exFAT volume.
//
// Stands in the first sector of the volume; 512 bytes whatever the sector size. Little-endian.
// Layout: Microsoft, "exFAT file system", main boot sector; the messages and their offsets lie where the
// Windows boot code keeps them.
// Checked: end mark. Not checked: all other fields; shifts are taken modulo 32.

#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "refimages/boot_sector.h"
#include "refimages/catalogue.h"
#include "volumes/exfat_layout.h"

namespace trovisk {
namespace {

constexpr std::size_t kMessages = 0x16C;
constexpr std::size_t kMessageOffsets = 0x1FB;  // u8 each: low byte of the offset of messages 1 to 3

constexpr FieldRow kExtentFields[] = {
    {"Partition Offset          : ", kExFatPartitionOffset, kLe64, " (sectors)"},
    {"Volume Length             : ", kExFatVolumeLength, kLe64, " (sectors)"},
    {"FAT Offset                : ", kExFatFatOffset, kLe32, " (sectors)"},
    {"FAT Length                : ", kExFatFatLength, kLe32, " (sectors)"},
    {"Cluster Heap Offset       : ", kExFatClusterHeapOffset, kLe32, " (sectors)"},
    {"Cluster Count             : ", kExFatClusterCount, kLe32},
    {"Root Directory Cluster    : ", kExFatRootCluster, kLe32},
    {"Volume Serial Number      : ", kExFatSerialNumber, HexBytes(4)},
};
constexpr FieldRow kDriveFields[] = {
    {"Number of FATs            : ", kExFatFatCount, kU8},
    {"Drive Select              : 0x", kExFatDriveSelect, HexBytes(1), " (Extended INT 13H drive number)"},
    {"Percent In Use            : ", kExFatPercentInUse, kU8},
};
static_assert(FieldsFit(kExtentFields, 512) && FieldsFit(kDriveFields, 512));

// A volume flag: its line when it is set and, for some, when it is clear.
struct FlagLine {
  unsigned bit;
  std::string_view set;
  std::string_view clear;
};

constexpr FlagLine kFlagLines[] = {
    {0, "\tActive FAT 1", "\tActive FAT 0"},
    {1, "\tVolume Dirty", "\tVolume Clean"},
    {2, "\tMedia Failure", "\tNo Media Failure"},
    {3, "\tClear To Zero", ""},
};

// Of an exponent of two, counted modulo 32.
void PrintPowerOfTwo(std::string_view label, FixedBytes<1> exponent) {
  PrintNotedLine(label, exponent, [&] { report << (u32{1} << (exponent[0] % 32)); });
}

void PrintVolumeFlags(FixedBytes<2> field) {
  const unsigned flags = Le16<0>(field);
  report << "Volume Flags" << LineEnd;
  const NotedField noted("Volume Flags", field);
  for (const FlagLine& line : kFlagLines) {
    const std::string_view text = (flags >> line.bit & 1) != 0 ? line.set : line.clear;
    if (!text.empty()) report << text << LineEnd;
  }
  report << LineEnd;
}

// The first message stands at the start of the area, the others at the distance of their offset from its own.
// A bound is one less than the message takes on disk, its NUL; where the offsets do not ascend it wraps to a
// number beyond the sector, and the text ends at its NUL or at the sector's end.
void PrintMessages(SectorView boot) {
  const u64 first = U8<kMessageOffsets>(boot);
  const u64 second = U8<kMessageOffsets + 1>(boot);
  const u64 third = U8<kMessageOffsets + 2>(boot);
  constexpr u64 kLastMessageEnd = 72;  // from the start of the area
  PrintErrorMessage(1, " [ ", SliceAt(boot, kMessages, second - first - 1));
  PrintErrorMessage(2, " [ ", SliceAt(boot, kMessages + (second - first), third - second - 1));
  PrintErrorMessage(3, " [ ", SliceAt(boot, kMessages + (third - first), first - third + kLastMessageEnd));
  report << LineEnd;
}

void PrintReport(SectorView boot) {
  report << LineEnd;
  PrintHeading("Windows exFAT Boot Sector");
  PrintFields(boot, kBootSectorStart);
  report << LineEnd;
  PrintFields(boot, kExtentFields);
  PrintNotedLine("File System Revision      : ", Part<kExFatRevisionMinor, 2>(boot), [&] {
    PrintTwoDigits(U8<kExFatRevisionMajor>(boot));
    report << ".";
    PrintTwoDigits(U8<kExFatRevisionMinor>(boot));
  });
  report << LineEnd;

  PrintVolumeFlags(Part<kExFatVolumeFlags, 2>(boot));
  PrintPowerOfTwo("Bytes / Sector            : ", Part<kExFatSectorShift, 1>(boot));
  PrintPowerOfTwo("Sectors / Cluster         : ", Part<kExFatClusterShift, 1>(boot));
  PrintFields(boot, kDriveFields);

  PrintCodeSection("Windows exFAT Bootstrap Code", StretchOf(BootCode::kExFat, boot));
  PrintMessages(boot);
  PrintFields(boot, kBootSectorEnd);
  report << LineEnd;
}

}  // namespace

u64 DecodeExFatBootSector(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView boot(*record);
  if (!CheckEndMark(boot, "exFAT boot sector", sector)) return kEndPass;
  if (print) PrintReport(boot);
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
