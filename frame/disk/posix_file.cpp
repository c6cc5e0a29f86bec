#include "frame/disk/posix_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace trovisk {

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
  } while (got < 0 && errno == EINTR);
  return got;
}

}  // namespace trovisk
