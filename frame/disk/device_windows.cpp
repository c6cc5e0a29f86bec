// The operating system's side on Windows: a physical drive, through the calls that read one raw.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <winioctl.h>

#include <string>

#include "frame/disk/device.h"

namespace trovisk {
namespace {

HANDLE Handle(const Device& device) {
  return reinterpret_cast<HANDLE>(device.handle);
}

// The error of a call that has failed.
ErrorCode Failure() {
  const DWORD error = GetLastError();
  return error == 0 ? kErrorWithoutCode : error;
}

}  // namespace

ErrorCode OpenDevice(Device& device, WideText path, const char* /*argument*/) {
  const HANDLE handle = CreateFileW(std::wstring(path).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  device.handle = reinterpret_cast<std::intptr_t>(handle);
  return handle == INVALID_HANDLE_VALUE ? Failure() : 0;
}

bool IsOpen(const Device& device) {
  return Handle(device) != INVALID_HANDLE_VALUE;
}

ErrorCode QuerySectorSize(Device& device, u32& bytesPerSector) {
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
  LARGE_INTEGER distance{};
  distance.QuadPart = static_cast<LONGLONG>(offset);
  LARGE_INTEGER position{};
  // A refusal without a code counts as a move; where it landed is for the caller to compare.
  const ErrorCode error =
      SetFilePointerEx(Handle(device), distance, &position, FILE_BEGIN) ? 0 : GetLastError();
  landed = static_cast<u64>(position.QuadPart);
  return error;
}

bool IsReadAhead(const Device& device, u32 count) {
  return device.image != nullptr && device.image->Holds(device.position, count);
}

ErrorCode ReadDevice(Device& device, u8* buffer, u32 count, u32& got) {
  DWORD bytes = 0;
  if (!ReadFile(Handle(device), buffer, count, &bytes, nullptr)) return Failure();
  got = bytes;
  return 0;
}

ErrorCode CloseDevice(Device& device) {
  const ErrorCode error = CloseHandle(Handle(device)) ? 0 : Failure();
  device = Device{};
  return error;
}

}  // namespace trovisk
