// Reports of ReFS checkpoints. They are registered while their superblock is printed, so these are whole-disk
// runs.

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/disks/mbr.h"
#include "tests/disks/refs.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kBoot = 2048;
constexpr u64 kCluster = 8;  // sectors
constexpr u64 kSuperblock = kBoot + 30 * kCluster;
constexpr u64 kCheckpoint = kBoot + 0x1E0 * kCluster;
constexpr u64 kSecondCheckpoint = kBoot + 0x1E8 * kCluster;

// A disk with one volume of eight sectors per cluster, whose superblock names the checkpoints in the clusters
// 0x1E0 and, with two, 0x1E8; the first is written.
Disk DiskWith(const ReFsCheckpoint& checkpoint, u32 checkpoints = 1, u32 sectorSize = 512) {
  Disk disk(16384, sectorSize);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kBoot, .count = 12288}}});
  PutReFsBootRecord(disk, kBoot, {.sectorCount = 1, .sectorsPerCluster = 8});
  PutReFsSuperblock(disk, kSuperblock, {.referenceCount = checkpoints});
  PutReFsCheckpoint(disk, kCheckpoint, checkpoint);
  return disk;
}

// What a whole-disk run prints from the first checkpoint on.
std::string RunFromTheCheckpoint(const Disk& disk) {
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  const std::size_t at = outcome.out.find("Reading sector # 5888 [ReFS CHKP Sector]\n");
  EXPECT_NE(at, std::string::npos) << outcome.out;
  return at == std::string::npos ? std::string() : outcome.out.substr(at);
}

std::string ReportOfCheckpoint(const Disk& disk) {
  return Section(RunFromTheCheckpoint(disk), "Reading sector", "\n\tTable Of Contents");
}

// From the self-descriptor's place to the clock behind it.
std::string DescriptorLines(const Disk& disk) {
  return Section(RunFromTheCheckpoint(disk), "Offset To Self", "Allocator Virtual Clock ");
}

TEST(ReFsCheckpoint, WholeReport) {
  const Disk disk = DiskWith({});
  EXPECT_TRUE(SameText(ReportOfCheckpoint(disk), Expected("refs_checkpoint.txt", disk)));
}

// Only 508 bytes are read of the page, the raw dump is the whole sector.
TEST(ReFsCheckpoint, WholeReportOnSectorsOf4096Bytes) {
  Disk disk = DiskWith({}, 1, 4096);
  disk.At(kCheckpoint).Text(4080, "the sector's end");
  EXPECT_TRUE(SameText(ReportOfCheckpoint(disk), Expected("refs_checkpoint.txt", disk)));
}

// Without a self-descriptor byte the numbers stay hexadecimal, the header line of the dump included; its rows
// switch back.
TEST(ReFsCheckpoint, EmptySelfDescriptorLeavesHexadecimal) {
  const Disk disk = DiskWith({.descriptorLength = 0});
  EXPECT_TRUE(SameText(RunFromTheCheckpoint(disk), Expected("refs_checkpoint_without_descriptor.txt", disk)));
}

// An empty sector has no rows: hexadecimal goes on into the next sector's report, where a field switches
// back.
TEST(ReFsCheckpoint, EmptySectorLeavesHexadecimalForTheNextReport) {
  Disk disk = DiskWith({}, 2);
  disk.At(kCheckpoint).Fill(0, 512, 0);
  PutReFsCheckpoint(disk, kSecondCheckpoint, {.descriptorOffset = 507, .descriptorLength = 1})
      .Bytes(507, {0xA5, 0xFF});
  EXPECT_TRUE(SameText(Section(RunFromTheCheckpoint(disk), "Reading sector", "\n\t=") + "\n",
                       Expected("refs_checkpoints_empty.txt", disk)));
}

// And where nothing switches back any more, the table of contents is hexadecimal too.
TEST(ReFsCheckpoint, EmptyLastSectorLeavesHexadecimalForTheTableOfContents) {
  Disk disk = DiskWith({});
  disk.At(kCheckpoint).Fill(0, 512, 0);
  EXPECT_EQ(TocOf(disk),
            "         0\tMaster Boot Record\n"
            "       800\tNTFS Boot Sector\n"
            "       8F0\tReFS SUPB Sector\n"
            "      1700\tReFS CHKP Sector\n");
}

// In a range, the headers of unregistered empty sectors behind it are hexadecimal as well; the first one with
// a listing switches back.
TEST(ReFsCheckpoint, HexadecimalInARangeEndsWithTheNextListing) {
  Disk disk = DiskWith({});
  disk.At(kCheckpoint).Fill(0, 512, 0);
  disk.At(kCheckpoint + 2).U8(0, 1);
  const std::string report = RunOn(disk, {"2288", "5891"}).out;
  const std::string text = report.substr(report.find("Reading sector # 1700 [as a raw sector]\n"));
  EXPECT_TRUE(SameText(text, ExpandExpected("Reading sector # 1700 [as a raw sector]\n"
                                            "... empty ...\n"
                                            "Reading sector # 1701 [Raw Sector]\n"
                                            "... empty ...\n"
                                            "Reading sector # 1702 [Raw Sector]\n"
                                            "{{dump 5890}}\n"
                                            "Reading sector # 5891 [Raw Sector]\n"
                                            "... empty ...\n",
                                            disk)));
}

// One byte is enough to switch back. The length stands before it and is hexadecimal.
TEST(ReFsCheckpoint, SelfDescriptorOfOneByte) {
  EXPECT_TRUE(SameText(DescriptorLines(DiskWith({.descriptorLength = 1})),
                       "Offset To Self-Descriptor   : 0x000000D0\n"
                       "Length Of Self-Descriptor   : 1\n"
                       "Self Descriptor             : 0xE0\n"
                       "Checkpoint Virtual Clock    : 1000\n"));
}

TEST(ReFsCheckpoint, SelfDescriptorOf47Bytes) {
  EXPECT_TRUE(SameText(
      DescriptorLines(DiskWith({.descriptorLength = 47})),
      "Offset To Self-Descriptor   : 0x000000D0\n"
      "Length Of Self-Descriptor   : 2F\n"
      "Self Descriptor             : 0xE001000000000000000000000000000000000000000000000000000000000000"
      "0000020808000000EFCDAB89674523\n"
      "Checkpoint Virtual Clock    : 1000\n"));
}

// 508 bytes are read: byte 507 is the last, and what stands behind it in the sector is not shown.
TEST(ReFsCheckpoint, SelfDescriptorAtTheLastByte) {
  Disk disk = DiskWith({.descriptorOffset = 507, .descriptorLength = 5});
  disk.At(kCheckpoint).Bytes(507, {0xA1, 0xA2, 0xA3, 0xA4, 0xA5});
  EXPECT_TRUE(SameText(DescriptorLines(disk),
                       "Offset To Self-Descriptor   : 0x000001FB\n"
                       "Length Of Self-Descriptor   : 5\n"
                       "Self Descriptor             : 0xA1\n"
                       "Checkpoint Virtual Clock    : 1000\n"));
}

// One past it there is no byte, so nothing switches back.
TEST(ReFsCheckpoint, SelfDescriptorBehindTheLastByte) {
  Disk disk = DiskWith({.descriptorOffset = 508, .descriptorLength = 4});
  disk.At(kCheckpoint).Fill(508, 4, 0xA2);
  EXPECT_TRUE(SameText(DescriptorLines(disk),
                       "Offset To Self-Descriptor   : 0x000001FC\n"
                       "Length Of Self-Descriptor   : 4\n"
                       "Self Descriptor             : 0x\n"
                       "Checkpoint Virtual Clock    : 3E8\n"));
}

// The fields of a page reference outside are zeros, and being fields they switch back.
TEST(ReFsCheckpoint, PageReferenceBeyondTheEnd) {
  for (const u32 length : {u32{48}, u32{0x7FFFFFFF}, u32{0x80000000}, u32{0xFFFFFFFF}}) {
    char number[16];
    std::snprintf(number, sizeof number, "%X", length);
    Disk disk = DiskWith({.descriptorOffset = 0xFFFFFFFF, .descriptorLength = length});
    EXPECT_TRUE(SameText(DescriptorLines(disk),
                         "Offset To Self-Descriptor   : 0xFFFFFFFF\n"
                         "Length Of Self-Descriptor   : " +
                             std::string(number) +
                             "\n"
                             "Self Descriptor             : 0x\n"
                             "\n"
                             "            LCN#0           : 0x0000000000000000\n"
                             "            LCN#1           : 0x0000000000000000\n"
                             "            LCN#2           : 0x0000000000000000\n"
                             "            LCN#3           : 0x0000000000000000\n"
                             "            Checkum Type    : Unknown - 0\n"
                             "            Checkum Offset  : 0x00\n"
                             "            Checksum Length : 0\n"
                             "            Checksum        : 0x\n"
                             "\n"
                             "Checkpoint Virtual Clock    : 1000\n"));
  }
}

// A field that crosses byte 508 keeps its inner bytes only: the checksum's last four lie behind it.
TEST(ReFsCheckpoint, PageReferenceAcrossTheEnd) {
  Disk disk = DiskWith({.descriptorOffset = 464, .descriptorLength = 48});
  PutReFsPageReference(disk.At(kCheckpoint), 464, {.lcns = {1, 2, 3, 4}});
  EXPECT_TRUE(SameText(
      DescriptorLines(disk),
      "Offset To Self-Descriptor   : 0x000001D0\n"
      "Length Of Self-Descriptor   : 30\n"
      "Self Descriptor             : 0x0100000000000000020000000000000003000000000000000400000000000000"
      "0000020808000000EFCDAB89\n"
      "\n"
      "            LCN#0           : 0x0000000000000001\n"
      "            LCN#1           : 0x0000000000000002\n"
      "            LCN#2           : 0x0000000000000003\n"
      "            LCN#3           : 0x0000000000000004\n"
      "            Checkum Type    : CRC64-ECMA-182\n"
      "            Checkum Offset  : 0x08\n"
      "            Checksum Length : 8\n"
      "            Checksum        : 0x0000000089ABCDEF\n"
      "\n"
      "Checkpoint Virtual Clock    : 1000\n"));
}

// The longest list of bytes is the whole of what was read.
TEST(ReFsCheckpoint, LongestSelfDescriptor) {
  const Disk disk = DiskWith({.descriptorOffset = 0, .descriptorLength = 0x7FFFFFFF});
  EXPECT_EQ(Section(RunFromTheCheckpoint(disk), "Self Descriptor  ", "\n"),
            ExpandExpected("Self Descriptor             : 0x{{hex 5888 0 508}}", disk));
}

// Wide values in hexadecimal, where nothing switches back.
TEST(ReFsCheckpoint, LargestValuesInHexadecimal) {
  const Disk disk = DiskWith({.flag1 = 0xFFFF,
                              .flag2 = 0xFFFF,
                              .versionMajor = 0xFFFF,
                              .versionMinor = 0xFFFF,
                              .descriptorOffset = 0xFFFFFFFF,
                              .descriptorLength = 47,
                              .checkpointClock = ~u64{0},
                              .allocatorClock = ~u64{0},
                              .oldestLogRecord = ~u64{0},
                              .unknown = ~u64{0},
                              .bufferOffset = ~u32{0},
                              .bufferLength = ~u32{0},
                              .pointerCount = ~u32{0},
                              .firstPointer = ~u32{0} - 1200});
  EXPECT_TRUE(SameText(Section(RunFromTheCheckpoint(disk), "Unknown Flag#1", "\nReading sector"),
                       "Unknown Flag#1              : 0xFFFF\n"
                       "Unknown Flag#2              : 0xFFFF\n"
                       "ReFS Version                : 65535.65535\n"
                       "Offset To Self-Descriptor   : 0xFFFFFFFF\n"
                       "Length Of Self-Descriptor   : 2F\n"
                       "Self Descriptor             : 0x\n"
                       "Checkpoint Virtual Clock    : FFFFFFFFFFFFFFFF\n"
                       "Allocator Virtual Clock     : FFFFFFFFFFFFFFFF\n"
                       "Oldest Log Record Reference : 0xFFFFFFFFFFFFFFFF\n"
                       "Unknown                     : 0xFFFFFFFFFFFFFFFF\n"
                       "Unknown Buffer Offset       : 0xFFFFFFFF\n"
                       "Unknown Buffer Length       : FFFFFFFF\n"
                       "Pointer Count               : FFFFFFFF\n"
                       "\n"
                       "Ptr To Object ID Table Ref             : FFFFFB4F\n"
                       "Ptr To Medium Allocator Table Ref      : FFFFFBB3\n"
                       "Ptr To Container Allocator Table Ref   : FFFFFC17\n"
                       "Ptr To Schema Table Ref                : FFFFFC7B\n"
                       "Ptr To Parent Child Table Ref          : FFFFFCDF\n"
                       "Ptr To Object ID Table Ref (duplicate) : FFFFFD43\n"
                       "Ptr To Block Reference Count Table Ref : FFFFFDA7\n"
                       "Ptr To Container Table Ref             : FFFFFE0B\n"
                       "Ptr To Container Table Ref (duplicate) : FFFFFE6F\n"
                       "Ptr to Schema Table Ref (duplicate)    : FFFFFED3\n"
                       "Ptr To Container Index Table Ref       : FFFFFF37\n"
                       "Ptr To Integrity State Table Ref       : FFFFFF9B\n"
                       "Ptr To Small Allocator Table Ref       : FFFFFFFF\n"
                       "\n"));
}

// A checkpoint names no sector: its pointers are shown, not followed.
TEST(ReFsCheckpoint, RegistersNothing) {
  EXPECT_EQ(TocOf(DiskWith({})),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "      2288\tReFS SUPB Sector\n"
            "      5888\tReFS CHKP Sector\n");
}

// The last sector of the disk, then the first behind it, which no pass gets to.
TEST(ReFsCheckpoint, AtTheDisksEnd) {
  Disk disk = DiskWith({});
  disk.Resize(kCheckpoint + 1);
  EXPECT_TRUE(SameText(ReportOfCheckpoint(disk), Expected("refs_checkpoint.txt", disk)));
  disk.Resize(kCheckpoint);
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.out.find("Reading sector # 5888"), std::string::npos);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

}  // namespace
}  // namespace trovisk::test
