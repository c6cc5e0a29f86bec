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

std::string AsElsewhere(std::string text) {
  ReplaceAll(text, "\r\n", "\n");
  static const std::regex day("([A-Z][a-z]{2} [A-Z][a-z]{2} )0([1-9] [0-9]{2}:[0-9]{2}:[0-9]{2} [0-9]{4})");
  return std::regex_replace(text, day, "$1 $2");
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

Outcome RunWindowsProgram(const std::string& program, const std::vector<std::string>& arguments,
                          const std::vector<std::string>& environment) {
  std::vector<std::string> all = {program};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Outcome outcome = RunCommand(WineCommand(), all, environment);
  // Wine fails to start a process about once in some thousand times. What prints nothing was not the program,
  // whose first act is its banner; should it be the program after all, it prints nothing the second time
  // either.
  if (outcome.out.empty() && outcome.err.empty()) {
    std::cout << "wine printed nothing, status " << outcome.status << "; once more\n";
    outcome = RunCommand(WineCommand(), all, environment);
  }
  outcome.out = AsElsewhere(outcome.out);
  outcome.err = AsElsewhere(outcome.err);
  ReplaceAll(outcome.err, WindowsPath(program), program);
  return outcome;
}

Outcome RunOnWineDrive(const std::string& program, std::vector<std::string> arguments,
                       std::vector<std::string> environment) {
  const std::string disk = arguments.empty() ? "" : arguments[0];
  const std::string image = disk.substr(0, disk.find('@'));
  if (!std::filesystem::is_regular_file(image)) return RunWindowsProgram(program, arguments, environment);
  if (image != disk) environment.push_back("TROVISK_TEST_SECTOR_SIZE=" + disk.substr(image.size() + 1));
  const WineDrive drive(image);
  arguments[0] = drive.Number();
  Outcome outcome = RunWindowsProgram(program, arguments, environment);
  ReplaceAll(outcome.out, "PhysicalDrive" + drive.Number(), "PhysicalDrive" + disk);
  ReplaceAll(outcome.err, "PhysicalDrive" + drive.Number(), "PhysicalDrive" + disk);
  return outcome;
}

}  // namespace trovisk::test
