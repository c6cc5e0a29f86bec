// Layout: Microsoft, [MS-VHDX]. Little-endian. File identifier, two headers, two region tables; the log at 1
// MiB, the metadata at 2, the block allocation table at 3, the bitmap of sectors at 4, the blocks behind it.

#include "tests/disks/vhdx.h"

#include <map>

namespace trovisk::test {
namespace {

constexpr u64 kMiB = u64{1} << 20;
constexpr u32 kUnit = 65536;  // where everything up to 1 MiB begins
constexpr u64 kUnitsOfMiB = kMiB / kUnit;
constexpr u64 kLog = 1;       // MiB
constexpr u64 kMetadata = 2;  // likewise, and below
constexpr u64 kTable = 3;
constexpr u64 kBitmap = 4;
constexpr u64 kBlocks = 5;

constexpr u64 kSector = 512;
constexpr u64 kBlockSize = kMiB;
constexpr u64 kChunk = (u64{1} << 23) * kSector / kBlockSize;  // blocks for each bitmap of sectors

constexpr u64 kPresent = 6;  // the states of a block
constexpr u64 kPartlyPresent = 7;

constexpr Guid kTableRegion{"2DC27766-F623-4200-9D64-115E9BFD4A08"};
constexpr Guid kMetadataRegion{"8B7CA206-4790-4B9A-B8FE-575F050F886E"};
constexpr Guid kFileParameters{"CAA16737-FA36-4D43-B3B6-33F0AA44E76B"};
constexpr Guid kDiskSize{"2FA54224-CD1B-4876-B211-5DBED83BF4B8"};
constexpr Guid kDiskId{"BECA12AB-B2E6-4523-93EF-C309E000C746"};
constexpr Guid kLogicalSectorSize{"8141BF1D-A96F-4709-BA47-F233A8FAAB5F"};
constexpr Guid kPhysicalSectorSize{"CDA348C7-445D-4471-9CC9-E9885251C556"};
constexpr Guid kParentLocator{"A8D35F2D-B30B-454D-ABF7-D3D84834AB0C"};
constexpr Guid kLocatorType{"B04AEFB7-D19E-4A81-B789-25B8E9445913"};

u32 Crc32c(Bytes bytes) {
  u32 crc = ~u32{0};
  for (const u8 byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit)
      crc = crc >> 1 ^ ((crc & 1) != 0 ? 0x82F63B78 : 0);
  }
  return ~crc;
}

void PutVhdxHeader(Sector& header, u64 sequence, const Vhdx& vhdx) {
  constexpr std::size_t kSize = 4096;
  header.Text(0, "head")
      .Le64(8, sequence)
      .GuidAt(16, Guid("0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0"))  // of the file
      .GuidAt(32, vhdx.identity)
      .Le16(66, 1)     // version
      .Le32(68, kMiB)  // of the log
      .Le64(72, kLog * kMiB);
  if (vhdx.log) header.GuidAt(48, *vhdx.log);
  header.Le32(4, Crc32c(header.View().first(kSize)));
}

void PutRegionTable(Sector& table) {
  table.Text(0, "regi").Le32(8, 2);
  table.GuidAt(16, kTableRegion).Le64(32, kTable * kMiB).Le32(40, kMiB).Le32(44, 1);
  table.GuidAt(48, kMetadataRegion).Le64(64, kMetadata * kMiB).Le32(72, kMiB).Le32(76, 1);
  table.Le32(4, Crc32c(table.View()));
}

// The items' places are in the unit behind the table's.
struct Metadata {
  Sector& table;
  Sector& items;
  u16 count = 0;
  u32 used = 0;

  // Gives where the item begins.
  std::size_t Add(const Guid& item, u32 size, u32 flags) {
    const std::size_t at = used;
    table.GuidAt(32 + std::size_t{32} * count, item)
        .Le32(48 + std::size_t{32} * count, kUnit + used)
        .Le32(52 + std::size_t{32} * count, size)
        .Le32(56 + std::size_t{32} * count, flags);
    used += (size + 7) / 8 * 8;
    table.Le16(10, ++count);
    return at;
  }
};

void PutLocator(Metadata& metadata, const Vhdx& vhdx) {
  constexpr u32 kHead = 20;
  constexpr u32 kPair = 12;
  u32 size = kHead + kPair * static_cast<u32>(vhdx.parent.size());
  u32 text = size;
  for (const auto& [key, value] : vhdx.parent)
    size += static_cast<u32>(2 * (key.size() + value.size()));
  const std::size_t at = metadata.Add(kParentLocator, size, 4);
  metadata.items.GuidAt(at, kLocatorType).Le16(at + 18, vhdx.parent.size());
  std::size_t entry = at + kHead;
  for (const auto& [key, value] : vhdx.parent) {
    const auto valueText = static_cast<u32>(text + 2 * key.size());
    metadata.items.Le32(entry, text)
        .Le32(entry + 4, valueText)
        .Le16(entry + 8, 2 * key.size())
        .Le16(entry + 10, 2 * value.size())
        .Utf16(at + text, key)
        .Utf16(at + valueText, value);
    text = static_cast<u32>(valueText + 2 * value.size());
    entry += kPair;
  }
}

void PutMetadata(Disk& file, u64 size, const Vhdx& vhdx) {
  constexpr u32 kRequired = 4;
  constexpr u32 kOfTheDisk = 6;  // and required
  constexpr u32 kHasParent = 2;
  Metadata metadata{file.At(kMetadata * kUnitsOfMiB), file.At(kMetadata * kUnitsOfMiB + 1)};
  metadata.table.Text(0, "metadata");
  const auto put = [&](const Guid& item, u32 bytes, u32 flags) { return metadata.Add(item, bytes, flags); };
  const std::size_t parameters = put(kFileParameters, 8, kRequired);
  metadata.items.Le32(parameters, kBlockSize).Le32(parameters + 4, vhdx.parent.empty() ? 0 : kHasParent);
  metadata.items.Le64(put(kDiskSize, 8, kOfTheDisk), size);
  metadata.items.GuidAt(put(kDiskId, 16, kOfTheDisk), Guid("ABCDEF01-2345-6789-ABCD-EF0123456789"));
  metadata.items.Le32(put(kLogicalSectorSize, 4, kOfTheDisk), kSector);
  metadata.items.Le32(put(kPhysicalSectorSize, 4, kOfTheDisk), kSector);
  if (!vhdx.parent.empty()) PutLocator(metadata, vhdx);
}

void PutTableEntry(Disk& file, u64 entry, u64 value) {
  file.At(kTable * kUnitsOfMiB + entry * 8 / kUnit).Le64(entry * 8 % kUnit, value);
}

}  // namespace

std::vector<std::pair<std::u16string, std::u16string>> VhdxParent(const std::u16string& name,
                                                                  std::u16string_view identity) {
  return {{u"parent_linkage", std::u16string(identity)},
          {u"relative_path", u".\\" + name},
          {u"absolute_win32_path", u"C:\\images\\" + name}};
}

Disk MakeVhdx(const Disk& content, const Vhdx& vhdx) {
  const u64 size = vhdx.claimedSize != 0 ? vhdx.claimedSize : content.Sectors() * kSector;
  Disk file(~u64{0}, kUnit);
  file.At(0).Text(0, "vhdxfile").Utf16(8, u"test");
  PutVhdxHeader(file.At(1), 1, vhdx);
  PutVhdxHeader(file.At(2), 2, vhdx);
  PutRegionTable(file.At(3));
  PutRegionTable(file.At(4));
  PutMetadata(file, size, vhdx);
  // The second one of the log's sectors of 4 KiB.
  if (vhdx.logEntry) file.At(kLog * kUnitsOfMiB).Text(4096, "loge").GuidAt(4096 + 32, *vhdx.logEntry);

  const bool differs = !vhdx.parent.empty();
  if (differs) PutTableEntry(file, kChunk, kBitmap * kMiB | kPresent);
  std::map<u64, u64> places;  // of the blocks that are stored, in MiB
  u64 end = kBlocks;
  for (const auto& [number, sector] : content.Touched()) {
    const u64 byte = number * kSector;
    const u64 block = byte / kBlockSize;
    if (const auto [place, isNew] = places.try_emplace(block, end); isNew) {
      PutTableEntry(file, block, end++ * kMiB | (differs ? kPartlyPresent : kPresent));
    }
    Sector& bitmap = file.At(kBitmap * kUnitsOfMiB + number / 8 / kUnit);
    const std::size_t bits = number / 8 % kUnit;
    if (differs) bitmap.U8(bits, bitmap.View()[bits] | 1 << number % 8);
    const u64 at = places[block] * kMiB + byte % kBlockSize;
    file.At(at / kUnit).Bytes(at % kUnit, sector.View());
  }
  file.Resize(end * kUnitsOfMiB);
  return file;
}

}  // namespace trovisk::test
