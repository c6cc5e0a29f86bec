// FAT bootstrap areas: the code of a FAT boot sector, and the extended BIOS parameter block in front of it.
//
// The extended block stands at 0x024, the code at 0x03E (FAT12, FAT16) or 0x05A (FAT32). Little-endian.
// Layout: Microsoft, "FAT: General Overview of On-Disk Format", boot sector and BPB structure; system files
// and messages lie where the named code keeps them.
// Checked: the code against the known releases', the extended boot signature. Texts end with the sector,
// wherever the code's message tables point.

#include "mbr/fat_bootstrap.h"

#include <algorithm>
#include <iostream>
#include <span>

#include "frame/field_table.h"
#include "frame/fields.h"
#include "mbr/fat_bpb.h"
#include "refimages/catalogue.h"

namespace trovisk {
namespace {

constexpr u8 kSignatureWithVolume = 0x29;  // serial number, label and file system type are present
constexpr std::size_t kEndMark = 0x1FE;    // 0x55 0xAA

// FAT32 alone has these fields, and in front of the others.
constexpr FieldRow kFat32FatSize[] = {
    {"Number of Sectors in FAT      : ", 0x024, Format::kLe32, 4, " (32-bit count)"},
};
constexpr std::size_t kVersion = 0x02A;  // two bytes, the minor one first
constexpr FieldRow kFat32Sectors[] = {
    {"First Cluster Of Root Dir     : ", 0x02C, Format::kLe32},
    {"Sector Number of FSINFO       : ", 0x030, Format::kLe16},
    {"Backup Boot Sector            : ", 0x032, Format::kLe16},
};
static_assert(FieldsFit(kFat32FatSize, 512) && FieldsFit(kFat32Sectors, 512));

// The fields that every FAT type has, at other places in FAT12 and FAT16 than in FAT32.
struct ExtendedBpb {
  std::span<const FieldRow> drive;
  std::size_t signature;
  std::span<const FieldRow> volume;  // only where the signature says so
};

constexpr FieldRow kFat16Drive[] = {
    {"Drive Number                  : 0x", 0x024, Format::kHexBytes, 1},
    {"Extended Boot Signature Byte  : 0x", 0x026, Format::kHexBytes, 1},
};
constexpr FieldRow kFat16Volume[] = {
    {"Volume Serial Number          : 0x", 0x027, Format::kHexBytes, 4},  // in storage order
    {"Volume Label                  : [ ", 0x02B, Format::kChars, 11, " ]"},
    {"File System Type              : [ ", 0x036, Format::kChars, 8, " ]"},
};
constexpr ExtendedBpb kFat16Extended = {kFat16Drive, 0x026, kFat16Volume};
static_assert(FieldsFit(kFat16Drive, 512) && FieldsFit(kFat16Volume, 512));

constexpr FieldRow kFat32Drive[] = {
    {"Drive Number                  : 0x", 0x040, Format::kHexBytes, 1},
    {"Extended Boot Signature Byte  : 0x", 0x042, Format::kHexBytes, 1},
};
constexpr FieldRow kFat32Volume[] = {
    {"Volume Serial Number          : 0x", 0x043, Format::kHexBytes, 4},
    {"Volume Label                  : [ ", 0x047, Format::kChars, 11, " ]"},
    {"File System Type              : [ ", 0x052, Format::kChars, 8, " ]"},
};
constexpr ExtendedBpb kFat32Extended = {kFat32Drive, 0x042, kFat32Volume};
static_assert(FieldsFit(kFat32Drive, 512) && FieldsFit(kFat32Volume, 512));

// Where known code keeps the names of the system files that it loads, and its messages.
enum class Plan {
  kThreeFiles,   // three names; three messages, one behind the other
  kOffsetTable,  // one name; the low bytes of the addresses of three messages
  kWindows8,     // one name; the addresses of two messages, 16 bits each
};

struct Variant {
  BootCode code;
  Plan plan;
  std::string_view heading;
  std::size_t systemFile;    // of the first name
  std::size_t firstMessage;  // offset of the first message
  std::size_t table = 0;     // of the messages' addresses
};

// In the order of the comparison.
constexpr Variant kFat12Variants[] = {
    {BootCode::kFatMsDos50, Plan::kOffsetTable, "MSDOS5.0 Bootstrap", 0x1A1, 0x1AC, 0x1FB},
};
constexpr Variant kFat16Variants[] = {
    {BootCode::kFatMsWin41, Plan::kThreeFiles, "MSWIN4.1 Bootstrap", 0x1D8, 0x184},
    {BootCode::kFatMsDos50, Plan::kOffsetTable, "MSDOS5.0 Bootstrap", 0x1A1, 0x1AC, 0x1FB},
};
constexpr Variant kFat32Variants[] = {
    {BootCode::kFat32MsWin41, Plan::kThreeFiles, "MSWIN4.1 Bootstrap", 0x1D8, 0x182},
    {BootCode::kFat32MsDos50, Plan::kOffsetTable, "MSDOS5.0 Bootstrap", 0x170, 0x1AC, 0x1F9},
    {BootCode::kFat32Vista, Plan::kOffsetTable, "Windows Vista Bootstrap", 0x169, 0x1AC, 0x1F9},
    {BootCode::kFat32Windows8, Plan::kWindows8, "Windows 8 Bootstrap", 0x16D, 0x1AC, 0x1F8},
};

constexpr std::size_t kFileNameSize = 11;
constexpr std::size_t kSecondFile = 0x1E3;  // where there are three names
constexpr std::size_t kThirdFile = 0x1F1;

const Variant* IdentifyCode(std::span<const Variant> variants, SectorView boot) {
  const auto found = std::find_if(variants.begin(), variants.end(),
                                  [&](const Variant& variant) { return Matches(variant.code, boot); });
  return found == variants.end() ? nullptr : &*found;
}

void PrintSystemFile(Bytes name) {
  std::cout << "System File                   : [ ";
  PrintChars(name);
  std::cout << " ]" << LineEnd << LineEnd;
}

// Name and extension as they stand on the disk, without blanks. The dot stands before the eighth byte, so
// that a name of eight letters shows its last one behind the dot.
void PrintNumberedSystemFile(int number, Bytes name) {
  std::cout << "System File #" << number << "                : [ ";
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (i == 7) std::cout << ".";
    const char character = static_cast<char>(name[i]);
    if (character != ' ') PrintAsStored({&character, 1});
  }
  std::cout << " ]" << LineEnd;
}

// The text from a position to the first byte that is 0 or 0xFF, or to the sector's end.
Bytes MessageAt(SectorView boot, u64 position) {
  const Bytes rest = FromAt(boot, position);
  const auto end = std::find_if(rest.begin(), rest.end(), [](u8 byte) { return byte == 0 || byte == 0xFF; });
  return rest.first(static_cast<std::size_t>(end - rest.begin()));
}

constexpr std::string_view kMessageSeparator = "               : [ ";

void PrintSequentialMessages(const Variant& variant, SectorView boot) {
  u64 position = variant.firstMessage;
  for (int number = 1; number <= 3; ++number) {
    const Bytes text = MessageAt(boot, position);
    PrintErrorMessage(number, kMessageSeparator, text);
    position += text.size() + 1;
  }
}

void PrintMessagesByTable(const Variant& variant, SectorView boot) {
  const Bytes addresses = SliceAt(boot, variant.table, 3);
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    // A smaller address than the first one's places the text before the base.
    PrintErrorMessage(static_cast<int>(i) + 1, kMessageSeparator,
                      MessageAt(boot, variant.firstMessage + addresses[i] - addresses[0]));
  }
}

void PrintWindows8Messages(const Variant& variant, SectorView boot) {
  const i32 distance = i32{Le16At(boot, variant.table + 2)} - i32{Le16At(boot, variant.table)};
  std::cout << "Error Message#1 [ ";
  PrintCharsN(FromAt(boot, variant.firstMessage), distance - 1);
  std::cout << " ]" << LineEnd << "Error Message#2 [ ";
  // Before the sector's start, the sum wraps and lies outside: no text.
  PrintChars(FromAt(boot, variant.firstMessage + static_cast<u64>(i64{distance})));
  std::cout << " ]" << LineEnd;
}

void PrintFilesAndMessages(const Variant& variant, SectorView boot) {
  const Bytes systemFile = SliceAt(boot, variant.systemFile, kFileNameSize);
  switch (variant.plan) {
    case Plan::kThreeFiles:
      PrintNumberedSystemFile(1, systemFile);
      PrintNumberedSystemFile(2, Part<kSecondFile, kFileNameSize>(boot));
      PrintNumberedSystemFile(3, Part<kThirdFile, kFileNameSize>(boot));
      PrintSequentialMessages(variant, boot);
      break;
    case Plan::kOffsetTable:
      PrintSystemFile(systemFile);
      PrintMessagesByTable(variant, boot);
      break;
    case Plan::kWindows8:
      PrintSystemFile(systemFile);
      PrintWindows8Messages(variant, boot);
      break;
  }
  std::cout << LineEnd;
}

void PrintFat32Fields(SectorView boot) {
  PrintFields(boot, kFat32FatSize);
  std::cout << "Filesystem Version            : " << unsigned{U8<kVersion>(boot)} << "."
            << unsigned{U8<kVersion + 1>(boot)} << LineEnd;
  PrintFields(boot, kFat32Sectors);
}

void PrintExtendedBpb(const ExtendedBpb& extended, SectorView boot) {
  PrintFields(boot, extended.drive);
  if (U8At(boot, extended.signature) == kSignatureWithVolume) PrintFields(boot, extended.volume);
}

// What comes before the extended block. Gives the known code's variant, or null.
const Variant* PrintCodeAndBpb(std::span<const Variant> variants, SectorView boot) {
  const Variant* variant = IdentifyCode(variants, boot);
  if (variant != nullptr) {
    PrintCodeSection(variant->heading, StretchOf(variant->code, boot));
  } else {
    std::cout << LineEnd;
  }
  PrintFatBpb(Part<kFatBpb, kFatBpbSize>(boot));
  std::cout << LineEnd;
  return variant;
}

// What comes behind it.
void PrintRest(const Variant* variant, SectorView boot) {
  if (variant != nullptr) PrintFilesAndMessages(*variant, boot);
  std::cout << "Sector End Mark               : 0x";
  PrintReversedHexBytes(Part<kEndMark, 2>(boot));
  std::cout << LineEnd;
}

}  // namespace

void PrintFat12Bootstrap(SectorView bootSector) {
  const Variant* variant = PrintCodeAndBpb(kFat12Variants, bootSector);
  PrintExtendedBpb(kFat16Extended, bootSector);
  PrintRest(variant, bootSector);
}

void PrintFat16Bootstrap(SectorView bootSector) {
  const Variant* variant = PrintCodeAndBpb(kFat16Variants, bootSector);
  PrintExtendedBpb(kFat16Extended, bootSector);
  PrintRest(variant, bootSector);
}

void PrintFat32Bootstrap(SectorView bootSector) {
  const Variant* variant = PrintCodeAndBpb(kFat32Variants, bootSector);
  PrintFat32Fields(bootSector);
  PrintExtendedBpb(kFat32Extended, bootSector);
  PrintRest(variant, bootSector);
}

}  // namespace trovisk
