// What follows the error line on a terminal where a disk does not open.

#include <gtest/gtest.h>

#include "tests/support/expected.h"
#include "tests/support/memory_device.h"

namespace trovisk::test {
namespace {

const std::string kNotOpened = "Global::Open: couldn't open \\\\.\\PhysicalDrivemem for reading, error ";
const std::string kNaming =
    "A disk is named by its number, by the path of its device (/dev/sda), or by the\n"
    "path of an image file (disk.img, or disk.img@4096 for sectors of 4096 bytes).\n";

// A disk that does not open, of a machine with three others.
MemoryDisk Refused(ErrorCode error) {
  return {.faults = {{.call = Call::kOpen, .error = error}},
          .errorsOnTerminal = true,
          .listed = {{.number = 0, .device = "/dev/sda", .bytes = 512110190592, .model = "Sample 500"},
                     {.number = 1, .device = "/dev/nvme0n1", .bytes = 8000, .model = "Sample Drive 8"},
                     {.number = 10, .device = "/dev/vda"}}};
}

const std::string kTable =
    "\nThe disks of this machine:\n\n"
    "  number  device             size  model\n"
    "       0  /dev/sda      476.9 GiB  Sample 500\n"
    "       1  /dev/nvme0n1    7.8 KiB  Sample Drive 8\n"
    "      10  /dev/vda\n";

TEST(Hints, SayWhatTheNumberMeansHowADiskIsNamedAndWhichThereAre) {
  const MemoryOutcome outcome = RunOnMemory(Refused(2));
  EXPECT_TRUE(
      SameText(outcome.err, kNotOpened + "2\n\nError 2: No such file or directory.\n" + kNaming + kTable));
  EXPECT_EQ(outcome.out, "Trovisk version 1.4 built <date>\n\n");
  EXPECT_EQ(outcome.status, 1);
}

TEST(Hints, SayWhatHelpsWhereAccessIsDenied) {
  EXPECT_TRUE(SameText(RunOnMemory(Refused(13)).err,
                       kNotOpened + "13\n\nError 13: Permission denied.\n" +
                           "Reading a disk takes the rights of root: run the same command as root (sudo).\n" +
                           kNaming + kTable));
}

TEST(Hints, HaveNoMeaningForAFailureWithoutANumber) {
  EXPECT_TRUE(SameText(RunOnMemory(Refused(kErrorWithoutCode)).err, kNotOpened + "0\n\n" + kNaming + kTable));
}

TEST(Hints, HaveNoTableWhereTheSystemListsNoDisks) {
  MemoryDisk memory = Refused(2);
  memory.listed.clear();
  EXPECT_TRUE(
      SameText(RunOnMemory(memory).err, kNotOpened + "2\n\nError 2: No such file or directory.\n" + kNaming));
}

TEST(Hints, FollowADiskWithoutAGeometryToo) {
  MemoryDisk memory = Refused(25);
  memory.faults[0].call = Call::kSectorSize;
  EXPECT_TRUE(SameText(RunOnMemory(memory).err,
                       "Global::Open: couldn't get disk geometry \\\\.\\PhysicalDrivemem "
                       "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, error 25\n\n"
                       "Error 25: Inappropriate ioctl for device.\n" +
                           kNaming + kTable));
}

// A terminal that shows the report alone is none that shows the error lines.
TEST(Hints, AreNotForFilesAndPipes) {
  MemoryDisk memory = Refused(13);
  memory.terminal = true;
  memory.errorsOnTerminal = false;
  EXPECT_EQ(RunOnMemory(memory).err, kNotOpened + "13\n");
}

TEST(Hints, DoNotFollowOtherErrors) {
  MemoryDisk memory = Refused(5);
  memory.disk = Disk(10);
  memory.faults[0].call = Call::kLength;
  EXPECT_EQ(RunOnMemory(memory, {"mem", "9"}).err,
            "DeviceIoControl(IOCTL_DISK_GET_LENGTH_INFO failed, error )5\n");
  memory.faults.clear();
  EXPECT_EQ(RunOnMemory(memory, {"mem", "10"}).err, "There aren't that many sectors on the disk !!\n");
  EXPECT_EQ(RunOnMemory(memory, {}).err, "Usage trovisk disk# [first_sector#] [LastSector#]\n");
}

// The disk of an earlier run in the process did not open; that is forgotten.
TEST(Hints, ConcernTheirOwnRunAlone) {
  EXPECT_NE(RunInProcess(Refused(2)).err, "");
  MemoryDisk memory = Refused(2);
  memory.disk = Disk(10);
  memory.faults.clear();
  EXPECT_EQ(RunInProcess(memory).err, "");
  EXPECT_EQ(RunInProcess(memory, {}).err, "Usage trovisk disk# [first_sector#] [LastSector#]\n");
}

}  // namespace
}  // namespace trovisk::test
