#include "frame/disk/file_posix.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "frame/interruption.h"

namespace trovisk {
namespace {

ssize_t ReadUnbuffered(int descriptor, int& direct, u64 position, u8* buffer, std::size_t count) {
  constexpr std::size_t kAlignment = 4096;
  if (direct < 0) {
    direct = OpenReadOnly("/proc/self/fd/" + std::to_string(descriptor), O_DIRECT);
    if (direct < 0) return -1;
  }
  const std::size_t room = (count + kAlignment - 1) / kAlignment * kAlignment;
  const std::unique_ptr<void, decltype(&std::free)> aligned(std::aligned_alloc(kAlignment, room), &std::free);
  if (!aligned) return -1;
  const ssize_t got = ReadAt(direct, aligned.get(), count, position);
  if (got > 0) std::memcpy(buffer, aligned.get(), static_cast<std::size_t>(got));
  return got;
}

}  // namespace

ErrorCode LastError() {
  return static_cast<ErrorCode>(errno);
}

int OpenReadOnly(const std::string& path, int flags) {
  const int opened = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | flags);
  if (opened < 0 || opened > STDERR_FILENO) return opened;
  const int moved = fcntl(opened, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  close(opened);
  errno = error;
  return moved;
}

ssize_t ReadAt(int descriptor, void* buffer, std::size_t count, u64 position) {
  ssize_t got = 0;
  do {
    got = pread(descriptor, buffer, count, static_cast<off_t>(position));
  } while (got < 0 && errno == EINTR && !IsInterrupted());
  return got;
}

std::vector<u8> ReadUpTo(int descriptor, u64 position, std::size_t count) {
  std::vector<u8> bytes(count);
  const ssize_t got = ReadAt(descriptor, bytes.data(), bytes.size(), position);
  bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
  return bytes;
}

ErrorCode ReadBytes(int descriptor, int& direct, u64 position, u8* buffer, std::size_t count,
                    std::size_t& got) {
  got = 0;
  ssize_t bytes = ReadAt(descriptor, buffer, count, position);
  if (bytes < 0 && errno == EIO) {
    bytes = ReadUnbuffered(descriptor, direct, position, buffer, count);
    if (bytes < 0) return EIO;
  }
  if (bytes < 0) return LastError();
  got = static_cast<std::size_t>(bytes);
  return 0;
}

}  // namespace trovisk
