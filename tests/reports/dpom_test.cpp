// Reports of the DPOM record of a Storage Replica log partition.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/disks/gpt.h"
#include "tests/disks/spaces.h"
#include "tests/support/expected.h"

namespace trovisk::test {
namespace {

constexpr u64 kFirst = 40;
// In the loading pass and in the printing pass.
const std::string kNoMagicTwice =
    "**** No DPOM magic found ****\n"
    "**** No DPOM magic found ****\n";

// A disk with a Storage Replica partition of one sector, which has no DPOD.
Disk DiskWith(const Dpom& record, u32 sectorSize = 512) {
  Disk disk(4096, sectorSize);
  PutGpt(disk, {{.type = kStorageReplicaType, .first = kFirst, .last = kFirst}});
  PutDpom(disk, kFirst, record);
  return disk;
}

TEST(Dpom, WholeReport) {
  const Disk disk = DiskWith({.dataSize = 0xFFFFFFFF,
                              .words = {1, 2, 3, 4, 0, 0x12345678, 0xFFFFFFFF, 0x80000000, 10},
                              .diskGuid = Guid("00112233-4455-6677-8899-AABBCCDDEEFF"),
                              .partitionGuid = Guid("FEDCBA98-7654-3210-0123-456789ABCDEF")});
  EXPECT_TRUE(SameText(ReportOf(disk, kFirst), Expected("dpom.txt", disk)));
}

// Everything zero: GUIDs are printed all the same. 224 bytes of a larger sector are the record, the dump
// shows them all.
TEST(Dpom, WholeReportOfZerosIn4096ByteSectors) {
  Disk disk = DiskWith({}, 4096);
  disk.At(kFirst).Fill(224, 32, 0xEE).Text(4090, "behind");
  EXPECT_TRUE(SameText(ReportOf(disk, kFirst), ExpandExpected(R"(Reading sector # 40 [DPOM sector]

Magic Number                      : [DPOM]
Data Size (bytes) ?               : 0
Unknown                           : 0x00000000 (0)
Unknown                           : 0x00000000 (0)
Unknown                           : 0x00000000 (0)
Unknown                           : 0x00000000 (0)
Unknown                           : 0x00000000 (0)
Unknown                           : 0x00000000 (0)
Unknown                           : 0x00000000 (0)
Unknown                           : 0x00000000 (0)
Unknown                           : 0x00000000 (0)

Replication Disk GUID             : { 00000000-0000-0000-0000-000000000000 }
Replication Partition Unique GUID : { 00000000-0000-0000-0000-000000000000 }

Reading sector # 40 [as a raw sector]
{{dump 40}}
)",
                                                              disk)));
}

TEST(Dpom, RecordCutByTheEndOfTheDisk) {
  Disk disk(41);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.type = kStorageReplicaType, .first = kFirst, .last = kFirst}});
  PutGptHeader(disk, 1, {.otherLba = 0});
  PutDpom(disk, kFirst, {});
  const std::string path = ScratchPath("cut-dpom.img");
  disk.Write(path);
  std::filesystem::resize_file(path, kFirst * 512 + 511);
  const Outcome outcome = RunProgram(Build::kShipped, {path});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512, 511) + "Error reading sector\n");
  EXPECT_TRUE(outcome.out.ends_with("        40\tDPOM sector\n")) << outcome.out;
}

TEST(Dpom, MissingSignatureEndsBothPassesWithoutADump) {
  const Disk disk = DiskWith({.signature = "DPOD"});
  const Outcome outcome = RunOn(disk, {"40"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, kNoMagicTwice);
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sector 40") + "Reading sector # 40 [DPOM sector]\n\n"));
}

TEST(Dpom, SignatureInSmallLettersIsNone) {
  EXPECT_EQ(RunOn(DiskWith({.signature = "dpom"}), {"40"}).err, kNoMagicTwice);
}

TEST(Dpom, OneWrongByteOfTheSignatureIsEnough) {
  for (const std::string& signature : WithOneWrongCharacter("DPOM"))
    EXPECT_EQ(RunOn(DiskWith({.signature = signature}), {"40"}).err, kNoMagicTwice) << signature;
}

// Nothing is registered, nothing printed but the report of the sector that was asked for.
TEST(Dpom, LoadsAndIsPassedOverSilently) {
  const Disk disk = DiskWith({});
  EXPECT_TRUE(SameText(ReportOf(disk, 41), "Reading sector # 41 [Raw Sector]\n... empty ...\n"));
  EXPECT_NE(TocOf(disk).find("        40\tDPOM sector\n      4063\t"), std::string::npos);
}

}  // namespace
}  // namespace trovisk::test
