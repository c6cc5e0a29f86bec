// Reports of ReFS superblocks and the checkpoints that these register.

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

#include "tests/disks/mbr.h"
#include "tests/disks/refs.h"
#include "tests/support/expected.h"
#include "tests/support/limits.h"

namespace trovisk::test {
namespace {

constexpr u64 kBoot = 2048;
constexpr u64 kCluster = 8;  // sectors
constexpr u64 kSuperblock = kBoot + 30 * kCluster;

// A disk with one volume of eight sectors per cluster. The backup boot record in its last sector brings the
// stream back to decimal behind checkpoints that are empty.
Disk DiskWith(const ReFsSuperblock& superblock) {
  Disk disk(16384);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = kBoot, .count = 14336}}});
  PutReFsBootRecord(disk, kBoot, {.sectorCount = 14336, .sectorsPerCluster = 8});
  PutReFsSuperblock(disk, kSuperblock, superblock);
  return disk;
}

// The lines of the references, their count in front.
std::string ReferenceLines(const ReFsSuperblock& superblock) {
  return Section(ReportOf(DiskWith(superblock), kSuperblock), "Number Of", "Offset To Self-Descriptor");
}

// From the self-descriptor's place to the end of the report.
std::string DescriptorLines(const Disk& disk) {
  return Section(ReportOf(disk, kSuperblock), "Offset To Self-Descriptor", "Reading sector");
}

std::string ChecksumLines(const ReFsPageReference& reference) {
  const std::string report = ReportOf(DiskWith({.descriptor = reference}), kSuperblock);
  return Section(report, "            Checkum Type", "\n\n\n");
}

// The rows of a whole-disk run's checkpoints.
std::string CheckpointRows(const Disk& disk) {
  std::istringstream toc(TocOf(disk));
  std::string rows;
  for (std::string row; std::getline(toc, row);) {
    if (row.ends_with("\tReFS CHKP Sector")) rows += row + "\n";
  }
  return rows;
}

TEST(ReFsSuperblock, WholeReport) {
  const Disk disk = DiskWith({});
  EXPECT_TRUE(SameText(ReportOf(disk, kSuperblock), Expected("refs_superblock.txt", disk)));
}

TEST(ReFsSuperblock, LargestHeaderValues) {
  constexpr u64 kAll = ~u64{0};
  const Disk disk = DiskWith({.header = {.signature = "\x01\r\n~",
                                         .unknown = 0xFFFFFFFF,
                                         .volumeSignature = 0xFFFFFFFF,
                                         .allocatorClock = kAll,
                                         .treeClock = kAll,
                                         .lcns = {kAll, kAll, kAll, kAll},
                                         .tableIdHigh = kAll,
                                         .tableIdLow = 0xFFFFFFFFFFFFFFFE},
                              .version = kAll});
  EXPECT_TRUE(SameText(Section(ReportOf(disk, kSuperblock), "Page Signature", "Offset to Checkpoint"),
                       "Page Signature              : [<0x01><CR><LF>~]\n"
                       "Unknown                     : 0xFFFFFFFF\n"
                       "Volume Signature            : 0xFFFFFFFF\n"
                       "Virtual Allocator Clock     : 18446744073709551615\n"
                       "Tree Update Clock           : 18446744073709551615\n"
                       "Logical Cluster Number #0   : 0xFFFFFFFFFFFFFFFF\n"
                       "Logical Cluster Number #1   : 0xFFFFFFFFFFFFFFFF\n"
                       "Logical Cluster Number #2   : 0xFFFFFFFFFFFFFFFF\n"
                       "Logical Cluster Number #3   : 0xFFFFFFFFFFFFFFFF\n"
                       "Table Identifier            : FFFFFFFFFFFFFFFF-FFFFFFFFFFFFFFFE\n"
                       "Unknown GUID                : {0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9}\n"
                       "Superblock Version          : 18446744073709551615\n"));
}

// The checkpoints are registered as the superblock is printed, and the printing pass gets to them.
TEST(ReFsSuperblock, RegistersItsCheckpoints) {
  Disk disk = DiskWith({.references = {0x1E0, 0x1E8}});
  PutReFsCheckpoint(disk, 5888);
  PutReFsCheckpoint(disk, 5952);
  EXPECT_EQ(TocOf(disk),
            "         0\tMaster Boot Record\n"
            "      2048\tNTFS Boot Sector\n"
            "      2288\tReFS SUPB Sector\n"
            "      5888\tReFS CHKP Sector\n"
            "      5952\tReFS CHKP Sector\n"
            "     16383\tBackup ReFS Volume Boot Record\n");
  const std::string report = RunOn(disk).out;
  EXPECT_NE(report.find("Reading sector # 5888 [ReFS CHKP Sector]\n"), std::string::npos);
  EXPECT_NE(report.find("Reading sector # 5952 [ReFS CHKP Sector]\n"), std::string::npos);
}

// Where the superblock itself is not asked for, its checkpoints stay unknown.
TEST(ReFsSuperblock, UnprintedSuperblockRegistersNothing) {
  Disk disk = DiskWith({});
  EXPECT_TRUE(SameText(ReportOf(disk, 5888), "Reading sector # 5888 [Raw Sector]\n... empty ...\n"));
}

// Printed as part of a range, it registers those in the range.
TEST(ReFsSuperblock, CheckpointsInARange) {
  Disk disk = DiskWith({.references = {31}});
  const std::string report = RunOn(disk, {"2288", "2296"}).out;
  EXPECT_NE(report.find("Reading sector # 2295 [Raw Sector]\n"), std::string::npos);
  EXPECT_NE(report.find("Reading sector # 2296 [ReFS CHKP Sector]\n"), std::string::npos);
}

// A checkpoint before its superblock is listed, but the pass is beyond it already.
TEST(ReFsSuperblock, CheckpointBeforeTheSuperblock) {
  const Disk disk = DiskWith({.references = {2}});
  EXPECT_EQ(CheckpointRows(disk), "      2064\tReFS CHKP Sector\n");
  EXPECT_EQ(RunOn(disk).out.find("Reading sector # 2064"), std::string::npos);
}

// 0x2000000000000000 clusters of 8 sectors are 2^64: the products wrap, and the second is the volume itself.
TEST(ReFsSuperblock, ReferencesWrap) {
  EXPECT_EQ(CheckpointRows(DiskWith({.references = {0x20000000000001E0, 0x2000000000000000}})),
            "      5888\tReFS CHKP Sector\n");
}

// 2048 + 8 * 0x100000000, beyond 32 bits and the disk: listed, and no pass gets there.
TEST(ReFsSuperblock, CheckpointBeyondTheDisk) {
  const Disk disk = DiskWith({.references = {0x100000000}});
  EXPECT_EQ(CheckpointRows(disk), "34359740416\tReFS CHKP Sector\n");
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

// The volume decoded last counts, and the pass comes to a second one before the first one's superblock.
TEST(ReFsSuperblock, SecondVolumeReplacesTheContext) {
  Disk disk = DiskWith({.references = {0x100}});
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x07, .first = kBoot, .count = 12288},
                             {.type = 0x07, .first = 2100, .count = 100}}});
  PutReFsBootRecord(disk, 2100, {.sectorCount = 1, .sectorsPerCluster = 16, .versionMajor = 2});
  EXPECT_EQ(CheckpointRows(disk), "      6196\tReFS CHKP Sector\n");
}

TEST(ReFsSuperblock, NoRegistrationWithoutSectorsPerCluster) {
  Disk disk = DiskWith({.references = {0x100}});
  PutBootRecord(disk, 0,
                {.entries = {{.type = 0x07, .first = kBoot, .count = 12288},
                             {.type = 0x07, .first = 2100, .count = 100}}});
  PutReFsBootRecord(disk, 2100, {.sectorCount = 1, .sectorsPerCluster = 0});
  EXPECT_EQ(CheckpointRows(disk), "");
  EXPECT_EQ(Section(ReportOf(disk, kSuperblock), "Checkpoint Reference", "\nOffset"),
            "Checkpoint Reference #1     : 0x0000000000000100");
}

TEST(ReFsSuperblock, NoReferences) {
  EXPECT_EQ(ReferenceLines({.referenceCount = 0}), "Number Of Checkpoint Refs   : 0\n");
  EXPECT_EQ(CheckpointRows(DiskWith({.referenceCount = 0})), "");
}

// Two on the disk, one by the count.
TEST(ReFsSuperblock, CountEndsTheList) {
  EXPECT_EQ(ReferenceLines({.referenceCount = 1}),
            "Number Of Checkpoint Refs   : 1\n"
            "Checkpoint Reference #1     : 0x00000000000001E0\n");
  EXPECT_EQ(CheckpointRows(DiskWith({.referenceCount = 1})), "      5888\tReFS CHKP Sector\n");
}

// From byte 0xC0, 40 references lie in the bytes that are read: every one of them, and no more.
TEST(ReFsSuperblock, LargestCountEndsWithTheBuffer) {
  for (const u32 count : {u32{41}, u32{0x7FFFFFFF}, u32{0x80000000}, u32{0xFFFFFFFF}}) {
    Disk disk = DiskWith({.referenceCount = count});
    for (std::size_t i = 0; i < 40; ++i)
      disk.At(kSuperblock).Le64(0xC0 + 8 * i, 0x1E0 + 8 * i);
    std::string lines = "Number Of Checkpoint Refs   : " + std::to_string(count) + "\n";
    for (unsigned i = 0; i < 40; ++i) {
      char line[64];
      std::snprintf(line, sizeof line, "Checkpoint Reference #%u     : 0x%016X\n", i + 1, 0x1E0 + 8 * i);
      lines += line;
    }
    const Outcome outcome = RunOnWithinLimits(disk, {"2288"});
    EXPECT_TRUE(SameText(Section(outcome.out, "Number Of", "Offset To Self"), lines));
  }
}

// The whole of the first 512 bytes as a list, the header included.
TEST(ReFsSuperblock, ReferencesFromThePageStart) {
  const std::string lines = ReferenceLines({.referencesOffset = 0, .referenceCount = 0xFFFFFFFF});
  EXPECT_NE(lines.find("\nCheckpoint Reference #1     : 0x0000000242505553\n"), std::string::npos) << lines;
  EXPECT_NE(lines.find("\nCheckpoint Reference #64     : 0x0000000000000000\n"), std::string::npos) << lines;
  EXPECT_EQ(lines.find("#65"), std::string::npos) << lines;
}

// 504 is the last place for a whole reference.
TEST(ReFsSuperblock, LastReferenceThatIsInside) {
  Disk disk = DiskWith({.referencesOffset = 504, .referenceCount = 2});
  disk.At(kSuperblock).Le64(504, 0x1F0);
  EXPECT_EQ(Section(ReportOf(disk, kSuperblock), "Number Of", "Offset To Self"),
            "Number Of Checkpoint Refs   : 2\n"
            "Checkpoint Reference #1     : 0x00000000000001F0\n");
  EXPECT_EQ(CheckpointRows(disk), "      6016\tReFS CHKP Sector\n");
}

// A reference that is not wholly inside is none.
TEST(ReFsSuperblock, ReferencesAcrossAndBeyondTheEnd) {
  for (const u32 offset : {u32{505}, u32{511}, u32{512}, u32{513}, u32{0x80000000}, u32{0xFFFFFFFF}}) {
    Disk disk = DiskWith({.referencesOffset = offset});
    disk.At(kSuperblock).Fill(504, 8, 0x01);
    EXPECT_EQ(Section(ReportOf(disk, kSuperblock), "Number Of", "Offset To Self"),
              "Number Of Checkpoint Refs   : 2\n")
        << offset;
    EXPECT_EQ(CheckpointRows(disk), "") << offset;
  }
}

TEST(ReFsSuperblock, EmptySelfDescriptor) {
  EXPECT_TRUE(SameText(DescriptorLines(DiskWith({.descriptorLength = 0})),
                       "Offset To Self-Descriptor   : 0x000000D0\n"
                       "Length Of Self-Descriptor   : 0\n"
                       "Self Descriptor             : 0x\n"
                       "\n"
                       "\n"));
}

// One byte short of a page reference: the bytes alone.
TEST(ReFsSuperblock, SelfDescriptorOf47Bytes) {
  EXPECT_TRUE(SameText(
      DescriptorLines(DiskWith({.descriptorLength = 47})),
      "Offset To Self-Descriptor   : 0x000000D0\n"
      "Length Of Self-Descriptor   : 47\n"
      "Self Descriptor             : 0x1E00000000000000000000000000000000000000000000000000000000000000"
      "0000020808000000EFCDAB89674523\n"
      "\n"
      "\n"));
}

// The last byte that is read.
TEST(ReFsSuperblock, SelfDescriptorAtTheLastByte) {
  Disk disk = DiskWith({.descriptorOffset = 511, .descriptorLength = 47});
  disk.At(kSuperblock).U8(511, 0xA5);
  EXPECT_TRUE(SameText(DescriptorLines(disk),
                       "Offset To Self-Descriptor   : 0x000001FF\n"
                       "Length Of Self-Descriptor   : 47\n"
                       "Self Descriptor             : 0xA5\n"
                       "\n"
                       "\n"));
}

constexpr char kZeroReference[] =
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
    "\n"
    "\n";

// Beyond what was read there are no bytes, and the fields are zero.
TEST(ReFsSuperblock, SelfDescriptorBeyondTheEnd) {
  EXPECT_TRUE(SameText(DescriptorLines(DiskWith({.descriptorOffset = 512, .descriptorLength = 48})),
                       std::string("Offset To Self-Descriptor   : 0x00000200\n"
                                   "Length Of Self-Descriptor   : 48\n"
                                   "Self Descriptor             : 0x\n") +
                           kZeroReference));
  EXPECT_TRUE(
      SameText(DescriptorLines(DiskWith({.descriptorOffset = 0xFFFFFFFF, .descriptorLength = 0x7FFFFFFF})),
               std::string("Offset To Self-Descriptor   : 0xFFFFFFFF\n"
                           "Length Of Self-Descriptor   : 2147483647\n"
                           "Self Descriptor             : 0x\n") +
                   kZeroReference));
}

// The bytes end where the buffer ends; the fields that it cuts keep their inner bytes: of LCN#1 three.
TEST(ReFsSuperblock, SelfDescriptorAcrossTheEnd) {
  Disk disk = DiskWith({.descriptorOffset = 501, .descriptorLength = 0x7FFFFFFF});
  disk.At(kSuperblock).Bytes(501, {0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x21, 0x22, 0x23});
  EXPECT_TRUE(SameText(DescriptorLines(disk),
                       "Offset To Self-Descriptor   : 0x000001F5\n"
                       "Length Of Self-Descriptor   : 2147483647\n"
                       "Self Descriptor             : 0x1112131415161718212223\n"
                       "\n"
                       "            LCN#0           : 0x1817161514131211\n"
                       "            LCN#1           : 0x0000000000232221\n"
                       "            LCN#2           : 0x0000000000000000\n"
                       "            LCN#3           : 0x0000000000000000\n"
                       "            Checkum Type    : Unknown - 0\n"
                       "            Checkum Offset  : 0x00\n"
                       "            Checksum Length : 0\n"
                       "            Checksum        : 0x\n"
                       "\n"
                       "\n"
                       "\n"));
}

// A length that is negative as a signed number shows no bytes, but is long enough for the fields.
TEST(ReFsSuperblock, NegativeSelfDescriptorLength) {
  for (const u32 length : {u32{0x80000000}, u32{0xFFFFFFFF}}) {
    EXPECT_TRUE(SameText(DescriptorLines(DiskWith({.descriptorLength = length})),
                         "Offset To Self-Descriptor   : 0x000000D0\n"
                         "Length Of Self-Descriptor   : " +
                             std::to_string(length) +
                             "\n"
                             "Self Descriptor             : 0x\n"
                             "\n"
                             "            LCN#0           : 0x000000000000001E\n"
                             "            LCN#1           : 0x0000000000000000\n"
                             "            LCN#2           : 0x0000000000000000\n"
                             "            LCN#3           : 0x0000000000000000\n"
                             "            Checkum Type    : CRC64-ECMA-182\n"
                             "            Checkum Offset  : 0x08\n"
                             "            Checksum Length : 8\n"
                             "            Checksum        : 0x0123456789ABCDEF\n"
                             "\n"
                             "\n"
                             "\n"));
  }
}

TEST(ReFsPageReference, AllClusterNumbers) {
  const ReFsPageReference reference = {.lcns = {1, 0x20, 0x300, ~u64{0}}};
  EXPECT_EQ(Section(ReportOf(DiskWith({.descriptor = reference}), kSuperblock), "            LCN#0",
                    "            Checkum Type"),
            "            LCN#0           : 0x0000000000000001\n"
            "            LCN#1           : 0x0000000000000020\n"
            "            LCN#2           : 0x0000000000000300\n"
            "            LCN#3           : 0xFFFFFFFFFFFFFFFF\n");
}

TEST(ReFsPageReference, Crc32C) {
  EXPECT_EQ(ChecksumLines({.checksumType = 1, .checksumLength = 4, .checksum = 0xFFFFFFFF01234567}),
            "            Checkum Type    : CRC32-C\n"
            "            Checkum Offset  : 0x08\n"
            "            Checksum Length : 4\n"
            "            Checksum        : 0x01234567");
}

// A length that is not the type's own: byte by byte, the last first.
TEST(ReFsPageReference, Crc32COf8Bytes) {
  EXPECT_EQ(ChecksumLines({.checksumType = 1, .checksumLength = 8}),
            "            Checkum Type    : CRC32-C\n"
            "            Checkum Offset  : 0x08\n"
            "            Checksum Length : 8\n"
            "            Checksum        : 0x0123456789ABCDEF");
}

TEST(ReFsPageReference, Crc64Of4And3Bytes) {
  EXPECT_EQ(ChecksumLines({.checksumLength = 4}),
            "            Checkum Type    : CRC64-ECMA-182\n"
            "            Checkum Offset  : 0x08\n"
            "            Checksum Length : 4\n"
            "            Checksum        : 0x89ABCDEF");
  EXPECT_EQ(ChecksumLines({.checksumLength = 3}),
            "            Checkum Type    : CRC64-ECMA-182\n"
            "            Checkum Offset  : 0x08\n"
            "            Checksum Length : 3\n"
            "            Checksum        : 0xABCDEF");
}

TEST(ReFsPageReference, UnknownTypes) {
  EXPECT_EQ(ChecksumLines({.checksumType = 0, .checksumLength = 1}),
            "            Checkum Type    : Unknown - 0\n"
            "            Checkum Offset  : 0x08\n"
            "            Checksum Length : 1\n"
            "            Checksum        : 0xEF");
  EXPECT_EQ(ChecksumLines({.checksumType = 255, .checksumLength = 0}),
            "            Checkum Type    : Unknown - 255\n"
            "            Checkum Offset  : 0x08\n"
            "            Checksum Length : 0\n"
            "            Checksum        : 0x");
}

// At offset 0 the checksum is taken from the type and length themselves.
TEST(ReFsPageReference, ChecksumOffsetZero) {
  EXPECT_EQ(ChecksumLines({.checksumOffset = 0}),
            "            Checkum Type    : CRC64-ECMA-182\n"
            "            Checkum Offset  : 0x00\n"
            "            Checksum Length : 8\n"
            "            Checksum        : 0x0000000800020000");
}

// The reference stands at 0xD0, so the largest offset leads to byte 0x1EF, 17 before the end.
TEST(ReFsPageReference, LongestChecksumEndsWithTheBuffer) {
  for (const u16 length : {u16{17}, u16{18}, u16{32767}}) {
    Disk disk = DiskWith({.descriptor = {.checksumOffset = 255, .checksumLength = length}});
    disk.At(kSuperblock).Bytes(0x1EF, {0xC0, 0xC1}).U8(0x1FF, 0xCF);
    EXPECT_EQ(Section(ReportOf(disk, kSuperblock), "            Checkum Offset", "\n\n"),
              "            Checkum Offset  : 0xFF\n"
              "            Checksum Length : " +
                  std::to_string(length) +
                  "\n"
                  "            Checksum        : 0xCF0000000000000000000000000000C1C0");
  }
}

// From 32768 on the length is a negative number.
TEST(ReFsPageReference, NegativeChecksumLength) {
  for (const u16 length : {u16{32768}, u16{65535}}) {
    EXPECT_EQ(ChecksumLines({.checksumLength = length}),
              "            Checkum Type    : CRC64-ECMA-182\n"
              "            Checkum Offset  : 0x08\n"
              "            Checksum Length : " +
                  std::to_string(length) +
                  "\n"
                  "            Checksum        : 0x");
  }
}

// A number across the end keeps its inner bytes, a list of bytes leaves the outer ones out.
TEST(ReFsPageReference, ChecksumAcrossTheEnd) {
  Disk disk(0);
  for (const u8 type : {u8{1}, u8{2}, u8{3}}) {
    disk = DiskWith({.descriptorOffset = 0x1C8, .descriptorLength = 48});
    PutReFsPageReference(disk.At(kSuperblock), 0x1C8,
                         {.checksumType = type,
                          .checksumOffset = 0x16,
                          .checksumLength = static_cast<u16>(type == 1 ? 4 : 8),
                          .checksum = 0});
    disk.At(kSuperblock).Bytes(0x1FE, {0xE1, 0xE2});
    const char* const checksum = type == 1 ? "0x0000E2E1" : type == 2 ? "0x000000000000E2E1" : "0xE2E1";
    EXPECT_EQ(Section(ReportOf(disk, kSuperblock), "            Checksum   ", "\n\n"),
              std::string("            Checksum        : ") + checksum);
  }
}

// Wholly beyond the end: a number is zero, a list of bytes empty.
TEST(ReFsPageReference, ChecksumBeyondTheEnd) {
  for (const u8 type : {u8{1}, u8{2}, u8{3}}) {
    Disk disk = DiskWith({.descriptorOffset = 0x1C8, .descriptorLength = 48});
    PutReFsPageReference(disk.At(kSuperblock), 0x1C8,
                         {.checksumType = type,
                          .checksumOffset = 0x18,
                          .checksumLength = static_cast<u16>(type == 1 ? 4 : 8),
                          .checksum = ~u64{0}});
    const char* const checksum = type == 1 ? "0x00000000" : type == 2 ? "0x0000000000000000" : "0x";
    EXPECT_EQ(Section(ReportOf(disk, kSuperblock), "            Checksum   ", "\n\n"),
              std::string("            Checksum        : ") + checksum);
  }
}

}  // namespace
}  // namespace trovisk::test
