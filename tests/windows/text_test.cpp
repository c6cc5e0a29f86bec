// Text of the Windows executable: what is not ASCII, on the way in and on the way out.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <regex>

#include "tests/disks/gpt.h"
#include "tests/support/expected.h"
#include "tests/support/wine.h"
#include "tests/windows/raw_disk.h"

namespace trovisk::test {
namespace {

// A name of one, two, three and four bytes a character in UTF-8.
Disk DiskWithName() {
  Disk disk(200);
  PutGpt(disk, {{.first = 40, .last = 100, .name = u"a\u00DF\u65E5\U0001F4BE"}});
  return disk;
}

// What a program shows on a console: Wine's own one on a terminal of ours, without the sequences that move
// and hide its cursor.
std::string OnConsole(const std::vector<std::string>& arguments) {
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    setenv("TERM", "xterm", 1);
    Execute(arguments);
    _exit(127);
  }
  std::string text;
  char bytes[4096];
  for (ssize_t count = 0; (count = read(terminal, bytes, sizeof bytes)) > 0;)
    text.append(bytes, static_cast<std::size_t>(count));
  close(terminal);
  waitpid(child, nullptr, 0);
  static const std::regex sequences("\x1b\\[[0-9;?]*[A-Za-z]|\r");
  return std::regex_replace(text, sequences, "");
}

TEST(WindowsText, NamesInAFile) {
  const Outcome outcome = RunOnRawDisk(DiskWithName(), {"2"}).outcome;
  EXPECT_NE(outcome.out.find("\tPartition Name        : [a\xC3\x9F\xE6\x97\xA5\xF0\x9F\x92\xBE" +
                             std::string(31, '\0') + " ]\n"),
            std::string::npos)
      << outcome.out;
}

// The console shows the same characters; what it makes of NULs, and of characters beyond 16 bits, is its own.
TEST(WindowsText, NamesOnAConsole) {
  const std::string image = ScratchPath("name.img");
  DiskWithName().Write(image);
  const WineDrive drive(image);
  const std::string text =
      WithoutDate(OnConsole({WineCommand(), WindowsProgram("trovisk_wine.exe"), drive.Number(), "2"}));
  EXPECT_TRUE(text.starts_with("Trovisk version 1.4 built <date>\n\nLast sector on disk is 199\nReading "))
      << text;
  EXPECT_NE(text.find("        Partition Name        : [a\xC3\x9F\xE6\x97\xA5"), std::string::npos) << text;
  EXPECT_NE(
      text.find("\nReading sector # 2 [GUID Partition Table Start]\n\n        Partition Type GUID   : { "),
      std::string::npos)
      << text;
}

// The system hands the argument over in its ANSI code page (1252 here). The C runtime takes each of its bytes
// for a character and back; what the code page does not have arrives as '?'.
TEST(WindowsText, ArgumentsThatAreNotAscii) {
  const Outcome outcome = RunWindowsProgram(WindowsProgram("trovisk.exe"), {"caf\xC3\xA9-\xE6\x97\xA5"}, {});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.err.starts_with(
      "Global::Open: couldn't open \\\\.\\PhysicalDrivecaf\xE9-? for reading, error "))
      << outcome.err;
}

TEST(WindowsText, DiskThatIsNotThere) {
  const Outcome outcome = RunWindowsProgram(WindowsProgram("trovisk.exe"), {"4000000000"}, {});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "Global::Open: couldn't open \\\\.\\PhysicalDrive4000000000 for reading, error 2\n");
}

// What the number means in the system's words, and the drives that there are. The console moves its cursor
// instead of printing some of the blanks.
TEST(WindowsText, HintsOnAConsole) {
  const std::string image = ScratchPath("hints.img");
  Disk(200).Write(image);
  const WineDrive drive(image, "7");
  const std::string text = OnConsole({WineCommand(), WindowsProgram("trovisk.exe"), "4000000000"});
  const std::regex hints(R"(for reading, error *2\n\nError 2: [^\n]*[^.\n ]\.\n)"
                         R"(A disk is named by its number in Disk Management, or by the path of an image\n)"
                         R"(file \(disk\.img, or disk\.img@4096 for sectors of 4096 bytes\)\.\n\n)"
                         R"(The disks of this machine:\n\n  number  device +size  model\n)");
  EXPECT_TRUE(std::regex_search(text, hints)) << text;
  EXPECT_TRUE(std::regex_search(text, std::regex(R"(\n       7  \\\\\.\\PhysicalDrive7( |\n))"))) << text;
}

// Becomes the program under Wine.
void Become(const std::string& disk, const char* first, const char* last) {
  setenv("TROVISK_TEST_SECTOR_SIZE", "512", 1);
  const std::string program = WindowsProgram("trovisk_wine.exe");
  const std::string wine = WineCommand();
  execl(wine.c_str(), wine.c_str(), program.c_str(), disk.c_str(), first, last, nullptr);
}

// 2000 sectors, none of them empty: a report far beyond what a pipe or a buffer holds.
std::string LargeImage() {
  Disk disk(2000);
  for (u64 sector = 1; sector < 2000; ++sector)
    disk.At(sector).Le64(0, sector);
  std::string path = ScratchPath("large.img");
  disk.Write(path);
  return path;
}

TEST(WindowsText, ReaderThatHasGoneEndsTheProgramQuietly) {
  const WineDrive drive(LargeImage());
  const Outcome outcome = RunChild([&] {
    int ends[2];
    if (pipe(ends) != 0) _exit(126);
    close(ends[0]);
    dup2(ends[1], STDOUT_FILENO);
    Become(drive.Number(), "0", "1999");
  });
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

TEST(WindowsText, FullDiskIsAnError) {
  const WineDrive drive(LargeImage());
  const Outcome outcome = RunChild([&] {
    dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
    Become(drive.Number(), "0", "1999");
  });
  EXPECT_EQ(outcome.err, "Error writing the report, error 112\r\n");  // ERROR_DISK_FULL
  EXPECT_EQ(outcome.status, 1);
}

// Both streams in one file: a message stands behind what was printed before it, and before what comes after.
TEST(WindowsText, BothStreamsInOneFileKeepTheirOrder) {
  const std::string image = LargeImage();
  std::filesystem::resize_file(image, 3 * 512 + 100);
  const WineDrive drive(image);
  Outcome outcome = RunChild([&] {
    dup2(STDOUT_FILENO, STDERR_FILENO);
    Become(drive.Number(), "3", nullptr);
  });
  EXPECT_TRUE(
      outcome.out.ends_with("Last sector on disk is 2\r\nThere aren't that many sectors on the disk !!\r\n"))
      << outcome.out;
  std::filesystem::resize_file(image, 10);
  outcome = RunChild([&] {
    dup2(STDOUT_FILENO, STDERR_FILENO);
    Become(drive.Number(), "0", nullptr);
  });
  const std::string failure = "Global::Read short read, needed 512, got 10\r\nError reading sector\r\n";
  EXPECT_TRUE(outcome.out.ends_with(" sector 0\r\n\r\nLoading TOC ...\r\n" + failure +
                                    "\r\nReading sector # 0 [Master Boot Record]\r\n" + failure))
      << outcome.out;
}

TEST(WindowsText, LineEndsAreThoseOfWindows) {
  const Outcome outcome =
      RunCommand(WineCommand(), {WindowsProgram("trovisk.exe"), "x", "y", "z", "more"}, {});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.out.ends_with("\r\n\r\n")) << outcome.out;
  EXPECT_TRUE(outcome.err.ends_with(" disk# [first_sector#] [LastSector#]\r\n")) << outcome.err;
}

}  // namespace
}  // namespace trovisk::test
