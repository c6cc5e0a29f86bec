// Reports of the DPOD records of a Storage Replica log partition.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/disks/spaces.h"
#include "tests/support/expected.h"
#include "tests/support/limits.h"

namespace trovisk::test {
namespace {

constexpr u64 kFirst = 40;
constexpr u64 kDpod = kFirst + 1;
// In the loading pass and in the printing pass.
const std::string kNoMagicTwice =
    "**** No DPOD magic found ****\n"
    "**** No DPOD magic found ****\n";
constexpr Guid kPartitionGuid("00112233-4455-6677-8899-AABBCCDDEEFF");
constexpr Guid kGroupGuid("FEDCBA98-7654-3210-0123-456789ABCDEF");

// A disk with a Storage Replica partition of a DPOM, this DPOD and a last sector.
Disk DiskWith(const Dpod& record, u32 sectorSize = 512) {
  Disk disk(4096, sectorSize);
  PutGpt(disk, {{.type = kStorageReplicaType, .first = kFirst, .last = kFirst + 2}});
  PutDpom(disk, kFirst, {});
  PutDpod(disk, kDpod, record);
  return disk;
}

// The GUIDs are in small letters: nothing that this run printed before them was in capitals.
TEST(Dpod, WholeReport) {
  const Disk disk = DiskWith({.dataSize = 1048576,
                              .partitionGuid = kPartitionGuid,
                              .replicationGroupGuid = kGroupGuid,
                              .words = {1, 0, 0x12345678, 0xFFFFFFFF, 0x80000000, 0x00EFCDAB}});
  EXPECT_TRUE(SameText(ReportOf(disk, kDpod), Expected("dpod.txt", disk)));
}

TEST(Dpod, GuidsAreInCapitalsBehindAReportThatHadSome) {
  const Disk disk = DiskWith({.partitionGuid = kPartitionGuid, .replicationGroupGuid = kGroupGuid});
  const std::string report = RunOn(disk, {"40", "41"}).out;
  EXPECT_NE(report.find("\nMSFT_WvrReplica Partition GUID  : { 00112233-4455-6677-8899-AABBCCDDEEFF }\n"
                        "Replication Group GUID          : { FEDCBA98-7654-3210-0123-456789ABCDEF }\n"),
            std::string::npos);
}

// Everything zero: GUIDs are empty. 256 bytes of a larger sector are the record, the dump shows them all.
TEST(Dpod, WholeReportOfZerosIn4096ByteSectors) {
  Disk disk = DiskWith({}, 4096);
  disk.At(kDpod).Fill(0x40, 300, 0xEE).Text(4090, "behind");
  EXPECT_TRUE(SameText(ReportOf(disk, kDpod), ExpandExpected(R"(Reading sector # 41 [DPOD sector]

Magic Number                    : [DPOD]
Data Size (bytes) ?             : 0
MSFT_WvrReplica Partition GUID  : <empty>
Replication Group GUID          : <empty>
Unknown                         : 0x00000000 (0)
Unknown                         : 0x00000000 (0)
Unknown                         : 0x00000000 (0)
Unknown                         : 0x00000000 (0)
Unknown                         : 0x00000000 (0)
Unknown                         : 0x00000000 (0)

Reading sector # 41 [as a raw sector]
{{dump 41}}
)",
                                                             disk)));
}

// Each GUID is empty for itself, and only when all its bytes are zero.
TEST(Dpod, OneEmptyGuid) {
  const std::string group =
      ReportOf(DiskWith({.replicationGroupGuid = Guid("00000000-0000-0000-0000-000000000001")}), kDpod);
  EXPECT_NE(group.find("MSFT_WvrReplica Partition GUID  : <empty>\n"
                       "Replication Group GUID          : { 00000000-0000-0000-0000-000000000001 }\n"),
            std::string::npos);
  const std::string partition =
      ReportOf(DiskWith({.partitionGuid = Guid("01000000-0000-0000-0000-000000000000")}), kDpod);
  EXPECT_NE(partition.find("MSFT_WvrReplica Partition GUID  : { 01000000-0000-0000-0000-000000000000 }\n"
                           "Replication Group GUID          : <empty>\n"),
            std::string::npos);
}

TEST(Dpod, MissingSignatureEndsBothPassesWithoutADump) {
  const Disk disk = DiskWith({.signature = "DPOM"});
  const Outcome outcome = RunOn(disk, {"41"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, kNoMagicTwice);
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sector 41") + "Reading sector # 41 [DPOD sector]\n\n"));
}

TEST(Dpod, SignatureInSmallLettersIsNone) {
  EXPECT_EQ(RunOn(DiskWith({.signature = "dpod"}), {"41"}).err, kNoMagicTwice);
}

TEST(Dpod, OneWrongByteOfTheSignatureIsEnough) {
  for (const std::string& signature : WithOneWrongCharacter("DPOD"))
    EXPECT_EQ(RunOn(DiskWith({.signature = signature}), {"41"}).err, kNoMagicTwice) << signature;
}

// The record takes two sectors of 128 bytes, the disk has one. The GPT header stands among the boot code of
// the master boot record there.
TEST(Dpod, RecordCutByTheEndOfTheDisk) {
  const std::string kBootCodeLine = "\tUnknown Boot Loader Code\n";
  Disk disk(202, 128);
  PutGptEntries(disk, 12, {{.type = kStorageReplicaType, .first = 200, .last = 202}});
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 0, .entriesLba = 12});
  PutDpom(disk, 200, {});
  disk.At(201).Text(0, "DPOD");
  const Outcome outcome = RunOn(disk, {"201"});
  const std::string errors = "Global::Read short read, needed 256, got 128\nError reading sector\n";
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, errors + errors);
  EXPECT_TRUE(SameText(outcome.out, Preamble(disk, " sector 201", kBootCodeLine) + kBootCodeLine +
                                        "Reading sector # 201 [DPOD sector]\n\n"));
}

// The sector that the walk goes to after a record is the next one, in both passes.
TEST(Dpod, EveryRecordOfAPartition) {
  Disk disk(4096);
  PutGpt(disk, {{.type = kStorageReplicaType, .first = kFirst, .last = kFirst + 5}});
  PutDpom(disk, kFirst, {});
  for (u64 sector = kDpod; sector < kFirst + 5; ++sector)
    PutDpod(disk, sector, {.dataSize = static_cast<u32>(sector)});
  const Outcome outcome = RunOn(disk);
  EXPECT_EQ(outcome.err, "");
  for (u64 sector = kDpod; sector < kFirst + 5; ++sector) {
    const std::string number = std::to_string(sector);
    const std::string header = "Reading sector # " + number;
    std::string report = header + " [DPOD sector]\n\nMagic Number                    : [DPOD]\n";
    report += "Data Size (bytes) ?             : " + number + "\n";
    EXPECT_NE(outcome.out.find(report), std::string::npos);
    EXPECT_NE(outcome.out.find(header + " [as a raw sector]\n"), std::string::npos);
  }
}

// A log of 2^31 sectors on a sparse disk of a terabyte: the records that are there are walked one by one, in
// the memory that a single one takes.
TEST(Dpod, PartitionOfTwoToThe31SectorsTakesNoMemory) {
  constexpr u64 kRecords = 20000;
  constexpr u64 kSectors = u64{1} << 31;
  Disk disk(kSectors + 100);
  PutProtectiveMbr(disk);
  PutGptEntries(disk, 2, {{.type = kStorageReplicaType, .first = kFirst, .last = kFirst + kSectors}});
  PutGptHeader(disk, 1, {.otherLba = 0});
  PutDpom(disk, kFirst, {});
  for (u64 sector = kDpod; sector < kDpod + kRecords; ++sector)
    disk.At(sector).Text(0, "DPOD");
  const std::string last = std::to_string(kDpod + kRecords);
  const Outcome outcome = RunOnWithinLimits(disk, {last});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, kNoMagicTwice);
  EXPECT_TRUE(SameText(
      outcome.out, Preamble(disk, " sector " + last) + "Reading sector # " + last + " [DPOD sector]\n\n"));
}

}  // namespace
}  // namespace trovisk::test
