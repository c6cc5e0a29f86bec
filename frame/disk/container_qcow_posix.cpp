// QCOW2, version 3: clusters that read as zeros whatever they refer to, and features that change the layout.
//
// The header opens the file, the tables stand where it says. Big-endian. Layout: QEMU, "QCow2 image format".
// Not checked: anything else, which is the library's affair.

#include "frame/disk/container_qcow_posix.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <vector>

#include "frame/disk/file_posix.h"

namespace trovisk {
namespace {

constexpr std::size_t kVersion = 4;        // u32
constexpr std::size_t kClusterBits = 20;   // u32
constexpr std::size_t kL1Size = 36;        // u32, entries
constexpr std::size_t kL1Offset = 40;      // u64
constexpr std::size_t kIncompatible = 72;  // u64
constexpr std::size_t kHeader = 80;

// Of the incompatible features: those that do not change how the image is read, a refcount that is not up to
// date and a mark of damage.
constexpr u64 kHarmless = 0x3;
constexpr u64 kCompressed = u64{1} << 62;  // in an entry of a cluster
constexpr u64 kZero = 1;                   // likewise
constexpr u64 kOffset = 0x00FFFFFFFFFFFE00;

std::vector<u8> ReadTable(int descriptor, u64 offset, std::size_t bytes) {
  std::vector<u8> table(bytes);
  const ssize_t got = ReadAt(descriptor, table.data(), table.size(), offset);
  table.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
  return table;
}

bool HasZeroCluster(int descriptor, Bytes header) {
  constexpr u32 kMostClusterBits = 21;
  constexpr u32 kMostL1 = u32{1} << 22;  // entries: 32 MiB of them
  const std::size_t cluster = std::size_t{1}
                              << std::clamp<u32>(Be32At(header, kClusterBits), 9, kMostClusterBits);
  const std::size_t l1Bytes = std::size_t{8} * std::min(Be32At(header, kL1Size), kMostL1);
  const std::vector<u8> l1 = ReadTable(descriptor, Be64At(header, kL1Offset), l1Bytes);
  for (std::size_t i = 0; i + 8 <= l1.size(); i += 8) {
    const u64 l2Offset = Be64At(l1, i) & kOffset;
    if (l2Offset == 0) continue;
    const std::vector<u8> l2 = ReadTable(descriptor, l2Offset, cluster);
    for (std::size_t j = 0; j + 8 <= l2.size(); j += 8) {
      const u64 entry = Be64At(l2, j);
      if ((entry & kCompressed) == 0 && (entry & kZero) != 0) return true;
    }
  }
  return false;
}

bool IsReadable(int descriptor, std::string& refusal) {
  const std::vector<u8> header = ReadTable(descriptor, 0, kHeader);
  if (!EqualsText(SliceAt(header, 0, 4), "QFI\xFB") || Be32At(header, kVersion) < 3) return true;
  if ((Be64At(header, kIncompatible) & ~kHarmless) != 0) {
    refusal = "has features that its library does not know: convert it with \"qemu-img convert -O raw\"";
  } else if (HasZeroCluster(descriptor, header)) {
    refusal =
        "has zeroed clusters, which its library does not know: convert it with \"qemu-img convert -O raw\"";
  }
  return refusal.empty();
}

}  // namespace

bool IsReadableQcow(const std::string& path, std::string& refusal) {
  const int descriptor = OpenReadOnly(path);
  if (descriptor < 0) return false;
  const bool readable = IsReadable(descriptor, refusal);
  close(descriptor);
  return readable;
}

}  // namespace trovisk
