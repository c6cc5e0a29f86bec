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

// In the header of a file with content.
constexpr std::size_t kFlags = 8;              // u32
constexpr std::size_t kCapacity = 12;          // u64, sectors
constexpr std::size_t kGrainSize = 20;         // u64, sectors
constexpr std::size_t kDescriptorOffset = 28;  // u64, sectors
constexpr std::size_t kDescriptorSize = 36;    // u64, sectors
constexpr std::size_t kTableEntries = 44;      // u32, of each table of grains
constexpr std::size_t kDirectory = 56;         // u64, sectors: where the tables' places stand
constexpr std::size_t kHeader = 512;

constexpr u32 kKnowsZeros = 4;            // a flag
constexpr u32 kZeroed = 1;                // then an entry of a table of grains
constexpr u64 kDirectoryAtEnd = ~u64{0};  // its place is in a copy of the header,
constexpr u64 kFooter = 1024;             // bytes from the end
constexpr u32 kMostTables = u32{1} << 20;
constexpr u32 kMostEntries = u32{1} << 16;

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

// A line such as: RW 8192 FLAT "disk-flat.vmdk" 0
struct Extent {
  std::string type;  // "SPARSE", "FLAT", "VMFS", "ZERO", ...
  std::string name;  // of its file; empty: it has none
  u64 offset = 0;    // sectors, where it begins in its file
};

std::vector<Extent> ExtentsOf(const std::string& descriptor) {
  std::vector<Extent> extents;
  std::istringstream lines(descriptor);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string access;
    u64 sectors = 0;
    Extent extent;
    words >> access;
    if (access != "RW" && access != "RDONLY" && access != "NOACCESS") continue;
    if (!(words >> sectors >> extent.type)) continue;
    const std::size_t first = line.find('"');
    const std::size_t last = line.rfind('"');
    if (first != last) {
      extent.name = line.substr(first + 1, last - first - 1);
      std::istringstream(line.substr(last + 1)) >> extent.offset;
    }
    extents.push_back(std::move(extent));
  }
  return extents;
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
    // A file of that name in the folder that the program runs in is another one.
    if (path != name || name.starts_with('/') || folder.empty()) found = Found::kFile;
  }
  return found;
}

// Whether a file with content has grains that read as zeros, though it holds nothing of them.
bool HasZeroedGrains(int descriptor) {
  std::vector<u8> header = ReadUpTo(descriptor, 0, kHeader);
  struct stat status {};
  if (!EqualsText(SliceAt(header, 0, 4), "KDMV") || fstat(descriptor, &status) != 0) return false;
  if (Le64At(header, kDirectory) == kDirectoryAtEnd) {
    const u64 length = static_cast<u64>(status.st_size);
    header = ReadUpTo(descriptor, length - std::min(length, kFooter), kHeader);
    if (!EqualsText(SliceAt(header, 0, 4), "KDMV")) return false;
  }
  if ((Le32At(header, kFlags) & kKnowsZeros) == 0) return false;
  const std::size_t entries = std::min(Le32At(header, kTableEntries), kMostEntries);
  const u64 grain = Le64At(header, kGrainSize);
  if (entries == 0 || grain == 0 || grain > kMostDescriptor) return false;
  const u64 tables = std::min<u64>(Le64At(header, kCapacity) / (grain * entries) + 1, kMostTables);
  const std::vector<u8> directory =
      ReadUpTo(descriptor, Le64At(header, kDirectory) * kSector, static_cast<std::size_t>(tables) * 4);
  for (std::size_t i = 0; i + 4 <= directory.size(); i += 4) {
    const u64 place = Le32At(directory, i);
    if (place == 0) continue;
    const std::vector<u8> table = ReadUpTo(descriptor, place * kSector, entries * 4);
    for (std::size_t j = 0; j + 4 <= table.size(); j += 4)
      if (Le32At(table, j) == kZeroed) return true;
  }
  return false;
}

bool HasZeroedGrains(const std::string& path) {
  const int descriptor = OpenReadOnly(path);
  if (descriptor < 0) return false;
  const bool has = HasZeroedGrains(descriptor);
  close(descriptor);
  return has;
}

// Why the library does not read one of its extents as it is meant; empty: it does.
std::string WhyNot(const std::string& image, const Extent& extent) {
  if (extent.name.empty())
    return "has extents without a file, which its library does not know" + std::string(kConvertIt);
  if (extent.type != "SPARSE" && extent.offset != 0) {
    return "has an extent that begins inside of its file, which its library reads from another place" +
           std::string(kConvertIt);
  }
  std::string name = extent.name;
  std::replace(name.begin(), name.end(), '\\', '/');
  if (!name.starts_with('/')) name.insert(0, image.substr(0, image.rfind('/') + 1));
  if (Look(image, extent.name) == Found::kFile && HasZeroedGrains(name)) {
    return "has zeroed grains, which its library does not know" + std::string(kConvertIt);
  }
  return {};
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

bool IsReadableVmdk(const std::string& path, std::string& refusal) {
  const Descriptor descriptor = ReadDescriptor(path);
  if (descriptor.embedded && descriptor.text.empty()) {
    refusal = "has no descriptor, being a part of one: name the file that has it";
    return false;
  }
  const std::vector<Extent> extents = ExtentsOf(descriptor.text);
  if (descriptor.embedded && extents.size() == 1) {
    if (HasZeroedGrains(path)) {
      refusal = "has zeroed grains, which its library does not know" + std::string(kConvertIt);
    }
    return refusal.empty();
  }
  for (const Extent& extent : extents) {
    refusal = WhyNot(path, extent);
    if (!refusal.empty()) return false;
  }
  return true;
}

bool OpenVmdkExtents(const Container& container, const std::string& path, std::string& refusal) {
  const Descriptor descriptor = ReadDescriptor(path);
  const std::vector<Extent> extents = ExtentsOf(descriptor.text);
  refusal = "names files with its content that its library does not open" + std::string(kConvertIt);
  // A file with all of the content names itself, by the name that it had when it was made; what has that name
  // now is another.
  const bool itself = descriptor.embedded && extents.size() == 1;
  for (const auto& [type, name, offset] : itself ? std::vector<Extent>() : extents) {
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
