// Reports of the SDBB blocks of a Storage Spaces partition.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/disks/spaces.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kFirst = 40;
constexpr u64 kSdbb = kFirst + 9;

// The empty lines of so many sectors in the loading pass, and where they are passed over.
std::string EmptyLines(int sectors) {
  return std::string(static_cast<std::size_t>(2 * sectors), '\n');
}

void PutHeaders(Disk& disk) {
  PutSpaceDb(disk, kFirst, {});
  PutSdbc(disk, kFirst + 8, {});
}

Disk DiskWith(const std::vector<SdbbRecord>& block, u32 sectorSize = 512) {
  Disk disk(4096, sectorSize);
  PutGpt(disk, {{.type = kStorageSpacesType, .first = kFirst, .last = 2047}});
  PutHeaders(disk);
  PutSdbb(disk, kSdbb, block);
  return disk;
}

// The block's report, its header line and what follows the first record cut off.
std::string FirstRecordOf(const SdbbRecord& record) {
  const std::string report = ReportOf(DiskWith({record, {.identifier = 0x77777777}}), kSdbb, EmptyLines(3));
  const std::size_t at = report.find("SDBB : ");
  return report.substr(at, report.find("SDBB : 0x77777777") - at);
}

TEST(Sdbb, WholeReport) {
  const Disk disk = DiskWith({
      {.identifier = 0x0A, .parent = 0x0A, .type = 0xABCD},
      {.identifier = 0x0B, .parent = 0x0A, .partCount = 3, .type = 0x0102},
      {.identifier = 0x0B, .parent = 0x0A, .partIndex = 1, .partCount = 3},
      {.identifier = 0x0B, .parent = 0x0A, .partIndex = 2, .partCount = 3},
      {.identifier = 0x0C, .parent = 0x0A, .partCount = 0},
      {.identifier = 0xFFFFFFFF, .partIndex = 65535, .partCount = 65535},
      {.identifier = 0x01020304, .parent = 0x01020304, .partIndex = 4659, .partCount = 22136, .type = 1},
      {.parent = 7, .partIndex = 3, .partCount = 0, .type = 9},
  });
  EXPECT_TRUE(SameText(ReportOf(disk, kSdbb, EmptyLines(3)), Expected("sdbb.txt", disk)));
}

TEST(Sdbb, NoPartsIsEmptyWhateverElseTheRecordHolds) {
  EXPECT_EQ(FirstRecordOf({.identifier = 1, .parent = 2, .partIndex = 0, .partCount = 0, .type = 0xFFFF}),
            "SDBB : 0x00000001\n\n\tEmpty\n\n");
}

TEST(Sdbb, ParentEqualToTheIdentifierIsNone) {
  EXPECT_EQ(FirstRecordOf({.identifier = 0xA1B2C3D4, .parent = 0xA1B2C3D4, .type = 0x00FF}),
            "SDBB : 0xA1B2C3D4\n\n\tPart   : 1 of 1\n\tType   : 0x00FF\n\n");
}

TEST(Sdbb, ParentThatDiffersInItsLastByte) {
  EXPECT_EQ(FirstRecordOf({.identifier = 0xA1B2C3D4, .parent = 0xA1B2C3D5, .type = 0x00FF}),
            "SDBB : 0xA1B2C3D4\n\n\tParent : 0xA1B2C3D5\n\tPart   : 1 of 1\n\tType   : 0x00FF\n\n");
}

TEST(Sdbb, LaterPartsHaveNoType) {
  EXPECT_EQ(FirstRecordOf({.partIndex = 2, .partCount = 3, .type = 0xFFFF}),
            "SDBB : 0x00000000\n\n\tPart   : 3 of 3\n\n\n");
}

// The number is not checked against the count, and does not wrap.
TEST(Sdbb, LargestPartIndex) {
  EXPECT_EQ(FirstRecordOf({.partIndex = 65535, .partCount = 1}),
            "SDBB : 0x00000000\n\n\tPart   : 65536 of 1\n\n\n");
}

TEST(Sdbb, LargestPartCount) {
  EXPECT_EQ(FirstRecordOf({.partCount = 65535}),
            "SDBB : 0x00000000\n\n\tPart   : 1 of 65535\n\tType   : 0x0000\n\n");
}

// Three whole blocks register each other; the first sector that is none ends the chain and nothing else.
TEST(Sdbb, ChainEndsQuietlyAtTheFirstSectorThatDoesNotQualify) {
  Disk disk = DiskWith({});
  PutSdbb(disk, kSdbb + 1);
  PutSdbb(disk, kSdbb + 2);
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "No SDBB magic found in sector 52\nNo SDBB magic found in sector 52\n");
  EXPECT_NE(TocOf(disk).find("        49\tSDBB Sector\n        50\tSDBB Sector\n        51\tSDBB Sector\n"
                             "        52\tSDBB Sector\n      4063\tGUID Partition Table Start\n"),
            std::string::npos);
  EXPECT_NE(outcome.out.find("Reading sector # 4095 [Backup GPT Header]\n"), std::string::npos);
}

// The sector that ends the chain has its header line, its whole records, and no dump.
TEST(Sdbb, RecordsBeforeOneWithoutSignatureArePrinted) {
  const Disk disk = DiskWith({{.identifier = 1},
                              {.identifier = 2},
                              {.identifier = 3},
                              {.identifier = 4, .partCount = 0},
                              {.signature = "SDBX"}});
  const Outcome outcome = RunOn(disk, {"49", "50"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "No SDBB magic found in sector 49\nNo SDBB magic found in sector 49\n");
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sectors [ 49 - 50 ]", EmptyLines(2)) + EmptyLines(2) +
                                        R"(Reading sector # 49 [SDBB Sector]

SDBB : 0x00000001

	Parent : 0x00000000
	Part   : 1 of 1
	Type   : 0x0000

SDBB : 0x00000002

	Parent : 0x00000000
	Part   : 1 of 1
	Type   : 0x0000

SDBB : 0x00000003

	Parent : 0x00000000
	Part   : 1 of 1
	Type   : 0x0000

SDBB : 0x00000004

	Empty

Reading sector # 50 [Raw Sector]
... empty ...
)"));
  EXPECT_EQ(TocOf(disk).find("        50\t"), std::string::npos);
}

// Every byte of every signature counts.
TEST(Sdbb, OneWrongByteOfASignatureIsEnough) {
  for (std::size_t record = 0; record < 8; ++record) {
    for (std::size_t i = 0; i < 4; ++i) {
      Disk disk = DiskWith({});
      disk.At(kSdbb).U8(record * 64 + i, 'x');
      EXPECT_EQ(RunOn(disk, {"49"}).err,
                "No SDBB magic found in sector 49\nNo SDBB magic found in sector 49\n");
    }
  }
}

// Eight records are a sector's, whatever its size.
TEST(Sdbb, BlockIn4096ByteSectors) {
  Disk disk = DiskWith({}, 4096);
  disk.At(kSdbb).Text(4090, "behind");
  const std::string report = ReportOf(disk, kSdbb, EmptyLines(3));
  std::size_t records = 0;
  for (std::size_t at = report.find("SDBB : "); at != std::string::npos; at = report.find("SDBB : ", at + 1))
    ++records;
  EXPECT_EQ(records, 8U);
  EXPECT_TRUE(
      report.ends_with(ExpandExpected("\n\nReading sector # 49 [as a raw sector]\n{{dump 49}}\n\n", disk)));
}

TEST(Sdbb, EmptyLinesOfASectorNotAskedFor) {
  const Disk disk = DiskWith({});
  const Outcome outcome = RunOn(disk, {"60"});
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sector 60", EmptyLines(3)) + EmptyLines(3) +
                                        "Reading sector # 60 [Raw Sector]\n... empty ...\n"));
}

// The last sector of the disk registers one behind it, which the walk does not reach.
TEST(Sdbb, ChainUpToTheLastSector) {
  Disk disk(51);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.type = kStorageSpacesType, .first = kFirst, .last = 50}});
  PutGptHeader(disk, 1, {.otherLba = 0});
  PutHeaders(disk);
  PutSdbb(disk, kSdbb);
  PutSdbb(disk, kSdbb + 1);
  EXPECT_EQ(RunOn(disk).err, "");
  EXPECT_TRUE(TocOf(disk).ends_with("        50\tSDBB Sector\n        51\tSDBB Sector\n"));
}

// The one read error that names its sector: the block takes two sectors of 256 bytes, the disk has one.
// The GPT header stands among the boot code of the master boot record there.
TEST(Sdbb, RecordCutByTheEndOfTheDisk) {
  const std::string loading = "\tUnknown Boot Loader Code\n" + EmptyLines(2);
  Disk disk(110, 256);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.type = kStorageSpacesType, .first = 100, .last = 109}});
  PutGptHeader(disk, 1, {.otherLba = 0});
  PutSpaceDb(disk, 100, {});
  PutSdbc(disk, 108, {});
  disk.At(109).Text(0, "SDBB");
  const Outcome outcome = RunOn(disk, {"109"});
  const std::string errors = "Global::Read short read, needed 512, got 256\nError reading sector 109\n";
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, errors + errors);
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sector 109", loading) + loading +
                                        "Reading sector # 109 [SDBB Sector]\n\n"));
}

}  // namespace
}  // namespace trovisk::test
