// The words of Windows: physical drives and image files, and its own messages.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "frame/help_words.h"

namespace trovisk {

const HelpWords kHelpWords = {
    .diskArgument =
        R"(  disk          a number    the physical drive of that number in Disk Management
                an image    the path of an image file
                PATH@N      an image file with sectors of N bytes
)",
    .examples = R"(  trovisk 0                    \\.\PhysicalDrive0 as a whole
  trovisk 1 1                  the second sector, where a GPT header stands
  trovisk disk.img@4096 0 63   the first 64 sectors, of 4096 bytes, of an image
)",
    .more = R"(Raw disks need a console that was opened with "Run as administrator".
More: README.md, which comes with the program
)",
    .naming = R"(A disk is named by its number in Disk Management, or by the path of an image
file (disk.img, or disk.img@4096 for sectors of 4096 bytes).
)",
    .accessDenied = R"(Reading a disk takes an administrator's rights: run the same command in a
console that was opened with "Run as administrator".
)",
};

// In the character set that the console is in by now: the message is in the language of the system.
std::string MeaningOf(ErrorCode error) {
  if (error == kErrorWithoutCode) return {};
  wchar_t wide[512];
  const DWORD flags =
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
  DWORD count = FormatMessageW(flags, nullptr, static_cast<DWORD>(error), 0, wide, 512, nullptr);
  while (count > 0 && (wide[count - 1] <= L' ' || wide[count - 1] == L'.'))
    --count;
  char narrow[4 * 512];
  const int bytes = WideCharToMultiByte(GetConsoleOutputCP(), 0, wide, static_cast<int>(count), narrow,
                                        sizeof narrow, nullptr, nullptr);
  return {narrow, static_cast<std::size_t>(bytes)};
}

bool IsAccessDenied(ErrorCode error) {
  return error == ERROR_ACCESS_DENIED;
}

}  // namespace trovisk
