// BitLocker boot sector: what an encrypted volume shows in the clear.
//
// Stands in the first sector of the volume. Little-endian. Two layouts, told apart by the jump instruction:
// Windows Vista's has the BIOS parameter block of NTFS, that of Windows 7 and later the one of FAT32 and
// behind it the places of the encryption's own metadata. Nothing is registered: the volume's content is not
// readable. Layout: Microsoft, BIOS parameter blocks of NTFS and FAT32; the fields of BitLocker as observed
// on disks. Checked: the end mark. Not checked: offsets of the messages, whose texts end with the sector.

#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "frame/sector.h"
#include "refimages/boot_sector.h"
#include "volumes/bitlocker_layout.h"

namespace trovisk {
namespace {

constexpr FieldRow kCommon[] = {
    {"Jump Instruction To Boot Code          : ", kJump, BracketedHexBytes(3)},
    {"OEM Name                               : [ ", kOemName, Chars(8), " ]"},
    {"Bytes/Sector                           : ", kBpbBytesPerSector, kLe16},
    {"Sectors/Cluster                        : ", kBpbSectorsPerCluster, kU8},
    {"Reserved Sector Count                  : ", kBpbReservedSectors, kLe16},
    {"Number of FATs                         : ", kBpbFatCount, kU8},
    {"Root Directory Entries                 : ", kBpbRootEntries, kLe16},
    {"Total Sectors (16-bit)                 : ", kBpbTotalSectors16, kLe16},
    {"Media Type                             : ", kBpbMedia, kMediaType},
    {"Sectors/FAT (16-bit)                   : ", kBpbFatSize16, kLe16},
    {"Sectors/Track                          : ", kBpbSectorsPerTrack, kLe16},
    {"Number Of Heads                        : ", kBpbHeads, kLe16},
    {"Hidden Sectors                         : ", kBpbHiddenSectors, kLe32},
    {"Total Sectors (32-bit)                 : ", kBpbTotalSectors32, kLe32},
};
constexpr FieldRow kEnd[] = {
    {"Sector End Mark                        : 0x", kEndMark, ReversedHexBytes(2)},
};

// Windows Vista
constexpr std::size_t kVistaCode = 0x054;  // to the end mark

constexpr FieldRow kVistaBeforeMftEntrySize[] = {
    {"Disk Unit Number                       : 0x", 0x024, HexBytes(1)},
    {"Flags                                  : 0x", 0x025, HexBytes(1)},
    {"BPB Version Signature Byte             : 0x", 0x026, HexBytes(1)},
    {"Reserved                               : 0x", 0x027, HexBytes(1)},
    {"Total Sectors (64-bit)                 : ", kNtfsTotalSectors, kLe64},
    {"MFT Cluster Block Number               : ", kNtfsMft, kLe64},
    {"FVE Metadata Blocl 1 Cluster           : ", kNtfsMftMirror, kLe64},  // sic; instead of the MFT's mirror
};
constexpr FieldRow kVistaBehindMftEntrySize[] = {
    {"Unknown #1                             : 0x", 0x041, HexBytes(3)},
    {"Index Entry Size                       : ", kNtfsIndexBlock, kU8},
    {"Unknown #2                             : 0x", 0x045, HexBytes(3)},
    {"Volume Serial Number                   : 0x", kNtfsVolumeSerial, VolumeSerial(8)},
    {"Checksum                               : 0x", kNtfsChecksum, ReversedHexBytes(4)},
};

// Windows 7
constexpr std::size_t kSevenCode = 0x05A;  // 70 bytes
constexpr std::size_t kSevenCodeSize = 70;
constexpr std::size_t kSevenMessages = 0x100;        // where the first message would stand at an offset of 0
constexpr std::size_t kSevenMessageOffsets = 0x1FB;  // u8 each, of 3 messages

constexpr FieldRow kSevenFields[] = {
    // Lies inside this layout's serial number, and is shown as in the other layout all the same.
    {"Index Entry Size                       : ", kNtfsIndexBlock, kU8},
    {"Sectors/FAT (32-bit)                   : ", kFat32FatSize, kLe32},
    {"FAT Flags                              : 0x0000", kFat32Flags,
     ReversedHexBytes(2)},  // in twice its width
    {"Cluster Number Of Root Directory Start : ", kFat32RootCluster, kLe32},
    {"Sector Number Of FS information Sector : ", kFat32FsInfo, kLe16},
    {"Sector Number Of Boot Sector Copy      : ", kFat32BackupBoot, kLe16},
    {"Reserved #1                            : 0x", 0x034, HexBytes(12)},
    {"Physical Drive Number                  : 0x", kFat32Drive, HexBytes(1)},
    {"Reserved #2                            : 0x", 0x041, HexBytes(1)},
    {"Extended Boot Signature                : 0x", kFat32Signature, HexBytes(1)},
    {"Volume Serial Number                   : 0x", kFat32VolumeSerial, VolumeSerial(4)},
    {"Volume Label                           : \"", kFat32VolumeLabel, Chars(11), "\""},
    {"Filesystem Signature                   : \"", kFat32FsType, Chars(8), "\""},
};
constexpr FieldRow kSevenGuid[] = {
    {"Bitlocker GUID                         : { ", kBitLockerGuid, kGuidText, " }"},
};
constexpr FieldRow kSevenMetadata[] = {
    {"FVE Metadata Block 1 Offset (bytes)    : ", kBitLockerMetadata, kLe64},
    {"FVE Metadata Block 2 Offset (bytes)    : ", kBitLockerMetadata + 8, kLe64},
    {"FVE Metadata Block 3 Offset (bytes)    : ", kBitLockerMetadata + 16, kLe64},
};

static_assert(FieldsFit(kCommon, 512) && FieldsFit(kEnd, 512) && FieldsFit(kVistaBeforeMftEntrySize, 512) &&
              FieldsFit(kVistaBehindMftEntrySize, 512) && FieldsFit(kSevenFields, 512) &&
              FieldsFit(kSevenGuid, 512) && FieldsFit(kSevenMetadata, 512));

void PrintVista(SectorView boot) {
  PrintFields(boot, kVistaBeforeMftEntrySize);
  PrintNotedLine("MFT Entry Size                         : ", Part<kNtfsFileRecordSegment, 1>(boot),
                 [&] { PrintRawByte(U8<kNtfsFileRecordSegment>(boot)); });
  PrintFields(boot, kVistaBehindMftEntrySize);
  PrintCodeSection("Windows Vista Bitlocker Bootstrap Code", Part<kVistaCode, kEndMark - kVistaCode>(boot));
  report << LineEnd;
}

// Eight to a line, later lines below the first one's values; an empty line behind the last.
void PrintByteList(std::string_view label, Bytes bytes) {
  PrintNotedLine(label, bytes, [&] {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (i != 0 && i % 8 == 0) report << LineEnd << std::string(label.size(), ' ');
      report << "0x";
      PrintHexByte(bytes[i]);
      report << " ";
    }
  });
  report << LineEnd;
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
  report << LineEnd;
}

void PrintSeven(SectorView boot) {
  PrintFields(boot, kSevenFields);
  PrintCodeSection("Windows 7 Bitlocker Bootstrap Code", Part<kSevenCode, kSevenCodeSize>(boot));
  PrintFields(boot, kSevenGuid);
  report << LineEnd;
  PrintFields(boot, kSevenMetadata);
  report << LineEnd;
  PrintByteList("Zeroes                                 : ", Part<0x0C8, 56>(boot));
  PrintByteList("Unknown [0x00]                         : ", Part<0x148, 80>(boot));
  PrintByteList("Unknown [0x78]                         : ", Part<0x198, 80>(boot));
  PrintByteList("Unknown [0xFF]                         : ", Part<0x1E8, 19>(boot));
  const auto offsets = Part<kSevenMessageOffsets, 3>(boot);
  PrintNotedLine("Message Offsets                        : ", offsets, [&] {
    for (const u8 offset : offsets) {
      PrintBracketedHexBytes({&offset, 1});
      report << " ";
    }
  });
  PrintMessages(boot);
}

// The layouts, told apart by the second byte of the jump instruction EB xx 90.
struct BitLockerLayout {
  u8 jump;
  std::string_view heading;
  void (*print)(SectorView boot);
};

constexpr BitLockerLayout kLayouts[] = {
    {kBitLockerJumpVista, "Windows Vista Bitlocker Boot Sector", PrintVista},
    {kBitLockerJumpSeven, "Windows 7 Bitlocker Boot Sector", PrintSeven},
};

const BitLockerLayout* LayoutOf(SectorView boot) {
  const auto jump = Part<kJump, 3>(boot);
  for (const BitLockerLayout& layout : kLayouts) {
    if (jump[0] == 0xEB && jump[1] == layout.jump && jump[2] == 0x90) return &layout;
  }
  return nullptr;
}

void PrintReport(SectorView boot) {
  const BitLockerLayout* const layout = LayoutOf(boot);
  const std::string_view heading = layout != nullptr ? layout->heading : "Unknown Bitlocker Boot Sector";
  report << LineEnd;
  PrintHeading(heading, heading.size() + 1);  // one hyphen more than the heading has characters
  PrintFields(boot, kCommon);
  if (layout != nullptr) layout->print(boot);
  PrintFields(boot, kEnd);
  report << LineEnd;
}

}  // namespace

u64 DecodeBitLockerBootSector(WideText description, u64 sector, bool print) {
  const auto record = OpenRecord(description, sector, print);
  if (!record) return kEndPass;
  const SectorView boot(*record);
  if (!CheckEndMark(boot, "Bitlocker boot sector", sector)) return kEndPass;
  if (print) PrintReport(boot);
  return sector + 1;
}

}  // namespace trovisk
