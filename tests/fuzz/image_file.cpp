#include "tests/fuzz/image_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "frame/disk/file_posix.h"
#include "frame/disk/image_files_posix.h"

namespace trovisk::test {
namespace {

void Require(bool done) {
  if (!done) std::abort();
}

}  // namespace

ErrorCode OpenImageFile(const FuzzDisk& disk, Device& device) {
  static const int file = memfd_create("trovisk", MFD_CLOEXEC);
  Require(file >= 0);
  const u64 length = disk.Length();
  Require(ftruncate(file, 0) == 0 && ftruncate(file, static_cast<off_t>(length)) == 0);
  for (const Stretch& stretch : disk.stretches) {
    if (stretch.position >= length) continue;
    const Bytes bytes = SliceAt(stretch.bytes, 0, length - stretch.position);
    const ssize_t written = pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(stretch.position));
    Require(written == static_cast<ssize_t>(bytes.size()));
  }
  const std::string path = "/proc/self/fd/" + std::to_string(file);
  const int opened = OpenReadOnly(path);
  if (opened < 0) return LastError();
  device.sectorSize = disk.sectorSize;  // as the end of a file's name can say it
  return OpenImage(device, kPosixFiles, path, FileSource(opened, length));
}

}  // namespace trovisk::test
