// Where printed text goes on Windows: the C runtime's descriptors, and the console behind them.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <climits>
#include <cstdlib>
#include <string>

#include "frame/interruption.h"
#include "frame/report/output.h"

namespace trovisk {
namespace {

int Descriptor(Output output) {
  return output == Output::kReport ? 1 : 2;
}

UINT consoleCodePage = 0;  // 0: nothing to put back

void PutCodePageBack() {
  if (consoleCodePage != 0) SetConsoleOutputCP(consoleCodePage);
}

// Ctrl-C and Ctrl-Break, on a thread of the system's. The second one ends the process on the spot, as
// everything else does that is not taken: without what is done at an exit.
BOOL WINAPI NoteInterruption(DWORD event) {
  const bool taken = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  if (taken && interruption.exchange(1) == 0) {
    attention = true;
    return TRUE;
  }
  PutCodePageBack();
  return FALSE;
}

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

std::size_t ErrorLineWidth() {
  constexpr std::size_t kUsual = 80;
  CONSOLE_SCREEN_BUFFER_INFO console{};
  const bool known = GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &console) != 0;
  return known && console.dwSize.X > 0 ? static_cast<std::size_t>(console.dwSize.X) : kUsual;
}

// Not every console knows escape sequences: blanks erase what is left of the text before.
void RewriteErrorLine(std::string_view text) {
  static std::size_t before = 0;
  std::string line = "\r";
  line += text;
  if (text.size() < before) line.append(before - text.size(), ' ');
  if (text.empty()) line += '\r';
  before = text.size();
  WriteOutput(Output::kErrors, line.data(), line.size());
}

// Names from the disk are written as UTF-8; the console is told so for the length of the run. It starts a new
// line at LF by itself, and the C runtime's text mode could take the bytes of a character for characters.
void PrepareOutput() {
  SetConsoleCtrlHandler(NoteInterruption, TRUE);
  if (!IsTerminal(Output::kReport)) return;
  _setmode(Descriptor(Output::kReport), _O_BINARY);
  consoleCodePage = GetConsoleOutputCP();
  if (SetConsoleOutputCP(CP_UTF8)) std::atexit(PutCodePageBack);
}

void EndByInterruption(int /*signal*/) {
  std::exit(static_cast<int>(STATUS_CONTROL_C_EXIT));  // which puts the console's character set back
}

}  // namespace trovisk
