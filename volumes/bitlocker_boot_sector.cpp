// BitLocker boot sector: what an encrypted volume shows in the clear.
//
// Stands in the first sector of the volume. Little-endian. Two layouts, told apart by the jump instruction:
// Windows Vista's has the BIOS parameter block of NTFS, that of Windows 7 and later the one of FAT32 and
// behind it the places of the encryption's own metadata. Nothing is registered: the volume's content is not
// readable. Layout: Microsoft, BIOS parameter blocks of NTFS and FAT32; the fields of BitLocker as observed
// on disks. Checked: the end mark. Not checked: offsets of the messages, whose texts end with the sector.

#include <array>
#include <iostream>

#include "frame/decode.h"
#include "frame/decoders.h"
#include "frame/field_table.h"
#include "frame/fields.h"

namespace trovisk {
namespace {

// Both layouts
constexpr std::size_t kJump = 0x000;     // 3 bytes
constexpr std::size_t kOemName = 0x003;  // 8 characters
constexpr std::size_t kEndMark = 0x1FE;  // 0x55 0xAA

constexpr FieldRow kCommon[] = {
    {"OEM Name                               : [ ", kOemName, Format::kChars, 8, " ]"},
    {"Bytes/Sector                           : ", 0x00B, Format::kLe16},
    {"Sectors/Cluster                        : ", 0x00D, Format::kU8},
    {"Reserved Sector Count                  : ", 0x00E, Format::kLe16},
    {"Number of FATs                         : ", 0x010, Format::kU8},
    {"Root Directory Entries                 : ", 0x011, Format::kLe16},
    {"Total Sectors (16-bit)                 : ", 0x013, Format::kLe16},
    {"Media Type                             : ", 0x015, Format::kMediaType},
    {"Sectors/FAT (16-bit)                   : ", 0x016, Format::kLe16},
    {"Sectors/Track                          : ", 0x018, Format::kLe16},
    {"Number Of Heads                        : ", 0x01A, Format::kLe16},
    {"Hidden Sectors                         : ", 0x01C, Format::kLe32},
    {"Total Sectors (32-bit)                 : ", 0x020, Format::kLe32},
};

// Windows Vista
constexpr std::size_t kVistaMftEntrySize = 0x040;  // u8
constexpr std::size_t kVistaCode = 0x054;          // to the end mark

constexpr FieldRow kVistaBeforeMftEntrySize[] = {
    {"Disk Unit Number                       : 0x", 0x024, Format::kHexBytes, 1},
    {"Flags                                  : 0x", 0x025, Format::kHexBytes, 1},
    {"BPB Version Signature Byte             : 0x", 0x026, Format::kHexBytes, 1},
    {"Reserved                               : 0x", 0x027, Format::kHexBytes, 1},
    {"Total Sectors (64-bit)                 : ", 0x028, Format::kLe64},
    {"MFT Cluster Block Number               : ", 0x030, Format::kLe64},
    {"FVE Metadata Blocl 1 Cluster           : ", 0x038, Format::kLe64},
};
constexpr FieldRow kVistaBehindMftEntrySize[] = {
    {"Unknown #1                             : 0x", 0x041, Format::kHexBytes, 3},
    {"Index Entry Size                       : ", 0x044, Format::kU8},
    {"Unknown #2                             : 0x", 0x045, Format::kHexBytes, 3},
    {"Volume Serial Number                   : 0x", 0x048, Format::kVolumeSerial},
    {"Checksum                               : 0x", 0x050, Format::kReversedHexBytes, 4},
};

// Windows 7
constexpr std::size_t kSevenFatFlags = 0x028;      // u16
constexpr std::size_t kSevenVolumeSerial = 0x043;  // u32
constexpr std::size_t kSevenCode = 0x05A;          // 70 bytes
constexpr std::size_t kSevenCodeSize = 70;
constexpr std::size_t kSevenMessages = 0x100;        // where the first message would stand at an offset of 0
constexpr std::size_t kSevenMessageOffsets = 0x1FB;  // u8 each, of 3 messages

constexpr FieldRow kSevenBeforeFatFlags[] = {
    // 0x044 lies inside this layout's serial number, and is shown as in the other layout all the same.
    {"Index Entry Size                       : ", 0x044, Format::kU8},
    {"Sectors/FAT (32-bit)                   : ", 0x024, Format::kLe32},
};
constexpr FieldRow kSevenBehindFatFlags[] = {
    {"Cluster Number Of Root Directory Start : ", 0x02C, Format::kLe32},
    {"Sector Number Of FS information Sector : ", 0x030, Format::kLe16},
    {"Sector Number Of Boot Sector Copy      : ", 0x032, Format::kLe16},
    {"Reserved #1                            : 0x", 0x034, Format::kHexBytes, 12},
    {"Physical Drive Number                  : 0x", 0x040, Format::kHexBytes, 1},
    {"Reserved #2                            : 0x", 0x041, Format::kHexBytes, 1},
    {"Extended Boot Signature                : 0x", 0x042, Format::kHexBytes, 1},
};
constexpr FieldRow kSevenTexts[] = {
    {"Volume Label                           : \"", 0x047, Format::kChars, 11, "\""},
    {"Filesystem Signature                   : \"", 0x052, Format::kChars, 8, "\""},
};
constexpr FieldRow kSevenGuid[] = {
    {"Bitlocker GUID                         : { ", 0x0A0, Format::kGuid, 16, " }"},
};
constexpr FieldRow kSevenMetadata[] = {
    {"FVE Metadata Block 1 Offset (bytes)    : ", 0x0B0, Format::kLe64},
    {"FVE Metadata Block 2 Offset (bytes)    : ", 0x0B8, Format::kLe64},
    {"FVE Metadata Block 3 Offset (bytes)    : ", 0x0C0, Format::kLe64},
};

static_assert(FieldsFit(kCommon, 512) && FieldsFit(kVistaBeforeMftEntrySize, 512) &&
              FieldsFit(kVistaBehindMftEntrySize, 512) && FieldsFit(kSevenBeforeFatFlags, 512) &&
              FieldsFit(kSevenBehindFatFlags, 512) && FieldsFit(kSevenTexts, 512) &&
              FieldsFit(kSevenGuid, 512) && FieldsFit(kSevenMetadata, 512));

enum class BitLockerLayout { kVista, kSeven, kUnknown };

BitLockerLayout LayoutOf(SectorView boot) {
  const auto jump = Part<kJump, 3>(boot);
  if (jump[0] != 0xEB || jump[2] != 0x90) return BitLockerLayout::kUnknown;
  switch (jump[1]) {
    case 0x52:
      return BitLockerLayout::kVista;
    case 0x58:
      return BitLockerLayout::kSeven;
    default:
      return BitLockerLayout::kUnknown;
  }
}

std::string_view HeadingOf(BitLockerLayout layout) {
  switch (layout) {
    case BitLockerLayout::kVista:
      return "Windows Vista Bitlocker Boot Sector";
    case BitLockerLayout::kSeven:
      return "Windows 7 Bitlocker Boot Sector";
    case BitLockerLayout::kUnknown:
      break;
  }
  return "Unknown Bitlocker Boot Sector";
}

void PrintCommon(SectorView boot, std::string_view heading) {
  std::cout << LineEnd;
  PrintHeading(heading, heading.size() + 1);  // one hyphen more than the heading has characters
  std::cout << "Jump Instruction To Boot Code          : ";
  PrintBracketedHexBytes(Part<kJump, 3>(boot));
  std::cout << LineEnd;
  PrintFields(boot, kCommon);
}

void PrintVista(SectorView boot) {
  PrintFields(boot, kVistaBeforeMftEntrySize);
  // As a character, whatever it is: the one byte of the report that goes out as it stands on the disk.
  std::cout << "MFT Entry Size                         : ";
  std::cout.put(static_cast<char>(U8<kVistaMftEntrySize>(boot))) << LineEnd;
  PrintFields(boot, kVistaBehindMftEntrySize);
  PrintCodeSection("Windows Vista Bitlocker Bootstrap Code", Part<kVistaCode, kEndMark - kVistaCode>(boot));
  std::cout << LineEnd;
}

// Eight to a line, later lines below the first one's values; an empty line behind the last.
void PrintByteList(std::string_view label, Bytes bytes) {
  std::cout << label;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i != 0 && i % 8 == 0) std::cout << LineEnd << std::string(label.size(), ' ');
    std::cout << "0x";
    PrintHexByte(bytes[i]);
    std::cout << " ";
  }
  std::cout << LineEnd << LineEnd;
}

// The first message stands at its own offset, the others at their distance from the first. The first two are
// bounded by the offset of the next: one that is not greater bounds nothing, since the difference wraps.
void PrintMessages(SectorView boot) {
  const auto offsets = Part<kSevenMessageOffsets, 3>(boot);
  const u64 first = offsets[0];
  const u64 second = offsets[1];
  const u64 third = offsets[2];
  PrintErrorMessage(1, " [ ", SliceAt(boot, kSevenMessages + first, second - first - 1));
  PrintErrorMessage(2, " [ ", SliceAt(boot, kSevenMessages + (second - first), third - second - 1));
  PrintErrorMessage(3, " [ ", FromAt(boot, kSevenMessages + (third - first)));
  std::cout << LineEnd;
}

void PrintSeven(SectorView boot) {
  PrintFields(boot, kSevenBeforeFatFlags);
  std::cout << "FAT Flags                              : 0x";
  PrintHex(Le16<kSevenFatFlags>(boot), 8);  // twice the width of the field
  std::cout << LineEnd;
  PrintFields(boot, kSevenBehindFatFlags);
  std::cout << "Volume Serial Number                   : 0x";
  PrintReversedHexBytes(Part<kSevenVolumeSerial, 4>(boot));
  std::cout << " (";
  PrintReversedHexBytes(Part<kSevenVolumeSerial + 2, 2>(boot));
  std::cout << "-";
  PrintReversedHexBytes(Part<kSevenVolumeSerial, 2>(boot));
  std::cout << ")" << LineEnd;
  PrintFields(boot, kSevenTexts);
  PrintCodeSection("Windows 7 Bitlocker Bootstrap Code", Part<kSevenCode, kSevenCodeSize>(boot));
  PrintFields(boot, kSevenGuid);
  std::cout << LineEnd;
  PrintFields(boot, kSevenMetadata);
  std::cout << LineEnd;
  PrintByteList("Zeroes                                 : ", Part<0x0C8, 56>(boot));
  PrintByteList("Unknown [0x00]                         : ", Part<0x148, 80>(boot));
  PrintByteList("Unknown [0x78]                         : ", Part<0x198, 80>(boot));
  PrintByteList("Unknown [0xFF]                         : ", Part<0x1E8, 19>(boot));
  std::cout << "Message Offsets                        : ";
  for (const u8 offset : Part<kSevenMessageOffsets, 3>(boot)) {
    PrintBracketedHexBytes({&offset, 1});
    std::cout << " ";
  }
  std::cout << LineEnd;
  PrintMessages(boot);
}

}  // namespace

u64 DecodeBitLockerBootSector(WideText description, u64 sector, bool print) {
  if (print) PrintSectorHeader(description, sector);
  std::array<u8, 512> buffer{};
  if (!ReadRecord(buffer)) return kEndPass;
  const SectorView boot(buffer);

  if (Le16<kEndMark>(boot) != 0xAA55) {
    std::cout << "Not a valid Bitlocker boot sector end marker @ sector # " << sector << LineEnd;
    return kEndPass;
  }
  if (!print) return sector + 1;
  const BitLockerLayout layout = LayoutOf(boot);
  PrintCommon(boot, HeadingOf(layout));
  if (layout == BitLockerLayout::kVista) PrintVista(boot);
  if (layout == BitLockerLayout::kSeven) PrintSeven(boot);
  std::cout << "Sector End Mark                        : 0x";
  PrintReversedHexBytes(Part<kEndMark, 2>(boot));
  std::cout << LineEnd << LineEnd;
  return sector + 1;
}

}  // namespace trovisk
