// Files on Windows: opened for reading only, read at a position.

#ifndef TROVISK_FRAME_DISK_FILE_WINDOWS_H
#define TROVISK_FRAME_DISK_FILE_WINDOWS_H

#include <string>

#include "frame/error_code.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace trovisk {

// Text of the system as UTF-8, and back.
std::string ToUtf8(const std::wstring& text);
std::wstring FromUtf8(const std::string& utf8);

// The path in the form that may be longer than 260 characters whatever the system's settings are. Paths of
// devices stay as they are.
std::wstring LongPath(const std::wstring& path);

// The error of a call that has failed.
ErrorCode Failure();

// Whether it is the error of a path at which nothing is, or nothing can be.
bool IsNotThere(ErrorCode error);

// A file with its length in bytes.
struct File {
  HANDLE handle = INVALID_HANDLE_VALUE;
  u64 length = 0;

  bool IsOpen() const { return handle != INVALID_HANDLE_VALUE; }
};

// Opens a file at a path of any length, which must not be a directory, a device or a pipe. Whoever else has
// it open may go on writing, and may rename or delete it. Where it fails, the file is not open, and Failure
// says why.
File OpenReadOnly(const std::wstring& path);

// Reads at most count bytes at an offset: as many as there are before the end of the length, or of the file
// where that was made shorter.
ErrorCode ReadAt(const File& file, u64 offset, u8* buffer, std::size_t count, std::size_t& got);

// Whether anything is at a path of any length.
bool Exists(const std::wstring& path);

}  // namespace trovisk

#endif
