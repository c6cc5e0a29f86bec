#include "frame/disk_path.h"

#include <cstdlib>
#include <cstring>

namespace trovisk {

std::wstring DiskPath(const char* argument) {
  const std::size_t bytes = std::strlen(argument);
  std::wstring wide(bytes, L'\0');
  const std::size_t count = std::mbstowcs(wide.data(), argument, bytes);
  if (count == static_cast<std::size_t>(-1)) {
    wide.assign(bytes, L'?');
  } else {
    wide.resize(count);
  }
  return L"\\\\.\\PhysicalDrive" + wide;
}

}  // namespace trovisk
