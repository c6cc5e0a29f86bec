// Reports of KLOG, the transaction log of a dynamic disk's object database.

#include <gtest/gtest.h>

#include "tests/reports/ldm_disk.h"

namespace trovisk::test {
namespace {

// With a VMDB, so that the walk gets to the log.
Disk DiskWith(const Klog& first) {
  Disk disk = DynamicDisk();
  PutVmdb(disk, kVmdbSector, {});
  PutKlog(disk, kKlogSector, first);
  return disk;
}

// How many sectors from the first one are registered in a row.
u64 LengthOfChain(const Disk& disk) {
  const std::string toc = TocOf(disk);
  u64 sector = kKlogSector;
  while (toc.find("       " + std::to_string(sector) + "\tKLOG Sector\n") != std::string::npos)
    ++sector;
  return sector - kKlogSector;
}

// The counters are big-endian, the identifiers little-endian, and each is shown twice.
TEST(Klog, WholeReport) {
  const Disk disk = DiskWith({.logCount = 2,
                              .klogCount = 224,
                              .index = 7,
                              .identifiers = {4294967311, 0x0102030405060708, ~u64{0}}});
  EXPECT_TRUE(SameText(LdmReportOf(disk, kKlogSector), Expected("ldm_klog.txt", disk)));
}

TEST(Klog, WithoutIdentifiers) {
  const Disk disk = DiskWith({.identifiers = {1, 2, 3}});
  EXPECT_TRUE(SameText(LdmReportOf(disk, kKlogSector),
                       "Reading sector # 120 [KLOG Sector]\n\n"
                       "Magic Number    : [KLOG]\n"
                       "Log Count       : 0\n"
                       "Number of KLOGs : 1\n"
                       "KLOG Index      : 0\n\n"));
}

// Sixty identifiers lie in the sector, which are 59 pairs, however many the count says.
TEST(Klog, PairsEndWithTheSector) {
  std::vector<u64> identifiers;
  for (u64 i = 0; i < 60; ++i)
    identifiers.push_back(1000 + i);
  for (const u32 count : {58U, 59U, 60U, 61U, ~0U}) {
    Disk disk = DiskWith({.logCount = count, .identifiers = identifiers});
    disk.At(kKlogSector).Fill(505, 7, 0xEE);
    std::string expected =
        "Reading sector # 120 [KLOG Sector]\n\nMagic Number    : [KLOG]\nLog Count       : " +
        std::to_string(count) + "\nNumber of KLOGs : 1\nKLOG Index      : 0\n";
    for (u64 n = 1; n <= std::min(count, 59U); ++n) {
      expected += "Committed Id. # " + std::to_string(n) + " : " + std::to_string(999 + n) + "\n";
      expected += "Pending Id. # " + std::to_string(n) + "   : " + std::to_string(1000 + n) + "\n";
    }
    EXPECT_TRUE(SameText(LdmReportOf(disk, kKlogSector), expected + "\n"));
  }
}

TEST(Klog, ChainOfTwo) {
  Disk disk = DiskWith({.klogCount = 2});
  PutKlog(disk, kKlogSector + 1, {.klogCount = 2, .index = 1});
  EXPECT_EQ(LengthOfChain(disk), 2U);
}

TEST(Klog, CountOfZeroRegistersNothing) {
  EXPECT_EQ(LengthOfChain(DiskWith({.klogCount = 0})), 1U);
}

TEST(Klog, EverySectorsOwnCountDecides) {
  Disk disk = DiskWith({.klogCount = 2});
  PutKlog(disk, kKlogSector + 1, {.klogCount = ~0U, .index = 1});
  PutKlog(disk, kKlogSector + 2, {.klogCount = 3, .index = 2});
  EXPECT_EQ(LengthOfChain(disk), 3U);
}

// The first sector without signature ends a chain of four thousand million sectors.
TEST(Klog, EndlessCount) {
  Disk disk = DiskWith({.klogCount = ~0U});
  EXPECT_EQ(LengthOfChain(disk), 2U);
  const Outcome outcome = RunOn(disk, {"121"});
  EXPECT_TRUE(outcome.out.ends_with("\nReading sector # 121 [KLOG Sector]\n\n")) << outcome.out;
  EXPECT_EQ(outcome.err, "**** No KLOG magic found ****\n**** No KLOG magic found ****\n");
}

// The table of contents at 103 moves the start of the log to sector 0 after the one at 102 has registered
// sector 120. The last sector of a log of none that starts at 0 is then the largest number there is.
TEST(Klog, LimitOfTheChainWraps) {
  for (const u64 start : {u64{0}, u64{1}}) {
    Disk disk = DynamicMbrDisk();
    Privhead header = SmallPrivhead();
    header.tocSize = 3;
    PutPrivhead(disk, kPrivheadSector, header);
    PutTocBlock(disk, 102, SmallTocBlock());
    TocBlock moved = SmallTocBlock();
    moved.log.start = start - kConfigStart;
    PutTocBlock(disk, 103, moved);
    PutVmdb(disk, kVmdbSector, {});
    PutKlog(disk, kKlogSector, {.klogCount = 0});
    EXPECT_EQ(LengthOfChain(disk), start == 0 ? 2U : 1U);
  }
}

TEST(Klog, WithoutSignature) {
  const Disk disk = DiskWith({.signature = "KLOg", .klogCount = 2});
  const Outcome outcome = RunOn(disk, {"120"});
  EXPECT_TRUE(SameText(outcome.out,
                       Preamble(disk, " sector 120", "\n") + "\nReading sector # 120 [KLOG Sector]\n\n"));
  EXPECT_EQ(outcome.err, "**** No KLOG magic found ****\n**** No KLOG magic found ****\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(LengthOfChain(disk), 1U);
}

// The table of contents at 150 stands behind it and is not loaded, nor are the regions that it names.
TEST(Klog, WithoutSignatureTheLoadingPassEnds) {
  Disk disk = DiskWith({.signature = "KLOg"});
  TocBlock toc = SmallTocBlock();
  toc.log.start = 200;
  PutTocBlock(disk, 150, toc);
  EXPECT_EQ(TocOf(disk).find("       300\tKLOG Sector\n"), std::string::npos);
  PutKlog(disk, kKlogSector, {});
  EXPECT_NE(TocOf(disk).find("       300\tKLOG Sector\n"), std::string::npos);
}

TEST(Klog, UnreadableSector) {
  Disk disk = DiskWith({});
  disk.Resize(120);
  const Outcome outcome = RunOn(disk, {"119"});
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
}

}  // namespace
}  // namespace trovisk::test
