// The arguments of a Windows process, from its own command line: the bytes that the C runtime hands over have
// lost what the system's code page does not have.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "frame/disk/command_line.h"
#include "frame/disk/file_windows.h"
#include "map/arguments.h"

namespace trovisk {

std::vector<std::string> ArgumentsInUtf8(int /*argc*/, char** /*argv*/) {
  argumentsAreUtf8 = true;
  std::vector<std::string> arguments;
  for (const std::wstring& argument : ArgumentsOf(GetCommandLineW()))
    arguments.push_back(ToUtf8(argument));
  return arguments;
}

}  // namespace trovisk
