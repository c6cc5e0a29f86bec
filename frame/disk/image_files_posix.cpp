#include "frame/disk/image_files_posix.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "frame/disk/container_process_posix.h"
#include "frame/disk/file_posix.h"

namespace trovisk {
namespace {

// One file, or the start of one.
struct File {
  int descriptor;
  u64 length;
  int direct = -1;  // as ReadBytes keeps it
};

ErrorCode ReadFileSource(void* state, u64 offset, u8* buffer, std::size_t count, std::size_t& got) {
  auto& file = *static_cast<File*>(state);
  const u64 rest = file.length - std::min(offset, file.length);
  return ReadBytes(file.descriptor, file.direct, offset, buffer, std::min<u64>(count, rest), got);
}

void CloseFileSource(void* state) {
  const std::unique_ptr<File> file(static_cast<File*>(state));
  if (file->direct >= 0) close(file->direct);
  close(file->descriptor);
}

bool Exists(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

bool LengthOfFile(const std::string& path, u64& bytes) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  bytes = static_cast<u64>(status.st_size);
  return true;
}

ErrorCode OpenFile(const std::string& path, u64 length, ImageSource& file) {
  const int descriptor = OpenReadOnly(path);
  if (descriptor < 0) return LastError();
  file = FileSource(descriptor, length);
  return 0;
}

ErrorCode OpenContainer(const ContainerKind& kind, Bytes head, const std::string& path, ImageSource& content,
                        std::string& refusal) {
  if (kind.format == ContainerFormat::kEwf && EwfSegment(head) != 1) {
    refusal = "is segment " + std::to_string(EwfSegment(head)) + " of an E01 (EWF) image: name the first one";
    return EINVAL;
  }
  return OpenContainerProcess(kind, path, content, refusal);
}

}  // namespace

const FileCalls kPosixFiles = {Exists, LengthOfFile, OpenFile, OpenContainer};

ImageSource FileSource(int descriptor, u64 length) {
  return {new File{.descriptor = descriptor, .length = length}, length, ReadFileSource, CloseFileSource};
}

}  // namespace trovisk
