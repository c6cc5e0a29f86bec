// Reports of master boot records: the disk's table, GPT and dynamic disks. The loaders' sections are in
// mbr_loader_test.cpp, the entries in partition_entry_test.cpp.

#include "tests/disks/mbr.h"

#include <gtest/gtest.h>

#include "tests/disks/boot_code.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr char kUnknownLoader[] = "\tUnknown Boot Loader Code\n";

// 440 zero bytes are no boot code: neither a loader section nor the "Unknown" line.
TEST(Mbr, WithoutBootCode) {
  Disk disk;
  PutBootRecord(disk, 0,
                {.diskSignature = 0x1234ABCD, .entries = {{.type = 0x83, .first = 63, .count = 100}}});
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_without_boot_code.txt", disk)));
}

// The last of the 440 bytes counts as boot code, the disk signature behind it does not.
TEST(Mbr, UnknownBootCodeIsNamedBeforeTheTitle) {
  Disk disk;
  PutBootRecord(disk, 0, {.diskSignature = 0x00C0FFEE}).U8(0x1B7, 0x01);
  EXPECT_TRUE(SameText(ReportOf(disk, 0, kUnknownLoader), Expected("mbr_unknown_boot_code.txt", disk)));
}

// The one line that the loading pass prints comes again when the sector is passed over in the printing pass.
TEST(Mbr, UnknownBootCodeIsNamedInBothPasses) {
  Disk disk;
  PutBootRecord(disk, 0, {}).U8(0x000, 0xFA);
  disk.At(5).U8(0, 1);
  EXPECT_TRUE(SameText(ReportOf(disk, 5, kUnknownLoader),
                       kUnknownLoader + ExpandExpected("Reading sector # 5 [Raw Sector]\n{{dump 5}}", disk)));
}

TEST(Mbr, LoadingPassPrintsNothingOfAKnownLoader) {
  Disk disk;
  PutInventedCode(PutBootRecord(disk, 0, {}), BootCode::kMbrWindowsVista);
  EXPECT_TRUE(SameText(ReportOf(disk, 5), "Reading sector # 5 [Raw Sector]\n... empty ...\n"));
}

// Neither the end mark nor an entry is validated.
TEST(Mbr, WrongEndMarkIsPrintedAsFound) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = 63, .count = 1}}, .endMark = 0x0C0A});
  EXPECT_NE(
      ReportOf(disk, 0).find("\n\n\nSector End Mark  : 0x0C0A\n\nReading sector # 0 [as a raw sector]\n"),
      std::string::npos);
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n        63\tNTFS Boot Sector\n");
}

TEST(Mbr, OfLargeSectorsIsTheirFirst512Bytes) {
  Disk disk(64, 4096);
  PutBootRecord(disk, 0,
                {.diskSignature = 0x1234ABCD, .entries = {{.type = 0x83, .first = 63, .count = 100}}})
      .Fill(0x200, 0xE00, 0x5A);
  const std::string report = ReportOf(disk, 0);
  EXPECT_TRUE(SameText(report, Expected("mbr_without_boot_code.txt", disk)));
  EXPECT_NE(report.find("\n0xFF0  5A 5A "), std::string::npos);
}

// The disk of no sectors has no last one either; its table is that of the planted sector.
TEST(Mbr, UnreadableSectorEndsBothPasses) {
  const Disk disk(0);
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(SameText(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n" + ReadBehindTheEnd(512) +
                                        "Error reading sector\n"));
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " [ whole disk ]") +
                                        "Reading sector # 0 [Master Boot Record]\n" + kTocHeading +
                                        "         0\tMaster Boot Record\n"));
}

// Its signature is shown in storage order, and the loader is recognised but not shown.
TEST(Mbr, GptProtectiveWithAKnownLoader) {
  Disk disk;
  Sector& mbr = PutBootRecord(disk, 0,
                              {.diskSignature = 0x1234ABCD,
                               .entries = {{.startSector = 2,
                                            .type = 0xEE,
                                            .endHead = 0xFF,
                                            .endSector = 0xFF,
                                            .endCylinder = 0xFF,
                                            .first = 1,
                                            .count = 0xFFFFFFFF}}});
  PutInventedCode(mbr, BootCode::kMbrWindows2008R2);
  EXPECT_TRUE(SameText(ReportOf(disk, 0), Expected("mbr_gpt_protective.txt", disk)));
}

TEST(Mbr, GptProtectiveWithUnknownCodeSaysSo) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0xEE, .first = 1}}}).U8(0x000, 0x33);
  const std::string report = ReportOf(disk, 0, kUnknownLoader);
  EXPECT_TRUE(
      report.starts_with("Reading sector # 0 [Master Boot Record]\n"
                         "\tUnknown Boot Loader Code\n"
                         "\nGPT Protective MBR\n------------------\nDisk Signature 0x00000000\n"
                         "\nPartition table entries\n\n\tInactive [ EFI GPT ]\n"))
      << report;
}

TEST(Mbr, GptMarkerInAnySlotMakesTheDiskGpt) {
  for (std::size_t slot = 0; slot < 4; ++slot) {
    SCOPED_TRACE(slot);
    BootRecord record;
    record.entries[slot] = {.type = 0xEE, .first = 1, .count = 4095};
    Disk disk;
    PutBootRecord(disk, 0, record);
    EXPECT_NE(ReportOf(disk, 0).find("\nGPT Protective MBR\n"), std::string::npos);
    EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n         1\tPrimary GPT Header\n");
  }
}

// A dynamic GPT disk keeps its dynamic metadata in a partition: only the GPT header is registered.
TEST(Mbr, GptBesideDynamicRegistersTheGptHeaderOnly) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x42, .first = 63}, {.type = 0xEE, .first = 1}}});
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n         1\tPrimary GPT Header\n");
}

TEST(Mbr, DynamicDiskRegistersSectorSixFromAnySlot) {
  for (std::size_t slot = 0; slot < 4; ++slot) {
    for (const u32 sectorSize : {512U, 4096U}) {
      SCOPED_TRACE(slot * 10000 + sectorSize);
      BootRecord record;
      record.entries[slot] = {.type = 0x42, .first = 63, .count = 100};
      Disk disk(256, sectorSize);
      PutBootRecord(disk, 0, record);
      EXPECT_NE(ReportOf(disk, 0).find("\nMBR\n---\n"), std::string::npos);
      EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n         6\tPRIVHEAD Sector\n");
    }
  }
}

// The entries register before the record does, and the first registration of a sector stays.
TEST(Mbr, PartitionInSectorSixKeepsItsDescription) {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x42, .first = 63}, {.type = 0x07, .first = 6}}});
  EXPECT_EQ(TocOf(disk), "         0\tMaster Boot Record\n         6\tNTFS Boot Sector\n");
}

}  // namespace
}  // namespace trovisk::test
