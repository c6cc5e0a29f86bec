// The operating system's side on Linux: block devices by number or path, and image files.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "frame/disk/device.h"
#include "frame/disk/disk_numbers.h"

#ifdef __linux__
#include <linux/fs.h>
#endif

namespace trovisk {
namespace {

constexpr u64 kLargestOffset = std::numeric_limits<i64>::max();

ErrorCode LastError() {
  return static_cast<ErrorCode>(errno);
}

int Descriptor(const Device& device) {
  return static_cast<int>(device.handle);
}

// Read-only, never waiting for a writer of a FIFO, never becoming the controlling terminal. Moved above the
// standard descriptors, so that a report written to a closed one can never meet the disk.
int OpenReadOnly(const std::string& path, int flags) {
  const int opened = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | flags);
  if (opened < 0 || opened > STDERR_FILENO) return opened;
  const int moved = fcntl(opened, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  close(opened);
  errno = error;
  return moved;
}

bool IsPartition(const std::string& name) {
  std::string entry = name;
  std::replace(entry.begin(), entry.end(), '/', '!');  // as sysfs writes it
  return access(("/sys/class/block/" + entry + "/partition").c_str(), F_OK) == 0;
}

// The path of the disk of that number; empty when there is none.
std::string DiskOfNumber(const std::string& digits) {
  u64 number = 0;
  if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc()) return {};
  std::ifstream partitions("/proc/partitions");
  const std::vector<std::string> disks = NumberedDisks(partitions, IsPartition);
  return number < disks.size() ? "/dev/" + disks[number] : std::string();
}

// Splits "PATH@N", N a decimal number of bytes per sector; 0 where the argument does not have that form.
u32 SectorSizeOfName(const std::string& argument, std::string& path) {
  constexpr u32 kLargest = 1048576;
  const std::size_t at = argument.rfind('@');
  if (at == std::string::npos) return 0;
  u32 size = 0;
  const char* const end = argument.data() + argument.size();
  const auto number = std::from_chars(argument.data() + at + 1, end, size);
  if (number.ec != std::errc() || number.ptr != end || size > kLargest) return 0;
  path = argument.substr(0, at);
  return size;
}

// The first sector size at which a GPT header stands in the second sector, 512 where none does.
u32 SectorSizeOfImage(int descriptor) {
  constexpr char kSignature[] = {'E', 'F', 'I', ' ', 'P', 'A', 'R', 'T'};
  for (const u32 size : {512U, 1024U, 2048U, 4096U}) {
    char bytes[sizeof kSignature];
    if (pread(descriptor, bytes, sizeof bytes, static_cast<off_t>(size)) == ssize_t{sizeof bytes} &&
        std::memcmp(bytes, kSignature, sizeof bytes) == 0) {
      return size;
    }
  }
  return 512;
}

ssize_t ReadAt(int descriptor, void* buffer, std::size_t count, u64 position) {
  ssize_t got = 0;
  do {
    got = pread(descriptor, buffer, count, static_cast<off_t>(position));
  } while (got < 0 && errno == EINTR);
  return got;
}

// A buffered read of a block device fails as a whole page where one sector of it is unreadable. Read past the
// page cache, the good sectors beside a bad one can still be shown.
ssize_t ReadUnbuffered(Device& device, u8* buffer, u32 count) {
  constexpr std::size_t kAlignment = 4096;
  if (device.direct < 0) {
    device.direct = OpenReadOnly("/proc/self/fd/" + std::to_string(device.handle), O_DIRECT);
    if (device.direct < 0) return -1;
  }
  const std::size_t room = (count + kAlignment - 1) / kAlignment * kAlignment;
  const std::unique_ptr<void, decltype(&std::free)> aligned(std::aligned_alloc(kAlignment, room), &std::free);
  if (!aligned) return -1;
  const ssize_t got = ReadAt(static_cast<int>(device.direct), aligned.get(), count, device.position);
  if (got > 0) std::memcpy(buffer, aligned.get(), static_cast<std::size_t>(got));
  return got;
}

}  // namespace

ErrorCode OpenDevice(Device& device, WideText /*path*/, const char* argument) {
  std::string path = argument;
  if (!path.empty() && path.find_first_not_of("0123456789") == std::string::npos) {
    path = DiskOfNumber(path);
  }
  device = Device{};
  device.handle = OpenReadOnly(path, 0);
  if (device.handle < 0 && (errno == ENOENT || errno == ENAMETOOLONG)) {  // no file of the whole name
    const int error = errno;
    if (const u32 size = SectorSizeOfName(argument, path); size != 0) {
      device.sectorSize = size;
      device.handle = OpenReadOnly(path, 0);
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
  return device.handle < 0 ? LastError() : 0;
}

bool IsOpen(const Device& device) {
  return device.handle >= 0;
}

ErrorCode QuerySectorSize(Device& device, u32& bytesPerSector) {
  struct stat status {};
  if (fstat(Descriptor(device), &status) != 0) return LastError();
  if (S_ISREG(status.st_mode)) {
    bytesPerSector = device.sectorSize != 0 ? device.sectorSize : SectorSizeOfImage(Descriptor(device));
    return 0;
  }
  int size = 0;
  if (ioctl(Descriptor(device), BLKSSZGET, &size) != 0) return LastError();
  if (device.sectorSize != 0) return EINVAL;  // a size of one's choice is for image files alone
  bytesPerSector = static_cast<u32>(size);
  return 0;
}

ErrorCode QueryLength(const Device& device, u64& bytes) {
  struct stat status {};
  if (fstat(Descriptor(device), &status) != 0) return LastError();
  if (S_ISREG(status.st_mode)) {
    bytes = static_cast<u64>(status.st_size);
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

ErrorCode ReadDevice(Device& device, u8* buffer, u32 count, u32& got) {
  // Up to the largest offset there is: the system would refuse to read across it instead of reading short.
  count = static_cast<u32>(std::min<u64>(count, kLargestOffset - device.position));
  ssize_t bytes = ReadAt(Descriptor(device), buffer, count, device.position);
  if (bytes < 0 && errno == EIO) {
    bytes = ReadUnbuffered(device, buffer, count);
    if (bytes < 0) return EIO;
  }
  if (bytes < 0) return LastError();
  got = static_cast<u32>(bytes);
  device.position += got;
  return 0;
}

ErrorCode CloseDevice(Device& device) {
  if (device.direct >= 0) close(static_cast<int>(device.direct));
  const int result = close(Descriptor(device));
  device = Device{};
  return result == 0 ? 0 : LastError();
}

}  // namespace trovisk
