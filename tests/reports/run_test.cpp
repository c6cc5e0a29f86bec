// The command line, the three run modes and the table of contents listing, end to end.

#include <gtest/gtest.h>

#include "tests/disks/mbr.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

const std::string kBanner = "Trovisk version 1.4 built <date>\n\n";
const std::string kTooFar = "There aren't that many sectors on the disk !!\n";

// 100 sectors, a partition that nothing is registered for, text in sectors 5 and 7.
Disk PlainDisk() {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x83, .first = 63, .count = 10}}});
  disk.At(5).Text(0, "five");
  disk.At(7).Text(0, "seven").U8(511, 0xFF);
  return disk;
}

// Extended boot records in sectors 10 and 20, one pointing to the next.
Disk ChainDisk() {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 10, .count = 50}}});
  PutBootRecord(disk, 10, {.entries = {{.type = 0x83, .first = 1, .count = 5}, {.type = 0x0F, .first = 10}}});
  PutBootRecord(disk, 20, {.entries = {{.type = 0x83, .first = 1, .count = 5}}});
  return disk;
}

const std::string kEmptyEntry = "\tEmpty\n\n";

std::string MbrReport(const Disk& disk, const std::string& firstEntry) {
  return ExpandExpected(
      "Reading sector # 0 [Master Boot Record]\n\nMBR\n---\nDisk Signature   : 0x00000000\n\n\n"
      "Partition table entries\n\n" +
          firstEntry + kEmptyEntry + kEmptyEntry + kEmptyEntry +
          "\n\nSector End Mark  : 0xAA55\n\n"
          "Reading sector # 0 [as a raw sector]\n{{dump 0}}\n",
      disk);
}

std::string ChainReport(const Disk& disk, u64 sector, const std::string& entries) {
  const std::string number = std::to_string(sector);
  return ExpandExpected("Reading sector # " + number +
                            " [Supplementary Boot Record]\n\nSupplementary Boot Record\n"
                            "-------------------------\n\nPartition table entries\n\n" +
                            entries + "\n\nSector End Mark : 0xAA\n\nReading sector # " + number +
                            " [as a raw sector]\n{{dump " + number + "}}\n",
                        disk);
}

std::string RawSector(const Disk& disk, u64 sector) {
  const std::string number = std::to_string(sector);
  return ExpandExpected("Reading sector # " + number + " [Raw Sector]\n{{dump " + number + "}}\n", disk);
}

std::string EmptySector(u64 sector) {
  return "Reading sector # " + std::to_string(sector) + " [Raw Sector]\n... empty ...\n";
}

void ExpectRun(const Disk& disk, const std::vector<std::string>& arguments, const std::string& reading,
               const std::string& printed) {
  const Outcome outcome = RunOn(disk, arguments);
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, reading) + printed));
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

void ExpectRefused(const Disk& disk, const std::vector<std::string>& arguments) {
  const Outcome outcome = RunOn(disk, arguments);
  EXPECT_TRUE(
      SameText(outcome.out, kBanner + "Last sector on disk is " + std::to_string(disk.Sectors() - 1) + "\n"));
  EXPECT_EQ(outcome.err, kTooFar);
  EXPECT_EQ(outcome.status, 1);
}

TEST(Arguments, NoneOrFourGiveTheUsageLine) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, {"0", "1", "2", "3"}, {"0", "1", "2", "3", "4"}}) {
    const Outcome outcome = RunProgram(Build::kShipped, arguments);
    EXPECT_EQ(WithoutDate(outcome.out), kBanner);
    EXPECT_EQ(outcome.err,
              "Usage " + ProgramPath(Build::kShipped) + " disk# [first_sector#] [LastSector#]\n");
    EXPECT_EQ(outcome.status, 1);
  }
}

// The shape of the compiler's date macro: a day below ten is padded with a blank.
TEST(Arguments, BannerShowsTheBuildDate) {
  const std::string out = RunProgram(Build::kShipped, {}).out;
  EXPECT_EQ(out.substr(0, 26), "Trovisk version 1.4 built ");
  ASSERT_EQ(out.size(), 26u + 11 + 2);
  EXPECT_NE(std::string("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec").find(out.substr(26, 3)),
            std::string::npos);
  EXPECT_EQ(out.substr(29, 1) + out.substr(32, 1), "  ");
  EXPECT_EQ(out.substr(30, 2).find_first_not_of(" 0123456789"), std::string::npos);
  EXPECT_EQ(out.substr(33, 4).find_first_not_of("0123456789"), std::string::npos);
  EXPECT_EQ(out.substr(37), "\n\n");
}

TEST(Run, WholeDiskShowsRegisteredSectorsAndTheirTable) {
  const Disk disk = ChainDisk();
  ExpectRun(
      disk, {}, " [ whole disk ]",
      MbrReport(disk, "\tInactive [ Extended ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 10 - 59 ]\n\n") +
          ChainReport(disk, 10,
                      "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n"
                      "\tPartition Sectors [ 1 - 5 ]\n\n"
                      "\tInactive [ Win95 Extended (LBA ]\n\tC/H/S 0/0/0 - 0/0/0\n"
                      "\tPartition Sectors [ 10 - 9 ]\n\n") +
          ChainReport(disk, 20,
                      "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n"
                      "\tPartition Sectors [ 1 - 5 ]\n\n" +
                          kEmptyEntry) +
          kTocHeading +
          "         0\tMaster Boot Record\n        10\tSupplementary Boot Record\n"
          "        20\tSupplementary Boot Record\n");
}

TEST(Run, SingleSectorShowsThatOneAlone) {
  ExpectRun(PlainDisk(), {"5"}, " sector 5", RawSector(PlainDisk(), 5));
  ExpectRun(PlainDisk(), {"6"}, " sector 6", EmptySector(6));
}

TEST(Run, RangeShowsEverySectorOfIt) {
  const Disk disk = PlainDisk();
  ExpectRun(disk, {"5", "8"}, " sectors [ 5 - 8 ]",
            RawSector(disk, 5) + EmptySector(6) + RawSector(disk, 7) + EmptySector(8));
  ExpectRun(disk, {"7", "7"}, " sectors [ 7 - 7 ]", RawSector(disk, 7));
}

TEST(Run, RangeShowsRegisteredSectorsByTheirDecoders) {
  const Disk disk = ChainDisk();
  ExpectRun(disk, {"19", "21"}, " sectors [ 19 - 21 ]",
            EmptySector(19) +
                ChainReport(disk, 20,
                            "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n"
                            "\tPartition Sectors [ 1 - 5 ]\n\n" +
                                kEmptyEntry) +
                EmptySector(21));
}

TEST(Run, FirstBehindLastShowsNothing) {
  ExpectRun(PlainDisk(), {"10", "5"}, " sectors [ 10 - 5 ]", "");
}

TEST(Run, LastSectorOfTheDiskIsAccepted) {
  ExpectRun(PlainDisk(), {"99"}, " sector 99", EmptySector(99));
  ExpectRun(PlainDisk(), {"98", "99"}, " sectors [ 98 - 99 ]", EmptySector(98) + EmptySector(99));
}

TEST(Run, SectorBeyondTheDiskIsRefused) {
  ExpectRefused(PlainDisk(), {"100"});
  ExpectRefused(PlainDisk(), {"5", "100"});
  ExpectRefused(PlainDisk(), {"100", "5"});
  ExpectRefused(PlainDisk(), {"-1", "100"});
  ExpectRefused(PlainDisk(), {"100", "-1"});
  ExpectRefused(PlainDisk(), {"9223372036854775807"});
}

TEST(Run, NegativeFirstIsAWholeDisk) {
  const Disk disk = PlainDisk();
  const std::string report =
      MbrReport(disk,
                "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 63 - 72 ]\n\n") +
      kTocHeading + "         0\tMaster Boot Record\n";
  ExpectRun(disk, {"-5"}, " [ whole disk ]", report);
  ExpectRun(disk, {"-1"}, " [ whole disk ]", report);
  ExpectRun(disk, {"-9223372036854775808"}, " [ whole disk ]", report);
  ExpectRun(disk, {"-5", "-5"}, " [ whole disk ]", report);
}

// The last argument is the limit of both passes: sector 20 is registered by sector 10, and neither loaded nor
// printed. From position 1 the entry of sector 10 is loaded, though it lies beyond the limit.
TEST(Run, NegativeFirstWithALastIsAWholeDiskUpToIt) {
  const Disk disk = ChainDisk();
  ExpectRun(
      disk, {"-5", "3"}, " [ whole disk ]",
      MbrReport(disk, "\tInactive [ Extended ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 10 - 59 ]\n\n") +
          kTocHeading +
          "         0\tMaster Boot Record\n        10\tSupplementary Boot Record\n"
          "        20\tSupplementary Boot Record\n");
}

// One sector and no limit: counting through all numbers would show nothing more, and takes no time.
TEST(Run, NegativeLastShowsTheOneSectorAndEnds) {
  ExpectRun(PlainDisk(), {"7", "-1"}, " sector 7", RawSector(PlainDisk(), 7));
  ExpectRun(PlainDisk(), {"7", "-9223372036854775808"}, " sector 7", RawSector(PlainDisk(), 7));
  ExpectRun(
      PlainDisk(), {"0", "-1"}, " sector 0",
      MbrReport(PlainDisk(),
                "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 63 - 72 ]\n\n"));
}

// Reading stops at the first character that cannot go on with the number.
TEST(SectorArguments, AreDecimalNumbersWithAnythingBehindThem) {
  const Disk disk = PlainDisk();
  ExpectRun(disk, {"12abc"}, " sector 12", EmptySector(12));
  ExpectRun(disk, {"  \t\n12 34"}, " sector 12", EmptySector(12));
  ExpectRun(disk, {"+12"}, " sector 12", EmptySector(12));
  ExpectRun(disk, {"012"}, " sector 12", EmptySector(12));
  ExpectRun(disk, {"12.9"}, " sector 12", EmptySector(12));
  ExpectRun(disk, {"12,345"}, " sector 12", EmptySector(12));
  ExpectRun(disk, {"11", "0000000000000000000000000000012x"}, " sectors [ 11 - 12 ]",
            EmptySector(11) + EmptySector(12));
}

TEST(SectorArguments, WithoutANumberAreZero) {
  const Disk disk = PlainDisk();
  const std::string report = MbrReport(
      disk, "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 63 - 72 ]\n\n");
  for (const char* argument :
       {"abc", "", " ", "\t \n", "0x10", "x", "-", "+", "--5", "- 5", "\xC3\xA4", "0"}) {
    SCOPED_TRACE(argument);
    ExpectRun(disk, {argument}, " sector 0", report);
  }
  ExpectRun(disk, {"0", ""}, " sectors [ 0 - 0 ]", report);
  ExpectRun(disk, {"-1", ""}, " [ whole disk ]", report + kTocHeading + "         0\tMaster Boot Record\n");
}

// The nearest limit: the largest number lies beyond any disk, the smallest asks for the whole one.
TEST(SectorArguments, ThatOverflowAreTheNearestLimit) {
  const Disk disk = PlainDisk();
  ExpectRefused(disk, {"9223372036854775808"});
  ExpectRefused(disk, {"99999999999999999999999999999999"});
  ExpectRefused(disk, {"0", "18446744073709551615"});
  const std::string report = MbrReport(
      disk, "\tInactive [ Linux ext2 ]\n\tC/H/S 0/0/0 - 0/0/0\n\tPartition Sectors [ 63 - 72 ]\n\n");
  ExpectRun(disk, {"-9223372036854775809"}, " [ whole disk ]",
            report + kTocHeading + "         0\tMaster Boot Record\n");
  ExpectRun(disk, {"5", "-99999999999999999999999999"}, " sector 5", RawSector(disk, 5));
}

// Registered beyond the end of the disk: accepted and listed; the loading pass that reaches it fails in its
// read, the printing pass has its limit before it.
TEST(TableOfContents, ListsASectorBeyondTheEndOfTheDisk) {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 4000000000}}});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out.ends_with(
      kTocHeading + "         0\tMaster Boot Record\n4000000000\tSupplementary Boot Record\n"));
}

// Two entries that point to the same sector: the one that stands first decides.
TEST(TableOfContents, FirstRegistrationWins) {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 10}, {.type = 0x0B, .first = 10}}});
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n        10\tSupplementary Boot Record\n");
  PutBootRecord(disk, 0, {.entries = {{.type = 0x0B, .first = 10}, {.type = 0x05, .first = 10}}});
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n        10\tFAT32 Boot Sector\n");
}

// An extended boot record that points to sector 0, which keeps its entry, and before itself.
TEST(TableOfContents, SectorZeroStaysTheMasterBootRecord) {
  Disk disk(100);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 0}, {.type = 0x0B, .first = 0}}});
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n");
}

// An entry that fails in the loading pass hides what the later ones would register, and the printing pass
// goes over what was registered.
TEST(TableOfContents, LoadingPassThatFailsLeavesLaterEntriesUnloaded) {
  Disk disk(100);
  // FAT boot sector without an end mark in sector 5, extended boot record in 10 that points to 20
  PutBootRecord(disk, 0, {.entries = {{.type = 0x06, .first = 5, .count = 5}, {.type = 0x05, .first = 10}}});
  disk.At(5).Text(0, "no boot sector");
  PutBootRecord(disk, 10, {.entries = {{.type = 0x83, .first = 1}, {.type = 0x05, .first = 10}}});
  PutBootRecord(disk, 20, {});
  EXPECT_EQ(TocOf(disk),
            "         0\tMaster Boot Record\n         5\tFAT Boot Sector\n"
            "        10\tSupplementary Boot Record\n");
}

}  // namespace
}  // namespace trovisk::test
