// Decoders that read their sector and cannot return to its start, in either pass: no dump, the pass ends, and
// what they register behind the seek is not registered. A structure behind each would register one more
// sector.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/disks/ntfs.h"
#include "tests/disks/refs.h"
#include "tests/disks/spaces.h"
#include "tests/reports/ldm_disk.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

// One pass's seeks to a sector are the frame's and then those of its decoders, counted from 1. The one that
// is refused in the loading pass is its last, so the printing pass counts on from there.
MemoryOutcome RunWithoutSeek(const Disk& disk, u64 sector, u64 nth) {
  const auto refused = [&](u64 number) {
    return Fault{.call = Call::kSeek, .nth = number, .error = 22, .sector = sector};
  };
  return RunOnMemory({disk, {refused(nth), refused(2 * nth)}});
}

// The frame's seek is the first of all, the one back to the start of a sector the second.
constexpr u64 kBack = 2;
// Behind the one of the boot sector's identification.
constexpr u64 kVolumesBack = 3;

// rows: the table of contents. more: the decoder's own message, if any.
void ExpectSeekRefused(const Disk& disk, u64 sector, u64 nth, const std::string& rows,
                       const std::string& more = "") {
  const MemoryOutcome outcome = RunWithoutSeek(disk, sector, nth);
  const std::string number = std::to_string(sector);
  const std::string message = "Global::Seek failed to seek to sector " + number + ", error 22\n" + more;
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, message + message);
  EXPECT_EQ(outcome.out.find("Reading sector # " + number + " [as a raw sector]"), std::string::npos);
  EXPECT_TRUE(SameText(TocRowsIn(outcome.out), rows));
}

Disk DiskWithVolume() {
  Disk disk(2000);
  PutBootRecord(disk, 0, {.entries = {{.type = 0x07, .first = 63}, {.type = 0x05, .first = 1800}}});
  PutBootRecord(disk, 1800, {.entries = {{.type = 0x07, .first = 9}}});
  return disk;
}

const std::string kVolumeRows = TocRow(0, "Master Boot Record") + TocRow(63, "NTFS Boot Sector") +
                                TocRow(1800, "Supplementary Boot Record");

TEST(SeekBack, BootSectorIdentificationCallsNoDecoder) {
  Disk disk = DiskWithVolume();
  PutNtfsBootSector(disk, 63, {});
  ExpectSeekRefused(disk, 63, kBack, kVolumeRows, "Error seeking back to start of sector\n");
}

TEST(SeekBack, NtfsBootSectorRegistersNothing) {
  Disk disk = DiskWithVolume();
  PutNtfsBootSector(disk, 63, {});
  ExpectSeekRefused(disk, 63, kVolumesBack, kVolumeRows);
}

TEST(SeekBack, ReFsBootRecordRegistersNothing) {
  Disk disk = DiskWithVolume();
  PutReFsBootRecord(disk, 63, {.sectorCount = 1000, .sectorsPerCluster = 1});
  ExpectSeekRefused(disk, 63, kVolumesBack, kVolumeRows);
}

// It registers before it seeks; what is registered lies behind, and is not loaded.
TEST(SeekBack, PrivheadHasRegisteredTocsAndAlternates) {
  Disk disk = DynamicDisk();
  PutPrivhead(disk, kPrivheadSector,
              {.minor = 11, .alternate1 = 60, .alternate2 = 61, .configStart = kConfigStart, .tocSize = 50});
  ExpectSeekRefused(
      disk, kPrivheadSector, kBack,
      TocWithMbr(TocRow(101, "TOC Sector") + TocRow(102, "TOC Sector") + TocRow(150, "TOC Sector") +
                 TocRow(151, "TOC Sector") + TocRow(160, "Alternate PRIVHEAD Sector") +
                 TocRow(161, "Alternate PRIVHEAD Sector")));
}

// A Storage Spaces partition from sector 40 on, one of Storage Replica from 60, and one more of the first
// kind from 70.
Disk DiskWithSpaces() {
  Disk disk(200);
  PutGpt(disk, {{.type = kStorageSpacesType, .first = 40, .last = 59},
                {.type = kStorageReplicaType, .first = 60, .last = 62},
                {.type = kStorageSpacesType, .first = 70, .last = 99}});
  PutSpaceDb(disk, 40, {});
  PutSdbc(disk, 48, {});
  PutSdbb(disk, 49);
  PutSdbb(disk, 50);
  PutDpom(disk, 60, {});
  PutDpod(disk, 61, {});
  PutSpaceDb(disk, 70, {});
  return disk;
}

std::string SpacesRows(const Disk& disk, const std::string& behindFirst) {
  return GptTocRows(disk, TocRow(40, "SPACEDB sector") + behindFirst + TocRow(60, "DPOM sector") +
                              TocRow(61, "DPOD sector") + TocRow(70, "SPACEDB sector"));
}

TEST(SeekBack, SpaceDbRegistersNoSdbc) {
  const Disk disk = DiskWithSpaces();
  ExpectSeekRefused(disk, 40, kBack, SpacesRows(disk, ""));
}

TEST(SeekBack, SdbcRegistersNoSdbb) {
  const Disk disk = DiskWithSpaces();
  ExpectSeekRefused(disk, 48, kBack, SpacesRows(disk, TocRow(48, "SDBC Sector")));
}

TEST(SeekBack, SdbbRegistersNoFurtherOne) {
  const Disk disk = DiskWithSpaces();
  ExpectSeekRefused(disk, 49, kBack, SpacesRows(disk, TocRow(48, "SDBC Sector") + TocRow(49, "SDBB Sector")));
}

// Without the SDBBs, whose end is told on standard error.
Disk DiskWithReplica() {
  Disk disk = DiskWithSpaces();
  PutGpt(disk, {{.type = kUnusedType},
                {.type = kStorageReplicaType, .first = 60, .last = 62},
                {.type = kStorageSpacesType, .first = 70, .last = 99}});
  return disk;
}

std::string ReplicaRows(const Disk& disk) {
  return GptTocRows(disk,
                    TocRow(60, "DPOM sector") + TocRow(61, "DPOD sector") + TocRow(70, "SPACEDB sector"));
}

TEST(SeekBack, DpomEndsThePass) {
  const Disk disk = DiskWithReplica();
  ExpectSeekRefused(disk, 60, kBack, ReplicaRows(disk));
}

TEST(SeekBack, DpodEndsThePass) {
  const Disk disk = DiskWithReplica();
  ExpectSeekRefused(disk, 61, kBack, ReplicaRows(disk));
}

}  // namespace
}  // namespace trovisk::test
