// Reports of the known loaders in a master boot record: their code, messages and disk time stamp.

#include <gtest/gtest.h>

#include "tests/disks/boot_code.h"
#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

using namespace std::string_view_literals;

// Three texts back to back, with a line break, a byte that does not print, and an empty one.
constexpr std::string_view kTexts = "First text\r\n\0Second\x07 \xC4\0\0"sv;

// Of the loaders of two pieces this puts the first.
Sector& PutLoader(Disk& disk, BootCode code) {
  Sector& mbr = PutBootRecord(disk, 0, {.diskSignature = 0x1234ABCD});
  PutInventedCode(mbr, code);
  return mbr;
}

Sector& PutWindows95B(Disk& disk) {
  Sector& mbr = PutLoader(disk, BootCode::kMbrWindows95B);
  PutInventedCode(mbr, BootCode::kMbrWindows95BContinued);
  return mbr.Text(0x10F, kTexts);
}

// Drive 0x8A, 9:05:59.
void PutTimeStamp(Sector& mbr) {
  mbr.Bytes(0x0DC, {0x8A, 59, 5, 9});
}

// The messages of a report: from the first one's line to the next empty line.
std::string MessagesOf(const std::string& report) {
  const std::size_t first = report.find("Error Message#");
  return first == std::string::npos ? std::string()
                                    : report.substr(first, report.find("\n\n", first) + 1 - first);
}

TEST(MbrLoader, MsDos330) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrMsDos330).Text(0x08B, kTexts);
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_ms_dos_330.txt", disk)));
}

// The time stamp stands where the texts could: here it lies behind them.
TEST(MbrLoader, MsDos330WithTimeStamp) {
  Disk disk;
  PutTimeStamp(PutLoader(disk, BootCode::kMbrMsDos330).Text(0x08B, kTexts));
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_ms_dos_330_time_stamp.txt", disk)));
}

TEST(MbrLoader, Windows95B) {
  Disk disk;
  PutWindows95B(disk);
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_windows_95b.txt", disk)));
}

TEST(MbrLoader, Windows95BWithTimeStamp) {
  Disk disk;
  PutTimeStamp(PutWindows95B(disk));
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_windows_95b_time_stamp.txt", disk)));
}

// A drive number of zero means that there is none, whatever the other three bytes hold.
TEST(MbrLoader, TimeStampOfDriveZeroIsNone) {
  Disk disk;
  PutWindows95B(disk).Bytes(0x0DC, {0x00, 59, 5, 9});
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_windows_95b.txt", disk)));
}

// Times are printed as found.
TEST(MbrLoader, TimeStampBeyondADay) {
  Disk disk;
  PutWindows95B(disk).Bytes(0x0DC, {0x01, 60, 100, 255});
  EXPECT_NE(
      ReportOf(disk, 0).find("\n\nDrive Number     : 0x01\nLast Access Time : 255:100:60\n\n\tWindows 95(B"),
      std::string::npos);
}

// The code stands on both sides of the time stamp, and both pieces must match.
TEST(MbrLoader, OnePieceOfWindows95BIsUnknown) {
  for (const BootCode piece : {BootCode::kMbrWindows95B, BootCode::kMbrWindows95BContinued}) {
    Disk disk;
    PutLoader(disk, piece);
    EXPECT_TRUE(
        ReportOf(disk, 0, "\tUnknown Boot Loader Code\n")
            .starts_with("Reading sector # 0 [Master Boot Record]\n\tUnknown Boot Loader Code\n\nMBR\n---\n"
                         "Disk Signature   : 0x1234ABCD\n\n\nPartition table entries\n"));
  }
}

TEST(MbrLoader, OneByteOffIsUnknown) {
  for (const BootCode code : {BootCode::kMbrMsDos330, BootCode::kMbrWindows2000, BootCode::kMbrUsbKey,
                              BootCode::kMbrWindowsVista, BootCode::kMbrWindows2008R2}) {
    const std::size_t length = RowOf(code).length;
    for (const std::size_t changed : {std::size_t{0}, length - 1}) {
      SCOPED_TRACE(changed);
      Disk disk;
      Sector& mbr = PutLoader(disk, code);
      mbr.U8(changed, U8At(mbr.View(), changed) ^ 1U);
      EXPECT_EQ(MessagesOf(ReportOf(disk, 0, "\tUnknown Boot Loader Code\n")), "");
    }
  }
}

// What follows the compared stretch differs from release to release.
TEST(MbrLoader, ByteBehindTheCodeIsNotCompared) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrUsbKey).Text(135, "X");
  EXPECT_EQ(MessagesOf(ReportOf(disk, 0)),
            "Error Message#1  : [ X ]\nError Message#2  : [  ]\nError Message#3  : [  ]\n");
}

TEST(MbrLoader, Windows2000) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrWindows2000).Text(0x12C, kTexts).Bytes(0x1B5, {0x2C, 0x39, 0x43});
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_windows_2000.txt", disk)));
}

TEST(MbrLoader, UsbKey) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrUsbKey).Text(0x087, kTexts);
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_usb_key.txt", disk)));
}

TEST(MbrLoader, WindowsVista) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrWindowsVista).Text(0x162, kTexts).Bytes(0x1B5, {0x62, 0x6F, 0x79});
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_windows_vista.txt", disk)));
}

TEST(MbrLoader, Windows2008R2) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrWindows2008R2).Text(0x163, kTexts).Bytes(0x1B5, {0x63, 0x70, 0x7A});
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_windows_2008_r2.txt", disk)));
}

// The first offset only sets where the others count from: the first text stands at the loader's own place.
TEST(MbrLoader, OffsetsCountFromTheFirstOne) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrWindows2000)
      .Text(0x12C, "One\0Two\0Three\0"sv)
      .Bytes(0x1B5, {0x90, 0x94, 0x98});
  EXPECT_EQ(MessagesOf(ReportOf(disk, 0)),
            "Error Message#1 : [ One ]\nError Message#2 : [ Two ]\nError Message#3 : [ Three ]\n");
}

// The last two bytes of this code are 0x5E 0x65: the text begins in the code and runs on into the first one.
TEST(MbrLoader, OffsetBelowTheFirstOneReachesBackIntoTheCode) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrWindows2000).Text(0x12C, "One\0Two\0"sv).Bytes(0x1B5, {0x2C, 0x2A, 0x30});
  EXPECT_EQ(MessagesOf(ReportOf(disk, 0)),
            "Error Message#1 : [ One ]\nError Message#2 : [ ^eOne ]\nError Message#3 : [ Two ]\n");
}

// 255 below the base is still inside the sector: bytes 0x2D to 0x2F of the code are 0x73 0x7A 0x81.
TEST(MbrLoader, OffsetsFarthestFromTheFirstOne) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrWindows2000).Text(0x12C, "One\0"sv).Bytes(0x1B5, {0xFF, 0x00, 0xFF});
  const std::string messages = MessagesOf(ReportOf(disk, 0));
  EXPECT_TRUE(messages.starts_with("Error Message#1 : [ One ]\nError Message#2 : [ sz<0x81><0x88>"))
      << messages;
  EXPECT_TRUE(messages.ends_with(" ]\nError Message#3 : [ One ]\n")) << messages;
}

// From 0x12C: 0x1FE and 0x1FF are the end mark's bytes, the sector's last.
TEST(MbrLoader, TextWithoutEndStopsAtTheLastByte) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrWindows2000).Bytes(0x1B5, {0x00, 0xD2, 0xD3});
  EXPECT_EQ(MessagesOf(ReportOf(disk, 0)),
            "Error Message#1 : [  ]\nError Message#2 : [ U<0xAA> ]\nError Message#3 : [ <0xAA> ]\n");
}

// From 0x163: 0x200 is the first byte behind the record, 0x262 the farthest an offset reaches. On large
// sectors these bytes exist, but are no part of the record.
TEST(MbrLoader, TextsBehindTheRecordAreEmpty) {
  for (const u32 sectorSize : {512U, 4096U}) {
    Disk disk(64, sectorSize);
    Sector& mbr = PutLoader(disk, BootCode::kMbrWindows2008R2).Bytes(0x1B5, {0x00, 0x9D, 0xFF});
    if (sectorSize > 512) mbr.Fill(0x200, 0x100, 'x');
    EXPECT_EQ(MessagesOf(ReportOf(disk, 0)),
              "Error Message#1 : [  ]\nError Message#2 : [  ]\nError Message#3 : [  ]\n");
  }
}

// The second text takes all that is left, the third begins behind the record.
TEST(MbrLoader, SequentialTextsWithoutEnd) {
  Disk disk;
  PutLoader(disk, BootCode::kMbrUsbKey).Text(0x087, "One\0"sv).Fill(0x08B, 0x200 - 0x08B, 'B');
  EXPECT_EQ(MessagesOf(ReportOf(disk, 0)), "Error Message#1  : [ One ]\nError Message#2  : [ " +
                                               std::string(0x200 - 0x08B, 'B') +
                                               " ]\nError Message#3  : [  ]\n");
}

// The first text ends with the record's last byte, so the others begin behind it.
TEST(MbrLoader, SequentialTextEndingWithTheRecord) {
  Disk disk;
  PutWindows95B(disk).Fill(0x10F, 0x1FF - 0x10F, 'C').U8(0x1FF, 0);
  EXPECT_EQ(MessagesOf(ReportOf(disk, 0)), "Error Message#1  : [ " + std::string(0x1FF - 0x10F, 'C') +
                                               " ]\nError Message#2  : [  ]\nError Message#3  : [  ]\n");
}

// The build that is shipped has no digest of the USB key code, and knows none of the tests' code.
TEST(MbrLoader, ShippedCatalogueDoesNotKnowInventedCode) {
  for (const BootCode code : {BootCode::kMbrUsbKey, BootCode::kMbrWindowsVista}) {
    Disk disk;
    PutLoader(disk, code);
    const Outcome outcome = RunOn(disk, {"0"}, Build::kShipped);
    EXPECT_TRUE(outcome.out.starts_with(Preamble(disk, " sector 0", "\tUnknown Boot Loader Code\n")))
        << outcome.out;
  }
}

}  // namespace
}  // namespace trovisk::test
