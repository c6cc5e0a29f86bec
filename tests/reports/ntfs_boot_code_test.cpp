// Reports and registrations of the sector behind an NTFS boot sector.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/disks/mbr.h"
#include "tests/disks/ntfs.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kVolume = 63;
constexpr u64 kBootCode = 64;

// The volume's other structures stand in one sector behind the boot code.
Disk WithVolume() {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kVolume, .count = 1000}}});
  PutNtfsBootSector(
      disk, kVolume,
      {.sectorsPerCluster = 1, .totalSectors = 900, .mftCluster = 900, .mftMirrorCluster = 900});
  return disk;
}

Disk WithBootCode(const NtfsBootCode& code) {
  Disk disk = WithVolume();
  PutNtfsBootCode(disk, kBootCode, code);
  return disk;
}

std::string Report(const Disk& disk) {
  return ReportOf(disk, kBootCode);
}

// The names as the report lists them.
std::string Names(const Disk& disk) {
  const std::string report = Report(disk);
  const std::string label = "Boot Files : ";
  const std::size_t at = report.find(label) + label.size();
  return report.substr(at, report.find("\n\nBootcode : \n", at) - at);
}

// "NTLDR", "BOOTMGR" or nothing; of the two BOOTMGR layouts the one with a message is "BOOTMGR+".
std::string Variant(const Disk& disk) {
  const std::string report = Report(disk);
  std::string message = report.find("\nMessage : \n") == std::string::npos ? "" : "+";
  for (const std::string name : {"NTLDR", "BOOTMGR"}) {
    if (report.starts_with("Reading sector # 64 [NTFS boot sector +1]\n\n" + name + " variant\n\n")) {
      return name + message;
    }
  }
  return message;
}

// The rows of the table of contents that numbered boot code sectors take.
std::string BootCodeRows(const Disk& disk) {
  const std::string toc = TocOf(disk);
  const std::size_t begin = toc.find("NTFS boot sector +1\n") + 20;
  return toc.substr(begin, toc.find("       963\t") - begin);
}

// The listing of no byte at all: an offset and blanks.
const std::string kEmptyListing =
    "Bootcode : \n\n       00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n\n0x000" + std::string(54, ' ') +
    "\n\n\n";

TEST(NtfsBootCode, Ntldr) {
  const Disk disk = WithBootCode({.loader = u"NTLDR", .codeOffset = 0x78});
  EXPECT_TRUE(SameText(Report(disk), Expected("ntfs_boot_code_ntldr.txt", disk)));
  EXPECT_TRUE(SameText(BootCodeRows(disk),
                       "        65\tNTFS boot sector boot code 2 of 6\n"
                       "        66\tNTFS boot sector boot code 3 of 6\n"
                       "        67\tNTFS boot sector boot code 4 of 6\n"
                       "        68\tNTFS boot sector boot code 5 of 6\n"
                       "        69\tNTFS boot sector boot code 6 of 6\n"));
}

TEST(NtfsBootCode, BootMgrShort) {
  const Disk disk = WithBootCode({.furtherNames = {u"NTLDR"}, .codeOffset = 0x7A});
  EXPECT_TRUE(SameText(Report(disk), Expected("ntfs_boot_code_bootmgr_short.txt", disk)));
  EXPECT_TRUE(SameText(BootCodeRows(disk),
                       "        65\tNTFS boot sector boot code 2 of 8\n"
                       "        66\tNTFS boot sector boot code 3 of 8\n"
                       "        67\tNTFS boot sector boot code 4 of 8\n"
                       "        68\tNTFS boot sector boot code 5 of 8\n"
                       "        69\tNTFS boot sector boot code 6 of 8\n"
                       "        70\tNTFS boot sector boot code 7 of 8\n"
                       "        71\tNTFS boot sector boot code 8 of 8\n"));
}

TEST(NtfsBootCode, BootMgrLong) {
  const Disk disk = WithBootCode({.furtherNames = {u"NTLDR", u"BOOTTGT", u"BOOTNXT"},
                                  .message = "\r\nNo system\afound~",
                                  .codeOffset = 0x119});
  EXPECT_TRUE(SameText(Report(disk), Expected("ntfs_boot_code_bootmgr_long.txt", disk)));
  EXPECT_TRUE(SameText(BootCodeRows(disk),
                       "        65\tNTFS boot sector boot code 2 of 9\n"
                       "        66\tNTFS boot sector boot code 3 of 9\n"
                       "        67\tNTFS boot sector boot code 4 of 9\n"
                       "        68\tNTFS boot sector boot code 5 of 9\n"
                       "        69\tNTFS boot sector boot code 6 of 9\n"
                       "        70\tNTFS boot sector boot code 7 of 9\n"
                       "        71\tNTFS boot sector boot code 8 of 9\n"
                       "        72\tNTFS boot sector boot code 9 of 9\n"));
}

// No variant line, the names, a listing with no byte, nothing registered.
TEST(NtfsBootCode, AnyOtherLoader) {
  const Disk disk = WithBootCode({.loader = u"GRLDR", .furtherNames = {u"A", u"B", u"C"}, .message = "Text"});
  EXPECT_TRUE(SameText(Report(disk),
                       "Reading sector # 64 [NTFS boot sector +1]\n"
                       "Boot Files : GRLDR, $I30\n\n" +
                           kEmptyListing));
  EXPECT_EQ(BootCodeRows(disk), "");
}

// The listing shows no digit above 9, so it does not switch to capitals: a GUID that follows in the same run
// is in small letters. Here the first partition entry of a hybrid disk stands behind the boot code.
TEST(NtfsBootCode, EmptyListingLeavesSmallLetters) {
  const auto run = [](const NtfsBootCode& code) {
    Disk disk;
    PutBootRecord(disk, 0, {.entries = {{.type = 0xEE, .first = 1}, {.type = 0x07, .first = kVolume}}});
    PutGptHeader(disk, 1, {.entriesLba = 65, .entryCount = 4});
    PutGptEntries(disk, 65, {{.type = kLinuxSwapType}});
    PutNtfsBootSector(disk, kVolume, {});
    PutNtfsBootCode(disk, kBootCode, code);
    return RunOn(disk, {"64", "65"}).out;
  };
  EXPECT_NE(run({.loader = u"GRLDR"}).find("{ 0657fd6d-a4ab-43c4-84e5-0933c84b4f4f }"), std::string::npos);
  EXPECT_NE(run({.loader = u"NTLDR"}).find("{ 0657FD6D-A4AB-43C4-84E5-0933C84B4F4F }"), std::string::npos);
}

// Two names of no character are two names.
TEST(NtfsBootCode, EmptySector) {
  EXPECT_TRUE(SameText(Report(WithVolume()),
                       "Reading sector # 64 [NTFS boot sector +1]\nBoot Files : , \n\n" + kEmptyListing));
}

TEST(NtfsBootCode, OnlyTheExactNameCounts) {
  using namespace std::string_view_literals;
  for (const std::u16string_view name :
       {u"NTLD"sv, u"NTLDRX"sv, u"ntldr"sv, u"NTLDR\0"sv, u"NTLDR "sv, u"BOOTMG"sv, u"BOOTMGR2"sv,
        u"bootmgr"sv, u"BOOTMGR\0"sv, u"\0BOOTMGR"sv, u""sv}) {
    EXPECT_EQ(Variant(WithBootCode({.loader = std::u16string(name)})), "") << name.size();
  }
  EXPECT_EQ(Variant(WithBootCode({.loader = u"NTLDR"})), "NTLDR");
  EXPECT_EQ(Variant(WithBootCode({.loader = u"BOOTMGR"})), "BOOTMGR");
}

// The list of further names is BOOTMGR's alone, and makes the long layout only when it has three.
TEST(NtfsBootCode, FurtherNames) {
  const auto with = [](const std::vector<std::u16string>& names) {
    return WithBootCode({.furtherNames = names});
  };
  EXPECT_EQ(Names(with({})), "BOOTMGR, $I30");
  EXPECT_EQ(Names(with({u"A", u"BC"})), "BOOTMGR, $I30, A, BC");
  EXPECT_EQ(Variant(with({u"A", u"BC"})), "BOOTMGR");
  EXPECT_EQ(Names(with({u"A", u"", u"C"})), "BOOTMGR, $I30, A");
  EXPECT_EQ(Names(with({u"A", u"BC", u"DEF", u"G"})), "BOOTMGR, $I30, A, BC, DEF");
  EXPECT_EQ(Variant(with({u"A", u"BC", u"DEF", u"G"})), "BOOTMGR+");
  EXPECT_EQ(Names(WithBootCode({.loader = u"NTLDR", .furtherNames = {u"A", u"B", u"C"}})), "NTLDR, $I30");
}

// One '?' for each code unit that the C locale does not have, so two for a surrogate pair. A name's text ends
// at its first NUL, its place in the list does not depend on it.
TEST(NtfsBootCode, NamesAsNarrowText) {
  using namespace std::string_literals;
  EXPECT_EQ(Names(WithBootCode({.loader = u"\u4E2Da\xD83D\xDE00z", .index = u"\xFFFF\xDC00\xD800"})),
            "?a??z, ???");
  EXPECT_EQ(Names(WithBootCode({.loader = u"AB\0CD"s, .index = u"\0E"s})), "AB, ");
  EXPECT_EQ(Names(WithBootCode({.furtherNames = {u"F\0G"s, u"H", u"\0"s}})), "BOOTMGR, $I30, F, H, ");
}

// A name that would run past the sector ends with it; the next count lies where the uncut count says, and a
// count outside the sector is zero.
TEST(NtfsBootCode, FirstNameRunsPastTheSector) {
  for (const u16 count : std::initializer_list<u16>{256, 0x7FFF, 0x8000, 0xFFFF}) {
    Disk disk = WithVolume();
    disk.At(kBootCode).Le16(0, count).Utf16(2, std::u16string(255, u'n'));
    EXPECT_EQ(Names(disk), std::string(255, 'n') + ", ") << count;
  }
}

TEST(NtfsBootCode, SecondNameAtTheSectorsEnd) {
  struct Case {
    u16 firstCount;
    std::string second;
  };
  // The second count stands in the last word, one word before it, and behind the sector.
  for (const Case& it : {Case{254, ""}, Case{253, "m"}, Case{252, "mm"}, Case{255, ""}}) {
    Disk disk = WithVolume();
    const std::size_t secondCount = 2 + 2 * std::size_t{it.firstCount};
    disk.At(kBootCode).Le16(0, it.firstCount).Utf16(2, std::u16string(it.firstCount, u'n'));
    for (std::size_t at = secondCount; at < 512; at += 2)
      disk.At(kBootCode).Le16(at, at == secondCount ? 0xFFFF : u'm');
    EXPECT_EQ(Names(disk), std::string(it.firstCount, 'n') + ", " + it.second);
  }
}

// A further name that is cut counts. Behind the first one's uncut end there is no second; the third may be
// cut or have no character left in the sector.
TEST(NtfsBootCode, FurtherNamesAtTheSectorsEnd) {
  const auto cut = [](std::u16string_view second, u16 thirdCount) {
    Disk disk = WithBootCode({.furtherNames = {u"A", std::u16string(second)}});
    disk.At(kBootCode).Le16(0x60 + 2 * second.size(), thirdCount);
    return disk;
  };
  Disk disk = WithBootCode({});
  disk.At(kBootCode).Le16(0x5A, 0xFFFF).Utf16(0x5C, u"first");
  EXPECT_EQ(Variant(disk), "BOOTMGR");
  EXPECT_EQ(Names(disk), "BOOTMGR, $I30, first");
  disk = cut(u"B", 0xFFFF);
  disk.At(kBootCode).Utf16(0x64, u"third");
  EXPECT_EQ(Variant(disk), "BOOTMGR+");
  EXPECT_EQ(Names(disk), "BOOTMGR, $I30, A, B, third");
  // The third count is the sector's last word: zero, one, the greatest; with one more character before it, it
  // lies outside.
  const std::u16string full(207, u'b');
  EXPECT_EQ(Variant(cut(full, 0)), "BOOTMGR");
  EXPECT_EQ(Variant(cut(full, 1)), "BOOTMGR+");
  EXPECT_EQ(Variant(cut(full, 0xFFFF)), "BOOTMGR+");
  EXPECT_EQ(Names(cut(full, 0xFFFF)), "BOOTMGR, $I30, A, " + std::string(207, 'b') + ", ");
  disk = cut(u"", 0);
  disk.At(kBootCode).Le16(0x5E, 208).Utf16(0x60, std::u16string(208, u'b'));
  EXPECT_EQ(Variant(disk), "BOOTMGR");
  EXPECT_EQ(Names(disk), "BOOTMGR, $I30, A, " + std::string(208, 'b'));
}

TEST(NtfsBootCode, MessageTakesAtMost125Bytes) {
  const auto message = [](const std::string& text) {
    const std::string report =
        Report(WithBootCode({.furtherNames = {u"A", u"B", u"C"}, .message = text, .codeOffset = 0x119}));
    const std::string label = "\n\nMessage : \n\n";
    const std::size_t at = report.find(label) + label.size();
    return report.substr(at);
  };
  const std::string end = "\n\n\n\n";
  EXPECT_TRUE(SameText(message(""), end));
  EXPECT_TRUE(SameText(message("\r\n\t\x7F\xFF \""), "<CR><LF><0x09><0x7F><0xFF> \"" + end));
  EXPECT_TRUE(SameText(message(std::string(124, 'x') + "yz"), std::string(124, 'x') + "y" + end));
}

// The sectors behind are shown as they are, zeros too, and lead the pass on.
TEST(NtfsBootCode, NumberedSectorIsListed) {
  Disk disk = WithBootCode({.loader = u"NTLDR"});
  disk.At(69).Text(0x1F0, "the last row");
  EXPECT_TRUE(
      SameText(ReportOf(disk, 69),
               ExpandExpected("Reading sector # 69 [NTFS boot sector boot code 6 of 6]\n{{dump 69}}", disk)));
  EXPECT_TRUE(
      SameText(ReportOf(disk, 65),
               ExpandExpected("Reading sector # 65 [NTFS boot sector boot code 2 of 6]\n{{dump 65}}", disk)));
}

// Larger sectors hold the same 512 bytes at their beginning; the rest is not read as names or code.
TEST(NtfsBootCode, On2048ByteSectors) {
  Disk disk(2048, 2048);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kVolume, .count = 1000}}});
  PutNtfsBootSector(disk, kVolume, {});
  PutNtfsBootCode(disk, kBootCode, {.loader = u"NTLDR", .codeOffset = 0x78});
  disk.At(kBootCode).Fill(0x200, 0x600, 0xEE);
  EXPECT_TRUE(SameText(Report(disk), Expected("ntfs_boot_code_ntldr.txt", disk)));
}

}  // namespace
}  // namespace trovisk::test
