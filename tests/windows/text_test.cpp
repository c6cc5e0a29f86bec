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
#include "tests/reports/ldm_disk.h"
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
std::string OnceOnConsole(const std::vector<std::string>& arguments) {
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

// The same, once more where Wine did not start it.
std::string OnConsole(const std::vector<std::string>& arguments) {
  return OnceMoreUnlessStarted([&] { return Outcome{OnceOnConsole(arguments), {}}; }).out;
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
  const std::string text = WithoutDate(OnConsole(
      {WineCommand(), WindowsProgram("launcher.exe"), WindowsProgram("trovisk.exe"), drive.Number(), "2"}));
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

// Becomes the program under Wine, on a raw disk.
void Become(const std::string& disk, const std::vector<std::string>& sectors) {
  std::vector<std::string> words = {WineCommand(), WindowsProgram("launcher.exe"),
                                    WindowsProgram("trovisk.exe"), disk};
  words.insert(words.end(), sectors.begin(), sectors.end());
  Execute(words);
}

// What the console's code page is before a run, in it, and behind it, and how the run ended: Ctrl-C is
// pressed so many times.
std::string CodePages(int presses, const std::vector<std::string>& program) {
  const std::string log = ScratchPath("console.log");
  std::vector<std::string> words = {WineCommand(), WindowsProgram("console.exe"), WindowsPath(log),
                                    std::to_string(presses)};
  words.insert(words.end(), program.begin(), program.end());
  return OnceMoreUnlessStarted([&] {
           std::filesystem::remove(log);
           OnceOnConsole(words);
           return Outcome{ReadFile(log), {}};
         })
      .out;
}

constexpr char kCtrlC[] = "0xC000013A\n";  // STATUS_CONTROL_C_EXIT

TEST(WindowsText, TheConsoleGetsItsCodePageBackAtTheEnd) {
  const std::string image = ScratchPath("pages.img");
  Disk(4000).Write(image);
  EXPECT_EQ(CodePages(0, {WindowsProgram("trovisk.exe"), WindowsPath(image), "0", "3999"}),
            "850\n65001\n850\n0x0\n");
}

TEST(WindowsText, CtrlCGivesTheConsoleItsCodePageBack) {
  const std::string image = ScratchPath("endless.img");
  Disk(200).Write(image);
  std::filesystem::resize_file(image, u64{1} << 32);
  EXPECT_EQ(CodePages(1, {WindowsProgram("trovisk.exe"), WindowsPath(image), "0", "8388607"}),
            std::string("850\n65001\n850\n") + kCtrlC);
}

// A disk that does not answer: the second Ctrl-C ends the program in the middle of the read, with a status
// that is Wine's own.
TEST(WindowsText, SecondCtrlCGivesTheConsoleItsCodePageBack) {
  const std::string image = ScratchPath("hanging.img");
  Disk(200).Write(image);
  const WineDrive drive(image);
  setenv("RAW_DISK", "hang=3", 1);
  const std::string pages =
      CodePages(2, {WindowsProgram("launcher.exe"), WindowsProgram("trovisk.exe"), drive.Number(), "3"});
  unsetenv("RAW_DISK");
  EXPECT_TRUE(pages.starts_with("850\n65001\n850\n0x")) << pages;
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
    Become(drive.Number(), {"0", "1999"});
  });
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

TEST(WindowsText, FullDiskIsAnError) {
  const WineDrive drive(LargeImage());
  const Outcome outcome = OnceMoreUnlessStarted([&] {
    return RunChild([&] {
      dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
      Become(drive.Number(), {"0", "1999"});
    });
  });
  EXPECT_EQ(outcome.err, "Error writing the report, error 112\r\n");  // ERROR_DISK_FULL
  EXPECT_EQ(outcome.status, 1);
}

// Both streams in one file: a message stands behind what was printed before it, and before what comes after.
TEST(WindowsText, BothStreamsInOneFileKeepTheirOrder) {
  const std::string image = LargeImage();
  std::filesystem::resize_file(image, 3 * 512 + 100);
  const WineDrive drive(image);
  const auto inOneFile = [&](const std::string& sector) {
    return OnceMoreUnlessStarted([&] {
      return RunChild([&] {
        dup2(STDOUT_FILENO, STDERR_FILENO);
        Become(drive.Number(), {sector});
      });
    });
  };
  Outcome outcome = inOneFile("3");
  EXPECT_TRUE(
      outcome.out.ends_with("Last sector on disk is 2\r\nThere aren't that many sectors on the disk !!\r\n"))
      << outcome.out;
  std::filesystem::resize_file(image, 10);
  outcome = inOneFile("0");
  const std::string failure = "Global::Read failed, error 27\r\nError reading sector\r\n";
  EXPECT_TRUE(outcome.out.ends_with(" sector 0\r\n\r\nLoading TOC ...\r\n" + failure +
                                    "\r\nReading sector # 0 [Master Boot Record]\r\n" + failure))
      << outcome.out;
}

// Without the variable TZ, as users have it: the zone that Windows is set to, with its summer time.
TEST(WindowsText, TimesAreOfTheZoneThatTheSystemIsSetTo) {
  const auto time = [](u64 stamp, const std::string& zone) {
    Disk disk = DynamicMbrDisk();
    Privhead header = SmallPrivhead();
    header.timestamp = stamp;
    PutPrivhead(disk, kPrivheadSector, header);
    const std::string image = ScratchPath("zone.img");
    disk.Write(image);
    const WineDrive drive(image);
    const Outcome outcome = RunWindowsProgram(WindowsProgram("launcher.exe"),
                                              {WindowsProgram("trovisk.exe"), drive.Number(), "6"},
                                              {"TZ=" + zone, "RAW_DISK=zone=system"});
    std::smatch line;
    return std::regex_search(outcome.out, line, std::regex("\nTimestamp  *: (.*)\n")) ? line[1].str()
                                                                                      : outcome.err;
  };
  constexpr u64 kSummer = 133'000'000'000'000'000;  // Sat Jun 18 04:26:40 2022 UTC
  constexpr u64 kWinter = 132'862'000'000'000'000;  // Sun Jan  9 11:06:40 2022 UTC
  EXPECT_EQ(time(kSummer, "UTC"), "Sat Jun 18 04:26:40 2022");
  EXPECT_EQ(time(kSummer, "America/New_York"), "Sat Jun 18 00:26:40 2022");
  EXPECT_EQ(time(kWinter, "America/New_York"), "Sun Jan  9 06:06:40 2022");
  EXPECT_EQ(time(kSummer, "Asia/Kolkata"), "Sat Jun 18 09:56:40 2022");
  EXPECT_EQ(time(kWinter, "Australia/Sydney"), "Sun Jan  9 22:06:40 2022");
  EXPECT_EQ(time(kSummer, "Australia/Sydney"), "Sat Jun 18 14:26:40 2022");
}

TEST(WindowsText, LineEndsAreThoseOfWindows) {
  const Outcome outcome = OnceMoreUnlessStarted([] {
    return RunCommand(WineCommand(), {WindowsProgram("trovisk.exe"), "x", "y", "z", "more"}, {});
  });
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.out.ends_with("\r\n\r\n")) << outcome.out;
  EXPECT_TRUE(outcome.err.ends_with(" disk# [first_sector#] [LastSector#]\r\n")) << outcome.err;
}

}  // namespace
}  // namespace trovisk::test
