// Runs a program under the rules of raw_disk_rules.dll, which stands beside this launcher:
//
//   launcher PROGRAM ARGUMENT...
//
// The program's file is left as it is: it starts suspended, loads the DLL, and goes on. Its output and its
// exit status become the launcher's. Ctrl-C is for the program alone.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdio>
#include <string>

namespace {

// What follows the first word of a command line.
std::wstring WithoutFirstWord(const std::wstring& line) {
  const wchar_t end = line.starts_with(L'"') ? L'"' : L' ';
  const std::size_t at = line.find(end, 1);
  const std::size_t next = at == std::wstring::npos ? at : line.find_first_not_of(L' ', at + 1);
  return next == std::wstring::npos ? L"" : line.substr(next);
}

std::wstring RulesPath() {
  wchar_t path[MAX_PATH]{};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::wstring launcher = path;
  return launcher.substr(0, launcher.find_last_of(L'\\') + 1) + L"raw_disk_rules.dll";
}

// Lets the process load the DLL, as if it had called LoadLibraryW itself.
bool LoadInto(HANDLE process, const std::wstring& dll) {
  const SIZE_T bytes = (dll.size() + 1) * sizeof(wchar_t);
  void* const name = VirtualAllocEx(process, nullptr, bytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
  if (name == nullptr || !WriteProcessMemory(process, name, dll.c_str(), bytes, nullptr)) return false;
  // The system's DLLs stand at the same place in every process.
  const auto load = reinterpret_cast<LPTHREAD_START_ROUTINE>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW")));
  const HANDLE thread = CreateRemoteThread(process, nullptr, 0, load, name, 0, nullptr);
  if (thread == nullptr) return false;
  WaitForSingleObject(thread, INFINITE);
  DWORD module = 0;
  const bool loaded = GetExitCodeThread(thread, &module) && module != 0;
  CloseHandle(thread);
  return loaded;
}

}  // namespace

int main() {
  SetConsoleCtrlHandler([](DWORD) -> BOOL { return TRUE; }, TRUE);
  std::wstring line = WithoutFirstWord(GetCommandLineW());
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION program{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr,
                      &startup, &program)) {
    std::fprintf(stderr, "launcher: the program does not start, error %lu\n", GetLastError());
    return 125;
  }
  if (!LoadInto(program.hProcess, RulesPath())) {
    std::fprintf(stderr, "launcher: the rules do not load, error %lu\n", GetLastError());
    TerminateProcess(program.hProcess, 126);
  }
  ResumeThread(program.hThread);
  WaitForSingleObject(program.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(program.hProcess, &status);
  return static_cast<int>(status);
}
