// Reports of the SDBC header of a Storage Spaces partition.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>

#include "tests/disks/gpt.h"
#include "tests/disks/spaces.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kFirst = 40;
constexpr u64 kSdbc = kFirst + 8;
constexpr u64 kTimeStamp = 0x01DC015A8B4C7380;  // 2025-07-30 14:02:11
// In the loading pass and in the printing pass.
const std::string kNoMagicTwice =
    "**** No SDBC magic found ****\n"
    "**** No SDBC magic found ****\n";

// What the headers of a partition print in the loading pass, and where they are passed over.
constexpr char kSpaceDbLines[] = "\n\n";
constexpr char kSdbcLines[] = "\n\n";

Disk DiskWith(const Sdbc& header, u64 sectors = 4096, u32 sectorSize = 512) {
  Disk disk(sectors, sectorSize);
  PutGpt(disk, {{.type = kStorageSpacesType, .first = kFirst, .last = 2047}});
  PutSpaceDb(disk, kFirst, {});
  PutSdbc(disk, kSdbc, header);
  return disk;
}

std::string LoadingLines() {
  return std::string(kSpaceDbLines) + kSdbcLines;
}

std::string TimeStampOf(u64 timeStamp) {
  const std::string report = ReportOf(DiskWith({.timeStamp = timeStamp}), kSdbc, LoadingLines());
  const std::size_t at = report.find("Timestamp ");
  return report.substr(at, report.find("Reading", at) - at);
}

TEST(Sdbc, WholeReport) {
  const Disk disk = DiskWith({.revision = {0, 0, 2, 3},
                              .crc32 = 0x1A2B3C4D,
                              .spaceportGuid = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99,
                                                0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF},
                              .unknown20 = 0x0102030405060708,
                              .unknown28 = 0xA1B2C3,
                              .poolType = 0x23,
                              .unknown2C = 0x0BADF00D,
                              .unknown30 = 0x1112131415161718,
                              .lastTransaction1 = 1234,
                              .lastTransaction2 = 0xFEDCBA9876543210,
                              .timeStamp = kTimeStamp});
  EXPECT_TRUE(SameText(ReportOf(disk, kSdbc, LoadingLines()), Expected("sdbc.txt", disk)));
}

// 256 partitions on one disk, one for each value of the byte.
TEST(Sdbc, EveryPoolType) {
  const std::map<int, std::string> names = {
      {0x1B, "Unallocated"},    {0x1C, "Simple"}, {0x20, "Simple"}, {0x23, "Two-Way Mirror"},
      {0x29, "Two-Way Mirror"}, {0x2A, "Parity"}, {0x2D, "Parity"}, {0x33, "Three-Way Mirror"},
  };
  Disk disk(16384);
  std::vector<GptEntry> entries;
  std::string expected;
  for (int type = 0; type < 256; ++type) {
    const u64 first = 1000 + static_cast<u64>(type) * 10;
    entries.push_back({.type = kStorageSpacesType, .first = first, .last = first + 9});
    PutSpaceDb(disk, first, {});
    PutSdbc(disk, first + 8, {.poolType = static_cast<u8>(type)});
    char digits[8];
    std::snprintf(digits, sizeof digits, "0x%02X", static_cast<unsigned>(type));
    const auto name = names.find(type);
    expected += "Storage Pool Type           : " + (name == names.end() ? digits : name->second) + "\n";
  }
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, entries);
  PutGptHeader(disk, 1, {.otherLba = 0, .entryCount = 256});

  std::istringstream report(RunOn(disk).out);
  std::string actual;
  for (std::string line; std::getline(report, line);) {
    if (line.starts_with("Storage Pool Type")) actual += line + "\n";
  }
  EXPECT_TRUE(SameText(actual, expected));
}

// Unlike the SPACEDB's, a time stamp of zero is shown as one.
TEST(Sdbc, TimeStampOfZeroIsATime) {
  EXPECT_EQ(TimeStampOf(0), "Timestamp                   : Wed Apr 22 19:24:48 2009\n\n\n\n");
}

TEST(Sdbc, TimeStampWraps) {
  EXPECT_EQ(TimeStampOf(1), "Timestamp                   : Wed Apr 22 19:24:48 2009\n\n\n\n");
  EXPECT_EQ(TimeStampOf(0x8000000000000000),
            "Timestamp                   : Wed Jan 22 22:55:33 1975\n\n\n\n");
  EXPECT_EQ(TimeStampOf(0xFFFFFFFFFFFFFFFF),
            "Timestamp                   : Sun Nov 29 08:54:34 2076\n\n\n\n");
}

TEST(Sdbc, FirstSdbbSectorStandsRightBehind) {
  EXPECT_NE(TocOf(DiskWith({})).find("        48\tSDBC Sector\n        49\tSDBB Sector\n      40"),
            std::string::npos);
}

// The dump shows the whole sector, the header is its first 512 bytes.
TEST(Sdbc, HeaderIn4096ByteSectors) {
  Disk disk = DiskWith({.poolType = 0x2A}, 4096, 4096);
  disk.At(kSdbc).Text(4090, "behind");
  const std::string report = ReportOf(disk, kSdbc, LoadingLines());
  EXPECT_NE(report.find("Storage Pool Type           : Parity\n"), std::string::npos);
  EXPECT_TRUE(
      report.ends_with(ExpandExpected("\n\nReading sector # 48 [as a raw sector]\n{{dump 48}}\n\n", disk)));
}

TEST(Sdbc, EmptyLinesOfASectorNotAskedFor) {
  const Outcome outcome = RunOn(DiskWith({}), {"50"});
  EXPECT_TRUE(SameText(outcome.out, Preamble(DiskWith({}), " sector 50", LoadingLines()) + LoadingLines() +
                                        "Reading sector # 50 [Raw Sector]\n... empty ...\n"));
}

TEST(Sdbc, MissingSignatureShowsTheSectorAndEndsBothPasses) {
  const Disk disk = DiskWith({.signature = "SDBB    "});
  const Outcome outcome = RunOn(disk, {"48"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, kNoMagicTwice);
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sector 48", kSpaceDbLines) + kSpaceDbLines +
                                        ExpandExpected(R"(Reading sector # 48 [SDBC Sector]

Reading sector # 48 [as a raw sector]
{{dump 48}}
)",
                                                       disk)));
  EXPECT_TRUE(TocOf(disk).ends_with("        48\tSDBC Sector\n      4095\tBackup GPT Header\n"));
}

// The blanks behind the letters count.
TEST(Sdbc, OneWrongByteOfTheSignatureIsEnough) {
  for (const std::string& signature : WithOneWrongCharacter("SDBC    "))
    EXPECT_EQ(RunOn(DiskWith({.signature = signature}), {"48"}).err, kNoMagicTwice) << signature;
}

TEST(Sdbc, RecordCutByTheEndOfTheDisk) {
  Disk disk(49);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.type = kStorageSpacesType, .first = kFirst, .last = kSdbc}});
  PutGptHeader(disk, 1, {.otherLba = 0});
  PutSpaceDb(disk, kFirst, {});
  PutSdbc(disk, kSdbc, {});
  const std::string path = ScratchPath("cut-sdbc.img");
  disk.Write(path);
  std::filesystem::resize_file(path, kSdbc * 512 + 511);
  const Outcome outcome = RunProgram(Build::kShipped, {path});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512, 511) + "Error reading sector\n");
  EXPECT_TRUE(outcome.out.ends_with("        40\tSPACEDB sector\n        48\tSDBC Sector\n")) << outcome.out;
}

}  // namespace
}  // namespace trovisk::test
