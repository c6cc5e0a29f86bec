// Standard output on Windows.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdlib>

#include "map/terminal.h"

namespace trovisk {
namespace {

HANDLE Console() {
  return GetStdHandle(STD_OUTPUT_HANDLE);
}

DWORD modeBefore = 0;

}  // namespace

std::size_t TerminalWidth() {
  constexpr std::size_t kUsual = 80;
  DWORD mode = 0;
  if (!GetConsoleMode(Console(), &mode)) return 0;
  CONSOLE_SCREEN_BUFFER_INFO console{};
  if (!GetConsoleScreenBufferInfo(Console(), &console)) return kUsual;
  const int columns = console.srWindow.Right - console.srWindow.Left + 1;
  return columns > 0 ? static_cast<std::size_t>(columns) : kUsual;
}

// The console is told so for the length of the run.
bool ShowsUtf8() {
  return true;
}

// The console's mode is put back at the end: it outlives the process.
bool EnableColours() {
  constexpr DWORD kSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  if (!GetConsoleMode(Console(), &modeBefore)) return false;
  if ((modeBefore & kSequences) != 0) return true;
  if (!SetConsoleMode(Console(), modeBefore | kSequences)) return false;
  std::atexit([] { SetConsoleMode(Console(), modeBefore); });
  return true;
}

}  // namespace trovisk
