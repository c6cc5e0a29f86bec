// The hints on a real terminal, with this machine's disks; tests/faults/hints_test.cpp has their whole text.

#include <gtest/gtest.h>

#include <pty.h>
#include <unistd.h>
#include <fstream>

#include <cmath>
#include <regex>

#include "tests/support/expected.h"
#include "tests/support/terminal.h"

namespace trovisk::test {
namespace {

const std::string kNotOpened =
    "Global::Open: couldn't open \\\\.\\PhysicalDriveno-such-disk for reading, error 2\n";
const std::string kFirstHint = "\nError 2: No such file or directory.\nA disk is named by its number, ";

// Runs the words with one or both of the standard streams on a terminal; what that shows is the outcome's
// err.
Outcome RunOnTerminal(const std::vector<std::string>& words, const std::vector<int>& streams) {
  int shown = -1;
  int terminal = -1;
  if (openpty(&shown, &terminal, nullptr, nullptr, nullptr) != 0) ADD_FAILURE() << "no terminal";
  Outcome outcome = RunChild([&] {
    for (const int stream : streams)
      dup2(terminal, stream);
    Execute(words);
  });
  close(terminal);
  char bytes[4096];
  for (ssize_t got = 0; (got = read(shown, bytes, sizeof bytes)) > 0;)
    outcome.err.append(bytes, static_cast<std::size_t>(got));
  close(shown);
  ReplaceAll(outcome.err, "\r\n", "\n");
  return outcome;
}

const std::vector<std::string>& NoSuchDisk() {
  static const std::vector<std::string> words = {ProgramPath(Build::kShipped), "no-such-disk"};
  return words;
}

TEST(OpenHints, FollowTheErrorLineOnATerminal) {
  const Outcome outcome = RunOnTerminal(NoSuchDisk(), {STDERR_FILENO});
  EXPECT_TRUE(outcome.err.starts_with(kNotOpened + kFirstHint)) << outcome.err;
  EXPECT_EQ(WithoutDate(outcome.out), "Trovisk version 1.4 built <date>\n\n");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(ControlCharacter(outcome.err), kNone);
}

TEST(OpenHints, StandBehindTheReportWhereBothAreOnATerminal) {
  const Outcome outcome = RunOnTerminal(NoSuchDisk(), {STDOUT_FILENO, STDERR_FILENO});
  EXPECT_TRUE(
      WithoutDate(outcome.err).starts_with("Trovisk version 1.4 built <date>\n\n" + kNotOpened + kFirstHint))
      << outcome.err;
}

TEST(OpenHints, AreNotWrittenIntoAFileOrAPipe) {
  EXPECT_EQ(RunOnTerminal(NoSuchDisk(), {}).err, kNotOpened);  // a file
  const std::string program = ProgramPath(Build::kShipped);
  const Outcome piped = RunOnTerminal({"sh", "-c", "\"$0\" no-such-disk 2>&1 >/dev/null | cat", program}, {});
  EXPECT_EQ(piped.out, kNotOpened);
  EXPECT_EQ(WithoutDate(RunOnTerminal(NoSuchDisk(), {STDOUT_FILENO}).err),
            kNotOpened + "Trovisk version 1.4 built <date>\n\n");
}

TEST(OpenHints, AreForDisksThatDoNotOpen) {
  Disk disk(10);
  const std::string path = ScratchPath("opens.img");
  disk.Write(path);
  const std::string program = ProgramPath(Build::kShipped);
  EXPECT_EQ(RunOnTerminal({program, path}, {STDERR_FILENO}).err, "");
  EXPECT_EQ(RunOnTerminal({program, path, "10"}, {STDERR_FILENO}).err,
            "There aren't that many sectors on the disk !!\n");
}

// What an image lacks to be a disk is said on a terminal alone; the report and the status stay.
TEST(OpenHints, TellAnEmptyImageFromAShortOne) {
  const std::string path = ScratchPath("short.img");
  const std::string program = ProgramPath(Build::kShipped);
  std::ofstream(path, std::ios::binary).close();
  const Outcome empty = RunOnTerminal({program, path}, {STDERR_FILENO});
  EXPECT_TRUE(empty.err.starts_with("The disk is empty: it has no bytes at all.\n")) << empty.err;
  EXPECT_EQ(RunOnTerminal({program, path}, {}).err.find("empty"), std::string::npos);
  EXPECT_EQ(empty.status, RunOnTerminal({program, path}, {}).status);
  std::ofstream(path, std::ios::binary) << std::string(511, 'x');
  const Outcome shorter = RunOnTerminal({program, path}, {STDERR_FILENO});
  EXPECT_TRUE(shorter.err.starts_with("The disk has 511 bytes, less than the 512 of one sector.\n"))
      << shorter.err;
}

// Each with the number that opens it, and with the size that the system names.
TEST(OpenHints, ListTheDisksOfThisMachine) {
  const std::string err = RunOnTerminal(NoSuchDisk(), {STDERR_FILENO}).err;
  const std::regex row(R"(\n +([0-9]+)  /dev/(\S+) +([0-9]+\.[0-9]) ([KMGTPE])iB)");
  const std::sregex_iterator first(err.begin(), err.end(), row);
  if (first == std::sregex_iterator()) {
    const std::string partitions = ReadFile("/proc/partitions");
    EXPECT_FALSE(std::regex_search(partitions, std::regex("(vda|sda|nvme0n1)\n"))) << err;
    GTEST_SKIP() << "this machine lists no disks: " << partitions;
  }
  EXPECT_NE(err.find("\nThe disks of this machine:\n\n  number  device"), std::string::npos) << err;
  u64 number = 0;
  for (auto disk = first; disk != std::sregex_iterator(); ++disk) {
    EXPECT_EQ(disk->str(1), std::to_string(number++)) << err;
    const auto lastSector = [](const std::string& argument) {
      const std::string out = RunProgram(Build::kShipped, {argument, "0"}).out;
      return out.substr(out.find("\n\n"), out.find("\nReading") - out.find("\n\n"));
    };
    EXPECT_EQ(lastSector(disk->str(1)), lastSector("/dev/" + disk->str(2)));
    const double units = std::stod(ReadFile("/sys/class/block/" + disk->str(2) + "/size"));
    const double unit = std::pow(1024, 1 + std::string("KMGTPE").find(disk->str(4)[0]));
    EXPECT_NEAR(std::stod(disk->str(3)), units * 512 / unit, 0.051);
  }
}

// Nothing is said of what the system does not tell.
TEST(OpenHints, WithoutSysfs) {
  const std::string hide = "mount -t tmpfs none /sys || exit 99; exec \"$0\" no-such-disk";
  const Outcome outcome =
      RunOnTerminal({"unshare", "--mount", "--map-root-user", "sh", "-c", hide, ProgramPath(Build::kShipped)},
                    {STDERR_FILENO});
  if (outcome.out.empty()) GTEST_SKIP() << "the user may not hide /sys: " << outcome.err;
  EXPECT_TRUE(outcome.err.starts_with(kNotOpened + kFirstHint)) << outcome.err;
  EXPECT_EQ(outcome.err.find("/sys"), std::string::npos) << outcome.err;
  EXPECT_EQ(outcome.err.find("iB"), std::string::npos) << outcome.err;
}

}  // namespace
}  // namespace trovisk::test
