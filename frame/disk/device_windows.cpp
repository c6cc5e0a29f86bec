// The operating system's side on Windows: a physical drive, through the calls that read one raw, and image
// files in its place.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <winioctl.h>

#include <cstring>
#include <string>

#include "frame/disk/command_line.h"
#include "frame/disk/device.h"
#include "frame/disk/file_windows.h"
#include "frame/disk/image_files.h"
#include "frame/disk/image_files_windows.h"

namespace trovisk {
namespace {

HANDLE Handle(const Device& device) {
  return reinterpret_cast<HANDLE>(device.handle);
}

// Digits alone are the number of a drive, never a file of that name in the current folder.
bool IsNumber(const char* argument) {
  return argument[std::strspn(argument, "0123456789")] == '\0';
}

// The disk argument in its own characters.
std::wstring Named(const char* argument) {
  return argumentsAreUtf8 ? FromUtf8(argument) : FirstArgument(GetCommandLineW());
}

}  // namespace

// An argument that names no drive is tried as the path of a file. Where it is none either, what is said is
// said of the drive.
ErrorCode OpenDevice(Device& device, WideText path, const char* argument) {
  device = Device{};
  const HANDLE handle = CreateFileW(std::wstring(path).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  device.handle = reinterpret_cast<std::intptr_t>(handle);
  if (handle != INVALID_HANDLE_VALUE) return 0;
  const ErrorCode error = Failure();
  if (!IsNotThere(error) || IsNumber(argument)) return error;
  return OpenImageFile(device, Named(argument)) ? 0 : error;
}

bool IsOpen(const Device& device) {
  return Handle(device) != INVALID_HANDLE_VALUE || device.image != nullptr;
}

ErrorCode QuerySectorSize(Device& device, u32& bytesPerSector) {
  if (device.image != nullptr) {
    bytesPerSector = device.image->SectorSize();
    return 0;
  }
  DISK_GEOMETRY_EX geometry{};
  DWORD returned = 0;
  if (!DeviceIoControl(Handle(device), IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, nullptr, 0, &geometry,
                       sizeof geometry, &returned, nullptr)) {
    return Failure();
  }
  bytesPerSector = geometry.Geometry.BytesPerSector;
  return 0;
}

ErrorCode QueryLength(const Device& device, u64& bytes) {
  if (device.image != nullptr) {
    bytes = device.image->Length();
    return 0;
  }
  GET_LENGTH_INFORMATION length{};
  DWORD returned = 0;
  if (!DeviceIoControl(Handle(device), IOCTL_DISK_GET_LENGTH_INFO, nullptr, 0, &length, sizeof length,
                       &returned, nullptr)) {
    return Failure();
  }
  bytes = static_cast<u64>(length.Length.QuadPart);
  return 0;
}

ErrorCode SeekDevice(Device& device, u64 offset, u64& landed) {
  if (device.image != nullptr) {
    if (static_cast<i64>(offset) < 0) return ERROR_INVALID_PARAMETER;
    device.position = landed = offset;
    return 0;
  }
  LARGE_INTEGER distance{};
  distance.QuadPart = static_cast<LONGLONG>(offset);
  LARGE_INTEGER position{};
  // A refusal without a code counts as a move; where it landed is for the caller to compare.
  const ErrorCode error =
      SetFilePointerEx(Handle(device), distance, &position, FILE_BEGIN) ? 0 : GetLastError();
  landed = static_cast<u64>(position.QuadPart);
  return error;
}

Bytes TakeReadAhead(Device& device, u32 count) {
  return device.image != nullptr ? TakeOfImage(device, count) : Bytes();
}

ErrorCode ReadDevice(Device& device, u8* buffer, u32 count, u32& got) {
  if (device.image != nullptr) return ReadImage(device, buffer, count, got);
  DWORD bytes = 0;
  if (!ReadFile(Handle(device), buffer, count, &bytes, nullptr)) return Failure();
  got = bytes;
  return 0;
}

ErrorCode CloseDevice(Device& device) {
  const ErrorCode error = device.image != nullptr || CloseHandle(Handle(device)) ? 0 : Failure();
  device = Device{};
  return error;
}

}  // namespace trovisk
