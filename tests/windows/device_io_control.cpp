// Linked into the program in place of the import of DeviceIoControl, the one call that Wine does not answer
// for an image file that stands for a disk. The sector size comes from the environment.

#include <cstdlib>

#include "tests/windows/disk_queries.h"

namespace {

BOOL WINAPI QueryImage(HANDLE file, DWORD code, LPVOID /*in*/, DWORD /*inSize*/, LPVOID answer, DWORD room,
                       LPDWORD returned, LPOVERLAPPED /*overlapped*/) {
  const char* const size = std::getenv("TROVISK_TEST_SECTOR_SIZE");
  const auto sectorSize = static_cast<DWORD>(size == nullptr ? 512 : std::atoi(size));
  return trovisk::test::AnswerDiskQuery(file, code, answer, room, returned, sectorSize);
}

}  // namespace

// The slot that the linker otherwise takes from the import library.
extern "C" {
extern decltype(&DeviceIoControl) const __imp_DeviceIoControl;
decltype(&DeviceIoControl) const __imp_DeviceIoControl = QueryImage;
}
