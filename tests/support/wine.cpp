#include "tests/support/wine.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <regex>

#include "tests/support/program.h"

namespace trovisk::test {
namespace {

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// What is not as the C runtime of Windows writes it is marked, so that no expected text has it.
std::string AsElsewhere(const std::string& text) {
  std::string lines;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text.compare(at, 2, "\r\n") == 0) {
      ++at;
    } else if (text[at] == '\n') {
      lines += "<LF without CR>";
    }
    lines += text[at];
  }
  static const std::regex padded(
      "([A-Z][a-z]{2} [A-Z][a-z]{2} ) ([1-9] [0-9]{2}:[0-9]{2}:[0-9]{2} [0-9]{4})");
  static const std::regex day("([A-Z][a-z]{2} [A-Z][a-z]{2} )0([1-9] [0-9]{2}:[0-9]{2}:[0-9]{2} [0-9]{4})");
  return std::regex_replace(std::regex_replace(lines, padded, "$1<day without 0>$2"), day, "$1 $2");
}

// Wine fails to start a process about once in some thousand times: it prints nothing, where the first act of
// every program here is to print something, or Wine's own error (ERROR_INTERNAL_ERROR) reaches the launcher.
bool HasNotStarted(const Outcome& outcome) {
  static const std::string refused = "launcher: the program does not start, error 1359\r\n";
  return outcome.out.empty() && (outcome.err.empty() || (outcome.status == 125 && outcome.err == refused));
}

}  // namespace

std::string WineCommand() {
  return Variable("TROVISK_WINE");
}

std::string WindowsPath(std::string path) {
  ReplaceAll(path, "/", "\\");
  return "Z:" + path;
}

bool UnderWine() {
  return !WineCommand().empty();
}

std::string WindowsProgram(const std::string& name) {
  return Variable("TROVISK_WINDOWS_BUILD") + "/" + name;
}

WineDrive::WineDrive(const std::string& image, const std::string& number) : number_(number) {
  static std::atomic<int> drives = 0;
  if (number.empty()) number_ = std::to_string(getpid()) + std::to_string(10000 + drives++);
  link_ = Variable("WINEPREFIX") + "/dosdevices/physicaldrive" + number_;
  std::filesystem::create_symlink(image, link_);
}

WineDrive::~WineDrive() {
  std::error_code ignored;
  std::filesystem::remove(link_, ignored);
}

Outcome OnceMoreUnlessStarted(const std::function<Outcome()>& run) {
  Outcome first = run();
  if (!HasNotStarted(first)) return first;
  // Should it be the program after all, it prints nothing the second time either.
  Outcome second = run();
  if (!HasNotStarted(second)) {
    std::cout << "wine did not start it at first, status " << first.status << ": " << first.err << "\n";
  }
  return second;
}

Outcome RunWindowsProgram(const std::string& program, const std::vector<std::string>& arguments,
                          const std::vector<std::string>& environment) {
  std::vector<std::string> all = {program};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Outcome outcome = OnceMoreUnlessStarted([&] { return RunCommand(WineCommand(), all, environment); });
  outcome.out = AsElsewhere(outcome.out);
  outcome.err = AsElsewhere(outcome.err);
  ReplaceAll(outcome.err, WindowsPath(program), program);
  return outcome;
}

Outcome RunOnWineDrive(const std::string& program, std::vector<std::string> arguments,
                       std::vector<std::string> environment) {
  const std::string disk = arguments.empty() ? "" : arguments[0];
  const std::string image = disk.substr(0, disk.find('@'));
  arguments.insert(arguments.begin(), program);
  const std::string launcher = WindowsProgram("launcher.exe");
  if (!std::filesystem::is_regular_file(image)) return RunWindowsProgram(launcher, arguments, environment);
  const std::string sectorSize = image == disk ? "512" : disk.substr(image.size() + 1);
  constexpr int kSmallest = 512;  // of a raw disk; image files have smaller ones
  const WineDrive drive(image);
  arguments[1] = std::stoi(sectorSize) < kSmallest ? WindowsPath(disk) : drive.Number();
  environment.push_back("RAW_DISK=sector=" + sectorSize);
  Outcome outcome = RunWindowsProgram(launcher, arguments, environment);
  ReplaceAll(outcome.out, "PhysicalDrive" + arguments[1], "PhysicalDrive" + disk);
  ReplaceAll(outcome.err, "PhysicalDrive" + arguments[1], "PhysicalDrive" + disk);
  return outcome;
}

}  // namespace trovisk::test
