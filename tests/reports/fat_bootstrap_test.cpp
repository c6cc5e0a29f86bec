// Reports of FAT bootstrap areas: known code, its system files and messages, the extended parameter block.

#include <gtest/gtest.h>

#include "tests/disks/boot_code.h"
#include "tests/disks/fat.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// One system file, three messages from 0x1AC on, and the table of the low bytes of their addresses.
void PutFileAndMessages(Sector& boot, std::size_t systemFile, std::size_t table) {
  boot.Text(systemFile, "SYSTEM  FIL");
  boot.Text(0x1AC, "\r\nFirst text\xFF").Text(0x1B9, "\r\nSecond\xFF").Text(0x1C2, "\r\nThird\r\n\0"sv);
  boot.Bytes(table, {0xAC, 0xB9, 0xC2});
}

constexpr const char* kFileAndMessages =
    "System File                   : [ SYSTEM  FIL ]\n"
    "\n"
    "Error Message#1               : [ <CR><LF>First text ]\n"
    "Error Message#2               : [ <CR><LF>Second ]\n"
    "Error Message#3               : [ <CR><LF>Third<CR><LF> ]\n"
    "\n";

// The report from a text on, up to but not including another.
std::string Stretch(const std::string& report, std::string_view from, std::string_view before) {
  const std::size_t begin = report.find(from);
  const std::size_t end = report.find(before, begin);
  return begin == std::string::npos || end == std::string::npos ? "not found in:\n" + report
                                                                : report.substr(begin, end - begin);
}

// From the layout's last line to the parameter block: heading and listing of known code.
std::string CodeSection(const Disk& disk) {
  return Stretch(ReportOf(disk, kFatVolume), "First data sector", "\tBIOS Parameter Block");
}

// From the file system type to the end mark: system files and messages.
std::string FilesAndMessages(const Disk& disk) {
  const std::string lines = Stretch(ReportOf(disk, kFatVolume), "File System Type", "Sector End Mark");
  return lines.substr(lines.find('\n') + 1);
}

// Extended fields from the parameter block's end to the end mark.
std::string ExtendedFields(const Disk& disk) {
  const std::string lines = Stretch(ReportOf(disk, kFatVolume), " (32-bit count)\n\n", "Sector End Mark");
  return lines.substr(" (32-bit count)\n\n"sv.size());
}

Disk Fat32WithCode(BootCode code) {
  Disk disk = FatDisk(0x0C);
  PutFat32BootSector(disk, kFatVolume, {.code = code});
  return disk;
}

Disk Fat16WithCode(BootCode code) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {.code = code});
  return disk;
}

// What stands in the place of a code section where no code is known.
constexpr const char* kNoCode16 = "First data sector number      : 176\n\n\n\n";
constexpr const char* kNoCode32 = "First data sector number      : 1295\n\n\n\n";

TEST(FatBootstrap, WholeReportOfFat12) {
  Disk disk = FatDisk(0x01);
  Sector& boot = PutFatBootSector(disk, kFatVolume,
                                  {.oemName = "MSDOS5.0",
                                   .totalSectors16 = kFat12TotalSectors,
                                   .media = 0xF0,
                                   .sectorsPerTrack = 18,
                                   .heads = 2,
                                   .drive = 0x0A,
                                   .label = "TINY VOLUME",
                                   .type = "FAT12   ",
                                   .code = BootCode::kFatMsDos50});
  PutFileAndMessages(boot, 0x1A1, 0x1FB);
  boot.Text(0x1A1, "BOOTFILEBIN");
  EXPECT_TRUE(SameText(ReportOf(disk, kFatVolume), Expected("fat12_msdos50.txt", disk)));
}

TEST(FatBootstrap, WholeReportOfFat16) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {.oemName = "MSWIN4.1", .code = BootCode::kFatMsWin41})
      .Text(0x184, "First\xFFSecond\r\n\0Third\xFF"sv)
      .Text(0x1D8, "AB      EXT")
      .Text(0x1E3, "EIGHTCHRSYS")
      .Text(0x1F1, "SEVENCH BIN");
  EXPECT_TRUE(SameText(ReportOf(disk, kFatVolume), Expected("fat16_mswin41.txt", disk)));
}

TEST(FatBootstrap, WholeReportOfFat32) {
  Disk disk = FatDisk(0x0C);
  Sector& boot = PutFat32BootSector(disk, kFatVolume,
                                    {.versionMinor = 1,
                                     .versionMajor = 2,
                                     .drive = 0x81,
                                     .label = "BIG VOLUME ",
                                     .code = BootCode::kFat32Vista});
  PutFileAndMessages(boot, 0x169, 0x1F9);
  boot.Text(0x169, "LOADER  \0XX"sv);
  EXPECT_TRUE(SameText(ReportOf(disk, kFatVolume), Expected("fat32_vista.txt", disk)));
}

TEST(FatBootstrap, WholeReportOfFat16WithUnknownCode) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {});
  EXPECT_TRUE(SameText(ReportOf(disk, kFatVolume), Expected("fat16_unknown_code.txt", disk)));
}

TEST(FatBootstrap, Fat16MsDos50) {
  Disk disk = Fat16WithCode(BootCode::kFatMsDos50);
  PutFileAndMessages(disk.At(kFatVolume), 0x1A1, 0x1FB);
  EXPECT_TRUE(SameText(CodeSection(disk), ExpandExpected("First data sector number      : 176\n"
                                                         "\n"
                                                         "\n"
                                                         "\tMSDOS5.0 Bootstrap\n"
                                                         "\t------------------\n"
                                                         "\n"
                                                         "{{code 63 62 355}}\n"
                                                         "\n"
                                                         "\n",
                                                         disk)));
  EXPECT_TRUE(SameText(FilesAndMessages(disk), kFileAndMessages));
}

TEST(FatBootstrap, Fat32MsWin41) {
  Disk disk = Fat32WithCode(BootCode::kFat32MsWin41);
  disk.At(kFatVolume)
      .Text(0x182, "\r\nOne\xFFTwo\xFFThree\0"sv)
      .Text(0x1D8, "IO      SYS")
      .Text(0x1E3, "A B C D E F")
      .Text(0x1F1, "NOEXT      ");
  EXPECT_TRUE(SameText(CodeSection(disk), ExpandExpected("First data sector number      : 1295\n"
                                                         "\n"
                                                         "\n"
                                                         "\tMSWIN4.1 Bootstrap\n"
                                                         "\t------------------\n"
                                                         "\n"
                                                         "{{code 63 90 292}}\n"
                                                         "\n"
                                                         "\n",
                                                         disk)));
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File #1                : [ IO.SYS ]\n"
                       "System File #2                : [ ABCD.EF ]\n"
                       "System File #3                : [ NOEXT. ]\n"
                       "Error Message#1               : [ <CR><LF>One ]\n"
                       "Error Message#2               : [ Two ]\n"
                       "Error Message#3               : [ Three ]\n"
                       "\n"));
}

TEST(FatBootstrap, Fat32MsDos50) {
  Disk disk = Fat32WithCode(BootCode::kFat32MsDos50);
  PutFileAndMessages(disk.At(kFatVolume), 0x170, 0x1F9);
  EXPECT_TRUE(SameText(CodeSection(disk), ExpandExpected("First data sector number      : 1295\n"
                                                         "\n"
                                                         "\n"
                                                         "\tMSDOS5.0 Bootstrap\n"
                                                         "\t------------------\n"
                                                         "\n"
                                                         "{{code 63 90 278}}\n"
                                                         "\n"
                                                         "\n",
                                                         disk)));
  EXPECT_TRUE(SameText(FilesAndMessages(disk), kFileAndMessages));
}

TEST(FatBootstrap, Fat32Windows8) {
  Disk disk = Fat32WithCode(BootCode::kFat32Windows8);
  disk.At(kFatVolume)
      .Text(0x16D, "SYSTEM  FIL")
      .Text(0x1AC, "\r\nFirst text\xFF\r\nSecond\xFFtext\0beyond"sv)
      .Le16(0x1F8, 0x81AC)
      .Le16(0x1FA, 0x81B9);
  EXPECT_TRUE(SameText(CodeSection(disk), ExpandExpected("First data sector number      : 1295\n"
                                                         "\n"
                                                         "\n"
                                                         "\tWindows 8 Bootstrap\n"
                                                         "\t-------------------\n"
                                                         "\n"
                                                         "{{code 63 90 275}}\n"
                                                         "\n"
                                                         "\n",
                                                         disk)));
  // The second text ends at its NUL alone.
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [ SYSTEM  FIL ]\n"
                       "\n"
                       "Error Message#1 [ <CR><LF>First text ]\n"
                       "Error Message#2 [ <CR><LF>Second<0xFF>text ]\n"
                       "\n"));
}

// Length: the distance of the two messages less one.
TEST(FatBootstrap, Windows8FirstMessageOfNoLength) {
  Disk disk = Fat32WithCode(BootCode::kFat32Windows8);
  disk.At(kFatVolume).Text(0x1AC, "texttext").Le16(0x1F8, 0x01AC).Le16(0x1FA, 0x01AD);
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [ exttext ]\n\n"));
  disk.At(kFatVolume).Le16(0x1FA, 0x01AC);  // -1
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [ texttext ]\n\n"));
}

// A second message before the first: nothing of the first, and the second's place is followed.
TEST(FatBootstrap, Windows8SecondMessageBeforeTheFirst) {
  Disk disk = Fat32WithCode(BootCode::kFat32Windows8);
  disk.At(kFatVolume).Text(0x1AC - 12, "before\0"sv).Text(0x1AC, "text").Le16(0x1F8, 12).Le16(0x1FA, 0);
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [ before ]\n\n"));
}

// Before the sector's first byte and behind its last there is no text.
TEST(FatBootstrap, Windows8MessagesOutsideTheSector) {
  Disk disk = Fat32WithCode(BootCode::kFat32Windows8);
  // 0x1AD in front of 0x1AC is one byte before the sector.
  disk.At(kFatVolume).Fill(0x1AC, 76, 'x').Le16(0x1F8, 0x01AD).Le16(0x1FA, 0);
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [  ]\n\n"));
  disk.At(kFatVolume).Le16(0x1F8, 0xFFFF).Le16(0x1FA, 0);
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [  ]\n\n"));
  // The largest length: the text ends with the sector. Its last bytes are the messages' addresses, 0x0101 and
  // 0xFFFF, two that are zero in other volumes, and the end mark.
  disk.At(kFatVolume).Le16(0x1F8, 0x0101).Le16(0x1FA, 0xFFFF).Le16(0x1FC, 0x7878);
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1 [ " +
                           std::string(76, 'x') +
                           "<0x01><0x01><0xFF><0xFF>xxU<0xAA> ]\n"
                           "Error Message#2 [  ]\n\n"));
}

// The first byte of the sector is still inside it.
TEST(FatBootstrap, Windows8SecondMessageAtTheSectorsStart) {
  Disk disk = Fat32WithCode(BootCode::kFat32Windows8);
  disk.At(kFatVolume).U8(0x000, 'S').U8(0x001, 'T').U8(0x002, 0).Le16(0x1F8, 0x01AC).Le16(0x1FA, 0);
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1 [  ]\n"
                       "Error Message#2 [ ST ]\n\n"));
}

// A table byte smaller than the first places its text before the base.
TEST(FatBootstrap, MessageBeforeTheBase) {
  Disk disk = Fat16WithCode(BootCode::kFatMsDos50);
  disk.At(kFatVolume)
      .Text(0x1A1, "ABCDEFGHIJK")  // the system file, eleven bytes in front of the base
      .Text(0x1AC, "First\0"sv)
      .Bytes(0x1FB, {0x20, 0x15, 0x1F});
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [ ABCDEFGHIJK ]\n\n"
                       "Error Message#1               : [ First ]\n"
                       "Error Message#2               : [ ABCDEFGHIJKFirst ]\n"
                       "Error Message#3               : [ KFirst ]\n\n"));
}

// The furthest that a table reaches back: 255 bytes, into the code.
TEST(FatBootstrap, MessageFarBeforeTheBase) {
  Disk disk = Fat32WithCode(BootCode::kFat32Vista);
  disk.At(kFatVolume).Bytes(0x1F9, {0xFF, 0x00, 0xFF});
  // The code's bytes from 0x0AD on, which is byte 83 of it: 0x11 + 0x0D * 11 + 7 * 83 = 0xE5 first, and 7
  // more each time: 0xE5, 0xEC, 0xF3, 0xFA, 0x01, ... until one is 0 or 0xFF.
  std::string text;
  char digits[8];
  for (u8 byte = 0xE5; byte != 0 && byte != 0xFF; byte = static_cast<u8>(byte + 7)) {
    if (byte == '\r') {
      text += "<CR>";
    } else if (byte == '\n') {
      text += "<LF>";
    } else if (byte >= 0x20 && byte <= 0x7E) {
      text += static_cast<char>(byte);
    } else {
      std::snprintf(digits, sizeof digits, "<0x%02X>", byte);
      text += digits;
    }
  }
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1               : [  ]\n"
                       "Error Message#2               : [ " +
                           text +
                           " ]\n"
                           "Error Message#3               : [  ]\n\n"));
}

// The last byte of the sector is 0x1FF, 83 behind the base; a text there is the end mark's second byte.
TEST(FatBootstrap, MessagePastTheSector) {
  Disk disk = Fat16WithCode(BootCode::kFatMsDos50);
  disk.At(kFatVolume).Bytes(0x1FB, {0x00, 83, 84});
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1               : [  ]\n"
                       "Error Message#2               : [ <0xAA> ]\n"
                       "Error Message#3               : [  ]\n\n"));
  disk.At(kFatVolume).Bytes(0x1FB, {0x00, 255, 82});
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File                   : [  ]\n\n"
                       "Error Message#1               : [  ]\n"
                       "Error Message#2               : [  ]\n"
                       "Error Message#3               : [ U<0xAA> ]\n\n"));
}

// A text without an end runs to the sector's; the ones behind it have no place.
TEST(FatBootstrap, SequentialMessageWithoutAnEnd) {
  Disk disk = Fat16WithCode(BootCode::kFatMsWin41);
  disk.At(kFatVolume).Fill(0x184, 0x1FE - 0x184, 'y');
  EXPECT_TRUE(SameText(FilesAndMessages(disk),
                       "System File #1                : [ yyyyyyy.yyyy ]\n"
                       "System File #2                : [ yyyyyyy.yyyy ]\n"
                       "System File #3                : [ yyyyyyy.yyyy ]\n"
                       "Error Message#1               : [ " +
                           std::string(0x1FE - 0x184, 'y') +
                           "U<0xAA> ]\n"
                           "Error Message#2               : [  ]\n"
                           "Error Message#3               : [  ]\n\n"));
}

// One ending behind the other: empty texts.
TEST(FatBootstrap, SequentialMessagesWithoutText) {
  Disk disk = Fat32WithCode(BootCode::kFat32MsWin41);
  disk.At(kFatVolume).Text(0x182, "\xFF\0Last\xFFmore"sv);
  EXPECT_TRUE(SameText(FilesAndMessages(disk).substr(Stretch(FilesAndMessages(disk), "S", "Error").size()),
                       "Error Message#1               : [  ]\n"
                       "Error Message#2               : [  ]\n"
                       "Error Message#3               : [ Last ]\n\n"));
}

// The bytes of the three names go out as they are, zeros and controls too; blanks alone are skipped.
TEST(FatBootstrap, NamesGoOutAsTheyAre) {
  Disk disk = Fat16WithCode(BootCode::kFatMsWin41);
  disk.At(kFatVolume).Text(0x1D8, "\x07 \xC4\0A\x1B \n\xFFZ\x01"sv);
  EXPECT_TRUE(SameText(Stretch(FilesAndMessages(disk), "System File #1", "System File #2"),
                       "System File #1                : [ \x07\xC4\0A\x1B.\n\xFFZ\x01 ]\n"s));
}

// Code that differs in its last byte is unknown: no heading, listing, files or messages.
TEST(FatBootstrap, CodeThatDiffersInOneByteIsUnknown) {
  for (const BootCode code : {BootCode::kFatMsWin41, BootCode::kFatMsDos50}) {
    Disk disk = Fat16WithCode(code);
    const BootCodeRow& row = RowOf(code);
    const std::size_t last = row.offset + row.length - 1;
    disk.At(kFatVolume).U8(last, disk.At(kFatVolume).View()[last] ^ 1U);
    EXPECT_TRUE(SameText(CodeSection(disk), kNoCode16));
    EXPECT_EQ(FilesAndMessages(disk), "");
  }
  for (const BootCode code :
       {BootCode::kFat32MsWin41, BootCode::kFat32MsDos50, BootCode::kFat32Vista, BootCode::kFat32Windows8}) {
    Disk disk = Fat32WithCode(code);
    const BootCodeRow& row = RowOf(code);
    const std::size_t last = row.offset + row.length - 1;
    disk.At(kFatVolume).U8(last, disk.At(kFatVolume).View()[last] ^ 1U);
    EXPECT_TRUE(SameText(CodeSection(disk), kNoCode32));
    EXPECT_EQ(FilesAndMessages(disk), "");
  }
}

// Each type knows its own releases' code: MSWIN4.1 code is FAT16's, not FAT12's.
TEST(FatBootstrap, CodeOfAnotherTypeIsUnknown) {
  Disk disk = FatDisk(0x01);
  PutFatBootSector(disk, kFatVolume, {.totalSectors16 = kFat12TotalSectors, .code = BootCode::kFatMsWin41});
  EXPECT_TRUE(SameText(CodeSection(disk), kNoCode16));

  Disk fat32 = Fat32WithCode(BootCode::kFatMsDos50);
  EXPECT_NE(ReportOf(fat32, kFatVolume).find("\nFAT32 Boot Sector\n"), std::string::npos);
  EXPECT_EQ(ReportOf(fat32, kFatVolume).find("Bootstrap"), std::string::npos);
}

TEST(FatBootstrap, OtherExtendedSignatureOmitsTheVolumeFields) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {.extendedSignature = 0x28});
  EXPECT_TRUE(SameText(ExtendedFields(disk),
                       "Drive Number                  : 0x80\n"
                       "Extended Boot Signature Byte  : 0x28\n"));
  Disk fat32 = FatDisk(0x0C);
  PutFat32BootSector(fat32, kFatVolume, {.extendedSignature = 0x00});
  EXPECT_TRUE(SameText(ExtendedFields(fat32),
                       "Number of Sectors in FAT      : 600 (32-bit count)\n"
                       "Filesystem Version            : 0.0\n"
                       "First Cluster Of Root Dir     : 2\n"
                       "Sector Number of FSINFO       : 1\n"
                       "Backup Boot Sector            : 6\n"
                       "Drive Number                  : 0x80\n"
                       "Extended Boot Signature Byte  : 0x00\n"));
}

// Known code shows its files and messages whatever the extended signature says.
TEST(FatBootstrap, OtherExtendedSignatureKeepsFilesAndMessages) {
  Disk disk = FatDisk(0x06);
  Sector& boot = PutFatBootSector(disk, kFatVolume, {.extendedSignature = 0, .code = BootCode::kFatMsDos50});
  PutFileAndMessages(boot, 0x1A1, 0x1FB);
  EXPECT_TRUE(SameText(ExtendedFields(disk),
                       "Drive Number                  : 0x80\n"
                       "Extended Boot Signature Byte  : 0x00\n" +
                           std::string(kFileAndMessages)));
}

// Labels and type texts end at a NUL; what cannot be printed is shown as its number.
TEST(FatBootstrap, LabelAndTypeWithUnprintableBytes) {
  Disk disk = FatDisk(0x06);
  PutFatBootSector(disk, kFatVolume, {.label = "A\x80\r\nB\0CDEFG"sv, .type = "\0FAT16  "sv});
  EXPECT_TRUE(SameText(Stretch(ReportOf(disk, kFatVolume), "Volume Label", "Sector End"),
                       "Volume Label                  : [ A<0x80><CR><LF>B ]\n"
                       "File System Type              : [  ]\n"));
}

// Every field at its largest: two, one and four bytes in decimal.
TEST(FatBootstrap, LargestParameterBlock) {
  Disk disk = FatDisk(0x06);
  PutFat32BootSector(disk, kFatVolume,
                     {.bytesPerSector = 65535,
                      .sectorsPerCluster = 255,
                      .reservedSectors = 65535,
                      .fats = 255,
                      .rootEntries = 65535,
                      .totalSectors16 = 65535,
                      .media = 0xFB,
                      .fatSize16 = 65535,
                      .sectorsPerTrack = 65535,
                      .heads = 65535,
                      .hiddenSectors = 4294967295,
                      .totalSectors32 = 4294967295,
                      .fatSize32 = 4294967295,
                      .versionMinor = 255,
                      .versionMajor = 254,
                      .rootCluster = 4294967295,
                      .fsInfoSector = 65535,
                      .backupSector = 65535,
                      .drive = 0xFF,
                      .serial = 0xFFFFFFFF});
  const std::string report = ReportOf(disk, kFatVolume);
  // 255 * 65535 + 65535 + 32 sectors of metadata on a volume of 65535 wrap to 16776999 clusters: FAT32.
  EXPECT_TRUE(SameText(Stretch(report, "First data", "Volume Label"),
                       "First data sector number      : 16777055\n"
                       "\n"
                       "\n"
                       "\n"
                       "\tBIOS Parameter Block\n"
                       "\t--------------------\n"
                       "\tBytes/Sector              : 65535\n"
                       "\tSectors/Cluster           : 255\n"
                       "\tReserved Sector Count     : 65535\n"
                       "\tNumber of FATs            : 255\n"
                       "\tRoot Entry Count          : 65535\n"
                       "\tTotal Sectors On Volume   : 65535 (16-bit count)\n"
                       "\tMedia Type                : unknown\n"
                       "\tNumber of Sectors in FAT  : 65535 (16-bit count)\n"
                       "\tSectors/Track             : 65535\n"
                       "\tNumber Of Heads           : 65535\n"
                       "\tHidden Sectors            : 4294967295\n"
                       "\tTotal Sectors On Volume   : 4294967295 (32-bit count)\n"
                       "\n"
                       "Number of Sectors in FAT      : 4294967295 (32-bit count)\n"
                       "Filesystem Version            : 255.254\n"
                       "First Cluster Of Root Dir     : 4294967295\n"
                       "Sector Number of FSINFO       : 65535\n"
                       "Backup Boot Sector            : 65535\n"
                       "Drive Number                  : 0xFF\n"
                       "Extended Boot Signature Byte  : 0x29\n"
                       "Volume Serial Number          : 0xFFFFFFFF\n"));
}

}  // namespace
}  // namespace trovisk::test
