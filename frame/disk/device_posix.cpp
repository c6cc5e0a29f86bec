// The operating system's side on Linux: block devices by number or path, and image files in their place.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "frame/disk/container_kind.h"
#include "frame/disk/container_process_posix.h"
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

// Puts an image in the place of the descriptor of the regular file at the path: of the file's own bytes where
// the name states their sector size, else of what the file holds.
ErrorCode OpenImage(Device& device, const std::string& path, u64 length) {
  const int descriptor = Descriptor(device);
  ImageSource source;
  if (device.sectorSize == 0) {
    std::array<u8, kContainerHead> head;
    std::array<u8, kContainerTail> tail;
    const ssize_t headBytes = ReadAt(descriptor, head.data(), head.size(), 0);
    const ssize_t tailBytes =
        ReadAt(descriptor, tail.data(), tail.size(), length - std::min<u64>(length, tail.size()));
    const auto* const kind =
        ContainerKindOf(Bytes(head).first(static_cast<std::size_t>(std::max<ssize_t>(headBytes, 0))),
                        Bytes(tail).first(static_cast<std::size_t>(std::max<ssize_t>(tailBytes, 0))));
    if (kind != nullptr && kind->format == ContainerFormat::kFixedVhd) {
      source = FileSource(descriptor, FixedVhdLength(tail, length));
    } else if (kind != nullptr && kind->format == ContainerFormat::kEwf && EwfSegment(head) != 1) {
      device.refusal =
          "is segment " + std::to_string(EwfSegment(head)) + " of an E01 (EWF) image: name the first one";
      return EINVAL;
    } else if (kind != nullptr) {
      const ErrorCode error = OpenContainerProcess(*kind, path, source, device.refusal);
      if (error != 0) return error;
      close(descriptor);
    } else if (PieceNames::IsFirst(path)) {
      if (!OpenPieces(path, descriptor, length, source, device.refusal) && !device.refusal.empty())
        return EINVAL;
    }
  }
  if (source.read == nullptr) source = FileSource(descriptor, length);
  device.handle = -1;
  device.image = std::make_unique<Image>(source, device.sectorSize);
  return 0;
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
  return OpenImage(device, path, static_cast<u64>(status.st_size));
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

bool IsReadAhead(const Device& device, u32 count) {
  return device.image != nullptr && device.image->Holds(device.position, count);
}

ErrorCode ReadDevice(Device& device, u8* buffer, u32 count, u32& got) {
  // Up to the largest offset there is: the system would refuse to read across it instead of reading short.
  count = static_cast<u32>(std::min<u64>(count, kLargestOffset - device.position));
  std::size_t bytes = 0;
  ErrorCode error = 0;
  if (device.image != nullptr) {
    error = device.image->Read(device.position, buffer, count, bytes);
  } else {
    error = ReadBytes(Descriptor(device), device.direct, device.position, buffer, count, bytes);
  }
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
