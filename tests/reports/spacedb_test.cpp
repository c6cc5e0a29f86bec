// Reports of the SPACEDB header of a Storage Spaces partition.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/disks/gpt.h"
#include "tests/disks/spaces.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kFirst = 40;
constexpr u64 kLast = 2047;
constexpr u64 kTimeStamp = 0x01DC015A8B4C7380;  // 2025-07-30 14:02:11
constexpr StoredGuid kStorageGuid = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                                     0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
constexpr StoredGuid kSpaceDbGuid = {0xF0, 0xE1, 0xD2, 0xC3, 0xB4, 0xA5, 0x96, 0x87,
                                     0x78, 0x69, 0x5A, 0x4B, 0x3C, 0x2D, 0x1E, 0x0F};
// In the loading pass and in the printing pass.
const std::string kNoMagicTwice =
    "**** No SPACEDB magic found ****\n"
    "**** No SPACEDB magic found ****\n";

// A disk with one Storage Spaces partition, from kFirst on, whose SPACEDB is this one.
Disk DiskWith(const SpaceDb& header, u64 sectors = 4096, u32 sectorSize = 512) {
  Disk disk(sectors, sectorSize);
  PutGpt(disk, {{.type = kStorageSpacesType, .first = kFirst, .last = kLast}});
  PutSpaceDb(disk, kFirst, header);
  return disk;
}

// The report's line with that label.
std::string LineOf(const SpaceDb& header, const std::string& label) {
  const std::string report = ReportOf(DiskWith(header), kFirst, "\n\n");
  const std::size_t at = report.find("\n" + label) + 1;
  return report.substr(at, report.find('\n', at) - at);
}

std::string RevisionOf(const Revision& revision) {
  return LineOf({.revision = revision}, "Revision ");
}

std::string FileTimeOf(u64 fileTime) {
  return LineOf({.fileTime = fileTime}, "Unknown FILETIME ");
}

std::string TimeStampOf(u64 timeStamp) {
  return LineOf({.timeStamp = timeStamp}, "Timestamp ");
}

TEST(SpaceDb, WholeReport) {
  const Disk disk = DiskWith({.crc32 = 0x1A2B3C4D,
                              .unknown10 = 0x0102030405060708,
                              .fileTime = 0x01D711C8D4ADA480,
                              .storageGuid = kStorageGuid,
                              .spaceDbGuid = kSpaceDbGuid,
                              .number = 0xC0DE,
                              .zeroes = 9,
                              .unknown50 = 0xDEADBEEF00000001,
                              .timeStamp = kTimeStamp});
  EXPECT_TRUE(SameText(ReportOf(disk, kFirst, "\n\n"), Expected("spacedb.txt", disk)));
}

// Everything zero, in a sector of 4096 bytes: 512 of them are the header, the dump shows them all.
TEST(SpaceDb, WholeReportOfZerosIn4096ByteSectors) {
  Disk disk = DiskWith({.revision = {0, 0, 0, 0}}, 4096, 4096);
  disk.At(kFirst).Text(4090, "behind");
  EXPECT_TRUE(SameText(ReportOf(disk, kFirst, "\n\n"), ExpandExpected(R"(Reading sector # 40 [SPACEDB sector]

Magic Number                : [SPACEDB ]
Revision                    : 0
CRC32 Checksum              : 0x00000000
Unknown                     : 0x0000000000000000
Unknown FILETIME            : 01/01/1601 00:00:00
Storage GUID                : { 00000000-0000-0000-0000-000000000000 }
This SPACEDB GUID           : { 00000000-0000-0000-0000-000000000000 }
Unknown                     : 0x0000000000000000(0)
Zeroes                      : 0x0000000000000000
Unknown                     : 0x0000000000000000
Timestamp                   : n/a

Reading sector # 40 [as a raw sector]
{{dump 40}}

)",
                                                                      disk)));
}

// The header reaches into the next sector where sectors are smaller than it; the dump shows one of them.
// The GPT header stands among the boot code of the master boot record there.
TEST(SpaceDb, HeaderIn256ByteSectors) {
  Disk disk(4096, 256);
  PutGpt(disk, {{.type = kStorageSpacesType, .first = 100, .last = 2000}});
  PutSpaceDb(disk, 100, {.unknown50 = 1});
  disk.At(101).Text(0, "not shown");
  const std::string report = ReportOf(disk, 100, "\tUnknown Boot Loader Code\n\n\n");
  EXPECT_NE(report.find("Unknown                     : 0x0000000000000001\n"), std::string::npos);
  EXPECT_TRUE(
      report.ends_with(ExpandExpected("\n\nReading sector # 100 [as a raw sector]\n{{dump 100}}\n\n", disk)));
}

TEST(SpaceDb, StandardRevisionIsTen) {
  EXPECT_EQ(RevisionOf({0, 0, 1, 0}), "Revision                    : 10");
}

TEST(SpaceDb, RevisionsLastByteWeighsAHundredth) {
  EXPECT_EQ(RevisionOf({0, 0, 0, 1}), "Revision                    : 0.01");
}

TEST(SpaceDb, RevisionWeighsEveryByte) {
  EXPECT_EQ(RevisionOf({1, 2, 3, 4}), "Revision                    : 1230.04");
}

// Six significant digits of 283052.55.
TEST(SpaceDb, LargestRevision) {
  EXPECT_EQ(RevisionOf({255, 255, 255, 255}), "Revision                    : 283053");
}

TEST(SpaceDb, FileTimeIsCalendarTimeInUtc) {
  EXPECT_EQ(FileTimeOf(0), "Unknown FILETIME            : 01/01/1601 00:00:00");
  EXPECT_EQ(FileTimeOf(1), "Unknown FILETIME            : 01/01/1601 00:00:00");
  EXPECT_EQ(FileTimeOf(0x01BF8247EBCC8000), "Unknown FILETIME            : 29/02/2000 00:00:00");
  EXPECT_EQ(FileTimeOf(0x022F9FC03D2AA980), "Unknown FILETIME            : 28/02/2100 23:59:59");
}

TEST(SpaceDb, FileTimeBeyondTheYear9999HasFiveDigits) {
  EXPECT_EQ(FileTimeOf(0x24C85A5ED127A980), "Unknown FILETIME            : 31/12/9999 23:59:59");
  EXPECT_EQ(FileTimeOf(0x24C85A5ED1C04000), "Unknown FILETIME            : 01/01/10000 00:00:00");
  EXPECT_EQ(FileTimeOf(0x7FFFFFFFFFFFFFFF), "Unknown FILETIME            : 14/09/30828 02:48:05");
}

TEST(SpaceDb, FileTimeWithTheTopBitSetIsNotATime) {
  EXPECT_EQ(FileTimeOf(0x8000000000000000), "Unknown FILETIME            : n/a");
  EXPECT_EQ(FileTimeOf(0xFFFFFFFFFFFFFFFF), "Unknown FILETIME            : n/a");
}

TEST(SpaceDb, TimeStampOfZeroIsNone) {
  EXPECT_EQ(TimeStampOf(0), "Timestamp                   : n/a");
}

// Seconds since 1970 in 32 bits, whatever the value.
TEST(SpaceDb, TimeStampWraps) {
  EXPECT_EQ(TimeStampOf(1), "Timestamp                   : Wed Apr 22 19:24:48 2009");
  EXPECT_EQ(TimeStampOf(0x8000000000000000), "Timestamp                   : Wed Jan 22 22:55:33 1975");
  EXPECT_EQ(TimeStampOf(0xFFFFFFFFFFFFFFFF), "Timestamp                   : Sun Nov 29 08:54:34 2076");
}

// The one is shown as it stands, the other in the machine's time zone.
TEST(SpaceDb, OnlyTheTimeStampIsLocalTime) {
  const std::string path = ScratchPath("local-time.img");
  DiskWith({.fileTime = kTimeStamp, .timeStamp = kTimeStamp}).Write(path);
  const Outcome outcome = RunProgram(Build::kShipped, {path, "40"}, {"TZ=XYZ+3:30"});
  EXPECT_NE(outcome.out.find("Unknown FILETIME            : 30/07/2025 14:02:11\n"), std::string::npos);
  EXPECT_NE(outcome.out.find("Timestamp                   : Wed Jul 30 10:32:11 2025\n\n"),
            std::string::npos);
}

// Both come before any other field in capitals of the run; the checksum's digits make them capitals.
TEST(SpaceDb, GuidsAreInCapitals) {
  EXPECT_EQ(LineOf({.storageGuid = kStorageGuid}, "Storage GUID "),
            "Storage GUID                : { 00112233-4455-6677-8899-AABBCCDDEEFF }");
}

TEST(SpaceDb, SdbcStandsEightSectorsBehind) {
  for (const u32 sectorSize : {512U, 4096U}) {
    Disk disk = DiskWith({}, 4096, sectorSize);
    PutSdbc(disk, kFirst + 8, {});
    EXPECT_NE(
        TocOf(disk).find("        40\tSPACEDB sector\n        48\tSDBC Sector\n        49\tSDBB Sector\n"),
        std::string::npos)
        << sectorSize;
  }
}

// A sector that is not asked for is passed over all the same, and its empty lines appear in both passes.
TEST(SpaceDb, EmptyLinesOfASectorNotAskedFor) {
  const Disk disk = DiskWith({});
  EXPECT_TRUE(
      SameText(ReportOf(disk, kFirst + 1, "\n\n"), "\n\nReading sector # 41 [Raw Sector]\n... empty ...\n"));
}

TEST(SpaceDb, MissingSignatureShowsTheSectorAndEndsBothPasses) {
  Disk disk = DiskWith({.signature = "SPACEDB\t"});
  const Outcome outcome = RunOn(disk, {"40"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, kNoMagicTwice);
  EXPECT_TRUE(SameText(outcome.out,
                       Preamble(disk, " sector 40") + ExpandExpected(R"(Reading sector # 40 [SPACEDB sector]

Reading sector # 40 [as a raw sector]
{{dump 40}}
)",
                                                                     disk)));
  // Neither the SDBC nor what stands behind is reached.
  PutSdbc(disk, kFirst + 8, {});
  EXPECT_TRUE(TocOf(disk).ends_with("        40\tSPACEDB sector\n      4095\tBackup GPT Header\n"));
  EXPECT_EQ(RunOn(disk).err, kNoMagicTwice);
}

TEST(SpaceDb, OneWrongByteOfTheSignatureIsEnough) {
  for (const std::string& signature : WithOneWrongCharacter("SPACEDB "))
    EXPECT_EQ(RunOn(DiskWith({.signature = signature}), {"40"}).err, kNoMagicTwice) << signature;
}

TEST(SpaceDb, SdbcBeyondTheEndOfTheDisk) {
  Disk disk(46);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.type = kStorageSpacesType, .first = kFirst, .last = 45}});
  PutGptHeader(disk, 1, {.otherLba = 0});
  PutSpaceDb(disk, kFirst, {});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
  EXPECT_TRUE(outcome.out.ends_with("        40\tSPACEDB sector\n        48\tSDBC Sector\n"));
}

// The disk ends 100 bytes into the sector: registered, but not a sector of the disk.
TEST(SpaceDb, RecordCutByTheEndOfTheDisk) {
  Disk disk(41);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.type = kStorageSpacesType, .first = kFirst, .last = kFirst}});
  PutGptHeader(disk, 1, {.otherLba = 0});
  PutSpaceDb(disk, kFirst, {});
  const std::string path = ScratchPath("cut-spacedb.img");
  disk.Write(path);
  std::filesystem::resize_file(path, kFirst * 512 + 100);
  const Outcome outcome = RunProgram(Build::kShipped, {path});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512, 100) + "Error reading sector\n");
  EXPECT_TRUE(outcome.out.ends_with("        40\tSPACEDB sector\n")) << outcome.out;
}

}  // namespace
}  // namespace trovisk::test
