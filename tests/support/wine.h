// Runs Windows programs under Wine, where the environment asks for it:
//
//   TROVISK_WINE             the wine command
//   TROVISK_WINDOWS_BUILD    the folder of the Windows build
//   WINEPREFIX               Wine's own folder, made beforehand

#ifndef TROVISK_TESTS_SUPPORT_WINE_H
#define TROVISK_TESTS_SUPPORT_WINE_H

#include <functional>
#include <string>
#include <vector>

#include "tests/support/child.h"

namespace trovisk::test {

bool UnderWine();

// The wine command.
std::string WineCommand();

// A whole path of this system as Windows programs see it.
std::string WindowsPath(std::string path);

// A program of the Windows build.
std::string WindowsProgram(const std::string& name);

// An image file as one of Wine's physical drives, for as long as the object lives; where no number is given,
// as one that no other has.
class WineDrive {
 public:
  explicit WineDrive(const std::string& image, const std::string& number = "");
  WineDrive(const WineDrive&) = delete;
  WineDrive& operator=(const WineDrive&) = delete;
  ~WineDrive();
  const std::string& Number() const { return number_; }

 private:
  std::string number_;
  std::string link_;
};

// What run, the start of a Windows program, comes to; of a second one where Wine did not start the program,
// which is said on standard output. Texts as they are.
Outcome OnceMoreUnlessStarted(const std::function<Outcome()>& run);

// Runs a Windows program, once more where Wine did not start it; environment: NAME=VALUE pairs added to the
// environment. The C runtime of Windows writes CR LF, and "Jan 01" for "Jan  1": both read as elsewhere, and
// what is not written so is marked. The program's own name is the path of this system.
Outcome RunWindowsProgram(const std::string& program, const std::vector<std::string>& arguments,
                          const std::vector<std::string>& environment);

// The same for trovisk, under the rules of a raw disk (tests/windows/raw_disk_rules.cpp): where the first
// argument is an image file, with "@sectorsize" behind its path or not, the program is given a physical
// drive, and its texts name the image.
Outcome RunOnWineDrive(const std::string& program, std::vector<std::string> arguments,
                       std::vector<std::string> environment);

}  // namespace trovisk::test

#endif
