// Writing a file whole or not at all, on Linux.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>

#include "frame/interruption.h"
#include "map/output_file.h"

namespace trovisk {
namespace {

// The one temporary file, for a run that is interrupted.
std::string pending;

void RemovePending() {
  if (!pending.empty()) unlink(pending.c_str());
}

ErrorCode Error() {
  return static_cast<ErrorCode>(errno);
}

bool IsSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Whether the file is one that is read: by its name, or because the process holds it open, as it does the
// pieces of an image.
bool IsRead(const struct stat& file, const std::vector<std::string>& disks) {
  constexpr int kFirstOfOurs = STDERR_FILENO + 1;
  constexpr int kMostOpen = 1024;
  struct stat other {};
  for (const std::string& path : PathsOfDisks(disks)) {
    if (stat(path.c_str(), &other) == 0 && IsSame(file, other)) return true;
  }
  for (int descriptor = kFirstOfOurs; descriptor < kMostOpen; ++descriptor) {
    if (fstat(descriptor, &other) == 0 && IsSame(file, other)) return true;
  }
  return false;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

// Where a link leads, be there a file or none; the path itself where it is no link.
std::string TargetOf(const std::string& path) {
  constexpr int kMostLinks = 40;  // as the system has it
  std::string target = path;
  for (int links = 0; links < kMostLinks; ++links) {
    char text[PATH_MAX];
    const ssize_t size = readlink(target.c_str(), text, sizeof text);
    if (size <= 0 || static_cast<std::size_t>(size) == sizeof text) break;
    const std::string_view next(text, static_cast<std::size_t>(size));
    target = next.front() == '/' ? std::string(next) : FolderOf(target).append(next);
  }
  return target;
}

// Read and written by whom a new file would be.
mode_t UsualMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

bool OutputFile::Open(const std::string& path, const std::vector<std::string>& disks) {
  path_ = path;
  target_ = TargetOf(path);
  mode_t mode = UsualMode();
  if (struct stat file{}; stat(path.c_str(), &file) == 0) {
    if (S_ISBLK(file.st_mode)) return Refuse("it is a disk");
    if (!S_ISREG(file.st_mode)) return Refuse("it is not a file");
    if (IsRead(file, disks)) return Refuse("it is what is examined");
    if (IsNamedAsPieceOf(path, disks)) return Refuse("it may be a piece of what is examined");
    mode = file.st_mode & 0777;
    // Whoever may write all files is not to lose what was protected from that either.
    if ((mode & 0222) == 0) return Refuse("it is read-only");
  } else if (errno != ENOENT) {
    return Fail(Error());
  }
  std::string name = FolderOf(target_) + ".trovisk-map.XXXXXX";
  const int descriptor = mkostemp(name.data(), O_CLOEXEC);
  if (descriptor < 0) return Fail(Error());
  handle_ = descriptor;
  temporary_ = pending = name;
  beforeInterruptedEnd = RemovePending;
  return fchmod(descriptor, mode) == 0 || Fail(Error());
}

bool OutputFile::Write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(static_cast<int>(handle_), text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return Fail(Error());
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool OutputFile::Commit() {
  const int descriptor = static_cast<int>(handle_);
  if (fsync(descriptor) != 0) return Fail(Error());
  handle_ = -1;
  if (close(descriptor) != 0 || rename(temporary_.c_str(), target_.c_str()) != 0) return Fail(Error());
  temporary_.clear();
  pending.clear();
  // The name has to last as well; a file system that cannot say so keeps it as it keeps all names.
  const int folder = open(FolderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder >= 0) {
    fsync(folder);
    close(folder);
  }
  return true;
}

// errno stays what the failure has made it.
void OutputFile::Discard() {
  const int error = errno;
  if (handle_ >= 0) close(static_cast<int>(handle_));
  handle_ = -1;
  if (!temporary_.empty()) unlink(temporary_.c_str());
  temporary_.clear();
  pending.clear();
  errno = error;
}

}  // namespace trovisk
