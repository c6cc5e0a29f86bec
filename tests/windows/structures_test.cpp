// Every structure on a raw disk, where no part of a sector can be read: the Windows executable's reports of
// the sample disks against those of this system's.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>

#include "tests/disks/samples.h"
#include "tests/support/expected.h"
#include "tests/support/wine.h"
#include "tests/windows/raw_disk.h"

namespace trovisk::test {
namespace {

Outcome NativeRun(const Disk& disk, const std::vector<std::string>& arguments) {
  const std::string image = ScratchPath("native.img");
  disk.Write(image);
  std::vector<std::string> all = {image + "@" + std::to_string(disk.SectorSize())};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Outcome outcome = RunCommand(NativeProgramPath(Build::kInventedCode), all, {});
  std::filesystem::remove(image);
  outcome.out = WithoutDate(outcome.out);
  ReplaceAll(outcome.out, all[0], "<disk>");
  ReplaceAll(outcome.err, all[0], "<disk>");
  return outcome;
}

// What the sectors of a whole-disk report are, without their numbers.
std::set<std::string> Described(const std::string& report) {
  std::set<std::string> found;
  std::istringstream lines(report);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("Reading sector # ")) found.insert(line.substr(line.find('[')));
  }
  return found;
}

void ExpectWholeSectorsOnly(const std::string& calls, u32 sectorSize) {
  std::istringstream lines(calls);
  u64 reads = 0;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("ReadFile ")) continue;
    ++reads;
    EXPECT_EQ(std::stoull(line.substr(9)) % sectorSize, 0U) << line;
  }
  EXPECT_GT(reads, 0U);
}

void ExpectTheSameReport(const Disk& disk, const std::vector<std::string>& arguments = {}) {
  const Outcome native = NativeRun(disk, arguments);
  const RawDiskRun run = RunOnRawDisk(disk, arguments, "", Build::kInventedCode);
  EXPECT_EQ(run.outcome.status, native.status);
  EXPECT_EQ(run.outcome.err, native.err);
  EXPECT_TRUE(SameText(run.outcome.out, native.out));
  ExpectWholeSectorsOnly(run.calls, disk.SectorSize());
}

// A report of large sectors that has lost structures on the way would compare equal all the same. The boot
// code of NTFS alone does not count: it lies within the boot sector there.
void ExpectEveryStructure(const Disk& small, const Disk& large) {
  std::set<std::string> expected = Described(NativeRun(small, {}).out);
  std::erase_if(expected, [](const std::string& description) {
    return description == "[NTFS boot sector +1]" || description.starts_with("[NTFS boot sector boot code ");
  });
  EXPECT_EQ(Described(NativeRun(large, {}).out), expected);
}

TEST(WindowsStructures, GptDisk) {
  ExpectTheSameReport(GptSample());
}

TEST(WindowsStructures, MbrDisk) {
  ExpectTheSameReport(MbrSample());
}

TEST(WindowsStructures, DynamicDisk) {
  ExpectTheSameReport(DynamicSample());
}

TEST(WindowsStructures, GptDiskOf4096ByteSectors) {
  ExpectTheSameReport(GptSample(4096));
  ExpectEveryStructure(GptSample(), GptSample(4096));
}

TEST(WindowsStructures, MbrDiskOf4096ByteSectors) {
  ExpectTheSameReport(MbrSample(4096));
  ExpectEveryStructure(MbrSample(), MbrSample(4096));
}

TEST(WindowsStructures, DynamicDiskOf4096ByteSectors) {
  ExpectTheSameReport(DynamicSample(4096));
  ExpectEveryStructure(DynamicSample(), DynamicSample(4096));
}

TEST(WindowsStructures, RangeOf4096ByteSectors) {
  ExpectTheSameReport(GptSample(4096), {"0", "40"});
}

}  // namespace
}  // namespace trovisk::test
