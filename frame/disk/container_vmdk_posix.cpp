// VMDK: a descriptor, which is text, names the files that hold the content. It is a file of its own, or part
// of the one file that holds the content as well.
//
// Layout: VMware, "Virtual Disk Format 5.0". Little-endian. Not checked: anything else, which is the
// library's affair.

#include "frame/disk/container_vmdk_posix.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "frame/disk/file_posix.h"

namespace trovisk {
namespace {

constexpr std::size_t kDescriptorOffset = 28;  // u64, sectors; in the header of a file with content
constexpr std::size_t kDescriptorSize = 36;    // u64, sectors
constexpr std::size_t kHeader = 512;
constexpr u64 kSector = 512;
constexpr u64 kMostDescriptor = u64{1} << 20;

struct Descriptor {
  std::string text;
  bool embedded = false;  // in the file with the content
};

std::string ReadText(int descriptor, u64 offset, u64 bytes) {
  std::string text(std::min(bytes, kMostDescriptor), '\0');
  const ssize_t got = ReadAt(descriptor, text.data(), text.size(), offset);
  text.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
  return text.substr(0, text.find('\0'));
}

Descriptor ReadDescriptor(const std::string& path) {
  const int descriptor = OpenReadOnly(path);
  if (descriptor < 0) return {};
  std::vector<u8> header(kHeader);
  const ssize_t got = ReadAt(descriptor, header.data(), header.size(), 0);
  Descriptor read;
  read.embedded = got == ssize_t{kHeader} && EqualsText(SliceAt(header, 0, 4), "KDMV");
  const u64 offset = read.embedded ? Le64At(header, kDescriptorOffset) * kSector : 0;
  const u64 size = read.embedded ? Le64At(header, kDescriptorSize) * kSector : kMostDescriptor;
  read.text = ReadText(descriptor, offset, size);
  close(descriptor);
  return read;
}

// The names that it has in quotes, as in: RW 8192 SPARSE "disk.vmdk". Those behind an equals sign are none.
std::vector<std::string> ExtentNames(const std::string& descriptor) {
  std::vector<std::string> names;
  std::istringstream lines(descriptor);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t first = line.find('"');
    const std::size_t last = line.rfind('"');
    if (line.starts_with('#') || first == last || line.find('=') < first) continue;
    names.push_back(line.substr(first + 1, last - first - 1));
  }
  return names;
}

enum class Found { kNothing, kFile, kSomethingElse };

// What there is where the library may look for it: as it is named, beside the image as it is named, beside it
// by its last part.
Found Look(const std::string& image, std::string name) {
  const std::string folder = image.substr(0, image.rfind('/') + 1);
  std::replace(name.begin(), name.end(), '\\', '/');
  Found found = Found::kNothing;
  for (const std::string& path : {name, folder + name, folder + name.substr(name.rfind('/') + 1)}) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) continue;
    if (!S_ISREG(status.st_mode) && !S_ISBLK(status.st_mode)) return Found::kSomethingElse;
    found = Found::kFile;
  }
  return found;
}

// Opens the image's own file as its only extent, through the library that the image's library reads with.
bool OpenItselfAsExtent(const Container& container, const std::string& path) {
  auto* const makePool = reinterpret_cast<int (*)(void** pool, int handles, int mostOpen, void** error)>(
      dlsym(container.code, "libbfio_pool_initialize"));
  auto* const makeFile =
      reinterpret_cast<int (*)(void** file, void** error)>(dlsym(container.code, "libbfio_file_initialize"));
  auto* const name = reinterpret_cast<int (*)(void* file, const char* name, std::size_t size, void** error)>(
      dlsym(container.code, "libbfio_file_set_name"));
  auto* const append = reinterpret_cast<int (*)(void* pool, int* entry, void* file, int flags, void** error)>(
      dlsym(container.code, "libbfio_pool_append_handle"));
  void* pool = nullptr;
  void* file = nullptr;
  int entry = 0;
  return makePool != nullptr && makeFile != nullptr && name != nullptr && append != nullptr &&
         makePool(&pool, 0, 0, nullptr) == 1 && makeFile(&file, nullptr) == 1 &&
         name(file, path.c_str(), path.size(), nullptr) == 1 &&
         append(pool, &entry, file, kReadOnly, nullptr) == 1 &&
         Call(container, "_open_extent_data_files_file_io_pool", container.handle, pool);
}

}  // namespace

bool OpenVmdkExtents(const Container& container, const std::string& path, std::string& refusal) {
  const Descriptor descriptor = ReadDescriptor(path);
  const std::vector<std::string> names = ExtentNames(descriptor.text);
  refusal = "names files with its content that are missing or damaged";
  // A file with all of the content names itself, by the name that it had when it was made; what has that name
  // now is another.
  const bool itself = descriptor.embedded && names.size() == 1;
  for (const std::string& name : itself ? std::vector<std::string>() : names) {
    const Found found = Look(path, name);
    if (found == Found::kFile) continue;
    const bool missing = found == Found::kNothing;
    refusal = "names the file " + name + (missing ? ", which is missing" : ", which is no regular file");
    if (!missing) return false;  // whoever opens it may wait for ever
    break;
  }
  if (itself ? !OpenItselfAsExtent(container, path)
             : !Call(container, "_open_extent_data_files", container.handle)) {
    return false;
  }
  refusal.clear();
  return true;
}

}  // namespace trovisk
