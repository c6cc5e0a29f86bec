#include "frame/disk/file_windows.h"

#include <algorithm>

namespace trovisk {

std::wstring LongPath(const std::wstring& path) {
  std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  if (full.empty() || full.starts_with(L"\\\\?\\") || full.starts_with(L"\\\\.\\")) return full;
  return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

std::string ToUtf8(const std::wstring& text) {
  std::string utf8(text.size() * 3, '\0');
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), utf8.data(),
                                        static_cast<int>(utf8.size()), nullptr, nullptr);
  utf8.resize(static_cast<std::size_t>(bytes));
  return utf8;
}

std::wstring FromUtf8(const std::string& utf8) {
  std::wstring text(utf8.size(), L'\0');
  const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), text.data(),
                                         static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

ErrorCode Failure() {
  const DWORD error = GetLastError();
  return error == 0 ? kErrorWithoutCode : error;
}

bool IsNotThere(ErrorCode error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME ||
         error == ERROR_FILENAME_EXCED_RANGE;
}

File OpenReadOnly(const std::wstring& path) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  File file;
  file.handle =
      CreateFileW(LongPath(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr);
  if (!file.IsOpen()) return {};
  FILE_STANDARD_INFO information{};
  if (GetFileType(file.handle) == FILE_TYPE_DISK &&
      GetFileInformationByHandleEx(file.handle, FileStandardInfo, &information, sizeof information) &&
      !information.Directory) {
    file.length = static_cast<u64>(information.EndOfFile.QuadPart);
    return file;
  }
  CloseHandle(file.handle);
  SetLastError(ERROR_INVALID_FUNCTION);
  return {};
}

ErrorCode ReadAt(const File& file, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  got = 0;
  if (offset >= file.length) return 0;
  OVERLAPPED position{};
  position.Offset = static_cast<DWORD>(offset);
  position.OffsetHigh = static_cast<DWORD>(offset >> 32);
  const auto wanted = static_cast<DWORD>(std::min<u64>({count, file.length - offset, MAXDWORD}));
  DWORD bytes = 0;
  if (!ReadFile(file.handle, buffer, wanted, &bytes, &position)) {
    const ErrorCode error = Failure();
    return error == ERROR_HANDLE_EOF ? 0 : error;
  }
  got = bytes;
  return 0;
}

bool Exists(const std::wstring& path) {
  return GetFileAttributesW(LongPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace trovisk
