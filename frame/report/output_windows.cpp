// Where printed text goes on Windows: the C runtime's descriptors, and the console behind them.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <climits>
#include <cstdlib>

#include "frame/report/output.h"

namespace trovisk {
namespace {

int Descriptor(Output output) {
  return output == Output::kReport ? 1 : 2;
}

UINT consoleCodePage = 0;

}  // namespace

ErrorCode WriteOutput(Output output, const char* text, std::size_t count) {
  while (count > 0) {
    const auto stretch = static_cast<unsigned>(count < INT_MAX ? count : INT_MAX);
    const int written = _write(Descriptor(output), text, stretch);
    if (written < 0) return static_cast<ErrorCode>(_doserrno != 0 ? _doserrno : ERROR_WRITE_FAULT);
    if (written == 0) return ERROR_DISK_FULL;
    text += written;
    count -= static_cast<std::size_t>(written);
  }
  return 0;
}

bool IsClosedPipe(ErrorCode error) {
  return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED;
}

bool IsTerminal(Output output) {
  DWORD mode = 0;
  const DWORD standard = output == Output::kReport ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE;
  return GetConsoleMode(GetStdHandle(standard), &mode) != 0;
}

// Names from the disk are written as UTF-8; the console is told so for the length of the run. It starts a new
// line at LF by itself, and the C runtime's text mode could take the bytes of a character for characters.
void PrepareOutput() {
  if (!IsTerminal(Output::kReport)) return;
  _setmode(Descriptor(Output::kReport), _O_BINARY);
  consoleCodePage = GetConsoleOutputCP();
  if (SetConsoleOutputCP(CP_UTF8)) std::atexit([] { SetConsoleOutputCP(consoleCodePage); });
}

}  // namespace trovisk
