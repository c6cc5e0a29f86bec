// Presses Ctrl-C for a program on this console, and says what becomes of the console's code page:
//
//   console LOG TIMES PROGRAM ARGUMENT...
//
// One line each in LOG: the code page before the program, while it runs, and behind it; the program's exit
// status. Ctrl-C comes when the program has changed the code page, and TIMES - 1 more times.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr UINT kBefore = 850;
constexpr int kTries = 300;
constexpr DWORD kPause = 100;  // milliseconds

// What follows the first four words of a command line, none of which has blanks or quotation marks.
std::wstring ProgramLine(std::wstring line) {
  for (int word = 0; word < 3; ++word) {
    line.erase(0, line.find(L' '));
    line.erase(0, line.find_first_not_of(L' '));
  }
  return line;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return 2;
  std::FILE* const log = std::fopen(argv[1], "wb");
  SetConsoleCtrlHandler([](DWORD) -> BOOL { return TRUE; }, TRUE);
  SetConsoleOutputCP(kBefore);
  std::fprintf(log, "%u\n", GetConsoleOutputCP());
  std::wstring line = ProgramLine(GetCommandLineW());
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION program{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                      &program)) {
    std::fprintf(log, "error %lu\n", GetLastError());
    return 125;
  }
  for (int tries = 0; tries < kTries && GetConsoleOutputCP() == kBefore; ++tries)
    Sleep(kPause);
  std::fprintf(log, "%u\n", GetConsoleOutputCP());
  for (int times = std::atoi(argv[2]); times > 0; --times) {
    Sleep(10 * kPause);
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
  }
  if (WaitForSingleObject(program.hProcess, kTries * kPause) != WAIT_OBJECT_0) {
    TerminateProcess(program.hProcess, 1);
    std::fprintf(log, "it went on\n");
  }
  DWORD status = 0;
  GetExitCodeProcess(program.hProcess, &status);
  std::fprintf(log, "%u\n0x%lX\n", GetConsoleOutputCP(), status);
  std::fclose(log);
  return 0;
}
