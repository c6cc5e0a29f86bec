// The operating system's side on Linux: block devices by number or path, and image files in their place.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "frame/disk/device.h"
#include "frame/disk/disk_numbers.h"
#include "frame/disk/file_posix.h"
#include "frame/disk/image_files_posix.h"
#include "frame/disk/image_name.h"

#ifdef __linux__
#include <linux/fs.h>
#endif

namespace trovisk {
namespace {

constexpr u64 kLargestOffset = std::numeric_limits<i64>::max();

int Descriptor(const Device& device) {
  return static_cast<int>(device.handle);
}

bool IsPartition(const std::string& name) {
  return access((SysfsFolder(name) + "/partition").c_str(), F_OK) == 0;
}

// The path of the disk of that number; empty when there is none.
std::string DiskOfNumber(const std::string& digits) {
  u64 number = 0;
  if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc()) return {};
  const std::vector<std::string> disks = NumberedDisksOfThisMachine();
  return number < disks.size() ? "/dev/" + disks[number] : std::string();
}

// Where the other files of an image stand: beside the name where pieces do, else beside what a link leads to.
std::string PathOfImage(const std::string& path) {
  if (PieceNames::IsOneOfSeveral(path, kPosixFiles.exists)) return path;
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
  return real ? real.get() : path;
}

}  // namespace

std::vector<std::string> NumberedDisksOfThisMachine() {
  std::ifstream partitions("/proc/partitions");
  return NumberedDisks(partitions, IsPartition);
}

ErrorCode OpenDevice(Device& device, WideText /*path*/, const char* argument) {
  std::string path = argument;
  if (!path.empty() && path.find_first_not_of("0123456789") == std::string::npos) {
    path = DiskOfNumber(path);
  }
  device = Device{};
  device.handle = OpenReadOnly(path);
  if (device.handle < 0 && (errno == ENOENT || errno == ENAMETOOLONG)) {  // no file of the whole name
    const int error = errno;
    if (const u32 size = SectorSizeOfName(std::string(argument), path); size != 0) {
      device.sectorSize = size;
      device.handle = OpenReadOnly(path);
    } else {
      errno = error;
    }
  }
  if (device.handle < 0 && errno == ENXIO) {
    // A socket cannot be opened for reading; held as a mere path, it fails where the other non-disks do.
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode)) {
      device.handle = OpenReadOnly(path, O_PATH);
    } else {
      errno = ENXIO;
    }
  }
  if (device.handle < 0) return LastError();
  struct stat status {};
  if (fstat(Descriptor(device), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  const ImageSource file = FileSource(Descriptor(device), static_cast<u64>(status.st_size));
  device.handle = -1;
  return OpenImage(device, kPosixFiles, PathOfImage(path), file);
}

bool IsOpen(const Device& device) {
  return device.handle >= 0 || device.image != nullptr;
}

ErrorCode QuerySectorSize(Device& device, u32& bytesPerSector) {
  if (device.image != nullptr) {
    bytesPerSector = device.image->SectorSize();
    return 0;
  }
  int size = 0;
  if (ioctl(Descriptor(device), BLKSSZGET, &size) != 0) return LastError();
  if (device.sectorSize != 0) return EINVAL;  // a size of one's choice is for image files alone
  bytesPerSector = static_cast<u32>(size);
  return 0;
}

ErrorCode QueryLength(const Device& device, u64& bytes) {
  if (device.image != nullptr) {
    bytes = device.image->Length();
    return 0;
  }
  return ioctl(Descriptor(device), BLKGETSIZE64, &bytes) == 0 ? 0 : LastError();
}

// The position is the program's own and reads are positional, so that every offset is treated alike on files
// and devices; lseek would refuse some that lie beyond the end.
ErrorCode SeekDevice(Device& device, u64 offset, u64& landed) {
  if (offset > kLargestOffset) return EINVAL;
  device.position = landed = offset;
  return 0;
}

Bytes TakeReadAhead(Device& device, u32 count) {
  return device.image != nullptr ? TakeOfImage(device, count) : Bytes();
}

ErrorCode ReadDevice(Device& device, u8* buffer, u32 count, u32& got) {
  // Up to the largest offset there is: the system would refuse to read across it instead of reading short.
  count = static_cast<u32>(std::min<u64>(count, kLargestOffset - device.position));
  if (device.image != nullptr) return ReadImage(device, buffer, count, got);
  std::size_t bytes = 0;
  const ErrorCode error = ReadBytes(Descriptor(device), device.direct, device.position, buffer, count, bytes);
  got = static_cast<u32>(bytes);
  device.position += got;
  return error;
}

ErrorCode CloseDevice(Device& device) {
  if (device.direct >= 0) close(static_cast<int>(device.direct));
  const int result = device.handle >= 0 ? close(Descriptor(device)) : 0;
  device = Device{};
  return result == 0 ? 0 : LastError();
}

}  // namespace trovisk
