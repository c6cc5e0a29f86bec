// Reports of TOCBLOCK, the table of contents of a dynamic disk's configuration area.

#include <gtest/gtest.h>

#include "tests/reports/ldm_disk.h"

namespace trovisk::test {
namespace {

Disk DiskWith(const TocBlock& toc) {
  Disk disk = DynamicMbrDisk();
  PutPrivhead(disk, kPrivheadSector, SmallPrivhead());
  PutTocBlock(disk, kTocSector, toc);
  return disk;
}

TEST(TocBlock, WholeReport) {
  const Disk disk = DiskWith({.sequence1 = 17,
                              .sequence2 = ~u32{0},
                              .config = {"config", 0x12AB, 10, 4294967300, 133'000'000'000'000'000},
                              .log = {"log", 0x00F0, 20, 224, 6}});
  EXPECT_TRUE(SameText(LdmReportOf(disk, kTocSector), Expected("ldm_tocblock.txt", disk)));
}

TEST(TocBlock, TimesAreLocal) {
  const Disk disk =
      DiskWith({.config = {.start = 10, .number = 133'000'000'000'000'000}, .log = {.start = 20}});
  const std::string path = ScratchPath("tocblock-time.img");
  disk.Write(path);
  const Outcome west = RunProgram(Build::kInventedCode, {path, "102"}, {"TZ=WST+5"});
  EXPECT_NE(
      west.out.find("\nConfig. Number/Timestamp?  : 133000000000000000 / Fri Jun 17 23:26:40 2022\n\n\n\n"
                    "Log Name "),
      std::string::npos);
  EXPECT_NE(west.out.find("\nLog Number/Timestamp?      : 0 / Wed Apr 22 14:24:48 2009\n\n\n\nVMDB starts"),
            std::string::npos);
}

// Nothing ends the names but their length: the flags behind them are not zero here.
TEST(TocBlock, NamesOfEightCharacters) {
  TocBlock toc = SmallTocBlock();
  toc.config.name = "ABCDEFGH";
  toc.config.flags = 0x4142;
  toc.log.name = "abcdefgh";
  toc.log.flags = 0x6162;
  const std::string report = LdmReportOf(DiskWith(toc), kTocSector);
  EXPECT_NE(report.find("\nConfig. Name               : [)ABCDEFGH]\nConfig. Flags              : 0x4142\n"),
            std::string::npos);
  EXPECT_NE(report.find("\nLog Name                   : [abcdefgh]\nLog Flags                  : 0x6162\n"),
            std::string::npos);
}

TEST(TocBlock, IdenticalCopiesRegisterOnce) {
  Disk disk = DynamicDisk();
  PutTocBlock(disk, 150, SmallTocBlock());
  PutVmdb(disk, kVmdbSector, {});
  PutKlog(disk, kKlogSector, {});
  const std::string toc = TocOf(disk);
  EXPECT_TRUE(SameText(toc, TocWithMbr("       102\tTOC Sector\n       110\tVMDB Sector\n"
                                       "       111\tVBLK Sector\n       112\tVBLK Sector\n"
                                       "       120\tKLOG Sector\n       150\tTOC Sector\n"
                                       "       160\tAlternate PRIVHEAD Sector\n"
                                       "       161\tAlternate PRIVHEAD Sector\n")));
}

// The VBLK records end where the copy says that was decoded last; its VMDB is registered as well.
TEST(TocBlock, LastCopyWins) {
  Disk disk = DynamicMbrDisk();
  Privhead header = SmallPrivhead();
  header.tocSize = 3;
  PutPrivhead(disk, kPrivheadSector, header);
  PutTocBlock(disk, 102, SmallTocBlock());
  TocBlock other = SmallTocBlock();
  other.config.size = 5;
  PutTocBlock(disk, 103, other);
  PutVmdb(disk, kVmdbSector, {});
  const std::string toc = TocOf(disk);
  EXPECT_NE(toc.find("       113\tVBLK Sector\n       114\tVBLK Sector\n       120\tKLOG Sector\n"),
            std::string::npos)
      << toc;
}

// The VBLK records would start behind the region's end: the first sector is registered all the same.
TEST(TocBlock, ConfigRegionOfOneSector) {
  TocBlock toc = SmallTocBlock();
  toc.config.size = 1;
  Disk disk = DiskWith(toc);
  PutVmdb(disk, kVmdbSector, {});
  EXPECT_NE(LdmReportOf(disk, kTocSector)
                .find("\nVMDB starts @ sector       : 110\nVBLKs start @ sector       : 111\n"
                      "VBLKs end @ sector         : 110\n"),
            std::string::npos);
  EXPECT_NE(TocOf(disk).find("       111\tVBLK Sector\n       120\tKLOG Sector\n"), std::string::npos);
}

// Where no copy stands the loading pass goes on without a word; the sector keeps its name.
TEST(TocBlock, WithoutSignature) {
  TocBlock toc = SmallTocBlock();
  toc.signature = "TOCBLOCk";
  const Disk disk = DiskWith(toc);
  const Outcome other = RunOn(disk, {"7"});
  EXPECT_EQ(other.err, "");

  const Outcome outcome = RunOn(disk, {"102"});
  EXPECT_TRUE(
      SameText(outcome.out, Preamble(disk, " sector 102", "\n") + "\nReading sector # 102 [TOC Sector]\n\n"));
  EXPECT_EQ(outcome.err, "**** No TOC magic found ****\n");
  EXPECT_TRUE(SameText(TocOf(disk), TocWithMbr("       102\tTOC Sector\n       150\tTOC Sector\n"
                                               "       160\tAlternate PRIVHEAD Sector\n"
                                               "       161\tAlternate PRIVHEAD Sector\n")));
}

// The printing pass goes on behind it too.
TEST(TocBlock, WithoutSignatureTheWalkGoesOn) {
  const Disk disk = DiskWith({.signature = ""});
  const Outcome outcome = RunOn(disk, {"102", "103"});
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sectors [ 102 - 103 ]", "\n") +
                                        "\nReading sector # 102 [TOC Sector]\n\n"
                                        "Reading sector # 103 [Raw Sector]\n... empty ...\n"));
}

// The regions begin in front of the configuration area: the printing pass gets to them first.
TEST(TocBlock, SectorNumbersWrap) {
  const u64 minusTen = ~u64{0} - 9;
  Disk disk = DiskWith({.config = {.start = minusTen, .size = minusTen}, .log = {.start = ~u64{0}}});
  PutVmdb(disk, 90, {});
  PutKlog(disk, 99, {});
  EXPECT_NE(LdmReportOf(disk, kTocSector)
                .find("\nVMDB starts @ sector       : 90\nVBLKs start @ sector       : 91\n"
                      "VBLKs end @ sector         : 79\nKLOGs start @ sector       : 99\n\n"),
            std::string::npos);
}

TEST(TocBlock, LargestSectorNumbers) {
  Disk disk = DiskWith({.config = {.start = ~u64{0} - 100, .size = ~u64{0}}, .log = {.start = 20}});
  EXPECT_NE(LdmReportOf(disk, kTocSector)
                .find("\nVMDB starts @ sector       : 18446744073709551615\n"
                      "VBLKs start @ sector       : 0\n"
                      "VBLKs end @ sector         : 18446744073709551613\n"
                      "KLOGs start @ sector       : 120\n\n"),
            std::string::npos);
}

TEST(TocBlock, UnreadableSector) {
  Disk disk = DynamicDisk();
  disk.Resize(102);
  const Outcome outcome = RunOn(disk, {"101"});
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
  EXPECT_EQ(outcome.status, 0);
}

}  // namespace
}  // namespace trovisk::test
