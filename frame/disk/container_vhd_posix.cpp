// VHD images with a parent: the bitmaps that say which sectors of a block are the child's.
//
// The footer's copy opens the file, and names the header; the header names the table of blocks; a block
// begins with its bitmap, the first sector in the highest bit of the first byte. Big-endian. Layout:
// Microsoft, "Virtual Hard Disk Image Format Specification". The library takes the sectors behind a child's,
// up to the end of the bitmap's byte, for the child's too, and shows zeros where the parent's bytes should
// stand. Not checked: anything else, which is the library's affair.

#include "frame/disk/container_vhd_posix.h"

#include <unistd.h>

#include <algorithm>
#include <vector>

#include "frame/bytes.h"
#include "frame/disk/file_posix.h"

namespace trovisk {
namespace {

constexpr std::size_t kRecord = 512;
constexpr std::size_t kDataOffset = 16;  // footer: u64, bytes, of the header
constexpr std::size_t kType = 60;        // footer: u32
constexpr u32 kDifferencing = 4;
constexpr std::size_t kTableOffset = 16;  // header: u64, bytes
constexpr std::size_t kBlocks = 28;       // header: u32
constexpr std::size_t kBlockSize = 32;    // header: u32, bytes
constexpr u32 kUnused = 0xFFFFFFFF;       // an entry of the table; others are sectors

constexpr u32 kMostBlocks = u32{1} << 22;
constexpr std::size_t kMostBitmap = std::size_t{1} << 16;  // bytes

// Whether the ones of a byte reach its end: none, or the last of its sectors, without one of the parent's
// behind.
bool EndsWithItsOnes(u8 byte) {
  return (byte & (byte + 1)) == 0;
}

bool IsReadable(int descriptor) {
  const std::vector<u8> footer = ReadUpTo(descriptor, 0, kRecord);
  if (!EqualsText(SliceAt(footer, 0, 8), "conectix") || Be32At(footer, kType) != kDifferencing) return true;
  const std::vector<u8> header = ReadUpTo(descriptor, Be64At(footer, kDataOffset), kRecord);
  const std::size_t entries = std::min(Be32At(header, kBlocks), kMostBlocks);
  const std::vector<u8> table = ReadUpTo(descriptor, Be64At(header, kTableOffset), 4 * entries);
  const std::size_t bitmap = std::min<std::size_t>(Be32At(header, kBlockSize) / kRecord / 8, kMostBitmap);
  for (std::size_t i = 0; i + 4 <= table.size(); i += 4) {
    const u32 block = Be32At(table, i);
    if (block == kUnused) continue;
    const std::vector<u8> bits = ReadUpTo(descriptor, u64{block} * kRecord, bitmap);
    if (!std::all_of(bits.begin(), bits.end(), EndsWithItsOnes)) return false;
  }
  return true;
}

}  // namespace

bool IsReadableVhd(const std::string& path, std::string& refusal) {
  const int descriptor = OpenReadOnly(path);
  if (descriptor < 0) return false;
  const bool readable = IsReadable(descriptor);
  close(descriptor);
  if (!readable) {
    refusal =
        "has changes that end inside of a group of eight sectors, where its library shows zeros: convert it "
        "to a "
        "VHDX image with its own system's tools";
  }
  return readable;
}

}  // namespace trovisk
