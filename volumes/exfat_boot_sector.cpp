// exFAT boot sector: the main boot sector of an exFAT volume.
//
// Stands in the first sector of the volume; 512 bytes whatever the sector size. Little-endian.
// Layout: Microsoft, "exFAT file system", main boot sector; the messages and their offsets lie where the
// Windows boot code keeps them.
// Checked: end mark. Not checked: all other fields; shifts are taken modulo 32.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"

namespace trovisk {
namespace {

constexpr std::size_t kJump = 0x000;               // 3 bytes
constexpr std::size_t kOemName = 0x003;            // 8 bytes
constexpr std::size_t kPartitionOffset = 0x040;    // u64, sectors
constexpr std::size_t kVolumeLength = 0x048;       // u64, sectors
constexpr std::size_t kFatOffset = 0x050;          // u32, sectors
constexpr std::size_t kFatLength = 0x054;          // u32, sectors
constexpr std::size_t kClusterHeapOffset = 0x058;  // u32, sectors
constexpr std::size_t kClusterCount = 0x05C;       // u32
constexpr std::size_t kRootCluster = 0x060;        // u32
constexpr std::size_t kSerialNumber = 0x064;       // 4 bytes
constexpr std::size_t kRevisionMinor = 0x068;      // u8
constexpr std::size_t kRevisionMajor = 0x069;      // u8
constexpr std::size_t kVolumeFlags = 0x06A;        // u16, of which the low four bits have a meaning
constexpr std::size_t kSectorShift = 0x06C;        // u8, bytes per sector as a power of 2
constexpr std::size_t kClusterShift = 0x06D;       // u8, sectors per cluster as a power of 2
constexpr std::size_t kFatCount = 0x06E;           // u8
constexpr std::size_t kDriveSelect = 0x06F;        // u8
constexpr std::size_t kPercentInUse = 0x070;       // u8, 0xFF: unknown
constexpr std::size_t kBootCode = 0x078;           // 244 bytes
constexpr std::size_t kBootCodeSize = 244;
constexpr std::size_t kMessages = 0x16C;
constexpr std::size_t kMessageOffsets = 0x1FB;  // u8 each: low byte of the offset of messages 1 to 3
constexpr std::size_t kEndMark = 0x1FE;         // 0x55 0xAA

constexpr FieldRow kExtentFields[] = {
    {"Partition Offset          : ", kPartitionOffset, Format::kLe64, 0, " (sectors)"},
    {"Volume Length             : ", kVolumeLength, Format::kLe64, 0, " (sectors)"},
    {"FAT Offset                : ", kFatOffset, Format::kLe32, 0, " (sectors)"},
    {"FAT Length                : ", kFatLength, Format::kLe32, 0, " (sectors)"},
    {"Cluster Heap Offset       : ", kClusterHeapOffset, Format::kLe32, 0, " (sectors)"},
    {"Cluster Count             : ", kClusterCount, Format::kLe32},
    {"Root Directory Cluster    : ", kRootCluster, Format::kLe32},
    {"Volume Serial Number      : ", kSerialNumber, Format::kHexBytes, 4},
};
static_assert(FieldsFit(kExtentFields, 512));

constexpr FieldRow kDriveFields[] = {
    {"Number of FATs            : ", kFatCount, Format::kU8},
    {"Drive Select              : 0x", kDriveSelect, Format::kHexBytes, 1,
     " (Extended INT 13H drive number)"},
    {"Percent In Use            : ", kPercentInUse, Format::kU8},
};
static_assert(FieldsFit(kDriveFields, 512));

bool HasEndMark(SectorView boot) {
  return Le16<kEndMark>(boot) == 0xAA55;
}

void PrintVolumeFlags(unsigned flags) {
  std::cout << "Volume Flags" << LineEnd;
  std::cout << ((flags & 1) != 0 ? "\tActive FAT 1" : "\tActive FAT 0") << LineEnd;
  std::cout << ((flags & 2) != 0 ? "\tVolume Dirty" : "\tVolume Clean") << LineEnd;
  std::cout << ((flags & 4) != 0 ? "\tMedia Failure" : "\tNo Media Failure") << LineEnd;
  if ((flags & 8) != 0) std::cout << "\tClear To Zero" << LineEnd;
  std::cout << LineEnd;
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
  std::cout << LineEnd;
}

void PrintReport(SectorView boot) {
  std::cout << LineEnd;
  PrintHeading("Windows exFAT Boot Sector");
  std::cout << "Jump Instruction To Boot Code : ";
  PrintBracketedHexBytes(Part<kJump, 3>(boot));
  std::cout << LineEnd << "OEM Name                      : [ ";
  PrintChars(Part<kOemName, 8>(boot));
  std::cout << " ]" << LineEnd << LineEnd;

  PrintFields(boot, kExtentFields);
  std::cout << "File System Revision      : ";
  PrintTwoDigits(U8<kRevisionMajor>(boot));
  std::cout << ".";
  PrintTwoDigits(U8<kRevisionMinor>(boot));
  std::cout << LineEnd << LineEnd;

  PrintVolumeFlags(Le16<kVolumeFlags>(boot));
  std::cout << "Bytes / Sector            : " << (u32{1} << (U8<kSectorShift>(boot) % 32)) << LineEnd;
  std::cout << "Sectors / Cluster         : " << (u32{1} << (U8<kClusterShift>(boot) % 32)) << LineEnd;
  PrintFields(boot, kDriveFields);

  PrintCodeSection("Windows exFAT Bootstrap Code", Part<kBootCode, kBootCodeSize>(boot));
  PrintMessages(boot);

  std::cout << "Sector End Mark               : 0x";
  PrintReversedHexBytes(Part<kEndMark, 2>(boot));
  std::cout << LineEnd << LineEnd;
}

}  // namespace

u64 DecodeExFatBootSector(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  std::array<u8, 512> record{};
  if (!ReadRecord(record)) return kEndPass;
  const SectorView boot(record);
  if (!HasEndMark(boot)) {
    std::cout << "Not a valid exFAT boot sector end marker @ sector # " << sector << LineEnd;
    return kEndPass;
  }
  if (print) PrintReport(boot);
  return DumpAsRawSector(sector, print);
}

}  // namespace trovisk
