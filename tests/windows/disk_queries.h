// The answers that a disk gives to the two queries of the program, given for an image file.

#ifndef TROVISK_TESTS_WINDOWS_DISK_QUERIES_H
#define TROVISK_TESTS_WINDOWS_DISK_QUERIES_H

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <winioctl.h>

namespace trovisk::test {

// What DeviceIoControl does on a disk of that sector size. Queries that a disk does not know fail, and so do
// those with too little room for the answer.
inline BOOL AnswerDiskQuery(HANDLE file, DWORD code, void* answer, DWORD room, DWORD* returned,
                            DWORD sectorSize) {
  LARGE_INTEGER length{};
  if (!GetFileSizeEx(file, &length)) return FALSE;
  const DWORD needed = code == IOCTL_DISK_GET_DRIVE_GEOMETRY_EX ? sizeof(DISK_GEOMETRY_EX)
                       : code == IOCTL_DISK_GET_LENGTH_INFO     ? sizeof(GET_LENGTH_INFORMATION)
                                                                : 0;
  if (needed == 0 || room < needed) {
    SetLastError(needed == 0 ? ERROR_INVALID_FUNCTION : ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  if (code == IOCTL_DISK_GET_LENGTH_INFO) {
    static_cast<GET_LENGTH_INFORMATION*>(answer)->Length = length;
  } else {
    // The other fields hold what nobody should use.
    auto* const geometry = static_cast<DISK_GEOMETRY_EX*>(answer);
    FillMemory(geometry, sizeof *geometry, 0xEE);
    geometry->Geometry.BytesPerSector = sectorSize;
  }
  *returned = needed;
  return TRUE;
}

}  // namespace trovisk::test

#endif
