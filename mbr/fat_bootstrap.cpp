// FAT bootstrap areas: the code of a FAT boot sector, and the extended BIOS parameter block in front of it.
//
// The extended block stands at 0x024, the code at 0x03E (FAT12, FAT16) or 0x05A (FAT32). Little-endian.
// Layout: Microsoft, "FAT: General Overview of On-Disk Format", boot sector and BPB structure; system files
// and messages lie where the named code keeps them.
// Checked: the code against the known releases', the extended boot signature. Texts end with the sector,
// wherever the code's message tables point.

#include "mbr/fat_bootstrap.h"

#include <algorithm>

#include "frame/report/noted_field.h"
#include "frame/report/verbs.h"
#include "mbr/fat_bpb.h"
#include "refimages/boot_sector.h"

namespace trovisk {
namespace {

constexpr u8 kSignatureWithVolume = 0x29;  // serial number, label and file system type are present

// FAT32 alone has these fields, and in front of the others.
constexpr FieldRow kFat32FatSizeRow[] = {
    {"Number of Sectors in FAT      : ", kFat32FatSize, kLe32, " (32-bit count)"},
};
constexpr FieldRow kFat32Sectors[] = {
    {"First Cluster Of Root Dir     : ", kFat32RootCluster, kLe32},
    {"Sector Number of FSINFO       : ", kFat32FsInfo, kLe16},
    {"Backup Boot Sector            : ", kFat32BackupBoot, kLe16},
};
static_assert(FieldsFit(kFat32FatSizeRow, 512) && FieldsFit(kFat32Sectors, 512));

constexpr FieldRow kFat16DriveRows[] = {
    {"Drive Number                  : 0x", kFat16Drive, HexBytes(1)},
    {"Extended Boot Signature Byte  : 0x", kFat16Signature, HexBytes(1)},
};
constexpr FieldRow kFat16VolumeRows[] = {
    {"Volume Serial Number          : 0x", kFat16VolumeSerial, HexBytes(4)},  // in storage order
    {"Volume Label                  : [ ", kFat16VolumeLabel, Chars(11), " ]"},
    {"File System Type              : [ ", kFat16FsType, Chars(8), " ]"},
};
constexpr FatExtendedBpb kFat16Extended = {kFat16DriveRows, kFat16Signature, kFat16VolumeRows};
static_assert(FieldsFit(kFat16DriveRows, 512) && FieldsFit(kFat16VolumeRows, 512));

constexpr FieldRow kFat32DriveRows[] = {
    {"Drive Number                  : 0x", kFat32Drive, HexBytes(1)},
    {"Extended Boot Signature Byte  : 0x", kFat32Signature, HexBytes(1)},
};
constexpr FieldRow kFat32VolumeRows[] = {
    {"Volume Serial Number          : 0x", kFat32VolumeSerial, HexBytes(4)},
    {"Volume Label                  : [ ", kFat32VolumeLabel, Chars(11), " ]"},
    {"File System Type              : [ ", kFat32FsType, Chars(8), " ]"},
};
constexpr FatExtendedBpb kFat32Extended = {kFat32DriveRows, kFat32Signature, kFat32VolumeRows};
static_assert(FieldsFit(kFat32DriveRows, 512) && FieldsFit(kFat32VolumeRows, 512));

constexpr FatCode kFat12Codes[] = {
    {BootCode::kFatMsDos50, FatCodePlan::kOffsetTable, "MSDOS5.0 Bootstrap", 0x1A1, 0x1AC, 0x1FB},
};
constexpr FatCode kFat16Codes[] = {
    {BootCode::kFatMsWin41, FatCodePlan::kThreeFiles, "MSWIN4.1 Bootstrap", 0x1D8, 0x184},
    {BootCode::kFatMsDos50, FatCodePlan::kOffsetTable, "MSDOS5.0 Bootstrap", 0x1A1, 0x1AC, 0x1FB},
};
constexpr FatCode kFat32Codes[] = {
    {BootCode::kFat32MsWin41, FatCodePlan::kThreeFiles, "MSWIN4.1 Bootstrap", 0x1D8, 0x182},
    {BootCode::kFat32MsDos50, FatCodePlan::kOffsetTable, "MSDOS5.0 Bootstrap", 0x170, 0x1AC, 0x1F9},
    {BootCode::kFat32Vista, FatCodePlan::kOffsetTable, "Windows Vista Bootstrap", 0x169, 0x1AC, 0x1F9},
    {BootCode::kFat32Windows8, FatCodePlan::kWindows8, "Windows 8 Bootstrap", 0x16D, 0x1AC, 0x1F8},
};

constexpr std::size_t kFileNameSize = 11;
constexpr std::size_t kSecondFile = 0x1E3;  // where there are three names
constexpr std::size_t kThirdFile = 0x1F1;

const FatCode* IdentifyCode(std::span<const FatCode> codes, SectorView boot) {
  const auto found =
      std::find_if(codes.begin(), codes.end(), [&](const FatCode& row) { return Matches(row.code, boot); });
  return found == codes.end() ? nullptr : &*found;
}

void PrintSystemFile(Bytes name) {
  PrintNotedLine(
      "System File                   : [ ", name, [&] { PrintChars(name); }, " ]");
  report << LineEnd;
}

// Name and extension as they stand on the disk, without blanks. The dot stands before the eighth byte, so
// that a name of eight letters shows its last one behind the dot.
void PrintNumberedSystemFile(unsigned number, Bytes name) {
  const auto print = [&] {
    for (std::size_t i = 0; i < name.size(); ++i) {
      if (i == 7) report << ".";
      const char character = static_cast<char>(name[i]);
      if (character != ' ') PrintAsStored({&character, 1});
    }
  };
  report << "System File #" << number;
  PrintNotedLine("                : [ ", name, print, " ]");
}

// The text from a position to the first byte that is 0 or 0xFF, or to the sector's end.
Bytes MessageAt(SectorView boot, u64 position) {
  const Bytes rest = FromAt(boot, position);
  const auto end = std::find_if(rest.begin(), rest.end(), [](u8 byte) { return byte == 0 || byte == 0xFF; });
  return rest.first(static_cast<std::size_t>(end - rest.begin()));
}

constexpr std::string_view kMessageSeparator = "               : [ ";

void PrintSequentialMessages(const FatCode& code, SectorView boot) {
  u64 position = code.firstMessage;
  for (std::size_t number = 1; number <= 3; ++number) {
    const Bytes text = MessageAt(boot, position);
    PrintErrorMessage(number, kMessageSeparator, text);
    position += text.size() + 1;
  }
}

void PrintMessagesByTable(const FatCode& code, SectorView boot) {
  const Bytes addresses = SliceAt(boot, code.table, 3);
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    // A smaller address than the first one's places the text before the base.
    PrintErrorMessage(i + 1, kMessageSeparator,
                      MessageAt(boot, code.firstMessage + addresses[i] - addresses[0]));
  }
}

void PrintWindows8Messages(const FatCode& code, SectorView boot) {
  const i32 distance = i32{Le16At(boot, code.table + 2)} - i32{Le16At(boot, code.table)};
  report << "Error Message#1 [ ";
  PrintCharsN(FromAt(boot, code.firstMessage), distance - 1);
  report << " ]" << LineEnd;
  report << "Error Message#2 [ ";
  // Before the sector's start, the sum wraps and lies outside: no text.
  PrintChars(FromAt(boot, code.firstMessage + static_cast<u64>(i64{distance})));
  report << " ]" << LineEnd;
}

void PrintFilesAndMessages(const FatCode& code, SectorView boot) {
  const Bytes systemFile = SliceAt(boot, code.systemFile, kFileNameSize);
  switch (code.plan) {
    case FatCodePlan::kThreeFiles:
      PrintNumberedSystemFile(1, systemFile);
      PrintNumberedSystemFile(2, Part<kSecondFile, kFileNameSize>(boot));
      PrintNumberedSystemFile(3, Part<kThirdFile, kFileNameSize>(boot));
      PrintSequentialMessages(code, boot);
      break;
    case FatCodePlan::kOffsetTable:
      PrintSystemFile(systemFile);
      PrintMessagesByTable(code, boot);
      break;
    case FatCodePlan::kWindows8:
      PrintSystemFile(systemFile);
      PrintWindows8Messages(code, boot);
      break;
  }
  report << LineEnd;
}

void PrintFat32Fields(SectorView boot) {
  PrintFields(boot, kFat32FatSizeRow);
  const auto version = Part<kFat32Version, 2>(boot);
  PrintNotedLine("Filesystem Version            : ", version,
                 [&] { report << version[0] << "." << version[1]; });
  PrintFields(boot, kFat32Sectors);
}

void PrintExtendedBpb(const FatExtendedBpb& extended, SectorView boot) {
  PrintFields(boot, extended.drive);
  if (U8At(boot, extended.signature) == kSignatureWithVolume) PrintFields(boot, extended.volume);
}

}  // namespace

const std::array<FatType, 3> kFatTypes = {{
    {"FAT12 Boot Sector", 4084, false, kFat12Codes, kFat16Extended},
    {"FAT16 Boot Sector", 65524, false, kFat16Codes, kFat16Extended},
    {"FAT32 Boot Sector", ~u32{0}, true, kFat32Codes, kFat32Extended},
}};

void PrintFatBootstrap(const FatType& type, SectorView bootSector) {
  const FatCode* const code = IdentifyCode(type.codes, bootSector);
  if (code != nullptr) {
    PrintCodeSection(code->heading, StretchOf(code->code, bootSector));
  } else {
    report << LineEnd;
  }
  PrintFatBpb(bootSector);
  report << LineEnd;
  if (type.rootInClusters) PrintFat32Fields(bootSector);
  PrintExtendedBpb(type.extended, bootSector);
  if (code != nullptr) PrintFilesAndMessages(*code, bootSector);
  PrintFields(bootSector, kBootSectorEnd);
}

}  // namespace trovisk
