// What the shipped executable asks of the system, call by call, and what it says when the system refuses.

#include <gtest/gtest.h>

#include "tests/disks/gpt.h"
#include "tests/disks/mbr.h"
#include "tests/support/expected.h"
#include "tests/windows/raw_disk.h"

namespace trovisk::test {
namespace {

constexpr char kBanner[] = "Trovisk version 1.4 built <date>\n\n";
constexpr char kLastSector[] = "Last sector on disk is 99\n";

// Nothing is registered on it but the master boot record.
Disk EmptyDisk(u32 sectorSize = 512) {
  Disk disk(100, sectorSize);
  for (const u64 sector : {2U, 3U, 4U})
    disk.At(sector).Text(0, "not empty");
  return disk;
}

// GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING
constexpr char kOpen[] =
    "CreateFileW \\\\.\\PhysicalDrive<disk> access 0x80000000 share 0x3 security none disposition 0x3 "
    "flags 0x0 template none\n";
// IOCTL_DISK_GET_DRIVE_GEOMETRY_EX
constexpr char kGeometry[] =
    "DeviceIoControl code 0x700A0 in none 0 out 40 zeros returned given overlapped none\n";
// IOCTL_DISK_GET_LENGTH_INFO
constexpr char kLength[] =
    "DeviceIoControl code 0x7405C in none 0 out 8 zeros returned given overlapped none\n";
constexpr char kClose[] = "CloseHandle\n";

// FILE_BEGIN
std::string Move(i64 offset) {
  return "SetFilePointerEx offset " + std::to_string(offset) + " new position given method 0\n";
}

std::string Read(u32 bytes) {
  return "ReadFile " + std::to_string(bytes) + " bytes, overlapped none\n";
}

// Both passes read the master boot record and go back to it; it is no sector that was asked for, so its dump
// does not read it again.
std::string BothPasses(u32 sectorSize) {
  const std::string visit = Move(0) + Read(sectorSize) + Move(0);
  return visit + visit;
}

TEST(WindowsCalls, SingleSector) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"3"});
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.err, "");
  const std::string text = ExpandExpected("Reading sector # 3 [Raw Sector]\n{{dump 3}}\n", EmptyDisk());
  EXPECT_TRUE(SameText(run.outcome.out, Preamble(EmptyDisk(), " sector 3") + text));
  EXPECT_TRUE(SameText(run.calls, kOpen + std::string(kGeometry) + kLength + BothPasses(512) + Move(1536) +
                                      Read(512) + kClose));
}

// A record of 512 bytes is read as a whole sector.
TEST(WindowsCalls, SingleSectorOf4096Bytes) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(4096), {"3"});
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.err, "");
  EXPECT_TRUE(SameText(run.calls, kOpen + std::string(kGeometry) + kLength + BothPasses(4096) + Move(12288) +
                                      Read(4096) + kClose));
}

TEST(WindowsCalls, OpenRefused) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {}, "open=5");
  EXPECT_EQ(run.outcome.status, 1);
  EXPECT_EQ(run.outcome.out, kBanner);
  EXPECT_EQ(run.outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDrive<disk> for reading, error 5\n");
  EXPECT_EQ(run.calls, kOpen);
}

// The disk is open by then, and is closed at the end of the run.
TEST(WindowsCalls, GeometryRefused) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {}, "geometry=1");
  EXPECT_EQ(run.outcome.status, 1);
  EXPECT_EQ(run.outcome.out, kBanner);
  EXPECT_EQ(run.outcome.err,
            "Global::Open: couldn't get disk geometry \\\\.\\PhysicalDrive<disk> "
            "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, error 1\n");
  EXPECT_EQ(run.calls, kOpen + std::string(kGeometry) + kClose);
}

TEST(WindowsCalls, LengthRefused) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"3"}, "length=50");
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.err, "DeviceIoControl(IOCTL_DISK_GET_LENGTH_INFO failed, error )50\n");
  EXPECT_TRUE(run.outcome.out.starts_with(std::string(kBanner) +
                                          "Last sector on disk is 18446744073709551615\n"
                                          "Reading \\\\.\\PhysicalDrive<disk> sector 3\n"))
      << run.outcome.out;
  EXPECT_TRUE(run.calls.ends_with(Move(1536) + Read(512) + kClose)) << run.calls;
}

TEST(WindowsCalls, SeekRefused) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"3"}, "seek=3:5");
  EXPECT_EQ(run.outcome.status, 1);
  EXPECT_EQ(run.outcome.out, Preamble(EmptyDisk(), " sector 3"));
  EXPECT_EQ(run.outcome.err,
            "Global::Seek failed to seek to sector 3, error 5\nFailed to seek to sector 3\n");
  EXPECT_TRUE(run.calls.ends_with(Move(1536) + kClose)) << run.calls;
}

// 2^54 + 5 sectors of 512 bytes are beyond 2^63, which the system takes for a position below 0.
TEST(WindowsCalls, SeekBelowZeroRefused) {
  Disk disk(100);
  PutProtectiveMbr(disk);
  PutGptHeader(disk, 1, {.otherLba = 1, .entriesLba = (u64{1} << 54) + 5, .entryCount = 4});
  const RawDiskRun run = RunOnRawDisk(disk);
  EXPECT_EQ(run.outcome.status, 1);
  EXPECT_EQ(run.outcome.err,
            "Global::Seek failed to seek to sector 18014398509481989, error 131\n"
            "Failed to seek to sector 2\n");
  EXPECT_TRUE(run.calls.ends_with(Move(i64{-9223372036854773248}) + kClose)) << run.calls;
}

// A refusal without an error code counts as a move where the position is the right one.
TEST(WindowsCalls, SeekRefusedWithoutACode) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"3"}, "seek=3:0");
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.err, "");
  EXPECT_EQ(run.outcome.out, RunOnRawDisk(EmptyDisk(), {"3"}).outcome.out);
}

TEST(WindowsCalls, SeekLandsElsewhere) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"3"}, "land=3");
  EXPECT_EQ(run.outcome.status, 1);
  EXPECT_EQ(run.outcome.out, Preamble(EmptyDisk(), " sector 3"));
  EXPECT_EQ(run.outcome.err, "Global::Seek failed to seek to sector 3\nFailed to seek to sector 3\n");
  EXPECT_TRUE(run.calls.ends_with(Move(1536) + kClose)) << run.calls;
}

TEST(WindowsCalls, ReadRefused) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"3"}, "read=3:23");
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.out, Preamble(EmptyDisk(), " sector 3") + "Reading sector # 3 [Raw Sector]\n");
  EXPECT_EQ(run.outcome.err, "Global::Read failed, error 23\nError reading sector\n");
}

// The sectors beside it are shown.
TEST(WindowsCalls, OneBadSectorInARange) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"2", "4"}, "read=3:23");
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_TRUE(SameText(run.outcome.out, Preamble(EmptyDisk(), " sectors [ 2 - 4 ]") +
                                            ExpandExpected("Reading sector # 2 [Raw Sector]\n{{dump 2}}\n"
                                                           "Reading sector # 3 [Raw Sector]\n"
                                                           "Reading sector # 4 [Raw Sector]\n{{dump 4}}\n",
                                                           EmptyDisk())));
  EXPECT_EQ(run.outcome.err, "Global::Read failed, error 23\nError reading sector\n");
}

TEST(WindowsCalls, ShortRead) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"3"}, "short=3:100");
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.out, Preamble(EmptyDisk(), " sector 3") + "Reading sector # 3 [Raw Sector]\n");
  EXPECT_EQ(run.outcome.err, "Global::Read short read, needed 512, got 100\nError reading sector\n");
}

// What was needed is the sector, not the record of 512 bytes that was asked for.
TEST(WindowsCalls, ShortReadOfALargeSector) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(4096), {"0"}, "short=0:512");
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.err,
            "Global::Read short read, needed 4096, got 512\nError reading sector\n"
            "Global::Read short read, needed 4096, got 512\nError reading sector\n");
}

// A registered sector behind the end: the disk is asked for it, and refuses.
TEST(WindowsCalls, ReadBehindTheEndRefused) {
  Disk disk = EmptyDisk();
  PutBootRecord(disk, 0, {.entries = {{.type = 0x05, .first = 100, .count = 10}}});
  const RawDiskRun run = RunOnRawDisk(disk);
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.err, "Global::Read failed, error 27\nError reading sector\n");
  EXPECT_NE(run.calls.find(Move(51200) + Read(512)), std::string::npos) << run.calls;
}

// Nothing is said, and the disk counts as closed.
TEST(WindowsCalls, CloseRefused) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"3"}, "close=6");
  EXPECT_EQ(run.outcome.status, 0);
  EXPECT_EQ(run.outcome.err, "");
  EXPECT_EQ(run.outcome.out, RunOnRawDisk(EmptyDisk(), {"3"}).outcome.out);
  EXPECT_TRUE(run.calls.ends_with(Read(512) + kClose)) << run.calls;
}

// A call may fail and leave the error code at 0; it has failed all the same.
TEST(WindowsCalls, FailuresWithoutACode) {
  EXPECT_EQ(RunOnRawDisk(EmptyDisk(), {}, "open=0").outcome.err,
            "Global::Open: couldn't open \\\\.\\PhysicalDrive<disk> for reading, error 0\n");
  EXPECT_EQ(RunOnRawDisk(EmptyDisk(), {}, "geometry=0").outcome.err,
            "Global::Open: couldn't get disk geometry \\\\.\\PhysicalDrive<disk> "
            "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, error 0\n");
  EXPECT_EQ(RunOnRawDisk(EmptyDisk(), {"3"}, "length=0").outcome.err,
            "DeviceIoControl(IOCTL_DISK_GET_LENGTH_INFO failed, error )0\n");
  EXPECT_EQ(RunOnRawDisk(EmptyDisk(), {"3"}, "read=3:0").outcome.err,
            "Global::Read failed, error 0\nError reading sector\n");
}

// The disk is not moved or read for a number that it does not have.
TEST(WindowsCalls, SectorBehindTheLast) {
  const RawDiskRun run = RunOnRawDisk(EmptyDisk(), {"100"});
  EXPECT_EQ(run.outcome.status, 1);
  EXPECT_EQ(run.outcome.out, std::string(kBanner) + kLastSector);
  EXPECT_EQ(run.outcome.err, "There aren't that many sectors on the disk !!\n");
  EXPECT_EQ(run.calls, kOpen + std::string(kGeometry) + kLength + kClose);
}

}  // namespace
}  // namespace trovisk::test
