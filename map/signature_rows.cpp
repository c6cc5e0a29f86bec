// What superblocks say beside their signature: the kind told more exactly, the label, the size.
//
// Offsets are bytes from the superblock, little-endian but for XFS, HFS Plus and the version in LUKS headers.
// Layouts: as named in map/signatures.cpp. Checked: only what keeps chance bytes from being taken for a
// superblock; checksums are not.

#include "map/signature_rows.h"

#include "frame/examination.h"
#include "frame/examine_volume.h"

namespace trovisk {
namespace {

// A size that overflows is none.
u64 Size(u64 blocks, u64 bytesPerBlock) {
  return Product(blocks, bytesPerBlock).value_or(0);
}

}  // namespace

bool DescribeExt(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kBlocksLow = 0x04;
  constexpr u64 kLogBlockSize = 0x18;  // the block is 1024 shifted by it
  constexpr u64 kCompatible = 0x5C;
  constexpr u64 kIncompatible = 0x60;
  constexpr u64 kReadOnlyCompatible = 0x64;
  constexpr u64 kLabel = 0x78;  // 16 characters
  constexpr u64 kBlocksHigh = 0x150;

  constexpr u32 kHasJournal = 0x4;     // compatible
  constexpr u32 kJournalDevice = 0x8;  // incompatible, like the next two
  constexpr u32 k64Bit = 0x80;
  constexpr u32 kIncompatibleOfExt3 = 0x1E;  // file types, recovery, journal device, meta block groups
  constexpr u32 kReadOnlyOfExt3 = 0x7;       // sparse superblocks, large files, trees of directories

  const Bytes bytes = superblock.bytes;
  const u32 logBlockSize = Le32At(bytes, kLogBlockSize);
  const u32 incompatible = Le32At(bytes, kIncompatible);
  if (logBlockSize > 6 || Le32At(bytes, kBlocksLow) == 0) return false;
  u64 blocks = Le32At(bytes, kBlocksLow);
  if ((incompatible & k64Bit) != 0) blocks |= u64{Le32At(bytes, kBlocksHigh)} << 32;
  details.bytes = Size(blocks, u64{1024} << logBlockSize);
  details.label = SafeAscii(SliceAt(bytes, kLabel, 16));
  if ((incompatible & kJournalDevice) != 0) {
    details.type = "ext journal";
  } else if ((incompatible & ~kIncompatibleOfExt3) != 0 ||
             (Le32At(bytes, kReadOnlyCompatible) & ~kReadOnlyOfExt3) != 0) {
    details.type = "ext4";
  } else if ((Le32At(bytes, kCompatible) & kHasJournal) != 0) {
    details.type = "ext3";
  }
  return true;
}

bool DescribeXfs(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kBlockSize = 0x04;
  constexpr u64 kBlocks = 0x08;
  constexpr u64 kLabel = 0x6C;  // 12 characters
  details.bytes = Size(Be64At(superblock.bytes, kBlocks), Be32At(superblock.bytes, kBlockSize));
  details.label = SafeAscii(SliceAt(superblock.bytes, kLabel, 12));
  return true;
}

bool DescribeBtrfs(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kDeviceBytes = 0xD1;  // of this device, where there are several
  constexpr u64 kLabel = 0x12B;       // 256 characters
  details.bytes = Le64At(superblock.bytes, kDeviceBytes);
  details.label = SafeAscii(SliceAt(superblock.bytes, kLabel, 256));
  return true;
}

bool DescribeF2fs(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kLogBlockSize = 0x10;
  constexpr u64 kBlocks = 0x24;
  constexpr u64 kLabel = 0x7C;  // 512 code units
  const u32 logBlockSize = Le32At(superblock.bytes, kLogBlockSize);
  if (logBlockSize > 16) return false;
  details.bytes = Size(Le64At(superblock.bytes, kBlocks), u64{1} << logBlockSize);
  details.label = SafeUtf16(SliceAt(superblock.bytes, kLabel, 1024));
  return true;
}

bool DescribeErofs(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kLogBlockSize = 0x0C;  // one byte
  constexpr u64 kBlocks = 0x24;
  constexpr u64 kLabel = 0x40;  // 16 characters
  const u32 logBlockSize = U8At(superblock.bytes, kLogBlockSize);
  if (logBlockSize > 16) return false;
  details.bytes = Size(Le32At(superblock.bytes, kBlocks), u64{1} << logBlockSize);
  details.label = SafeAscii(SliceAt(superblock.bytes, kLabel, 16));
  return true;
}

bool DescribeSquashFs(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kMajorVersion = 0x1C;
  constexpr u64 kBytesUsed = 0x28;
  details.bytes = Le64At(superblock.bytes, kBytesUsed);
  return Le16At(superblock.bytes, kMajorVersion) == 4;
}

bool DescribeLvm2(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kContentOffset = 0x14;  // from here, of the volume's header
  constexpr u64 kType = 0x18;
  constexpr u64 kVolumeSize = 0x20;  // behind the identifier, in the volume's header
  details.bytes = Le64At(superblock.bytes, u64{Le32At(superblock.bytes, kContentOffset)} + kVolumeSize);
  return EqualsText(SliceAt(superblock.bytes, kType, 8), "LVM2 001");
}

bool DescribeLuks2(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kLabel = 0x18;  // 48 characters
  details.label = SafeAscii(SliceAt(superblock.bytes, kLabel, 48));
  return true;
}

// The page's size follows from the signature's place at its end. On a machine of the other byte order the
// version is not 1, and the rest is left alone.
bool DescribeSwap(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kVersion = 0x400;
  constexpr u64 kLastPage = 0x404;
  constexpr u64 kLabel = 0x41C;  // 16 characters
  constexpr u64 kSignatureSize = 10;
  if (Le32At(superblock.bytes, kVersion) != 1) return true;
  const u64 pages = u64{Le32At(superblock.bytes, kLastPage)} + 1;
  details.bytes = Size(pages, superblock.magicOffset + kSignatureSize);
  details.label = SafeAscii(SliceAt(superblock.bytes, kLabel, 16));
  return true;
}

bool DescribeMd090(const Superblock& superblock, ContentDetails& /*details*/) {
  constexpr u64 kMajorVersion = 0x04;
  constexpr u64 kMinorVersion = 0x08;
  return Le32At(superblock.bytes, kMajorVersion) == 0 && Le32At(superblock.bytes, kMinorVersion) == 90;
}

// It states its own place, in sectors of 512 bytes.
bool DescribeMd1(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kMajorVersion = 0x04;
  constexpr u64 kName = 0x20;  // 32 characters
  constexpr u64 kOwnPlace = 0x90;
  details.label = SafeAscii(SliceAt(superblock.bytes, kName, 32));
  return Le32At(superblock.bytes, kMajorVersion) == 1 &&
         Le64At(superblock.bytes, kOwnPlace) == superblock.position / 512;
}

bool DescribeApfs(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kBlockSize = 0x24;
  constexpr u64 kBlocks = 0x28;
  const u32 blockSize = Le32At(superblock.bytes, kBlockSize);
  details.bytes = Size(Le64At(superblock.bytes, kBlocks), blockSize);
  return blockSize >= 4096 && blockSize <= 65536;
}

bool DescribeHfsPlus(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kBlockSize = 0x28;
  constexpr u64 kBlocks = 0x2C;
  details.bytes = Size(Be32At(superblock.bytes, kBlocks), Be32At(superblock.bytes, kBlockSize));
  return true;
}

bool DescribeIso9660(const Superblock& superblock, ContentDetails& details) {
  constexpr u64 kLabel = 0x28;  // 32 characters
  constexpr u64 kBlocks = 0x50;
  constexpr u64 kBlockSize = 0x80;
  details.bytes = Size(Le32At(superblock.bytes, kBlocks), Le16At(superblock.bytes, kBlockSize));
  details.label = SafeAscii(SliceAt(superblock.bytes, kLabel, 32));
  return true;
}

}  // namespace trovisk
