// Reports of GPT headers, and what they register.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/support/expected.h"
#include "tests/support/limits.h"
#include "tests/support/wine.h"

namespace trovisk::test {
namespace {

std::string FirstRows() {
  return TocRow(0, "Master Boot Record") + TocRow(1, "Primary GPT Header");
}

// The primary array of a valid 512-byte disk, and what the loading pass finds at its end: the backup array
// lies in front of the backup header, so only its first and last sector are known.
std::string PrimaryArrayRows() {
  return TocRow(2, "GUID Partition Table Start") + TocRows(3, 32, "GUID Partition Table") +
         TocRow(33, "GUID Partition Table End");
}

// The line of the primary header's report that begins with the label.
std::string HeaderLine(const Disk& disk, const std::string& label) {
  const std::string report = ReportOf(disk, 1);
  const std::size_t at = report.find("\n" + label);
  if (at == std::string::npos) return "no such line";
  return report.substr(at + 1, report.find('\n', at + 1) - at - 1);
}

const std::string kReadFailure = ReadBehindTheEnd(512) + "Error reading sector\n";

// The check value that the algorithm is published with: the disks of these tests bear correct checksums.
TEST(GptBuilder, ComputesThePublishedCheckValue) {
  const std::string text = "123456789";
  EXPECT_EQ(Crc32(std::vector<u8>(text.begin(), text.end())), 0xCBF43926);
}

// Alone on the run, so the checksum is the first number in capitals: the disk GUID after it is in capitals.
TEST(GptHeader, PrimaryWhole) {
  Disk disk;
  PutGpt(disk);
  PutGptHeader(disk, 1, {.headerCrc = 0x00A0B0C9, .entriesCrc = 0xFEDC0001});
  EXPECT_TRUE(SameText(ReportOf(disk, 1), Expected("gpt_header.txt", disk)));
}

TEST(GptHeader, EveryFieldAtItsLargest) {
  Disk disk;
  PutGpt(disk);
  disk.At(1).Fill(8, 504, 0xFF);
  EXPECT_TRUE(SameText(ReportOf(disk, 1), Expected("gpt_header_all_ones.txt", disk)));
}

TEST(GptHeader, BackupWholeWith4096ByteSectors) {
  Disk disk(256, 4096);
  PutGpt(disk);
  PutGptHeader(disk, 255, {.headerCrc = 0x0BADF00D, .entriesCrc = 0x12345678});
  EXPECT_TRUE(SameText(ReportOf(disk, 255), Expected("gpt_header_backup_4096.txt", disk)));
}

// The bytes weigh 1000, 100, 10 and a tenth; six significant digits are shown.
TEST(GptHeader, RevisionAsOneNumber) {
  const struct {
    std::array<u8, 4> revision;
    const char* number;
  } kCases[] = {
      {{0, 0, 1, 0}, "10"},           {{0, 0, 0, 0}, "0"},      {{0, 0, 0, 1}, "0.1"},
      {{0, 0, 1, 2}, "10.2"},         {{0, 0, 0, 255}, "25.5"}, {{1, 2, 3, 4}, "1230.4"},
      {{99, 9, 9, 9}, "99990.9"},     {{0, 1, 0, 0}, "100"},    {{100, 0, 0, 1}, "100000"},
      {{255, 255, 255, 0}, "283050"},
  };
  for (const auto& [revision, number] : kCases) {
    Disk disk;
    PutGpt(disk);
    PutGptHeader(disk, 1, {.revision = revision});
    EXPECT_EQ(HeaderLine(disk, "Revision"), std::string("Revision                    : ") + number);
  }
}

// The array's bytes in whole sectors, counted from its first; what does not fill a sector is left out.
TEST(GptHeader, LastEntrySectorFromCountAndSize) {
  const struct {
    u32 count;
    u32 size;
    const char* last512;
    const char* last4096;
  } kCases[] = {
      {128, 128, "33", "5"},
      {100, 128, "26", "4"},
      {129, 128, "33", "5"},
      {1, 128, "1", "1"},
      {0, 128, "1", "1"},
      {128, 0, "1", "1"},
      {1, 1, "1", "1"},
      {100, 129, "26", "4"},
      {129, 129, "33", "5"},
      {4, 100, "1", "1"},
      {0, 0xFFFFFFFF, "1", "1"},
      {0xFFFFFFFF, 1, "8388608", "1048576"},
      {0xFFFFFFFF, 128, "1073741824", "134217728"},
      {0xFFFFFFFF, 0xFFFFFFFF, "36028797002186753", "4503599625273345"},
  };
  for (const auto& [count, size, last512, last4096] : kCases) {
    for (const u32 sectorSize : {512U, 4096U}) {
      Disk disk(64, sectorSize);
      PutProtectiveMbr(disk);
      PutGptHeader(disk, 1, {.otherLba = 1, .entryCount = count, .entrySize = size});
      const std::string last = sectorSize == 512 ? last512 : last4096;
      EXPECT_EQ(HeaderLine(disk, "Number"), "Number Of Partition Entries : " + std::to_string(count));
      EXPECT_EQ(HeaderLine(disk, "Size"),
                "Size Of A Partition Entry   : " + std::to_string(size) + " (bytes)");
      EXPECT_EQ(HeaderLine(disk, "Last Partitition"), "Last Partitition Entry LBA  : " + last);
    }
  }
}

TEST(GptHeader, RegistersArrayAndBackup) {
  Disk disk;
  PutGpt(disk);
  EXPECT_TRUE(SameText(TocOf(disk),
                       FirstRows() + PrimaryArrayRows() + TocRow(4063, "GUID Partition Table Start") +
                           TocRow(4094, "GUID Partition Table End") + TocRow(4095, "Backup GPT Header")));
}

TEST(GptHeader, RegistersArrayAndBackupWith4096ByteSectors) {
  Disk disk(256, 4096);
  PutGpt(disk);
  EXPECT_TRUE(SameText(
      TocOf(disk), FirstRows() + TocRow(2, "GUID Partition Table Start") +
                       TocRows(3, 4, "GUID Partition Table") + TocRow(5, "GUID Partition Table End") +
                       TocRow(251, "GUID Partition Table Start") + TocRow(254, "GUID Partition Table End") +
                       TocRow(255, "Backup GPT Header")));
}

// 16384 bytes are 25.6 sectors of 640 bytes: the array seems to end one sector early.
TEST(GptHeader, ArrayThatEndsInsideASectorOf640Bytes) {
  Disk disk(256, 640);
  PutGpt(disk);
  PutGptHeader(disk, 1, {.otherLba = 1});
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(2, "GUID Partition Table Start") +
                                        TocRows(3, 25, "GUID Partition Table") +
                                        TocRow(26, "GUID Partition Table End")));
}

// 512 bytes are read from sector 1, so across five of these sectors.
TEST(GptHeader, SectorsOf100Bytes) {
  Disk disk(256, 100);
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = 20, .entryCount = 5});
  const std::string loading = "\tUnknown Boot Loader Code\n";  // the header stands where that code would
  const std::string report = ReportOf(disk, 1, loading);
  EXPECT_NE(report.find("\nFirst Partition Entry LBA   : 20\n"), std::string::npos) << report;
  EXPECT_NE(report.find("\nLast Partitition Entry LBA  : 25\n"), std::string::npos) << report;
}

// Both are registered as given, and the one in front of the start ends the array at once.
TEST(GptHeader, NoEntriesPutTheEndInFrontOfTheStart) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = 10, .entryCount = 0});
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(9, "GUID Partition Table End") +
                                        TocRow(10, "GUID Partition Table Start")));
}

// One sector is both: the registration as the start comes first.
TEST(GptHeader, ArrayOfOneSectorIsItsStart) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entryCount = 4});
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(2, "GUID Partition Table Start")));
}

// The array from sector 100 on is walked after the backup header at 50 was decoded, so as far as the backup's
// own array goes.
TEST(GptHeader, BackupInFrontOfTheArraysDecidesWhereTheyEnd) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 50, .entriesLba = 100});
  PutGptHeader(disk, 50, {.otherLba = 1, .entriesLba = 200});
  EXPECT_TRUE(SameText(
      TocOf(disk), FirstRows() + TocRow(50, "Backup GPT Header") + TocRow(100, "GUID Partition Table Start") +
                       TocRows(101, 130, "GUID Partition Table") + TocRow(131, "GUID Partition Table End") +
                       TocRows(132, 199, "GUID Partition Table") + TocRow(200, "GUID Partition Table Start") +
                       TocRows(201, 230, "GUID Partition Table") + TocRow(231, "GUID Partition Table End")));
}

// The same with a backup whose array lies in front: no sector of the primary's registers its successor.
TEST(GptHeader, BackupWithALowerArrayCutsThePrimaryOneOff) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 50, .entriesLba = 100});
  PutGptHeader(disk, 50, {.otherLba = 1, .entriesLba = 60, .entryCount = 8});
  EXPECT_TRUE(SameText(
      TocOf(disk), FirstRows() + TocRow(50, "Backup GPT Header") + TocRow(60, "GUID Partition Table Start") +
                       TocRow(61, "GUID Partition Table End") + TocRow(100, "GUID Partition Table Start") +
                       TocRow(131, "GUID Partition Table End")));
}

// A backup that cannot be read as a header leaves the end of the primary's array as it was.
TEST(GptHeader, DamagedBackupDecidesNothing) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 50, .entriesLba = 100});
  PutGptHeader(disk, 50, {.otherLba = 1, .entriesLba = 200});
  disk.At(50).U8(7, 't');
  const Outcome outcome = RunOn(disk, {"50"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, Preamble(disk, " sector 50") + "Reading sector # 50 [Backup GPT Header]\n\n");
  EXPECT_EQ(outcome.err, "**** No EFI magic found ****\n**** No EFI magic found ****\n");
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(50, "Backup GPT Header") +
                                        TocRow(100, "GUID Partition Table Start") +
                                        TocRow(131, "GUID Partition Table End")));
}

// Whatever sector the backup is said to be in: one that is registered keeps its entry.
TEST(GptHeader, BackupInARegisteredSectorChangesNothing) {
  for (const u64 other : {0U, 1U, 2U, 17U, 33U}) {
    Disk disk;
    PutProtectiveMbr(disk);
    PutGptHeader(disk, 1, {.otherLba = other});
    // Sector 17 is not registered yet when the header is loaded, and then breaks the array in two.
    const std::string array =
        other == 17 ? TocRow(2, "GUID Partition Table Start") + TocRows(3, 16, "GUID Partition Table") +
                          TocRow(17, "Backup GPT Header") + TocRow(33, "GUID Partition Table End")
                    : PrimaryArrayRows();
    EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + array)) << other;
  }
}

TEST(GptHeader, MissingBackup) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1);
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "**** No EFI magic found ****\n**** No EFI magic found ****\n");
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + PrimaryArrayRows() + TocRow(4095, "Backup GPT Header")));
}

// Shown with the primary's own values, and no second array is known.
TEST(GptHeader, BackupEqualToThePrimary) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.headerCrc = 0x00A0B0C9, .entriesCrc = 0xFEDC0001});
  disk.At(4095).Bytes(0, disk.At(1).View());
  std::string expected = Expected("gpt_header.txt", disk);
  expected.replace(0, expected.find('\n'), "Reading sector # 4095 [Backup GPT Header]");
  EXPECT_TRUE(SameText(ReportOf(disk, 4095), expected));
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + PrimaryArrayRows() + TocRow(4095, "Backup GPT Header")));
}

// A backup in the middle of the disk, its array behind it: walked whole.
TEST(GptHeader, BackupInTheMiddleOfTheDisk) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1000});
  PutGptHeader(disk, 1000, {.entriesLba = 1001});
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + PrimaryArrayRows() + TocRow(1000, "Backup GPT Header") +
                                        TocRow(1001, "GUID Partition Table Start") +
                                        TocRows(1002, 1031, "GUID Partition Table") +
                                        TocRow(1032, "GUID Partition Table End")));
}

// The whole signature counts. Both passes say so and end there; what else is registered stays unvisited.
TEST(GptHeader, WithoutSignatureEndsThePass) {
  const struct {
    std::size_t offset;
    char character;
  } kDamages[] = {{0, 'e'}, {3, '\0'}, {7, 't'}};
  for (const auto& [offset, character] : kDamages) {
    Disk disk;
    PutGpt(disk);
    PutBootRecordBytes(disk, {.entries = {{.type = 0xEE, .first = 1, .count = 99},
                                          {.type = 0x05, .first = 2048, .count = 100}}});
    disk.At(1).U8(offset, static_cast<u8>(character));
    const Outcome outcome = RunOn(disk, {"1"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, Preamble(disk, " sector 1") + "Reading sector # 1 [Primary GPT Header]\n\n");
    EXPECT_EQ(outcome.err, "**** No EFI magic found ****\n**** No EFI magic found ****\n");
    EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(2048, "Supplementary Boot Record")));
  }
}

// An entry that the walk of the printing pass only passes by tells the same on standard error.
TEST(GptHeader, WithoutSignatureEndsAWalkToALaterSector) {
  Disk disk;
  PutProtectiveMbr(disk);
  const Outcome outcome = RunOn(disk, {"100"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, Preamble(disk, " sector 100"));
  EXPECT_EQ(outcome.err, "**** No EFI magic found ****\n**** No EFI magic found ****\n");
}

// Beyond the end of the disk; the negative limit makes the printing pass go there as well.
TEST(GptHeader, BackupBeyondTheDiskCannotBeRead) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1000000});
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + PrimaryArrayRows() + TocRow(1000000, "Backup GPT Header")));
  const Outcome outcome = RunOn(disk, {"-1", "-1"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, kReadFailure + kReadFailure);
  EXPECT_NE(outcome.out.find("\nReading sector # 1000000 [Backup GPT Header]\n\n\n\tTable Of Contents"),
            std::string::npos);
}

// The master boot record and the header keep their entries; the walk goes on behind the header, so that only
// the end is visited.
TEST(GptHeader, ArrayThatStartsInTheFirstTwoSectors) {
  for (const u64 first : {0U, 1U}) {
    Disk disk;
    PutProtectiveMbr(disk);
    PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = first});
    EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(first + 31, "GUID Partition Table End")));
  }
}

TEST(GptHeader, ArrayBeyondTheDiskCannotBeRead) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = 1000000});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, kReadFailure);
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(1000000, "GUID Partition Table Start") +
                                        TocRow(1000031, "GUID Partition Table End")));
}

// The last entry sector wraps around to the front of the disk.
TEST(GptHeader, ArrayThatStartsInTheLastSectorThereIs) {
  Disk disk;
  PutGpt(disk);
  PutGptHeader(disk, 1, {.entriesLba = 18446744073709551615U});
  EXPECT_EQ(HeaderLine(disk, "First Partition"), "First Partition Entry LBA   : 18446744073709551615");
  EXPECT_EQ(HeaderLine(disk, "Last Partitition"), "Last Partitition Entry LBA  : 30");
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(30, "GUID Partition Table End") +
                                        TocRow(4063, "GUID Partition Table Start") +
                                        TocRow(4094, "GUID Partition Table End") +
                                        TocRow(4095, "Backup GPT Header") +
                                        "18446744073709551615\tGUID Partition Table Start\n"));
}

// No disk has such a sector: the seek to it ends the run.
TEST(GptHeader, ArrayNear2To64EndsTheRunInTheSeek) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = 18446744073709551614U, .entryCount = 0});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 1);
  const std::string error = UnderWine() ? "131" : "22";  // ERROR_NEGATIVE_SEEK, EINVAL
  EXPECT_EQ(outcome.err, "Global::Seek failed to seek to sector 36028797018963965, error " + error +
                             "\nFailed to seek to sector 2\n");
}

// 2^55 + 20 times 512 wraps to the start of sector 20: an array that says it stands there is read there.
TEST(GptHeader, SectorNumberWhoseProductWrapsIsReadAtTheWrappedPlace) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 20, {{.first = 100, .last = 199, .name = u"wrapped"}});
  PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = (u64{1} << 55) + 20, .entryCount = 4});
  const Outcome outcome = RunOn(disk, {"-1", "-1"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_NE(outcome.out.find("\nReading sector # 36028797018963988 [GUID Partition Table Start]\n\n"
                             "\tPartition Type GUID   : { 0657FD6D-A4AB-43C4-84E5-0933C84B4F4F }\n"),
            std::string::npos);
}

// The entry that makes the disk a GPT one may stand anywhere, beside others that are registered as on any
// other disk, and before the partition entries are.
TEST(GptHeader, HybridMasterBootRecord) {
  for (std::size_t slot = 0; slot < 4; ++slot) {
    Disk disk;
    PutGpt(disk, {{.type = kUnlistedType, .first = 1024, .last = 1123}});
    BootRecord record;
    record.entries[slot] = {.type = 0xEE, .first = 1, .count = 1023};
    record.entries[(slot + 1) % 4] = {.type = 0x07, .first = 1024, .count = 100};
    PutBootRecordBytes(disk, record);
    const std::string toc = TocOf(disk);
    EXPECT_EQ(toc.find(FirstRows() + PrimaryArrayRows() + TocRow(1024, "NTFS Boot Sector")), 0) << toc;
  }
}

// Arrays as large as the fields can say: printed as found, and the walk ends where the disk does.
TEST(GptHeader, HugeArrayIsWalkedToTheEndOfTheDisk) {
  Disk disk(64);
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entryCount = 0xFFFFFFFF, .entrySize = 0xFFFFFFFF});
  const Outcome outcome = RunOnWithinLimits(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  // The last sector of the disk registers its successor, as every one does.
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(2, "GUID Partition Table Start") +
                                        TocRows(3, 64, "GUID Partition Table") +
                                        TocRow(36028797002186753, "GUID Partition Table End")));
}

// A hundred thousand array sectors take one run of the table, and no memory to speak of.
TEST(GptHeader, HugeArrayOnALargeDiskStaysWithinItsLimits) {
  Disk disk(100000);
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entryCount = 0xFFFFFFFF, .entrySize = 0xFFFFFFFF});
  const Outcome outcome = RunOnWithinLimits(disk, {"99999"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_NE(outcome.out.find("\nReading sector # 99999 [GUID Partition Table]\n\n"), std::string::npos);
}

// Sectors that are registered already break the array in two: the second part is not reached.
TEST(GptHeader, ArrayAcrossTheBackupHeader) {
  Disk disk;
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 20});
  PutGptHeader(disk, 20, {.otherLba = 1, .entriesLba = 2});
  EXPECT_TRUE(SameText(TocOf(disk), FirstRows() + TocRow(2, "GUID Partition Table Start") +
                                        TocRows(3, 19, "GUID Partition Table") +
                                        TocRow(20, "Backup GPT Header") +
                                        TocRow(33, "GUID Partition Table End")));
}

}  // namespace
}  // namespace trovisk::test
