// Writing a file whole or not at all, on Windows.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>

#include "frame/disk/file_windows.h"
#include "frame/interruption.h"
#include "map/output_file.h"

namespace trovisk {
namespace {

// The one temporary file, for a run that is interrupted: open, and so closed first.
HANDLE pendingHandle = INVALID_HANDLE_VALUE;
std::wstring pending;

void RemovePending() {
  if (pending.empty()) return;
  CloseHandle(pendingHandle);
  DeleteFileW(pending.c_str());
}

bool Identify(const std::wstring& path, BY_HANDLE_FILE_INFORMATION& information) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE handle = CreateFileW(LongPath(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  const bool known = GetFileInformationByHandle(handle, &information) != 0;
  CloseHandle(handle);
  return known;
}

bool IsRead(const BY_HANDLE_FILE_INFORMATION& file, const std::vector<std::string>& disks) {
  const std::vector<std::string> paths = PathsOfDisks(disks);
  return std::any_of(paths.begin(), paths.end(), [&](const std::string& path) {
    BY_HANDLE_FILE_INFORMATION other{};
    return Identify(FromUtf8(path), other) && other.dwVolumeSerialNumber == file.dwVolumeSerialNumber &&
           other.nFileIndexHigh == file.nFileIndexHigh && other.nFileIndexLow == file.nFileIndexLow;
  });
}

}  // namespace

bool OutputFile::Open(const std::string& path, const std::vector<std::string>& disks) {
  path_ = path;
  const std::wstring target = LongPath(FromUtf8(path));
  target_ = ToUtf8(target);
  if (target.starts_with(L"\\\\.\\")) return Refuse("it is a device");
  if (BY_HANDLE_FILE_INFORMATION file{}; Identify(target, file)) {
    if ((file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return Refuse("it is a folder");
    if (IsRead(file, disks)) return Refuse("it is what is examined");
    if (IsNamedAsPieceOf(path, disks)) return Refuse("it may be a piece of what is examined");
  }
  const std::wstring name = target.substr(0, target.rfind(L'\\') + 1) + L"trovisk-map-" +
                            std::to_wstring(GetCurrentProcessId()) + L".tmp";
  const HANDLE handle =
      CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return Fail(Failure());
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  temporary_ = ToUtf8(name);
  pendingHandle = handle;
  pending = name;
  beforeInterruptedEnd = RemovePending;
  return true;
}

bool OutputFile::Write(std::string_view text) {
  while (!text.empty()) {
    const auto count = static_cast<DWORD>(std::min<std::size_t>(text.size(), std::size_t{1} << 20));
    DWORD written = 0;
    if (!WriteFile(reinterpret_cast<HANDLE>(handle_), text.data(), count, &written, nullptr))
      return Fail(Failure());
    if (written == 0) return Fail(ERROR_DISK_FULL);
    text.remove_prefix(written);
  }
  return true;
}

bool OutputFile::Commit() {
  const HANDLE handle = reinterpret_cast<HANDLE>(handle_);
  if (!FlushFileBuffers(handle)) return Fail(Failure());
  pending.clear();
  handle_ = -1;
  CloseHandle(handle);
  constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (!MoveFileExW(FromUtf8(temporary_).c_str(), FromUtf8(target_).c_str(), kHow)) return Fail(Failure());
  temporary_.clear();
  return true;
}

// The error of the call before stays.
void OutputFile::Discard() {
  const DWORD error = GetLastError();
  pending.clear();
  if (handle_ != -1) CloseHandle(reinterpret_cast<HANDLE>(handle_));
  handle_ = -1;
  if (!temporary_.empty()) DeleteFileW(FromUtf8(temporary_).c_str());
  temporary_.clear();
  SetLastError(error);
}

}  // namespace trovisk
