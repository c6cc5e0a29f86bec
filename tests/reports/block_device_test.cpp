// Block devices: loop devices made of images, and the disks that the machine numbers. What a machine cannot
// do is skipped with the reason, and shows in the list of skipped tests.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/disks/gpt.h"
#include "tests/support/expected.h"
#include "tests/support/limits.h"
#include "tests/support/strace.h"

namespace trovisk::test {
namespace {

// What the shell command prints, and whether it succeeded.
std::pair<std::string, bool> Shell(const std::string& command) {
  std::string text;
  FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return {"popen failed", false};
  char bytes[4096];
  while (const std::size_t got = std::fread(bytes, 1, sizeof bytes, pipe))
    text.append(bytes, got);
  return {text, pclose(pipe) == 0};
}

// Why nobody can make a loop device here; empty where somebody can.
std::string NoLoopDevices() {
  const char* const control = "/dev/loop-control";
  const int opened = open(control, O_RDWR | O_CLOEXEC);
  if (opened < 0) return std::string(control) + ": " + std::strerror(errno);
  close(opened);
  return {};
}

// A loop device on an image, while it lives.
class LoopDevice {
 public:
  LoopDevice(const std::string& image, u32 sectorSize) : unavailable_(NoLoopDevices()) {
    if (!unavailable_.empty()) return;
    // Between the search for a free device and its use another process may take it.
    constexpr int kAttempts = 50;
    std::string problem;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      const auto [text, made] =
          Shell("LC_ALL=C PATH=$PATH:/sbin:/usr/sbin losetup --find --show --read-only --sector-size " +
                std::to_string(sectorSize) + " " + image);
      if (made) {
        path_ = text.substr(0, text.find('\n'));
        return;
      }
      if (text.find("not permitted") != std::string::npos ||
          text.find("Permission denied") != std::string::npos) {
        unavailable_ = text;
        return;
      }
      problem = text;
      usleep(20000);
    }
    ADD_FAILURE() << "no loop device in " << kAttempts << " attempts: " << problem;
  }
  LoopDevice(const LoopDevice&) = delete;
  LoopDevice& operator=(const LoopDevice&) = delete;
  ~LoopDevice() {
    if (!path_.empty()) Shell("PATH=$PATH:/sbin:/usr/sbin losetup --detach " + path_);
  }

  const std::string& Path() const { return path_; }
  const std::string& Unavailable() const { return unavailable_; }

 private:
  std::string path_;
  std::string unavailable_;
};

// losetup itself must be there; that the machine lets nobody make loop devices is not the program's affair.
void RequireLosetup() {
  ASSERT_TRUE(Shell("PATH=$PATH:/sbin:/usr/sbin command -v losetup").second)
      << "losetup is missing: install mount or util-linux";
}

#define REQUIRE_OR_SKIP(device)                                                                            \
  if (!(device).Unavailable().empty()) GTEST_SKIP() << "no loop devices here: " << (device).Unavailable(); \
  ASSERT_NE((device).Path(), "")

void ExpectSameReports(const std::string& device, const std::string& image,
                       const std::vector<std::string>& sectors) {
  const auto report = [&](const std::string& disk) {
    std::vector<std::string> arguments = {disk};
    arguments.insert(arguments.end(), sectors.begin(), sectors.end());
    Outcome outcome = RunProgram(Build::kInventedCode, arguments);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    const std::size_t at = outcome.out.find(disk);
    EXPECT_NE(at, std::string::npos);
    if (at != std::string::npos) outcome.out.replace(at, disk.size(), "<disk>");
    return outcome.out;
  };
  EXPECT_TRUE(SameText(report(device), report(image)));
}

// Of a device each sector is one read, and what was printed leaves before it is asked for the next one.
TEST(LoopDeviceCalls, RangeDumpTakesOneReadAndOneWritePerSector) {
  RequireLosetup();
  Disk disk(1100);
  for (u64 sector = 1; sector < 1100; ++sector)
    disk.At(sector).Le64(0, sector);
  const std::string image = ScratchPath("loop_calls.img");
  disk.Write(image);
  const LoopDevice device(image, 512);
  REQUIRE_OR_SKIP(device);
  const Trace few = TraceProgram({device.Path(), "1", "10"});
  const Trace many = TraceProgram({device.Path(), "1", "1010"});
  EXPECT_EQ(many.Of("pread64(").size() - few.Of("pread64(").size(), 1000u);
  EXPECT_EQ(many.Of("write(1,").size() - few.Of("write(1,").size(), 1000u);
  if (kMemoryCounts) {  // the sanitizers' allocator has calls of its own
    EXPECT_EQ(many.calls.size() - few.calls.size(), 2000u) << "something else is asked for each sector";
  }
}

class LoopDeviceTest : public ::testing::TestWithParam<u32> {};

// A device tells its own sector size and length: the same reports as of the image with that size.
TEST_P(LoopDeviceTest, GivesTheReportsOfItsImage) {
  RequireLosetup();
  Disk disk(256, GetParam());
  PutGpt(disk, {{.first = 40, .last = 50}});
  disk.At(60).Text(0, "sixty");
  disk.At(255).U8(0, disk.At(255).View()[0]);
  const std::string image = ScratchPath("loop" + std::to_string(GetParam()) + ".img");
  disk.Write(image);
  const LoopDevice device(image, GetParam());
  REQUIRE_OR_SKIP(device);
  const std::string sized = image + "@" + std::to_string(GetParam());
  ExpectSameReports(device.Path(), sized, {});
  ExpectSameReports(device.Path(), sized, {"60"});
  ExpectSameReports(device.Path(), sized, {"0", "255"});
}

TEST_P(LoopDeviceTest, EndsWhereItsImageEnds) {
  RequireLosetup();
  Disk disk(64, GetParam());
  PutBootRecordBytes(disk, {.entries = {{.type = 0x05, .first = 4000000000}}});
  const std::string image = ScratchPath("end" + std::to_string(GetParam()) + ".img");
  disk.Write(image);
  const LoopDevice device(image, GetParam());
  REQUIRE_OR_SKIP(device);
  // A seek beyond the end is accepted, on a device as on a file; the read is a short one.
  const Outcome outcome = RunProgram(Build::kInventedCode, {device.Path()});
  EXPECT_EQ(outcome.err, "Global::Read short read, needed " + std::to_string(GetParam()) +
                             ", got 0\nError reading sector\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out.ends_with("4000000000\tSupplementary Boot Record\n"));
  EXPECT_EQ(RunProgram(Build::kInventedCode, {device.Path(), "64"}).err,
            "There aren't that many sectors on the disk !!\n");
}

INSTANTIATE_TEST_SUITE_P(SectorSizes, LoopDeviceTest, ::testing::Values(512u, 4096u));

// Sectors that the block layer itself refuses to read: those beside them, in the same page, are shown.
TEST(MappedDevice, UnreadableSectorIsTheOnlyOneThatIsNotShown) {
  RequireLosetup();
  Disk disk(64);
  PutBootRecord(disk, 0, {});
  for (u64 sector = 8; sector < 16; ++sector)
    disk.At(sector).Le64(0, sector);
  const std::string image = ScratchPath("mapped.img");
  disk.Write(image);
  const LoopDevice device(image, 512);
  REQUIRE_OR_SKIP(device);
  const auto [reason, mapper] = Shell("PATH=$PATH:/sbin:/usr/sbin dmsetup version");
  if (!mapper) GTEST_SKIP() << "no device-mapper on this machine: " << reason;
  const std::string name = "trovisk-test-" + std::to_string(getpid());
  const auto [problem, made] = Shell("PATH=$PATH:/sbin:/usr/sbin; printf '0 10 linear " + device.Path() +
                                     " 0\\n10 1 error\\n11 53 linear " + device.Path() +
                                     " 11\\n' | dmsetup create --readonly " + name);
  ASSERT_TRUE(made) << problem;
  const Outcome outcome = RunProgram(Build::kInventedCode, {"/dev/mapper/" + name, "9", "11"});
  Shell("PATH=$PATH:/sbin:/usr/sbin dmsetup remove " + name);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "Global::Read failed, error 5\nError reading sector\n");
  EXPECT_TRUE(outcome.out.ends_with(
      ExpandExpected("\nReading sector # 9 [Raw Sector]\n{{dump 9}}\n"
                     "Reading sector # 10 [Raw Sector]\nReading sector # 11 [Raw Sector]\n{{dump 11}}\n",
                     disk)))
      << outcome.out;
}

// A size of one's choice is for images alone.
TEST(LoopDevice, TakesNoSectorSizeFromItsArgument) {
  RequireLosetup();
  const std::string image = ScratchPath("chosen.img");
  Disk(64).Write(image);
  const LoopDevice device(image, 512);
  REQUIRE_OR_SKIP(device);
  const std::string argument = device.Path() + "@512";
  EXPECT_EQ(RunProgram(Build::kShipped, {argument}).err,
            "Global::Open: couldn't get disk geometry \\\\.\\PhysicalDrive" + argument +
                " IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, error 22\n");
}

// The disk of a number is the block device of that place in the kernel's list, loop devices left out.
TEST(DiskNumber, OpensTheDiskOfThatPlace) {
  std::ifstream list("/proc/partitions");
  std::string line;
  std::vector<std::string> names;
  while (std::getline(list, line)) {
    std::istringstream words(line);
    std::string major;
    std::string minor;
    std::string blocks;
    std::string name;
    if (!(words >> major >> minor >> blocks >> name) || major == "major") continue;
    const bool disk = name.starts_with("vd") || name.starts_with("sd") || name.starts_with("nvme");
    if (disk && !std::filesystem::exists("/sys/class/block/" + name + "/partition")) names.push_back(name);
  }
  if (names.empty()) GTEST_SKIP() << "the machine shows no disk in /proc/partitions";
  // The same disk by its number and by its path, whether this user may read it or not.
  const std::string path = "/dev/" + names[0];
  const Trace numbered = TraceProgram({"0", "0"});
  const Outcome named = RunProgram(Build::kShipped, {path, "0"});
  const auto opened = [&](const std::string& call) {
    return call.find('"' + path + '"') != std::string::npos;
  };
  EXPECT_TRUE(std::any_of(numbered.calls.begin(), numbered.calls.end(), opened)) << path;
  const auto unnamed = [&](std::string text) {
    const std::string prefix = "PhysicalDrive";
    if (const std::size_t at = text.find(prefix + path); at != std::string::npos) {
      text.replace(at, prefix.size() + path.size(), prefix + "0");
    }
    return text;
  };
  EXPECT_TRUE(SameText(numbered.outcome.out, unnamed(named.out)));
  EXPECT_TRUE(SameText(numbered.outcome.err, unnamed(named.err)));
  EXPECT_EQ(numbered.outcome.status, named.status);
}

}  // namespace
}  // namespace trovisk::test
