// QCOW images: what their library does not read as it is meant, which is encryption, clusters that read as
// zeros whatever they refer to, features that change the layout, and clusters that lie behind the file's end.
//
// The header opens the file, the tables stand where it says. Big-endian. Layout: QEMU, "QCow2 image format",
// and of version 1 its block/qcow. Not checked: anything else, which is the library's affair.

#include "frame/disk/container_qcow_posix.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "frame/disk/container_handle_posix.h"
#include "frame/disk/file_posix.h"

namespace trovisk {
namespace {

constexpr std::size_t kVersion = 4;           // u32
constexpr std::size_t kBackingFile = 8;       // u64, bytes: where its name stands; 0: there is none
constexpr std::size_t kClusterBits = 20;      // u32
constexpr std::size_t kSize = 24;             // u64, bytes, of the disk
constexpr std::size_t kEncryption = 32;       // u32
constexpr std::size_t kEncryptionOfOne = 36;  // u32, in version 1
constexpr std::size_t kL1Size = 36;           // u32, entries
constexpr std::size_t kL1Offset = 40;         // u64
constexpr std::size_t kIncompatible = 72;     // u64, from version 3 on
constexpr std::size_t kHeader = 80;

// Of the incompatible features: those that do not change how the image is read, a refcount that is not up to
// date and a mark of damage.
constexpr u64 kHarmless = 0x3;
constexpr u64 kCompressed = u64{1} << 62;  // in an entry of a cluster
constexpr u64 kZero = 1;                   // likewise
constexpr u64 kOffset = 0x00FFFFFFFFFFFE00;

constexpr u64 kUnit = 512;  // of the length of a compressed cluster, bytes

struct Image {
  int descriptor;
  u64 length;  // bytes, of the file
  std::vector<u8> header;
};

u64 BytesBehind(u64 length, u64 offset) {
  return length - std::min(length, offset);
}

// Whether the file holds the cluster that an entry refers to, as far as it is of the disk: visible bytes.
bool Holds(const Image& image, u64 entry, u32 clusterBits, u64 visible) {
  if ((entry & kCompressed) == 0) {
    return (entry & kOffset) == 0 || BytesBehind(image.length, entry & kOffset) >= visible;
  }
  const u32 lengthBits = clusterBits - 8;
  const u64 offset = entry & ((u64{1} << (62 - lengthBits)) - 1);
  const u64 units = (entry >> (62 - lengthBits) & ((u64{1} << lengthBits) - 1)) + 1;
  // The last one need not fill its last unit.
  return BytesBehind(image.length, offset / kUnit * kUnit) > (units - 1) * kUnit;
}

// What is wrong with a cluster or a table; empty: nothing.
std::string WrongCluster(const Image& image) {
  constexpr u32 kMostL1 = u32{1} << 22;  // entries: 32 MiB of them
  constexpr char kCut[] = "is cut: some of its clusters lie behind its end";
  const u32 clusterBits = std::clamp<u32>(Be32At(image.header, kClusterBits), 9, 21);
  const std::size_t cluster = std::size_t{1} << clusterBits;
  const bool knowsZeros = Be32At(image.header, kVersion) >= 3;
  const u64 size = Be64At(image.header, kSize);
  const std::size_t l1Bytes = std::size_t{8} * std::min(Be32At(image.header, kL1Size), kMostL1);
  const std::vector<u8> l1 = ReadUpTo(image.descriptor, Be64At(image.header, kL1Offset), l1Bytes);
  if (l1.size() < l1Bytes) return kCut;
  for (std::size_t i = 0; i < l1.size(); i += 8) {
    const u64 l2Offset = Be64At(l1, i) & kOffset;
    if (l2Offset == 0) continue;
    const std::vector<u8> l2 = ReadUpTo(image.descriptor, l2Offset, cluster);
    if (l2.size() < cluster) return kCut;
    for (std::size_t j = 0; j < l2.size(); j += 8) {
      const u64 entry = Be64At(l2, j);
      if (knowsZeros && (entry & kCompressed) == 0 && (entry & kZero) != 0) {
        return "has zeroed clusters, which its library does not know" + std::string(kConvertIt);
      }
      const u64 place = (u64{i / 8} * (cluster / 8) + j / 8) * cluster;
      if (!Holds(image, entry, clusterBits, std::min<u64>(BytesBehind(size, place), cluster))) return kCut;
    }
  }
  return {};
}

// Why the library does not read the image as it is meant; empty: it does.
std::string WhyNot(const Image& image) {
  const Bytes header = image.header;
  if (!EqualsText(SliceAt(header, 0, 4), "QFI\xFB")) return {};
  const u32 version = Be32At(header, kVersion);
  if (Be32At(header, version == 1 ? kEncryptionOfOne : kEncryption) != 0) {
    return "is encrypted" + std::string(kConvertIt) + ", which takes its key";
  }
  if (version == 1) {
    return Be64At(header, kBackingFile) == 0 ? ""
                                             : "rests on another image, and is of version 1, of which its "
                                               "library reads none that do" +
                                                   std::string(kConvertIt);
  }
  if (version >= 3 && (Be64At(header, kIncompatible) & ~kHarmless) != 0) {
    return "has features that its library does not know" + std::string(kConvertIt);
  }
  return WrongCluster(image);
}

}  // namespace

bool IsReadableQcow(const std::string& path, std::string& refusal) {
  const int descriptor = OpenReadOnly(path);
  if (descriptor < 0) return false;
  struct stat status {};
  const u64 length = fstat(descriptor, &status) == 0 ? static_cast<u64>(status.st_size) : 0;
  refusal = WhyNot({descriptor, length, ReadUpTo(descriptor, 0, kHeader)});
  close(descriptor);
  return refusal.empty();
}

}  // namespace trovisk
