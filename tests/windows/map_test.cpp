// trovisk-map for Windows: names in their own characters, wherever they stand, and its output file.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/disks/gpt.h"
#include "tests/support/program.h"
#include "tests/support/wine.h"

namespace trovisk::test {
namespace {

namespace fs = std::filesystem;

Outcome RunMap(const std::vector<std::string>& arguments) {
  return RunWindowsProgram(WindowsProgram("trovisk-map.exe"), arguments, {});
}

// A disk with one partition of that name.
std::string WriteDisk(const std::string& file, const std::u16string& name) {
  Disk disk(4096);
  PutGpt(disk, {{.first = 64, .last = 1063, .name = name}});
  std::string path = ScratchPath(file);
  disk.Write(path);
  return path;
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Two files whose names are the same to the code page, and a disk that stands behind options.
TEST(WindowsMap, TheDiskIsNamedInItsOwnCharactersWhereverItStands) {
  const std::string sun = WriteDisk("\u65E5.img", u"Sun");
  const std::string moon = WriteDisk("\u6708.img", u"Moon \u6708");
  const Outcome outcome = RunMap({"--all", "--color=never", WindowsPath(moon)});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(Has(outcome.out, "\nextent\t64\t1063\t1000\tpartition\t")) << outcome.out;
  EXPECT_TRUE(Has(outcome.out, "\tMoon \u6708\tGPT entry 1\t")) << outcome.out;
  EXPECT_TRUE(Has(outcome.out, "\ndisk\t" + WindowsPath(moon) + "\t512\t4096\t"));
  EXPECT_TRUE(Has(RunMap({"--width", "80", WindowsPath(sun) + "@512"}).out, "Sun"));
  EXPECT_EQ(RunMap({"--compare", WindowsPath(sun), WindowsPath(sun)}).status, 0);
  EXPECT_EQ(RunMap({"--compare=" + WindowsPath(sun), WindowsPath(moon)}).status, 1);
}

TEST(WindowsMap, OutputIsAFileOfAnyNameAndNeverWhatIsExamined) {
  const std::string folder = ScratchPath("output");
  fs::create_directories(folder);
  const std::string disk = WriteDisk("disk.img", u"One");
  const std::string output = folder + "/\u65E5.txt";
  const Outcome outcome = RunMap({WindowsPath(disk), "-o", WindowsPath(output)});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out + outcome.err, "");
  EXPECT_TRUE(ReadFile(output).starts_with("#disk\tpath\t"));
  EXPECT_EQ(RunMap({WindowsPath(disk), "--json", "-o", WindowsPath(output)}).status, 0);
  EXPECT_TRUE(ReadFile(output).starts_with("{"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);

  const std::string before = ReadFile(disk);
  for (const std::string& suffix : {std::string(), std::string("@512")}) {
    const Outcome refused = RunMap({WindowsPath(disk) + suffix, "-o", WindowsPath(disk)});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(Has(refused.err, "is not written to: it is what is examined\n")) << refused.err;
  }
  EXPECT_EQ(ReadFile(disk), before);
  for (const char* device : {"\\\\.\\PhysicalDrive0", "NUL"})
    EXPECT_TRUE(Has(RunMap({WindowsPath(disk), "-o", device}).err, "it is a device\n")) << device;
  EXPECT_TRUE(Has(RunMap({WindowsPath(disk), "-o", WindowsPath(folder)}).err, "it is a folder\n"));
}

TEST(WindowsMap, SaysHowItIsCalled) {
  EXPECT_TRUE(RunMap({"--help"}).out.starts_with("Usage: trovisk-map "));
  EXPECT_EQ(RunMap({"/help"}).status, 1);  // no option but a path
  EXPECT_TRUE(Has(RunMap({"--bad"}).err, "not expected: --bad."));
  EXPECT_EQ(RunMap({"--list"}).status, 0);
}

}  // namespace
}  // namespace trovisk::test
