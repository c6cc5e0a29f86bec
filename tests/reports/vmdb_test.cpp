// Reports of VMDB, the header of a dynamic disk's object database.

#include <gtest/gtest.h>

#include "tests/reports/ldm_disk.h"

namespace trovisk::test {
namespace {

Disk DiskWith(const Vmdb& vmdb) {
  Disk disk = DynamicDisk();
  PutVmdb(disk, kVmdbSector, vmdb);
  return disk;
}

TEST(Vmdb, WholeReport) {
  const Disk disk = DiskWith({.sequence = 4,
                              .groupName = "HOST-Dg0",
                              .groupId = "6a0e9d52-3c41-4f7b-8d22-5b9e0f1a2c34",
                              .committedSequence = 4294967319,
                              .pendingSequence = 4294967320,
                              .committed = {1, 2, 3, 4},
                              .pending = {5, 6, 7, 8},
                              .lastAccess = 133'000'000'000'000'000});
  EXPECT_TRUE(SameText(LdmReportOf(disk, kVmdbSector), Expected("ldm_vmdb.txt", disk)));
}

// The named values are big-endian; any other is shown with its two bytes in reverse.
TEST(Vmdb, UpdateStatus) {
  const std::pair<u16, std::string> statuses[] = {
      {0x0001, "[Consistent]"}, {0x0002, "[Creation Phase]"}, {0x0003, "[Deletion Phase]"},
      {0x0100, "0x0001"},       {0x0005, "0x0500"},           {0x0000, "0x0000"},
      {0xABCD, "0xCDAB"},
  };
  for (const auto& [value, text] : statuses) {
    EXPECT_NE(LdmReportOf(DiskWith({.updateStatus = value}), kVmdbSector)
                  .find("\nUpdate Status                    : " + text + "\nMajor Number "),
              std::string::npos)
        << value;
  }
}

// Nothing ends the texts but their length: what follows them is not zero here.
TEST(Vmdb, TextsThatFillTheirFields) {
  const std::string id = "0123456789abcdef0123456789ABCDEF0123456789abcdef0123456789ABCDEF";
  const std::string report = LdmReportOf(DiskWith({.groupName = "ABCDEFGHIJKLMNOPQRSTUVWXYZ01234",
                                                   .groupId = id,
                                                   .committedSequence = u64{0x41} << 56}),
                                         kVmdbSector);
  EXPECT_NE(report.find("\nDisk Group Name                  : [ABCDEFGHIJKLMNOPQRSTUVWXYZ01234]\n"
                        "Disk Group ID GUID               : {" +
                        id + "}\n\nCommitted Sequence               : 4683743612465315840\n"),
            std::string::npos)
      << report;
}

TEST(Vmdb, OnlyFourBytesAreTheSignature) {
  Disk disk = DiskWith({.sequence = 0x58595A21});  // "VMDBXYZ!"
  EXPECT_NE(LdmReportOf(disk, kVmdbSector)
                .find("\nMagic Number                     : [VMDB]\n"
                      "Sequence?                        : 1482250785 (purpose unknown)\n"),
            std::string::npos);
}

// Said in both passes; the walk ends there, so no second VBLK sector is found.
TEST(Vmdb, WithoutSignature) {
  const Disk disk = DiskWith({.signature = "VMDb"});
  const Outcome outcome = RunOn(disk, {"110"});
  EXPECT_TRUE(SameText(outcome.out,
                       Preamble(disk, " sector 110", "\n") + "\nReading sector # 110 [VMDB Sector]\n\n"));
  EXPECT_EQ(outcome.err, "**** No VMDB magic found ****\n**** No VMDB magic found ****\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(TocOf(disk).find("       110\tVMDB Sector\n       111\tVBLK Sector\n       120\tKLOG Sector\n"),
            std::string::npos);
}

TEST(Vmdb, UnreadableSector) {
  Disk disk = DynamicDisk();
  disk.Resize(110);
  const Outcome outcome = RunOn(disk, {"109"});
  EXPECT_EQ(outcome.err, ReadBehindTheEnd(512) + "Error reading sector\n");
}

}  // namespace
}  // namespace trovisk::test
