// The table of signatures of contents that have no decoder.
//
// Each row names a content, where its superblock stands and the bytes that tell it, as its makers or those
// who described it have published them: ext2/3/4, F2FS, EROFS, SquashFS: the Linux kernel's documentation;
// XFS: "XFS Algorithms & Data Structures"; Btrfs: its wiki, "On-disk format"; LVM2: J. Metz, "Logical Volume
// Manager (LVM) format specification"; LUKS: "LUKS1" and "LUKS2 On-Disk Format Specification"; swap:
// mkswap(8); md: Linux RAID wiki, "RAID superblock formats"; ZFS: Sun, "ZFS On-Disk Specification"; APFS:
// "Apple File System Reference"; HFS Plus: Apple, "Technical Note TN1150"; ISO 9660: ECMA-119; UDF: ECMA-167.
// Left out: what has no published signature, VMFS among it.

#include "map/signatures.h"

#include <algorithm>
#include <map>
#include <utility>

#include "frame/examine_volume.h"
#include "frame/global.h"
#include "map/signature_rows.h"

namespace trovisk {
namespace {

constexpr SuperblockPlaces kAtStart = {.first = 0};
constexpr SuperblockPlaces kAt1K = {.first = 1024};
// The descriptors follow one another; uberblocks stand behind a list of names and values that is never empty.
constexpr SuperblockPlaces kAtDescriptors = {.first = 32768, .step = 2048, .count = 16, .unlessBlank = 32768};
constexpr SuperblockPlaces kUberblocks = {.first = 131072, .step = 1024, .count = 128, .unlessBlank = 16384};
constexpr std::string_view kSwap = "SWAPSPACE2";
constexpr std::string_view kMd = Magic("\xFC\x4E\x2B\xA9");

// The first that fits counts: what holds other contents before these, and those that leave the signatures of
// a former content alone before those that do not.
constexpr SignatureRow kRows[] = {
    {"LUKS1", kAtStart, 0, Magic("LUKS\xBA\xBE\0\x01")},
    {"LUKS2", kAtStart, 0, Magic("LUKS\xBA\xBE\0\x02"), DescribeLuks2},
    {"LVM2 PV", {.first = 0, .step = 512, .count = 4}, 0, "LABELONE", DescribeLvm2},
    {"md RAID 1.1", kAtStart, 0, kMd, DescribeMd1},
    {"md RAID 1.2", {.first = 4096}, 0, kMd, DescribeMd1},
    {"md RAID 1.0", {.fromEnd = 8192, .alignment = 4096}, 0, kMd, DescribeMd1},
    {"md RAID 0.90", {.fromEnd = 65536, .alignment = 65536}, 0, kMd, DescribeMd090},
    {"XFS", kAtStart, 0, "XFSB", DescribeXfs},
    {"SquashFS", kAtStart, 0, "hsqs", DescribeSquashFs},
    {"APFS container", kAtStart, 32, "NXSB", DescribeApfs},
    {"ext2", kAt1K, 0x38, Magic("\x53\xEF"), DescribeExt},
    {"F2FS", kAt1K, 0, Magic("\x10\x20\xF5\xF2"), DescribeF2fs},
    {"EROFS", kAt1K, 0, Magic("\xE2\xE1\xF5\xE0"), DescribeErofs},
    {"HFS+", kAt1K, 0, Magic("H+\0\x04"), DescribeHfsPlus},
    {"HFSX", kAt1K, 0, Magic("HX\0\x05"), DescribeHfsPlus},
    {"Btrfs", {.first = 65536}, 0x40, "_BHRfS_M", DescribeBtrfs},
    {"Linux swap", kAtStart, 4096 - 10, kSwap, DescribeSwap},
    {"Linux swap", kAtStart, 8192 - 10, kSwap, DescribeSwap},
    {"Linux swap", kAtStart, 16384 - 10, kSwap, DescribeSwap},
    {"Linux swap", kAtStart, 32768 - 10, kSwap, DescribeSwap},
    {"Linux swap", kAtStart, 65536 - 10, kSwap, DescribeSwap},
    {"UDF", kAtDescriptors, 1, "NSR02"},
    {"UDF", kAtDescriptors, 1, "NSR03"},
    {"ISO 9660", kAtDescriptors, 0,
     "\x01"
     "CD001\x01",
     DescribeIso9660},
    {"ZFS", kUberblocks, 0, Magic("\x0C\xB1\xBA\0\0\0\0\0")},
    {"ZFS", kUberblocks, 0, Magic("\0\0\0\0\0\xBA\xB1\x0C")},
};

// The bytes of a place, read once. What lies outside it or cannot be read is zeros.
class PlaceBytes {
 public:
  explicit PlaceBytes(const VolumePlace& place) : place_(place) {
    if (const auto sectors = SectorsAt(place)) size_ = Product(*sectors, disk.bytesPerSector).value_or(0);
  }

  u64 Size() const { return size_; }

  std::vector<u8> At(u64 position, u64 count) {
    std::vector<u8> bytes(static_cast<std::size_t>(count));
    for (u64 done = 0; done < count && position + done < size_;) {
      const u64 at = position + done;
      const u64 rest = std::min(count - done, size_ - at);
      const Bytes piece = FromAt(Block(at / kBlockSize), at % kBlockSize);
      std::ranges::copy(SliceAt(piece, 0, rest), bytes.begin() + static_cast<std::ptrdiff_t>(done));
      done += kBlockSize - at % kBlockSize;
    }
    return bytes;
  }

  // Whether the text stands at the position; none of those asked for crosses from one block into the next.
  bool Holds(u64 position, std::string_view text) {
    if (position >= size_ || text.size() > size_ - position) return false;
    return EqualsText(SliceAt(Block(position / kBlockSize), position % kBlockSize, text.size()), text);
  }

  bool IsBlank(u64 position) {
    if (position >= size_) return true;
    constexpr u64 kPiece = 512;
    return AllZero(SliceAt(Block(position / kBlockSize), position % kBlockSize, kPiece));
  }

 private:
  static constexpr u64 kBlockSize = 4096;

  const std::vector<u8>& Block(u64 number) {
    const auto [entry, isNew] = blocks_.try_emplace(number);
    if (isNew) entry->second = ReadBlock(number * kBlockSize);
    return entry->second;
  }

  // Where a sector of it is unreadable, the others.
  std::vector<u8> ReadBlock(u64 offset) const {
    if (auto whole = ReadVolumeBytes(place_, offset, kBlockSize)) return std::move(*whole);
    constexpr u64 kPieceSize = 512;
    std::vector<u8> block;
    for (u64 i = 0; i < kBlockSize; i += kPieceSize) {
      const auto piece = ReadVolumeBytes(place_, offset + i, kPieceSize);
      block.resize(static_cast<std::size_t>(i));
      if (piece) block.insert(block.end(), piece->begin(), piece->end());
    }
    return block;
  }

  VolumePlace place_;
  u64 size_ = 0;
  std::map<u64, std::vector<u8>> blocks_;
};

// None where the place is too small for one.
std::optional<u64> SuperblockPosition(const SuperblockPlaces& places, u64 index, u64 size) {
  if (places.fromEnd == 0) return places.first + index * places.step;
  if (size < places.fromEnd) return std::nullopt;
  return (size - places.fromEnd) / places.alignment * places.alignment;
}

std::optional<ForeignContent> NameAt(const VolumePlace& place, PlaceBytes& bytes, const SignatureRow& row,
                                     u64 position) {
  if (!bytes.Holds(position + row.magicOffset, row.magic)) return std::nullopt;
  ContentDetails details{.type = std::string(row.type)};
  const std::vector<u8> superblock = bytes.At(position, kSuperblockSize);
  if (row.describe != nullptr && !row.describe({superblock, position, row.magicOffset}, details)) {
    return std::nullopt;
  }
  return ForeignContent{.type = details.type,
                        .label = details.label,
                        .sectors = DiskSectors(details.bytes),
                        .sector = DiskSectorAt(place, position + row.magicOffset)};
}

// magic: of the rows that are looked for; empty: all.
std::optional<ForeignContent> Name(const VolumePlace& place, std::string_view magic) {
  PlaceBytes bytes(place);
  for (const SignatureRow& row : kRows) {
    if (!magic.empty() && row.magic != magic) continue;
    if (row.places.unlessBlank != 0 && bytes.IsBlank(row.places.unlessBlank)) continue;
    for (u64 i = 0; i < row.places.count; ++i) {
      const auto position = SuperblockPosition(row.places, i, bytes.Size());
      if (!position || *position >= bytes.Size()) break;
      if (auto content = NameAt(place, bytes, row, *position)) return content;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<ForeignContent> NameContent(const VolumePlace& place) {
  return Name(place, {});
}

std::optional<ForeignContent> NameRaidMember(const VolumePlace& place) {
  return Name(place, kMd);
}

}  // namespace trovisk
