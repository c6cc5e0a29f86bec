// What names on a disk can send to a terminal.

#include "tests/support/terminal.h"

#include <gtest/gtest.h>

#include "tests/disks/bitlocker.h"
#include "tests/disks/fat.h"
#include "tests/disks/gpt.h"
#include "tests/disks/ldm.h"
#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

std::string ReportOn(Disk disk, bool terminal) {
  return RunInProcess({.disk = std::move(disk), .terminal = terminal}).out;
}

Disk DiskWithVolume(u8 type) {
  Disk disk(2000);
  PutBootRecord(disk, 0, {.entries = {{.type = type, .first = 63, .count = 1001}}});
  return disk;
}

// A disk whose NTFS volume names its boot file in control characters.
Disk NtfsDisk() {
  Disk disk = DiskWithVolume(0x07);
  PutNtfsBootSector(disk, 63, {.messages = {"\x1b[2J", "\x9b", "\x07", "\x7f"}});
  PutNtfsBootCode(disk, 64, {.loader = u"\u001b[2J\u007f\u009b", .index = u"$I30"});
  return disk;
}

Disk FatDiskWithNames() {
  Disk disk = DiskWithVolume(0x06);
  PutFatBootSector(
      disk, 63, {.oemName = "\x1b[2JFAT\x9b", .label = "\x07\x1b]0;hello\n", .code = BootCode::kFatMsWin41});
  disk.At(63).Text(0x1D8, "\x1b[2J\x9b\x07\x7fSYSX");
  return disk;
}

// Every unit from 1 to 0x20, and those around 0x7F and the surrogates.
Disk GptDisk() {
  Disk disk(200);
  std::u16string low;
  for (char16_t unit = 1; unit <= 0x20; ++unit)
    low += unit;
  PutGpt(disk, {{.first = 40, .last = 49, .name = low},
                {.first = 50, .last = 59, .name = u"\u007f\u0080\u009b\u009f\u00a0\xD800x"}});
  return disk;
}

Disk DynamicDisk() {
  Disk disk(300);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x42}}});
  PutPrivhead(disk, 6, {.diskId = "\x1b[2J", .groupName = "\x9b\x07\r\n", .configStart = 100, .tocSize = 9});
  return disk;
}

TEST(Terminal, NamesCannotControlIt) {
  for (const Disk& disk : {NtfsDisk(), FatDiskWithNames(), GptDisk(), DynamicDisk()}) {
    const std::string report = ReportOn(disk, true);
    const std::size_t at = ControlCharacter(report);
    EXPECT_EQ(at, kNone) << report.substr(at == kNone ? 0 : at, 80);
  }
}

// In a file or a pipe these two stand as they are on the disk.
TEST(Terminal, StoredNamesAreWholeElsewhere) {
  EXPECT_NE(ReportOn(NtfsDisk(), false).find("\nBoot Files : \x1b[2J\x7f?, $I30\n"), std::string::npos);
  EXPECT_NE(ReportOn(NtfsDisk(), true).find("\nBoot Files : ?[2J??, $I30\n"), std::string::npos);
  const std::string label = "\nSystem File #1                : [ ";
  EXPECT_NE(ReportOn(FatDiskWithNames(), false).find(label + "\x1b[2J\x9b\x07\x7f.SYSX ]\n"),
            std::string::npos);
  EXPECT_NE(ReportOn(FatDiskWithNames(), true).find(label + "?[2J???.SYSX ]\n"), std::string::npos);
}

// The one byte that goes out as it is, everywhere.
TEST(Terminal, BitLockersEntrySizeIsTheException) {
  Disk disk = DiskWithVolume(0x07);
  PutBitLocker(disk, 63, BitLockerVista{.mftEntrySize = 0x1B});
  const std::string report = ReportOn(disk, true);
  EXPECT_NE(ControlCharacter(report), kNone);
  EXPECT_EQ(ControlCharacter(WithoutRawBytes(report)), kNone);
}

// A listing is there before the disk is asked for anything more, which may take its time.
TEST(Terminal, ListingLeavesAtOnce) {
  Disk disk(100);
  disk.At(5).Text(0, "five");
  disk.At(6).Text(0, "six");
  const MemoryOutcome outcome = RunOnMemory({.disk = disk, .terminal = true}, {"mem", "5", "6"});
  EXPECT_EQ(outcome.calls.order, std::string("WW"    // banner, an empty line
                                             "OGL"   // open
                                             "WWWW"  // last sector, request, an empty line, the pass
                                             "SRS"   // loading pass: sector 0, seek back for its dump
                                             "W"     // an empty line
                                             "SRS"   // printing pass: sector 0 is not shown
                                             "SWRW"  // sector 5: header line, listing
                                             "SWRW"  // sector 6
                                             "C"));
}

TEST(Terminal, ControlCharactersAreRecognised) {
  EXPECT_EQ(ControlCharacter("plain\ttext\n"), kNone);
  EXPECT_EQ(ControlCharacter(std::string("NUL\0", 4)), kNone);
  EXPECT_EQ(ControlCharacter("\xC2\xA0\xF0\x9F\x92\xBF"), kNone);
  for (const char* text : {"a\x1b", "a\r", "a\x7f", "a\x9b", "a\xC2\x9b", "a\xC3", "a\xF8\x80"})
    EXPECT_EQ(ControlCharacter(text), 1u) << text;
}

}  // namespace
}  // namespace trovisk::test
