// Structures that fail their check: the pass that finds one ends there. A structure behind each of them would
// register one more sector, were it visited.

#include <gtest/gtest.h>

#include "tests/disks/bitlocker.h"
#include "tests/disks/gpt.h"
#include "tests/disks/ntfs.h"
#include "tests/disks/spaces.h"
#include "tests/reports/ldm_disk.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

constexpr u64 kRecord = 200;  // an extended boot record, and what it registers
constexpr u64 kBehindRecord = 209;

void PutRecordBehind(Disk& disk) {
  PutBootRecord(disk, kRecord, {.entries = {{.type = 0x07, .first = kBehindRecord - kRecord}}});
}

// The table of contents of a whole-disk run, with the messages of both passes in front.
std::string TableOf(const Disk& disk) {
  const MemoryOutcome outcome = RunOnMemory({disk});
  EXPECT_EQ(outcome.status, 0);
  return outcome.err + TocRowsIn(outcome.out);
}

Disk DiskWithVolume() {
  Disk disk;
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = 63}, {.type = 0x05, .first = kRecord}}});
  PutRecordBehind(disk);
  return disk;
}

const std::string kVolumeRows =
    "         0\tMaster Boot Record\n"
    "        63\tNTFS Boot Sector\n"
    "       200\tSupplementary Boot Record\n";

TEST(EndOfPass, NtfsBootSectorWithoutEndMark) {
  Disk disk = DiskWithVolume();
  PutNtfsBootSector(disk, 63, {});
  EXPECT_NE(TableOf(disk).find("       209\tNTFS Boot Sector\n"), std::string::npos);
  PutNtfsBootSector(disk, 63, {.endMark = 0x55AA});
  EXPECT_EQ(TableOf(disk), kVolumeRows);
}

TEST(EndOfPass, BitLockerBootSectorWithoutEndMark) {
  Disk disk = DiskWithVolume();
  PutBitLocker(disk, 63, BitLockerVista{});
  EXPECT_NE(TableOf(disk).find("       209\tNTFS Boot Sector\n"), std::string::npos);
  PutBitLocker(disk, 63, BitLockerVista{.common = {.jump = {0xEB, 0x52, 0x90}, .endMark = 0x55AA}});
  EXPECT_EQ(TableOf(disk), kVolumeRows);
}

Disk DynamicDiskWithRecord() {
  Disk disk = DynamicDisk();
  PutBootRecord(disk, 0, {.entries = {{.type = 0x42}, {.type = 0x05, .first = kRecord}}});
  PutVmdb(disk, kVmdbSector, {});
  PutKlog(disk, kKlogSector, {});
  PutPrivhead(disk, 160, SmallPrivhead());
  PutPrivhead(disk, 161, SmallPrivhead());
  PutRecordBehind(disk);
  return disk;
}

TEST(EndOfPass, PrivheadWithoutSignature) {
  Disk disk = DynamicDiskWithRecord();
  EXPECT_NE(TableOf(disk).find("       209\tNTFS Boot Sector\n"), std::string::npos);
  PutPrivhead(disk, kPrivheadSector, {.signature = "PRIVHEAR"});
  EXPECT_EQ(TableOf(disk),
            "**** No PRIVHEAD magic found ****\n"
            "**** No PRIVHEAD magic found ****\n"
            "         0\tMaster Boot Record\n"
            "         6\tPRIVHEAD Sector\n"
            "       200\tSupplementary Boot Record\n");
}

// Neither the sector behind it nor anything else is loaded.
TEST(EndOfPass, VblkWithoutSignature) {
  Disk disk = DynamicDiskWithRecord();
  PutTocBlock(disk, 150, SmallTocBlock());
  PutVblk(disk, kVblkSector, 0, {.type = 0x61});
  EXPECT_NE(TableOf(disk).find("       112\tVBLK Sector\n"), std::string::npos);
  EXPECT_NE(TableOf(disk).find("       209\tNTFS Boot Sector\n"), std::string::npos);
  disk.At(kVblkSector).Text(128, "VBLX");
  EXPECT_EQ(TableOf(disk),
            "**** Entry #2 No VBLK magic found ****\n"
            "**** Entry #2 No VBLK magic found ****\n"
            "         0\tMaster Boot Record\n"
            "         6\tPRIVHEAD Sector\n"
            "       102\tTOC Sector\n"
            "       110\tVMDB Sector\n"
            "       111\tVBLK Sector\n"
            "       120\tKLOG Sector\n"
            "       150\tTOC Sector\n"
            "       160\tAlternate PRIVHEAD Sector\n"
            "       161\tAlternate PRIVHEAD Sector\n"
            "       200\tSupplementary Boot Record\n");
}

// A Storage Replica partition and behind it one of Storage Spaces, which registers sector 68.
Disk DiskWithReplica() {
  Disk disk(200);
  PutGpt(disk, {{.type = kStorageReplicaType, .first = 40, .last = 42},
                {.type = kStorageSpacesType, .first = 60, .last = 90}});
  PutDpom(disk, 40, {});
  PutDpod(disk, 41, {});
  PutSpaceDb(disk, 60, {});
  PutSdbc(disk, 68, {});
  return disk;
}

// Nor is the backup header visited, whose array would be registered.
std::string ReplicaRows(const Disk& disk) {
  return GptTocRows(disk,
                    TocRow(40, "DPOM sector") + TocRow(41, "DPOD sector") + TocRow(60, "SPACEDB sector"));
}

TEST(EndOfPass, DpomWithoutSignature) {
  Disk disk = DiskWithReplica();
  EXPECT_NE(TableOf(disk).find("        68\tSDBC Sector\n"), std::string::npos);
  PutDpom(disk, 40, {.signature = "DPOX"});
  const std::string message = "**** No DPOM magic found ****\n";
  EXPECT_EQ(TableOf(disk), message + message + ReplicaRows(disk));
}

TEST(EndOfPass, DpodWithoutSignature) {
  Disk disk = DiskWithReplica();
  PutDpod(disk, 41, {.signature = "DPOX"});
  const std::string message = "**** No DPOD magic found ****\n";
  EXPECT_EQ(TableOf(disk), message + message + ReplicaRows(disk));
}

}  // namespace
}  // namespace trovisk::test
