// The disks of this machine on Windows: physical drives, asked without the right to read them, which an
// ordinary console has too.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <winioctl.h>

#include "frame/disk/disk_list.h"

namespace trovisk {
namespace {

// Numbers that leave a gap are rare, and so are machines with more disks.
constexpr u64 kNumbers = 32;

u64 LengthOf(HANDLE drive) {
  DISK_GEOMETRY_EX geometry{};
  DWORD returned = 0;
  if (!DeviceIoControl(drive, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, nullptr, 0, &geometry, sizeof geometry,
                       &returned, nullptr) ||
      geometry.DiskSize.QuadPart < 0) {
    return 0;
  }
  return static_cast<u64>(geometry.DiskSize.QuadPart);
}

std::string ModelOfDrive(HANDLE drive) {
  STORAGE_PROPERTY_QUERY query{};
  query.PropertyId = StorageDeviceProperty;
  query.QueryType = PropertyStandardQuery;
  u8 descriptor[1024];
  DWORD returned = 0;
  if (!DeviceIoControl(drive, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, descriptor,
                       sizeof descriptor, &returned, nullptr)) {
    return {};
  }
  return ModelOf(SliceAt(descriptor, 0, returned));
}

}  // namespace

std::vector<ListedDisk> ListDisks() {
  std::vector<ListedDisk> disks;
  for (u64 number = 0; number < kNumbers; ++number) {
    const std::string device = "\\\\.\\PhysicalDrive" + std::to_string(number);
    const HANDLE drive = CreateFileA(device.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                     OPEN_EXISTING, 0, nullptr);
    if (drive == INVALID_HANDLE_VALUE) continue;
    disks.push_back(
        {.number = number, .device = device, .bytes = LengthOf(drive), .model = ModelOfDrive(drive)});
    CloseHandle(drive);
  }
  return disks;
}

}  // namespace trovisk
