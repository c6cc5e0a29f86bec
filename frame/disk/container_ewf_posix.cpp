#include "frame/disk/container_ewf_posix.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <vector>

#include "frame/disk/file_posix.h"

namespace trovisk {
namespace {

using GlobFunction = int(const char* name, std::size_t length, u8 format, char*** names, int* count,
                         void** error);

// Whether the file is the last segment of an EWF image: its last section says so. A section's descriptor
// begins with its type; the one of the last section is the file's end.
bool IsLastSegment(const std::string& path) {
  constexpr u64 kDescriptor = 76;
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || static_cast<u64>(status.st_size) < kDescriptor) return false;
  const int descriptor = OpenReadOnly(path);
  if (descriptor < 0) return false;
  std::array<u8, 5> type{};
  const ssize_t got =
      ReadAt(descriptor, type.data(), type.size(), static_cast<u64>(status.st_size) - kDescriptor);
  close(descriptor);
  return got == ssize_t{type.size()} && EqualsText(type, std::string_view("done\0", type.size()));
}

}  // namespace

// An EWF image has further segments, which the library looks for by their names. One whose name has another
// ending is taken to be all there is. The library fills what is missing with zeros, so nothing may be.
bool OpenEwfSegments(const Container& container, const std::string& path, std::string& refusal) {
  auto* const glob = reinterpret_cast<GlobFunction*>(dlsym(container.code, "libewf_glob"));
  std::string alone = path;
  std::vector<char*> segments = {alone.data()};
  char** names = nullptr;
  int count = 0;
  if (glob != nullptr && glob(path.c_str(), path.size(), 0, &names, &count, nullptr) == 1 && count > 0) {
    segments.assign(names, names + count);
  }
  for (const char* const segment : segments) {
    struct stat status {};
    if (stat(segment, &status) != 0 || !S_ISREG(status.st_mode)) {
      refusal = "has a segment that is no regular file: " + std::string(segment);
      return false;
    }
  }
  if (const std::string last = segments.back(); !IsLastSegment(last)) {
    refusal = "has no end: a segment behind " + last.substr(last.rfind('/') + 1) +
              " is missing, or that one is cut";
    return false;
  }
  auto* const open = Find<int(void*, char* const*, int, int, void**)>(container, "_open");
  if (open == nullptr ||
      open(container.handle, segments.data(), static_cast<int>(segments.size()), kReadOnly, nullptr) != 1) {
    return false;
  }
  // The library leaves damaged sections out, and what follows them would be taken for their content.
  auto* const damaged = Find<int(void*, void**)>(container, "_segment_files_corrupted");
  if (damaged == nullptr || damaged(container.handle, nullptr) != 0) {
    refusal = "is damaged where it says which of its bytes belong to which sector";
    return false;
  }
  return true;
}

bool HasEwfChecksumError(const Container& container, u64 offset, std::size_t count) {
  u32 bytesPerSector = 0;
  u32 errorCount = 0;
  if (!Call(container, "_get_number_of_checksum_errors", container.handle, &errorCount) || errorCount == 0 ||
      !Call(container, "_get_bytes_per_sector", container.handle, &bytesPerSector)) {
    return false;
  }
  for (u32 i = 0; i < errorCount; ++i) {
    u64 first = 0;
    u64 sectors = 0;
    if (!Call(container, "_get_checksum_error", container.handle, i, &first, &sectors)) return true;
    if (first * bytesPerSector < offset + count && offset < (first + sectors) * bytesPerSector) return true;
  }
  return false;
}

}  // namespace trovisk
